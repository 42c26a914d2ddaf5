// Layout of MRAW sequence files: a per-file header describing the image, then per frame a
// per-image header followed by the frame's strip bytes. Every header field is big-endian.
#pragma once

#include "vrcw32/zep_mraw.h"

#include <cstdint>
#include <cstdio>

namespace vrc::files::mraw {

// "MRAW " and the maker identification, 27 characters ending in a blank. Reader and writer
// compare and write exactly this text.
inline constexpr char kIdentification[] = "MRAW vrcw32 image sequence ";
static_assert(sizeof kIdentification - 1 == ZEP_MRAW_ID_BYTES);

// Per-file header, offsets from the start of the file.
namespace per_file {
inline constexpr uint32_t kLength = 27;        // 16-bit header length
inline constexpr uint32_t kType = 29;          // 16-bit
inline constexpr uint32_t kDataWidth = 31;     // 16-bit
inline constexpr uint32_t kWidth = 33;         // 32-bit
inline constexpr uint32_t kHeight = 37;        // 32-bit
inline constexpr uint32_t kDepth = 41;         // 32-bit, upper 16 bits written 0 and ignored
inline constexpr uint32_t kLineAlign = 45;     // 32-bit
inline constexpr uint32_t kSkipBytes = 49;     // 32-bit
inline constexpr uint32_t kFlags = 53;         // 32-bit
inline constexpr uint32_t kBytesPerLine = 57;  // 32-bit
inline constexpr uint32_t kFieldMode = 61;     // 16-bit, low half of field_mode
}  // namespace per_file

// Per-image header, offsets from the start of each frame record; the frame data follows it.
namespace per_image {
inline constexpr uint32_t kLength = 0;        // 16-bit header length
inline constexpr uint32_t kFrameNumber = 2;   // 32-bit, from 1
inline constexpr uint32_t kTimeStamp = 6;     // 32-bit, low half of the 64-bit seconds
inline constexpr uint32_t kFrameStride = 10;  // 32-bit, header length + frame bytes
inline constexpr uint32_t kUserValues = 14;   // 3 x 32-bit
inline constexpr uint32_t kUserBlock1 = 26;   // 128 bytes
inline constexpr uint32_t kUserBlock2 = 154;  // 128 bytes
inline constexpr uint32_t kFieldsEnd = 282;   // zeros from here to the header's end
}  // namespace per_image

// Flags of a stored image that describe the memory of the writing process, not the pixels; a
// reader never takes them over.
inline constexpr uint32_t kProcessFlags = ZEP_FLAG_LOCKED | ZEP_FLAG_JPEG;

// The fields of one per-image header as read.
struct FrameHeader {
  uint32_t length = 0;
  uint32_t frame_number = 0;
  uint32_t time_stamp = 0;
  uint32_t frame_stride = 0;
  uint32_t user_value[3] = {};
  uint8_t user_block1[ZEP_MRAW_USER_BLOCK_BYTES] = {};
  uint8_t user_block2[ZEP_MRAW_USER_BLOCK_BYTES] = {};
  uint8_t bytes[ZEP_MRAW_HEADER_BUFFER_BYTES] = {};
};

// Builds the 64-byte per-file header of `image` into record.header_per_file.
void ZEP_MRAW_HeaderPerFile_Generate(ZEP_MRAW_RECORD &record, const ZEP_IMAGE &image);

// Builds the 320-byte per-image header of the record's current frame into
// record.header_per_image.
void ZEP_MRAW_HeaderPerImage_Generate(ZEP_MRAW_RECORD &record);

// Reads the per-file header from the record's stream (at the start of the file) into the record
// and the image `image`, and checks the image. Failures are reported under `function_name`.
uint32_t ZEP_MRAW_HeaderPerFile_Read(const char *function_name, ZEP_MRAW_RECORD &record,
                                     uint32_t image);

// Reads one per-image header from the stream's position into `header`. Failures are reported
// under `function_name`.
uint32_t ZEP_MRAW_HeaderPerImage_Read(const char *function_name, std::FILE *file,
                                      FrameHeader &header);

}  // namespace vrc::files::mraw
