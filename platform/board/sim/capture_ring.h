// The ring of capture buffers and the order in which frames go in and come out. The camera
// fills slots strictly in ring order; a slot still filled or held by the application when its
// turn comes means a FIFO overflow. The application gets slots in the same order and hands each
// back. Once acquisition has stopped, get and release walk the ring over the retained pictures.
// Not thread-safe by itself: the owning channel serialises every call.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/board/sim/buffer_table.h"
#include "platform/board/sim/parameter_store.h"

namespace vrxsim {

class CaptureRing {
 public:
  CaptureRing() = default;
  CaptureRing(const CaptureRing&) = delete;
  CaptureRing& operator=(const CaptureRing&) = delete;
  ~CaptureRing();

  // Replaces the buffers by `count` new ones of this geometry, all free.
  void allocate(uint32_t count, const CaptureGeometry& geometry);
  // Marks every slot free and both cursors at slot 0, keeping the pictures.
  void reset();
  uint32_t size() const { return static_cast<uint32_t>(m_slots.size()); }

  // Producer: the slot to fill next, or nothing when it is not free (overflow).
  std::optional<uint32_t> begin_fill();
  void end_fill(uint32_t slot, uint64_t frame_number);
  void abandon_fill(uint32_t slot);
  Buffer& buffer(uint32_t slot) { return *m_slots[slot].buffer; }

  // Consumer. `running` says whether the camera may still fill slots. VRX_OK or
  // VRX_ERR_NO_BUFFER.
  uint32_t get(bool running, void*& address, uint32_t& handle);
  uint32_t release();

  uint32_t filled_count() const;
  std::optional<uint64_t> frame_in(uint32_t handle) const;

 private:
  enum class State { Free, Filling, Filled, Held };
  struct Slot {
    uint32_t handle = 0;
    std::shared_ptr<Buffer> buffer;
    State state = State::Free;
    uint64_t frame = 0;
  };
  void clear();

  std::vector<Slot> m_slots;
  uint32_t m_write = 0;  // next slot the camera fills
  uint32_t m_read = 0;   // next slot the application gets
};

}  // namespace vrxsim
