// The acquisition engine's control side: the SDK's event callback, starting capture, the
// buttons and the reactions to FIFO overflow and the other board events.
#include "control/pages/configure_page.h"
#include "control/pages/display_page.h"
#include "control/pages/intrpt_page.h"
#include "control/vrx_ctrl.h"
#include "control/vrx_messages.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

namespace msg = vrc::control;

// Runs on the SDK's event thread: counts buffers, takes the semaphore without waiting and posts
// messages; it never touches the pages or the display.
void CVrxCtrl::CtrlEventCallback(uint32_t handle, uint32_t event_mask, void *context) {
  auto *ctrl = static_cast<CVrxCtrl *>(context);
  if (!ctrl) return;
  if (event_mask & VRX_EVENT_BUFFER_READY) {
    ctrl->m_pending_buffers.fetch_add(1);
    ctrl->m_acquired.fetch_add(1, std::memory_order_relaxed);
    if (!ctrl->m_event_semaphore) {
      ctrl->ErrHandler("VrxCtrl::CtrlEventCallback", VRC_OK, "Event semaphore is NULL");
      return;
    }
    // A paint that cannot be posted (no window, or another message of the panel waiting, which
    // is not a paint: a paint would hold the semaphore itself) gives the semaphore back, or
    // nothing would ever release it.
    if (ctrl->m_event_semaphore->try_take() && !(ctrl->m_has_window.load() && ctrl->PostPaint()))
      ctrl->m_event_semaphore->release();
  }
  if (event_mask & VRX_EVENT_FIFO_OVERFLOW) {
    VRX_Acquire(handle, VRX_ACQ_ABORT, nullptr);
    ctrl->post(msg::kMsgFifoOverflow);
  }
  if (event_mask & VRX_EVENT_ACQ_TRIG_END) ctrl->post(msg::kMsgAcqTrigEnd);
  if (event_mask & VRX_EVENT_TEST) ctrl->post(msg::kMsgInterruptTest);
  if (event_mask & VRX_EVENT_TIMEOUT) ctrl->post(msg::kMsgInterruptTimeout);
  if (event_mask & VRX_EVENT_FRAME_LOST) ctrl->post(msg::kMsgFrameLost);
}

// Event thread: posts WM_USER+12 under the coalescing rule, keeping count of the paints waiting.
bool CVrxCtrl::PostPaint() {
  if (has_queued(msg::kCoalesceFirst, msg::kCoalesceLast)) return false;
  const uint32_t waiting = m_paints_queued.fetch_add(1) + 1;
  uint32_t most = m_most_paints_queued.load();
  while (waiting > most && !m_most_paints_queued.compare_exchange_weak(most, waiting)) {
  }
  post(msg::kMsgPaint);
  return true;
}

void CVrxCtrl::Acquire() {
  uint32_t mode = m_live == 1 ? vrx::AcqModeContinuous : vrx::AcqModeSingle;
  if (VRX_ParameterSet(m_camera_handle, vrx::ParamAcqMode, &mode) != VRX_OK) return;
  uint32_t channels = 0xFFFFFF;  // three bytes of 0xFF
  if (VRX_ParameterSet(m_camera_handle, vrx::ParamAcqEnableMask, &channels) != VRX_OK) {
    if (m_configure) msg::post_coalesced(*m_configure, msg::kMsgReleaseBoard);
    return;
  }
  m_pending_buffers = 0;
  if (VRX_Acquire(m_camera_handle, VRX_ACQ_START, reinterpret_cast<void *>(m_event_callback)) !=
      VRX_OK) {
    m_live = 0;
    return;
  }
  UpdateView();
}

void CVrxCtrl::NotifyDisplayPage() {
  if (m_display) msg::post_coalesced(*m_display, msg::kMsgCaptureDone);
}

void CVrxCtrl::OnLive() { StartCapture(1); }

void CVrxCtrl::OnSingle() { StartCapture(0); }

// Live and Single Shot: apply the pages' settings, then start capturing continuously or once.
void CVrxCtrl::StartCapture(int live) {
  OnApply();
  m_live = live;
  if (m_display) m_display->SetPlaying(0);
  ResetCounters();
  Acquire();
  PostRefresh();
}

// Freeze and Abort: stop the capture, and in either case tell the Display page it has ended.
void CVrxCtrl::StopCapture(uint32_t operation) {
  if (VRX_Acquire(m_camera_handle, operation, nullptr) == VRX_OK) {
    m_live = 0;
    if (m_display) {
      m_display->SetPlaying(0);
      m_display->SetSequenceCollected(0);
    }
    UpdateView();
  }
  vrc::window::desktop().sleep_ms(100);
  NotifyDisplayPage();
}

void CVrxCtrl::OnFreeze() { StopCapture(VRX_ACQ_FREEZE); }

void CVrxCtrl::OnAbort() { StopCapture(VRX_ACQ_ABORT); }

void CVrxCtrl::OnRefreshButton() { PostRefresh(); }

CVrxCtrl::LRESULT CVrxCtrl::OnRefreshMessage() {
  PostRefresh();
  return 0;
}

// The Help button deliberately shows no help.
void CVrxCtrl::OnHelp() { UpdateView(); }

// The callback has aborted capture already; a live capture starts again.
CVrxCtrl::LRESULT CVrxCtrl::OnFifoOverflow() {
  if (m_intrpt) {
    m_intrpt->CountFifoOverflow();
    if (PageReady(m_intrpt)) m_intrpt->send(msg::kMsgRefresh);
  }
  if (m_live == 1 && VRX_Acquire(m_camera_handle, VRX_ACQ_RESTART,
                                 reinterpret_cast<void *>(m_event_callback)) != VRX_OK)
    m_live = 0;
  return 0;
}

CVrxCtrl::LRESULT CVrxCtrl::OnInterruptFrameLost() {
  if (m_intrpt) m_intrpt->CountFrameLost();
  return 0;
}

// The interrupt boxes show the handler's name as text and the event as caption, in that order.
CVrxCtrl::LRESULT CVrxCtrl::OnInterruptTest() {
  vrc::window::desktop().message_box(this, "VrxCtrl::OnInterruptTest", "Test Interrupt Received",
                                     vrc::window::MB_OK);
  return 0;
}

CVrxCtrl::LRESULT CVrxCtrl::OnInterruptTimeout() {
  vrc::window::desktop().message_box(this, "VrxCtrl::OnInterruptTimeout",
                                     "Timeout Interrupt Received", vrc::window::MB_OK);
  return 0;
}

CVrxCtrl::LRESULT CVrxCtrl::OnInterruptAcqTrigEnd() {
  vrc::window::desktop().message_box(this, "VrxCtrl::OnInterruptAcqTrigEnd",
                                     "AcqTrigEnd Interrupt Received", vrc::window::MB_OK);
  return 0;
}
