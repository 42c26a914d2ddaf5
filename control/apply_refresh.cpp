// The fan-out of apply and refresh to the pages, in their fixed orders.
#include "control/pages/display_page.h"
#include "control/vrx_ctrl.h"
#include "control/vrx_messages.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

using vrc::control::ApplyFlag;
using vrc::control::ApplyStep;
using vrc::control::PageSlot;

// A page takes a message only when it exists, has its window and has nothing of the panel's
// waiting already.
bool CVrxCtrl::PageReady(const CVrxPage *page) const {
  return page && vrc::control::may_post(*page);
}

// Apply always leaves the engine idle: a running capture is aborted first.
void CVrxCtrl::AbortForApply() {
  if (!m_acq) return;
  if (VRX_Acquire(m_camera_handle, VRX_ACQ_ABORT, nullptr) != VRX_OK) return;
  m_live = 0;
  if (m_display) m_display->SetSequenceCollected(0);
  UpdateView();
}

CVrxCtrl::LRESULT CVrxCtrl::OnApply() {
  AbortForApply();
  vrc::window::desktop().sleep_ms(100);
  for (const ApplyStep &step : vrc::control::kApplyOrder) {
    if (!(step.flag == ApplyFlag::Acq ? m_acq : m_comms)) continue;
    CVrxPage *page = GetPage(step.slot);
    if (!PageReady(page)) continue;
    if (page->send(vrc::control::kMsgApply) != 0) {
      m_apply = 0;
      UpdateView();
      return -1;
    }
  }
  VRX_ParameterSet(m_camera_handle, vrx::ParamApplySettings, nullptr);
  if (m_acq && m_display) m_display->SetUpDisplay();
  PostRefresh();
  m_apply = 0;
  UpdateView();
  return 0;
}

void CVrxCtrl::PostRefresh() {
  for (PageSlot slot : vrc::control::kRefreshOrder) {
    CVrxPage *page = GetPage(slot);
    if (PageReady(page)) page->post(vrc::control::kMsgRefresh);
  }
}
