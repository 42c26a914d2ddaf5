// The Camera page: its dialog, its bound parameters in the order they reach the board, and its
// enable rules.
#include "control/pages/camera_page.h"

#include "control/pages/camera_choices.h"
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
  IdCameraType = 17100,
  IdClockPolarity = 17101,
  IdDepth = 17102,
  IdColours = 17103,
  IdActiveXOffset = 17104,
  IdActiveYOffset = 17105,
  IdActiveXLength = 17106,
  IdActiveYLength = 17107,
  IdHTapNumber = 17108,
  IdHTapDirection = 17109,
  IdHTapType = 17110,
  IdHTapOrder = 17111,
  IdVTapDirection = 17112,
  IdVTapOrder = 17113,
  IdVTapNumber = 17114,
  IdVTapType = 17115,
  IdDataValid = 17116,
  IdInterlaced = 17117
};

constexpr const char *kTypeGroup = "Camera Type";
constexpr const char *kClockGroup = "Clock Polarity";
constexpr const char *kImageGroup = "Image";
constexpr const char *kActiveGroup = "Active Region";
constexpr const char *kHTapGroup = "Horizontal Taps";
constexpr const char *kVTapGroup = "Vertical Taps";

constexpr ControlTemplate kControls[] = {
    {IdCameraType, ControlKind::Combo, "", kTypeGroup},
    {IdClockPolarity, ControlKind::Combo, "", kClockGroup},
    {IDC_STATIC, ControlKind::Label, "Depth", kImageGroup},
    {IdDepth, ControlKind::Combo, "", kImageGroup},
    {IDC_STATIC, ControlKind::Label, "Colours", kImageGroup},
    {IdColours, ControlKind::Combo, "", kImageGroup},
    {IDC_STATIC, ControlKind::Label, "X Offset", kActiveGroup},
    {IdActiveXOffset, ControlKind::Edit, "", kActiveGroup},
    {IDC_STATIC, ControlKind::Label, "Y Offset", kActiveGroup},
    {IdActiveYOffset, ControlKind::Edit, "", kActiveGroup},
    {IDC_STATIC, ControlKind::Label, "X Length", kActiveGroup},
    {IdActiveXLength, ControlKind::Edit, "", kActiveGroup},
    {IDC_STATIC, ControlKind::Label, "Y Length", kActiveGroup},
    {IdActiveYLength, ControlKind::Edit, "", kActiveGroup},
    {IDC_STATIC, ControlKind::Label, "Number", kHTapGroup},
    {IdHTapNumber, ControlKind::Combo, "", kHTapGroup},
    {IDC_STATIC, ControlKind::Label, "Direction", kHTapGroup},
    {IdHTapDirection, ControlKind::Combo, "", kHTapGroup},
    {IDC_STATIC, ControlKind::Label, "Type", kHTapGroup},
    {IdHTapType, ControlKind::Combo, "", kHTapGroup},
    {IDC_STATIC, ControlKind::Label, "Order", kHTapGroup},
    {IdHTapOrder, ControlKind::Combo, "", kHTapGroup},
    {IDC_STATIC, ControlKind::Label, "Number", kVTapGroup},
    {IdVTapNumber, ControlKind::Combo, "", kVTapGroup},
    {IDC_STATIC, ControlKind::Label, "Direction", kVTapGroup},
    {IdVTapDirection, ControlKind::Combo, "", kVTapGroup},
    {IDC_STATIC, ControlKind::Label, "Type", kVTapGroup},
    {IdVTapType, ControlKind::Combo, "", kVTapGroup},
    {IDC_STATIC, ControlKind::Label, "Order", kVTapGroup},
    {IdVTapOrder, ControlKind::Combo, "", kVTapGroup},
    {IdDataValid, ControlKind::Check, "Data Valid Enable", ""},
    {IdInterlaced, ControlKind::Check, "Interlaced", ""},
};

constexpr vrc::window::DialogTemplate kDialog{16164, "Camera", kControls};

namespace pages = vrc::pages;

// In the order of apply and refresh.
constexpr pages::BoundControl kBound[] = {
    bound_combo(IdCameraType, vrx::ParamCameraType, pages::kCameraTypeChoices, 2),
    bound_combo(IdClockPolarity, vrx::ParamClockPolarity, pages::kClockPolarityChoices),
    bound_combo(IdDepth, vrx::ParamCameraDepth, pages::kCameraDepthChoices),
    bound_combo(IdColours, vrx::ParamCameraColour, pages::kCameraColourChoices),
    bound_number(IdActiveXOffset, vrx::ParamActiveXOffset, 0),
    bound_number(IdActiveYOffset, vrx::ParamActiveYOffset, 0),
    bound_number(IdActiveXLength, vrx::ParamActiveXLength, 640),
    bound_number(IdActiveYLength, vrx::ParamActiveYLength, 480),
    bound_combo(IdHTapNumber, vrx::ParamHTapNumber, pages::kHTapNumberChoices),
    bound_combo(IdHTapDirection, vrx::ParamHTapDirection, pages::kHTapDirectionChoices),
    bound_combo(IdHTapType, vrx::ParamHTapType, pages::kHTapTypeChoices),
    bound_combo(IdHTapOrder, vrx::ParamHTapOrder, pages::kHTapOrderChoices),
    bound_combo(IdVTapNumber, vrx::ParamVTapNumber, pages::kVTapNumberChoices),
    bound_combo(IdVTapDirection, vrx::ParamVTapDirection, pages::kVTapDirectionChoices),
    bound_combo(IdVTapType, vrx::ParamVTapType, pages::kVTapTypeChoices),
    bound_combo(IdVTapOrder, vrx::ParamVTapOrder, pages::kVTapOrderChoices),
    bound_flag(IdDataValid, vrx::ParamDataValidEnable, vrx::FlagOn, vrx::FlagOff),
    bound_flag(IdInterlaced, vrx::ParamCameraInterlaced, vrx::InterlacedOn, vrx::InterlacedOff),
};

}  // namespace

CVrxPageCamera::CVrxPageCamera() : CVrxPageCamera(nullptr) {}

CVrxPageCamera::CVrxPageCamera(CVrxCtrl *owner) : BoundPage(owner, kDialog, kBound) {}

int CVrxPageCamera::UpdateControls() {
  if (!has_window()) return -1;
  const CVrxCtrl *ctrl = GetCtrl();
  const bool live = IsLive();
  const bool not_cxp = live && ctrl->GetCxpTabHidden() == 1;
  for (int id : {IdCameraType, IdDepth, IdColours, IdActiveXOffset, IdActiveYOffset,
                 IdActiveXLength, IdActiveYLength, IdInterlaced})
    EnableItem(id, live);
  for (int id : {IdClockPolarity, IdHTapNumber, IdHTapDirection, IdHTapType, IdHTapOrder,
                 IdVTapDirection, IdVTapOrder, IdVTapNumber, IdVTapType, IdDataValid})
    EnableItem(id, not_cxp);
  return 0;
}
