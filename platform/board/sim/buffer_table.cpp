// Buffer table: handles are issued once and never reused, so a stale handle stays invalid.
#include "platform/board/sim/buffer_table.h"

#include <algorithm>

#include "platform/board/sim/pixel_codec.h"

namespace vrxsim {

uint32_t Buffer::effective_line_length() const {
  return std::max(line_length, line_bytes(format, width));
}

uint32_t BufferTable::add(std::shared_ptr<Buffer> buffer) {
  std::lock_guard lock(m_mutex);
  uint32_t handle = m_next_handle++;
  m_buffers.emplace(handle, std::move(buffer));
  return handle;
}

std::shared_ptr<Buffer> BufferTable::find(uint32_t handle) const {
  std::lock_guard lock(m_mutex);
  auto it = m_buffers.find(handle);
  return it == m_buffers.end() ? nullptr : it->second;
}

bool BufferTable::remove(uint32_t handle) {
  std::lock_guard lock(m_mutex);
  return m_buffers.erase(handle) > 0;
}

BufferTable& buffers() {
  static BufferTable table;
  return table;
}

}  // namespace vrxsim
