// Moving over MJPEG records. Skipping reads a record's stored length (its next-frame field
// forwards, the previous-frame fields backwards) and jumps; where a length is 0 (not known) or
// the stream does not stand where the stored lengths apply, it scans for comment markers
// instead. Every landing place is checked against the file, so a damaged length is reported
// rather than followed outside it.
#include "imaging/files/mjpeg/mjpeg_seek.h"

#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_markers.h"
#include "imaging/files/mjpeg/mjpeg_layout.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace vrc::files::mjpeg {
namespace {

constexpr std::size_t kChunkBytes = 64 * 1024;
constexpr uint8_t kCommentMarker[kCommentMarkerBytes] = {jpeg::marker::kPrefix, jpeg::marker::kCom,
                                                         kCommentSegmentLength >> 8,
                                                         kCommentSegmentLength & 0xFF};
// Offsets of the length fields in a later record.
constexpr uint32_t kNextLengthField = kLaterCommentOffset + comment::kNextFrameLength;
constexpr uint32_t kPreviousLengthField = kLaterCommentOffset + comment::kPreviousFrameLength;

bool seek_to(std::FILE *file, uint64_t offset) {
  return std::fseek(file, static_cast<long>(offset), SEEK_SET) == 0;
}

uint64_t position(std::FILE *file) { return static_cast<uint64_t>(std::max(std::ftell(file), 0L)); }

bool read_at(std::FILE *file, uint64_t offset, uint8_t *bytes, std::size_t count) {
  return seek_to(file, offset) && std::fread(bytes, 1, count, file) == count;
}

std::optional<uint32_t> u32_at(std::FILE *file, uint64_t offset) {
  uint8_t bytes[4];
  if (!read_at(file, offset, bytes, sizeof bytes)) return std::nullopt;
  return ZEP_mget_ui32m(bytes);
}

// Whether a later record (its comment marker with length 298) starts at `offset`.
bool later_record_at(std::FILE *file, uint64_t offset) {
  uint8_t bytes[kCommentMarkerBytes];
  return offset != 0 && read_at(file, offset, bytes, sizeof bytes) &&
         std::memcmp(bytes, kCommentMarker, sizeof bytes) == 0;
}

// Offset of the last FF FE that starts before `before`, or nothing. Chunks are read with one
// byte more, so that a marker across two chunks is seen.
std::optional<uint64_t> find_marker_backwards(std::FILE *file, uint64_t before) {
  std::array<uint8_t, kChunkBytes + 1> chunk;
  for (uint64_t end = before; end > 0;) {
    const uint64_t start = end > kChunkBytes ? end - kChunkBytes : 0;
    const auto count = static_cast<std::size_t>(end - start);
    if (!seek_to(file, start)) return std::nullopt;
    const std::size_t got = std::fread(chunk.data(), 1, count + 1, file);
    for (std::size_t i = std::min(count, got); i-- > 0;) {
      if (i + 1 < got && chunk[i] == jpeg::marker::kPrefix && chunk[i + 1] == jpeg::marker::kCom)
        return start + i;
    }
    end = start;
  }
  return std::nullopt;
}

// Where the record after the one the stream stands at begins: the record is the first marker at
// or after `from`; its comment is stepped over, since comment bytes may hold FF FE themselves.
std::optional<uint64_t> record_after(std::FILE *file, uint64_t from, uint64_t end) {
  const std::optional<uint64_t> current = find_marker_forwards(file, from, end);
  if (!current) return std::nullopt;
  const uint64_t past = *current + kCommentMarkerBytes + ZEP_MJPEG_COMMENT_BYTES;
  if (past >= end) return std::nullopt;
  return find_marker_forwards(file, past, end);
}

// Moves the stream to `offset` (a record start or the end of the file) and counts `frames`
// records forwards (negative backwards) in the slot's bookkeeping.
uint32_t land(Slot &slot, uint64_t offset, int64_t frames) {
  seek_to(slot.record.file, offset);
  slot.after_read = false;
  if (slot.next_frame != 0) {
    const int64_t next = int64_t{slot.next_frame} + frames;
    slot.next_frame = next >= 1 ? static_cast<uint32_t>(next) : 0;
  }
  return ZEP_OK;
}

uint32_t outside(const char *function_name, std::FILE *file, uint64_t start) {
  std::clearerr(file);
  seek_to(file, start);
  return core::report(function_name, ZEP_ERR_BAD_PARAM, message::kOutsideFile);
}

// One step forwards from the record at `offset` by its stored length; nothing when the length is
// not known there (the first record, a zero length, or no record at `offset`).
std::optional<uint64_t> stored_step_forwards(std::FILE *file, uint64_t offset, bool &damaged,
                                             uint64_t end) {
  if (!later_record_at(file, offset)) return std::nullopt;
  const std::optional<uint32_t> length = u32_at(file, offset + kNextLengthField);
  if (!length || *length == 0) return std::nullopt;
  damaged = *length < ZEP_MJPEG_LATER_RECORD_EXTRA || offset + *length > end;
  return offset + *length;
}

}  // namespace

std::optional<uint64_t> find_marker_forwards(std::FILE *file, uint64_t from, uint64_t end) {
  std::array<uint8_t, kChunkBytes + 1> chunk;
  for (uint64_t start = from; start + 1 < end; start += kChunkBytes) {
    const std::size_t want =
        static_cast<std::size_t>(std::min<uint64_t>(kChunkBytes + 1, end - start));
    if (!seek_to(file, start)) return std::nullopt;
    const std::size_t got = std::fread(chunk.data(), 1, want, file);
    for (std::size_t i = 0; i + 1 < got; ++i) {
      if (chunk[i] == jpeg::marker::kPrefix && chunk[i + 1] == jpeg::marker::kCom) return start + i;
    }
    if (got < want) return std::nullopt;
  }
  return std::nullopt;
}

uint32_t scan_forwards(const char *function_name, Slot &slot, uint32_t count) {
  std::FILE *file = slot.record.file;
  const uint64_t start = position(file);
  uint64_t at = start;
  for (uint32_t step = 0; step < count; ++step) {
    const std::optional<uint64_t> next = record_after(file, at, slot.file_bytes);
    // Past the last record lies the end of the file.
    if (!next && step + 1 == count && find_marker_forwards(file, at, slot.file_bytes))
      return land(slot, slot.file_bytes, count);
    if (!next) return outside(function_name, file, start);
    at = *next;
  }
  return land(slot, at, count);
}

uint32_t scan_backwards(const char *function_name, Slot &slot, uint32_t count) {
  std::FILE *file = slot.record.file;
  const uint64_t start = position(file);
  uint64_t at = start;
  for (uint32_t step = 0; step < count; ++step) {
    const std::optional<uint64_t> previous = find_marker_backwards(file, at);
    if (!previous) return outside(function_name, file, start);
    at = *previous;
  }
  // The first record begins with SOI and APP0 before its comment.
  if (at == kFirstCommentSegmentOffset) at = 0;
  return land(slot, at, -int64_t{count});
}

uint32_t skip_forwards(const char *function_name, Slot &slot, uint32_t count) {
  std::FILE *file = slot.record.file;
  const uint64_t start = position(file);
  uint64_t at = start;
  for (uint32_t step = 0; step < count; ++step) {
    bool damaged = false;
    std::optional<uint64_t> next = stored_step_forwards(file, at, damaged, slot.file_bytes);
    if (damaged) {
      std::clearerr(file);
      seek_to(file, start);
      return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kRecordLength);
    }
    // A length not known here: this step by scanning.
    if (!next) next = record_after(file, at, slot.file_bytes);
    if (!next && step + 1 == count && find_marker_forwards(file, at, slot.file_bytes))
      next = slot.file_bytes;  // past the last record
    if (!next) return outside(function_name, file, start);
    at = *next;
  }
  return land(slot, at, count);
}

uint32_t skip_backwards(const char *function_name, Slot &slot, uint32_t count) {
  std::FILE *file = slot.record.file;
  const ZEP_MJPEG_RECORD &record = slot.record;
  // The stored lengths apply from the end of the record last read, a later one.
  if (!slot.after_read || record.frame_number < 2 || record.previous_frame_length == 0)
    return scan_backwards(function_name, slot, count);
  if (count == 0) return ZEP_OK;
  const uint64_t start = position(file);
  const uint64_t current_length = uint64_t{record.data_length} + ZEP_MJPEG_LATER_RECORD_EXTRA;
  if (current_length > start) return outside(function_name, file, start);
  uint64_t at = start - current_length;
  for (uint32_t step = 1; step < count; ++step) {
    if (at == 0) return outside(function_name, file, start);
    const std::optional<uint32_t> length = u32_at(file, at + kPreviousLengthField);
    const bool usable = length && *length != 0 && *length <= at &&
                        (*length == at || later_record_at(file, at - *length));
    if (!usable) {
      // Not known, or bytes between the records: the rest of the way by scanning.
      const uint32_t known = slot.next_frame;
      seek_to(file, at);
      slot.after_read = false;
      const uint32_t status = scan_backwards(function_name, slot, count - step);
      if (ZEP_IS_ERROR(status)) {
        seek_to(file, start);
        slot.after_read = true;
        return status;
      }
      slot.next_frame = known > count ? known - count : 0;
      return status;
    }
    at -= *length;
  }
  return land(slot, at, -int64_t{count});
}

}  // namespace vrc::files::mjpeg
