// The acquisition engine over the simulated board: the Live, Single Shot, Freeze and Abort
// states, the paint coalescing, FIFO overflow, the frame-rate title and its adaptation, the
// display flag, and the interrupt messages.
#include "control/pages/display_page.h"
#include "control/pages/intrpt_page.h"
#include "control/vrx_messages.h"
#include "control_support.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;

class Engine : public PanelTest {
 protected:
  void SetUp() override {
    PanelTest::SetUp();
    make();
    ASSERT_TRUE(configure());
  }
  CVrxPageDisplay &display() { return *page<CVrxPageDisplay>(PageSlot::Display); }
  CVrcPageIntrpt &intrpt() { return *page<CVrcPageIntrpt>(PageSlot::Intrpt); }
  bool painted_at_least(uint64_t n, int timeout_ms = 5000) {
    return pump_until([&] { return ctrl->GetCounters().painted >= n; }, timeout_ms);
  }
  // Whether the board is capturing: idle-only parameters are refused while it is.
  bool board_capturing() {
    uint32_t depth = 8;
    vrxsim_fault_clear();
    return VRX_ParameterSet(handle(), vrx::ParamCameraDepth, &depth) == VRX_ERR_BUSY;
  }
};

TEST_F(Engine, ConfigureEnablesTheButtonsAndTitlesThePanel) {
  EXPECT_EQ(buttons(), kIdleButtons);
  EXPECT_EQ(ctrl->text(), "Vireo Board 1, Channel A");
  EXPECT_EQ(ctrl->GetInit(), 1);
  EXPECT_EQ(ctrl->GetAcq(), 1);
  EXPECT_EQ(ctrl->GetCameraLink(), 1);  // the PoCL Camera Link Base board
  EXPECT_EQ(ctrl->GetCLBase(), 1);
}

struct StateStep {
  int button;
  int live;
  const char *buttons;
  int capturing;  // 1 or 0; -1 when the capture may or may not have ended (a single shot)
};

class EngineStates : public Engine, public ::testing::WithParamInterface<std::vector<StateStep>> {};

TEST_P(EngineStates, FollowTheStateTable) {
  for (const StateStep &step : GetParam()) {
    SCOPED_TRACE(step.button);
    press(step.button);
    EXPECT_EQ(ctrl->GetLive(), step.live);
    EXPECT_EQ(buttons(), step.buttons);
    if (step.capturing >= 0) {
      EXPECT_EQ(board_capturing(), step.capturing == 1);
    }
    if (step.button == kLive) {
      EXPECT_TRUE(painted_at_least(2));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Sequences, EngineStates,
    ::testing::Values(
        std::vector<StateStep>{{kLive, 1, kLiveButtons, 1}, {kFreeze, 0, kIdleButtons, 0}},
        std::vector<StateStep>{{kLive, 1, kLiveButtons, 1}, {kAbort, 0, kIdleButtons, 0}},
        std::vector<StateStep>{{kLive, 1, kLiveButtons, 1}, {kApplyNow, 0, kIdleButtons, 0}},
        std::vector<StateStep>{{kLive, 1, kLiveButtons, 1}, {kSingle, 0, kIdleButtons, -1}},
        std::vector<StateStep>{{kAbort, 0, kIdleButtons, 0}, {kRefresh, 0, kIdleButtons, 0}}));

TEST_F(Engine, SingleShotEndsWithTheFirstPaintedBuffer) {
  press(kSingle);
  EXPECT_EQ(ctrl->GetLive(), 0);
  ASSERT_TRUE(pump_until([&] { return display().GetCapturesFinished() >= 1; }));
  EXPECT_EQ(ctrl->GetCounters().painted, 1u);
  EXPECT_EQ(display().GetSurface()->pictures_painted(), 1u);
  EXPECT_EQ(ctrl->GetBufferContext() != 0, true);
  EXPECT_EQ(buttons(), kIdleButtons);
}

TEST_F(Engine, TwoBufferReadyEventsBeforeAPaintGiveOnePaintAndOneStaleRelease) {
  // Frames are captured but their events are lost, then the capture is frozen with the
  // pictures retained; two buffer-ready events then arrive before the UI thread runs.
  vrxsim_fault_drop_events(VRX_EVENT_BUFFER_READY | VRX_EVENT_FIFO_OVERFLOW | VRX_EVENT_FRAME_LOST,
                           1000000);
  vrxsim_set_frame_rate(handle(), 200);
  press(kLive);
  pump_for(100);
  press(kFreeze);
  vrxsim_fault_clear();
  ASSERT_TRUE(pump_until([&] { return ctrl->queue().size() == 0; }));
  const VrcAcquisitionCounters before = ctrl->GetCounters();
  CVrxCtrl::CtrlEventCallback(handle(), VRX_EVENT_BUFFER_READY, ctrl.get());
  CVrxCtrl::CtrlEventCallback(handle(), VRX_EVENT_BUFFER_READY, ctrl.get());
  EXPECT_TRUE(ctrl->has_queued(vrc::control::kMsgPaint, vrc::control::kMsgPaint));
  EXPECT_EQ(ctrl->queue().size(), 1u);
  EXPECT_EQ(ctrl->GetPendingBuffers(), 2);
  ASSERT_TRUE(pump_until([&] { return ctrl->queue().size() == 0; }));
  const VrcAcquisitionCounters after = ctrl->GetCounters();
  EXPECT_EQ(after.painted - before.painted, 1u);
  EXPECT_EQ(after.dropped - before.dropped, 1u);
  EXPECT_EQ(after.most_paints_queued, 1u);
  EXPECT_EQ(ctrl->GetPendingBuffers(), 0);
  EXPECT_EQ(ctrl->GetBuffersHeld(), 0);
}

TEST_F(Engine, FifoOverflowWhileLiveAbortsAndRestarts) {
  press(kLive);
  ASSERT_TRUE(painted_at_least(2));
  vrxsim_raise_event(handle(), VRX_EVENT_FIFO_OVERFLOW);
  ASSERT_TRUE(pump_until([&] { return intrpt().GetFifoOverflowCount() == 1; }));
  EXPECT_EQ(ctrl->GetLive(), 1);
  const uint64_t painted = ctrl->GetCounters().painted;
  EXPECT_TRUE(painted_at_least(painted + 2));
  EXPECT_TRUE(board_capturing());
}

TEST_F(Engine, FifoOverflowWhileSingleOnlyAborts) {
  vrxsim_set_frame_rate(handle(), 1);  // the single frame is still to come
  press(kSingle);
  vrxsim_raise_event(handle(), VRX_EVENT_FIFO_OVERFLOW);
  ASSERT_TRUE(pump_until([&] { return intrpt().GetFifoOverflowCount() == 1; }));
  EXPECT_EQ(ctrl->GetLive(), 0);
  EXPECT_FALSE(board_capturing());
}

TEST_F(Engine, FailedRestartAfterOverflowLeavesLive) {
  press(kLive);
  ASSERT_TRUE(painted_at_least(1));
  const int overflows = intrpt().GetFifoOverflowCount();
  vrxsim_fault_call("VRX_Acquire", 1, VRX_ERR_BUSY);  // the restart
  EXPECT_EQ(ctrl->OnFifoOverflow(), 0);
  EXPECT_EQ(ctrl->GetLive(), 0);
  EXPECT_EQ(intrpt().GetFifoOverflowCount(), overflows + 1);
}

TEST_F(Engine, FrameLostEventsAreCounted) {
  CVrxCtrl::CtrlEventCallback(handle(), VRX_EVENT_FRAME_LOST, ctrl.get());
  CVrxCtrl::CtrlEventCallback(handle(), VRX_EVENT_FRAME_LOST, ctrl.get());
  ASSERT_TRUE(pump_until([&] { return intrpt().GetFrameLostCount() == 2; }));
}

TEST_F(Engine, InterruptMessagesShowTheHandlerNameAsTextAndTheEventAsCaption) {
  CVrxCtrl::CtrlEventCallback(handle(), VRX_EVENT_TEST | VRX_EVENT_TIMEOUT | VRX_EVENT_ACQ_TRIG_END,
                              ctrl.get());
  ASSERT_TRUE(pump_until([&] { return ctrl->queue().size() == 0; }));
  const auto &boxes = desk().boxes();
  ASSERT_EQ(boxes.size(), 2u);  // the AcqTrigEnd message is not mapped
  EXPECT_EQ(boxes[0].text, "VrxCtrl::OnInterruptTest");
  EXPECT_EQ(boxes[0].caption, "Test Interrupt Received");
  EXPECT_EQ(boxes[1].text, "VrxCtrl::OnInterruptTimeout");
  EXPECT_EQ(boxes[1].caption, "Timeout Interrupt Received");
  EXPECT_EQ(ctrl->OnInterruptAcqTrigEnd(), 0);
  ASSERT_EQ(boxes.size(), 3u);
  EXPECT_EQ(boxes[2].text, "VrxCtrl::OnInterruptAcqTrigEnd");
  EXPECT_EQ(boxes[2].caption, "AcqTrigEnd Interrupt Received");
}

TEST_F(Engine, TestInterruptFromTheBoardReachesAMessageBox) {
  uint32_t test_bit = VRX_EVENT_TEST;
  ASSERT_EQ(VRX_ParameterSet(handle(), vrx::ParamIntrptEnable, &test_bit), VRX_OK);
  vrxsim_raise_event(handle(), VRX_EVENT_TEST);
  ASSERT_TRUE(pump_until([&] { return desk().boxes().size() == 1; }));
}

TEST_F(Engine, WithTheDisplayFlagClearBuffersAreStillFetchedReleasedAndCounted) {
  display().control<vrc::window::Button>(17140)->click_as_user();
  ASSERT_FALSE(display().GetDisplayFlag());
  EXPECT_EQ(buttons(), "110111");  // the change lit Apply Now
  press(kSingle);
  ASSERT_TRUE(pump_until([&] { return display().GetCapturesFinished() >= 1; }));
  EXPECT_EQ(ctrl->GetCounters().painted, 1u);
  EXPECT_EQ(display().GetSurface()->pictures_painted(), 0u);
  EXPECT_EQ(ctrl->GetBuffersHeld(), 0);
  press(kLive);
  ASSERT_TRUE(painted_at_least(5));
  EXPECT_EQ(display().GetSurface()->pictures_painted(), 0u);
}

TEST_F(Engine, ClosingWhileLiveStopsAndReleasesEverything) {
  vrxsim_set_frame_rate(handle(), 500);
  press(kLive);
  ASSERT_TRUE(painted_at_least(10));
  ctrl.reset();  // aborts, closes and destroys the board, with events still arriving
  EXPECT_TRUE(take_reports().empty());
}

// ---- The frame-rate title ----

struct RateCase {
  double fps;
  uint32_t first_update;   // frames per update after the first title
  const char *first_rate;  // the title's rate text
  uint32_t second_update;  // after the second
  const char *second_rate;
};

constexpr const char *kBoardTitle = "Vireo Board 1, Channel A, ";

class FrameRateTitle : public PanelTest, public ::testing::WithParamInterface<RateCase> {};

TEST_P(FrameRateTitle, AppearsAfterTenFramesAndAdaptsItsPace) {
  desk().use_manual_clock(1'000'000'000);
  make();
  const RateCase &c = GetParam();
  for (int frame = 1; frame <= 10; ++frame) {
    EXPECT_EQ(ctrl->text(), "Vireo Control");
    desk().advance_ms(1000.0 / c.fps);
    ctrl->DisplayStats();
  }
  EXPECT_EQ(ctrl->text(), kBoardTitle + std::string(c.first_rate) + " fps");
  EXPECT_EQ(static_cast<uint32_t>(ctrl->GetFramesPerUpdate()), c.first_update);
  for (uint32_t frame = 1; frame <= c.first_update; ++frame) {
    desk().advance_ms(1000.0 / c.fps);
    ctrl->DisplayStats();
  }
  EXPECT_EQ(ctrl->text(), kBoardTitle + std::string(c.second_rate) + " fps");
  EXPECT_EQ(static_cast<uint32_t>(ctrl->GetFramesPerUpdate()), c.second_update);
}

INSTANTIATE_TEST_SUITE_P(Rates, FrameRateTitle,
                         ::testing::Values(RateCase{30, 31, "30.03", 31, "30.01"},
                                           RateCase{300, 304, "303.03", 304, "300.10"},
                                           RateCase{10, 10, "10.00", 10, "10.00"},
                                           RateCase{2, 3, "2.00", 3, "2.00"}));

TEST_F(PanelTest, TitleNamesTheConfiguredBoardAndChannel) {
  desk().use_manual_clock(1'000'000'000);
  make();
  ASSERT_TRUE(configure(1, 1));  // board 2, channel B: the two-channel CoaXPress board
  EXPECT_EQ(ctrl->text(), "Vireo Board 2, Channel B");
  for (int frame = 1; frame <= 10; ++frame) {
    desk().advance_ms(40);
    ctrl->DisplayStats();
  }
  EXPECT_EQ(ctrl->text(), "Vireo Board 2, Channel B, 25.00 fps");
}

TEST_F(PanelTest, FailedCounterReadReportsAndKeepsCounting) {
  desk().use_manual_clock(1'000'000'000);
  make();
  for (int frame = 1; frame < 10; ++frame) ctrl->DisplayStats();
  desk().use_manual_clock(0);
  errno = 0;
  ctrl->DisplayStats();
  EXPECT_EQ(take_reports(),
            (Reports{{"VrxCtrl::DisplayStats", VRC_OK, "QPC() failed with error 0\n"}}));
  EXPECT_EQ(ctrl->text(), "Vireo Control");
}

}  // namespace
}  // namespace control_test
