// The one marker parse behind ZEP_JPEG_file_read, ZEP_JPEG_file_open and ZEP_JPEG_buffer_read:
// SOI, then segments until the end of the input (after EOI) or, for a header-only read, the
// start of the entropy data. Baseline segments are taken into the JPEG record; every other coding
// process (progressive, arithmetic, 12-bit: SOF1 and above) is an unrecognised marker.
//
// Everything the file states is checked before it is used: segment lengths against the input,
// Huffman code counts against a prefix code, table ids against the record's tables, and the
// frame size against what the input could possibly decode to.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/jpeg/jpeg_markers.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "vrcw32/zep_jpeg_files.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace vrc::jpeg {
namespace {

// Decoded bytes per byte of entropy data at most: the shortest baseline block (DC category 0 and
// EOB, at least 4 bits) decodes to 64 samples, so even a 4:1:1 MCU of 32 bits gives 512 bytes
// of 4:2:2 pixels.
constexpr uint64_t kMaxExpansion = 128;
constexpr uint64_t kMaxImageBytes = 0xFFFFFFFF;  // strip sizes are 32-bit
constexpr uint8_t kSampleBits = 8;
constexpr int kMaxHuffmanValues = 256;
constexpr uint8_t kMaxTableId = 1;  // baseline: two quantisation tables, two of each Huffman class

// A failure found while parsing, reported once where the parse ends; a null message stands for
// a failure already reported by the function that found it.
struct ParseFailure {
  uint32_t code;
  const char *message;
};

[[noreturn]] void fail(uint32_t code, const char *message) { throw ParseFailure{code, message}; }

class SegmentReader {
 public:
  SegmentReader(MarkerInput &input, const char *truncated)
      : m_input(input), m_truncated(truncated) {}

  uint8_t u8() {
    const int value = m_input.next();
    if (value < 0) fail(ZEP_ERR_UNEXPECTED, m_truncated);
    return static_cast<uint8_t>(value);
  }
  uint16_t u16() {
    const uint16_t high = u8();
    return static_cast<uint16_t>(high << 8 | u8());
  }
  void bytes(std::span<uint8_t> target) {
    if (!m_input.read(target)) fail(ZEP_ERR_UNEXPECTED, m_truncated);
  }
  void skip(uint64_t count) {
    if (count > m_input.size() - std::min(m_input.position(), m_input.size()))
      fail(ZEP_ERR_UNEXPECTED, m_truncated);
    m_input.seek(m_input.position() + count);
  }
  // Skips what a segment of `length` holds beyond the `used` bytes read of it.
  void skip_rest(uint32_t length, uint32_t used) {
    if (length > used) skip(length - used);
  }
  MarkerInput &input() { return m_input; }

 private:
  MarkerInput &m_input;
  const char *m_truncated;
};

uint16_t type_of_colour_frame(const ZEP_JPEG_RECORD &record) {
  const bool chroma_1x1 = record.sampling_h[1] == 1 && record.sampling_v[1] == 1 &&
                          record.sampling_h[2] == 1 && record.sampling_v[2] == 1;
  if (chroma_1x1 && record.sampling_h[0] == 2 && record.sampling_v[0] == 1) return ZEP_YUV422;
  if (chroma_1x1 && record.sampling_h[0] == 2 && record.sampling_v[0] == 2) return ZEP_DATA16_C;
  if (chroma_1x1 && record.sampling_h[0] == 1 && record.sampling_v[0] == 1) return ZEP_RGB24;
  fail(ZEP_ERR_UNSUPPORTED, "Unknown colour image format");
}

// A frame no input of this size could decode to, or whose pixels overflow a strip, is refused
// before anything is sized from it.
void check_frame_size(uint64_t width, uint64_t height, uint64_t pixel_bytes, uint64_t input_bytes) {
  const uint64_t image_bytes = width * height * pixel_bytes;
  if (image_bytes > kMaxImageBytes ||
      image_bytes > kMaxExpansion * input_bytes + files::kMaxUnbackedBytes)
    fail(ZEP_ERR_UNEXPECTED, files::message::kDataPastEnd);
}

void read_frame(SegmentReader &in, uint32_t handle, ZEP_IMAGE &image, ZEP_JPEG_RECORD &record) {
  const uint16_t length = in.u16();
  const uint8_t precision = in.u8();
  const uint16_t height = in.u16();
  const uint16_t width = in.u16();
  const uint8_t components = in.u8();
  for (uint32_t c = 0; c < components; ++c) {
    const uint8_t id = in.u8();
    const uint8_t sampling = in.u8();
    const uint8_t table = in.u8();
    static_cast<void>(id);
    if (c >= sizeof record.sampling_h) continue;
    record.sampling_h[c] = sampling >> 4;
    record.sampling_v[c] = sampling & 0x0F;
    record.quant_table[c] = table;
  }
  in.skip_rest(length, 8 + 3u * components);
  const uint32_t depth = components * 8u;
  uint16_t type = 0;
  if (depth == 8) {
    type = ZEP_Y8;
  } else if (depth == 24) {
    type = type_of_colour_frame(record);
  } else {
    fail(ZEP_ERR_UNSUPPORTED, "Unsupported image depth");
  }
  if (precision != kSampleBits) fail(ZEP_ERR_UNSUPPORTED, "Unsupported sample precision");
  for (uint32_t c = 0; c < components; ++c)
    if (record.quant_table[c] > kMaxTableId)
      fail(ZEP_ERR_UNSUPPORTED, "Unsupported quantisation table");
  check_frame_size(width, height, depth == 8 ? 1 : (type == ZEP_RGB24 ? 3 : 2), in.input().size());
  record.sof_length = length;
  record.sof_precision = precision;
  record.sof_components = components;
  ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, type);
  image.width = width;
  image.height = height;
  image.lines_this_strip = height;
}

// True when the 16 code-length counts describe a prefix code (T.81 Annex C: no length has more
// codes than are left after the shorter ones) of at most 256 values.
bool possible_huffman_counts(const uint8_t (&counts)[16]) {
  uint32_t codes_left = 1;
  uint32_t total = 0;
  for (const uint8_t count : counts) {
    codes_left *= 2;
    if (count > codes_left) return false;
    codes_left -= count;
    total += count;
  }
  return total <= kMaxHuffmanValues;
}

uint16_t huffman_table_bytes(const ZEP_JPEG_RECORD &record) {
  uint32_t bytes = 0;
  for (int slot = 0; slot < kHuffmanSlots; ++slot) {
    if (record.huff_class_id[slot] == kUnusedHuffmanSlot) continue;
    bytes += 17 + std::accumulate(std::begin(record.huff_counts[slot]),
                                  std::end(record.huff_counts[slot]), 0u);
  }
  return static_cast<uint16_t>(bytes);
}

// The slot of a class/id byte: the order of the defaults (0x00, 0x01, 0x10, 0x11).
int canonical_slot(uint8_t class_id) { return (class_id >> 4) * 2 + (class_id & 0x0F); }

// Slots that hold no table of their own class and id (those of a record never given the default
// tables) are marked unused, so that only real tables are written, listed and decoded with.
void mark_unused_slots(ZEP_JPEG_RECORD &record) {
  for (int slot = 0; slot < kHuffmanSlots; ++slot) {
    const uint8_t class_id = record.huff_class_id[slot];
    const bool has_codes =
        std::any_of(std::begin(record.huff_counts[slot]), std::end(record.huff_counts[slot]),
                    [](uint8_t count) { return count != 0; });
    if (class_id == kUnusedHuffmanSlot || canonical_slot(class_id) != slot || !has_codes)
      record.huff_class_id[slot] = kUnusedHuffmanSlot;
  }
}

// Each table goes to the slot of its class and id, so that a file's table replaces the default it
// stands for.
void read_huffman(SegmentReader &in, ZEP_JPEG_RECORD &record) {
  const uint16_t length = in.u16();
  int64_t left = int64_t{length} - 2;
  while (left > 0) {
    const uint8_t class_id = in.u8();
    uint8_t counts[16];
    in.bytes(counts);
    if ((class_id >> 4) > 1 || (class_id & 0x0F) > kMaxTableId)
      fail(ZEP_ERR_UNSUPPORTED, "Unsupported Huffman table");
    if (!possible_huffman_counts(counts))
      fail(ZEP_ERR_UNEXPECTED, "Impossible Huffman code counts");
    const uint32_t values = std::accumulate(std::begin(counts), std::end(counts), 0u);
    left -= 17 + int64_t{values};
    if (left < 0) fail(ZEP_ERR_UNEXPECTED, "Impossible Huffman code counts");
    const int slot = canonical_slot(class_id);
    in.bytes(std::span<uint8_t>(record.huff_values[slot], values));
    record.huff_class_id[slot] = class_id;
    std::memcpy(record.huff_counts[slot], counts, sizeof counts);
  }
  mark_unused_slots(record);
  record.dht_length = huffman_table_bytes(record);
}

void read_quantisation(SegmentReader &in, ZEP_JPEG_RECORD &record) {
  constexpr uint32_t kTableBytes = 1 + 64;
  const uint16_t length = in.u16();
  const uint32_t tables = length / kTableBytes;
  for (uint32_t t = 0; t < tables; ++t) {
    const uint8_t precision_id = in.u8();
    if ((precision_id >> 4) != 0)
      fail(ZEP_ERR_UNSUPPORTED, "16 bit integer precision not supported");
    const uint8_t id = precision_id & 0x0F;
    if (id > kMaxTableId) fail(ZEP_ERR_UNSUPPORTED, "Unsupported quantisation table");
    in.bytes(record.quant[id]);
    ++record.quant_tables;
  }
  in.skip_rest(length, 2 + tables * kTableBytes);
  record.dqt_length = static_cast<uint16_t>(record.dqt_length + length);
}

void skip_segment(SegmentReader &in) {
  const uint16_t length = in.u16();
  in.skip_rest(length, 2);
}

void read_scan_header(SegmentReader &in, ZEP_JPEG_RECORD &record) {
  const uint16_t length = in.u16();
  const uint8_t components = in.u8();
  for (uint32_t c = 0; c < components; ++c) in.u16();  // component id, table selectors
  record.spectral_start = in.u8();
  record.spectral_end = in.u8();
  record.approximation = in.u8();
  in.skip_rest(length, 6 + 2u * components);
  record.sos_length = length;
  record.sos_components = components;
}

// Bytes of entropy data at the start of `bytes`: up to the first marker that is not a restart
// marker, or all of them.
std::size_t entropy_data_length(std::span<const uint8_t> bytes) {
  for (std::size_t i = 0; i + 1 < bytes.size(); ++i)
    if (bytes[i] == marker::kPrefix && ends_entropy_data(bytes[i + 1])) return i;
  return bytes.size();
}

// Takes the entropy data after SOS into the record and leaves the input at the marker after it.
void read_entropy_data(SegmentReader &in, uint32_t handle, ZEP_JPEG_RECORD &record) {
  MarkerInput &input = in.input();
  std::vector<uint8_t> rest(input.size() - std::min(input.position(), input.size()));
  in.bytes(rest);
  const std::size_t length = entropy_data_length(rest);
  const uint32_t status = ZEP_JPEG_malloc_N_bytes_data(handle, static_cast<uint32_t>(length));
  if (status != 0) fail(status, nullptr);
  if (length > 0) std::memcpy(record.data, rest.data(), length);
  input.seek(record.data_offset + length);
}

// Reads segments until the input ends, or for a header-only parse until the entropy data.
void parse_segments(SegmentReader &in, uint32_t handle, ZEP_IMAGE &image, ZEP_JPEG_RECORD &record,
                    ParseMode mode) {
  MarkerInput &input = in.input();
  for (;;) {
    const int prefix = input.next();
    if (prefix < 0) return;
    if (prefix != marker::kPrefix)
      fail(ZEP_ERR_UNEXPECTED | static_cast<uint32_t>(prefix), "Expecting 0xFF marker code");
    const uint8_t code = in.u8();
    switch (code) {
      case marker::kSof0: read_frame(in, handle, image, record); break;
      case marker::kDht: read_huffman(in, record); break;
      case marker::kDqt: read_quantisation(in, record); break;
      case marker::kDri: fail(ZEP_ERR_UNSUPPORTED, "Define Restart Interval not supported");
      case marker::kApp0:
      case marker::kCom: skip_segment(in); break;
      case marker::kEoi: input.stop(); break;
      case marker::kSos:
        read_scan_header(in, record);
        ZEP_JPEG_free_data(handle);
        record.data_offset = static_cast<uint32_t>(input.position());
        if (mode == ParseMode::HeaderOnly) return;
        read_entropy_data(in, handle, record);
        break;
      default: fail(ZEP_ERR_UNEXPECTED | code, "Unrecognised marker detected");
    }
  }
}

}  // namespace

uint32_t parse_markers(const char *function_name, uint32_t handle, MarkerInput &input,
                       ParseMode mode, const char *truncated) {
  ZEP_IMAGE &image = *core::image_record(handle);
  ZEP_JPEG_RECORD &record = *image.jpeg;
  try {
    SegmentReader in(input, truncated);
    if (input.next() != marker::kPrefix) fail(ZEP_ERR_UNEXPECTED, "Expecting PREFIX marker");
    if (input.next() != marker::kSoi) fail(ZEP_ERR_UNEXPECTED, "Expecting SOI marker");
    record.quant_tables = 0;
    record.dqt_length = 0;
    parse_segments(in, handle, image, record, mode);
  } catch (const ParseFailure &failure) {
    if (failure.message == nullptr) return failure.code;
    return core::report(function_name, failure.code, failure.message);
  }
  image.flags |= ZEP_FLAG_JPEG;
  return 0;
}

}  // namespace vrc::jpeg
