// Self-test names, failure details and durations.
#include "platform/board/sim/self_tests.h"

#include <array>

#include "platform/board/vrx_params.h"

namespace vrxsim {
namespace {

struct SelfTestInfo {
  uint32_t id;
  const char *name;
  const char *failure;  // what a failing run found
  uint32_t duration_ms;
};

constexpr std::array<SelfTestInfo, 11> kSelfTests{{
    {vrx::TestPciWalk, "PCI walk", "data line 17 stuck low", 0},
    {vrx::TestPciVoltage, "PCI signalling voltage", "slot reports neither 3.3 V nor 5 V", 0},
    {vrx::TestPciWidth, "PCI bus width", "upper 32 data bits do not respond", 0},
    {vrx::TestPciClock, "PCI clock", "bus clock measured outside 33 and 66 MHz", 0},
    {vrx::TestFlash, "Flash memory", "checksum of the FPGA image does not match", 30},
    {vrx::TestZbt, "ZBT memory", "pattern 0x55AA55AA read back as 0x55AA55A8 at 0x00104000", 10},
    {vrx::TestOutputWalk, "Output walk", "output line 3 does not reach its loop-back input", 0},
    {vrx::TestDataPath, "Data path", "camera data bit 5 does not toggle", 0},
    {vrx::TestCcWalk, "Camera control walk", "CC line 2 does not reach its loop-back input", 0},
    {vrx::TestOptoWalk, "Opto-isolator walk", "opto input 1 does not follow its output", 0},
    {vrx::TestChain, "Chain master or slave", "no answer on the chain connector", 0},
}};

const SelfTestInfo *find(uint32_t test_id) {
  for (const SelfTestInfo &test : kSelfTests)
    if (test.id == test_id) return &test;
  return nullptr;
}

}  // namespace

const char *self_test_name(uint32_t test_id) {
  const SelfTestInfo *test = find(test_id);
  return test ? test->name : nullptr;
}

std::string self_test_failure(uint32_t test_id) {
  const SelfTestInfo *test = find(test_id);
  if (!test) return "Unknown self-test";
  return std::string("Self-test \"") + test->name + "\" failed: " + test->failure;
}

uint32_t self_test_duration_ms(uint32_t test_id) {
  const SelfTestInfo *test = find(test_id);
  return test ? test->duration_ms : 0;
}

}  // namespace vrxsim
