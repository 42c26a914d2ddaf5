// The MRAW handle table and the calls that work on a whole slot: initialisation, allocation,
// close, and copying the handle record out and in. Slot changes happen under the library lock.
#include "imaging/files/mraw/mraw_slots.h"

#include "imaging/core/library_lock.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/sequence_handles.h"

#include <cstdio>
#include <cstring>

namespace vrc::files::mraw {
namespace {

constexpr char kInitName[] = "ZEP_MRAW_InitLibrary";
constexpr char kCloseName[] = "ZEP_MRAW_Close";
constexpr char kGetInfoName[] = "ZEP_MRAW_GetInfo";
constexpr char kSetInfoName[] = "ZEP_MRAW_SetInfo";

HandleTable<Slot, ZEP_MRAW_HANDLES> g_slots;

}  // namespace

uint32_t allocate_slot(const char *function_name, uint32_t *handle_out, const char *path, Mode mode,
                       Slot *&slot) {
  const uint32_t status =
      g_slots.allocate(function_name, handle_out, path, message::kNoHandles, slot);
  if (!ZEP_IS_ERROR(status)) slot->mode = mode;
  return status;
}

Slot *slot_in_use(uint32_t handle) { return g_slots.in_use(handle); }

bool release_slot(Slot &slot) {
  core::LibraryLock lock;
  if (slot.record.file != nullptr) {
    const bool closed = std::fclose(slot.record.file) == 0;
    slot.record.file = nullptr;
    if (!closed) return false;
  }
  if (slot.own_image != 0) ZEP_image_destroy(slot.own_image);
  g_slots.clear(slot);
  return true;
}

}  // namespace vrc::files::mraw

using namespace vrc::files::mraw;
using vrc::core::api_guard;
using vrc::core::report;

extern "C" {

uint32_t ZEP_MRAW_InitLibrary(void) {
  return api_guard(kInitName, [] {
    // A stream still open is closed rather than lost; its failure cannot be told to anyone.
    g_slots.release_all([](Slot &slot) {
      if (!release_slot(slot)) g_slots.clear(slot);
    });
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
  return api_guard(kGetInfoName,
                   [&] { return g_slots.get_info(kGetInfoName, handle, record_out); });
}

uint32_t ZEP_MRAW_SetInfo(uint32_t handle, const ZEP_MRAW_RECORD *record) {
  return api_guard(kSetInfoName, [&] {
    Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    if (record == nullptr)
      return report(kSetInfoName, ZEP_ERR_BAD_PARAM, vrc::files::kNullArgument);
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
