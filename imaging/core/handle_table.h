// The process-wide table of image records, indexed by handle. Slot 0 is never issued; the lowest
// free slot is found through a two-level occupancy bitmap instead of a scan of every slot.
#pragma once

#include "vrcw32/zep_core.h"

#include <cstdint>

namespace vrc::core {

// The record of a live handle, or null for 0, an empty slot or a value outside the table.
ZEP_IMAGE *image_record(uint32_t handle);

// The lowest free slot, or 0 when the table is full. Caller holds the library lock.
uint32_t table_lowest_free();

// Stores `record` (null empties the slot) in slot `handle`. Caller holds the library lock.
void table_store(uint32_t handle, ZEP_IMAGE *record);

// True when any slot 1..65535 is occupied.
bool table_any_occupied();

// Calls `visit(handle, record)` for every occupied slot in ascending order.
template <typename Visit>
void table_for_each(Visit visit) {
  for (uint32_t handle = 1; handle < ZEP_MAX_HANDLES; ++handle) {
    if (ZEP_IMAGE *record = image_record(handle)) visit(handle, record);
  }
}

}  // namespace vrc::core
