// The sheet and page framework: page masks and tab order, ShowPages, apply and refresh fan-out,
// Enter and Escape, and the page helpers.
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>

#include "control/pages/camera_choices.h"
#include "control/pages/display_choices.h"
#include "control_support.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;
using Tabs = std::vector<std::string>;
using Lines = std::vector<std::string>;

const Tabs kDefaultTabs{"Configure", "Camera",   "Status",   "Display",   "ROI",  "Interrupt",
                        "LUT",       "Acq Trig", "Exposure", "I/O Ports", "Comms"};

struct MaskCase {
  uint32_t pages;
  Tabs tabs;
};

class PageMasks : public ControlTest, public ::testing::WithParamInterface<MaskCase> {};

TEST_P(PageMasks, AddTheRequestedPagesInTabOrderWithoutCxp) {
  CVrxCtrl ctrl(nullptr, GetParam().pages, &record_report);
  EXPECT_EQ(tabs_of(ctrl), GetParam().tabs);
  ASSERT_EQ(ctrl.Exec(VRC_EXEC_CREATE), VRC_OK);
  EXPECT_EQ(tabs_of(ctrl), GetParam().tabs);
  EXPECT_EQ(ctrl.text(), "Vireo Control");
}

INSTANTIATE_TEST_SUITE_P(
    Masks, PageMasks,
    ::testing::Values(MaskCase{0x4EFF, kDefaultTabs}, MaskCase{0, {}}, MaskCase{0x4000, {}},
                      MaskCase{0x7FFF,
                               {"Configure", "Camera", "Status", "Display", "ROI", "Interrupt",
                                "LUT", "Acq Trig", "Exposure", "I/O Ports", "Comms", "Test", "PoCL",
                                "Register"}},
                      MaskCase{0x3101, {"Configure", "Test", "PoCL", "Register"}},
                      MaskCase{0x0042, {"Display", "Comms"}}));

// ---- ShowPages ----

class ShowPages : public PanelTest {
 protected:
  void SetUp() override {
    PanelTest::SetUp();
    make();
  }
};

TEST_F(ShowPages, ModeOneSwapsInTheCxpTabAndModeZeroSwapsBack) {
  ctrl->ShowPages(1);
  EXPECT_EQ(tabs_of(*ctrl), (Tabs{"Configure", "Camera", "Status", "Display", "ROI", "CXP"}));
  EXPECT_EQ(ctrl->GetCxpTabHidden(), 0);
  ctrl->ShowPages(1);
  EXPECT_EQ(tabs_of(*ctrl), (Tabs{"Configure", "Camera", "Status", "Display", "ROI", "CXP"}));
  ctrl->ShowPages(0);
  EXPECT_EQ(tabs_of(*ctrl), kDefaultTabs);
  EXPECT_EQ(ctrl->GetCxpTabHidden(), 1);
  ctrl->ShowPages(0);
  EXPECT_EQ(tabs_of(*ctrl), kDefaultTabs);
}

TEST_F(ShowPages, BringsTheTabsBackInTheirFixedOrder) {
  // Taken away in mode 1's order, they come back as Intrpt, Lut, Acqtrig, Exposure, IoPorts,
  // Comms, after the pages that stayed.
  ctrl->SetPreTabsVisible(0xC0010000);
  ctrl->ShowPages(1);
  ctrl->remove_page(ctrl->GetPage(PageSlot::Roi));
  ctrl->ShowPages(0);
  EXPECT_EQ(tabs_of(*ctrl), (Tabs{"Configure", "Camera", "Status", "Display", "Interrupt", "LUT",
                                  "Acq Trig", "Exposure", "I/O Ports", "Comms"}));
}

struct TabSetCase {
  uint32_t pre, post, mode;
  Tabs tabs;
};

class TabSetCodes : public ShowPages, public ::testing::WithParamInterface<TabSetCase> {};

TEST_P(TabSetCodes, AddByTheOldCodeThenRemoveByTheNew) {
  const TabSetCase &c = GetParam();
  ctrl->SetPreTabsVisible(0xC0010000);
  ctrl->SetPostTabsVisible(c.pre);
  ctrl->ShowPages(0);  // from the default set to the tabs of the old code
  ctrl->SetPreTabsVisible(c.pre);
  ctrl->SetPostTabsVisible(c.post);
  ctrl->ShowPages(c.mode);
  EXPECT_EQ(tabs_of(*ctrl), c.tabs);
}

INSTANTIATE_TEST_SUITE_P(
    Codes, TabSetCodes,
    ::testing::Values(
        // Normal to Comms Only: the full set goes except the tabs only mode 1 takes.
        TabSetCase{0xC0010000,
                   0xC0010080,
                   0,
                   {"Configure", "Interrupt", "LUT", "Acq Trig", "Exposure", "I/O Ports", "Comms"}},
        // Comms Only back to Normal: the plain pages come back at the end.
        TabSetCase{0xC0010080,
                   0xC0010000,
                   0,
                   {"Configure", "Interrupt", "LUT", "Acq Trig", "Exposure", "I/O Ports", "Comms",
                    "Camera", "Status", "Display", "ROI"}},
        // Normal to Acquisition Only: Comms goes.
        TabSetCase{0xC0010000,
                   0xC0010200,
                   0,
                   {"Configure", "Camera", "Status", "Display", "ROI", "Interrupt", "LUT",
                    "Acq Trig", "Exposure", "I/O Ports"}},
        // Acquisition Only back to Normal: Comms comes back.
        TabSetCase{0xC0010200, 0xC0010000, 0, kDefaultTabs},
        // Comms Only on a CoaXPress board: the CXP tab comes and goes with the full set.
        TabSetCase{0xC0010000, 0xC0010080, 1, {"Configure"}}));

TEST_F(ShowPages, OfPagesThatWereNotRequestedChangeNothing) {
  ctrl.reset();
  make(0x0001);
  ctrl->ShowPages(1);
  EXPECT_EQ(tabs_of(*ctrl), (Tabs{"Configure"}));
  EXPECT_EQ(ctrl->GetCxpTabHidden(), 1);
}

TEST_F(PanelTest, ConfiguringACoaXPressBoardShowsTheCxpTabAndReleaseHidesIt) {
  make();
  ASSERT_TRUE(configure(1, 0));  // board 2: the four-link CoaXPress board
  EXPECT_EQ(tabs_of(*ctrl), (Tabs{"Configure", "Camera", "Status", "Display", "ROI", "CXP"}));
  ctrl->GetPage(PageSlot::Configure)->control<vrc::window::Button>(17024)->click_as_user();
  EXPECT_EQ(ctrl->GetCameraHandle(), 0u);
  EXPECT_EQ(tabs_of(*ctrl), kDefaultTabs);
  EXPECT_EQ(buttons(), "000000");
}

TEST_F(PanelTest, CommsOnlyModeKeepsTheCommsTabsAndAllowsNoAcquisition) {
  make();
  ASSERT_TRUE(configure(0, 0, 2));
  EXPECT_EQ(tabs_of(*ctrl),
            (Tabs{"Configure", "Interrupt", "LUT", "Acq Trig", "Exposure", "I/O Ports", "Comms"}));
  EXPECT_EQ(ctrl->GetAcq(), 0);
  EXPECT_EQ(ctrl->GetComms(), 1);
  EXPECT_EQ(buttons(), "000010");  // Refresh only
}

// ---- Apply and refresh ----

class FanOut : public PanelTest {
 protected:
  void SetUp() override {
    PanelTest::SetUp();
    RecordingPage::install();
    make(0x7FFF);  // the CXP page exists, but outside the sheet it never has a window
    ASSERT_TRUE(pump_until([&] { return ctrl->queue().size() == 0; }));
    RecordingPage::log().clear();
  }
  RecordingPage &page(PageSlot slot) { return *dynamic_cast<RecordingPage *>(ctrl->GetPage(slot)); }
  Lines drain_log() {
    pump_until([&] { return ctrl->queue().size() == 0; });
    return std::exchange(RecordingPage::log(), {});
  }
};

const Lines kRefreshes{
    "Camera refresh",    "ROI refresh",   "LUT refresh",     "Display refresh", "Acq Trig refresh",
    "Exposure refresh",  "Comms refresh", "Status refresh",  "Test refresh",    "I/O Ports refresh",
    "Interrupt refresh", "PoCL refresh",  "Register refresh"};

TEST_F(FanOut, ApplyGoesToThePagesInItsFixedOrderThenEveryPageRefreshes) {
  ctrl->SetApply(1);
  EXPECT_EQ(ctrl->OnApply(), 0);
  Lines expected{"Camera apply",   "ROI apply",       "LUT apply",       "Display apply",
                 "Acq Trig apply", "Exposure apply",  "Comms apply",     "Status apply",
                 "Test apply",     "I/O Ports apply", "Interrupt apply", "Register apply"};
  expected.insert(expected.end(), kRefreshes.begin(), kRefreshes.end());
  EXPECT_EQ(drain_log(), expected);
  EXPECT_EQ(buttons(), "000000");
}

TEST_F(FanOut, AVetoStopsTheChainWithoutRefresh) {
  page(PageSlot::Display).apply_result = -1;
  ctrl->SetApply(1);
  EXPECT_EQ(buttons(), "000001");
  EXPECT_NE(ctrl->OnApply(), 0);
  EXPECT_EQ(drain_log(), (Lines{"Camera apply", "ROI apply", "LUT apply", "Display apply"}));
  EXPECT_EQ(buttons(), "000000");
}

TEST_F(FanOut, ApplyFollowsTheAcqAndCommsFlags) {
  ctrl->SetAcq(0);
  ctrl->OnApply();
  Lines expected{"Comms apply"};
  expected.insert(expected.end(), kRefreshes.begin(), kRefreshes.end());
  EXPECT_EQ(drain_log(), expected);
  ctrl->SetAcq(1);
  ctrl->SetComms(0);
  ctrl->OnApply();
  const Lines lines = drain_log();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "Comms apply"), 0);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "Camera apply"), 1);
}

TEST_F(FanOut, PagesWithAMessageWaitingAreSkipped) {
  page(PageSlot::Roi).post(vrc::window::WM_USER + 200);
  page(PageSlot::Camera).post(vrc::window::WM_USER + 201);  // outside the range: no effect
  ctrl->OnApply();
  const Lines lines = drain_log();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "ROI apply"), 0);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "ROI refresh"), 0);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "Camera apply"), 1);
}

TEST_F(FanOut, PagesTakenOutAndBroughtBackWaitForTheirTabBeforeTakingMessages) {
  ctrl->ShowPages(1);
  ctrl->ShowPages(0);
  ctrl->PostRefresh();
  Lines lines = drain_log();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "LUT refresh"), 0);
  ctrl->set_active_page(ctrl->page_index(ctrl->GetPage(PageSlot::Lut)));
  ctrl->PostRefresh();
  lines = drain_log();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "LUT refresh"), 1);
}

TEST_F(FanOut, RefreshesCoalesce) {
  ctrl->PostRefresh();
  ctrl->PostRefresh();
  press(17004);
  ctrl->send(vrc::window::WM_USER + 10);
  EXPECT_EQ(drain_log(), kRefreshes);
}

TEST_F(FanOut, PagesAreDestroyedInTheirFixedOrder) {
  ctrl.reset();
  EXPECT_EQ(RecordingPage::log(),
            (Lines{"CXP destroyed", "Register destroyed", "PoCL destroyed", "Interrupt destroyed",
                   "I/O Ports destroyed", "Test destroyed", "Comms destroyed", "Status destroyed",
                   "LUT destroyed", "Camera destroyed", "ROI destroyed", "Acq Trig destroyed",
                   "Exposure destroyed", "Display destroyed", "Configure destroyed"}));
}

// ---- Pages: initialisation, keys and helpers ----

class PageHelpers : public PanelTest {
 protected:
  void SetUp() override {
    PanelTest::SetUp();
    RecordingPage::install();
    make(0x0005);  // Configure and Camera, both recording pages
  }
  RecordingPage &camera() {
    return *dynamic_cast<RecordingPage *>(ctrl->GetPage(PageSlot::Camera));
  }
  vrc::window::ComboBox &combo() {
    return *camera().control<vrc::window::ComboBox>(RecordingPage::IdCombo);
  }
  // Opens board 1 channel A for the panel under test.
  void open_board() {
    uint32_t h = 0;
    ASSERT_EQ(VRX_Create(&h, nullptr), VRX_OK);
    ASSERT_EQ(VRX_Open(&h), VRX_OK);
    ctrl->SetCameraHandle(h);
  }
  // The recording pages leave the board alone: the test closes what it opened.
  void TearDown() override {
    uint32_t h = ctrl ? ctrl->GetCameraHandle() : 0;
    PanelTest::TearDown();
    if (h) VRX_Destroy(&h);
  }
  uint32_t board_value(uint32_t parameter) {
    uint32_t value = 0;
    EXPECT_EQ(VRX_ParameterGet(ctrl->GetCameraHandle(), parameter, &value), VRX_OK);
    return value;
  }
  void set_board(uint32_t parameter, uint32_t value) {
    ASSERT_EQ(VRX_ParameterSet(ctrl->GetCameraHandle(), parameter, &value), VRX_OK);
  }
  int select_tap_direction(int32_t &selection) {
    return camera().SelectBySdkValue(RecordingPage::IdCombo, vrx::ParamVTapDirection, selection);
  }
};

TEST_F(PageHelpers, InitialisationPullsUpdatesThenPushes) {
  EXPECT_EQ(camera().update_controls_calls, 1);
  EXPECT_EQ(camera().control<vrc::window::Edit>(RecordingPage::IdEdit)->text(), "7");
}

TEST_F(PageHelpers, EnterAndEscapeAreSwallowed) {
  EXPECT_TRUE(camera().pre_translate_key(13));
  EXPECT_TRUE(camera().pre_translate_key(27));
  EXPECT_FALSE(camera().pre_translate_key('A'));
  for (int key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Enter}) {
    QKeyEvent press_event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(camera().widget(), &press_event);
  }
  pump_for(20);
  EXPECT_TRUE(ctrl->visible());
}

TEST_F(PageHelpers, FillListTakesAtMostAHundredRowsAndRefusesBadArguments) {
  std::vector<std::string> texts(150);
  std::vector<vrc::pages::Choice> table;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts[i] = "row " + std::to_string(i);
    table.push_back({static_cast<uint32_t>(1000 + i), texts[i].c_str()});
  }
  table.push_back(vrc::pages::kChoiceEnd);
  EXPECT_EQ(camera().FillList(RecordingPage::IdCombo, table.data()), 0);
  EXPECT_EQ(combo().count(), 100);
  EXPECT_EQ(combo().item_text(99), "row 99");
  EXPECT_EQ(combo().item_data(99), 1099u);
  EXPECT_EQ(camera().FillList(0, table.data()), -1);
  EXPECT_EQ(camera().FillList(999, table.data()), -1);
  EXPECT_EQ(camera().FillList(RecordingPage::IdCombo, nullptr), -1);
}

TEST_F(PageHelpers, SelectBySdkValueSearchesFromTheLastItem) {
  open_board();
  int32_t selection = 42;
  EXPECT_EQ(select_tap_direction(selection), -1);  // empty
  EXPECT_EQ(selection, 42);
  camera().FillList(RecordingPage::IdCombo, vrc::pages::kVTapDirectionChoices);
  set_board(vrx::ParamVTapDirection, 0xC0021604);
  EXPECT_EQ(select_tap_direction(selection), 0);
  EXPECT_EQ(selection, 3);  // "Diverging", not "Converging"
  set_board(vrx::ParamVTapDirection, 0xC0021603);
  EXPECT_EQ(select_tap_direction(selection), -1);
  EXPECT_EQ(selection, 3);
  vrxsim_fault_parameter(vrx::ParamVTapDirection, VRXSIM_READ, 1, VRX_ERR_BUSY);
  EXPECT_EQ(select_tap_direction(selection), -1);
}

TEST_F(PageHelpers, SelectByDisplayValueReadsTheDisplay) {
  uint32_t display = 0;
  ASSERT_EQ(VDL_DisplayCreate(&display, nullptr, nullptr), VRX_OK);
  camera().FillList(RecordingPage::IdCombo, vrc::pages::kInterpolationChoices);
  ASSERT_EQ(VDL_DisplayParameterSet(display, VDL_PARAM_INTERPOLATION, 2), VRX_OK);
  int32_t selection = -1;
  EXPECT_EQ(camera().SelectByDisplayValue(RecordingPage::IdCombo, display, VDL_PARAM_INTERPOLATION,
                                          selection),
            0);
  EXPECT_EQ(selection, 2);
  EXPECT_EQ(combo().item_text(selection), "Median filter    ");
  VDL_DisplayDestroy(&display);
  EXPECT_EQ(camera().SelectByDisplayValue(RecordingPage::IdCombo, display, VDL_PARAM_INTERPOLATION,
                                          selection),
            -1);
}

TEST_F(PageHelpers, WriteSelectionWritesTheItemData) {
  open_board();
  camera().FillList(RecordingPage::IdCombo, vrc::pages::kCameraTypeChoices);
  EXPECT_EQ(camera().WriteSelection(RecordingPage::IdCombo, vrx::ParamCameraType, 1), 0);
  EXPECT_EQ(board_value(vrx::ParamCameraType), 0xC0021902u);
  EXPECT_EQ(camera().WriteSelection(RecordingPage::IdCombo, vrx::ParamCameraType, 9),
            -1);  // no such item
  EXPECT_EQ(camera().WriteSelection(999, vrx::ParamCameraType, 0), -1);
}

TEST_F(PageHelpers, SignalSourcesMapBothWaysThroughTheirTable) {
  open_board();
  const uint32_t codes[] = {0x1, 0x2, 0x4, 0x8, 0x5, 0x9, 0x6, 0xA};
  for (int32_t index = 0; index < 8; ++index) {
    SCOPED_TRACE(index);
    ASSERT_EQ(camera().IndexToSignalSource(vrx::ParamExpTimer1, 0x12, index), 0);
    EXPECT_EQ(board_value(vrx::ParamExpTimer1), 0x12u | codes[index] << 24);
    int32_t read = -9;
    EXPECT_EQ(camera().SignalSourceToIndex(vrx::ParamExpTimer1, 0, read), 0);
    EXPECT_EQ(read, index);
  }
  EXPECT_EQ(camera().IndexToSignalSource(vrx::ParamExpTimer1, 0, 8), -1);
  EXPECT_EQ(camera().IndexToSignalSource(vrx::ParamExpTimer1, 0, -1), -1);
  set_board(vrx::ParamExpTimer1, 0x3000000);
  int32_t read = 0;
  EXPECT_EQ(camera().SignalSourceToIndex(vrx::ParamExpTimer1, 0, read), -1);
  EXPECT_EQ(read, -1);
}

TEST_F(PageHelpers, SignalSourceInBitModeTestsTheMask) {
  open_board();  // board 1 can power a PoCL camera: line 1 is the 12V supply
  int32_t state = -9;
  ASSERT_EQ(camera().IndexToSignalSource(vrx::ParamPowerOutputSet, vrx::PowerLine12V, 0),
            0);  // set
  EXPECT_EQ(camera().SignalSourceToIndex(vrx::ParamPowerOutput, vrx::PowerLine12V, state), 0);
  EXPECT_EQ(state, 0);
  ASSERT_EQ(camera().IndexToSignalSource(vrx::ParamPowerOutputSet, vrx::PowerLine12V, 1),
            0);  // clear
  EXPECT_EQ(camera().SignalSourceToIndex(vrx::ParamPowerOutput, vrx::PowerLine12V, state), 0);
  EXPECT_EQ(state, 1);
}

TEST_F(PageHelpers, FlagsNumbersAndItems) {
  open_board();
  int32_t flag = -1;
  set_board(vrx::ParamDataValidEnable, 1);
  EXPECT_EQ(camera().FlagFromParameter(vrx::ParamDataValidEnable, flag), 0);
  EXPECT_EQ(flag, 0);
  set_board(vrx::ParamDataValidEnable, 2);
  EXPECT_EQ(camera().FlagFromParameter(vrx::ParamDataValidEnable, flag), 0);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(camera().WriteNumberPlusOne(vrx::ParamBinPixel, 3), 0);
  EXPECT_EQ(board_value(vrx::ParamBinPixel), 4u);
  EXPECT_EQ(camera().WriteNumberPlusOne(vrx::ParamBinPixel, 16), -1);  // 17 is out of range

  EXPECT_EQ(camera().SetNumber(RecordingPage::IdEdit, -12, false), 0);
  auto *edit = camera().control<vrc::window::Edit>(RecordingPage::IdEdit);
  EXPECT_EQ(edit->text(), "-12");
  EXPECT_FALSE(edit->visible());
  EXPECT_EQ(camera().ShowItem(RecordingPage::IdEdit, true), 0);
  EXPECT_TRUE(edit->visible());
  EXPECT_EQ(camera().EnableItem(RecordingPage::IdEdit, false), 0);
  EXPECT_FALSE(edit->enabled());
  auto *bar = camera().control<vrc::window::ScrollBar>(RecordingPage::IdScroll);
  bar->set_range(0, 255);
  EXPECT_EQ(camera().SetScroll(RecordingPage::IdScroll, 77, false, true), 0);
  EXPECT_EQ(bar->position(), 77);
  EXPECT_FALSE(bar->enabled());
  EXPECT_TRUE(bar->visible());
  for (int missing : {0, 999}) {
    EXPECT_EQ(camera().SetNumber(missing, 1, true), -1);
    EXPECT_EQ(camera().ShowItem(missing, true), -1);
    EXPECT_EQ(camera().EnableItem(missing, true), -1);
    EXPECT_EQ(camera().SetScroll(missing, 1, true, true), -1);
  }
}

TEST_F(PageHelpers, ChangesLightApplyNowAndUpdateTheControls) {
  auto *edit = camera().control<vrc::window::Edit>(RecordingPage::IdEdit);
  const int calls = camera().update_controls_calls;
  edit->set_text("55");
  EXPECT_EQ(camera().OnChanged(), 0);
  EXPECT_EQ(camera().edit_value, 7);  // not pulled
  EXPECT_EQ(buttons().back(), '1');
  EXPECT_EQ(camera().OnChangedWithData(), 0);
  EXPECT_EQ(camera().edit_value, 55);
  EXPECT_EQ(camera().update_controls_calls, calls + 2);
}

}  // namespace
}  // namespace control_test
