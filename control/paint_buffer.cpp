// Painting the newest captured buffer, and the frame-rate title.
#include <cstdio>

#include "control/pages/configure_page.h"
#include "control/pages/display_page.h"
#include "control/vrx_ctrl.h"
#include "control/vrx_messages.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

CVrxCtrl::LRESULT CVrxCtrl::PaintBuffer() {
  if (m_paints_queued.load() > 0) m_paints_queued.fetch_sub(1);
  LRESULT result = 0;
  // Stale buffers go back unpainted; only the newest is painted.
  while (m_pending_buffers.load() > 1) {
    if (VRX_Acquire(m_camera_handle, VRX_ACQ_BUFFER_RELEASE, nullptr) != VRX_OK) break;
    m_pending_buffers.fetch_sub(1);
    ++m_dropped;
  }
  m_pending_buffers.fetch_sub(1);

  VRX_BUFFER_RECORD record{};
  if (VRX_Acquire(m_camera_handle, VRX_ACQ_BUFFER_GET, &record) != VRX_OK) {
    result = -1;
  } else {
    ++m_buffers_held;
    const bool display_on = m_display && m_display->GetDisplayFlag();
    bool painted = false;
    if (display_on) {
      uint32_t buffer = record.buffer;
      bool converted = true;
      if (m_display->GetConversionFlag()) {
        converted = VIL_Convert(record.buffer, m_display->GetConversionBuffer()) == VRX_OK;
        buffer = m_display->GetConversionBuffer();
      }
      painted = converted && VDL_BufferPaint(m_display->GetDisplayHandle(), buffer) == VRX_OK;
      if (!painted) result = -1;
    }
    if (!display_on || painted) {
      m_buffer_context = record.buffer;
      ++m_painted;
      if (m_live == 0) NotifyDisplayPage();
    }
  }
  if (!m_event_semaphore || !m_event_semaphore->release()) {
    ErrHandler("VrxCtrl::PaintBuffer", VRC_OK, "Failed to release event semaphore");
    result = -1;
  }
  if (VRX_Acquire(m_camera_handle, VRX_ACQ_BUFFER_RELEASE, nullptr) != VRX_OK)
    result = -1;
  else if (m_buffers_held > 0)
    --m_buffers_held;
  DisplayStats();
  return result;
}

// Every frames-per-update frames: the measured rate into the title, and frames-per-update
// adapted so that the title changes about once a second.
void CVrxCtrl::DisplayStats() {
  if (++m_frame_counter < m_frames_per_update) return;
  vrc::window::Desktop &desktop = vrc::window::desktop();
  m_current_count = desktop.performance_counter();
  if (m_current_count == 0) {
    ReportTimerFailure("VrxCtrl::DisplayStats", "QPC");
    return;
  }
  const uint64_t elapsed = m_current_count - m_start_count;
  m_interval_ms = m_frequency ? static_cast<uint32_t>(elapsed * 1000u / m_frequency) : 0;
  if (m_interval_ms != 0)
    m_frame_rate = static_cast<float>(m_frames_per_update * 1000.0 / m_interval_ms);

  const char *board = m_configure ? m_configure->GetBoardName() : "Vireo";
  const int board_number = m_configure ? m_configure->GetBoardNumber() : 0;
  const int channel = m_configure ? m_configure->GetChannelNumber() : 0;
  char text[160];
  std::snprintf(text, sizeof text, "%s Board %d, Channel %c, %.2f fps", board, board_number + 1,
                'A' + channel, static_cast<double>(m_frame_rate));
  if (has_window()) set_text(text);

  if (m_interval_ms != 0 && (m_interval_ms < 800 || m_interval_ms > 1200))
    m_frames_per_update = static_cast<uint32_t>(m_frames_per_update * 1000.0 / m_interval_ms + 1.0);

  m_start_count = desktop.performance_counter();
  if (m_start_count == 0) {
    ReportTimerFailure("VrxCtrl::DisplayStats", "QPC");
    return;
  }
  m_frame_counter = 0;
}
