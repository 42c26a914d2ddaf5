// The I/O Ports page: outputs written with the set/clear encoding and read back line by line,
// Set All and Clear All, the input levels (the simulated board's loop-back included), the auto
// refresh timer, a refused write and the enable rule.
#include "control/pages/io_ports_page.h"
#include "board_page_fixture.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;
using vrc::window::Button;

constexpr int kOutputIds[] = {17200, 17201, 17202, 17203, 17204, 17205, 17206, 17207, 17208, 17209};
constexpr int kInputIds[] = {17220, 17221, 17222, 17223, 17224, 17225, 17226, 17227, 17228};

class IoPortsPage : public BoardPageTest<CVrxPageIoPorts, PageSlot::IoPorts> {
 protected:
  Button *box(int id) const { return item<Button>(id); }
  bool line_set(uint32_t line) const {
    uint32_t value = line;
    EXPECT_EQ(VRX_ParameterGet(handle(), vrx::ParamOutputPort, &value), VRX_OK);
    return (value & vrx::PortOpMask) == vrx::PortOpSet;
  }
  std::string outputs() const {
    std::string states;
    for (int id : kOutputIds) states += box(id)->checked() ? '1' : '0';
    return states;
  }
  // H, L, or - for an empty text, per input line.
  std::string inputs() const {
    std::string levels;
    for (int id : kInputIds) levels += text(id) == "High" ? 'H' : text(id) == "Low" ? 'L' : '-';
    return levels;
  }
};

TEST_F(IoPortsPage, WithoutABoardEverythingIsDisabledAndNoLevelShown) {
  make(0x4EFF);
  show();
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
  for (int id : kOutputIds) EXPECT_FALSE(box(id)->enabled());
  for (int id : {17210, 17211, 17230, 17231}) EXPECT_FALSE(page()->child(id)->enabled());
  EXPECT_EQ(inputs(), "---------");
}

TEST_F(IoPortsPage, ApplySetsTheCheckedLinesAndClearsTheOthers) {
  open();
  uint32_t preset = vrx::PortOpSet | vrx::OutputTtl3;
  ASSERT_EQ(VRX_ParameterSet(handle(), vrx::ParamOutputPortSet, &preset), VRX_OK);
  box(17200)->click_as_user();
  box(17206)->click_as_user();
  EXPECT_TRUE(ctrl->child(vrc::window::ID_APPLY_NOW)->enabled());
  EXPECT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_TRUE(line_set(vrx::OutputTtl1));
  EXPECT_TRUE(line_set(vrx::OutputCc1));
  EXPECT_FALSE(line_set(vrx::OutputTtl3));
  // TTL Out 1 loops back to AuxIn 1, CC 1 to CcIo 1.
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  EXPECT_EQ(outputs(), "1000001000");
  EXPECT_EQ(inputs(), "LLHLLLLHL");
}

TEST_F(IoPortsPage, RefreshReadsEachLineAndTheOutsideLevels) {
  open();
  uint32_t lines = vrx::PortOpSet | vrx::OutputOpto2 | vrx::OutputCc4;
  ASSERT_EQ(VRX_ParameterSet(handle(), vrx::ParamOutputPortSet, &lines), VRX_OK);
  vrxsim_set_input_lines(handle(), vrx::InputOpto1 | vrx::InputCtrl3);
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  EXPECT_EQ(outputs(), "0000010001");
  EXPECT_EQ(inputs(), "HLLLLLHLL");
}

TEST_F(IoPortsPage, SetAllAndClearAllDriveEveryLineAtOnce) {
  open();
  page()->control<Button>(17210)->click_as_user();
  EXPECT_EQ(outputs(), "1111111111");
  EXPECT_TRUE(line_set(vrx::kOutputLinesAll));
  page()->control<Button>(17211)->click_as_user();
  EXPECT_EQ(outputs(), "0000000000");
  EXPECT_FALSE(line_set(vrx::OutputTtl1));
}

TEST_F(IoPortsPage, ReadInputsAndAutoRefreshFollowTheLevels) {
  open();
  vrxsim_set_input_lines(handle(), vrx::InputOpto2);
  page()->control<Button>(17230)->click_as_user();
  EXPECT_EQ(inputs(), "LHLLLLLLL");
  box(17231)->click_as_user();
  EXPECT_TRUE(page()->AutoRefreshRunning());
  vrxsim_set_input_lines(handle(), vrx::InputCcIo2);
  EXPECT_TRUE(pump_until([&] { return inputs() == "LLLLLLLLH"; }, 2000)) << inputs();
  box(17231)->click_as_user();
  EXPECT_FALSE(page()->AutoRefreshRunning());
}

TEST_F(IoPortsPage, ARefusedSetWriteLeavesTheClearUnwritten) {
  open();
  uint32_t preset = vrx::PortOpSet | vrx::OutputTtl4;
  ASSERT_EQ(VRX_ParameterSet(handle(), vrx::ParamOutputPortSet, &preset), VRX_OK);
  // No box is checked: apply would set nothing and then clear every line.
  vrxsim_fault_parameter(vrx::ParamOutputPortSet, VRXSIM_WRITE, 1, VRX_ERR_BAD_VALUE);
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  EXPECT_TRUE(line_set(vrx::OutputTtl4));
  EXPECT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_FALSE(line_set(vrx::OutputTtl4));
}

TEST_F(IoPortsPage, AFailedLineReadFailsTheRefresh) {
  open();
  vrxsim_fault_parameter(vrx::ParamOutputPort, VRXSIM_READ, 1, VRX_ERR_BAD_PARAMETER);
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
}

}  // namespace
}  // namespace control_test
