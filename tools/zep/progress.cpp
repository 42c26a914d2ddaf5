// zep: the progress line.
#include "tools/zep/progress.h"

#include <unistd.h>

#include <cstdio>

namespace zep_tool {
namespace {

constexpr auto kQuietStart = std::chrono::seconds(1);  // shorter work shows nothing
constexpr auto kRefresh = std::chrono::milliseconds(200);

}  // namespace

Progress::Progress(const char *verb, uint32_t total, bool quiet)
    : m_verb(verb), m_total(total), m_enabled(!quiet && ::isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() { finish(); }

void Progress::finish() {
  if (m_shown) std::fputc('\n', stderr);
  m_shown = false;
  m_enabled = false;
}

void Progress::update(uint32_t done) {
  if (!m_enabled) return;
  const Clock::time_point now = Clock::now();
  if (now - m_start < kQuietStart || (now - m_last_shown < kRefresh && done != m_total)) return;
  const double seconds = std::chrono::duration<double>(now - m_start).count();
  std::fprintf(stderr, "\r%s: %u of %u frames, %.1f frames/s   ", m_verb, done, m_total,
               done / seconds);
  std::fflush(stderr);
  m_shown = true;
  m_last_shown = now;
}

}  // namespace zep_tool
