// A record of parameter writes, kept while a test asks for it: each VRX_ParameterSet with its
// handle, parameter, value and the status it returned, in call order, refused writes included.
#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "platform/board/sim/vrxsim.h"

namespace vrxsim {

class WriteTrace {
 public:
  void start();
  void stop();
  void record(uint32_t handle, uint32_t parameter, const void *value, uint32_t status);
  std::vector<VRXSIM_PARAMETER_WRITE> writes() const;

 private:
  mutable std::mutex m_mutex;
  bool m_on = false;
  std::vector<VRXSIM_PARAMETER_WRITE> m_writes;
};

WriteTrace &write_trace();

}  // namespace vrxsim
