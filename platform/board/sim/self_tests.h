// The board self-tests of VRX_Test: their names, and what a failing one reports. On the simulated
// board every test passes unless a fault is injected for it (vrxsim_fault_test); the memory tests
// take a moment, as they do on a board.
#pragma once

#include <cstdint>
#include <string>

namespace vrxsim {

// "PCI walk", "ZBT memory" ...; null for an unknown test id.
const char *self_test_name(uint32_t test_id);
// The log line of a failed test: the test's name and a detail of what went wrong.
std::string self_test_failure(uint32_t test_id);
// How long the test runs, in milliseconds.
uint32_t self_test_duration_ms(uint32_t test_id);

}  // namespace vrxsim
