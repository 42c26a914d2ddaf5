// Fault table: counted faults, each use consumed under the table's lock.
#include "platform/board/sim/faults.h"

#include <cstdio>
#include <cstdlib>

#include "platform/board/vrx_sdk.h"

namespace vrxsim {
namespace {

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    std::size_t at = text.find(separator);
    parts.push_back(text.substr(0, at));
    if (at == std::string_view::npos) return parts;
    text.remove_prefix(at + 1);
  }
}

bool parse_number(std::string_view text, uint32_t& value) {
  std::string copy(text);
  if (copy.empty()) return false;
  char* end = nullptr;
  unsigned long parsed = std::strtoul(copy.c_str(), &end, 0);
  if (*end != '\0' || parsed > 0xFFFFFFFFul) return false;
  value = static_cast<uint32_t>(parsed);
  return true;
}

template <typename Fault>
bool consume(std::vector<Fault>& list, auto matches) {
  for (auto it = list.begin(); it != list.end(); ++it) {
    if (!matches(*it)) continue;
    if (--it->remaining == 0) list.erase(it);
    return true;
  }
  return false;
}

}  // namespace

void FaultTable::add_call(std::string function, uint32_t count, uint32_t status) {
  std::lock_guard lock(m_mutex);
  if (count > 0) m_calls.push_back({std::move(function), count, status});
}

void FaultTable::add_parameter(uint32_t parameter, bool reads, bool writes, uint32_t count,
                               uint32_t status) {
  std::lock_guard lock(m_mutex);
  if (count > 0 && (reads || writes)) m_parameters.push_back({parameter, reads, writes, count, status});
}

void FaultTable::add_drop(uint32_t event_mask, uint32_t count) {
  std::lock_guard lock(m_mutex);
  if (count > 0) m_drops.push_back({event_mask, count});
}

void FaultTable::add_delay(uint32_t delay_ms, uint32_t count) {
  std::lock_guard lock(m_mutex);
  m_delays.push_back({delay_ms, count, count == 0});
}

void FaultTable::add_test(uint32_t test_id, uint32_t count, uint32_t status) {
  std::lock_guard lock(m_mutex);
  if (count > 0) m_tests.push_back({test_id, count, status ? status : VRX_ERR_TEST_FAILED});
}

void FaultTable::clear() {
  std::lock_guard lock(m_mutex);
  m_tests.clear();
  m_calls.clear();
  m_parameters.clear();
  m_drops.clear();
  m_delays.clear();
}

bool FaultTable::load(std::string_view text, std::string& error) {
  FaultTable parsed;
  for (std::string_view entry : split(text, ';')) {
    if (entry.empty()) continue;
    std::vector<std::string_view> f = split(entry, ':');
    uint32_t a = 0, b = 0, c = 0;
    bool ok = false;
    if (f[0] == "call" && f.size() == 4) {
      ok = !f[1].empty() && parse_number(f[2], a) && parse_number(f[3], b);
      if (ok) parsed.add_call(std::string(f[1]), a, b);
    } else if (f[0] == "param" && f.size() == 5) {
      bool reads = f[2].find('r') != std::string_view::npos;
      bool writes = f[2].find('w') != std::string_view::npos;
      ok = (reads || writes) && parse_number(f[1], a) && parse_number(f[3], b) && parse_number(f[4], c);
      if (ok) parsed.add_parameter(a, reads, writes, b, c);
    } else if (f[0] == "drop" && f.size() == 3) {
      ok = parse_number(f[1], a) && parse_number(f[2], b);
      if (ok) parsed.add_drop(a, b);
    } else if (f[0] == "delay" && f.size() == 3) {
      ok = parse_number(f[1], a) && parse_number(f[2], b);
      if (ok) parsed.add_delay(a, b);
    } else if (f[0] == "test" && f.size() == 4) {
      ok = parse_number(f[1], a) && parse_number(f[2], b) && parse_number(f[3], c);
      if (ok) parsed.add_test(a, b, c);
    }
    if (!ok) {
      error = "Bad fault entry '" + std::string(entry) + "'";
      return false;
    }
  }
  std::scoped_lock lock(m_mutex, parsed.m_mutex);
  m_calls.insert(m_calls.end(), parsed.m_calls.begin(), parsed.m_calls.end());
  m_parameters.insert(m_parameters.end(), parsed.m_parameters.begin(), parsed.m_parameters.end());
  m_drops.insert(m_drops.end(), parsed.m_drops.begin(), parsed.m_drops.end());
  m_delays.insert(m_delays.end(), parsed.m_delays.begin(), parsed.m_delays.end());
  m_tests.insert(m_tests.end(), parsed.m_tests.begin(), parsed.m_tests.end());
  return true;
}

std::optional<uint32_t> FaultTable::take_call(std::string_view function) {
  std::lock_guard lock(m_mutex);
  uint32_t status = 0;
  bool hit = consume(m_calls, [&](const CallFault& f) {
    status = f.status;
    return f.function == function;
  });
  return hit ? std::optional(status) : std::nullopt;
}

std::optional<uint32_t> FaultTable::take_parameter(uint32_t parameter, bool write) {
  std::lock_guard lock(m_mutex);
  uint32_t status = 0;
  bool hit = consume(m_parameters, [&](const ParameterFault& f) {
    status = f.status;
    return f.parameter == parameter && (write ? f.writes : f.reads);
  });
  return hit ? std::optional(status) : std::nullopt;
}

uint32_t FaultTable::take_dropped_events(uint32_t event_mask) {
  std::lock_guard lock(m_mutex);
  uint32_t dropped = 0;
  consume(m_drops, [&](const DropFault& f) {
    dropped = f.mask & event_mask;
    return dropped != 0;
  });
  return dropped;
}

uint32_t FaultTable::take_delay_ms() {
  std::lock_guard lock(m_mutex);
  if (m_delays.empty()) return 0;
  DelayFault& front = m_delays.front();
  uint32_t ms = front.ms;
  if (!front.forever && --front.remaining == 0) m_delays.erase(m_delays.begin());
  return ms;
}

std::optional<uint32_t> FaultTable::take_test(uint32_t test_id) {
  std::lock_guard lock(m_mutex);
  uint32_t status = 0;
  bool hit = consume(m_tests, [&](const TestFault& f) {
    status = f.status;
    return f.test_id == test_id;
  });
  return hit ? std::optional(status) : std::nullopt;
}

FaultTable& faults() {
  static FaultTable* table = [] {
    static FaultTable instance;
    if (const char* text = std::getenv("VRXSIM_FAULTS")) {
      std::string error;
      if (!instance.load(text, error)) std::fprintf(stderr, "VRXSIM_FAULTS: %s\n", error.c_str());
    }
    return &instance;
  }();
  return *table;
}

}  // namespace vrxsim
