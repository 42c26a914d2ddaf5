// The PoCL page: its dialog, detection, the manual buttons with their write orders, and the
// refresh of the two output lines.
#include "control/pages/pocl_page.h"

#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int {
  IdDetect = 17380,
  IdForcePowerOff = 17381,
  IdForce12V = 17382,
  IdForceGnd = 17383,
  IdStatusText = 17384,
  Id12V = 17385,
  IdGnd = 17386
};

constexpr const char *kStatusGroup = "PoCL Status";
constexpr const char *kManualGroup = "Manual Control";

constexpr ControlTemplate kControls[] = {
    {IdDetect, ControlKind::Button, "PoCL Detect", kStatusGroup},
    {IdStatusText, ControlKind::Static, "", kStatusGroup},
    {IdForcePowerOff, ControlKind::Button, "Force Power Off", kManualGroup},
    {IdForce12V, ControlKind::Button, "Force 12V Power On", kManualGroup},
    {IdForceGnd, ControlKind::Button, "Force GND Out", kManualGroup},
    {IDC_STATIC, ControlKind::Label, "12V", kManualGroup},
    {Id12V, ControlKind::Edit, "", kManualGroup},
    {IDC_STATIC, ControlKind::Label, "GND", kManualGroup},
    {IdGnd, ControlKind::Edit, "", kManualGroup},
};

constexpr vrc::window::DialogTemplate kDialog{16172, "PoCL", kControls};

constexpr uint32_t kSet = vrx::PortOpSet, kClear = vrx::PortOpClear;
constexpr uint32_t k12V = vrx::PowerLine12V, kGnd = vrx::PowerLineGround;
constexpr uint32_t kSenseOn = 1, kSenseOff = 2;
constexpr uint32_t kDetectionWaitMs = 2000;

}  // namespace

CVrcPagePocl::CVrcPagePocl() : CVrcPagePocl(nullptr) {}

CVrcPagePocl::CVrcPagePocl(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {}

bool CVrcPagePocl::IsLive() const {
  const CVrxCtrl *ctrl = GetCtrl();
  return ctrl && ctrl->GetInit() && ctrl->GetAcq();
}

void CVrcPagePocl::do_data_exchange(vrc::window::DataExchange &exchange) {
  exchange.number(Id12V, m_power_12v);
  exchange.number(IdGnd, m_power_gnd);
}

int CVrcPagePocl::UpdateControls() {
  if (!has_window()) return -1;
  const bool live = IsLive();
  const char *text = !live ? "" : (m_status & 1) ? "PoCL" : "Non-PoCL";
  if (auto *status = child(IdStatusText)) status->set_text(text);
  for (int id : {IdDetect, IdForcePowerOff, IdForce12V, IdForceGnd}) EnableItem(id, live);
  return 0;
}

// Reads each output line (state 0 when set, 1 when clear) and shows 1 for a line that is on.
CVrxPage::LRESULT CVrcPagePocl::OnRefreshMessage() {
  if (!IsLive()) {
    UpdateControls();
    return -1;
  }
  GetCtrl()->GetCameraLink();
  int32_t state_12v = 0, state_gnd = 0;
  if (SignalSourceToIndex(vrx::ParamPowerOutput, k12V, state_12v) != 0 ||
      SignalSourceToIndex(vrx::ParamPowerOutput, kGnd, state_gnd) != 0)
    return -1;
  m_power_12v = 1 - state_12v;
  m_power_gnd = 1 - state_gnd;
  update_data(false);
  UpdateControls();
  return 0;
}

CVrxPage::LRESULT CVrcPagePocl::OnApplyMessage() {
  if (!IsLive()) {
    UpdateControls();
    return -1;
  }
  GetCtrl()->GetCameraLink();
  GetCtrl()->GetCameraHandle();
  update_data(false);
  UpdateControls();
  return 0;
}

uint32_t CVrcPagePocl::WriteSequence(std::initializer_list<ParameterWrite> writes) {
  for (const ParameterWrite &write : writes) {
    uint32_t value = write.value;
    if (const uint32_t status = VRX_ParameterSet(handle(), write.parameter, &value)) return status;
  }
  return VRX_OK;
}

// Power off, sense the cable for a while, then power the camera: the 12V supply for a PoCL
// camera, the ground output for any other.
uint32_t CVrcPagePocl::OnDetect() {
  if (!IsLive()) {
    UpdateControls();
    return VRX_OK;
  }
  if (const uint32_t status = WriteSequence({{vrx::ParamPowerOutputSet, kClear | k12V | kGnd},
                                             {vrx::ParamPoclSenseEnable, 1},
                                             {vrx::ParamPoclSense, kSenseOn}}))
    return status;
  {
    vrc::window::WaitCursor wait;
    vrc::window::desktop().sleep_ms(kDetectionWaitMs);
  }
  if (const uint32_t status = VRX_ParameterGet(handle(), vrx::ParamPoclStatus, &m_status))
    return status;
  const uint32_t power = (m_status & 1) ? kSet | k12V : kSet | kGnd;
  if (const uint32_t status =
          WriteSequence({{vrx::ParamPoclSense, kSenseOff}, {vrx::ParamPowerOutputSet, power}}))
    return status;
  OnRefreshMessage();
  return VRX_OK;
}

uint32_t CVrcPagePocl::WriteAndRefresh(std::initializer_list<ParameterWrite> writes) {
  if (!IsLive()) return VRX_OK;
  if (const uint32_t status = WriteSequence(writes)) return status;
  OnRefreshMessage();
  return VRX_OK;
}

// The manual buttons always clear before they set.
uint32_t CVrcPagePocl::OnForcePowerOff() {
  return WriteAndRefresh(
      {{vrx::ParamPowerOutputSet, kClear | k12V | kGnd}, {vrx::ParamPoclSense, kSenseOff}});
}

uint32_t CVrcPagePocl::OnForce12VPowerOn() {
  return WriteAndRefresh({{vrx::ParamPowerOutputSet, kClear | kGnd},
                          {vrx::ParamPoclSense, kSenseOff},
                          {vrx::ParamPowerOutputSet, kSet | k12V}});
}

uint32_t CVrcPagePocl::OnForceGndOut() {
  return WriteAndRefresh({{vrx::ParamPowerOutputSet, kClear | k12V},
                          {vrx::ParamPoclSense, kSenseOff},
                          {vrx::ParamPowerOutputSet, kSet | kGnd}});
}

void CVrcPagePocl::on_command(int id, uint16_t code) {
  if (code != vrc::window::BN_CLICKED) return;
  switch (id) {
    case IdDetect: OnDetect(); break;
    case IdForcePowerOff: OnForcePowerOff(); break;
    case IdForce12V: OnForce12VPowerOn(); break;
    case IdForceGnd: OnForceGndOut(); break;
    default: break;
  }
}
