// The simulated board's service side: self-test faults and their log lines, the error log behind
// the first and last error, the status figures of each bus, the event counter, the general-purpose
// lines with their loop-back and the input look-up table's values.
#include "platform/board/sim/event_counter.h"
#include "platform/board/sim/input_lut.h"
#include "platform/board/sim/io_lines.h"
#include "sim_support.h"

namespace vrxsim_test {
namespace {

using namespace vrx;

std::string text_of(uint32_t handle, uint32_t parameter) {
  const char *text = nullptr;
  EXPECT_EQ(VRX_ParameterGet(handle, parameter, &text), VRX_OK);
  return text ? text : "(null)";
}

TEST_F(SimBoard, ASelfTestFaultFailsThatTestOnceAndIsLogged) {
  open();
  ASSERT_EQ(vrxsim_fault_load("test:0xC0050700:1:0"), VRX_OK);
  EXPECT_EQ(VRX_Test(m_handle, TestPciWalk, nullptr), VRX_OK);
  EXPECT_EQ(VRX_Test(m_handle, TestZbt, nullptr), VRX_ERR_TEST_FAILED);
  EXPECT_EQ(VRX_Test(m_handle, TestZbt, nullptr), VRX_OK);
  const std::vector<Report> reports = Reports::take();
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].function, "VRX_Test");
  EXPECT_EQ(
      reports[0].message,
      "Self-test \"ZBT memory\" failed: pattern 0x55AA55AA read back as 0x55AA55A8 at 0x00104000");
  vrxsim_fault_test(TestChain, 1, 0x1234);
  EXPECT_EQ(VRX_Test(m_handle, TestChain, nullptr), 0x1234u);
}

TEST_F(SimBoard, TheErrorLogKeepsTheFirstUntilAskedAndAlwaysTheLast) {
  open();
  EXPECT_EQ(text_of(m_handle, ParamFirstError), "");
  EXPECT_NE(set(ParamCameraDepth, 7), VRX_OK);
  EXPECT_NE(set(ParamCameraColour, 2), VRX_OK);
  const std::string first = text_of(m_handle, ParamFirstError);
  EXPECT_EQ(first,
            "VRX_ParameterSet: Value 0x00000007 not accepted for 0xC0021100 (status 0x8103)");
  EXPECT_EQ(text_of(m_handle, ParamLastError),
            "VRX_ParameterSet: Value 0x00000002 not accepted for 0xC0021200 (status 0x8103)");
  EXPECT_EQ(text_of(m_handle, ParamFirstError), "");
  EXPECT_NE(set(ParamFirmwareRevision, 1), VRX_OK);  // read only
  EXPECT_NE(text_of(m_handle, ParamFirstError).find("can only be read"), std::string::npos);
}

struct BusCase {
  uint32_t model;
  uint32_t type, width, clock, link, voltage;
};
class BusFigures : public SimBoard, public ::testing::WithParamInterface<BusCase> {};

TEST_P(BusFigures, FollowTheInstalledModel) {
  const BusCase &c = GetParam();
  const std::string boards = "0x" + [&] {
    char text[16];
    std::snprintf(text, sizeof text, "%08X", c.model);
    return std::string(text);
  }();
  setenv("VRXSIM_BOARDS", boards.c_str(), 1);
  open();
  unsetenv("VRXSIM_BOARDS");
  EXPECT_EQ(get(ParamBusType), c.type);
  EXPECT_EQ(get(ParamBusWidth), c.width);
  EXPECT_EQ(get(ParamBusClock), c.clock);
  EXPECT_EQ(get(ParamBusLinkWidth), c.link);
  EXPECT_EQ(get(ParamBusVoltage), c.voltage);
  EXPECT_EQ(get(ParamFirmwareRevision), 0x00010203u);
  EXPECT_EQ(get(ParamLibraryRevision), 0x00020104u);
  EXPECT_EQ(get(ParamAcqState), AcqStateIdle);
}

INSTANTIATE_TEST_SUITE_P(Models, BusFigures,
                         ::testing::Values(BusCase{0xC0011001, BusPci, 32, 33, 0, 50},
                                           BusCase{0xC0011005, BusPci, 64, 66, 0, 33},
                                           BusCase{0xC0012002, BusPciX, 64, 133, 0, 33},
                                           BusCase{0xC0016004, BusPciExpress, 8, 0, 8, 0}));

TEST_F(SimBoard, TheAcquisitionStateWaitsForATriggerEdge) {
  open();
  ASSERT_EQ(set(ParamAcqTrigMode, 0xC0020504), VRX_OK);  // each positive edge
  ASSERT_EQ(start(m_events), VRX_OK);
  EXPECT_EQ(get(ParamAcqState), AcqStateWaitingForTrigger);
  ASSERT_EQ(acquire(VRX_ACQ_ABORT), VRX_OK);
  ASSERT_EQ(set(ParamAcqTrigMode, TrigModeNone), VRX_OK);
  ASSERT_EQ(start(m_events), VRX_OK);
  EXPECT_EQ(get(ParamAcqState), AcqStateActive);
  acquire(VRX_ACQ_ABORT);
}

struct CounterCase {
  uint32_t source, gate;
  uint32_t immediate, gated;
};
class EventCounter : public ::testing::TestWithParam<CounterCase> {};

TEST_P(EventCounter, CountsItsSourceAndLatchesItsGate) {
  // Ten frames of 480 lines at 40 ms a frame.
  const vrxsim::EventCounterInputs inputs{10, 480, 40000.0, GetParam().source, GetParam().gate};
  EXPECT_EQ(vrxsim::immediate_event_count(inputs), GetParam().immediate);
  EXPECT_EQ(vrxsim::gated_event_count(inputs), GetParam().gated);
}

INSTANTIATE_TEST_SUITE_P(
    SourcesAndGates, EventCounter,
    ::testing::Values(CounterCase{0xC0027A01, 0xC0027B02, 4800, 480},      // lines, by frame
                      CounterCase{0xC0027A02, 0xC0027B03, 10, 10},         // frames, by acquisition
                      CounterCase{0xC0027A03, 0xC0027B02, 400000, 40000},  // usecs, by frame
                      CounterCase{0xC0027A03, 0xC0027B04, 400000, 83},     // usecs, by line
                      CounterCase{0xC0027A02, 0xC0027B04, 10, 0}));        // frames, by line

TEST(IoLines, SetAndClearEncodingAndLoopBack) {
  vrxsim::IoLines lines;
  EXPECT_EQ(lines.drive(PortOpSet | OutputTtl1 | OutputCc2), VRX_OK);
  EXPECT_EQ(lines.test_outputs(OutputTtl1), PortOpSet | OutputTtl1);
  EXPECT_EQ(lines.test_outputs(OutputTtl1 | OutputTtl2), PortOpClear | OutputTtl1);
  EXPECT_EQ(lines.drive(PortOpClear | OutputTtl1), VRX_OK);
  EXPECT_EQ(lines.test_outputs(OutputTtl1), PortOpClear);
  EXPECT_EQ(lines.drive(PortOpSet | 0x400), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(lines.drive(0x4000000 | OutputTtl1), VRX_ERR_BAD_VALUE);
  lines.set_external_inputs(InputOpto2 | 0x8000);
  EXPECT_EQ(lines.inputs(false), InputOpto2 | InputCcIo2);
  EXPECT_EQ(lines.inputs(true), InputOpto2 | InputCcIo2 | InputCtrl1);
}

TEST_F(SimBoard, TheOutputPortIsWrittenWithTheEncodingAndReadByMask) {
  open();
  EXPECT_EQ(set(ParamOutputPortSet, PortOpSet | OutputOpto1), VRX_OK);
  uint32_t value = OutputOpto1;
  ASSERT_EQ(VRX_ParameterGet(m_handle, ParamOutputPort, &value), VRX_OK);
  EXPECT_EQ(value, PortOpSet | OutputOpto1);
  EXPECT_EQ(set(ParamOutputPortSet, PortOpSet | 0x800), VRX_ERR_BAD_VALUE);
  uint32_t write_only = 0;
  EXPECT_NE(VRX_ParameterGet(m_handle, ParamOutputPortSet, &write_only), VRX_OK);
  EXPECT_EQ(vrxsim_set_input_lines(m_handle, InputAux2), VRX_OK);
  EXPECT_EQ(get(ParamInputPort), InputAux2);
  EXPECT_NE(set(ParamInputPort, 1), VRX_OK);
}

TEST(InputLut, ValuesAreRangeCheckedAndSignedOffsetsKept) {
  vrxsim::InputLut lut;
  EXPECT_EQ(lut.get(ParamLutEnable), FlagOff);
  EXPECT_EQ(lut.set(ParamLutOffset[1], static_cast<uint32_t>(-255)), VRX_OK);
  EXPECT_EQ(lut.get(ParamLutOffset[1]), static_cast<uint32_t>(-255));
  EXPECT_EQ(lut.set(ParamLutOffset[1], static_cast<uint32_t>(-256)), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(lut.set(ParamLutGain[2], 401), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(lut.set(ParamLutGamma[0], 9), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(lut.get(ParamLutGamma[0]), 100u);
  EXPECT_FALSE(vrxsim::InputLut::is_parameter(0xC002BA00));
}

TEST(InputLut, AppliesPerChannelOrToTheGreyLevel) {
  vrxsim::InputLut lut;
  lut.channels[0].gain = 0;
  std::vector<vrxsim::Rgb16> line{{1000, 2000, 3000}};
  vrxsim::apply_input_lut(lut, false, line);
  EXPECT_EQ(line[0].r, 1000);  // off: untouched
  lut.enabled = true;
  vrxsim::apply_input_lut(lut, false, line);
  EXPECT_EQ(line[0].r, 0);
  EXPECT_EQ(line[0].g, 2000);
  std::vector<vrxsim::Rgb16> grey{{30000, 30000, 30000}};
  vrxsim::apply_input_lut(lut, true, grey);
  EXPECT_EQ(grey[0].g, 0);
}

}  // namespace
}  // namespace vrxsim_test
