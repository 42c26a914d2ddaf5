// zep: a progress line on standard error for work that takes more than a second: frames done of
// the total and frames per second, rewritten in place. Quiet when asked, or when standard error
// is not a terminal.
#pragma once

#include <chrono>
#include <cstdint>

namespace zep_tool {

class Progress {
 public:
  Progress(const char *verb, uint32_t total, bool quiet);
  ~Progress();
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  // Records that `done` frames are finished.
  void update(uint32_t done);
  // Ends the line, so that what is printed next starts on a line of its own.
  void finish();

 private:
  using Clock = std::chrono::steady_clock;

  const char *m_verb;
  uint32_t m_total;
  bool m_enabled;
  bool m_shown = false;
  Clock::time_point m_start = Clock::now();
  Clock::time_point m_last_shown{};
};

}  // namespace zep_tool
