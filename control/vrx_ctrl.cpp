// CVrxCtrl: construction with its pages, destruction in its fixed order, error reporting and the
// accessors that read the pages.
#include "control/vrx_ctrl.h"

#include <cerrno>
#include <cstdio>

#include "control/pages/camera_choices.h"
#include "control/pages/configure_page.h"
#include "control/pages/display_page.h"
#include "control/pages/intrpt_page.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

using vrc::control::PageSlot;
using vrc::control::PageSlotInfo;

namespace {

// Every page but Test, PoCL and Register.
constexpr uint32_t kDefaultPages = 20223;

}  // namespace

CVrxCtrl::CVrxCtrl(CWnd *parent, VRC_ERROR_CALLBACK callback)
    : CVrxCtrl(parent, kDefaultPages, callback) {}

CVrxCtrl::CVrxCtrl(CWnd *parent, uint32_t pages, VRC_ERROR_CALLBACK callback)
    : CVrxSheet("Vireo Control", parent), m_error_callback(callback), m_parent(parent) {
  DoConstruct(pages);
}

void CVrxCtrl::DoConstruct(uint32_t pages) {
  m_acq = m_comms = 1;
  m_cxp_hidden = 1;
  m_camera_handle = 0;
  m_quit = false;
  m_init = m_live = m_apply = m_camera_link = 0;
  m_acqtrig_hidden = m_comms_hidden = m_exposure_hidden = m_intrpt_hidden = m_ioports_hidden =
      m_lut_hidden = 0;
  m_pre_tabs_visible = 0xC0010000;

  vrc::window::Desktop &desktop = vrc::window::desktop();
  m_frequency = desktop.performance_frequency();
  if (m_frequency == 0) {
    ReportTimerFailure("VrxCtrl::DoConstruct", "QPF");
    return;
  }
  m_start_count = desktop.performance_counter();
  if (m_start_count == 0) {
    ReportTimerFailure("VrxCtrl::DoConstruct", "QPC");
    return;
  }
  m_frame_rate = 10.0f;
  m_frame_counter = 0;
  m_frames_per_update = 10;
  m_event_callback = &CVrxCtrl::CtrlEventCallback;

  for (const PageSlotInfo &info : vrc::control::kTabOrder) {
    if (!(pages & info.bit)) continue;
    std::unique_ptr<CVrxPage> &page = m_pages[vrc::control::index_of(info.slot)];
    page = vrc::control::make_page(info.slot, this);
    // The CoaXPress page waits, hidden, for ShowPages(1).
    if (info.slot != PageSlot::Cxp || !m_cxp_hidden) add_page(page.get());
  }
  m_configure = dynamic_cast<CVrxPageConfigure *>(GetPage(PageSlot::Configure));
  m_display = dynamic_cast<CVrxPageDisplay *>(GetPage(PageSlot::Display));
  m_intrpt = dynamic_cast<CVrcPageIntrpt *>(GetPage(PageSlot::Intrpt));

  m_event_semaphore.reset(new (std::nothrow) vrc::control::EventSemaphore(1));
  if (!m_event_semaphore)
    ErrHandler("VrxCtrl::DoConstruct", VRC_OK, "Failed to create event semaphore");
}

// Acquisition stops first, so that no event reaches a control that is going; then the pages go
// in their fixed order (the Configure page, last, closes a board still open), then the buttons
// with the window.
CVrxCtrl::~CVrxCtrl() {
  if (m_camera_handle != 0 && m_acq) VRX_Acquire(m_camera_handle, VRX_ACQ_ABORT, nullptr);
  for (PageSlot slot : vrc::control::kDestructionOrder) {
    std::unique_ptr<CVrxPage> &page = m_pages[vrc::control::index_of(slot)];
    if (page) remove_page(page.get());
    page.reset();
  }
  m_configure = nullptr;
  m_display = nullptr;
  m_intrpt = nullptr;
  CVrxCtrl::destroy_window();
}

void CVrxCtrl::destroy_window() {
  m_has_window = false;
  m_buttons.fill(nullptr);
  CVrxSheet::destroy_window();
}

void CVrxCtrl::ErrHandler(const char *function, eStat status, const char *message) {
  if (m_error_callback) m_error_callback(function, status, message);
}

// The performance counter reads 0 when it fails, as the frequency does.
void CVrxCtrl::ReportTimerFailure(const char *function, const char *call) {
  char text[64];
  std::snprintf(text, sizeof text, "%s() failed with error %d\n", call, errno);
  ErrHandler(function, VRC_OK, text);
}

void CVrxCtrl::SetApply(int apply) {
  m_apply = apply;
  UpdateView();
}

CVrxPage *CVrxCtrl::GetPage(PageSlot slot) const {
  return m_pages[vrc::control::index_of(slot)].get();
}

vrc::window::Button *CVrxCtrl::GetButton(int id) const {
  return dynamic_cast<vrc::window::Button *>(child(id));
}

VrcAcquisitionCounters CVrxCtrl::GetCounters() const {
  return {m_acquired.load(), m_painted, m_dropped, m_frame_rate, m_most_paints_queued.load()};
}

void CVrxCtrl::ResetCounters() {
  m_acquired = 0;
  m_painted = m_dropped = 0;
  m_most_paints_queued = m_paints_queued.load();
}

void CVrxCtrl::SetUpDisplay() {
  if (m_display) m_display->SetUpDisplay();
}

void CVrxCtrl::StopDisplay() {
  if (m_display) m_display->StopDisplay();
}

// The page-backed accessors answer from a missing page as from a page fresh from construction.
int CVrxCtrl::GetBayer() const { return m_display ? m_display->GetBayer() : 0; }
int CVrxCtrl::GetColourBands() const { return m_display ? m_display->GetColourBands() : 1; }
int CVrxCtrl::GetSeqLength() const { return m_display ? m_display->GetSeqLength() : 2; }

// The camera settings come from the board as the Camera page shows them after a refresh.
int CVrxCtrl::GetInterlaced() const {
  uint32_t value = 0;
  return m_camera_handle != 0 &&
         VRX_ParameterGet(m_camera_handle, vrx::ParamCameraInterlaced, &value) == VRX_OK &&
         value == vrx::InterlacedOn;
}

int CVrxCtrl::GetDepth() const {
  uint32_t bits = 0;
  int index = 0;
  if (m_camera_handle != 0 &&
      VRX_ParameterGet(m_camera_handle, vrx::ParamCameraDepth, &bits) == VRX_OK) {
    const auto rows = vrc::pages::rows_of(vrc::pages::kCameraDepthChoices);
    for (std::size_t i = 0; i < rows.size(); ++i)
      if (rows[i].value == bits) index = static_cast<int>(i);
  }
  return 8 + 2 * index;
}
