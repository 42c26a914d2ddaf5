// Building and reading the two MRAW headers. Readers never trust a stored length: a per-file
// header must hold every field and fit its buffer, a per-image header likewise.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/mraw/mraw_layout.h"
#include "imaging/files/mraw/mraw_slots.h"
#include "vrcw32/zep_convert.h"

#include <algorithm>
#include <cstring>

namespace vrc::files::mraw {
namespace {

// Reads exactly `count` bytes; false at the end of the file or on an error.
bool read_exactly(std::FILE *file, uint8_t *target, std::size_t count) {
  return std::fread(target, 1, count, file) == count;
}

}  // namespace

void ZEP_MRAW_HeaderPerFile_Generate(ZEP_MRAW_RECORD &record, const ZEP_IMAGE &image) {
  uint8_t *header = record.header_per_file;
  std::memset(header, 0, ZEP_MRAW_HEADER_BUFFER_BYTES);
  std::memcpy(header, kIdentification, ZEP_MRAW_ID_BYTES);
  ZEP_mput_ui16m(header + per_file::kLength, ZEP_MRAW_PER_FILE_HEADER_BYTES);
  ZEP_mput_ui16m(header + per_file::kType, image.type);
  ZEP_mput_ui16m(header + per_file::kDataWidth, image.data_width);
  ZEP_mput_ui32m(header + per_file::kWidth, image.width);
  ZEP_mput_ui32m(header + per_file::kHeight, image.height);
  ZEP_mput_ui32m(header + per_file::kDepth, image.depth & 0xFFFF);
  ZEP_mput_ui32m(header + per_file::kLineAlign, image.line_align);
  ZEP_mput_ui32m(header + per_file::kSkipBytes, image.skip_bytes);
  ZEP_mput_ui32m(header + per_file::kFlags, image.flags);
  ZEP_mput_ui32m(header + per_file::kBytesPerLine, image.bytes_per_line);
  ZEP_mput_ui16m(header + per_file::kFieldMode, static_cast<uint16_t>(image.field_mode));
  record.header_per_file_length = ZEP_MRAW_PER_FILE_HEADER_BYTES;
}

void ZEP_MRAW_HeaderPerImage_Generate(ZEP_MRAW_RECORD &record) {
  uint8_t *header = record.header_per_image;
  std::memset(header, 0, ZEP_MRAW_HEADER_BUFFER_BYTES);
  ZEP_mput_ui16m(header + per_image::kLength, ZEP_MRAW_PER_IMAGE_HEADER_BYTES);
  ZEP_mput_ui32m(header + per_image::kFrameNumber, record.frame_number);
  ZEP_mput_ui32m(header + per_image::kTimeStamp, static_cast<uint32_t>(record.time_stamp));
  ZEP_mput_ui32m(header + per_image::kFrameStride, record.frame_stride);
  for (uint32_t i = 0; i < 3; ++i)
    ZEP_mput_ui32m(header + per_image::kUserValues + 4 * i, record.user_value[i]);
  std::memcpy(header + per_image::kUserBlock1, record.user_block1, ZEP_MRAW_USER_BLOCK_BYTES);
  std::memcpy(header + per_image::kUserBlock2, record.user_block2, ZEP_MRAW_USER_BLOCK_BYTES);
  record.header_per_image_length = ZEP_MRAW_PER_IMAGE_HEADER_BYTES;
}

uint32_t ZEP_MRAW_HeaderPerFile_Read(const char *function_name, ZEP_MRAW_RECORD &record,
                                     uint32_t image) {
  uint8_t *header = record.header_per_file;
  std::memset(header, 0, ZEP_MRAW_HEADER_BUFFER_BYTES);
  if (!read_exactly(record.file, header, ZEP_MRAW_ID_BYTES) ||
      std::memcmp(header, kIdentification, ZEP_MRAW_ID_BYTES) != 0) {
    return core::report(function_name, ZEP_ERR_OPEN, message::kNotMraw);
  }
  if (!read_exactly(record.file, header + per_file::kLength, 2))
    return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kPerFileTruncated);
  const uint32_t length = ZEP_mget_ui16m(header + per_file::kLength);
  if (length < ZEP_MRAW_PER_FILE_HEADER_BYTES || length > ZEP_MRAW_HEADER_BUFFER_BYTES)
    return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kPerFileLength);
  if (!read_exactly(record.file, header + per_file::kType, length - per_file::kType))
    return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kPerFileTruncated);
  record.header_per_file_length = length;

  ZEP_IMAGE *target = core::image_record(image);
  if (target == nullptr)
    return core::report(function_name, ZEP_ERR_CORRUPT, message::kInvalidImage);
  target->type = ZEP_mget_ui16m(header + per_file::kType);
  target->data_width = ZEP_mget_ui16m(header + per_file::kDataWidth);
  target->width = ZEP_mget_ui32m(header + per_file::kWidth);
  target->height = ZEP_mget_ui32m(header + per_file::kHeight);
  target->depth = ZEP_mget_ui32m(header + per_file::kDepth) & 0xFFFF;
  target->line_align = ZEP_mget_ui32m(header + per_file::kLineAlign);
  target->skip_bytes = ZEP_mget_ui32m(header + per_file::kSkipBytes);
  target->flags = ZEP_mget_ui32m(header + per_file::kFlags) & ~kProcessFlags;
  target->bytes_per_line = ZEP_mget_ui32m(header + per_file::kBytesPerLine);
  target->field_mode = ZEP_mget_ui16m(header + per_file::kFieldMode);
  target->lines_this_strip = target->height;
  // The colour map itself is not stored; a paletted image gets the full map size, as setting
  // its type would give it.
  if (target->type == ZEP_PALETTED && target->cmap_colours == 0) target->cmap_colours = 256;

  const uint32_t status = ZEP_image_check(image);
  if (ZEP_IS_ERROR(status)) return core::report(function_name, status, message::kInvalidImage);
  record.width = target->width;
  record.height = target->height;
  record.is_colour = ZEP_image_is_colour(image);
  return ZEP_OK;
}

uint32_t ZEP_MRAW_HeaderPerImage_Read(const char *function_name, std::FILE *file,
                                      FrameHeader &header) {
  uint8_t *bytes = header.bytes;
  if (!read_exactly(file, bytes, 2))
    return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kPerImageTruncated);
  header.length = ZEP_mget_ui16m(bytes + per_image::kLength);
  if (header.length < per_image::kFieldsEnd || header.length > ZEP_MRAW_HEADER_BUFFER_BYTES)
    return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kPerImageLength);
  if (!read_exactly(file, bytes + 2, header.length - 2))
    return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kPerImageTruncated);
  header.frame_number = ZEP_mget_ui32m(bytes + per_image::kFrameNumber);
  header.time_stamp = ZEP_mget_ui32m(bytes + per_image::kTimeStamp);
  header.frame_stride = ZEP_mget_ui32m(bytes + per_image::kFrameStride);
  for (uint32_t i = 0; i < 3; ++i)
    header.user_value[i] = ZEP_mget_ui32m(bytes + per_image::kUserValues + 4 * i);
  std::copy_n(bytes + per_image::kUserBlock1, ZEP_MRAW_USER_BLOCK_BYTES, header.user_block1);
  std::copy_n(bytes + per_image::kUserBlock2, ZEP_MRAW_USER_BLOCK_BYTES, header.user_block2);
  return ZEP_OK;
}

}  // namespace vrc::files::mraw
