// CoaXPress link state.
#include "platform/board/sim/cxp_link.h"

#include <algorithm>

namespace vrxsim {

using namespace vrx;

void CxpLink::power_written(uint32_t value) {
  if (value == CxpPowerTripReset) m_tripped = false;
}

bool CxpLink::powered(const ParameterStore &store) const {
  return !m_tripped && store.value(ParamCxpPower) != CxpPowerOff;
}

std::optional<uint32_t> CxpLink::read(const BoardModel &model, const ParameterStore &store,
                                      uint32_t id) const {
  const bool on = powered(store);
  switch (id) {
    case ParamCxpDiscovery: return on ? 1 : 0;
    case ParamCxpPowerState:
      return m_tripped ? CxpPowerStateTripped
             : on      ? CxpPowerStatePowered
                       : CxpPowerStateUnavailable;
    case ParamCxpCurrentSpeed: {
      // A camera found at automatic speed settles at 5 Gbps.
      const uint32_t speed = store.value(ParamCxpLinkSpeed);
      return !on ? 0 : speed == CxpSpeedAutomatic ? 0xC0091005 : speed;
    }
    case ParamCxpCurrentLinks: {
      // The most links the board has, or fewer when asked for fewer.
      const uint32_t best = model.cxp_links >= 4   ? 0xC0091204
                            : model.cxp_links == 2 ? 0xC0091203
                                                   : 0xC0091202;
      const uint32_t asked = store.value(ParamCxpLinkCount);
      return !on ? 0 : asked == CxpLinksAutomatic ? best : std::min(asked, best);
    }
    default: return std::nullopt;
  }
}

}  // namespace vrxsim
