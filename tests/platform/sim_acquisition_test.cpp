// Acquisition on the simulated board, on its own event thread: every operation, event delivery
// and the interrupt mask, FIFO overflow when buffers are held, ring order, triggers, time-outs.
// Runs under ThreadSanitizer in CI.
#include <atomic>
#include <cstring>
#include <thread>

#include "platform/board/sim/test_pattern.h"
#include "sim_support.h"

namespace vrxsim_test {
namespace {

using namespace vrx;
using namespace std::chrono_literals;

class Acquisition : public SimBoard {
 protected:
  void SetUp() override {
    SimBoard::SetUp();
    open();
    set(ParamSrcXLength, 64);
    set(ParamSrcYLength, 48);
    ASSERT_EQ(vrxsim_set_frame_rate(m_handle, 400), VRX_OK);
  }
  void TearDown() override {
    acquire(VRX_ACQ_ABORT);
    SimBoard::TearDown();
  }

  // The frame number whose test pattern the buffer holds, or 0.
  uint64_t frame_in(const VRX_BUFFER_RECORD& record) {
    vrxsim::PatternGeometry g{get(ParamCaptureWidth), get(ParamCaptureHeight), get(ParamDstXLength),
                              get(ParamCaptureFormat), get(ParamCameraColour), 256};
    std::vector<uint8_t> expected(std::size_t{g.bytes_per_line} * g.height);
    for (uint64_t n = 1; n < 2000; ++n) {
      vrxsim::draw_test_pattern(g, n, expected);
      if (std::memcmp(expected.data(), record.address, expected.size()) == 0) return n;
    }
    return 0;
  }
  uint64_t get_frame() {
    VRX_BUFFER_RECORD record{};
    if (acquire(VRX_ACQ_BUFFER_GET, &record) != VRX_OK) return 0;
    return frame_in(record);
  }
};

TEST_F(Acquisition, LiveDeliversBufferReadyOnTheEventThreadWithTheContext) {
  EventRecorder& recorder = m_events;
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 3));
  EXPECT_EQ(recorder.handle(), m_handle);
  EXPECT_EQ(acquire(VRX_ACQ_START), VRX_ERR_BUSY);
  EXPECT_EQ(set(ParamSrcXLength, 32), VRX_ERR_BUSY);  // geometry is fixed while capturing
  EXPECT_EQ(set(ParamExpTimer1, 5), VRX_OK);           // other settings are not
  EXPECT_EQ(acquire(VRX_ACQ_FREEZE), VRX_OK);
}

TEST_F(Acquisition, ConsumerThatKeepsUpSeesEveryFrameInOrder) {
  EventRecorder& recorder = m_events;
  set(ParamBufferCount, 8);
  ASSERT_EQ(start(recorder), VRX_OK);
  uint64_t previous = 0;
  for (int i = 0; i < 6; ++i) {
    ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, static_cast<std::size_t>(i + 1)));
    const uint64_t frame = get_frame();
    ASSERT_NE(frame, 0u);
    if (previous) {
      EXPECT_EQ(frame, previous + 1);
    }
    previous = frame;
    ASSERT_EQ(acquire(VRX_ACQ_BUFFER_RELEASE), VRX_OK);
  }
  EXPECT_EQ(recorder.count(VRX_EVENT_FIFO_OVERFLOW), 0u);
}

TEST_F(Acquisition, HeldBuffersOverflowTheFifoAndLoseFrames) {
  EventRecorder& recorder = m_events;
  set(ParamBufferCount, 2);
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_FRAME_LOST, 2));
  EXPECT_EQ(recorder.count(VRX_EVENT_FIFO_OVERFLOW), 1u);  // once per stall, then frames lost
  EXPECT_EQ(recorder.count(VRX_EVENT_BUFFER_READY), 2u);

  // Releasing the stale buffers lets capture go on.
  ASSERT_EQ(acquire(VRX_ACQ_BUFFER_RELEASE), VRX_OK);
  ASSERT_EQ(acquire(VRX_ACQ_BUFFER_RELEASE), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 3));
}

// The panel's callback aborts capture from the event thread when the FIFO overflows and
// restarts it later from its own thread.
struct AbortingConsumer {
  EventRecorder recorder;
  std::atomic<uint32_t> abort_status{0xFFFFFFFF};
  static void callback(uint32_t handle, uint32_t mask, void* context) {
    auto* self = static_cast<AbortingConsumer*>(context);
    if (mask & VRX_EVENT_FIFO_OVERFLOW) self->abort_status = VRX_Acquire(handle, VRX_ACQ_ABORT, nullptr);
    self->recorder.record(handle, mask);
  }
};

TEST_F(Acquisition, CallbackMayAbortAndTheApplicationRestarts) {
  AbortingConsumer consumer;
  HandleGuard guard(m_handle);
  set(ParamBufferCount, 2);
  VRX_ParameterSet(m_handle, ParamEventContext, &consumer);
  ASSERT_EQ(acquire(VRX_ACQ_START, reinterpret_cast<void*>(&AbortingConsumer::callback)), VRX_OK);
  ASSERT_TRUE(consumer.recorder.wait_for(VRX_EVENT_FIFO_OVERFLOW, 1));
  std::this_thread::sleep_for(20ms);
  EXPECT_EQ(consumer.abort_status.load(), VRX_OK);
  EXPECT_EQ(consumer.recorder.count(VRX_EVENT_FRAME_LOST), 0u);  // nothing after the abort

  // A restart keeps the ring as it is: both buffers are still waiting to be released.
  ASSERT_EQ(acquire(VRX_ACQ_RESTART, reinterpret_cast<void*>(&AbortingConsumer::callback)), VRX_OK);
  ASSERT_TRUE(consumer.recorder.wait_for(VRX_EVENT_FIFO_OVERFLOW, 2));
  ASSERT_EQ(acquire(VRX_ACQ_BUFFER_RELEASE), VRX_OK);
  ASSERT_EQ(acquire(VRX_ACQ_BUFFER_RELEASE), VRX_OK);
  ASSERT_EQ(acquire(VRX_ACQ_RESTART), VRX_OK);  // the callback stays registered
  ASSERT_TRUE(consumer.recorder.wait_for(VRX_EVENT_BUFFER_READY, 3));
}

TEST_F(Acquisition, SingleShotCapturesOneFrameAndStops) {
  EventRecorder& recorder = m_events;
  set(ParamAcqMode, AcqModeSingle);
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 1));
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(recorder.count(VRX_EVENT_BUFFER_READY), 1u);
  EXPECT_NE(get_frame(), 0u);
  EXPECT_EQ(acquire(VRX_ACQ_START, nullptr), VRX_OK);  // stopped by itself: may start again
}

TEST_F(Acquisition, AfterFreezeGetAndReleaseWalkTheRingInOrder) {
  EventRecorder& recorder = m_events;
  set(ParamBufferCount, 4);
  ASSERT_EQ(start(recorder), VRX_OK);
  // Keep up for a while so that the ring wraps, then freeze.
  for (std::size_t i = 1; i <= 6; ++i) {
    ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, i));
    ASSERT_EQ(acquire(VRX_ACQ_BUFFER_RELEASE), VRX_OK);
  }
  ASSERT_EQ(acquire(VRX_ACQ_FREEZE), VRX_OK);
  std::vector<uint64_t> walk;
  for (int i = 0; i < 8; ++i) {
    walk.push_back(get_frame());
    ASSERT_EQ(acquire(VRX_ACQ_BUFFER_RELEASE), VRX_OK);
  }
  // Each buffer holds one of the last four frames; the walk repeats with period four and
  // ascends within a period except where the ring wraps.
  for (int i = 0; i < 4; ++i) EXPECT_EQ(walk[static_cast<std::size_t>(i)], walk[static_cast<std::size_t>(i + 4)]);
  int descents = 0;
  for (int i = 0; i < 4; ++i) descents += walk[static_cast<std::size_t>((i + 1) % 4)] < walk[static_cast<std::size_t>(i)];
  EXPECT_EQ(descents, 1);
  EXPECT_EQ(acquire(VRX_ACQ_BUFFER_RELEASE), VRX_ERR_NO_BUFFER);  // nothing got, nothing waiting
}

TEST_F(Acquisition, GetWithoutACapturedBufferFails) {
  VRX_BUFFER_RECORD record{};
  EXPECT_EQ(acquire(VRX_ACQ_BUFFER_GET, &record), VRX_ERR_NO_BUFFER);
  EXPECT_EQ(acquire(VRX_ACQ_BUFFER_GET, nullptr), VRX_ERR_NULL_ARGUMENT);
  EXPECT_EQ(acquire(0xC0039900), VRX_ERR_BAD_PARAMETER);
  std::vector<Report> reports = Reports::take();
  ASSERT_EQ(reports.size(), 3u);
  EXPECT_EQ(reports[2].message, "Unknown acquisition operation 0xC0039900");
}

TEST_F(Acquisition, InterruptMaskDecidesWhatIsDelivered) {
  EventRecorder& recorder = m_events;
  set(ParamIntrptEnable, VRX_EVENT_START_OF_FRAME | VRX_EVENT_END_OF_FRAME | VRX_EVENT_TEST);
  set(ParamIntrptDisable, VRX_EVENT_BUFFER_READY);
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_END_OF_FRAME, 3));
  ASSERT_EQ(vrxsim_raise_event(m_handle, VRX_EVENT_TEST), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_TEST, 1));
  EXPECT_EQ(recorder.all_bits() & ~(VRX_EVENT_START_OF_FRAME | VRX_EVENT_END_OF_FRAME | VRX_EVENT_TEST |
                                    VRX_EVENT_FIFO_OVERFLOW | VRX_EVENT_FRAME_LOST),
            0u);

  // Without the global enable nothing at all arrives.
  set(ParamIntrptDisable, VRX_EVENT_GLOBAL_ENABLE);
  std::this_thread::sleep_for(30ms);
  const std::size_t before = recorder.count(0xFFFFFFFF);
  vrxsim_raise_event(m_handle, VRX_EVENT_TEST);
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(recorder.count(0xFFFFFFFF), before);
}

TEST_F(Acquisition, BufferReadyCountGroupsFrames) {
  EventRecorder& recorder = m_events;
  set(ParamBufferCount, 32);
  set(ParamBufferReadyCount, 4);
  set(ParamIntrptEnable, VRX_EVENT_END_OF_FRAME);
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 3));
  ASSERT_EQ(acquire(VRX_ACQ_FREEZE), VRX_OK);
  const std::size_t frames = recorder.count(VRX_EVENT_END_OF_FRAME);
  EXPECT_EQ(recorder.count(VRX_EVENT_BUFFER_READY), frames / 4);
}

TEST_F(Acquisition, EachEdgeModeTakesOneFramePerTrigger) {
  EventRecorder& recorder = m_events;
  set(ParamAcqTrigMode, 0xC0020504);  // each positive edge
  set(ParamIntrptEnable, VRX_EVENT_ACQ_TRIG_START);
  ASSERT_EQ(start(recorder), VRX_OK);
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(recorder.count(VRX_EVENT_BUFFER_READY), 0u);
  ASSERT_EQ(vrxsim_trigger(m_handle), VRX_OK);
  ASSERT_EQ(acquire(AcqCmdSoftwareTrigger), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 2));
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(recorder.count(VRX_EVENT_BUFFER_READY), 2u);
  EXPECT_EQ(recorder.count(VRX_EVENT_ACQ_TRIG_START), 2u);
}

TEST_F(Acquisition, FirstEdgeModeRunsFreeAfterTheTrigger) {
  EventRecorder& recorder = m_events;
  set(ParamBufferCount, 16);
  set(ParamAcqTrigMode, 0xC0020502);
  ASSERT_EQ(start(recorder), VRX_OK);
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(recorder.count(VRX_EVENT_BUFFER_READY), 0u);
  vrxsim_trigger(m_handle);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 4));
}

TEST_F(Acquisition, InternalTimerTriggersFrames) {
  EventRecorder& recorder = m_events;
  set(ParamBufferCount, 16);
  set(ParamAcqTrigMode, 0xC0020504);
  set(ParamAcqTrigSource, TrigSourceInternalTimer);
  set(ParamTimerPeriodUnit, TimerUnitUsecs);
  set(ParamTimerPeriod, 5000);
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 3));
}

TEST_F(Acquisition, TimeoutEventWhenNoFrameArrives) {
  EventRecorder& recorder = m_events;
  set(ParamAcqTrigMode, 0xC0020504);  // waits for edges that never come
  set(ParamDmaTimeout, 20);
  set(ParamIntrptEnable, VRX_EVENT_TIMEOUT);
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_TIMEOUT, 2));
  EXPECT_EQ(recorder.count(VRX_EVENT_BUFFER_READY), 0u);
}

TEST_F(Acquisition, RegisteredCallbackServesAStartWithoutOne) {
  EventRecorder& recorder = m_events;
  VRX_ParameterSet(m_handle, ParamEventContext, &recorder);
  ASSERT_EQ(acquire(AcqCmdRegisterCallback, reinterpret_cast<void*>(&EventRecorder::callback)), VRX_OK);
  ASSERT_EQ(acquire(VRX_ACQ_START, nullptr), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 1));
}

TEST_F(Acquisition, InjectedFrameReplacesThePicture) {
  EventRecorder& recorder = m_events;
  const std::vector<uint8_t> marker{1, 2, 3, 4, 5, 6, 7, 8};
  ASSERT_EQ(vrxsim_inject_frame(m_handle, marker.data(), static_cast<uint32_t>(marker.size())), VRX_OK);
  set(ParamAcqMode, AcqModeSingle);
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 1));
  VRX_BUFFER_RECORD record{};
  ASSERT_EQ(acquire(VRX_ACQ_BUFFER_GET, &record), VRX_OK);
  EXPECT_EQ(std::memcmp(record.address, marker.data(), marker.size()), 0);
}

TEST_F(Acquisition, DestroyWhileCapturingStopsTheThread) {
  EventRecorder& recorder = m_events;
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 1));
  ASSERT_EQ(VRX_Destroy(&m_handle), VRX_OK);
  const std::size_t after = recorder.count(0xFFFFFFFF);
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(recorder.count(0xFFFFFFFF), after);
}

TEST_F(SimBoard, CommsOnlyModeRefusesAcquisition) {
  open(0xC0010001, ChannelA, BoardModeCommsOnly);
  EXPECT_EQ(acquire(VRX_ACQ_START), VRX_ERR_NOT_SUPPORTED);
}

TEST(SimChannels, TwoChannelsCaptureSideBySide) {
  EventRecorder first, second;
  uint32_t handles[2] = {};
  HandleGuard guards[2] = {HandleGuard(handles[0]), HandleGuard(handles[1])};
  EventRecorder* recorders[2] = {&first, &second};
  for (uint32_t i = 0; i < 2; ++i) {
    ASSERT_EQ(VRX_Create(&handles[i], nullptr), VRX_OK);
    uint32_t board = 0xC0010002, channel = i == 0 ? ChannelA : ChannelB;
    VRX_ParameterSet(handles[i], ParamBoardNumber, &board);
    VRX_ParameterSet(handles[i], ParamChannelNumber, &channel);
    ASSERT_EQ(VRX_Open(&handles[i]), VRX_OK);
    vrxsim_set_frame_rate(handles[i], 300);
    VRX_ParameterSet(handles[i], ParamEventContext, recorders[i]);
    ASSERT_EQ(VRX_Acquire(handles[i], VRX_ACQ_START, reinterpret_cast<void*>(&EventRecorder::callback)), VRX_OK);
  }
  EXPECT_TRUE(first.wait_for(VRX_EVENT_BUFFER_READY, 2));
  EXPECT_TRUE(second.wait_for(VRX_EVENT_BUFFER_READY, 2));
  EXPECT_EQ(first.handle(), handles[0]);
  EXPECT_EQ(second.handle(), handles[1]);
}

}  // namespace
}  // namespace vrxsim_test
