// The JPEG state block of a JPEG image and the conventions the codec and the file layer share.
//
// The state block is the image's JPEG record (ZEP_JPEG_RECORD, imaging/core/jpeg_record.h): the
// quality scale, the two quantisation tables in zigzag order with their reciprocals, the four
// Huffman table definitions with their encoding code tables, and the SOF0/SOS fields. The image
// itself carries the rest: its type is the sampling (ZEP_Y8, ZEP_YUV422, or ZEP_DATA16_C for
// 4:1:1 data that is only decoded) and its width and height are the picture's own size, which
// the codec pads up to whole MCUs.
//
// Field conventions, for writers and parsers of markers:
// - quant[t][k]: table t (0 luminance, 1 chrominance), entry k in zigzag order; quant_tables 2
//   and dqt_length 132 (the DQT segment length) after ZEP_JPEG_make_Q_tables.
// - huff_class_id[i], huff_counts[i], huff_values[i]: Huffman table definition i, its class/id
//   (class << 4 | id), the 16 code-length counts and the values; a class/id of 255 marks an unused
//   slot (the end of the list). The defaults fill the slots in the order 0x00, 0x01, 0x10, 0x11.
//   dht_length holds the table bytes only (416 for the defaults): the DHT segment's length field
//   is dht_length + 2.
// - sof_length and sos_length are the segments' length fields (8 + 3 n and 6 + 2 n for n
//   components); sampling_h/v and quant_table are per component (component 1 luminance).
// - The decoder takes component 1's tables from DC/AC id 0 and the other components' from id 1,
//   and each component's quantisation table from quant_table[c].
// - data and length: the entropy-coded bytes (byte-stuffed, no markers, no EOI); position points
//   at the start of the data.
#pragma once

#include "imaging/core/jpeg_record.h"
#include "imaging/core/report.h"
#include "vrcw32/zep.h"

#include <cstdint>

namespace vrc::jpeg {

inline constexpr uint16_t kDqtLength = 132;             // DQT segment length for two tables
inline constexpr uint16_t kDefaultDhtTableBytes = 416;  // the four default Huffman tables
inline constexpr uint8_t kUnusedHuffmanSlot = 255;
inline constexpr int kHuffmanSlots = 4;
inline constexpr uint16_t kDefaultQualityScale = 16;  // the base tables unchanged

// Huffman class/id bytes of the tables the encoder uses.
inline constexpr uint8_t kDcLuminance = 0x00;
inline constexpr uint8_t kDcChrominance = 0x01;
inline constexpr uint8_t kAcLuminance = 0x10;
inline constexpr uint8_t kAcChrominance = 0x11;

// The layout of one JPEG type: components, sampling of component 1 (the others are 1 x 1) and
// the MCU size in pixels.
struct Sampling {
  uint16_t type;  // ZEP_Y8, ZEP_YUV422 or ZEP_DATA16_C
  uint8_t components;
  uint8_t luma_h;
  uint8_t luma_v;
  uint32_t mcu_width;
  uint32_t mcu_height;
};

inline constexpr Sampling kGreySampling = {ZEP_Y8, 1, 1, 1, 8, 8};
inline constexpr Sampling kYuv422Sampling = {ZEP_YUV422, 3, 2, 1, 16, 8};
inline constexpr Sampling kYuv411Sampling = {ZEP_DATA16_C, 3, 2, 2, 16, 16};

// The sampling of a JPEG type, or null for a type the codec does not handle.
constexpr const Sampling *sampling_of(uint16_t type) {
  switch (type) {
    case ZEP_Y8: return &kGreySampling;
    case ZEP_YUV422: return &kYuv422Sampling;
    case ZEP_DATA16_C: return &kYuv411Sampling;
    default: return nullptr;
  }
}

// The slot of the Huffman table definition with `class_id` in `record`, or -1.
inline int huffman_slot(const ZEP_JPEG_RECORD &record, uint8_t class_id) {
  for (int slot = 0; slot < kHuffmanSlots; ++slot)
    if (record.huff_class_id[slot] == class_id) return slot;
  return -1;
}

// The image of `handle` and its state block; for an unknown handle reports 0x10040000 with an
// empty text, for an image without a state block "Not a JPEG image" (0x10040000), each under
// `function_name`, and returns a null record with the code in `status`.
struct JpegImage {
  ZEP_IMAGE *image = nullptr;
  ZEP_JPEG_RECORD *record = nullptr;
  uint32_t status = 0;
};
JpegImage jpeg_image_of(uint32_t handle, const char *function_name);

// Runs `body(record)` on the state block of `jpeg_image` inside the C boundary's guard, reporting
// under `function_name`.
template <typename Body>
uint32_t with_state(uint32_t jpeg_image, const char *function_name, Body body) {
  return core::api_guard(function_name, [&]() -> uint32_t {
    const JpegImage target = jpeg_image_of(jpeg_image, function_name);
    if (target.record == nullptr) return target.status;
    return body(*target.record);
  });
}

// Table set-up of a state block: both quantisation tables with their reciprocals from the
// quality scale; the four default Huffman tables; the encoding code tables of its Huffman tables.
void make_quantisation_tables(ZEP_JPEG_RECORD &record);
void set_default_huffman_tables(ZEP_JPEG_RECORD &record);
void make_huffman_code_tables(ZEP_JPEG_RECORD &record);

}  // namespace vrc::jpeg
