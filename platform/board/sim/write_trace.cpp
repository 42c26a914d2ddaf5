// The write trace: one process-wide record behind a lock, since writes come from any thread.
#include "platform/board/sim/write_trace.h"

#include "platform/board/vrx_params.h"

namespace vrxsim {
namespace {

// The record grows no further than this, so a forgotten trace cannot eat memory.
constexpr std::size_t kMaxWrites = 65536;

// Parameters whose value is a pointer rather than the address of a word.
bool carries_pointer(uint32_t parameter) {
  return parameter == vrx::ParamConfigFile || parameter == vrx::ParamEventContext;
}

}  // namespace

WriteTrace &write_trace() {
  static WriteTrace trace;
  return trace;
}

void WriteTrace::start() {
  std::lock_guard lock(m_mutex);
  m_writes.clear();
  m_on = true;
}

void WriteTrace::stop() {
  std::lock_guard lock(m_mutex);
  m_on = false;
}

void WriteTrace::record(uint32_t handle, uint32_t parameter, const void *value, uint32_t status) {
  std::lock_guard lock(m_mutex);
  if (!m_on || m_writes.size() >= kMaxWrites) return;
  const uint32_t word =
      value && !carries_pointer(parameter) ? *static_cast<const uint32_t *>(value) : 0;
  m_writes.push_back({handle, parameter, word, status});
}

std::vector<VRXSIM_PARAMETER_WRITE> WriteTrace::writes() const {
  std::lock_guard lock(m_mutex);
  return m_writes;
}

}  // namespace vrxsim
