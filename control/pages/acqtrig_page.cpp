// The Acq Trig page: its dialog, its bound parameters in the order they reach the board, its
// enable rules and the chain status.
#include "control/pages/acqtrig_page.h"

#include "control/pages/acqtrig_choices.h"
#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"

using vrc::pages::bound_combo;
using vrc::pages::bound_flag;
using vrc::pages::bound_number;
using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int {
  IdSource = 17060,
  IdMode = 17062,
  IdDelayType = 17063,
  IdCountSource = 17065,
  IdChannelSync = 17066,
  IdAlign = 17067,
  IdGate = 17068,
  IdDelay = 17069,
  IdPeriod = 17070,
  IdChainEnable = 17071,
  IdChainStatus = 17072,
  IdPeriodUnit = 17073
};

constexpr const char *kTriggerGroup = "Acquisition Trigger";
constexpr const char *kTimerGroup = "Internal Timer";
constexpr const char *kCounterGroup = "Event Counter";
constexpr const char *kChainGroup = "Chain";
constexpr const char *kSyncGroup = "Channel Sync";

constexpr ControlTemplate kControls[] = {
    {IDC_STATIC, ControlKind::Label, "Source", kTriggerGroup},
    {IdSource, ControlKind::Combo, "", kTriggerGroup},
    {IDC_STATIC, ControlKind::Label, "Mode", kTriggerGroup},
    {IdMode, ControlKind::Combo, "", kTriggerGroup},
    {IDC_STATIC, ControlKind::Label, "Alignment", kTriggerGroup},
    {IdAlign, ControlKind::Combo, "", kTriggerGroup},
    {IDC_STATIC, ControlKind::Label, "Delay by", kTriggerGroup},
    {IdDelayType, ControlKind::Combo, "", kTriggerGroup},
    {IdDelay, ControlKind::Edit, "", kTriggerGroup},
    {IDC_STATIC, ControlKind::Label, "Period", kTimerGroup},
    {IdPeriod, ControlKind::Edit, "", kTimerGroup},
    {IdPeriodUnit, ControlKind::Combo, "", kTimerGroup},
    {IDC_STATIC, ControlKind::Label, "Source", kCounterGroup},
    {IdCountSource, ControlKind::Combo, "", kCounterGroup},
    {IDC_STATIC, ControlKind::Label, "Gate", kCounterGroup},
    {IdGate, ControlKind::Combo, "", kCounterGroup},
    {IdChainEnable, ControlKind::Check, "Chain Enable", kChainGroup},
    {IDC_STATIC, ControlKind::Label, "Chain Status", kChainGroup},
    {IdChainStatus, ControlKind::Static, "", kChainGroup},
    {IDC_STATIC, ControlKind::Label, "Mode", kSyncGroup},
    {IdChannelSync, ControlKind::Combo, "", kSyncGroup},
};

constexpr vrc::window::DialogTemplate kDialog{16162, "Acq Trig", kControls};

namespace pages = vrc::pages;

// In the order of apply and refresh: each amount goes to the board before its unit.
constexpr pages::BoundControl kBound[] = {
    bound_combo(IdSource, vrx::ParamAcqTrigSource, pages::kAcqTrigSourceChoices),
    bound_combo(IdMode, vrx::ParamAcqTrigMode, pages::kAcqTrigModeChoices),
    bound_combo(IdAlign, vrx::ParamAcqTrigAlign, pages::kAcqTrigAlignChoices, 1),
    bound_number(IdDelay, vrx::ParamAcqTrigDelay, 1),
    bound_combo(IdDelayType, vrx::ParamAcqTrigDelayType, pages::kAcqTrigDelayTypeChoices),
    bound_number(IdPeriod, vrx::ParamTimerPeriod, 1),
    bound_combo(IdPeriodUnit, vrx::ParamTimerPeriodUnit, pages::kTimerPeriodUnitChoices),
    bound_combo(IdCountSource, vrx::ParamEventCountSource, pages::kEventCountSourceChoices, 1),
    bound_combo(IdGate, vrx::ParamEventGate, pages::kEventGateChoices, 1),
    bound_flag(IdChainEnable, vrx::ParamChainEnable, vrx::FlagOn, vrx::FlagOff),
    bound_combo(IdChannelSync, vrx::ParamChannelSync, pages::kChannelSyncChoices),
};

}  // namespace

CVrxPageAcqtrig::CVrxPageAcqtrig() : CVrxPageAcqtrig(nullptr) {}

CVrxPageAcqtrig::CVrxPageAcqtrig(CVrxCtrl *owner) : BoundPage(owner, kDialog, kBound) {}

int CVrxPageAcqtrig::UpdateControls() {
  if (!has_window()) return -1;
  const bool live = IsLive();
  for (int id :
       {IdSource, IdMode, IdPeriodUnit, IdCountSource, IdGate, IdChainEnable, IdChannelSync})
    EnableItem(id, live);
  const bool triggered = live && Value(IdMode) != 0;
  EnableItem(IdAlign, triggered);
  EnableItem(IdDelayType, triggered);
  EnableItem(IdDelay, triggered && Value(IdDelayType) != 0);
  EnableItem(IdPeriod, live && SelectedData(IdPeriodUnit) != vrx::TimerUnitDisabled);

  // The status word's read status is not checked: a failed read shows a slave.
  const char *chain = "";
  if (live) {
    uint32_t status = 0;
    VRX_ParameterGet(handle(), vrx::ParamBoardStatusWord, &status);
    chain = (status & vrx::StatusChainMaster) ? " Master" : " Slave ";
  }
  if (auto *text = child(IdChainStatus)) text->set_text(chain);
  return 0;
}
