// The MJPEG handle table and the calls that work on whole slots: initialisation, allocation,
// close, copying the handle record out and in, and copying the user parameters between handles.
// Slot changes happen under the library lock.
#include "imaging/files/mjpeg/mjpeg_slots.h"

#include "imaging/core/library_lock.h"
#include "imaging/core/report.h"
#include "imaging/files/sequence_handles.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace vrc::files::mjpeg {
namespace {

constexpr char kInitName[] = "ZEP_MJPEG_InitLibrary";
constexpr char kCloseName[] = "ZEP_MJPEG_Close";
constexpr char kGetInfoName[] = "ZEP_MJPEG_GetInfo";
constexpr char kSetInfoName[] = "ZEP_MJPEG_SetInfo";
constexpr char kCopyName[] = "ZEP_MJPEG_CopyParams";

HandleTable<Slot, ZEP_MJPEG_HANDLES> g_slots;

}  // namespace

uint32_t allocate_slot(const char *function_name, uint32_t *handle_out, const char *path, Mode mode,
                       Slot *&slot) {
  const uint32_t status =
      g_slots.allocate(function_name, handle_out, path, message::kNoHandles, slot);
  if (!ZEP_IS_ERROR(status)) slot->mode = mode;
  return status;
}

Slot *slot_in_use(uint32_t handle) { return g_slots.in_use(handle); }

uint32_t allocate_buffers(const char *function_name, ZEP_MJPEG_RECORD &record, uint32_t size) {
  for (uint32_t index = 0; index < 2; ++index) {
    record.buffers[index] = static_cast<uint8_t *>(std::malloc(size));
    if (record.buffers[index] == nullptr)
      return core::report(function_name, ZEP_ERR_MEMORY | index, message::kBufferFailed);
    record.buffer_bytes[index] = 0;
  }
  record.buffer_size = size;
  return ZEP_OK;
}

bool release_slot(Slot &slot) {
  core::LibraryLock lock;
  ZEP_MJPEG_RECORD &record = slot.record;
  for (uint8_t *buffer : record.buffers) std::free(buffer);
  bool closed = true;
  if (record.file != nullptr) closed = std::fclose(record.file) == 0;
  if (record.jpeg_image != 0) ZEP_image_destroy(record.jpeg_image);
  g_slots.clear(slot);
  return closed;
}

}  // namespace vrc::files::mjpeg

using namespace vrc::files::mjpeg;
using vrc::core::api_guard;
using vrc::core::report;

extern "C" {

uint32_t ZEP_MJPEG_InitLibrary(void) {
  return api_guard(kInitName, [] {
    // Streams still open are closed and buffers freed; a failure cannot be told to anyone.
    g_slots.release_all([](Slot &slot) { release_slot(slot); });
    return ZEP_OK;
  });
}

uint32_t ZEP_MJPEG_Close(uint32_t handle) {
  return api_guard(kCloseName, [&] {
    Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    return release_slot(*slot) ? ZEP_OK : report(kCloseName, ZEP_ERR_CLOSE, "Failed to close file");
  });
}

uint32_t ZEP_MJPEG_GetInfo(uint32_t handle, ZEP_MJPEG_RECORD *record_out) {
  return api_guard(kGetInfoName,
                   [&] { return g_slots.get_info(kGetInfoName, handle, record_out); });
}

uint32_t ZEP_MJPEG_SetInfo(uint32_t handle, const ZEP_MJPEG_RECORD *record) {
  return api_guard(kSetInfoName, [&] {
    Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    if (record == nullptr)
      return report(kSetInfoName, ZEP_ERR_BAD_PARAM, vrc::files::kNullArgument);
    ZEP_MJPEG_RECORD &kept = slot->record;
    ZEP_MJPEG_RECORD copy = *record;
    // What ties the record to its slot, stream and memory stays the library's.
    copy.handle = kept.handle;
    copy.self = kept.self;
    copy.file = kept.file;
    copy.jpeg_image = kept.jpeg_image;
    copy.in_use = kept.in_use;
    copy.buffer_index = kept.buffer_index;
    copy.buffer_size = kept.buffer_size;
    for (int i = 0; i < 2; ++i) {
      copy.buffers[i] = kept.buffers[i];
      copy.buffer_bytes[i] = kept.buffer_bytes[i];
    }
    copy.file_name[ZEP_MJPEG_FILE_NAME_LENGTH - 1] = '\0';
    vrc::core::LibraryLock lock;  // allocation reads the in-use word under the lock
    kept = copy;
    return ZEP_OK;
  });
}

uint32_t ZEP_MJPEG_CopyParams(uint32_t from_handle, uint32_t to_handle) {
  return api_guard(kCopyName, [&] {
    const Slot *from = slot_in_use(from_handle);
    Slot *to = slot_in_use(to_handle);
    if (from == nullptr || to == nullptr) return ZEP_ERR_BAD_PARAM;
    const ZEP_MJPEG_RECORD &source = from->record;
    ZEP_MJPEG_RECORD &target = to->record;
    target.user_value = source.user_value;
    target.time_stamp = source.time_stamp;
    std::memcpy(target.user_text1, source.user_text1, ZEP_MJPEG_USER_TEXT_BYTES);
    std::memcpy(target.user_text2, source.user_text2, ZEP_MJPEG_USER_TEXT_BYTES);
    return ZEP_OK;
  });
}

}  // extern "C"
