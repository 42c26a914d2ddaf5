// The CoaXPress link of a simulated board: what it reports of the camera it found, the speed
// and number of links in use and the state of the power it feeds the camera. A tripped power
// supply (an over-current, raised by vrxsim_set_cxp_trip) loses the camera until the power is
// reset with "Trip Reset".
#pragma once

#include <cstdint>
#include <optional>

#include "platform/board/sim/parameter_store.h"
#include "platform/board/vrx_params.h"

namespace vrxsim {

class CxpLink {
 public:
  void set_tripped(bool tripped) { m_tripped = tripped; }
  // A write of the power parameter: "Trip Reset" clears a trip.
  void power_written(uint32_t value);

  // The value of a read-only link-state parameter, or nothing for any other id.
  std::optional<uint32_t> read(const vrx::BoardModel &model, const ParameterStore &store,
                               uint32_t id) const;

 private:
  bool powered(const ParameterStore &store) const;

  bool m_tripped = false;
};

}  // namespace vrxsim
