// Every board SDK call the control makes, failing on demand: the Live flag, the buttons and the
// board state stay as they should, and the next action works.
#include "control/pages/configure_page.h"
#include "control/pages/display_page.h"
#include "control_support.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;

constexpr int kConfigure = 17023, kRelease = 17024;

enum class Start { Released, Idle, Live };

struct FaultCase {
  const char *name;
  Start start;
  const char *faults;  // the simulator's fault text
  int action;          // a sheet button, or the Configure page's Configure or Release
  int live;
  const char *buttons;  // Single Shot, Live, Freeze, Abort, Refresh, Apply Now
  bool open;            // whether the panel holds a board afterwards
};

std::ostream &operator<<(std::ostream &out, const FaultCase &c) { return out << c.name; }

class SdkFaults : public PanelTest, public ::testing::WithParamInterface<FaultCase> {
 protected:
  void act(int action) {
    if (action == kConfigure || action == kRelease)
      ctrl->GetPage(PageSlot::Configure)->control<vrc::window::Button>(action)->click_as_user();
    else
      press(action);
  }
  bool painting_resumes() {
    const uint64_t painted = ctrl->GetCounters().painted;
    return pump_until([&] { return ctrl->GetCounters().painted >= painted + 3; });
  }
};

TEST_P(SdkFaults, LeaveThePanelConsistent) {
  const FaultCase &c = GetParam();
  make();
  if (c.start != Start::Released) {
    ASSERT_TRUE(configure());
  }
  if (c.start == Start::Live) {
    press(kLive);
    ASSERT_TRUE(painting_resumes());
  }
  ASSERT_EQ(vrxsim_fault_load(c.faults), VRX_OK);
  act(c.action);
  pump_for(50);
  EXPECT_EQ(ctrl->GetLive(), c.live);
  EXPECT_EQ(buttons(), c.buttons);
  EXPECT_EQ(ctrl->GetCameraHandle() != 0, c.open);

  // The next actions work: after a failed open or close, Release and Configure; then Live.
  vrxsim_fault_clear();
  if (c.action == kConfigure || c.action == kRelease)
    page<CVrxPageConfigure>(PageSlot::Configure)->OnRelease();
  if (ctrl->GetCameraHandle() == 0) {
    ASSERT_TRUE(configure());
  }
  press(kAbort);
  press(kLive);
  EXPECT_EQ(ctrl->GetLive(), 1);
  EXPECT_TRUE(painting_resumes());
  press(kFreeze);
  EXPECT_EQ(ctrl->GetLive(), 0);
  EXPECT_EQ(ctrl->GetBuffersHeld(), 0);
}

constexpr const char *kReleased = "000000";

INSTANTIATE_TEST_SUITE_P(
    Calls, SdkFaults,
    ::testing::Values(
        // Starting: the apply's abort and the start both fail.
        FaultCase{"start", Start::Idle, "call:VRX_Acquire:2:0x8106", kLive, 0, kIdleButtons, true},
        // The acquisition mode is refused: Live stays set, nothing runs.
        FaultCase{"acq_mode", Start::Idle, "param:0xC0020100:w:1:0x8103", kLive, 1, kIdleButtons,
                  true},
        // The channel mask is refused: the Configure page closes the board.
        FaultCase{"enable_mask", Start::Idle, "param:0xC0026A00:w:1:0x8103", kLive, 0, kReleased,
                  false},
        // The commit of the settings is refused: apply goes on.
        FaultCase{"apply_settings", Start::Idle, "param:0xC0022901:w:1:0x8103", kLive, 1,
                  kLiveButtons, true},
        FaultCase{"single_start", Start::Idle, "call:VRX_Acquire:2:0x8106", kSingle, 0,
                  kIdleButtons, true},
        FaultCase{"freeze", Start::Live, "call:VRX_Acquire:1:0x8106", kFreeze, 1, kLiveButtons,
                  true},
        FaultCase{"abort", Start::Live, "call:VRX_Acquire:1:0x8106", kAbort, 1, kLiveButtons, true},
        // Apply Now cannot abort the capture: the pages are applied all the same.
        FaultCase{"apply_abort", Start::Live, "call:VRX_Acquire:1:0x8106", kApplyNow, 1,
                  kLiveButtons, true},
        // Painting: failed paints, gets and releases while live.
        FaultCase{"paint", Start::Live, "call:VDL_BufferPaint:3:0x8106", kLive, 1, kLiveButtons,
                  true},
        FaultCase{"buffer_calls", Start::Live, "call:VRX_Acquire:2:0x8108", kLive, 1, kLiveButtons,
                  true},
        // Opening the board.
        FaultCase{"create", Start::Released, "call:VRX_Create:1:0x810E", kConfigure, 0, kReleased,
                  false},
        FaultCase{"open", Start::Released, "call:VRX_Open:1:0x8107", kConfigure, 0, kReleased,
                  false},
        FaultCase{"selection", Start::Released, "param:0xC0070300:w:1:0x8103", kConfigure, 0,
                  kReleased, false},
        // After the handle is handed over a failure leaves the board open and the panel half set
        // up.
        FaultCase{"event_context", Start::Released, "param:0xC0027E00:w:1:0x8103", kConfigure, 0,
                  kReleased, true},
        FaultCase{"board_info", Start::Released, "param:0xC0026600:r:1:0x8103", kConfigure, 0,
                  kReleased, true},
        FaultCase{"status_word", Start::Released, "param:0xC0029500:r:1:0x8103", kConfigure, 0,
                  kIdleButtons, true},
        FaultCase{"register_callback", Start::Released, "call:VRX_Acquire:1:0x8106", kConfigure, 0,
                  kIdleButtons, true},
        // Closing the board: a failed abort, close or destroy keeps it open.
        FaultCase{"release_abort", Start::Live, "call:VRX_Acquire:1:0x8106", kRelease, 1,
                  kLiveButtons, true},
        FaultCase{"close", Start::Idle, "call:VRX_Close:1:0x8104", kRelease, 0, kIdleButtons, true},
        FaultCase{"destroy", Start::Idle, "call:VRX_Destroy:1:0x8101", kRelease, 0, kIdleButtons,
                  true}),
    [](const ::testing::TestParamInfo<FaultCase> &test) { return std::string(test.param.name); });

TEST_F(PanelTest, AFailedDisplayLeavesBuffersFlowingUnpainted) {
  make();
  vrxsim_fault_load("call:VDL_DisplayCreate:2:0x810E");  // at configure, and at Live's apply
  ASSERT_TRUE(configure());
  auto *display = page<CVrxPageDisplay>(PageSlot::Display);
  EXPECT_EQ(display->GetDisplayHandle(), 0u);
  press(kLive);
  pump_for(200);
  EXPECT_GT(ctrl->GetCounters().acquired, 0u);
  EXPECT_EQ(ctrl->GetCounters().painted, 0u);
  EXPECT_EQ(ctrl->GetBuffersHeld(), 0);
  press(kApplyNow);  // the apply builds the display again
  EXPECT_NE(display->GetDisplayHandle(), 0u);
  press(kLive);
  EXPECT_TRUE(pump_until([&] { return ctrl->GetCounters().painted >= 2; }));
}

TEST_F(PanelTest, TheSemaphoreReportsWhenPaintingFindsItFree) {
  make();
  ASSERT_TRUE(configure());
  ctrl->send(vrc::window::WM_USER + 12);  // a paint that no event asked for
  EXPECT_EQ(take_reports(),
            (Reports{{"VrxCtrl::PaintBuffer", VRC_OK, "Failed to release event semaphore"}}));
}

}  // namespace
}  // namespace control_test
