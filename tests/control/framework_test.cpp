// The sheet and page framework: page masks and tab order, ShowPages, apply and refresh fan-out,
// Enter and Escape, and the page helpers.
#include "control_support.h"

namespace control_test {
namespace {

using Tabs = std::vector<std::string>;

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
    ::testing::Values(MaskCase{0x4EFF,
                               {"Configure", "Camera", "Status", "Display", "ROI", "Interrupt",
                                "LUT", "Acq Trig", "Exposure", "I/O Ports", "Comms"}},
                      MaskCase{0, {}}, MaskCase{0x4000, {}},
                      MaskCase{0x7FFF,
                               {"Configure", "Camera", "Status", "Display", "ROI", "Interrupt",
                                "LUT", "Acq Trig", "Exposure", "I/O Ports", "Comms", "Test", "PoCL",
                                "Register"}},
                      MaskCase{0x3101, {"Configure", "Test", "PoCL", "Register"}},
                      MaskCase{0x0042, {"Display", "Comms"}}));

}  // namespace
}  // namespace control_test
