// The buffers of the buffer library: a process-wide table from VBL_ handle to buffer. Capture
// buffers of the board's ring live here too, so that conversion and painting take either kind.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace vrxsim {

struct Buffer {
  uint32_t width = 0;        // pixels
  uint32_t height = 0;       // lines
  uint32_t line_length = 0;  // bytes per line
  uint32_t format = 0;       // capture format code
  uint32_t type = 1;
  uint32_t display = 0;      // VDL_ display it belongs to, 0 for none
  bool capture = false;      // part of a board's capture ring: not destroyable by VBL_
  std::vector<uint8_t> data;

  uint32_t effective_line_length() const;
};

class BufferTable {
 public:
  uint32_t add(std::shared_ptr<Buffer> buffer);
  std::shared_ptr<Buffer> find(uint32_t handle) const;
  bool remove(uint32_t handle);

 private:
  mutable std::mutex m_mutex;
  std::map<uint32_t, std::shared_ptr<Buffer>> m_buffers;
  uint32_t m_next_handle = 0x1000;
};

BufferTable& buffers();

}  // namespace vrxsim
