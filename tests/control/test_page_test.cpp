// The Test page: the defaults with "Flash" off, Select All and Select None, the run of the checked
// tests in order with one failure injected, the result boxes, and the enable rules.
#include "control/pages/test_page.h"
#include "board_page_fixture.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;
using vrc::window::Button;

// In running order, with their defaults.
constexpr int kTestIds[] = {17250, 17251, 17266, 17252, 17254, 17255,
                            17256, 17258, 17259, 17260, 17262};
constexpr bool kDefaults[] = {true, true, true, true, false, true, true, true, true, true, true};
constexpr int kUnbound[] = {17253, 17257, 17261};
constexpr int kButtons[] = {17263, 17264, 17265};

class TestPage : public BoardPageTest<CVrxPageTest, PageSlot::Test> {
 protected:
  Button *box(int id) const { return item<Button>(id); }
  std::string checks() const {
    std::string states;
    for (int id : kTestIds) states += box(id)->checked() ? '1' : '0';
    return states;
  }
};

TEST_F(TestPage, DefaultsLeaveFlashOffAndNothingIsEnabledWithoutABoard) {
  make(0x0101);
  show();
  EXPECT_EQ(checks(), "11110111111");
  for (int id : kTestIds) EXPECT_FALSE(box(id)->enabled()) << id;
  for (int id : kButtons) EXPECT_FALSE(box(id)->enabled()) << id;
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
}

TEST_F(TestPage, WithABoardEveryTestButFlashAndTheUnboundBoxesIsEnabled) {
  open(0x0101);
  for (std::size_t i = 0; i < std::size(kTestIds); ++i)
    EXPECT_EQ(box(kTestIds[i])->enabled(), kTestIds[i] != 17254) << kTestIds[i];
  for (int id : kUnbound) EXPECT_FALSE(box(id)->enabled()) << id;
  for (int id : kButtons) EXPECT_TRUE(box(id)->enabled()) << id;
  EXPECT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
}

TEST_F(TestPage, SelectNoneClearsAllAndSelectAllRestoresTheDefaults) {
  open(0x0101);
  box(17254)->set_checked(true);
  box(17265)->click_as_user();
  EXPECT_EQ(checks(), "00000000000");
  box(17264)->click_as_user();
  EXPECT_EQ(checks(), "11110111111");
}

TEST_F(TestPage, APassingRunShowsThePassedBox) {
  open(0x0101);
  box(17263)->click_as_user();
  ASSERT_EQ(desk().boxes().size(), 1u);
  EXPECT_EQ(desk().boxes()[0].text, "System test passed (see log window for details)");
  EXPECT_EQ(desk().boxes()[0].caption, "");
  EXPECT_EQ(desk().boxes()[0].type, vrc::window::MB_OK | vrc::window::MB_ICONINFORMATION);
  EXPECT_FALSE(page()->IsRunning());
  for (int id : kButtons) EXPECT_TRUE(box(id)->enabled()) << id;
  EXPECT_EQ(desk().wait_cursor_depth(), 0);
}

TEST_F(TestPage, AFailureDoesNotStopTheLaterTestsAndShowsTheFailedBox) {
  open(0x0101);
  // The ZBT test fails, and so does the last test, which runs all the same.
  vrxsim_fault_test(vrx::TestZbt, 1, 0);
  vrxsim_fault_test(vrx::TestChain, 1, 0);
  box(17263)->click_as_user();
  ASSERT_EQ(desk().boxes().size(), 1u);
  EXPECT_EQ(desk().boxes()[0].text, "System test failed (see log window for details)");
  EXPECT_EQ(desk().boxes()[0].type, vrc::window::MB_OK | vrc::window::MB_ICONERROR);
  const char *first = nullptr, *last = nullptr;
  ASSERT_EQ(VRX_ParameterGet(handle(), vrx::ParamFirstError, &first), VRX_OK);
  ASSERT_EQ(VRX_ParameterGet(handle(), vrx::ParamLastError, &last), VRX_OK);
  EXPECT_NE(std::string(first).find("ZBT memory"), std::string::npos) << first;
  EXPECT_NE(std::string(last).find("Chain master or slave"), std::string::npos) << last;
}

TEST_F(TestPage, OnlyCheckedTestsRunAndFlashRunsWhenChecked) {
  open(0x0101);
  box(17265)->click_as_user();
  box(17254)->set_checked(true);  // Flash, checked by program: the box itself stays disabled
  vrxsim_fault_test(vrx::TestPciWalk, 1, 0);
  vrxsim_fault_test(vrx::TestFlash, 1, 0);
  box(17263)->click_as_user();
  ASSERT_EQ(desk().boxes().size(), 1u);
  EXPECT_EQ(desk().boxes()[0].text, "System test failed (see log window for details)");
  EXPECT_EQ(VRX_Test(handle(), vrx::TestPciWalk, nullptr), VRX_ERR_TEST_FAILED);  // not run
}

TEST_F(TestPage, TheButtonsAreDisabledWhileTheTestsRun) {
  open(0x0101);
  // The result box is shown while the run is still marked: the buttons are disabled then.
  struct Probe : TestDesktop {
    CVrxPageTest *page = nullptr;
    std::string seen;
    int message_box(vrc::window::Window *, std::string_view, std::string_view, unsigned) override {
      for (int id : kButtons) seen += page->child(id)->enabled() ? '1' : '0';
      return vrc::window::IDOK;
    }
  };
  auto probe = std::make_unique<Probe>();
  Probe *seen = probe.get();
  probe->page = page();
  auto previous = vrc::window::set_desktop(std::move(probe));
  box(17263)->click_as_user();
  EXPECT_EQ(seen->seen, "000");
  vrc::window::set_desktop(std::move(previous));
  for (int id : kButtons) EXPECT_TRUE(box(id)->enabled()) << id;
}

}  // namespace
}  // namespace control_test
