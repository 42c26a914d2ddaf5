// Handle table: handles count up from 1 and are never reused.
#include "platform/board/sim/handle_table.h"

#include "platform/board/sim/buffer_table.h"

namespace vrxsim {

uint32_t HandleTable::add(VRX_ERR_HANDLER handler) {
  std::lock_guard lock(m_mutex);
  const uint32_t handle = m_next_handle++;
  m_channels.emplace(handle, std::make_shared<Channel>(handle, handler));
  return handle;
}

std::shared_ptr<Channel> HandleTable::find(uint32_t handle) const {
  std::lock_guard lock(m_mutex);
  auto it = m_channels.find(handle);
  return it == m_channels.end() ? nullptr : it->second;
}

std::shared_ptr<Channel> HandleTable::remove(uint32_t handle) {
  std::lock_guard lock(m_mutex);
  auto it = m_channels.find(handle);
  if (it == m_channels.end()) return nullptr;
  std::shared_ptr<Channel> channel = std::move(it->second);
  m_channels.erase(it);
  return channel;
}

HandleTable& handles() {
  // Channels still open at exit free their capture buffers as the table goes, so the buffer
  // table must be made first (and so outlive this one).
  buffers();
  static HandleTable table;
  return table;
}

}  // namespace vrxsim
