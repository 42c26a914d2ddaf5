// The scan loop of the encoder: for each band of eight lines the 4:2:2 input is split into Y, U
// and V rows, then each MCU's blocks (Y, or Y1 Y2 U V) go through the forward DCT, quantisation
// and the block coder.
#include "imaging/files/jpeg/encode_scan.h"

#include "imaging/files/jpeg/bit_writer.h"
#include "imaging/files/jpeg/encoder_colour.h"
#include "imaging/files/jpeg/forward_dct.h"
#include "imaging/files/jpeg/huffman_encode.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/jpeg/quantise.h"

#include <vector>

namespace vrc::jpeg {
namespace {

constexpr std::size_t kBlockBytesBound = 420;  // 1665 bits at most, doubled by stuffing
constexpr std::size_t kTailBytes = 16;         // the final partial word and its stuffing

// The per-block stages and the tables of one component.
struct ComponentCoder {
  QuantiserTable quantiser;
  CodeTable dc;
  CodeTable ac;
  int16_t predictor = 0;
};

class BlockCoder {
 public:
  BlockCoder(const ZEP_JPEG_RECORD &record, uint8_t *out)
      : m_writer(out),
        m_fdct(forward_dct_pair(convert::active_simd_level())),
        m_quantise(quantiser(convert::active_simd_level())) {
    m_luma = coder(record, 0, kDcLuminance, kAcLuminance);
    m_chroma[0] = coder(record, 1, kDcChrominance, kAcChrominance);
    m_chroma[1] = m_chroma[0];
  }

  // Codes two blocks, `a` of component `ca` and then `b` of component `cb`.
  void code_pair(const uint8_t *a, std::size_t stride_a, ComponentCoder &ca, const uint8_t *b,
                 std::size_t stride_b, ComponentCoder &cb) {
    m_fdct(a, static_cast<std::ptrdiff_t>(stride_a), b, static_cast<std::ptrdiff_t>(stride_b),
           m_coefficients[0], m_coefficients[1]);
    quantise_and_code(m_coefficients[0], ca);
    quantise_and_code(m_coefficients[1], cb);
  }

  // Codes the block at `a` alone (the second transform of the pair is discarded).
  void code_one(const uint8_t *a, std::size_t stride, ComponentCoder &component) {
    m_fdct(a, static_cast<std::ptrdiff_t>(stride), a, static_cast<std::ptrdiff_t>(stride),
           m_coefficients[0], m_coefficients[1]);
    quantise_and_code(m_coefficients[0], component);
  }

  ComponentCoder &luma() { return m_luma; }
  ComponentCoder &chroma(int index) { return m_chroma[index]; }
  std::size_t finish() { return m_writer.finish(); }

 private:
  static ComponentCoder coder(const ZEP_JPEG_RECORD &record, int quant_table, uint8_t dc_id,
                              uint8_t ac_id) {
    ComponentCoder component;
    component.quantiser = quantiser_table(record.reciprocal[quant_table]);
    component.dc = record.huff_code[std::max(huffman_slot(record, dc_id), 0)];
    component.ac = record.huff_code[std::max(huffman_slot(record, ac_id), 0)];
    return component;
  }

  void quantise_and_code(const int16_t *coefficients, ComponentCoder &component) {
    m_quantise(coefficients, component.quantiser, m_quantised);
    encode_block(m_writer, m_quantised, component.predictor, component.dc, component.ac);
  }

  BitWriter m_writer;
  ForwardDctPair m_fdct;
  Quantise m_quantise;
  ComponentCoder m_luma;
  ComponentCoder m_chroma[2];
  alignas(32) int16_t m_coefficients[2][64];
  alignas(32) int16_t m_quantised[64];
};

void encode_grey(const ScanSource &source, BlockCoder &coder) {
  for (uint32_t y = 0; y < source.height; y += 8) {
    const uint8_t *band = source.pixels + y * source.stride;
    uint32_t x = 0;
    for (; x + 16 <= source.width; x += 16)
      coder.code_pair(band + x, source.stride, coder.luma(), band + x + 8, source.stride,
                      coder.luma());
    if (x < source.width) coder.code_one(band + x, source.stride, coder.luma());
  }
}

void encode_yuv422(const ScanSource &source, BlockCoder &coder) {
  const uint32_t width = source.width;
  const uint32_t pairs = width / 2;
  std::vector<uint8_t> planes(std::size_t{16} * width);  // 8 rows of Y, then 8 of U and 8 of V
  uint8_t *const y_rows = planes.data();
  uint8_t *const u_rows = y_rows + 8 * width;
  uint8_t *const v_rows = u_rows + 8 * pairs;
  const BgrToPlanes bgr_rows = bgr_to_planes(convert::active_simd_level());
  for (uint32_t y = 0; y < source.height; y += 8) {
    for (uint32_t line = 0; line < 8; ++line) {
      const uint8_t *row = source.pixels + (y + line) * source.stride;
      const PlaneRows out{y_rows + line * width, u_rows + line * pairs, v_rows + line * pairs};
      switch (source.layout) {
        case ScanLayout::yuv422: yuv422_to_planes(row, pairs, out); break;
        case ScanLayout::bgr24: bgr_rows(row, 3, pairs, out); break;
        default: bgr_rows(row, 4, pairs, out); break;
      }
    }
    for (uint32_t x = 0; x < width; x += 16) {
      coder.code_pair(y_rows + x, width, coder.luma(), y_rows + x + 8, width, coder.luma());
      coder.code_pair(u_rows + x / 2, pairs, coder.chroma(0), v_rows + x / 2, pairs,
                      coder.chroma(1));
    }
  }
}

}  // namespace

std::size_t scan_bytes_bound(const ScanSource &source) {
  const std::size_t luma_blocks = std::size_t{source.width / 8} * (source.height / 8);
  const std::size_t blocks = source.layout == ScanLayout::grey ? luma_blocks : 2 * luma_blocks;
  return blocks * kBlockBytesBound + kTailBytes;
}

std::size_t encode_scan(const ScanSource &source, const ZEP_JPEG_RECORD &record, uint8_t *out) {
  BlockCoder coder(record, out);
  if (source.layout == ScanLayout::grey)
    encode_grey(source, coder);
  else
    encode_yuv422(source, coder);
  return coder.finish();
}

}  // namespace vrc::jpeg
