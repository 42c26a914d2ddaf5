// The board's event counter, as the simulated camera drives it: it counts lines, frames or
// microseconds (ParamEventCountSource) since the board opened, and latches the count of the last
// gate (ParamEventGate: a line, a frame, the acquisition or the acquisition trigger).
#pragma once

#include <cstdint>

namespace vrxsim {

struct EventCounterInputs {
  uint64_t frames = 0;  // frames captured since the board opened
  uint32_t lines_per_frame = 0;
  double frame_period_us = 0;
  uint32_t source = 0;  // ParamEventCountSource value
  uint32_t gate = 0;    // ParamEventGate value
};

uint32_t immediate_event_count(const EventCounterInputs &inputs);
uint32_t gated_event_count(const EventCounterInputs &inputs);

}  // namespace vrxsim
