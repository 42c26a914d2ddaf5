// The simulated camera and its event thread. One thread per open channel: it produces frames
// into the capture ring at the configured rate or on trigger edges, raises buffer-ready,
// FIFO-overflow, frame-lost, frame, line, trigger, time-out and test events, and calls the
// registered callback with the events that the interrupt-enable mask lets through. The callback
// runs on this thread with no lock held, so it may call back into the SDK (VRX_Acquire abort,
// buffer get and release, parameters); it must not close or destroy its own handle.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/board/sim/capture_ring.h"
#include "platform/board/sim/input_lut.h"
#include "platform/board/vrx_sdk.h"

namespace vrxsim {

struct AcquisitionSettings {
  CaptureGeometry geometry;
  uint32_t buffer_count = 4;
  bool single_frame = false;
  uint32_t trigger_mode = 0;        // ParamAcqTrigMode value
  uint32_t timer_period_us = 0;     // internal trigger timer, 0 when not the trigger source
  uint32_t buffer_ready_count = 1;  // frames per buffer-ready event
  uint32_t timeout_ms = 0;          // time-out event after this long without a frame, 0 never
};

class AcquisitionEngine {
 public:
  using Clock = std::chrono::steady_clock;

  AcquisitionEngine(uint32_t handle, double frames_per_second);
  ~AcquisitionEngine();
  AcquisitionEngine(const AcquisitionEngine&) = delete;
  AcquisitionEngine& operator=(const AcquisitionEngine&) = delete;

  // `restart` resumes with the ring as it is; a start begins with every buffer free.
  uint32_t start(VRX_EVENT_CALLBACK callback, const AcquisitionSettings& settings, bool restart);
  void stop();
  bool running() const;
  uint32_t buffer_get(VRX_BUFFER_RECORD& record);
  uint32_t buffer_release();

  void register_callback(VRX_EVENT_CALLBACK callback);
  void set_context(void* context);
  void set_interrupt_mask(uint32_t mask);
  uint32_t interrupt_mask() const;
  void set_frame_rate(double frames_per_second);
  void set_gain(uint32_t gain);
  void set_input_lut(const InputLut& lut);
  void trigger();
  void raise(uint32_t event_mask);
  void inject_frame(std::vector<uint8_t> bytes);

  uint64_t frames_captured() const;
  // Running, but held until a trigger edge starts the frames.
  bool waiting_for_trigger() const;
  double frame_period_us() const;
  // Inside a callback: when its events happened (steady clock, ns).
  uint64_t event_time_ns() const;

 private:
  void run();
  // Each step works under m_mutex; returns the events of this moment.
  uint32_t step(Clock::time_point now);
  void capture(Clock::time_point now, uint32_t& events);
  Clock::time_point next_deadline() const;
  void deliver(std::unique_lock<std::mutex>& lock, uint32_t events, Clock::time_point when);

  const uint32_t m_handle;
  mutable std::mutex m_mutex;
  std::condition_variable m_wake;
  CaptureRing m_ring;
  AcquisitionSettings m_settings;
  VRX_EVENT_CALLBACK m_callback = nullptr;
  void* m_context = nullptr;
  uint32_t m_mask = VRX_EVENT_GLOBAL_ENABLE | VRX_EVENT_BUFFER_READY | VRX_EVENT_FIFO_OVERFLOW |
                    VRX_EVENT_FRAME_LOST;
  Clock::duration m_frame_period;
  uint32_t m_gain = 256;
  InputLut m_lut;
  bool m_quit = false;
  bool m_running = false;
  bool m_free_running = false;  // frames at the frame rate (no trigger, or after the first edge)
  bool m_overflow_signalled = false;
  uint32_t m_trigger_edges = 0;
  uint32_t m_raised = 0;
  uint32_t m_frames_since_ready = 0;
  uint64_t m_frame_counter = 0;
  uint64_t m_event_time_ns = 0;
  Clock::time_point m_next_frame, m_next_timer, m_last_frame;
  std::vector<uint8_t> m_injected;
  std::thread m_thread;  // last: starts after every member above exists
};

}  // namespace vrxsim
