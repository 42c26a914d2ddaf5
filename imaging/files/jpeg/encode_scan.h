// The encoder's scan: the picture (already padded to whole MCUs) coded MCU by MCU in raster order
// into byte-stuffed entropy-coded data, with no restart markers.
#pragma once

#include "imaging/core/jpeg_record.h"

#include <cstddef>
#include <cstdint>

namespace vrc::jpeg {

// How the pixels of the picture are laid out.
enum class ScanLayout {
  grey,    // one byte per pixel, coded as one component
  yuv422,  // Y0 U Y1 V pairs, coded as Y sampled 2 x 1 with U and V
  bgr24,   // B G R, converted to Y, U, V by the encoder and coded as yuv422
  bgrx32,  // B G R X, likewise
};

struct ScanSource {
  ScanLayout layout;
  const uint8_t *pixels;
  std::size_t stride;  // bytes from one line to the next
  uint32_t width;      // a multiple of the MCU width
  uint32_t height;     // a multiple of 8
};

// The most bytes the scan of `source` can take (every coefficient at its longest code, every byte
// stuffed).
std::size_t scan_bytes_bound(const ScanSource &source);

// Codes `source` with the quantisation reciprocals and Huffman code tables of `record` into `out`
// (at least scan_bytes_bound bytes); returns the bytes written.
std::size_t encode_scan(const ScanSource &source, const ZEP_JPEG_RECORD &record, uint8_t *out);

}  // namespace vrc::jpeg
