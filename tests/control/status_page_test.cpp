// The Status page: its texts from the board's figures, the bus descriptions, the acquisition
// states, the event counts while live, the first and last errors, Board Properties, a failed read
// and the enable rule.
#include "control/pages/status_page.h"
#include "board_page_fixture.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using namespace vrc::pages;
using vrc::control::PageSlot;
using vrc::window::Button;

TEST(StatusTexts, RevisionsBusesAndStates) {
  EXPECT_EQ(revision_text(0x00010203), "v1.2.3");
  EXPECT_EQ(revision_text(0x000A1B2C), "va.1b.2c");
  EXPECT_EQ(bus_text(vrx::BusPci, 32, 33, 0, 50), "5V 32 bit PCI bus running at 33 MHz");
  EXPECT_EQ(bus_text(vrx::BusPci, 64, 66, 0, 33), "3.3V 64 bit PCI bus running at 66 MHz");
  EXPECT_EQ(bus_text(vrx::BusPciX, 64, 133, 0, 33), "3.3V 64 bit PCI-X bus running at 133 MHz");
  EXPECT_EQ(bus_text(vrx::BusPciExpress, 8, 0, 4, 0), "PCI Express: board = x8, link = x4");
  EXPECT_STREQ(acquisition_state_text(vrx::AcqStateIdle), "Idle");
  EXPECT_STREQ(acquisition_state_text(vrx::AcqStateActive), "An acquisition is in progress");
  EXPECT_STREQ(acquisition_state_text(vrx::AcqStateWaitingForTrigger),
               "Waiting for a trigger event");
  EXPECT_STREQ(acquisition_state_text(0), "");
  EXPECT_EQ(board_properties_text("Model=VR-X\n\nName=A, B\nloose\n"),
            "Model: VR-X\nName: A, B\nloose");
}

using StatusPage = BoardPageTest<CVrxPageStatus, PageSlot::Status>;

TEST_F(StatusPage, WithoutABoardTheTextsAreEmptyAndTheButtonsDisabled) {
  make(0x4EFF);
  show();
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  for (int id = 17300; id <= 17307; ++id) EXPECT_EQ(text(id), "") << id;
  EXPECT_FALSE(page()->child(17308)->enabled());
  EXPECT_FALSE(page()->child(17309)->enabled());
}

TEST_F(StatusPage, RefreshShowsTheBoardsFigures) {
  open();
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  EXPECT_EQ(text(17300), "v1.2.3");
  EXPECT_EQ(text(17301), "v2.1.4");
  EXPECT_EQ(text(17302), "PCI Express: board = x1, link = x1");
  EXPECT_EQ(text(17303), "Idle");
  EXPECT_EQ(text(17304), "0");
  EXPECT_EQ(text(17305), "0");
  EXPECT_EQ(text(17307), "None");
  EXPECT_TRUE(page()->child(17308)->enabled());
  EXPECT_EQ(page()->OnApplyMessage(), 0);
}

TEST_F(StatusPage, WhileLiveTheStateAndCountsFollowTheCamera) {
  open();
  vrxsim_set_frame_rate(handle(), 200);
  press(17001);  // Live
  ASSERT_TRUE(pump_until([&] { return ctrl->GetCounters().acquired >= 3; }));
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  EXPECT_EQ(text(17303), "An acquisition is in progress");
  // Frames counted by lines by default, gated by frames: one frame's 480 lines.
  EXPECT_GE(std::stoul(text(17304)), 3u * 480u);
  EXPECT_EQ(text(17305), "480");
  press(17003);  // Abort
}

TEST_F(StatusPage, ErrorsShowTheFirstOnRequestAndTheLastOnRefresh) {
  open();
  uint32_t bad = 7;
  EXPECT_NE(VRX_ParameterSet(handle(), vrx::ParamCameraDepth, &bad), VRX_OK);
  vrxsim_fault_test(vrx::TestZbt, 1, 0);
  EXPECT_NE(VRX_Test(handle(), vrx::TestZbt, nullptr), VRX_OK);
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  EXPECT_NE(text(17307).find("VRX_Test: Self-test \"ZBT memory\" failed"), std::string::npos)
      << text(17307);
  page()->control<Button>(17308)->click_as_user();
  EXPECT_NE(text(17306).find("VRX_ParameterSet: Value 0x00000007 not accepted"), std::string::npos)
      << text(17306);
  // Asked again with no error since: none.
  page()->control<Button>(17308)->click_as_user();
  EXPECT_EQ(text(17306), "None");
}

TEST_F(StatusPage, BoardPropertiesShowsTheInformationText) {
  open(0x4EFF, 1);
  page()->control<Button>(17309)->click_as_user();
  ASSERT_EQ(desk().boxes().size(), 1u);
  EXPECT_EQ(desk().boxes()[0].caption, "Board Properties");
  EXPECT_EQ(desk().boxes()[0].text.substr(0, 40), "Model: VRX-CXP4\nName: CoaXPress 4 links,");
}

TEST_F(StatusPage, AFailedReadFailsTheRefreshAndKeepsTheTexts) {
  open();
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  vrxsim_fault_parameter(vrx::ParamBusType, VRXSIM_READ, 1, VRX_ERR_BAD_PARAMETER);
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
  EXPECT_EQ(text(17302), "PCI Express: board = x1, link = x1");
}

}  // namespace
}  // namespace control_test
