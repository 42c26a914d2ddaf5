// A panel over the simulated board for the page tests: construction with every page, the board
// opened through the Configure page, a page's window made by activating its tab, the board's
// values read behind the panel's back, and the trace of the parameter writes.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "control/pages/bound_page.h"
#include "control/pages/configure_page.h"
#include "control/vrx_messages.h"
#include "control_support.h"

namespace control_test {

using vrc::control::PageSlot;

// Board selections of the Configure page (the simulated boards: board 1 a PoCL Camera Link Base
// board, board 2 a four-link CoaXPress board with two channels).
inline constexpr int kCameraLinkBoard = 0;
inline constexpr int kCoaXPressBoard = 1;
inline constexpr int kModeNormal = 0, kModeAcquisitionOnly = 1, kModeCommsOnly = 2;

// Sets an environment variable of the simulated board for its lifetime.
class ScopedBoardSetting {
 public:
  ScopedBoardSetting(const char *name, const char *value) : m_name(name) { setenv(name, value, 1); }
  ~ScopedBoardSetting() { unsetenv(m_name); }
  ScopedBoardSetting(const ScopedBoardSetting &) = delete;
  ScopedBoardSetting &operator=(const ScopedBoardSetting &) = delete;

 private:
  const char *m_name;
};

class PageFixture : public ControlTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  CVrxCtrl &ctrl() { return *m_ctrl; }
  // Opens a board through the Configure page and lets the refresh that follows run.
  void configure(int board = kCameraLinkBoard, int mode = kModeNormal);
  void release();
  // The page of a slot, with its window (its tab activated).
  template <typename Page = CVrxPage>
  Page &page(PageSlot slot) {
    CVrxPage *found = ctrl().GetPage(slot);
    EXPECT_NE(found, nullptr);
    if (found && !found->has_window()) ctrl().set_active_page(ctrl().page_index(found));
    return *dynamic_cast<Page *>(found);
  }
  uint32_t handle() { return ctrl().GetCameraHandle(); }
  uint32_t board_value(uint32_t parameter);
  void set_board_value(uint32_t parameter, uint32_t value);
  // Runs the panel's queued messages.
  void settle();

  // Writes recorded from now on.
  void trace() { vrxsim_trace_writes(1); }
  std::vector<VRXSIM_PARAMETER_WRITE> traced();
  // The parameters of the traced writes, in order.
  std::vector<uint32_t> traced_parameters();

  bool apply_lit() {
    auto *apply = ctrl().GetButton(vrc::window::ID_APPLY_NOW);
    return apply && apply->enabled();
  }
  static vrc::window::LRESULT apply(CVrxPage &page) { return page.send(vrc::control::kMsgApply); }
  static vrc::window::LRESULT refresh(CVrxPage &page) {
    return page.send(vrc::control::kMsgRefresh);
  }

  // Control shortcuts on a page.
  static std::string text(const CVrxPage &page, int id);
  static bool enabled(const CVrxPage &page, int id);
  static int selection(const CVrxPage &page, int id);
  static std::string selected_text(const CVrxPage &page, int id);
  static void select(CVrxPage &page, int id, int index);
  static void type(CVrxPage &page, int id, const std::string &text);
  static void click(CVrxPage &page, int id);
  static bool checked(const CVrxPage &page, int id);

 private:
  std::unique_ptr<CVrxCtrl> m_ctrl;
};

}  // namespace control_test
