// SDK handles: a process-wide table from handle to channel. A call holds its channel through a
// shared pointer, so a concurrent VRX_Destroy cannot pull it away mid-call.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "platform/board/sim/channel.h"

namespace vrxsim {

class HandleTable {
 public:
  uint32_t add(VRX_ERR_HANDLER handler);
  std::shared_ptr<Channel> find(uint32_t handle) const;
  std::shared_ptr<Channel> remove(uint32_t handle);

 private:
  mutable std::mutex m_mutex;
  std::map<uint32_t, std::shared_ptr<Channel>> m_channels;
  uint32_t m_next_handle = 1;
};

HandleTable& handles();

}  // namespace vrxsim
