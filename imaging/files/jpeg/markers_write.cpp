// The JFIF layout of a written JPEG file: SOI, APP0, a comment with the image's 32-byte
// information block and the generator text, both quantisation tables, SOF0, the Huffman tables,
// SOS, the entropy data and EOI. Lengths are big-endian (T.81 Annex B).
#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_markers.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "vrcw32/zep_jpeg_files.h"

#include <algorithm>
#include <numeric>

namespace vrc::jpeg {
namespace {

constexpr uint8_t kSampleBits = 8;
constexpr uint8_t kLuminanceSelectors = 0x00;    // DC table 0, AC table 0
constexpr uint8_t kChrominanceSelectors = 0x11;  // DC table 1, AC table 1
constexpr uint32_t kMaxDimension = 0xFFFF;       // SOF0 holds 16-bit sizes

class ByteWriter {
 public:
  explicit ByteWriter(std::vector<uint8_t> &bytes) : m_bytes(bytes) {}
  void u8(uint8_t value) { m_bytes.push_back(value); }
  void u16(uint32_t value) {
    u8(static_cast<uint8_t>(value >> 8));
    u8(static_cast<uint8_t>(value));
  }
  void bytes(const void *data, std::size_t count) {
    const auto *start = static_cast<const uint8_t *>(data);
    m_bytes.insert(m_bytes.end(), start, start + count);
  }
  void marker(uint8_t code) {
    u8(marker::kPrefix);
    u8(code);
  }

 private:
  std::vector<uint8_t> &m_bytes;
};

void write_app0(ByteWriter &out) {
  constexpr uint8_t kJfif[] = {'J', 'F', 'I', 'F', 0, 1, 1,
                               0,   0,   0,   0,   0, 0, 0};  // v1.1, no density, no thumbnail
  out.marker(marker::kApp0);
  out.u16(2 + sizeof kJfif);
  out.bytes(kJfif, sizeof kJfif);
}

void write_comment(ByteWriter &out, const ZEP_JPEG_RECORD &record) {
  constexpr std::size_t kTextBytes = sizeof ZEP_JPEG_GENERATOR_TEXT - 1;
  out.marker(marker::kCom);
  out.u16(2 + sizeof record.info_block + kTextBytes);
  out.bytes(record.info_block, sizeof record.info_block);
  out.bytes(ZEP_JPEG_GENERATOR_TEXT, kTextBytes);
}

void write_comment(ByteWriter &out, std::span<const uint8_t> payload) {
  out.marker(marker::kCom);
  out.u16(static_cast<uint32_t>(2 + payload.size()));
  out.bytes(payload.data(), payload.size());
}

void write_quantisation(ByteWriter &out, const ZEP_JPEG_RECORD &record) {
  out.marker(marker::kDqt);
  out.u16(kDqtLength);
  for (uint8_t table = 0; table < 2; ++table) {
    out.u8(table);  // 8-bit precision, table id
    out.bytes(record.quant[table], sizeof record.quant[table]);
  }
}

void write_frame(ByteWriter &out, const ZEP_IMAGE &image, const ZEP_JPEG_RECORD &record) {
  constexpr uint8_t kMaxComponents = sizeof record.sampling_h;
  const uint8_t components = std::min(record.sof_components, kMaxComponents);
  out.marker(marker::kSof0);
  out.u16(8 + 3u * components);
  out.u8(kSampleBits);
  out.u16(image.height);
  out.u16(image.width);
  out.u8(components);
  for (uint8_t c = 0; c < components; ++c) {
    out.u8(c + 1);
    out.u8(static_cast<uint8_t>(record.sampling_h[c] << 4 | record.sampling_v[c]));
    out.u8(record.quant_table[c]);
  }
}

uint32_t huffman_value_count(const uint8_t (&counts)[16]) {
  return std::accumulate(std::begin(counts), std::end(counts), 0u);
}

void write_huffman(ByteWriter &out, const ZEP_JPEG_RECORD &record) {
  std::vector<uint8_t> tables;
  ByteWriter table_out(tables);
  for (int slot = 0; slot < kHuffmanSlots; ++slot) {
    if (record.huff_class_id[slot] == kUnusedHuffmanSlot) continue;
    table_out.u8(record.huff_class_id[slot]);
    table_out.bytes(record.huff_counts[slot], sizeof record.huff_counts[slot]);
    table_out.bytes(record.huff_values[slot], huffman_value_count(record.huff_counts[slot]));
  }
  out.marker(marker::kDht);
  out.u16(static_cast<uint32_t>(tables.size()) + 2);
  out.bytes(tables.data(), tables.size());
}

void write_scan(ByteWriter &out, const ZEP_JPEG_RECORD &record) {
  const uint8_t components = record.sos_components;
  out.marker(marker::kSos);
  out.u16(6 + 2u * components);
  out.u8(components);
  for (uint8_t c = 0; c < components; ++c) {
    out.u8(c + 1);
    out.u8(c == 0 ? kLuminanceSelectors : kChrominanceSelectors);
  }
  out.u8(record.spectral_start);
  out.u8(record.spectral_end);
  out.u8(record.approximation);
}

}  // namespace

uint32_t header_bytes(const char *function_name, const ZEP_IMAGE &image,
                      const ZEP_JPEG_RECORD &record, std::vector<uint8_t> &bytes,
                      const HeaderParts &parts) {
  if (image.width > kMaxDimension || image.height > kMaxDimension)
    return core::report(function_name, ZEP_ERR_BAD_PARAM, "Image too large for a JPEG file");
  ByteWriter out(bytes);
  out.marker(marker::kSoi);
  write_app0(out);
  if (parts.comment.empty())
    write_comment(out, record);
  else
    write_comment(out, parts.comment);
  write_quantisation(out, record);
  write_frame(out, image, record);
  if (parts.huffman_tables) write_huffman(out, record);
  write_scan(out, record);
  return 0;
}

void comment_segment(std::span<const uint8_t> payload, std::vector<uint8_t> &bytes) {
  ByteWriter out(bytes);
  write_comment(out, payload);
}

uint32_t file_bytes(const char *function_name, const ZEP_IMAGE &image,
                    const ZEP_JPEG_RECORD &record, std::vector<uint8_t> &bytes) {
  const uint32_t status = header_bytes(function_name, image, record, bytes);
  if (status != 0) return status;
  if (record.data != nullptr) bytes.insert(bytes.end(), record.data, record.data + record.length);
  bytes.push_back(marker::kPrefix);
  bytes.push_back(marker::kEoi);
  return 0;
}

}  // namespace vrc::jpeg
