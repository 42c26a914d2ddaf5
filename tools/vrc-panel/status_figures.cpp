// Acquisition figures in the status bar.
#include "tools/vrc-panel/status_figures.h"

#include <cstdio>

#include "platform/board/vrx_params.h"
#include "tools/vrc-panel/main_window.h"
#include "tools/vrc-panel/panel_host.h"

namespace vrc_panel {

std::string figures_text(const AcquisitionFigures &figures, double megabytes_per_second) {
  char text[160];
  std::snprintf(text, sizeof text, "Acquired %llu  Painted %llu  Dropped %llu  %.2f MB/s",
                static_cast<unsigned long long>(figures.acquired),
                static_cast<unsigned long long>(figures.painted),
                static_cast<unsigned long long>(figures.dropped), megabytes_per_second);
  return text;
}

StatusFigures::StatusFigures(PanelHost &panel, MainWindow &main_window)
    : m_panel(panel), m_main_window(main_window) {
  m_timer.setInterval(500);
  QObject::connect(&m_timer, &QTimer::timeout, [this] { update(); });
  m_timer.start();
}

uint32_t StatusFigures::frame_bytes() const {
  const uint32_t handle = m_panel.camera_handle();
  uint32_t line_bytes = 0, lines = 0;
  if (handle == 0 || VRX_ParameterGet(handle, vrx::ParamDstXLength, &line_bytes) != VRX_OK ||
      VRX_ParameterGet(handle, vrx::ParamDstYLength, &lines) != VRX_OK)
    return 0;
  return line_bytes * lines;
}

void StatusFigures::update() {
  const bool live = m_panel.live();
  const bool started = live && !m_was_live;
  m_was_live = live;
  if (!live) return;
  const AcquisitionFigures figures = m_panel.figures();
  const auto now = std::chrono::steady_clock::now();
  // The rate counts only frames acquired from the first look on; a new Live (seen, or only
  // noticed by its count starting again) starts it afresh.
  if (started || figures.acquired < m_last_acquired) {
    m_frame_bytes = frame_bytes();
    m_last_acquired = figures.acquired;
    m_last_time = now;
  }
  const double seconds = std::chrono::duration<double>(now - m_last_time).count();
  const double rate = seconds > 0 ? static_cast<double>(figures.acquired - m_last_acquired) *
                                        m_frame_bytes / seconds / 1e6
                                  : 0;
  m_last_acquired = figures.acquired;
  m_last_time = now;
  m_main_window.set_figures(figures_text(figures, rate));
}

}  // namespace vrc_panel
