// Capture ring slots and cursors.
#include "platform/board/sim/capture_ring.h"

#include <algorithm>

#include "platform/board/vrx_sdk.h"

namespace vrxsim {

CaptureRing::~CaptureRing() { clear(); }

void CaptureRing::clear() {
  for (Slot& slot : m_slots) buffers().remove(slot.handle);
  m_slots.clear();
  m_write = m_read = 0;
}

void CaptureRing::allocate(uint32_t count, const CaptureGeometry& geometry) {
  clear();
  m_slots.resize(count);
  for (Slot& slot : m_slots) {
    slot.buffer = std::make_shared<Buffer>();
    slot.buffer->width = geometry.width;
    slot.buffer->height = geometry.buffer_lines;
    slot.buffer->line_length = geometry.bytes_per_line;
    slot.buffer->format = geometry.format;
    slot.buffer->capture = true;
    slot.buffer->data.assign(std::size_t{geometry.bytes_per_line} * geometry.buffer_lines, 0);
    slot.handle = buffers().add(slot.buffer);
  }
}

void CaptureRing::reset() {
  for (Slot& slot : m_slots) slot.state = State::Free;
  m_write = m_read = 0;
}

std::optional<uint32_t> CaptureRing::begin_fill() {
  if (m_slots.empty() || m_slots[m_write].state != State::Free) return std::nullopt;
  m_slots[m_write].state = State::Filling;
  return m_write;
}

void CaptureRing::end_fill(uint32_t slot, uint64_t frame_number) {
  m_slots[slot].state = State::Filled;
  m_slots[slot].frame = frame_number;
  m_write = (slot + 1) % size();
}

void CaptureRing::abandon_fill(uint32_t slot) { m_slots[slot].state = State::Free; }

uint32_t CaptureRing::get(bool running, void*& address, uint32_t& handle) {
  if (m_slots.empty()) return VRX_ERR_NO_BUFFER;
  if (std::any_of(m_slots.begin(), m_slots.end(), [](const Slot& s) { return s.state == State::Held; }))
    return VRX_ERR_NO_BUFFER;
  Slot& slot = m_slots[m_read];
  const bool available = slot.state == State::Filled || (!running && slot.state == State::Free);
  if (!available) return VRX_ERR_NO_BUFFER;
  slot.state = State::Held;
  address = slot.buffer->data.data();
  handle = slot.handle;
  return VRX_OK;
}

uint32_t CaptureRing::release() {
  if (m_slots.empty()) return VRX_ERR_NO_BUFFER;
  Slot& slot = m_slots[m_read];
  // The held slot, when there is one, is always the read slot; otherwise drop the oldest.
  if (slot.state != State::Held && slot.state != State::Filled) return VRX_ERR_NO_BUFFER;
  slot.state = State::Free;
  m_read = (m_read + 1) % size();
  return VRX_OK;
}

uint32_t CaptureRing::filled_count() const {
  return static_cast<uint32_t>(
      std::count_if(m_slots.begin(), m_slots.end(), [](const Slot& s) { return s.state == State::Filled; }));
}

std::optional<uint64_t> CaptureRing::frame_in(uint32_t handle) const {
  for (const Slot& slot : m_slots)
    if (slot.handle == handle) return slot.frame;
  return std::nullopt;
}

}  // namespace vrxsim
