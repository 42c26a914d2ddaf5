// Fault injection on the simulated board: counted call and parameter faults, dropped and
// delayed events, and the VRXSIM_FAULTS syntax.
#include <cstdlib>
#include <thread>

#include "platform/board/sim/faults.h"
#include "sim_support.h"

namespace vrxsim_test {
namespace {

using namespace vrx;
using namespace std::chrono_literals;

TEST_F(SimBoard, CallFaultFailsTheNextCallsThenStops) {
  ASSERT_EQ(vrxsim_fault_call("VRX_Open", 2, 0x8999), VRX_OK);
  EXPECT_EQ(VRX_Open(&m_handle), 0x8999u);
  EXPECT_EQ(VRX_Open(&m_handle), 0x8999u);
  EXPECT_EQ(VRX_Open(&m_handle), VRX_OK);
  std::vector<Report> reports = Reports::take();
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[0].function, "VRX_Open");
  EXPECT_EQ(reports[0].status, 0x8999u);
  EXPECT_EQ(reports[0].message, "Injected fault");
}

TEST_F(SimBoard, ParameterFaultHitsOnlyItsDirection) {
  open();
  ASSERT_EQ(vrxsim_fault_parameter(ParamCameraDepth, VRXSIM_WRITE, 1, VRX_ERR_BUSY), VRX_OK);
  uint32_t depth = 0;
  EXPECT_EQ(VRX_ParameterGet(m_handle, ParamCameraDepth, &depth), VRX_OK);
  EXPECT_EQ(set(ParamCameraDepth, 12), VRX_ERR_BUSY);
  EXPECT_EQ(get(ParamCameraDepth), 8u);  // the failed write changed nothing
  EXPECT_EQ(set(ParamCameraDepth, 12), VRX_OK);

  ASSERT_EQ(vrxsim_fault_parameter(ParamCameraColour, VRXSIM_READ | VRXSIM_WRITE, 2, 0x8777), VRX_OK);
  uint32_t colour = 0;
  EXPECT_EQ(VRX_ParameterGet(m_handle, ParamCameraColour, &colour), 0x8777u);
  EXPECT_EQ(set(ParamCameraColour, ColourMono), 0x8777u);
  EXPECT_EQ(VRX_ParameterGet(m_handle, ParamCameraColour, &colour), VRX_OK);
  EXPECT_EQ(vrxsim_fault_parameter(ParamCameraColour, 0, 1, 1), VRX_ERR_BAD_VALUE);
}

TEST_F(SimBoard, FaultsReachTheOtherLibrariesToo) {
  ASSERT_EQ(vrxsim_fault_call("VBL_BufferCreate", 1, 0x8555), VRX_OK);
  uint32_t buffer = 0;
  EXPECT_EQ(VBL_BufferCreate(&buffer, VBL_BUFFER_TYPE_VIRTUAL), 0x8555u);
  ASSERT_EQ(VBL_BufferCreate(&buffer, VBL_BUFFER_TYPE_VIRTUAL), VRX_OK);
  EXPECT_EQ(VBL_BufferDestroy(&buffer), VRX_OK);
}

TEST_F(SimBoard, DroppedEventsNeverReachTheCallback) {
  open();
  set(ParamSrcXLength, 32);
  set(ParamSrcYLength, 16);
  set(ParamBufferCount, 64);
  vrxsim_set_frame_rate(m_handle, 500);
  ASSERT_EQ(vrxsim_fault_drop_events(VRX_EVENT_BUFFER_READY, 5), VRX_OK);
  set(ParamIntrptEnable, VRX_EVENT_END_OF_FRAME);
  EventRecorder& recorder = m_events;
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 3));
  acquire(VRX_ACQ_FREEZE);
  std::this_thread::sleep_for(10ms);
  EXPECT_EQ(recorder.count(VRX_EVENT_END_OF_FRAME), recorder.count(VRX_EVENT_BUFFER_READY) + 5);
}

TEST_F(SimBoard, DelayedEventsArriveLate) {
  open();
  set(ParamSrcXLength, 32);
  set(ParamSrcYLength, 16);
  ASSERT_EQ(vrxsim_fault_delay_events(80, 1), VRX_OK);
  EventRecorder& recorder = m_events;
  const auto started = std::chrono::steady_clock::now();
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 1));
  EXPECT_GE(std::chrono::steady_clock::now() - started, 80ms);
  acquire(VRX_ACQ_ABORT);
}

// The variable is read once, when the first handle is made: a fresh process shows it.
TEST(SimFaultEnvironment, FaultsFromTheEnvironmentApplyFromTheStart) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        setenv("VRXSIM_FAULTS", "call:VRX_Open:1:0x8107", 1);
        uint32_t handle = 0;
        VRX_Create(&handle, nullptr);
        const bool first_fails = VRX_Open(&handle) == VRX_ERR_NO_BOARD;
        const bool second_opens = VRX_Open(&handle) == VRX_OK;
        std::exit(first_fails && second_opens ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(SimFaultText, ParsesEveryEntryKind) {
  vrxsim::FaultTable table;
  std::string error;
  ASSERT_TRUE(table.load("call:VRX_Test:1:0x810F;param:0xC0021100:w:2:5;drop:0x2:3;delay:50:0", error)) << error;
  EXPECT_EQ(table.take_call("VRX_Test"), std::optional<uint32_t>(0x810F));
  EXPECT_EQ(table.take_call("VRX_Test"), std::nullopt);
  EXPECT_EQ(table.take_parameter(0xC0021100, false), std::nullopt);
  EXPECT_EQ(table.take_parameter(0xC0021100, true), std::optional<uint32_t>(5));
  EXPECT_EQ(table.take_dropped_events(0x6), 0x2u);
  EXPECT_EQ(table.take_dropped_events(0x4), 0x0u);
  EXPECT_EQ(table.take_delay_ms(), 50u);
  EXPECT_EQ(table.take_delay_ms(), 50u);  // count 0: until cleared
  table.clear();
  EXPECT_EQ(table.take_delay_ms(), 0u);
}

TEST(SimFaultText, RefusesAMalformedEntryAndKeepsTheTable) {
  vrxsim::FaultTable table;
  std::string error;
  ASSERT_TRUE(table.load("call:VRX_Open:1:7", error));
  for (const char* bad : {"call:VRX_Open:x:7", "param:0xC0021100:q:1:1", "drop:2", "explode:1:2", "delay:5:-1"}) {
    EXPECT_FALSE(table.load(bad, error)) << bad;
    EXPECT_NE(error.find("Bad fault entry"), std::string::npos);
  }
  EXPECT_EQ(table.take_call("VRX_Open"), std::optional<uint32_t>(7));
  EXPECT_EQ(vrxsim_fault_load("nonsense"), VRX_ERR_BAD_VALUE);
}

}  // namespace
}  // namespace vrxsim_test
