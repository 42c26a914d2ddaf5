// The Interrupt page: the bits written one by one to the enable or disable parameter, the
// buffer-ready count and time-out after them, the refresh decoding (bit 31 as the sign), the
// FIFO-overflow count reset, the time-out edit's enable rule and the refusals.
#include "control/pages/intrpt_page.h"
#include "board_page_fixture.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;
using vrc::window::Button;
using vrc::window::Edit;

constexpr int kCheckIds[] = {17347, 17348, 17349, 17352, 17353, 17354,
                             17355, 17356, 17357, 17358, 17360};
constexpr uint32_t kBits[] = {0x1,   0x2,   0x4,   0x20,  0x40,      0x80,
                              0x100, 0x200, 0x400, 0x800, 0x80000000};

class IntrptPage : public BoardPageTest<CVrcPageIntrpt, PageSlot::Intrpt> {
 protected:
  Button *check(int id) const { return item<Button>(id); }
};

TEST_F(IntrptPage, WithoutABoardOnlyTheEnableStatesChange) {
  make(0x4EFF);
  show();
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
  for (int id : kCheckIds) EXPECT_FALSE(check(id)->enabled()) << id;
  EXPECT_FALSE(page()->child(17361)->enabled());
  EXPECT_FALSE(page()->child(17363)->enabled());
  EXPECT_EQ(page()->child(17364)->text(), "0");
}

TEST_F(IntrptPage, ApplyWritesEveryCheckedBitAndClearsTheOthers) {
  open();
  set_board(vrx::ParamIntrptEnable, 0x80000FFF & vrx::kInterruptBitsKnown);
  // Check Test, End of Frame, Timeout and Global Enable only.
  for (int id : kCheckIds)
    check(id)->set_checked(id == 17347 || id == 17353 || id == 17358 || id == 17360);
  page()->control<Edit>(17361)->type_as_user("3");
  page()->control<Edit>(17363)->type_as_user("250");
  page()->update_data(true);
  EXPECT_EQ(page()->OnApplyMessage(), 0);
  // The frame-lost bit is no check box of the page and keeps its state.
  EXPECT_EQ(board(vrx::ParamIntrptEnable), 0x80000841u | VRX_EVENT_FRAME_LOST);
  EXPECT_EQ(board(vrx::ParamBufferReadyCount), 3u);
  EXPECT_EQ(board(vrx::ParamDmaTimeout), 250u);
}

TEST_F(IntrptPage, RefreshShowsTheMaskCountAndTimeOut) {
  open();
  set_board(vrx::ParamIntrptDisable, vrx::kInterruptBitsKnown);
  set_board(vrx::ParamIntrptEnable, 0x80000202);
  set_board(vrx::ParamBufferReadyCount, 5);
  set_board(vrx::ParamDmaTimeout, 40);
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  for (std::size_t i = 0; i < std::size(kCheckIds); ++i)
    EXPECT_EQ(check(kCheckIds[i])->checked(), (0x80000202u & kBits[i]) != 0) << kCheckIds[i];
  EXPECT_EQ(page()->child(17361)->text(), "5");
  EXPECT_EQ(page()->child(17363)->text(), "40");
  // Timeout is not checked: its edit is disabled.
  EXPECT_FALSE(page()->child(17363)->enabled());
  check(17358)->click_as_user();
  EXPECT_TRUE(page()->child(17363)->enabled());
}

TEST_F(IntrptPage, UncheckingTimeoutDisablesItsEditAtOnceAndApplyStillWritesTheValue) {
  open();
  check(17358)->set_checked(true);
  page()->update_data(true);
  page()->UpdateControls();
  EXPECT_TRUE(page()->child(17363)->enabled());
  check(17358)->click_as_user();
  EXPECT_FALSE(page()->child(17363)->enabled());
  page()->control<Edit>(17361)->type_as_user("2");
  page()->control<Edit>(17363)->set_text("777");
  page()->update_data(true);
  EXPECT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_EQ(board(vrx::ParamIntrptEnable) & 0x800u, 0u);
  EXPECT_EQ(board(vrx::ParamDmaTimeout), 777u);
}

TEST_F(IntrptPage, ApplyWithFifoOverflowUncheckedShowsACountOfZero) {
  open();
  page()->CountFifoOverflow();
  page()->CountFifoOverflow();
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  EXPECT_EQ(page()->child(17364)->text(), "2");
  check(17349)->set_checked(false);
  page()->update_data(true);
  EXPECT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_EQ(page()->child(17364)->text(), "0");
  EXPECT_EQ(page()->GetFifoOverflowCount(), 0);
}

TEST_F(IntrptPage, ARefusedWriteStopsTheApplyBeforeTheLaterValues) {
  open();
  set_board(vrx::ParamDmaTimeout, 1000);
  page()->control<Edit>(17361)->type_as_user("9");
  page()->control<Edit>(17363)->type_as_user("55");
  check(17347)->click_as_user();
  vrxsim_fault_parameter(vrx::ParamBufferReadyCount, VRXSIM_WRITE, 1, VRX_ERR_BAD_VALUE);
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  EXPECT_NE(board(vrx::ParamIntrptEnable) & VRX_EVENT_TEST, 0u);  // written before the refusal
  EXPECT_EQ(board(vrx::ParamBufferReadyCount), 1u);
  EXPECT_EQ(board(vrx::ParamDmaTimeout), 1000u);  // never reached
}

TEST_F(IntrptPage, AFailedReadFailsTheRefreshAndLeavesTheControls) {
  open();
  page()->control<Edit>(17361)->type_as_user("12");
  vrxsim_fault_parameter(vrx::ParamDmaTimeout, VRXSIM_READ, 1, VRX_ERR_BAD_PARAMETER);
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
  EXPECT_EQ(page()->child(17361)->text(), "12");
}

}  // namespace
}  // namespace control_test
