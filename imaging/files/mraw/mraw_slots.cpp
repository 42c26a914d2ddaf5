// The MRAW handle table and the calls that work on a whole slot: initialisation, allocation,
// close, and copying the handle record out and in. Slot changes happen under the library lock.
#include "imaging/files/mraw/mraw_slots.h"

#include "imaging/core/init.h"
#include "imaging/core/library_lock.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace vrc::files::mraw {
namespace {

constexpr char kInitName[] = "ZEP_MRAW_InitLibrary";
constexpr char kCloseName[] = "ZEP_MRAW_Close";
constexpr char kGetInfoName[] = "ZEP_MRAW_GetInfo";
constexpr char kSetInfoName[] = "ZEP_MRAW_SetInfo";

std::array<Slot, ZEP_MRAW_HANDLES> g_slots{};

void clear_slot(Slot &slot) { std::memset(static_cast<void *>(&slot), 0, sizeof slot); }

}  // namespace

uint32_t allocate_slot(const char *function_name, uint32_t *handle_out, const char *path, Mode mode,
                       Slot *&slot) {
  if (handle_out == nullptr || path == nullptr)
    return core::report(function_name, ZEP_ERR_BAD_PARAM, message::kNullArgument);
  core::ensure_initialised();  // so that start-up cannot clear the slot taken here
  core::LibraryLock lock;
  for (uint32_t handle = 1; handle < ZEP_MRAW_HANDLES; ++handle) {
    Slot &candidate = g_slots[handle];
    if (candidate.record.in_use != 0) continue;
    clear_slot(candidate);
    ZEP_MRAW_RECORD &record = candidate.record;
    record.handle = handle;
    record.self = &record;
    std::snprintf(record.file_name, sizeof record.file_name, "%s", path);
    record.in_use = 1;
    candidate.mode = mode;
    slot = &candidate;
    *handle_out = handle;
    return ZEP_OK;
  }
  return core::report(function_name, ZEP_ERR_NO_HANDLES | 9, message::kNoHandles);
}

Slot *slot_in_use(uint32_t handle) {
  if (handle == 0 || handle >= ZEP_MRAW_HANDLES) return nullptr;
  core::LibraryLock lock;
  Slot &slot = g_slots[handle];
  return slot.record.in_use != 0 ? &slot : nullptr;
}

bool release_slot(Slot &slot) {
  core::LibraryLock lock;
  if (slot.record.file != nullptr) {
    const bool closed = std::fclose(slot.record.file) == 0;
    slot.record.file = nullptr;
    if (!closed) return false;
  }
  if (slot.own_image != 0) ZEP_image_destroy(slot.own_image);
  clear_slot(slot);
  return true;
}

}  // namespace vrc::files::mraw

using namespace vrc::files::mraw;
using vrc::core::api_guard;
using vrc::core::report;

extern "C" {

uint32_t ZEP_MRAW_InitLibrary(void) {
  return api_guard(kInitName, [] {
    vrc::core::LibraryLock lock;
    for (uint32_t handle = 1; handle < ZEP_MRAW_HANDLES; ++handle) {
      Slot &slot = g_slots[handle];
      // A stream still open is closed rather than lost; its failure cannot be told to anyone.
      if (slot.record.in_use != 0 && !release_slot(slot)) clear_slot(slot);
    }
    return ZEP_OK;
  });
}

uint32_t ZEP_MRAW_Close(uint32_t handle) {
  return api_guard(kCloseName, [&] {
    Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    return release_slot(*slot)
               ? ZEP_OK
               : report(kCloseName, ZEP_ERR_CLOSE, vrc::files::message::kCloseFailed);
  });
}

uint32_t ZEP_MRAW_GetInfo(uint32_t handle, ZEP_MRAW_RECORD *record_out) {
  return api_guard(kGetInfoName, [&] {
    const Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    if (record_out == nullptr)
      return report(kGetInfoName, ZEP_ERR_BAD_PARAM, message::kNullArgument);
    *record_out = slot->record;
    return ZEP_OK;
  });
}

uint32_t ZEP_MRAW_SetInfo(uint32_t handle, const ZEP_MRAW_RECORD *record) {
  return api_guard(kSetInfoName, [&] {
    Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    if (record == nullptr) return report(kSetInfoName, ZEP_ERR_BAD_PARAM, message::kNullArgument);
    ZEP_MRAW_RECORD &kept = slot->record;
    ZEP_MRAW_RECORD copy = *record;
    // What ties the record to its slot and stream stays the library's.
    copy.handle = kept.handle;
    copy.self = kept.self;
    copy.file = kept.file;
    copy.in_use = kept.in_use;
    copy.file_name[ZEP_MRAW_FILE_NAME_LENGTH - 1] = '\0';
    vrc::core::LibraryLock lock;  // allocation reads the in-use word under the lock
    kept = copy;
    return ZEP_OK;
  });
}

}  // extern "C"
