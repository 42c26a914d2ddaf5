// The C boundary of the simulator: every exported call runs its body through `guarded`, which
// applies an injected call fault first and turns an escaping exception into a status.
#pragma once

#include <exception>
#include <new>

#include "platform/board/sim/channel.h"
#include "platform/board/sim/faults.h"

namespace vrxsim {

template <typename Body>
uint32_t guarded(const CallReport& report, Body&& body) noexcept {
  try {
    if (auto status = faults().take_call(report.function())) return report.fail(*status, "Injected fault");
    return body();
  } catch (const std::bad_alloc&) {
    return report.fail(VRX_ERR_MEMORY, "Out of memory");
  } catch (const std::exception& e) {
    return report.fail(VRX_ERR_MEMORY, e.what());
  }
}

}  // namespace vrxsim
