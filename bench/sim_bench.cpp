// The simulated board at 1000 frames per second of 640 x 480 (8-bit mono), two runs of three
// seconds: a consumer that keeps up, and a slow one that makes the FIFO overflow.
// The event callback only counts and time-stamps; the main thread hands buffers back, as the
// panel's paint handler does. Prints frames captured, events delivered per
// second and the callback's latency (from the moment the frame completed to the callback
// running) as percentiles.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include "platform/board/sim/vrxsim.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Counter {
  uint32_t handle = 0;
  std::atomic<uint64_t> deliveries{0}, buffers_ready{0}, overflows{0}, frames_lost{0};
  std::vector<uint64_t> latencies_ns = std::vector<uint64_t>(1 << 20);
  std::atomic<std::size_t> latency_count{0};

  static void callback(uint32_t handle, uint32_t mask, void* context) {
    auto* self = static_cast<Counter*>(context);
    const auto now = static_cast<uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch()).count());
    const uint64_t happened = vrxsim_event_time_ns(handle);
    const std::size_t slot = self->latency_count.fetch_add(1);
    if (slot < self->latencies_ns.size()) self->latencies_ns[slot] = now - happened;
    self->deliveries.fetch_add(1, std::memory_order_relaxed);
    if (mask & VRX_EVENT_BUFFER_READY) self->buffers_ready.fetch_add(1, std::memory_order_relaxed);
    if (mask & VRX_EVENT_FIFO_OVERFLOW) self->overflows.fetch_add(1, std::memory_order_relaxed);
    if (mask & VRX_EVENT_FRAME_LOST) self->frames_lost.fetch_add(1, std::memory_order_relaxed);
  }
};

uint32_t set(uint32_t handle, uint32_t id, uint32_t value) { return VRX_ParameterSet(handle, id, &value); }

double percentile_us(std::vector<uint64_t>& sorted, double p) {
  if (sorted.empty()) return 0.0;
  const auto index = static_cast<std::size_t>(p / 100.0 * static_cast<double>(sorted.size() - 1));
  return static_cast<double>(sorted[index]) / 1000.0;
}

// One run of `duration`: the main thread releases a buffer whenever one waits, pausing
// `consumer_pause` after each release (a slow consumer overflows the FIFO).
void run(const char* title, std::chrono::microseconds consumer_pause) {
  constexpr double kFramesPerSecond = 1000.0;
  constexpr auto kDuration = std::chrono::seconds(3);
  Counter counter;
  // No error handler: the draining loop's releases fail harmlessly whenever no buffer waits.
  if (VRX_Create(&counter.handle, nullptr) != VRX_OK || VRX_Open(&counter.handle) != VRX_OK) return;
  set(counter.handle, vrx::ParamSrcXLength, 640);
  set(counter.handle, vrx::ParamSrcYLength, 480);
  set(counter.handle, vrx::ParamBufferCount, 16);
  vrxsim_set_frame_rate(counter.handle, kFramesPerSecond);
  VRX_ParameterSet(counter.handle, vrx::ParamEventContext, &counter);

  const Clock::time_point started = Clock::now();
  if (VRX_Acquire(counter.handle, VRX_ACQ_START, reinterpret_cast<void*>(&Counter::callback)) != VRX_OK) return;
  uint64_t released = 0;
  while (Clock::now() - started < kDuration) {
    if (VRX_Acquire(counter.handle, VRX_ACQ_BUFFER_RELEASE, nullptr) == VRX_OK) {
      ++released;
      std::this_thread::sleep_for(consumer_pause);
    } else {
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  }
  VRX_Acquire(counter.handle, VRX_ACQ_ABORT, nullptr);
  const double seconds = std::chrono::duration<double>(Clock::now() - started).count();
  VRX_Destroy(&counter.handle);

  std::vector<uint64_t> latencies(counter.latencies_ns.begin(),
                                  counter.latencies_ns.begin() +
                                      static_cast<std::ptrdiff_t>(std::min(counter.latency_count.load(),
                                                                           counter.latencies_ns.size())));
  std::sort(latencies.begin(), latencies.end());
  std::printf("%s: 640 x 480 8-bit mono, %.0f fps asked, %.2f s, 16 buffers\n", title, kFramesPerSecond, seconds);
  std::printf("  buffer-ready events  %8llu  (%.1f /s)\n", static_cast<unsigned long long>(counter.buffers_ready.load()),
              static_cast<double>(counter.buffers_ready.load()) / seconds);
  std::printf("  deliveries           %8llu  (%.1f /s)\n", static_cast<unsigned long long>(counter.deliveries.load()),
              static_cast<double>(counter.deliveries.load()) / seconds);
  std::printf("  buffers released     %8llu\n", static_cast<unsigned long long>(released));
  std::printf("  FIFO overflows       %8llu, frames lost %llu\n", static_cast<unsigned long long>(counter.overflows.load()),
              static_cast<unsigned long long>(counter.frames_lost.load()));
  std::printf("  callback latency us  p50 %.1f  p90 %.1f  p99 %.1f  p99.9 %.1f  max %.1f\n",
              percentile_us(latencies, 50), percentile_us(latencies, 90), percentile_us(latencies, 99),
              percentile_us(latencies, 99.9), percentile_us(latencies, 100));
}

}  // namespace

int main() {
  run("consumer keeping up", std::chrono::microseconds(0));
  run("consumer taking 4 ms a buffer", std::chrono::microseconds(4000));
  return 0;
}
