// The panel live at 2000 frames per second for several seconds while the UI thread paints: at
// most one paint message waits at any time, the queue stays small, and every buffer got from the
// board goes back. Run under ThreadSanitizer too (label "threads").
#include "control_support.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

constexpr int kLive = 17001, kAbort = 17003;

TEST_F(PanelTest, LiveAtTwoThousandFramesPerSecondKeepsOnePaintWaiting) {
  make();
  ASSERT_TRUE(configure());
  uint32_t width = 320, height = 240;
  ASSERT_EQ(VRX_ParameterSet(handle(), vrx::ParamSrcXLength, &width), VRX_OK);
  ASSERT_EQ(VRX_ParameterSet(handle(), vrx::ParamSrcYLength, &height), VRX_OK);
  ASSERT_EQ(vrxsim_set_frame_rate(handle(), 2000), VRX_OK);
  press(kLive);
  pump_for(100);  // the refreshes that Live posts to every page go first
  ctrl->queue().reset_high_water();
  pump_for(3000);
  const VrcAcquisitionCounters live = ctrl->GetCounters();
  press(kAbort);
  pump_until([&] { return ctrl->queue().size() == 0; });

  const VrcAcquisitionCounters after = ctrl->GetCounters();
  EXPECT_GT(live.acquired, 100u);  // fewer under ThreadSanitizer, where the UI thread is slow
  EXPECT_GT(live.painted, 20u);
  EXPECT_EQ(after.most_paints_queued, 1u);
  EXPECT_LE(ctrl->queue().high_water(), 8u);
  EXPECT_EQ(ctrl->GetBuffersHeld(), 0);
  // Every buffer-ready event was painted, dropped as stale or is still counted as pending.
  EXPECT_EQ(after.acquired,
            after.painted + after.dropped + static_cast<uint64_t>(ctrl->GetPendingBuffers()));
  EXPECT_TRUE(take_reports().empty());
}

TEST_F(PanelTest, ClosingAtHighRateWhileLiveEndsCleanly) {
  make();
  ASSERT_TRUE(configure());
  ASSERT_EQ(vrxsim_set_frame_rate(handle(), 2000), VRX_OK);
  press(kLive);
  pump_for(300);
  ctrl.reset();
  EXPECT_TRUE(take_reports().empty());
}

}  // namespace
}  // namespace control_test
