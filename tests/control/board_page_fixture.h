// A fixture for one page of a panel over the simulated board: the panel with its window, a
// board opened on the Configure page, the page made the active tab, and the board's parameters
// read and written directly as a test's eye on the board.
#pragma once

#include <string>

#include "control_support.h"

namespace control_test {

template <typename PageType, vrc::control::PageSlot Slot>
class BoardPageTest : public PanelTest {
 protected:
  // Opens board `board` (combo index) in `mode` on a panel of `pages`, then shows the page.
  void open(uint32_t pages = 0x4EFF, int board = 0, int mode = 0) {
    make(pages);
    ASSERT_TRUE(configure(board, 0, mode));
    show();
  }
  // Makes the page the active tab and lets the refresh that opening a board posts run.
  void show() {
    ctrl->set_active_page(ctrl->page_index(page()));
    pump_for(50);
  }
  PageType *page() const { return PanelTest::page<PageType>(Slot); }
  template <typename ControlType>
  ControlType *item(int id) const {
    return page()->template control<ControlType>(id);
  }
  std::string text(int id) const { return page()->child(id)->text(); }
  uint32_t board(uint32_t parameter) const {
    uint32_t value = 0;
    EXPECT_EQ(VRX_ParameterGet(handle(), parameter, &value), VRX_OK);
    return value;
  }
  void set_board(uint32_t parameter, uint32_t value) {
    ASSERT_EQ(VRX_ParameterSet(handle(), parameter, &value), VRX_OK);
  }
};

}  // namespace control_test
