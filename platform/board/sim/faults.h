// Injected faults of the simulated board: one process-wide table, consulted by every entry point
// and by the event thread, filled by the vrxsim_fault_ calls and the VRXSIM_FAULTS variable.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vrxsim {

class FaultTable {
 public:
  void add_call(std::string function, uint32_t count, uint32_t status);
  void add_parameter(uint32_t parameter, bool reads, bool writes, uint32_t count, uint32_t status);
  void add_drop(uint32_t event_mask, uint32_t count);
  void add_delay(uint32_t delay_ms, uint32_t count);
  void add_test(uint32_t test_id, uint32_t count, uint32_t status);  // 0: VRX_ERR_TEST_FAILED
  void clear();
  // Parses "call:NAME:N:S;param:ID:r|w|rw:N:S;drop:MASK:N;delay:MS:N;test:ID:N:S"; on error
  // leaves the
  // table as it was and describes the entry in `error`.
  bool load(std::string_view text, std::string& error);

  // Each take_ consumes one use of a matching fault.
  std::optional<uint32_t> take_call(std::string_view function);
  std::optional<uint32_t> take_parameter(uint32_t parameter, bool write);
  uint32_t take_dropped_events(uint32_t event_mask);  // bits to remove from this delivery
  uint32_t take_delay_ms();
  std::optional<uint32_t> take_test(uint32_t test_id);  // status of a failing self-test

 private:
  struct CallFault { std::string function; uint32_t remaining; uint32_t status; };
  struct ParameterFault { uint32_t parameter; bool reads, writes; uint32_t remaining; uint32_t status; };
  struct DropFault { uint32_t mask; uint32_t remaining; };
  struct DelayFault { uint32_t ms; uint32_t remaining; bool forever; };
  struct TestFault { uint32_t test_id; uint32_t remaining; uint32_t status; };

  std::mutex m_mutex;
  std::vector<CallFault> m_calls;
  std::vector<ParameterFault> m_parameters;
  std::vector<DropFault> m_drops;
  std::vector<DelayFault> m_delays;
  std::vector<TestFault> m_tests;
};

// The process's table; the first call loads VRXSIM_FAULTS.
FaultTable& faults();

}  // namespace vrxsim
