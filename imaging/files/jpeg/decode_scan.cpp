// The scan loop of the decoder: one band of MCUs at a time is decoded into Y, U and V rows (grey
// data straight into the picture), then the band's lines are interleaved into YUV 4:2:2 and, for
// the RGB outputs, converted by the same row kernels as ZEP_YUV422_to_RGB24 and its siblings.
#include "imaging/files/jpeg/decode_scan.h"

#include "imaging/convert/yuv422_rows.h"
#include "imaging/core/report.h"
#include "imaging/files/jpeg/huffman_decode.h"
#include "imaging/files/jpeg/inverse_dct.h"
#include "imaging/files/jpeg/standard_tables.h"

#include <emmintrin.h>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vrc::jpeg {
namespace {

// `pairs` Y0 U Y1 V pairs from Y, U and V rows.
void interleave_pairs(const uint8_t *y, const uint8_t *u, const uint8_t *v, uint8_t *out,
                      uint32_t pairs) {
  uint32_t i = 0;
  for (; i + 16 <= pairs; i += 16) {
    const __m128i us = _mm_loadu_si128(reinterpret_cast<const __m128i *>(u + i));
    const __m128i vs = _mm_loadu_si128(reinterpret_cast<const __m128i *>(v + i));
    const __m128i y0 = _mm_loadu_si128(reinterpret_cast<const __m128i *>(y + 2 * i));
    const __m128i y1 = _mm_loadu_si128(reinterpret_cast<const __m128i *>(y + 2 * i + 16));
    const __m128i uv0 = _mm_unpacklo_epi8(us, vs), uv1 = _mm_unpackhi_epi8(us, vs);
    auto *to = reinterpret_cast<__m128i *>(out + 4 * i);
    _mm_storeu_si128(to, _mm_unpacklo_epi8(y0, uv0));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi8(y0, uv0));
    _mm_storeu_si128(to + 2, _mm_unpacklo_epi8(y1, uv1));
    _mm_storeu_si128(to + 3, _mm_unpackhi_epi8(y1, uv1));
  }
  for (; i < pairs; ++i) {
    out[4 * i] = y[2 * i];
    out[4 * i + 1] = u[i];
    out[4 * i + 2] = y[2 * i + 1];
    out[4 * i + 3] = v[i];
  }
}

// Decoder error codes (format error class).
constexpr uint32_t kEoiCode = ZEP_ERR_UNEXPECTED | 1;
constexpr uint32_t kNoDataCode = ZEP_ERR_UNEXPECTED | 2;
constexpr uint32_t kDcCode = ZEP_ERR_UNEXPECTED | 3;
constexpr uint32_t kAcCode = ZEP_ERR_UNEXPECTED | 4;
constexpr uint32_t kTooManyCode = ZEP_ERR_UNEXPECTED | 5;

// The Huffman decoding tables of one scan: the shared tables where the record holds the default
// ones, tables built for this scan otherwise.
class ScanTables {
 public:
  explicit ScanTables(const ZEP_JPEG_RECORD &record) {
    constexpr uint8_t kIds[4] = {kDcLuminance, kDcChrominance, kAcLuminance, kAcChrominance};
    for (int i = 0; i < 4; ++i) m_tables[i] = &table_for(record, kIds[i], i);
  }
  const DecodeTable *dc(int component) const { return m_tables[component == 0 ? 0 : 1]; }
  const DecodeTable *ac(int component) const { return m_tables[component == 0 ? 2 : 3]; }

 private:
  const DecodeTable &table_for(const ZEP_JPEG_RECORD &record, uint8_t class_id, int index) {
    const int slot = huffman_slot(record, class_id);
    uint8_t counts[16] = {};
    uint8_t values[256] = {};
    if (slot >= 0) {
      std::memcpy(counts, record.huff_counts[slot], 16);
      std::memcpy(values, record.huff_values[slot], 256);
    }
    const HuffmanTable &standard = *kDefaultHuffman[index];
    if (std::memcmp(counts, standard.counts.data(), 16) == 0 &&
        std::memcmp(values, standard.values.data(), standard.value_count) == 0)
      return default_decode_table(index);
    m_built[index] = std::make_unique<DecodeTable>();
    build_decode_table(counts, values, *m_built[index]);
    return *m_built[index];
  }

  const DecodeTable *m_tables[4] = {};
  std::unique_ptr<DecodeTable> m_built[4];
};

// One block of an MCU: its component, and where its samples go within the band.
struct BlockPlace {
  int component;
  uint32_t x;  // samples from the MCU's left edge in the component's rows
  uint32_t y;  // rows from the band's top
  const char *prefix;
};

constexpr BlockPlace kGreyBlocks[] = {{0, 0, 0, ""}};
constexpr BlockPlace kYuv422Blocks[] = {
    {0, 0, 0, "Y1: "}, {0, 8, 0, "Y2: "}, {1, 0, 0, "U: "}, {2, 0, 0, "V: "}};
constexpr BlockPlace kYuv411Blocks[] = {{0, 0, 0, "Y1: "}, {0, 8, 0, "Y2: "}, {0, 0, 8, "Y3: "},
                                        {0, 8, 8, "Y4: "}, {1, 0, 0, "U: "},  {2, 0, 0, "V: "}};

class ScanDecoder {
 public:
  ScanDecoder(const ZEP_JPEG_RECORD &record, const Sampling &sampling, const ScanOutput &output)
      : m_reader(record.data, record.length),
        m_tables(record),
        m_sampling(sampling),
        m_output(output),
        m_idct(inverse_dct_pair(convert::active_simd_level())) {
    for (int c = 0; c < 3; ++c) {
      m_components[c].dc = m_tables.dc(c);
      m_components[c].ac = m_tables.ac(c);
      m_components[c].quant = record.quant[record.quant_table[c] & 1];
    }
    const bool grey = sampling.components == 1;
    m_places = grey ? std::span<const BlockPlace>(kGreyBlocks)
                    : (sampling.luma_v == 2 ? std::span<const BlockPlace>(kYuv411Blocks)
                                            : std::span<const BlockPlace>(kYuv422Blocks));
    if (!grey) {
      const uint32_t pairs = output.width / 2;
      m_band.resize(std::size_t{output.width} * sampling.mcu_height + std::size_t{2} * pairs * 8 +
                    std::size_t{4} * pairs);
      m_rows[0] = {m_band.data(), output.width};
      m_rows[1] = {m_rows[0].base + std::size_t{output.width} * sampling.mcu_height, pairs};
      m_rows[2] = {m_rows[1].base + std::size_t{pairs} * 8, pairs};
      m_line = m_rows[2].base + std::size_t{pairs} * 8;
    }
  }

  uint32_t run() {
    for (uint32_t y = 0; y < m_output.height; y += m_sampling.mcu_height) {
      if (m_sampling.components == 1) {
        m_rows[0] = {m_output.pixels + y * m_output.stride, m_output.stride};
      }
      for (uint32_t x = 0; x < m_output.width; x += m_sampling.mcu_width) {
        if (const uint32_t status = decode_mcu(x); status != 0) return status;
      }
      flush_pending();
      if (m_sampling.components == 3) emit_band(y);
    }
    if (m_reader.overran() && m_reader.ended_at_eoi())
      return core::report(kDecodeStripName, kEoiCode, "Unexpected EOI - processing byte 2");
    return 0;
  }

 private:
  struct Rows {
    uint8_t *base = nullptr;
    std::size_t stride = 0;
  };

  // Decodes the MCU's blocks. A block of DC alone is filled at once; the others are transformed
  // two at a time.
  uint32_t decode_mcu(uint32_t mcu_x) {
    for (const BlockPlace &place : m_places) {
      int16_t *block = m_blocks[m_pending];
      bool dc_only = false;
      const BlockError error =
          decode_block(m_reader, m_components[place.component], block, dc_only);
      if (error != BlockError::none) return report(error, place.prefix);
      const Rows &rows = m_rows[place.component];
      const uint32_t x = place.component == 0 ? mcu_x + place.x : mcu_x / 2;
      uint8_t *samples = rows.base + place.y * rows.stride + x;
      const auto stride = static_cast<std::ptrdiff_t>(rows.stride);
      if (dc_only) {
        inverse_dct_dc_only(block[0], samples, stride);
        block[0] = 0;
        continue;
      }
      m_targets[m_pending] = {samples, stride};
      if (++m_pending == 2) flush_pending();
    }
    return 0;
  }

  // Transforms the blocks waiting for a partner (a lone block is paired with itself) and clears
  // them for the next ones.
  void flush_pending() {
    if (m_pending == 0) return;
    const int second = m_pending - 1;
    m_idct(m_blocks[0], m_blocks[second], m_targets[0].samples, m_targets[0].stride,
           m_targets[second].samples, m_targets[second].stride);
    std::memset(m_blocks, 0, sizeof m_blocks);
    m_pending = 0;
  }

  uint32_t report(BlockError error, const char *prefix) {
    constexpr int kLongestCode = 16;
    if (m_reader.ended_at_eoi() && m_reader.short_of(kLongestCode))
      return core::report(kDecodeStripName, kEoiCode, "Unexpected EOI - processing byte 2");
    const char *text = error == BlockError::dc   ? "corrupt DC Huffman sequence"
                       : error == BlockError::ac ? "corrupt AC Huffman sequence"
                                                 : "corrupt AC Huffman sequence (> 63 coeffs read)";
    const uint32_t code = error == BlockError::dc   ? kDcCode
                          : error == BlockError::ac ? kAcCode
                                                    : kTooManyCode;
    return core::report(kDecodeStripName, code, (std::string(prefix) + text).c_str());
  }

  // Interleaves the band's Y, U and V rows into YUV 4:2:2 lines of the picture (or converts them
  // to the RGB layout of the output).
  void emit_band(uint32_t band_top) {
    const uint32_t pairs = m_output.width / 2;
    const int chroma_step = m_sampling.luma_v;  // 4:1:1 chroma rows serve two lines
    for (uint32_t line = 0; line < m_sampling.mcu_height; ++line) {
      const uint8_t *y = m_rows[0].base + line * m_rows[0].stride;
      const uint8_t *u = m_rows[1].base + (line / chroma_step) * m_rows[1].stride;
      const uint8_t *v = m_rows[2].base + (line / chroma_step) * m_rows[2].stride;
      uint8_t *out = m_output.pixels + (band_top + line) * m_output.stride;
      uint8_t *yuv = m_output.type == ZEP_YUV422 ? out : m_line;
      interleave_pairs(y, u, v, yuv, pairs);
      if (m_output.type != ZEP_YUV422) m_convert(yuv, out, pairs);
    }
  }

  static convert::Yuv422RowKernel row_kernel(uint16_t type) {
    const convert::Yuv422Kernels &kernels = convert::yuv422_kernels(convert::active_simd_level());
    switch (type) {
      case ZEP_RGB24: return kernels.to[static_cast<int>(convert::RgbLayout::rgb24)];
      case ZEP_BGR24: return kernels.to[static_cast<int>(convert::RgbLayout::bgr24)];
      case ZEP_BGRX32: return kernels.to[static_cast<int>(convert::RgbLayout::bgrx32)];
      default: return nullptr;
    }
  }

  BitReader m_reader;
  ScanTables m_tables;
  const Sampling &m_sampling;
  const ScanOutput &m_output;
  InverseDctPair m_idct;
  convert::Yuv422RowKernel m_convert = row_kernel(m_output.type);
  BlockTables m_components[3];
  std::span<const BlockPlace> m_places;
  std::vector<uint8_t> m_band;  // the band's Y rows, 8 U rows, 8 V rows, one interleaved line
  Rows m_rows[3];
  uint8_t *m_line = nullptr;
  struct Target {
    uint8_t *samples;
    std::ptrdiff_t stride;
  };
  alignas(32) int16_t m_blocks[2][64] = {};
  Target m_targets[2] = {};
  int m_pending = 0;  // blocks decoded and waiting to be transformed
};

}  // namespace

uint32_t decode_scan(const ZEP_JPEG_RECORD &record, const Sampling &sampling,
                     const ScanOutput &output) {
  if (record.data == nullptr || record.length == 0)
    return core::report(kDecodeStripName, kNoDataCode, "Buffer failed to fill at start");
  ScanDecoder decoder(record, sampling, output);
  return decoder.run();
}

}  // namespace vrc::jpeg
