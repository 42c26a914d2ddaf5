// Writing MJPEG files: Create and ImageWrite. Each frame's record is built in one of two memory
// buffers; the record before it, whose length field can only now be completed, is written to the
// file. The file therefore lags one frame behind, and Close drops the frame still held. A record
// is written and flushed whole, and cut off again when that fails, so a file already written
// keeps its whole records.
#include "imaging/core/handle_table.h"
#include "imaging/core/library_lock.h"
#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/mjpeg/mjpeg_layout.h"
#include "imaging/files/mjpeg/mjpeg_slots.h"

#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace vrc::files::mjpeg {
namespace {

constexpr char kCreateName[] = "ZEP_MJPEG_Create";
constexpr char kWriteName[] = "ZEP_MJPEG_ImageWrite";

// The buffer that receives the next record: buffer 0 for the first frame, then the other one.
uint32_t ZEP_MJPEG_GetNextMemoryBuffer(const ZEP_MJPEG_RECORD &record) {
  return record.frame_number <= 1 ? 0 : record.buffer_index ^ 1u;
}

// Writes the record in buffer `index` to the file and flushes it; on failure the file is cut
// back to where the record began.
bool ZEP_MJPEG_BufferWrite(const ZEP_MJPEG_RECORD &record, uint32_t index) {
  std::FILE *file = record.file;
  const long start = std::ftell(file);
  if (start < 0) return false;
  const uint32_t count = record.buffer_bytes[index];
  bool written = std::fwrite(record.buffers[index], 1, count, file) == count;
  written = std::fflush(file) == 0 && written;
  if (!written) {
    std::clearerr(file);
    static_cast<void>(::ftruncate(::fileno(file), start));
    std::fseek(file, start, SEEK_SET);
  }
  return written;
}

// The first frame fixes the buffers' size (the frame's uncompressed size and a margin) and the
// geometry every later frame must have.
uint32_t start_file(Slot &slot, const ZEP_IMAGE &image) {
  const uint64_t size = buffer_size_for(image);
  if (size > UINT32_MAX) return core::report(kWriteName, ZEP_ERR_MEMORY, message::kBufferFailed);
  const uint32_t status = allocate_buffers(kWriteName, slot.record, static_cast<uint32_t>(size));
  if (ZEP_IS_ERROR(status)) return status;
  slot.width = image.width;
  slot.height = image.height;
  slot.type = image.type;
  slot.record.is_colour = image.type != ZEP_Y8;
  return ZEP_OK;
}

uint32_t check_frame(const Slot &slot, const jpeg::JpegImage &frame) {
  if (slot.mode != Mode::Writing)
    return core::report(kWriteName, ZEP_ERR_STATE, message::kOpenForReading);
  const ZEP_IMAGE &image = *frame.image;
  if (slot.record.frame_number != 0 &&
      (image.width != slot.width || image.height != slot.height || image.type != slot.type)) {
    return core::report(kWriteName, ZEP_ERR_BAD_PARAM, message::kGeometry);
  }
  return ZEP_OK;
}

uint32_t write_frame(Slot &slot, uint32_t jpeg_image) {
  const jpeg::JpegImage frame = jpeg::jpeg_image_of(jpeg_image, kWriteName);
  if (frame.record == nullptr) return frame.status;
  uint32_t status = check_frame(slot, frame);
  if (ZEP_IS_ERROR(status)) return status;
  if (slot.record.buffers[0] == nullptr) {
    status = start_file(slot, *frame.image);
    if (ZEP_IS_ERROR(status)) return status;
  }
  const uint32_t data_length = frame.record->data == nullptr ? 0 : frame.record->length;
  if (uint64_t{data_length} + kBufferReserve > slot.record.buffer_size)
    return core::report(kWriteName, ZEP_ERR_INTERNAL | (data_length & 0xFFFF),
                        message::kBufferTooSmall);

  // Built in a copy, taken over only when the previous record is in the file.
  ZEP_MJPEG_RECORD next = slot.record;
  next.frame_number += 1;
  next.buffer_index = ZEP_MJPEG_GetNextMemoryBuffer(next);
  next.data_length = data_length;
  if (next.user_time == 0) next.time_stamp = static_cast<int64_t>(std::time(nullptr));
  ZEP_MJPEG_CommentStringGenerate(next);
  const uint32_t index = next.buffer_index;
  uint32_t length = 0;
  status =
      build_record(kWriteName, next, jpeg_image, {next.buffers[index], next.buffer_size}, length);
  if (ZEP_IS_ERROR(status)) return status;
  next.buffer_bytes[index] = length;
  if (next.frame_number > 1) {
    ZEP_MJPEG_IndexesAdd(next, slot.record.next_frame_length);
    if (!ZEP_MJPEG_BufferWrite(next, index ^ 1u))
      return core::report(kWriteName, ZEP_ERR_SYSTEM, message::kWriteFailed);
  }
  next.next_frame_length = length;
  next.previous_frame_length = length;
  next.frame_count = next.frame_number;
  core::LibraryLock lock;  // allocation reads the in-use word under the lock
  slot.record = next;
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::files::mjpeg

using namespace vrc::files::mjpeg;
using vrc::core::api_guard;
using vrc::core::report;

extern "C" {

uint32_t ZEP_MJPEG_Create(uint32_t *handle_out, const char *path, uint32_t user_value,
                          uint32_t mode) {
  return api_guard(kCreateName, [&] {
    Slot *slot = nullptr;
    const uint32_t status = allocate_slot(kCreateName, handle_out, path, Mode::Writing, slot);
    if (ZEP_IS_ERROR(status)) return status;
    slot->record.user_value = user_value;
    slot->record.mode = mode;
    slot->record.file = std::fopen(path, "wb");
    if (slot->record.file == nullptr) {
      release_slot(*slot);
      *handle_out = 0;
      return report(kCreateName, ZEP_ERR_OPEN, message::kCreateFailed);
    }
    // Records go from their buffers to the file in one write each.
    std::setvbuf(slot->record.file, nullptr, _IONBF, 0);
    return ZEP_OK;
  });
}

uint32_t ZEP_MJPEG_ImageWrite(uint32_t handle, uint32_t jpeg_image) {
  return api_guard(kWriteName, [&] {
    Slot *slot = slot_in_use(handle);
    return slot == nullptr ? ZEP_ERR_BAD_PARAM : write_frame(*slot, jpeg_image);
  });
}

}  // extern "C"
