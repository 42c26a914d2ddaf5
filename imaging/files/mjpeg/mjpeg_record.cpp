// The bytes of MJPEG records: the 296-byte comment written from and parsed into the handle
// record, the full first record and the abbreviated later ones, the length patches that link
// neighbouring records, and the debug dump of a record.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_markers.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/mjpeg/mjpeg_layout.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace vrc::files::mjpeg {
namespace {

struct CommentField {
  uint32_t offset;
  uint32_t ZEP_MJPEG_RECORD::*value;
};

// The 32-bit fields in comment order; the time stamp is stored apart (its low half only).
constexpr CommentField kFields[] = {
    {comment::kFrameNumber, &ZEP_MJPEG_RECORD::frame_number},
    {comment::kDataLength, &ZEP_MJPEG_RECORD::data_length},
    {comment::kUserValue, &ZEP_MJPEG_RECORD::user_value},
    {comment::kNextFrameLength, &ZEP_MJPEG_RECORD::next_frame_length},
    {comment::kPreviousFrameLength, &ZEP_MJPEG_RECORD::previous_frame_length},
    {comment::kFurther4, &ZEP_MJPEG_RECORD::further_value_last},
};
constexpr uint32_t kFurtherOffsets[3] = {comment::kFurther1, comment::kFurther2,
                                         comment::kFurther3};

// Where the comment fields of the record in `buffer` start: after SOI, APP0 and the marker in a
// first record, after the marker in a later one.
uint32_t comment_offset(uint32_t frame_number) {
  return (frame_number == 1 ? kFirstCommentSegmentOffset : 0) + kCommentMarkerBytes;
}

std::vector<uint8_t> first_record_header(const char *function_name, const ZEP_MJPEG_RECORD &record,
                                         const jpeg::JpegImage &frame, uint32_t &status) {
  std::vector<uint8_t> bytes;
  jpeg::HeaderParts parts;
  parts.comment = record.comment;
  parts.huffman_tables = false;  // readers use the default tables
  status = jpeg::header_bytes(function_name, *frame.image, *frame.record, bytes, parts);
  return bytes;
}

std::vector<uint8_t> later_record_header(const ZEP_MJPEG_RECORD &record) {
  std::vector<uint8_t> bytes;
  jpeg::comment_segment(record.comment, bytes);
  bytes.push_back(jpeg::marker::kPrefix);
  bytes.push_back(jpeg::marker::kSos);
  return bytes;
}

}  // namespace

uint64_t buffer_size_for(const ZEP_IMAGE &image) {
  const uint64_t line_bytes = image.bytes_per_line != 0
                                  ? image.bytes_per_line
                                  : (uint64_t{image.width} * image.depth + 7) / 8;
  return line_bytes * image.lines_this_strip + kBufferMargin;
}

void ZEP_MJPEG_CommentStringGenerate(ZEP_MJPEG_RECORD &record) {
  uint8_t *out = record.comment;
  std::memset(out, 0, ZEP_MJPEG_COMMENT_BYTES);
  for (const CommentField &field : kFields) ZEP_mput_ui32m(out + field.offset, record.*field.value);
  ZEP_mput_ui32m(out + comment::kTimeStamp, static_cast<uint32_t>(record.time_stamp));
  for (int i = 0; i < 3; ++i) ZEP_mput_ui32m(out + kFurtherOffsets[i], record.further_values[i]);
  std::memcpy(out + comment::kUserText1, record.user_text1, ZEP_MJPEG_USER_TEXT_BYTES);
  std::memcpy(out + comment::kUserText2, record.user_text2, ZEP_MJPEG_USER_TEXT_BYTES);
}

void ZEP_MJPEG_CommentStringParse(ZEP_MJPEG_RECORD &record,
                                  std::span<const uint8_t, ZEP_MJPEG_COMMENT_BYTES> bytes) {
  const uint8_t *in = bytes.data();
  std::copy(bytes.begin(), bytes.end(), record.comment);
  for (const CommentField &field : kFields) record.*field.value = ZEP_mget_ui32m(in + field.offset);
  record.time_stamp = ZEP_mget_ui32m(in + comment::kTimeStamp);
  for (int i = 0; i < 3; ++i) record.further_values[i] = ZEP_mget_ui32m(in + kFurtherOffsets[i]);
  std::memcpy(record.user_text1, in + comment::kUserText1, ZEP_MJPEG_USER_TEXT_BYTES);
  std::memcpy(record.user_text2, in + comment::kUserText2, ZEP_MJPEG_USER_TEXT_BYTES);
}

uint32_t build_record(const char *function_name, const ZEP_MJPEG_RECORD &record,
                      uint32_t jpeg_image, std::span<uint8_t> out, uint32_t &length) {
  const jpeg::JpegImage frame = jpeg::jpeg_image_of(jpeg_image, function_name);
  if (frame.record == nullptr) return frame.status;
  uint32_t status = ZEP_OK;
  const std::vector<uint8_t> header =
      record.frame_number == 1 ? first_record_header(function_name, record, frame, status)
                               : later_record_header(record);
  if (ZEP_IS_ERROR(status)) return status;
  const uint64_t total = header.size() + uint64_t{record.data_length} + 2;
  if (total > out.size())
    return core::report(function_name, ZEP_ERR_INTERNAL | (record.data_length & 0xFFFF),
                        "Internal: ZEP_MJPEG_DATA_BUFFER_SIZE not large enough.");
  uint8_t *at = std::copy(header.begin(), header.end(), out.data());
  if (record.data_length != 0) at = std::copy_n(frame.record->data, record.data_length, at);
  *at++ = jpeg::marker::kPrefix;
  *at = jpeg::marker::kEoi;
  length = static_cast<uint32_t>(total);
  return ZEP_OK;
}

void ZEP_MJPEG_IndexesAdd(ZEP_MJPEG_RECORD &record, uint32_t previous_length) {
  const uint32_t current = record.buffer_index;
  const uint32_t previous = current ^ 1u;
  if (record.frame_number >= 3) {
    ZEP_mput_ui32m(record.buffers[previous] + comment_offset(record.frame_number - 1) +
                       comment::kNextFrameLength,
                   previous_length);
  }
  ZEP_mput_ui32m(
      record.buffers[current] + comment_offset(record.frame_number) + comment::kPreviousFrameLength,
      previous_length);
}

}  // namespace vrc::files::mjpeg

extern "C" uint32_t ZEP_MJPEG_DEBUG_DumpData(const ZEP_MJPEG_RECORD *record, const char *path) {
  constexpr char kName[] = "ZEP_MJPEG_DEBUG_DumpData";
  return vrc::core::api_guard(kName, [&]() -> uint32_t {
    if (record == nullptr || path == nullptr)
      return vrc::core::report(kName, ZEP_ERR_BAD_PARAM, "Null argument");
    if ((record->mode & ZEP_MJPEG_MODE_DEBUG) == 0) return ZEP_OK;
    const uint32_t index = record->buffer_index & 1u;
    const uint8_t *bytes = record->buffers[index];
    const uint32_t count = bytes == nullptr ? 0 : record->buffer_bytes[index];
    std::FILE *file = std::fopen(path, "a");
    if (file == nullptr) return vrc::core::report(kName, ZEP_ERR_OPEN, "Failed to create file");
    std::fprintf(file, "Frame %d JPEG Data\n", static_cast<int>(record->frame_number));
    std::fprintf(file, "Num bytes JPEG data = %d\n", static_cast<int>(count));
    std::fprintf(file, "------------------\n");
    for (uint32_t i = 0; i < count; ++i) std::fprintf(file, "%02x", bytes[i]);
    std::fputc('\n', file);
    return std::fclose(file) == 0 ? ZEP_OK
                                  : vrc::core::report(kName, ZEP_ERR_CLOSE, "Failed to close file");
  });
}
