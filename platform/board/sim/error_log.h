// The errors a handle has reported: the first since it was last asked for, and the latest. Every
// failure that a call of the handle reports through its error handler is recorded here too, as
// "FUNCTION: MESSAGE (status 0x....)", the line VRX_ErrHandlerDefault prints.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

namespace vrxsim {

class ErrorLog {
 public:
  void record(const char *function, uint32_t status, const std::string &message);
  // The first error since the previous call (empty when none); the next error becomes the first.
  std::string take_first();
  std::string last() const;

 private:
  mutable std::mutex m_mutex;
  std::string m_first, m_last;
};

std::string error_line(const char *function, uint32_t status, const std::string &message);

}  // namespace vrxsim
