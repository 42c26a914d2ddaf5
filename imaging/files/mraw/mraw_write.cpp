// Writing MRAW files: Create and ImageWrite. Each frame is its per-image header and the image's
// strip, written straight from the image's buffer and flushed, so that a failing write is found
// at its own frame and cut off again: a file already written keeps its whole frames.
#include "imaging/core/handle_table.h"
#include "imaging/core/library_lock.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/mraw/mraw_layout.h"
#include "imaging/files/mraw/mraw_slots.h"
#include "vrcw32/zep_convert.h"

#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace vrc::files::mraw {
namespace {

constexpr char kCreateName[] = "ZEP_MRAW_Create";
constexpr char kWriteName[] = "ZEP_MRAW_ImageWrite";

// Whether `image` has the geometry the file's first frame gave it.
bool same_geometry(const ZEP_MRAW_RECORD &record, const ZEP_IMAGE &image) {
  const uint8_t *first = record.header_per_file;
  return image.width == record.width && image.height == record.height &&
         image.type == ZEP_mget_ui16m(first + per_file::kType) &&
         image.bytes_per_line == ZEP_mget_ui32m(first + per_file::kBytesPerLine) &&
         uint64_t{image.strip_bytes} + ZEP_MRAW_PER_IMAGE_HEADER_BYTES == record.frame_stride;
}

// The checks made before anything is written; `image` is the checked record on success.
uint32_t check_frame(const Slot &slot, uint32_t handle, ZEP_IMAGE *&image) {
  if (slot.mode != Mode::Writing)
    return core::report(kWriteName, ZEP_ERR_STATE, message::kOpenForReading);
  const uint32_t status = ZEP_image_check(handle);
  if (ZEP_IS_ERROR(status)) return core::report(kWriteName, status, message::kInvalidImage);
  image = core::image_record(handle);
  if (image->lines_this_strip != image->height || image->data == nullptr)
    return core::report(kWriteName, ZEP_ERR_BAD_PARAM, message::kNotOneStrip);
  if (uint64_t{image->strip_bytes} + ZEP_MRAW_PER_IMAGE_HEADER_BYTES > UINT32_MAX)
    return core::report(kWriteName, ZEP_ERR_BAD_PARAM, message::kInvalidImage);
  if (slot.record.frame_number != 0 && !same_geometry(slot.record, *image))
    return core::report(kWriteName, ZEP_ERR_BAD_PARAM, message::kGeometry);
  return ZEP_OK;
}

// Writes the frame record (and before the first frame the per-file header) and flushes it;
// on failure the file is cut back to `start`.
bool write_record(std::FILE *file, const ZEP_MRAW_RECORD &record, bool first,
                  const ZEP_IMAGE &image, long start) {
  bool written = (!first || std::fwrite(record.header_per_file, 1, ZEP_MRAW_PER_FILE_HEADER_BYTES,
                                        file) == ZEP_MRAW_PER_FILE_HEADER_BYTES) &&
                 std::fwrite(record.header_per_image, 1, ZEP_MRAW_PER_IMAGE_HEADER_BYTES, file) ==
                     ZEP_MRAW_PER_IMAGE_HEADER_BYTES &&
                 std::fwrite(image.data, 1, image.strip_bytes, file) == image.strip_bytes;
  written = std::fflush(file) == 0 && written;
  if (!written) {
    std::clearerr(file);
    static_cast<void>(::ftruncate(::fileno(file), start));
    std::fseek(file, start, SEEK_SET);
  }
  return written;
}

uint32_t write_frame(Slot &slot, uint32_t handle) {
  ZEP_IMAGE *image = nullptr;
  const uint32_t status = check_frame(slot, handle, image);
  if (ZEP_IS_ERROR(status)) return status;

  // Built in a copy, taken over only when the frame is in the file.
  ZEP_MRAW_RECORD next = slot.record;
  next.image = image;
  next.image_handle = handle;
  const bool first = next.frame_number == 0;
  if (first) {
    ZEP_MRAW_HeaderPerFile_Generate(next, *image);
    next.frame_stride = image->strip_bytes + ZEP_MRAW_PER_IMAGE_HEADER_BYTES;
    next.width = image->width;
    next.height = image->height;
    next.is_colour = ZEP_image_is_colour(handle);
  }
  next.frame_number += 1;
  if (next.user_time == 0) next.time_stamp = static_cast<int64_t>(std::time(nullptr));
  ZEP_MRAW_HeaderPerImage_Generate(next);

  const long start = std::ftell(next.file);
  if (start < 0 || !write_record(next.file, next, first, *image, start))
    return core::report(kWriteName, ZEP_ERR_SYSTEM, message::kWriteFailed);
  next.frame_count = next.frame_number;
  // The whole record is copied back, in-use word included, which allocation reads under the lock.
  core::LibraryLock lock;
  slot.record = next;
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::files::mraw

using namespace vrc::files::mraw;
using vrc::core::api_guard;
using vrc::core::report;

extern "C" {

uint32_t ZEP_MRAW_Create(uint32_t *handle_out, const char *path) {
  return api_guard(kCreateName, [&] {
    Slot *slot = nullptr;
    const uint32_t status = allocate_slot(kCreateName, handle_out, path, Mode::Writing, slot);
    if (ZEP_IS_ERROR(status)) return status;
    slot->record.file = std::fopen(path, "wb");
    if (slot->record.file == nullptr) {
      release_slot(*slot);
      return report(kCreateName, ZEP_ERR_OPEN, vrc::files::message::kCreateFailed);
    }
    // Frames go straight from the image's buffer to the file, without a copy through a stdio
    // buffer; each header and frame is one write.
    std::setvbuf(slot->record.file, nullptr, _IONBF, 0);
    return ZEP_OK;
  });
}

uint32_t ZEP_MRAW_ImageWrite(uint32_t handle, uint32_t image) {
  return api_guard(kWriteName, [&] {
    Slot *slot = slot_in_use(handle);
    return slot == nullptr ? ZEP_ERR_BAD_PARAM : write_frame(*slot, image);
  });
}

}  // extern "C"
