// Creation and destruction of image records, and their strip buffers.
#include "imaging/core/handle_table.h"
#include "imaging/core/init.h"
#include "imaging/core/jpeg_record.h"
#include "imaging/core/library_hooks.h"
#include "imaging/core/library_lock.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_core.h"

#include <cstdlib>
#include <cstring>

namespace {

using vrc::core::LibraryLock;

constexpr const char *kCreate = "ZEP_image_create";
constexpr std::size_t kCmapBytes = 256 * 4;
constexpr uint8_t kFreshFill = 0xAA;  // every byte of a new colour map

// Under the lock, stores a new zeroed record in the lowest free slot. Returns the handle, or
// unreported 0x10080000 when no slot is free and 0x10060001 when the record cannot be allocated.
uint32_t occupy_lowest_free_slot(ZEP_IMAGE *&image) {
  LibraryLock lock;
  uint32_t handle = vrc::core::table_lowest_free();
  if (handle == 0) return ZEP_ERR_NO_HANDLES;
  image = static_cast<ZEP_IMAGE *>(std::calloc(1, sizeof(ZEP_IMAGE)));
  if (image == nullptr) return ZEP_ERR_MEMORY | 1;
  vrc::core::table_store(handle, image);
  return handle;
}

void set_defaults(ZEP_IMAGE &image) {
  image.height = 32767;
  image.line_align = 2;
  image.current_frame = 1;
  image.lines_this_strip = 8;
}

void release_data(ZEP_IMAGE &image) {
  if ((image.flags & ZEP_FLAG_LOCKED) == 0) {
    std::free(image.data);
    image.data = nullptr;
  }
  if (image.jpeg != nullptr) vrc::core::jpeg_record_free_data(image.jpeg);
}

// Under the lock, releases the data (even a caller's locked buffer: destroy always does) and
// empties the slot, so that neither a bulk operation nor a second destroy on another thread can
// reach the record afterwards; the rest of the record is freed outside the lock.
void destroy_one(uint32_t handle) {
  ZEP_IMAGE *image = nullptr;
  {
    LibraryLock lock;
    image = vrc::core::image_record(handle);
    if (image == nullptr) return;
    image->flags &= ~ZEP_FLAG_LOCKED;
    release_data(*image);
    vrc::core::table_store(handle, nullptr);
  }
  std::free(image->cmap);
  std::free(image->cmap_info);
  vrc::core::jpeg_record_destroy(image->jpeg);
  std::free(image);
}

uint32_t destroy_all() {
  {
    LibraryLock lock;
    vrc::core::table_for_each([](uint32_t handle, ZEP_IMAGE *) { destroy_one(handle); });
  }
  vrc::core::run_teardown_hooks();
  return 0;
}

uint32_t destroy_if_none_left() {
  LibraryLock lock;
  return vrc::core::table_any_occupied() ? ZEP_ERR_INTERNAL : 0;
}

}  // namespace

extern "C" {

uint32_t ZEP_image_create(void) {
  return vrc::core::api_guard(kCreate, []() -> uint32_t {
    vrc::core::ensure_initialised();
    ZEP_IMAGE *image = nullptr;
    uint32_t handle = occupy_lowest_free_slot(image);
    if (handle == ZEP_ERR_NO_HANDLES)
      return vrc::core::report(kCreate, handle, "Run out of image handles");
    if (ZEP_IS_ERROR(handle)) return vrc::core::report(kCreate, handle);
    set_defaults(*image);
    image->cmap = static_cast<uint8_t *>(std::malloc(kCmapBytes));
    if (image->cmap == nullptr) return vrc::core::report(kCreate, ZEP_ERR_MEMORY);
    std::memset(image->cmap, kFreshFill, kCmapBytes);
    return handle;
  });
}

uint32_t ZEP_image_destroy(uint32_t handle) {
  if (handle == ZEP_ALL_IMAGES) return destroy_all();
  if (handle == ZEP_ANY_IMAGES_LEFT) return destroy_if_none_left();
  destroy_one(handle);
  return 0;
}

uint32_t ZEP_ImageUnlockAndDestroy(uint32_t handle) {
  ZEP_image_destroy(handle);  // which clears the locked flag of every image it releases
  return 0;
}

uint32_t ZEP_image_malloc_a_strip(uint32_t handle) {
  ZEP_IMAGE *image = vrc::core::image_record(handle);
  if (image != nullptr && (image->flags & ZEP_FLAG_LOCKED) != 0 && image->data != nullptr) return 0;
  uint32_t status = ZEP_image_check(handle);
  if (status != 0) return vrc::core::report("ZEP_image_malloc_a_strip", status, "Corrupt image");
  uint64_t bytes = uint64_t{image->bytes_per_line} * image->lines_this_strip;
  image->data = static_cast<uint8_t *>(std::malloc(bytes == 0 ? 1 : bytes));
  if (image->data == nullptr)
    return vrc::core::report("ZEP_image_malloc_a_strip",
                             ZEP_ERR_MEMORY | static_cast<uint32_t>(bytes & 0xFFFF));
  return 0;
}

uint32_t ZEP_image_free_data(uint32_t handle) {
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, "ZEP_image_free_data");
  if (image == nullptr) return ZEP_ERR_HANDLE;
  LibraryLock lock;
  release_data(*image);
  return 0;
}

}  // extern "C"
