// The handle table of a sequence-file format (MRAW, MJPEG): handles 1 to Slots - 1 (slot 0 is
// never issued), each slot a struct whose `record` is the format's public handle record with its
// handle, self pointer, file name and in-use word. Taking and finding slots, and copying a record
// out, happen under the library lock.
#pragma once

#include "imaging/core/init.h"
#include "imaging/core/library_lock.h"
#include "imaging/core/report.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace vrc::files {

inline constexpr char kNullArgument[] = "Null argument";

template <typename Slot, uint32_t Slots>
class HandleTable {
 public:
  using Record = decltype(Slot::record);

  // Takes the lowest free slot, clears it, marks it in use, stores `path` (cut to the name field)
  // and the handle in `handle_out`. Reports null arguments, and `no_handles` (out-of-resources
  // code or-ed with 9) when no slot is free.
  uint32_t allocate(const char *function_name, uint32_t *handle_out, const char *path,
                    const char *no_handles, Slot *&slot) {
    if (handle_out == nullptr || path == nullptr)
      return core::report(function_name, ZEP_ERR_BAD_PARAM, kNullArgument);
    core::ensure_initialised();  // so that start-up cannot clear the slot taken here
    core::LibraryLock lock;
    for (uint32_t handle = 1; handle < Slots; ++handle) {
      Slot &candidate = m_slots[handle];
      if (candidate.record.in_use != 0) continue;
      clear(candidate);
      Record &record = candidate.record;
      record.handle = handle;
      record.self = &record;
      std::snprintf(record.file_name, sizeof record.file_name, "%s", path);
      record.in_use = 1;
      slot = &candidate;
      *handle_out = handle;
      return ZEP_OK;
    }
    return core::report(function_name, ZEP_ERR_NO_HANDLES | 9, no_handles);
  }

  // The slot of a handle in use, or null for 0, Slots and above, or a free slot.
  Slot *in_use(uint32_t handle) {
    if (handle == 0 || handle >= Slots) return nullptr;
    core::LibraryLock lock;
    Slot &slot = m_slots[handle];
    return slot.record.in_use != 0 ? &slot : nullptr;
  }

  // Calls `release(slot)` on every slot in use, under the lock.
  template <typename Release>
  void release_all(Release release) {
    core::LibraryLock lock;
    for (uint32_t handle = 1; handle < Slots; ++handle) {
      if (m_slots[handle].record.in_use != 0) release(m_slots[handle]);
    }
  }

  // ZEP_..._GetInfo: a copy of the handle's record; bad parameter without a report for a handle
  // not in use.
  uint32_t get_info(const char *function_name, uint32_t handle, Record *record_out) {
    const Slot *slot = in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    if (record_out == nullptr) return core::report(function_name, ZEP_ERR_BAD_PARAM, kNullArgument);
    *record_out = slot->record;
    return ZEP_OK;
  }

  static void clear(Slot &slot) { std::memset(static_cast<void *>(&slot), 0, sizeof slot); }

 private:
  std::array<Slot, Slots> m_slots{};
};

}  // namespace vrc::files
