// The ROI page: its dialog, its bound parameters in the order they reach the board, and its
// enable rules.
#include "control/pages/roi_page.h"

#include "control/pages/roi_choices.h"
#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"

using vrc::pages::bound_combo;
using vrc::pages::bound_number;
using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int {
  IdSrcXOffset = 17080,
  IdSrcYOffset = 17081,
  IdSrcXLength = 17082,
  IdSrcYLength = 17083,
  IdSubsamplePixel = 17084,
  IdSubsampleLine = 17085,
  IdDstXOffset = 17086,
  IdDstYOffset = 17087,
  IdDstYLength = 17088,
  IdDstXLength = 17089,
  IdInterlaceMode = 17090,
  IdBinPixel = 17091,
  IdBinLine = 17092
};

constexpr const char *kSourceGroup = "Source ROI";
constexpr const char *kDestinationGroup = "Destination Buffer";
constexpr const char *kSubsampleGroup = "Subsampling Ratio";
constexpr const char *kBinningGroup = "Camera Binning";

constexpr ControlTemplate kControls[] = {
    {IDC_STATIC, ControlKind::Label, "X Offset", kSourceGroup},
    {IdSrcXOffset, ControlKind::Edit, "", kSourceGroup},
    {IDC_STATIC, ControlKind::Label, "Y Offset", kSourceGroup},
    {IdSrcYOffset, ControlKind::Edit, "", kSourceGroup},
    {IDC_STATIC, ControlKind::Label, "X Length", kSourceGroup},
    {IdSrcXLength, ControlKind::Edit, "", kSourceGroup},
    {IDC_STATIC, ControlKind::Label, "Y Length", kSourceGroup},
    {IdSrcYLength, ControlKind::Edit, "", kSourceGroup},
    {IDC_STATIC, ControlKind::Label, "X Offset", kDestinationGroup},
    {IdDstXOffset, ControlKind::Edit, "", kDestinationGroup},
    {IDC_STATIC, ControlKind::Label, "Y Offset", kDestinationGroup},
    {IdDstYOffset, ControlKind::Edit, "", kDestinationGroup},
    {IDC_STATIC, ControlKind::Label, "X Length", kDestinationGroup},
    {IdDstXLength, ControlKind::Edit, "", kDestinationGroup},
    {IDC_STATIC, ControlKind::Label, "Y Length", kDestinationGroup},
    {IdDstYLength, ControlKind::Edit, "", kDestinationGroup},
    {IDC_STATIC, ControlKind::Label, "Pixel", kSubsampleGroup},
    {IdSubsamplePixel, ControlKind::Combo, "", kSubsampleGroup},
    {IDC_STATIC, ControlKind::Label, "Line", kSubsampleGroup},
    {IdSubsampleLine, ControlKind::Combo, "", kSubsampleGroup},
    {IDC_STATIC, ControlKind::Label, "Pixel", kBinningGroup},
    {IdBinPixel, ControlKind::Edit, "", kBinningGroup},
    {IDC_STATIC, ControlKind::Label, "Line", kBinningGroup},
    {IdBinLine, ControlKind::Edit, "", kBinningGroup},
    {IDC_STATIC, ControlKind::Label, "Interlaced acquisition type", ""},
    {IdInterlaceMode, ControlKind::Combo, "", ""},
};

constexpr vrc::window::DialogTemplate kDialog{16163, "ROI", kControls};

namespace pages = vrc::pages;

// Both subsampling selections start as the value of "x 1" rather than an index, so neither combo
// shows a selection until the first refresh. The line ratio is written with the same 0xC00207xx
// values as the pixel ratio.
constexpr auto kSubsampleStart = static_cast<int32_t>(0xC0020701u);

// In the order of apply and refresh.
constexpr pages::BoundControl kBound[] = {
    bound_number(IdSrcXOffset, vrx::ParamSrcXOffset, 0),
    bound_number(IdSrcYOffset, vrx::ParamSrcYOffset, 0),
    bound_number(IdSrcXLength, vrx::ParamSrcXLength, 640),
    bound_number(IdSrcYLength, vrx::ParamSrcYLength, 480),
    bound_combo(IdSubsamplePixel, vrx::ParamSubsamplePixel, pages::kSubsampleChoices,
                kSubsampleStart),
    bound_combo(IdSubsampleLine, vrx::ParamSubsampleLine, pages::kSubsampleChoices,
                kSubsampleStart),
    bound_number(IdBinPixel, vrx::ParamBinPixel, 1),
    bound_number(IdBinLine, vrx::ParamBinLine, 1),
    bound_number(IdDstXOffset, vrx::ParamDstXOffset, 0),
    bound_number(IdDstYOffset, vrx::ParamDstYOffset, 0),
    bound_number(IdDstXLength, vrx::ParamDstXLength, 640),
    bound_number(IdDstYLength, vrx::ParamDstYLength, 480),
    bound_combo(IdInterlaceMode, vrx::ParamInterlaceMode, pages::kInterlaceModeChoices),
};

}  // namespace

CVrxPageRoi::CVrxPageRoi() : CVrxPageRoi(nullptr) {}

CVrxPageRoi::CVrxPageRoi(CVrxCtrl *owner) : BoundPage(owner, kDialog, kBound) {}

int CVrxPageRoi::UpdateControls() {
  if (!has_window()) return -1;
  const CVrxCtrl *ctrl = GetCtrl();
  const bool live = IsLive();
  for (int id : {IdSrcXOffset, IdSrcYOffset, IdSrcXLength, IdSrcYLength, IdDstXOffset, IdDstYOffset,
                 IdDstYLength, IdDstXLength})
    EnableItem(id, live);
  const bool not_cxp = live && ctrl->GetCxpTabHidden() == 1;
  for (int id : {IdSubsamplePixel, IdSubsampleLine, IdBinPixel, IdBinLine}) EnableItem(id, not_cxp);
  EnableItem(IdInterlaceMode, live && ctrl->GetInterlaced() != 0);
  return 0;
}
