// Layout of MJPEG sequence files and the builders of their records. Every frame carries a comment
// segment FF FE 01 2A with the 296-byte comment; the first record is a JFIF header without
// Huffman tables, each later record is the comment, a bare SOS marker, the data and EOI.
#pragma once

#include "vrcw32/zep_mjpeg.h"

#include <cstdint>
#include <span>

namespace vrc::files::mjpeg {

// Comment fields, offsets from the comment's first byte; all big-endian 32-bit.
namespace comment {
inline constexpr uint32_t kFrameNumber = 0;
inline constexpr uint32_t kDataLength = 4;
inline constexpr uint32_t kTimeStamp = 8;  // low 32 bits of the seconds since 1970
inline constexpr uint32_t kUserValue = 12;
inline constexpr uint32_t kNextFrameLength = 16;  // this record's length
inline constexpr uint32_t kFurther1 = 20;
inline constexpr uint32_t kFurther2 = 24;
inline constexpr uint32_t kPreviousFrameLength = 28;
inline constexpr uint32_t kFurther3 = 32;
inline constexpr uint32_t kFurther4 = 36;
inline constexpr uint32_t kUserText1 = 40;
inline constexpr uint32_t kUserText2 = 168;
}  // namespace comment

inline constexpr uint16_t kCommentSegmentLength = ZEP_MJPEG_COMMENT_BYTES + 2;  // 298
inline constexpr uint32_t kCommentMarkerBytes = 4;  // FF FE and the 16-bit length
// Offsets in a later record.
inline constexpr uint32_t kLaterCommentOffset = kCommentMarkerBytes;
inline constexpr uint32_t kLaterDataOffset = kLaterCommentOffset + ZEP_MJPEG_COMMENT_BYTES + 2;
// Offset of the first record's comment segment (after SOI and the 18-byte APP0).
inline constexpr uint32_t kFirstCommentSegmentOffset = 20;
// A record's data length + this must fit its buffer.
inline constexpr uint32_t kBufferReserve = 1024;
// Bytes added to a frame's size for the buffers.
inline constexpr uint32_t kBufferMargin = 10000;

// The size of a record buffer for frames of `image`: its strip's bytes (from its width and depth
// where a JPEG image keeps no line length) and the margin.
uint64_t buffer_size_for(const ZEP_IMAGE &image);

// Writes the record's comment fields into record.comment.
void ZEP_MJPEG_CommentStringGenerate(ZEP_MJPEG_RECORD &record);
// Takes the comment fields of `bytes` into the record (and the bytes into record.comment).
void ZEP_MJPEG_CommentStringParse(ZEP_MJPEG_RECORD &record,
                                  std::span<const uint8_t, ZEP_MJPEG_COMMENT_BYTES> bytes);

// Builds the record of the frame whose comment is in `record` into `out` (at most out.size()
// bytes): the full first record for frame 1 of `jpeg_image`, else the abbreviated one. Returns
// the record's length, or an error status reported under `function_name`.
uint32_t build_record(const char *function_name, const ZEP_MJPEG_RECORD &record,
                      uint32_t jpeg_image, std::span<uint8_t> out, uint32_t &length);

// Patches the stored record lengths once the record in buffer `current` follows the one in the
// other buffer: that record's next-frame field (from frame 3 on) and this one's previous-frame
// field both get `previous_length`.
void ZEP_MJPEG_IndexesAdd(ZEP_MJPEG_RECORD &record, uint32_t previous_length);

}  // namespace vrc::files::mjpeg
