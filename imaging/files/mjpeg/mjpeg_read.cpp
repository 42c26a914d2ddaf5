// Reading MJPEG files: Open, ImageRead and the public skips and scans. A read finds the record's
// comment marker, takes the comment, finds SOS, reads the entropy data into buffer 0 and checks
// the EOI after it; the frame then goes to the caller's JPEG image with the file's tables. A read
// that fails leaves the stream where it stood and the handle record as it was.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_markers.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/mjpeg/mjpeg_layout.h"
#include "imaging/files/mjpeg/mjpeg_seek.h"
#include "imaging/files/mjpeg/mjpeg_slots.h"
#include "vrcw32/zep_jpeg_files.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace vrc::files::mjpeg {
namespace {

constexpr char kOpenName[] = "ZEP_MJPEG_Open";
constexpr char kReadName[] = "ZEP_MJPEG_ImageRead";
constexpr char kSkipForwardsName[] = "ZEP_MJPEG_SkipForwards";
constexpr char kSkipBackwardsName[] = "ZEP_MJPEG_SkipBackwards";
constexpr char kScanForwardsName[] = "ZEP_MJPEG_ScanForwards";
constexpr char kScanBackwardsName[] = "ZEP_MJPEG_ScanBackwards";
constexpr int32_t kLastFrame = -1;
constexpr uint32_t kNoImage = 0;  // a read that only moves the stream and fills buffer 0

uint32_t check_reading(const char *function_name, const Slot &slot) {
  if (slot.mode != Mode::Reading)
    return core::report(function_name, ZEP_ERR_STATE, message::kOpenForWriting);
  return ZEP_OK;
}

// The frame a request names: 0 the one the stream stands at (nothing when that is not known),
// -1 or beyond the count the last, below -1 the first.
struct Target {
  bool last = false;
  uint32_t number = 0;  // 0: whatever record the stream stands at
};

Target resolve(const Slot &slot, int32_t frame) {
  const uint32_t count = slot.record.frame_count;
  uint32_t number = 0;
  if (frame < kLastFrame)
    number = 1;
  else if (frame > 0)
    number = static_cast<uint32_t>(frame);
  else if (frame == 0)
    number = slot.next_frame;
  if (frame == kLastFrame || count == 0 || number > count) return {true, count};
  return {false, number};
}

// Puts the stream at the start of the target's record (or where a read of "the next" begins).
uint32_t position_for(Slot &slot, const Target &target) {
  std::FILE *file = slot.record.file;
  if (target.last) {
    std::fseek(file, 0, SEEK_END);
    slot.next_frame = 0;
    slot.after_read = false;
    const uint32_t status = scan_backwards(kReadName, slot, 1);
    slot.next_frame = slot.record.frame_count;
    return status;
  }
  const uint32_t number = target.number;
  if (number == 0 || number == slot.next_frame) return ZEP_OK;
  if (number == 1 || slot.next_frame == 0) {
    std::fseek(file, 0, SEEK_SET);
    slot.next_frame = 1;
    slot.after_read = false;
    return number == 1 ? ZEP_OK : skip_forwards(kReadName, slot, number - 1);
  }
  return number > slot.next_frame ? skip_forwards(kReadName, slot, number - slot.next_frame)
                                  : skip_backwards(kReadName, slot, slot.next_frame - number);
}

// Reads two bytes; -1 at the end of the file.
int read_u16(std::FILE *file) {
  const int high = std::getc(file);
  const int low = std::getc(file);
  return high < 0 || low < 0 ? -1 : high << 8 | low;
}

// Finds SOS after the comment: right after it in a later record; in the first, after the DQT
// and SOF0 segments, which are stepped over by their lengths (table bytes may look like
// markers), and the SOS fields are stepped over too.
uint32_t find_data(const Slot &slot, uint64_t after_comment, bool first_record) {
  std::FILE *file = slot.record.file;
  std::fseek(file, static_cast<long>(after_comment), SEEK_SET);
  if (!first_record) {
    const bool sos =
        std::getc(file) == jpeg::marker::kPrefix && std::getc(file) == jpeg::marker::kSos;
    return sos ? ZEP_OK : core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kNoScan);
  }
  for (;;) {
    const int prefix = std::getc(file);
    const int code = std::getc(file);
    const int length = read_u16(file);
    if (prefix != jpeg::marker::kPrefix || code < 0 || length < 2)
      return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kNoScan);
    if (std::fseek(file, length - 2, SEEK_CUR) != 0)
      return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kTruncated);
    if (code == jpeg::marker::kSos) return ZEP_OK;
  }
}

// Reads the record the stream stands at (after any bytes before its marker) into `record` and
// buffer 0.
uint32_t read_record(Slot &slot, ZEP_MJPEG_RECORD &record) {
  std::FILE *file = record.file;
  const auto from = static_cast<uint64_t>(std::max(std::ftell(file), 0L));
  const std::optional<uint64_t> marker = find_marker_forwards(file, from, slot.file_bytes);
  if (!marker) return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kNoComment);
  std::fseek(file, static_cast<long>(*marker + 2), SEEK_SET);
  const int length = read_u16(file);
  if (length != kCommentSegmentLength)
    return core::report(kReadName, ZEP_ERR_UNEXPECTED | (static_cast<uint32_t>(length) & 0xFFFF),
                        message::kCommentLength);
  uint8_t comment_bytes[ZEP_MJPEG_COMMENT_BYTES];
  if (std::fread(comment_bytes, 1, sizeof comment_bytes, file) != sizeof comment_bytes)
    return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kTruncated);
  ZEP_MJPEG_CommentStringParse(record, comment_bytes);
  const uint64_t after_comment = *marker + kCommentMarkerBytes + ZEP_MJPEG_COMMENT_BYTES;
  uint32_t status = find_data(slot, after_comment, *marker == kFirstCommentSegmentOffset);
  if (ZEP_IS_ERROR(status)) return status;

  const auto data_start = static_cast<uint64_t>(std::ftell(file));
  if (record.data_length > record.buffer_size ||
      data_start + record.data_length + 2 > slot.file_bytes)
    return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kDataLength);
  slot.holds_frame = false;  // buffer 0 is overwritten from here on
  if (std::fread(record.buffers[0], 1, record.data_length, file) != record.data_length)
    return core::report(kReadName, ZEP_ERR_UNEXPECTED, message::kTruncated);
  const int prefix = std::getc(file);
  if (prefix != jpeg::marker::kPrefix)
    return core::report(kReadName, ZEP_ERR_UNEXPECTED | (static_cast<uint32_t>(prefix) & 0xFF),
                        message::kExpectingFf);
  const int code = std::getc(file);
  if (code != jpeg::marker::kEoi)
    return core::report(kReadName, ZEP_ERR_UNEXPECTED | (static_cast<uint32_t>(code) & 0xFF),
                        message::kExpectingEoi);
  record.buffer_index = 0;
  record.buffer_bytes[0] = record.data_length;
  return ZEP_OK;
}

// Gives the JPEG image `destination` the file's tables and size and the frame in buffer 0.
uint32_t hand_out(const ZEP_MJPEG_RECORD &record, uint32_t destination) {
  const jpeg::JpegImage target = jpeg::jpeg_image_of(destination, kReadName);
  if (target.record == nullptr) return target.status;
  uint32_t status = ZEP_image_copy_parameters(record.jpeg_image, destination);
  if (!ZEP_IS_ERROR(status)) status = ZEP_JPEG_copy_parameters(record.jpeg_image, destination);
  if (!ZEP_IS_ERROR(status)) status = ZEP_JPEG_malloc_N_bytes_data(destination, record.data_length);
  if (ZEP_IS_ERROR(status)) return status;
  if (record.data_length != 0)
    std::memcpy(target.record->data, record.buffers[0], record.data_length);
  target.image->flags |= ZEP_FLAG_JPEG;
  return ZEP_OK;
}

uint32_t read_frame(Slot &slot, int32_t frame, uint32_t destination) {
  const Target target = resolve(slot, frame);
  const uint32_t wanted = target.last ? slot.record.frame_count : target.number;
  // The frame just read is handed out again from buffer 0.
  const bool current =
      slot.holds_frame && slot.after_read && wanted != 0 && wanted == slot.record.frame_number;
  if (!current) {
    std::FILE *file = slot.record.file;
    const long start = std::ftell(file);
    const uint32_t next_frame = slot.next_frame;
    const bool after_read = slot.after_read;
    ZEP_MJPEG_RECORD record = slot.record;
    uint32_t status = position_for(slot, target);
    if (!ZEP_IS_ERROR(status)) status = read_record(slot, record);
    if (ZEP_IS_ERROR(status)) {
      std::clearerr(file);
      std::fseek(file, start, SEEK_SET);
      slot.next_frame = next_frame;
      slot.after_read = after_read;
      return status;
    }
    slot.record = record;
    slot.next_frame = record.frame_number + 1;
    slot.after_read = true;
    slot.holds_frame = true;
  }
  return destination == kNoImage ? ZEP_OK : hand_out(slot.record, destination);
}

// Buffers for the frames of the open file: their uncompressed size and a margin, but never more
// than the file could hold.
uint32_t allocate_read_buffers(Slot &slot) {
  const ZEP_IMAGE *image = core::image_record(slot.record.jpeg_image);
  const uint64_t size = std::min(buffer_size_for(*image), slot.file_bytes + kBufferReserve);
  return allocate_buffers(kOpenName, slot.record, static_cast<uint32_t>(size));
}

uint32_t open_file(Slot &slot, const char *path) {
  ZEP_MJPEG_RECORD &record = slot.record;
  const uint32_t jpeg_image = ZEP_JPEG_image_create();
  if (ZEP_IS_ERROR(jpeg_image)) return jpeg_image;
  record.jpeg_image = jpeg_image;
  uint32_t status = ZEP_JPEG_set_default_H_tables(jpeg_image);
  if (!ZEP_IS_ERROR(status)) status = ZEP_image_set_infilename(jpeg_image, path);
  if (!ZEP_IS_ERROR(status)) status = ZEP_JPEG_file_open(jpeg_image);
  if (ZEP_IS_ERROR(status)) return status;
  // The stream the header was read from becomes the handle's.
  record.file = ZEP_JPEG_get_file_ptr(jpeg_image);
  ZEP_JPEG_set_file_ptr(jpeg_image, nullptr);
  if (record.file == nullptr)
    return core::report(kOpenName, ZEP_ERR_UNEXPECTED, message::kNoFrames);
  record.is_colour = ZEP_JPEG_get_parameter(jpeg_image, ZEP_JPEG_SOS_COMPONENTS) == 3;
  std::fseek(record.file, 0, SEEK_END);
  slot.file_bytes = static_cast<uint64_t>(std::max(std::ftell(record.file), 0L));
  if (!find_marker_forwards(record.file, 0, slot.file_bytes))
    return core::report(kOpenName, ZEP_ERR_UNEXPECTED, message::kNoFrames);
  status = allocate_read_buffers(slot);
  if (!ZEP_IS_ERROR(status)) status = read_frame(slot, kLastFrame, kNoImage);
  if (ZEP_IS_ERROR(status)) return status;
  if (record.frame_number == 0)
    return core::report(kOpenName, ZEP_ERR_UNEXPECTED, message::kNoFrames);
  record.frame_count = record.frame_number;
  status = read_frame(slot, 1, kNoImage);
  if (ZEP_IS_ERROR(status)) return status;
  // Standing before frame 1: the first read of the next frame gives frame 1.
  std::fseek(record.file, 0, SEEK_SET);
  slot.next_frame = 1;
  slot.after_read = false;
  return ZEP_OK;
}

template <typename Move>
uint32_t move_public(const char *function_name, uint32_t handle, uint32_t count, Move move) {
  return core::api_guard(function_name, [&] {
    Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    const uint32_t status = check_reading(function_name, *slot);
    return ZEP_IS_ERROR(status) ? status : move(function_name, *slot, count);
  });
}

}  // namespace
}  // namespace vrc::files::mjpeg

using namespace vrc::files::mjpeg;
using vrc::core::api_guard;

extern "C" {

uint32_t ZEP_MJPEG_Open(uint32_t *handle_out, const char *path) {
  return api_guard(kOpenName, [&] {
    Slot *slot = nullptr;
    uint32_t status = allocate_slot(kOpenName, handle_out, path, Mode::Reading, slot);
    if (ZEP_IS_ERROR(status)) return status;
    status = open_file(*slot, path);
    if (ZEP_IS_ERROR(status)) {
      release_slot(*slot);
      *handle_out = 0;
    }
    return status;
  });
}

uint32_t ZEP_MJPEG_ImageRead(uint32_t handle, uint32_t jpeg_image, int32_t frame) {
  return api_guard(kReadName, [&] {
    Slot *slot = slot_in_use(handle);
    if (slot == nullptr) return ZEP_ERR_BAD_PARAM;
    const uint32_t status = check_reading(kReadName, *slot);
    if (ZEP_IS_ERROR(status)) return status;
    // A destination that cannot take the frame is refused before the stream moves.
    const vrc::jpeg::JpegImage target = vrc::jpeg::jpeg_image_of(jpeg_image, kReadName);
    return target.record == nullptr ? target.status : read_frame(*slot, frame, jpeg_image);
  });
}

uint32_t ZEP_MJPEG_SkipForwards(uint32_t handle, uint32_t count) {
  return move_public(kSkipForwardsName, handle, count, &skip_forwards);
}

uint32_t ZEP_MJPEG_SkipBackwards(uint32_t handle, uint32_t count) {
  return move_public(kSkipBackwardsName, handle, count, &skip_backwards);
}

uint32_t ZEP_MJPEG_ScanForwards(uint32_t handle, uint32_t count) {
  return move_public(kScanForwardsName, handle, count, &scan_forwards);
}

uint32_t ZEP_MJPEG_ScanBackwards(uint32_t handle, uint32_t count) {
  return move_public(kScanBackwardsName, handle, count, &scan_backwards);
}

}  // extern "C"
