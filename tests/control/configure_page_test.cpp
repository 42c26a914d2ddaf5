// The Configure page opening and closing boards: the selection tables, Configure in each board
// mode (flags, CoaXPress decision, tabs and title), Release, the release message, failures while
// opening and the board closed with the panel.
#include "control/pages/configure_page.h"
#include "control_support.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;
using vrc::window::Button;
using vrc::window::ComboBox;

class ConfigureBoard : public PanelTest {
 protected:
  CVrxPageConfigure *page() const {
    return this->PanelTest::page<CVrxPageConfigure>(PageSlot::Configure);
  }
  Button *button(int id) const { return page()->control<Button>(id); }
  bool enabled(int id) const { return page()->child(id)->enabled(); }
  std::string selection_states() const {
    std::string states;
    for (int id : {17023, 17028, 17025, 17026, 17029, 17024, 17027})
      states += enabled(id) ? '1' : '0';
    return states;
  }
};

struct ModeCase {
  int mode, board, channel;
  std::string title;
  int acq, comms, camera_link;
  bool cxp_tab, comms_tab, camera_tab;
};
class ConfigureModes : public ConfigureBoard, public ::testing::WithParamInterface<ModeCase> {};

TEST_P(ConfigureModes, OpenTheBoardSetTheFlagsTabsAndTitle) {
  const ModeCase &c = GetParam();
  make();
  ASSERT_TRUE(configure(c.board, c.channel, c.mode));
  EXPECT_EQ(ctrl->text(), c.title);
  EXPECT_EQ(ctrl->GetInit(), 1);
  EXPECT_EQ(ctrl->GetAcq(), c.acq);
  EXPECT_EQ(ctrl->GetComms(), c.comms);
  EXPECT_EQ(ctrl->GetCameraLink(), c.camera_link);
  const std::vector<std::string> tabs = tabs_of(*ctrl);
  auto has = [&](const char *caption) {
    return std::find(tabs.begin(), tabs.end(), caption) != tabs.end();
  };
  EXPECT_EQ(has("CXP"), c.cxp_tab) << ::testing::PrintToString(tabs);
  EXPECT_EQ(has("Comms"), c.comms_tab) << ::testing::PrintToString(tabs);
  EXPECT_EQ(has("Camera"), c.camera_tab) << ::testing::PrintToString(tabs);
  EXPECT_EQ(selection_states(), "0000011");

  button(17024)->click_as_user();
  EXPECT_EQ(handle(), 0u);
  EXPECT_EQ(ctrl->GetInit(), 0);
  EXPECT_EQ(selection_states(), "1111100");
}

INSTANTIATE_TEST_SUITE_P(
    Modes, ConfigureModes,
    ::testing::Values(
        // Board 1 is the PoCL Camera Link Base board, board 2 the four-link CoaXPress board.
        ModeCase{0, 0, 0, "Vireo Board 1, Channel A", 1, 1, 1, false, true, true},
        // Acquisition Only hides the Comms tab, Comms Only the acquisition tabs.
        ModeCase{1, 0, 0, "Vireo Board 1, Channel A", 1, 0, 1, false, false, true},
        ModeCase{2, 0, 0, "Vireo Board 1, Channel A", 0, 1, 0, false, true, false},
        ModeCase{0, 1, 1, "Vireo Board 2, Channel B", 1, 1, 0, true, false, true}));

TEST_F(ConfigureBoard, TheTitleNamesTheChosenModel) {
  make();
  page()->control<ComboBox>(17028)->select_as_user(15);  // the PoCL Camera Link Base model
  ASSERT_TRUE(configure());
  EXPECT_EQ(ctrl->text(), "VR-PCLB-E1 Board 1, Channel A");
}

TEST_F(ConfigureBoard, ReleaseAfterACoaXPressBoardBringsTheTabsBack) {
  make();
  ASSERT_TRUE(configure(1, 0, 0));
  EXPECT_EQ(tabs_of(*ctrl),
            (std::vector<std::string>{"Configure", "Camera", "Status", "Display", "ROI", "CXP"}));
  button(17024)->click_as_user();
  EXPECT_EQ(ctrl->text(), "Vireo Board 2, Channel A");  // a panel without parent keeps its title
  EXPECT_EQ(tabs_of(*ctrl), (std::vector<std::string>{"Configure", "Camera", "Status", "Display",
                                                      "ROI", "Interrupt", "LUT", "Acq Trig",
                                                      "Exposure", "I/O Ports", "Comms"}));
}

TEST_F(ConfigureBoard, AFailedOpenDestroysTheHandleAndStaysReleased) {
  make();
  EXPECT_FALSE(configure(5, 0, 0));  // no board 6
  EXPECT_EQ(ctrl->GetInit(), 0);
  EXPECT_EQ(selection_states(), "1111100");
  vrxsim_fault_call("VRX_Open", 1, VRX_ERR_NO_BOARD);
  EXPECT_FALSE(configure(0, 0, 0));
  EXPECT_TRUE(configure(0, 0, 0));
}

TEST_F(ConfigureBoard, TheReleaseMessageClosesWithoutTouchingTitleOrTabs) {
  make();
  ASSERT_TRUE(configure(1, 0, 0));
  const std::vector<std::string> tabs = tabs_of(*ctrl);
  const std::string title = ctrl->text();
  EXPECT_EQ(page()->send(vrc::window::WM_USER + 9), 0);
  EXPECT_EQ(handle(), 0u);
  EXPECT_EQ(tabs_of(*ctrl), tabs);
  EXPECT_EQ(ctrl->text(), title);
}

TEST_F(ConfigureBoard, DestroyingThePanelClosesTheBoard) {
  make();
  ASSERT_TRUE(configure());
  const uint32_t open_handle = handle();
  ctrl.reset();
  uint32_t copy = open_handle;
  EXPECT_EQ(VRX_Close(&copy), VRX_ERR_BAD_HANDLE);
}

}  // namespace
}  // namespace control_test
