// The event thread: wait for the next deadline or a wake-up, work out what happened, deliver.
#include "platform/board/sim/acquisition_engine.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/board/sim/faults.h"
#include "platform/board/sim/test_pattern.h"
#include "platform/board/vrx_params.h"

namespace vrxsim {
namespace {

AcquisitionEngine::Clock::duration period_of(double frames_per_second) {
  const double fps = std::clamp(frames_per_second, 1.0, 100000.0);
  return std::chrono::duration_cast<AcquisitionEngine::Clock::duration>(
      std::chrono::duration<double>(1.0 / fps));
}

constexpr uint32_t kFrameEvents = VRX_EVENT_START_OF_FRAME | VRX_EVENT_END_OF_FRAME |
                                  VRX_EVENT_START_OF_LINE | VRX_EVENT_END_OF_LINE;

}  // namespace

AcquisitionEngine::AcquisitionEngine(uint32_t handle, double frames_per_second)
    : m_handle(handle), m_frame_period(period_of(frames_per_second)), m_thread([this] { run(); }) {}

AcquisitionEngine::~AcquisitionEngine() {
  {
    std::lock_guard lock(m_mutex);
    m_quit = true;
  }
  m_wake.notify_all();
  m_thread.join();
}

uint32_t AcquisitionEngine::start(VRX_EVENT_CALLBACK callback, const AcquisitionSettings& settings,
                                  bool restart) {
  std::lock_guard lock(m_mutex);
  if (callback) m_callback = callback;
  const CaptureGeometry& g = settings.geometry;
  const CaptureGeometry& old = m_settings.geometry;
  const bool reshape = m_ring.size() != settings.buffer_count || g.bytes_per_line != old.bytes_per_line ||
                       g.buffer_lines != old.buffer_lines || g.format != old.format || g.width != old.width;
  m_settings = settings;
  if (reshape)
    m_ring.allocate(settings.buffer_count, settings.geometry);
  else if (!restart)
    m_ring.reset();
  const Clock::time_point now = Clock::now();
  m_running = true;
  m_free_running = settings.trigger_mode == vrx::TrigModeNone;
  m_overflow_signalled = false;
  m_trigger_edges = 0;
  m_frames_since_ready = 0;
  m_next_frame = now;
  m_next_timer = now + std::chrono::microseconds(settings.timer_period_us);
  m_last_frame = now;
  m_wake.notify_all();
  return VRX_OK;
}

void AcquisitionEngine::stop() {
  std::lock_guard lock(m_mutex);
  m_running = false;
  m_wake.notify_all();
}

bool AcquisitionEngine::running() const {
  std::lock_guard lock(m_mutex);
  return m_running;
}

uint32_t AcquisitionEngine::buffer_get(VRX_BUFFER_RECORD& record) {
  std::lock_guard lock(m_mutex);
  return m_ring.get(m_running, record.address, record.buffer);
}

uint32_t AcquisitionEngine::buffer_release() {
  std::lock_guard lock(m_mutex);
  return m_ring.release();
}

void AcquisitionEngine::register_callback(VRX_EVENT_CALLBACK callback) {
  std::lock_guard lock(m_mutex);
  m_callback = callback;
}

void AcquisitionEngine::set_context(void* context) {
  std::lock_guard lock(m_mutex);
  m_context = context;
}

void AcquisitionEngine::set_interrupt_mask(uint32_t mask) {
  std::lock_guard lock(m_mutex);
  m_mask = mask;
}

uint32_t AcquisitionEngine::interrupt_mask() const {
  std::lock_guard lock(m_mutex);
  return m_mask;
}

void AcquisitionEngine::set_frame_rate(double frames_per_second) {
  std::lock_guard lock(m_mutex);
  m_frame_period = period_of(frames_per_second);
  m_wake.notify_all();
}

void AcquisitionEngine::set_gain(uint32_t gain) {
  std::lock_guard lock(m_mutex);
  m_gain = gain;
}

void AcquisitionEngine::set_input_lut(const InputLut& lut) {
  std::lock_guard lock(m_mutex);
  m_lut = lut;
}

void AcquisitionEngine::trigger() {
  std::lock_guard lock(m_mutex);
  ++m_trigger_edges;
  m_wake.notify_all();
}

void AcquisitionEngine::raise(uint32_t event_mask) {
  std::lock_guard lock(m_mutex);
  m_raised |= event_mask;
  m_wake.notify_all();
}

void AcquisitionEngine::inject_frame(std::vector<uint8_t> bytes) {
  std::lock_guard lock(m_mutex);
  m_injected = std::move(bytes);
}

bool AcquisitionEngine::waiting_for_trigger() const {
  std::lock_guard lock(m_mutex);
  return m_running && !m_free_running && m_trigger_edges == 0;
}

double AcquisitionEngine::frame_period_us() const {
  std::lock_guard lock(m_mutex);
  return std::chrono::duration<double, std::micro>(m_frame_period).count();
}

uint64_t AcquisitionEngine::frames_captured() const {
  std::lock_guard lock(m_mutex);
  return m_frame_counter;
}

uint64_t AcquisitionEngine::event_time_ns() const {
  std::lock_guard lock(m_mutex);
  return m_event_time_ns;
}

void AcquisitionEngine::run() {
  std::unique_lock lock(m_mutex);
  while (!m_quit) {
    const Clock::time_point now = Clock::now();
    if (uint32_t events = step(now)) {
      deliver(lock, events, Clock::now());  // the frame, if any, is complete now
      continue;
    }
    if (m_running)
      m_wake.wait_until(lock, next_deadline());
    else
      m_wake.wait(lock, [this] { return m_quit || m_running || m_raised != 0; });
  }
}

uint32_t AcquisitionEngine::step(Clock::time_point now) {
  uint32_t events = std::exchange(m_raised, 0u);
  if (!m_running) {
    m_trigger_edges = 0;
    return events;
  }
  if (m_settings.timer_period_us > 0 && now >= m_next_timer) {
    ++m_trigger_edges;
    m_next_timer = std::max(m_next_timer + std::chrono::microseconds(m_settings.timer_period_us), now);
  }
  const bool each_edge = vrx::trigger_mode_each(m_settings.trigger_mode);
  bool take_frame = false;
  if (m_settings.trigger_mode == vrx::TrigModeNone) m_trigger_edges = 0;  // no trigger input in use
  if (m_trigger_edges > 0 && m_settings.trigger_mode != vrx::TrigModeNone) {
    --m_trigger_edges;
    events |= VRX_EVENT_ACQ_TRIG_START | VRX_EVENT_ACQ_TRIG_END;
    if (each_edge) {
      take_frame = true;
    } else if (!m_free_running) {
      m_free_running = true;
      m_next_frame = now;
    }
  }
  if (!each_edge && m_free_running && now >= m_next_frame) {
    take_frame = true;
    m_next_frame += m_frame_period;
    // A frame late by less than a period is made up at once; further behind, the schedule
    // starts afresh rather than bursting to catch up.
    if (m_next_frame + m_frame_period < now) m_next_frame = now;
  }
  if (take_frame) capture(now, events);
  if (m_settings.timeout_ms > 0 && now - m_last_frame >= std::chrono::milliseconds(m_settings.timeout_ms)) {
    events |= VRX_EVENT_TIMEOUT;
    m_last_frame = now;
  }
  return events;
}

void AcquisitionEngine::capture(Clock::time_point now, uint32_t& events) {
  std::optional<uint32_t> slot = m_ring.begin_fill();
  if (!slot) {
    events |= m_overflow_signalled ? VRX_EVENT_FRAME_LOST : VRX_EVENT_FIFO_OVERFLOW;
    m_overflow_signalled = true;
    return;
  }
  Buffer& buffer = m_ring.buffer(*slot);
  const CaptureGeometry& g = m_settings.geometry;
  const uint64_t frame = ++m_frame_counter;
  const std::size_t start = std::size_t{g.y_offset} * g.bytes_per_line + g.x_offset_bytes;
  if (start < buffer.data.size()) {
    PatternGeometry pattern{g.width, g.height, g.bytes_per_line, g.format, g.bayer_type, m_gain, &m_lut};
    draw_test_pattern(pattern, frame, std::span(buffer.data).subspan(start));
  }
  if (!m_injected.empty()) {
    std::memcpy(buffer.data.data(), m_injected.data(), std::min(m_injected.size(), buffer.data.size()));
    m_injected.clear();
  }
  m_ring.end_fill(*slot, frame);
  m_overflow_signalled = false;
  m_last_frame = now;
  events |= kFrameEvents;
  if (++m_frames_since_ready >= std::max<uint32_t>(1, m_settings.buffer_ready_count)) {
    events |= VRX_EVENT_BUFFER_READY;
    m_frames_since_ready = 0;
  }
  if (m_settings.single_frame) m_running = false;
}

AcquisitionEngine::Clock::time_point AcquisitionEngine::next_deadline() const {
  Clock::time_point deadline = Clock::time_point::max();
  if (m_free_running && !vrx::trigger_mode_each(m_settings.trigger_mode))
    deadline = std::min(deadline, m_next_frame);
  if (m_settings.timer_period_us > 0) deadline = std::min(deadline, m_next_timer);
  if (m_settings.timeout_ms > 0)
    deadline = std::min(deadline, m_last_frame + std::chrono::milliseconds(m_settings.timeout_ms));
  if (m_trigger_edges > 0 || m_raised != 0) deadline = Clock::now();
  return deadline;
}

void AcquisitionEngine::deliver(std::unique_lock<std::mutex>& lock, uint32_t events,
                                Clock::time_point when) {
  uint32_t enabled = (m_mask & VRX_EVENT_GLOBAL_ENABLE) ? events & m_mask : 0;
  enabled &= ~faults().take_dropped_events(enabled);
  const VRX_EVENT_CALLBACK callback = m_callback;
  void* const context = m_context;
  if (enabled == 0 || callback == nullptr) return;
  m_event_time_ns = static_cast<uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(when.time_since_epoch()).count());
  const uint32_t delay_ms = faults().take_delay_ms();
  lock.unlock();
  if (delay_ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(delay_ms));
  callback(m_handle, enabled, context);
  lock.lock();
}

}  // namespace vrxsim
