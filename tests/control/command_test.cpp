// The command interface: construction and its failure reports, Exec, ParameterGet,
// ParameterSet, VRC_PropertyGet, the status bar, the message loop and Close, CVrc.
#include <cstring>

#include "control_support.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;

uint32_t as_word(etVrcParam p) { return static_cast<uint32_t>(p); }

// The report text of a refused command or parameter word.
std::string parameter_text(uint32_t word) {
  char text[32];
  std::snprintf(text, sizeof text, "Parameter = 0x%08x", word);
  return text;
}

// ---- Construction ----

struct TimerFailure {
  uint64_t frequency, counter;
  const char *message;
};

class ConstructionTimers : public ControlTest,
                           public ::testing::WithParamInterface<TimerFailure> {};

TEST_P(ConstructionTimers, AFailedReadIsReportedAndStopsTheConstruction) {
  desk().set_frequency(GetParam().frequency);
  desk().use_manual_clock(GetParam().counter);
  errno = 0;
  CVrxCtrl ctrl(nullptr, &record_report);
  EXPECT_EQ(take_reports(), (Reports{{"VrxCtrl::DoConstruct", VRC_OK, GetParam().message}}));
  EXPECT_TRUE(tabs_of(ctrl).empty());
  EXPECT_EQ(ctrl.GetAcq(), 1);
  EXPECT_EQ(ctrl.Exec(VRC_EXEC_CREATE), VRC_OK);  // the object stays usable
}

INSTANTIATE_TEST_SUITE_P(Reads, ConstructionTimers,
                         ::testing::Values(TimerFailure{0, 5, "QPF() failed with error 0\n"},
                                           TimerFailure{1000, 0, "QPC() failed with error 0\n"}));

TEST_F(ControlTest, ConstructionSetsTheFlagsAndNothingIsReported) {
  CVrc vrc(nullptr, &record_report);
  CVrxCtrl &ctrl = *vrc.GetCtrl();
  EXPECT_EQ(ctrl.GetAcq(), 1);
  EXPECT_EQ(ctrl.GetComms(), 1);
  EXPECT_EQ(ctrl.GetInit(), 0);
  EXPECT_EQ(ctrl.GetLive(), 0);
  EXPECT_EQ(ctrl.GetCameraLink(), 0);
  EXPECT_EQ(ctrl.GetCameraHandle(), 0u);
  EXPECT_EQ(ctrl.GetCxpTabHidden(), 1);
  EXPECT_EQ(ctrl.GetPreTabsVisible(), 0xC0010000u);
  EXPECT_EQ(ctrl.GetPostTabsVisible(), 0u);
  EXPECT_FLOAT_EQ(ctrl.GetFrameRate(), 10.0f);
  EXPECT_EQ(ctrl.GetFramesPerUpdate(), 10);
  EXPECT_EQ(ctrl.GetCallback(), &CVrxCtrl::CtrlEventCallback);
  EXPECT_EQ(ctrl.GetParentHandle(), nullptr);
  EXPECT_EQ(ctrl.GetDepth(), 8);
  EXPECT_EQ(ctrl.GetSeqLength(), 2);
  EXPECT_NE(ctrl.GetPage(PageSlot::Cxp), nullptr);  // made, but not in the sheet
  EXPECT_EQ(ctrl.GetPage(PageSlot::Test), nullptr);
  EXPECT_TRUE(take_reports().empty());
}

TEST_F(ControlTest, SettersOnlyStore) {
  CVrxCtrl ctrl(nullptr, 0, &record_report);
  ASSERT_EQ(ctrl.Exec(VRC_EXEC_CREATE), VRC_OK);
  ctrl.SetInit(1);
  ctrl.SetLive(1);
  ctrl.SetCLBase(1);
  ctrl.SetCameraLink(1);
  ctrl.SetComms(0);
  ctrl.SetCameraHandle(77);
  EXPECT_FALSE(ctrl.child(17002)->enabled());  // no view update: Freeze stays disabled
  EXPECT_EQ(ctrl.GetCLBase(), 1);
  EXPECT_EQ(ctrl.GetCameraHandle(), 77u);
  ctrl.SetApply(1);  // the one setter that updates the view
  EXPECT_TRUE(ctrl.child(17002)->enabled());
  EXPECT_TRUE(ctrl.child(vrc::window::ID_APPLY_NOW)->enabled());
  ctrl.SetCameraHandle(0);
}

// ---- Exec ----

TEST_F(ControlTest, ExecCreatesTheWindowOnce) {
  CVrc vrc(nullptr, &record_report);
  EXPECT_EQ(vrc.Exec(VRC_EXEC_CREATE), VRC_OK);
  EXPECT_TRUE(vrc.GetCtrl()->visible());
  EXPECT_EQ(vrc.GetCtrl()->text(), "Vireo Control");
  EXPECT_TRUE(take_reports().empty());
  EXPECT_EQ(vrc.Exec(VRC_EXEC_CREATE), VRC_CREATE_FAILED);
  EXPECT_EQ(take_reports(),
            (Reports{{"VrxCtrl::Exec", VRC_CREATE_FAILED, "Failed to create PropertySheet"}}));
}

TEST_F(ControlTest, ExecRefusesUnknownCommands) {
  CVrc vrc(nullptr, &record_report);
  for (uint32_t command : {0u, 0x80020300u, 0xFFFFFFFFu}) {
    EXPECT_EQ(vrc.Exec(static_cast<etVrcExec>(command)), VRC_BAD_PARAMETER);
    EXPECT_EQ(take_reports(),
              (Reports{{"VrxCtrl::Exec", VRC_BAD_PARAMETER, parameter_text(command)}}));
  }
}

TEST_F(ControlTest, MessageLoopRunsUntilCloseWithoutAParent) {
  CVrc vrc(nullptr, &record_report);
  CVrxCtrl &ctrl = *vrc.GetCtrl();
  ASSERT_EQ(vrc.Exec(VRC_EXEC_CREATE), VRC_OK);
  ctrl.post(vrc::window::WM_USER + 10);
  ctrl.post(vrc::window::WM_SYSCOMMAND, vrc::window::SC_CLOSE);
  EXPECT_EQ(vrc.Exec(VRC_EXEC_MESSAGE_LOOP), VRC_OK);
  EXPECT_TRUE(ctrl.GetQuitFlag());
  EXPECT_TRUE(ctrl.visible());  // the window stays as it is
  // The refresh ran before the close: its posts to the pages wait for the next loop.
  EXPECT_TRUE(ctrl.GetPage(PageSlot::Camera)
                  ->has_queued(vrc::window::WM_USER + 10, vrc::window::WM_USER + 10));
}

TEST_F(ControlTest, CloseWithAParentHidesTheWindow) {
  vrc::window::Window parent;
  CVrc vrc(&parent, &record_report);
  CVrxCtrl &ctrl = *vrc.GetCtrl();
  ASSERT_EQ(vrc.Exec(VRC_EXEC_CREATE), VRC_OK);
  EXPECT_EQ(ctrl.GetParentHandle(), &parent);
  ctrl.send(vrc::window::WM_SYSCOMMAND, vrc::window::SC_CLOSE);
  EXPECT_FALSE(ctrl.visible());
  EXPECT_FALSE(ctrl.GetQuitFlag());
}

// ---- ParameterGet and ParameterSet ----

struct GetCase {
  uint32_t parameter;
  eStat status;
  bool writes;
  const char *report;  // "" for none
};

class ParameterGet : public PanelTest, public ::testing::WithParamInterface<GetCase> {};

TEST_P(ParameterGet, WritesOneWordOrReports) {
  make();
  ASSERT_TRUE(configure());
  const GetCase &c = GetParam();
  uint32_t word = 0xDEADBEEF;
  EXPECT_EQ(ctrl->ParameterGet(static_cast<etVrcParam>(c.parameter), &word), c.status);
  EXPECT_EQ(word != 0xDEADBEEF, c.writes);
  if (c.report[0] == '\0') {
    EXPECT_TRUE(take_reports().empty());
    return;
  }
  EXPECT_EQ(take_reports(), (Reports{{"VrxCtrl::ParameterGet", VRC_BAD_PARAMETER, c.report}}));
  EXPECT_EQ(word, 0xDEADBEEF);
}

INSTANTIATE_TEST_SUITE_P(
    Parameters, ParameterGet,
    ::testing::Values(GetCase{as_word(VRC_PARAM_CAMERA_HANDLE), VRC_OK, true, ""},
                      GetCase{as_word(VRC_PARAM_EVENT_CALLBACK), VRC_OK, false, ""},
                      GetCase{as_word(VRC_PARAM_WINDOW_HANDLE), VRC_OK, true, ""},
                      GetCase{as_word(VRC_PARAM_SHOW_WINDOW), VRC_BAD_PARAMETER, false,
                              "Bad Parameter [0x80010400]"},
                      GetCase{as_word(VRC_PARAM_PLAYBACK_FRAME), VRC_OK, true, ""},
                      GetCase{0, VRC_BAD_PARAMETER, false, "Bad Parameter [0x00000000]"},
                      GetCase{0x80010600, VRC_BAD_PARAMETER, false, "Bad Parameter [0x80010600]"}));

TEST_F(PanelTest, ParameterGetValues) {
  make();
  ASSERT_TRUE(configure());
  uint32_t word = 0;
  ctrl->ParameterGet(VRC_PARAM_CAMERA_HANDLE, &word);
  EXPECT_EQ(word, handle());
  ctrl->ParameterGet(VRC_PARAM_PLAYBACK_FRAME, &word);
  EXPECT_EQ(word, 1u);
  ctrl->ParameterGet(VRC_PARAM_WINDOW_HANDLE, &word);
  EXPECT_NE(word, 0u);
  CVrxCtrl without_window(nullptr, 0, &record_report);
  without_window.ParameterGet(VRC_PARAM_WINDOW_HANDLE, &word);
  EXPECT_EQ(word, 0u);
  without_window.ParameterGet(VRC_PARAM_PLAYBACK_FRAME, &word);  // no Display page
  EXPECT_EQ(word, 0u);
}

void application_callback(uint32_t, uint32_t, void *) {}

TEST_F(PanelTest, ParameterSetStoresTheCallbackAndShowsTheWindow) {
  make();
  EXPECT_EQ(
      ctrl->ParameterSet(VRC_PARAM_EVENT_CALLBACK, reinterpret_cast<void *>(&application_callback)),
      VRC_OK);
  EXPECT_EQ(ctrl->GetCallback(), &application_callback);
  EXPECT_EQ(
      ctrl->ParameterSet(VRC_PARAM_SHOW_WINDOW, reinterpret_cast<void *>(vrc::window::SW_HIDE)),
      VRC_OK);
  EXPECT_FALSE(ctrl->visible());
  EXPECT_EQ(
      ctrl->ParameterSet(VRC_PARAM_SHOW_WINDOW, reinterpret_cast<void *>(vrc::window::SW_SHOW)),
      VRC_OK);
  EXPECT_TRUE(ctrl->visible());
  EXPECT_TRUE(take_reports().empty());
  for (etVrcParam refused : {VRC_PARAM_CAMERA_HANDLE, VRC_PARAM_WINDOW_HANDLE,
                             VRC_PARAM_PLAYBACK_FRAME, static_cast<etVrcParam>(7)}) {
    EXPECT_EQ(ctrl->ParameterSet(refused, nullptr), VRC_BAD_PARAMETER);
    EXPECT_EQ(take_reports(), (Reports{{"VrxCtrl::ParameterSet", VRC_BAD_PARAMETER,
                                        parameter_text(static_cast<uint32_t>(refused))}}));
  }
}

TEST_F(ControlTest, WithoutACallbackEveryFailureIsSilent) {
  CVrc vrc(nullptr, nullptr);
  uint32_t word = 5;
  EXPECT_EQ(vrc.Exec(static_cast<etVrcExec>(0)), VRC_BAD_PARAMETER);
  EXPECT_EQ(vrc.ParameterGet(VRC_PARAM_SHOW_WINDOW, &word), VRC_BAD_PARAMETER);
  EXPECT_EQ(vrc.ParameterSet(VRC_PARAM_CAMERA_HANDLE, &word), VRC_BAD_PARAMETER);
  EXPECT_EQ(word, 5u);
  EXPECT_TRUE(take_reports().empty());
}

// ---- VRC_PropertyGet ----

struct PropertyCase {
  const char *properties;
  const char *key;
  eStat status;
  const char *value;  // null: the value buffer is left as it was
};

class PropertyGet : public ControlTest, public ::testing::WithParamInterface<PropertyCase> {};

TEST_P(PropertyGet, PairsTokensByPosition) {
  CVrxCtrl ctrl(nullptr, 0, &record_report);
  const PropertyCase &c = GetParam();
  std::string properties = c.properties;
  uint8_t value[260];
  std::memset(value, '#', sizeof value);
  value[259] = 0;
  EXPECT_EQ(ctrl.VRC_PropertyGet(value, reinterpret_cast<uint8_t *>(properties.data()),
                                 reinterpret_cast<const uint8_t *>(c.key)),
            c.status);
  if (c.value)
    EXPECT_STREQ(reinterpret_cast<const char *>(value), c.value);
  else
    EXPECT_EQ(value[0], '#');
  EXPECT_EQ(properties, c.properties);  // the caller's text is not touched
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PropertyGet,
    ::testing::Values(PropertyCase{"a=1\nb=2", "b", VRC_OK, "2"},
                      PropertyCase{"a=1\nb=2", "c", VRC_OK, ""},
                      PropertyCase{"a=1\nb", "b", VRC_BAD_PARAMETER, nullptr},
                      PropertyCase{"a=1\nb=2", "B", VRC_OK, ""}, PropertyCase{"", "a", VRC_OK, ""},
                      PropertyCase{"a=x=y\nb=2", "a", VRC_OK, "x"},  // a value is cut at "="
                      PropertyCase{"a=x=y\nb=2", "y", VRC_OK, "b"},  // and the pairs shift
                      PropertyCase{"\n\na=1\n\nb=2\n", "b", VRC_OK,
                                   "2"},  // blank lines are skipped
                      PropertyCase{"Model=VR-PCLB-E1\nName=PoCL", "Model", VRC_OK, "VR-PCLB-E1"}));

TEST_F(ControlTest, PropertyGetCopiesALongValueAsExactly256Bytes) {
  CVrxCtrl ctrl(nullptr, 0, &record_report);
  std::string properties = "k=" + std::string(300, 'v');
  uint8_t value[300];
  std::memset(value, '#', sizeof value);
  EXPECT_EQ(ctrl.VRC_PropertyGet(value, reinterpret_cast<uint8_t *>(properties.data()),
                                 reinterpret_cast<const uint8_t *>("k")),
            VRC_OK);
  EXPECT_EQ(std::string(reinterpret_cast<char *>(value), 256), std::string(256, 'v'));
  EXPECT_EQ(value[256], '#');  // no terminator
  properties = "k=" + std::string(255, 'w');
  EXPECT_EQ(ctrl.VRC_PropertyGet(value, reinterpret_cast<uint8_t *>(properties.data()),
                                 reinterpret_cast<const uint8_t *>("k")),
            VRC_OK);
  EXPECT_EQ(value[255], '\0');
}

TEST_F(ControlTest, PropertyGetRefusesNullArgumentsAndAFailedAllocation) {
  CVrxCtrl ctrl(nullptr, 0, &record_report);
  std::string properties = "a=1";
  uint8_t value[256] = {'#'};
  const auto *key = reinterpret_cast<const uint8_t *>("a");
  auto *text = reinterpret_cast<uint8_t *>(properties.data());
  EXPECT_EQ(ctrl.VRC_PropertyGet(nullptr, text, key), VRC_BAD_PARAMETER);
  EXPECT_EQ(ctrl.VRC_PropertyGet(value, nullptr, key), VRC_BAD_PARAMETER);
  EXPECT_EQ(ctrl.VRC_PropertyGet(value, text, nullptr), VRC_BAD_PARAMETER);
  vrxsim_fault_call("VRX_MemoryAlloc", 1, VRX_ERR_MEMORY);
  EXPECT_EQ(ctrl.VRC_PropertyGet(value, text, key), VRC_BAD_PARAMETER);
  EXPECT_EQ(value[0], '#');
  EXPECT_EQ(ctrl.VRC_PropertyGet(value, text, key), VRC_OK);
  EXPECT_STREQ(reinterpret_cast<char *>(value), "1");
  EXPECT_TRUE(take_reports().empty());
}

// ---- Status bar and CVrc ----

TEST_F(ControlTest, PrintToStatusBarSetsTheStatusText) {
  CVrc vrc(nullptr, &record_report);
  char text[] = "Acquiring";
  vrc.PrintToStatusBar(text);
  vrc.PrintToStatusBar(nullptr);
  EXPECT_EQ(desk().status_texts(), std::vector<std::string>{"Acquiring"});
}

TEST_F(ControlTest, CopiesOfCVrcShareOneControl) {
  auto first = std::make_unique<CVrc>(nullptr, 0x0001u, &record_report);
  CVrc second(nullptr, 0u, &record_report);
  CVrxCtrl *shared = first->GetCtrl();
  {
    CVrc copy(*first);
    EXPECT_EQ(copy.GetCtrl(), shared);
    second = *first;  // the control second had goes; both now share the first one
  }
  EXPECT_EQ(second.GetCtrl(), shared);
  first.reset();
  EXPECT_EQ(second.Exec(VRC_EXEC_CREATE), VRC_OK);  // still alive
  EXPECT_EQ(tabs_of(*second.GetCtrl()), std::vector<std::string>{"Configure"});
  second.DisplayStats();
}

}  // namespace
}  // namespace control_test
