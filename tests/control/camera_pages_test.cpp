// The Camera, Acq Trig, Exposure and ROI pages over the simulated board: defaults, apply and
// refresh without a board, every value written in its order and read back, a refusal in the
// middle, a refresh of a value missing from a list, the enable rules and the Expose button.
#include <limits>

#include "control/pages/acqtrig_page.h"
#include "control/pages/camera_page.h"
#include "control/pages/exposure_page.h"
#include "control/pages/roi_page.h"
#include "page_fixture.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using namespace vrx;

enum class Kind { Combo, Edit, Check };

// One bound control: what the page shows after construction, what the user sets, and the value
// the board receives for it.
struct Setting {
  int id;
  Kind kind;
  uint32_t parameter;
  int64_t initial;  // selection index (-1: none), number or check state
  int64_t user;     // selection index, number typed or check state
  uint32_t written;
};

struct PageCase {
  const char *name;
  PageSlot slot;
  std::vector<Setting> settings;  // in the order of apply and refresh
  std::size_t unlisted_at;        // the setting a refresh finds missing from its list
  uint32_t unlisted_value;
};

const PageCase kPages[] = {
    {"Camera",
     PageSlot::Camera,
     {{17100, Kind::Combo, ParamCameraType, 2, 3, 0xC0021904},
      {17101, Kind::Combo, ParamClockPolarity, 0, 1, 0xC0020E02},
      {17102, Kind::Combo, ParamCameraDepth, 0, 2, 12},
      {17103, Kind::Combo, ParamCameraColour, 0, 6, ColourRgb},
      {17104, Kind::Edit, ParamActiveXOffset, 0, 16, 16},
      {17105, Kind::Edit, ParamActiveYOffset, 0, 8, 8},
      {17106, Kind::Edit, ParamActiveXLength, 640, 1024, 1024},
      {17107, Kind::Edit, ParamActiveYLength, 480, 768, 768},
      {17108, Kind::Combo, ParamHTapNumber, 0, 3, 4},
      {17109, Kind::Combo, ParamHTapDirection, 0, 2, 0xC0021303},
      {17110, Kind::Combo, ParamHTapType, 0, 2, 0xC0021404},
      {17111, Kind::Combo, ParamHTapOrder, 0, 1, 0xC0027C02},
      {17114, Kind::Combo, ParamVTapNumber, 0, 2, 4},
      {17112, Kind::Combo, ParamVTapDirection, 0, 1, 0xC0021602},
      {17115, Kind::Combo, ParamVTapType, 0, 1, 0xC0021702},
      {17113, Kind::Combo, ParamVTapOrder, 0, 1, 0xC0027D02},
      {17116, Kind::Check, ParamDataValidEnable, 0, 1, FlagOn},
      {17117, Kind::Check, ParamCameraInterlaced, 0, 1, InterlacedOn}},
     3,
     2},
    {"AcqTrig",
     PageSlot::Acqtrig,
     {{17060, Kind::Combo, ParamAcqTrigSource, 0, 21, 0xC002041C},
      {17062, Kind::Combo, ParamAcqTrigMode, 0, 3, 0xC0020504},
      {17067, Kind::Combo, ParamAcqTrigAlign, 1, 3, 0xC0029004},
      {17069, Kind::Edit, ParamAcqTrigDelay, 1, 250, 250},
      {17063, Kind::Combo, ParamAcqTrigDelayType, 0, 2, 0xC0027803},
      {17070, Kind::Edit, ParamTimerPeriod, 1, 5000, 5000},
      {17073, Kind::Combo, ParamTimerPeriodUnit, 0, 2, 0xC0027003},
      {17065, Kind::Combo, ParamEventCountSource, 1, 2, 0xC0027A02},
      {17068, Kind::Combo, ParamEventGate, 1, 3, 0xC0027B03},
      {17071, Kind::Check, ParamChainEnable, 0, 1, FlagOn},
      {17066, Kind::Combo, ParamChannelSync, 0, 1, 0xC0029902}},
     6,
     0xC0027004},
    {"Exposure",
     PageSlot::Exposure,
     {{17061, Kind::Combo, ParamExpTrigSource, 0, 2, ExpTrigSoftware},
      {17298, Kind::Edit, ParamExpTimer1, 1, 4000000000u, 4000000000u},
      {17299, Kind::Edit, ParamExpTimer2, 1, 250, 250}},
     0,
     0xC0027201},
    {"Roi",
     PageSlot::Roi,
     {{17080, Kind::Edit, ParamSrcXOffset, 0, 8, 8},
      {17081, Kind::Edit, ParamSrcYOffset, 0, 4, 4},
      {17082, Kind::Edit, ParamSrcXLength, 640, 320, 320},
      {17083, Kind::Edit, ParamSrcYLength, 480, 240, 240},
      {17084, Kind::Combo, ParamSubsamplePixel, -1, 1, 0xC0020702},
      {17085, Kind::Combo, ParamSubsampleLine, -1, 1, 0xC0020702},
      {17091, Kind::Edit, ParamBinPixel, 1, 2, 2},
      {17092, Kind::Edit, ParamBinLine, 1, 2, 2},
      {17086, Kind::Edit, ParamDstXOffset, 0, 4, 4},
      {17087, Kind::Edit, ParamDstYOffset, 0, 2, 2},
      {17089, Kind::Edit, ParamDstXLength, 640, 128, 128},
      // Two destination lines after the 60 lines of 240 halved twice: what the board keeps.
      {17088, Kind::Edit, ParamDstYLength, 480, 62, 62},
      {17090, Kind::Combo, ParamInterlaceMode, 0, 7, 0xC0020603}},
     12,
     0xC002060D},
};

class CameraPages : public PageFixture, public ::testing::WithParamInterface<PageCase> {
 protected:
  vrc::pages::BoundPage &bound() { return page<vrc::pages::BoundPage>(GetParam().slot); }

  // Whether the control shows `value` (a selection index, number or check state).
  void expect_shown(const Setting &setting, int64_t value) {
    const CVrxPage &p = bound();
    switch (setting.kind) {
      case Kind::Combo: EXPECT_EQ(selection(p, setting.id), value) << setting.id; break;
      case Kind::Edit: EXPECT_EQ(text(p, setting.id), std::to_string(value)) << setting.id; break;
      case Kind::Check: EXPECT_EQ(checked(p, setting.id), value != 0) << setting.id; break;
    }
  }
  void set_as_user(const Setting &setting) {
    CVrxPage &p = bound();
    switch (setting.kind) {
      case Kind::Combo: select(p, setting.id, static_cast<int>(setting.user)); break;
      case Kind::Edit: type(p, setting.id, std::to_string(setting.user)); break;
      case Kind::Check: click(p, setting.id); break;
    }
  }
  // What the control shows, as text.
  std::string shown(const Setting &setting) {
    const CVrxPage &p = bound();
    switch (setting.kind) {
      case Kind::Combo: return std::to_string(selection(p, setting.id));
      case Kind::Edit: return text(p, setting.id);
      case Kind::Check: return checked(p, setting.id) ? "checked" : "clear";
    }
    return "";
  }
  static int32_t member_of(int64_t value) { return static_cast<int32_t>(value); }
  void set_board_to_written() {
    for (const Setting &setting : GetParam().settings)
      set_board_value(setting.parameter, setting.written);
  }
};

TEST_P(CameraPages, WithoutABoardShowDefaultsDisabledAndRefuseApplyAndRefresh) {
  CVrxPage &p = bound();
  trace();
  for (const Setting &setting : GetParam().settings) {
    expect_shown(setting, setting.initial);
    EXPECT_FALSE(enabled(p, setting.id)) << setting.id;
  }
  EXPECT_EQ(apply(p), -1);
  EXPECT_EQ(refresh(p), -1);
  EXPECT_TRUE(traced().empty());
}

TEST_P(CameraPages, ApplyWritesEveryValueInOrderAndRefreshShowsTheBoard) {
  configure();
  CVrxPage &p = bound();
  for (const Setting &setting : GetParam().settings) set_as_user(setting);
  EXPECT_TRUE(apply_lit());

  trace();
  ASSERT_EQ(apply(p), 0);
  const std::vector<VRXSIM_PARAMETER_WRITE> writes = traced();
  ASSERT_EQ(writes.size(), GetParam().settings.size());
  for (std::size_t i = 0; i < writes.size(); ++i) {
    const Setting &setting = GetParam().settings[i];
    EXPECT_EQ(writes[i].parameter, setting.parameter) << "write " << i;
    EXPECT_EQ(writes[i].value, setting.written) << std::hex << setting.parameter;
    EXPECT_EQ(writes[i].status, VRX_OK) << std::hex << setting.parameter;
    EXPECT_EQ(board_value(setting.parameter), setting.written) << std::hex << setting.parameter;
  }

  // A fresh page shows its defaults again; a refresh brings the board's values back.
  release();
  configure();
  set_board_to_written();
  ASSERT_EQ(refresh(p), 0);
  for (const Setting &setting : GetParam().settings) {
    expect_shown(setting, setting.user);
    EXPECT_EQ(bound().Value(setting.id), member_of(setting.user)) << setting.id;
  }
}

TEST_P(CameraPages, ARefusedWriteEndsTheApplyThere) {
  configure();
  CVrxPage &p = bound();
  const std::vector<Setting> &settings = GetParam().settings;
  for (const Setting &setting : settings) set_as_user(setting);
  for (std::size_t refused = 0; refused < settings.size(); ++refused) {
    vrxsim_fault_parameter(settings[refused].parameter, VRXSIM_WRITE, 1, VRX_ERR_BAD_VALUE);
    trace();
    EXPECT_EQ(apply(p), -1) << "refusing " << refused;
    const std::vector<VRXSIM_PARAMETER_WRITE> writes = traced();
    ASSERT_EQ(writes.size(), refused + 1) << "refusing " << refused;
    EXPECT_EQ(writes.back().parameter, settings[refused].parameter);
    EXPECT_EQ(writes.back().status, VRX_ERR_BAD_VALUE);
  }
}

TEST_P(CameraPages, ARefreshStopsAtAValueMissingFromItsList) {
  configure();
  const PageCase &page_case = GetParam();
  set_board_to_written();
  const Setting &unlisted = page_case.settings[page_case.unlisted_at];
  ASSERT_EQ(vrxsim_parameter_force(handle(), unlisted.parameter, page_case.unlisted_value), 0u);
  std::vector<int32_t> before;
  std::vector<std::string> shown_before;
  for (const Setting &setting : page_case.settings) {
    before.push_back(bound().Value(setting.id));
    shown_before.push_back(shown(setting));
  }

  EXPECT_EQ(refresh(bound()), -1);
  for (std::size_t i = 0; i < page_case.settings.size(); ++i) {
    const Setting &setting = page_case.settings[i];
    // Values read before the failure are kept, the rest are as they were; no control changes.
    const int32_t expected = i < page_case.unlisted_at ? member_of(setting.user) : before[i];
    EXPECT_EQ(bound().Value(setting.id), expected) << setting.id;
    EXPECT_EQ(shown(setting), shown_before[i]) << setting.id;
  }
}

INSTANTIATE_TEST_SUITE_P(Pages, CameraPages, ::testing::ValuesIn(kPages),
                         [](const auto &param_info) { return std::string(param_info.param.name); });

// ---- Single pages ----

class CameraPage : public PageFixture {};

TEST_F(CameraPage, VerticalConvergingReadsAsDivergingAndTheBoardsConvergingFails) {
  configure();
  auto &camera = page<CVrxPageCamera>(PageSlot::Camera);
  set_board_value(ParamVTapDirection, 0xC0021604);
  ASSERT_EQ(refresh(camera), 0);
  EXPECT_EQ(selected_text(camera, 17112), "Diverging");
  set_board_value(ParamVTapDirection, kVTapDirectionConverging);
  EXPECT_EQ(refresh(camera), -1);
}

TEST_F(CameraPage, OnACoaXPressBoardTapsAreDisabledButStillWritten) {
  configure(kCoaXPressBoard);
  auto &camera = page<CVrxPageCamera>(PageSlot::Camera);
  for (int id : {17100, 17102, 17103, 17104, 17105, 17106, 17107, 17117})
    EXPECT_TRUE(enabled(camera, id)) << id;
  for (int id : {17101, 17108, 17109, 17110, 17111, 17112, 17113, 17114, 17115, 17116})
    EXPECT_FALSE(enabled(camera, id)) << id;
  select(camera, 17108, 2);
  trace();
  ASSERT_EQ(apply(camera), 0);
  EXPECT_EQ(board_value(ParamHTapNumber), 3u);
  EXPECT_EQ(traced().size(), 18u);

  release();
  configure(kCameraLinkBoard);
  for (int id : {17101, 17108, 17116}) EXPECT_TRUE(enabled(camera, id)) << id;
}

TEST_F(CameraPage, TypingMarksTheSheetChangedAndLeavingTheFieldTakesTheValue) {
  configure();
  auto &camera = page<CVrxPageCamera>(PageSlot::Camera);
  EXPECT_FALSE(apply_lit());
  camera.control<vrc::window::Edit>(17106)->set_text("800");
  camera.send(vrc::window::WM_COMMAND, vrc::window::make_wparam(17106, vrc::window::EN_CHANGE));
  EXPECT_TRUE(apply_lit());
  EXPECT_EQ(camera.Value(17106), 640);
  camera.send(vrc::window::WM_COMMAND, vrc::window::make_wparam(17106, vrc::window::EN_KILLFOCUS));
  EXPECT_EQ(camera.Value(17106), 800);
}

class AcqtrigPage : public PageFixture {};

TEST_F(AcqtrigPage, AlignmentDelayAndPeriodFollowModeDelayTypeAndUnit) {
  configure();
  auto &acqtrig = page<CVrxPageAcqtrig>(PageSlot::Acqtrig);
  struct Case {
    int mode, delay_type, unit;
    bool align_and_delay_type, delay, period;
  };
  for (const Case &c : {Case{0, 2, 0, false, false, true}, Case{1, 0, 1, true, false, false},
                        Case{4, 1, 2, true, true, true}}) {
    select(acqtrig, 17062, c.mode);
    select(acqtrig, 17063, c.delay_type);
    select(acqtrig, 17073, c.unit);
    EXPECT_EQ(enabled(acqtrig, 17067), c.align_and_delay_type) << c.mode;
    EXPECT_EQ(enabled(acqtrig, 17063), c.align_and_delay_type) << c.mode;
    EXPECT_EQ(enabled(acqtrig, 17069), c.delay) << c.mode << " " << c.delay_type;
    EXPECT_EQ(enabled(acqtrig, 17070), c.period) << c.unit;
  }
  for (int id : {17060, 17062, 17073, 17065, 17068, 17071, 17066})
    EXPECT_TRUE(enabled(acqtrig, id)) << id;
}

TEST_F(AcqtrigPage, ChainStatusShowsMasterOrSlaveOnlyWhileLive) {
  // Two Camera Link boards: the first masters the chain.
  const ScopedBoardSetting boards("VRXSIM_BOARDS", "0xC0013005,0xC0011003");
  auto &acqtrig = page<CVrxPageAcqtrig>(PageSlot::Acqtrig);
  EXPECT_EQ(text(acqtrig, 17072), "");
  configure(0);
  EXPECT_EQ(text(acqtrig, 17072), " Master");
  release();
  EXPECT_EQ(text(acqtrig, 17072), "");
  configure(1);
  EXPECT_EQ(text(acqtrig, 17072), " Slave ");
}

class ExposurePage : public PageFixture {};

TEST_F(ExposurePage, ExposeIsEnabledForTheSoftwareTriggerAndSendsIt) {
  configure();
  auto &exposure = page<CVrxPageExposure>(PageSlot::Exposure);
  for (int index = 0; index < 8; ++index) {
    select(exposure, 17061, index);
    EXPECT_EQ(enabled(exposure, 17374), index == 2) << index;
  }
  select(exposure, 17061, 2);
  // The trigger goes out as VRX_Acquire: a call fault shows that Expose made the call.
  vrxsim_fault_call("VRX_Acquire", 1, VRX_ERR_BUSY);
  click(exposure, 17374);
  EXPECT_EQ(VRX_Acquire(handle(), AcqCmdSoftwareTrigger, nullptr), VRX_OK);
}

TEST_F(ExposurePage, TimersAreUnsigned) {
  configure();
  auto &exposure = page<CVrxPageExposure>(PageSlot::Exposure);
  set_board_value(ParamExpTimer1, std::numeric_limits<uint32_t>::max());
  ASSERT_EQ(refresh(exposure), 0);
  EXPECT_EQ(text(exposure, 17298), "4294967295");
}

class RoiPage : public PageFixture {};

TEST_F(RoiPage, SubsamplingAndBinningFollowTheBoardAndInterlaceTheCamera) {
  configure(kCoaXPressBoard);
  auto &roi = page<CVrxPageRoi>(PageSlot::Roi);
  for (int id : {17084, 17085, 17091, 17092}) EXPECT_FALSE(enabled(roi, id)) << id;
  for (int id : {17080, 17083, 17086, 17089}) EXPECT_TRUE(enabled(roi, id)) << id;
  EXPECT_FALSE(enabled(roi, 17090));
  set_board_value(ParamCameraInterlaced, InterlacedOn);
  roi.send(vrc::control::kMsgUpdateView);
  EXPECT_TRUE(enabled(roi, 17090));
  release();
  configure(kCameraLinkBoard);
  for (int id : {17084, 17085, 17091, 17092}) EXPECT_TRUE(enabled(roi, id)) << id;
}

TEST_F(RoiPage, SubsamplingHasNoSelectionUntilTheFirstRefresh) {
  const CVrxPageRoi unowned;
  EXPECT_EQ(unowned.Value(17084), static_cast<int32_t>(0xC0020701u));
  EXPECT_EQ(unowned.Value(17085), static_cast<int32_t>(0xC0020701u));
  auto &roi = page<CVrxPageRoi>(PageSlot::Roi);
  EXPECT_EQ(selection(roi, 17084), -1);
  EXPECT_EQ(selection(roi, 17085), -1);
  configure();
  EXPECT_EQ(selected_text(roi, 17084), "x 1");
  EXPECT_EQ(selected_text(roi, 17085), "x 1");
}

TEST_F(RoiPage, ABinningTheBoardRefusesStopsTheApply) {
  configure();
  auto &roi = page<CVrxPageRoi>(PageSlot::Roi);
  type(roi, 17091, "17");
  type(roi, 17086, "6");
  trace();
  EXPECT_EQ(apply(roi), -1);
  EXPECT_EQ(traced_parameters().back(), ParamBinPixel);
  EXPECT_EQ(board_value(ParamDstXOffset), 0u);
}

}  // namespace
}  // namespace control_test
