// The simulated board's CoaXPress link state and power trip, a PoCL camera attached from the
// environment, and the trace of parameter writes that the page tests read.
#include <cstdlib>
#include <vector>

#include "sim_support.h"

namespace vrxsim_test {
namespace {

using namespace vrx;

class CxpLink : public SimBoard {
 protected:
  void SetUp() override {
    SimBoard::SetUp();
    open(0xC0010002);  // the four-link CoaXPress board
  }
  std::vector<uint32_t> state() {
    return {get(ParamCxpDiscovery), get(ParamCxpCurrentSpeed), get(ParamCxpCurrentLinks),
            get(ParamCxpPowerState)};
  }
};

TEST_F(CxpLink, PowerOffOrATripLosesTheCameraAndTripResetBringsItBack) {
  const std::vector<uint32_t> found{1, 0xC0091005, 0xC0091204, CxpPowerStatePowered};
  EXPECT_EQ(state(), found);
  ASSERT_EQ(set(ParamCxpPower, CxpPowerOff), VRX_OK);
  EXPECT_EQ(state(), (std::vector<uint32_t>{0, 0, 0, CxpPowerStateUnavailable}));
  ASSERT_EQ(set(ParamCxpPower, CxpPowerForceOn), VRX_OK);
  ASSERT_EQ(vrxsim_set_cxp_trip(m_handle, 1), VRX_OK);
  EXPECT_EQ(state(), (std::vector<uint32_t>{0, 0, 0, CxpPowerStateTripped}));
  ASSERT_EQ(set(ParamCxpPower, CxpPowerTripReset), VRX_OK);
  EXPECT_EQ(state(), found);
  EXPECT_EQ(set(ParamCxpPowerState, CxpPowerStatePowered), VRX_ERR_READ_ONLY);
}

TEST_F(SimBoard, ATripNeedsACoaXPressBoard) {
  open();
  EXPECT_EQ(vrxsim_set_cxp_trip(m_handle, 1), VRX_ERR_NOT_SUPPORTED);
  EXPECT_EQ(Reports::take().size(), 1u);
}

TEST_F(SimBoard, APoclCameraCanBeAttachedFromTheEnvironment) {
  setenv("VRXSIM_POCL_CAMERA", "1", 1);
  open();
  unsetenv("VRXSIM_POCL_CAMERA");
  ASSERT_EQ(set(ParamPowerOutputSet, PortOpClear | PowerLine12V | PowerLineGround), VRX_OK);
  ASSERT_EQ(set(ParamPoclSenseEnable, 1), VRX_OK);
  ASSERT_EQ(set(ParamPoclSense, 1), VRX_OK);
  EXPECT_EQ(get(ParamPoclStatus), 1u);
}

TEST_F(SimBoard, TheTraceRecordsEveryWriteInOrderRefusalsIncluded) {
  open();
  vrxsim_trace_writes(1);
  set(ParamCameraDepth, 12);
  set(ParamCameraDepth, 13);
  VRX_ParameterSet(m_handle, ParamEventContext, this);
  vrxsim_trace_writes(0);
  set(ParamCameraDepth, 8);

  uint32_t count = 0;
  ASSERT_EQ(vrxsim_traced_writes(nullptr, 0, &count), VRX_OK);
  ASSERT_EQ(count, 3u);
  std::vector<VRXSIM_PARAMETER_WRITE> writes(2);
  ASSERT_EQ(vrxsim_traced_writes(writes.data(), 2, &count), VRX_OK);
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(writes[0].handle, m_handle);
  EXPECT_EQ(writes[0].parameter, ParamCameraDepth);
  EXPECT_EQ(writes[0].value, 12u);
  EXPECT_EQ(writes[0].status, VRX_OK);
  EXPECT_EQ(writes[1].value, 13u);
  EXPECT_EQ(writes[1].status, VRX_ERR_BAD_VALUE);
  writes.resize(3);
  ASSERT_EQ(vrxsim_traced_writes(writes.data(), 3, &count), VRX_OK);
  EXPECT_EQ(writes[2].parameter, ParamEventContext);
  EXPECT_EQ(writes[2].value, 0u);  // a pointer, not a word
  EXPECT_EQ(vrxsim_traced_writes(nullptr, 1, &count), VRX_ERR_NULL_ARGUMENT);
  vrxsim_trace_writes(1);
  ASSERT_EQ(vrxsim_traced_writes(nullptr, 0, &count), VRX_OK);
  EXPECT_EQ(count, 0u);
  vrxsim_trace_writes(0);
}

}  // namespace
}  // namespace vrxsim_test
