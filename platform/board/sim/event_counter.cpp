// Event counts from the frames the camera delivered.
#include "platform/board/sim/event_counter.h"

#include <cmath>

namespace vrxsim {
namespace {

constexpr uint32_t kSourceLines = 0xC0027A01, kSourceFrames = 0xC0027A02;
constexpr uint32_t kGateLines = 0xC0027B04, kGateFrames = 0xC0027B02;

// What one frame adds to the count.
double per_frame(const EventCounterInputs &in) {
  if (in.source == kSourceLines) return in.lines_per_frame;
  if (in.source == kSourceFrames) return 1;
  return in.frame_period_us;
}

uint32_t to_count(double value) {
  return static_cast<uint32_t>(static_cast<uint64_t>(std::llround(value)) & 0xFFFFFFFFu);
}

}  // namespace

uint32_t immediate_event_count(const EventCounterInputs &in) {
  return to_count(static_cast<double>(in.frames) * per_frame(in));
}

uint32_t gated_event_count(const EventCounterInputs &in) {
  if (in.frames == 0) return 0;
  if (in.gate == kGateFrames) return to_count(per_frame(in));
  if (in.gate == kGateLines) {
    if (in.source == kSourceFrames) return 0;
    if (in.source == kSourceLines) return 1;
    return to_count(in.lines_per_frame ? in.frame_period_us / in.lines_per_frame : 0);
  }
  return immediate_event_count(in);
}

}  // namespace vrxsim
