// Reading MRAW files: Open, ImageRead and SkipFrames. Open checks the file's shape once (the
// identification, whole frames of one stride, a last frame numbered for its place), so that
// every later read lands on a frame record; each read checks that record again before it takes
// anything over, and a failing read leaves the position and the record as they were.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/mraw/mraw_layout.h"
#include "imaging/files/mraw/mraw_slots.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace vrc::files::mraw {
namespace {

constexpr char kOpenName[] = "ZEP_MRAW_Open";
constexpr char kReadName[] = "ZEP_MRAW_ImageRead";
constexpr char kSkipName[] = "ZEP_MRAW_SkipFrames";
constexpr int32_t kLastFrame = -1;
constexpr uint32_t kHeadersOnly = 0;  // a read that moves over the frame data

// A slot that reads: one that writes, or whose Open failed, cannot.
uint32_t check_reading(const char *function_name, const Slot &slot) {
  if (slot.mode != Mode::Reading)
    return core::report(function_name, ZEP_ERR_STATE, message::kOpenForWriting);
  if (slot.record.file == nullptr)
    return core::report(function_name, ZEP_ERR_STATE, message::kOpenFailed);
  return ZEP_OK;
}

// The image describing the frames of a reading slot, or null when it has been destroyed.
ZEP_IMAGE *frame_image(const Slot &slot) {
  ZEP_IMAGE *image = core::image_record(slot.own_image);
  return image != nullptr && image == slot.record.image ? image : nullptr;
}

// Where the read of `frame` starts, by the positioning rules: below 0, from the frame count on,
// or 0 once the last frame was reached: the last frame; 0: the next record; else that frame.
int64_t frame_offset(const Slot &slot, int32_t frame, int64_t current) {
  const ZEP_MRAW_RECORD &record = slot.record;
  const bool last = frame < 0 || static_cast<uint32_t>(frame) >= record.frame_count ||
                    (frame == 0 && record.frame_number >= record.frame_count);
  if (last) return static_cast<int64_t>(slot.file_bytes) - record.frame_stride;
  if (frame == 0) return current;
  return static_cast<int64_t>(slot.data_start) + int64_t{frame - 1} * record.frame_stride;
}

// The 1-based number of the frame whose record starts at `offset`, or 0 when no record does.
uint64_t frame_at(const Slot &slot, int64_t offset) {
  const uint64_t stride = slot.record.frame_stride;
  if (stride == 0 || offset < static_cast<int64_t>(slot.data_start)) return 0;
  const uint64_t from_first = static_cast<uint64_t>(offset) - slot.data_start;
  if (from_first % stride != 0 || from_first + stride > slot.file_bytes - slot.data_start) return 0;
  return from_first / stride + 1;
}

// Gives `destination` the frames' parameters and one strip to read into. A buffer the caller
// locked into an image whose strip holds a frame stays the caller's and receives the frame; a
// smaller one is left alone (not freed) and the image gets a strip of its own.
uint32_t prepare_destination(uint32_t frames, uint32_t destination, uint32_t strip_bytes) {
  ZEP_IMAGE *target = core::image_record(destination);
  const bool caller_buffer =
      target != nullptr && (target->flags & ZEP_FLAG_LOCKED) != 0 && target->data != nullptr;
  const bool keep_buffer = caller_buffer && target->strip_bytes >= strip_bytes;
  uint32_t status = ZEP_image_copy_parameters(frames, destination);
  if (ZEP_IS_ERROR(status)) return status;
  if (keep_buffer) {
    target->flags |= ZEP_FLAG_LOCKED;
    return ZEP_image_check(destination);
  }
  if (caller_buffer) target->data = nullptr;
  status = ZEP_image_free_data(destination);
  if (!ZEP_IS_ERROR(status)) status = ZEP_image_malloc_a_strip(destination);
  return status;
}

// Reads the frame data into `destination`, or moves over it for kHeadersOnly.
uint32_t read_data(const Slot &slot, uint32_t destination, uint32_t strip_bytes) {
  std::FILE *file = slot.record.file;
  if (destination == kHeadersOnly) {
    return std::fseek(file, strip_bytes, SEEK_CUR) == 0
               ? ZEP_OK
               : core::report(kReadName, ZEP_ERR_SYSTEM, message::kFrameTruncated);
  }
  const uint32_t status = prepare_destination(slot.own_image, destination, strip_bytes);
  if (ZEP_IS_ERROR(status)) return status;
  uint8_t *data = core::image_record(destination)->data;
  const std::size_t got = std::fread(data, 1, strip_bytes, file);
  if (got == strip_bytes) return ZEP_OK;
  std::memset(data + got, 0, strip_bytes - got);
  return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kFrameTruncated);
}

// Takes over the fields of a frame header that was read and checked.
void take_header(ZEP_MRAW_RECORD &record, const FrameHeader &header) {
  record.frame_number = header.frame_number;
  record.time_stamp = header.time_stamp;  // the upper half is not stored
  record.frame_stride = header.frame_stride;
  std::copy_n(header.user_value, 3, record.user_value);
  std::copy_n(header.user_block1, ZEP_MRAW_USER_BLOCK_BYTES, record.user_block1);
  std::copy_n(header.user_block2, ZEP_MRAW_USER_BLOCK_BYTES, record.user_block2);
  record.header_per_image_length = header.length;
  std::copy_n(header.bytes, ZEP_MRAW_HEADER_BUFFER_BYTES, record.header_per_image);
}

// Reads the record at `offset` (frame `number`) into `header` and checks it against the file.
uint32_t read_checked_header(const Slot &slot, int64_t offset, uint64_t number,
                             uint32_t strip_bytes, FrameHeader &header) {
  std::FILE *file = slot.record.file;
  if (number == 0) return core::report(kReadName, ZEP_ERR_BAD_PARAM, message::kOutsideFile);
  if (std::fseek(file, offset, SEEK_SET) != 0)
    return core::report(kReadName, ZEP_ERR_SYSTEM, message::kOutsideFile);
  const uint32_t status = ZEP_MRAW_HeaderPerImage_Read(kReadName, file, header);
  if (ZEP_IS_ERROR(status)) return status;
  if (header.frame_stride != slot.record.frame_stride ||
      uint64_t{header.length} + strip_bytes != header.frame_stride) {
    return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kStride);
  }
  if (header.frame_number != number)
    return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kFrameNumber);
  return ZEP_OK;
}

uint32_t read_frame(Slot &slot, int32_t frame, uint32_t destination) {
  const ZEP_IMAGE *image = frame_image(slot);
  if (image == nullptr) return core::report(kReadName, ZEP_ERR_CORRUPT, message::kInvalidImage);
  std::FILE *file = slot.record.file;
  const int64_t current = std::ftell(file);
  const int64_t offset = frame_offset(slot, frame, current);
  FrameHeader header;
  uint32_t status =
      read_checked_header(slot, offset, frame_at(slot, offset), image->strip_bytes, header);
  if (!ZEP_IS_ERROR(status)) status = read_data(slot, destination, image->strip_bytes);
  if (ZEP_IS_ERROR(status)) {
    std::clearerr(file);
    std::fseek(file, current, SEEK_SET);
    return status;
  }
  take_header(slot.record, header);
  return ZEP_OK;
}

// Reads frame 1's header, which gives the stride, and checks that the file is whole frames.
uint32_t read_first_header(Slot &slot) {
  ZEP_MRAW_RECORD &record = slot.record;
  FrameHeader header;
  uint32_t status = ZEP_MRAW_HeaderPerImage_Read(kOpenName, record.file, header);
  if (ZEP_IS_ERROR(status)) return status;
  const uint64_t frames_bytes = slot.file_bytes - slot.data_start;
  if (uint64_t{header.length} + frame_image(slot)->strip_bytes != header.frame_stride)
    return core::report(kOpenName, ZEP_ERR_UNEXPECTED, message::kStride);
  if (frames_bytes % header.frame_stride != 0)
    return core::report(kOpenName, ZEP_ERR_UNEXPECTED, message::kFileLength);
  record.frame_stride = header.frame_stride;
  return ZEP_OK;
}

// Reads the per-file header and the frame headers that give the frame count, and stands on
// frame 1. `keep_slot` tells whether a failure leaves the slot in use.
uint32_t open_frames(Slot &slot, const char *path, bool &keep_slot) {
  ZEP_MRAW_RECORD &record = slot.record;
  slot.own_image = ZEP_image_create();
  if (ZEP_IS_ERROR(slot.own_image)) {
    const uint32_t status = slot.own_image;
    slot.own_image = 0;
    return status;
  }
  record.image = core::image_record(slot.own_image);
  record.image_handle = slot.own_image;
  ZEP_image_set_infilename(slot.own_image, path);

  // A file that cannot be opened, or whose per-file header is not MRAW, keeps its slot in use,
  // as it always has; ZEP_MRAW_Close frees it.
  keep_slot = true;
  record.file = std::fopen(path, "rb");
  if (record.file == nullptr) return core::report(kOpenName, ZEP_ERR_OPEN, message::kOpenFailed);
  uint32_t status = ZEP_MRAW_HeaderPerFile_Read(kOpenName, record, slot.own_image);
  if (ZEP_IS_ERROR(status)) {
    std::fclose(record.file);
    record.file = nullptr;
    return status;
  }

  keep_slot = false;
  slot.data_start = record.header_per_file_length;
  if (std::fseek(record.file, 0, SEEK_END) != 0)
    return core::report(kOpenName, ZEP_ERR_SYSTEM, message::kFileLength);
  slot.file_bytes = static_cast<uint64_t>(std::max(std::ftell(record.file), 0L));
  if (slot.file_bytes <= slot.data_start)
    return core::report(kOpenName, ZEP_ERR_UNEXPECTED, message::kPerImageTruncated);
  std::fseek(record.file, static_cast<long>(slot.data_start), SEEK_SET);
  status = read_first_header(slot);
  if (!ZEP_IS_ERROR(status)) status = read_frame(slot, kLastFrame, kHeadersOnly);
  if (ZEP_IS_ERROR(status)) return status;
  record.frame_count = record.frame_number;
  return read_frame(slot, 1, kHeadersOnly);
}

uint32_t skip_frames(Slot &slot, int32_t count) {
  const uint32_t status = check_reading(kSkipName, slot);
  if (ZEP_IS_ERROR(status)) return status;
  std::FILE *file = slot.record.file;
  const int64_t target = std::ftell(file) + int64_t{count} * slot.record.frame_stride;
  if (target < static_cast<int64_t>(slot.data_start) ||
      target > static_cast<int64_t>(slot.file_bytes) ||
      std::fseek(file, static_cast<long>(target), SEEK_SET) != 0) {
    return core::report(kSkipName, ZEP_ERR_BAD_PARAM, message::kOutsideFile);
  }
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::files::mraw

using namespace vrc::files::mraw;
using vrc::core::api_guard;

extern "C" {

uint32_t ZEP_MRAW_Open(uint32_t *handle_out, const char *path) {
  return api_guard(kOpenName, [&] {
    Slot *slot = nullptr;
    uint32_t status = allocate_slot(kOpenName, handle_out, path, Mode::Reading, slot);
    if (ZEP_IS_ERROR(status)) return status;
    bool keep_slot = false;
    status = open_frames(*slot, path, keep_slot);
    if (ZEP_IS_ERROR(status) && !keep_slot) {
      release_slot(*slot);
      *handle_out = 0;
    }
    return status;
  });
}

uint32_t ZEP_MRAW_ImageRead(uint32_t handle, uint32_t image, int32_t frame) {
  return api_guard(kReadName, [&] {
    Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    const uint32_t status = check_reading(kReadName, *slot);
    return ZEP_IS_ERROR(status) ? status : read_frame(*slot, frame, image);
  });
}

uint32_t ZEP_MRAW_SkipFrames(uint32_t handle, int32_t count) {
  return api_guard(kSkipName, [&] {
    Slot *slot = slot_in_use(handle);
    return slot == nullptr ? ZEP_ERR_BAD_PARAM : skip_frames(*slot, count);
  });
}

}  // extern "C"
