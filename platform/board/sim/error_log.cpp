// Error log of a handle.
#include "platform/board/sim/error_log.h"

#include <cstdio>
#include <utility>

namespace vrxsim {

std::string error_line(const char *function, uint32_t status, const std::string &message) {
  char code[24];
  std::snprintf(code, sizeof code, " (status 0x%04X)", status);
  return std::string(function ? function : "?") + ": " + message + code;
}

void ErrorLog::record(const char *function, uint32_t status, const std::string &message) {
  std::string line = error_line(function, status, message);
  std::lock_guard lock(m_mutex);
  if (m_first.empty()) m_first = line;
  m_last = std::move(line);
}

std::string ErrorLog::take_first() {
  std::lock_guard lock(m_mutex);
  return std::exchange(m_first, {});
}

std::string ErrorLog::last() const {
  std::lock_guard lock(m_mutex);
  return m_last;
}

}  // namespace vrxsim
