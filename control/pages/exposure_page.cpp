// The Exposure page: its dialog, its bound parameters in the order they reach the board, its
// enable rules and the Expose button.
#include "control/pages/exposure_page.h"

#include "control/pages/exposure_choices.h"
#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"

using vrc::pages::bound_combo;
using vrc::pages::bound_unsigned;
using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int { IdTriggerSource = 17061, IdTimer1 = 17298, IdTimer2 = 17299, IdExpose = 17374 };

constexpr const char *kTriggerGroup = "Exposure Trigger";
constexpr const char *kTimersGroup = "Exposure Timers";

constexpr ControlTemplate kControls[] = {
    {IDC_STATIC, ControlKind::Label, "Trigger Source", kTriggerGroup},
    {IdTriggerSource, ControlKind::Combo, "", kTriggerGroup},
    {IDC_STATIC, ControlKind::Label, "Timer 1", kTimersGroup},
    {IdTimer1, ControlKind::Edit, "", kTimersGroup},
    {IDC_STATIC, ControlKind::Label, "Timer 2", kTimersGroup},
    {IdTimer2, ControlKind::Edit, "", kTimersGroup},
    {IdExpose, ControlKind::Button, "Expose", ""},
};

constexpr vrc::window::DialogTemplate kDialog{16171, "Exposure", kControls};

// In the order of apply and refresh.
constexpr vrc::pages::BoundControl kBound[] = {
    bound_combo(IdTriggerSource, vrx::ParamExpTrigSource, vrc::pages::kExpTrigSourceChoices),
    bound_unsigned(IdTimer1, vrx::ParamExpTimer1, 1),
    bound_unsigned(IdTimer2, vrx::ParamExpTimer2, 1),
};

}  // namespace

CVrxPageExposure::CVrxPageExposure() : CVrxPageExposure(nullptr) {}

CVrxPageExposure::CVrxPageExposure(CVrxCtrl *owner) : BoundPage(owner, kDialog, kBound) {}

int CVrxPageExposure::UpdateControls() {
  if (!has_window()) return -1;
  const bool live = IsLive();
  for (int id : {IdTriggerSource, IdTimer1, IdTimer2}) EnableItem(id, live);
  EnableItem(IdExpose, live && SelectedData(IdTriggerSource) == vrx::ExpTrigSoftware);
  return 0;
}

void CVrxPageExposure::OnExpose() { VRX_Acquire(handle(), vrx::AcqCmdSoftwareTrigger, nullptr); }

void CVrxPageExposure::on_command(int id, uint16_t code) {
  if (id == IdExpose && code == vrc::window::BN_CLICKED) OnExpose();
  BoundPage::on_command(id, code);
}
