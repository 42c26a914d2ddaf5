// The decoder's scan: entropy-coded data decoded MCU by MCU (Y; Y1 Y2 U V; or Y1 Y2 Y3 Y4 U V)
// into a picture of whole MCUs, delivered as grey, YUV 4:2:2 or, through the YUV 4:2:2 row
// conversions, RGB24, BGR24 or BGRX32.
#pragma once

#include "imaging/core/jpeg_record.h"
#include "imaging/files/jpeg/jpeg_state.h"

#include <cstddef>
#include <cstdint>

namespace vrc::jpeg {

inline constexpr const char *kDecodeStripName = "ZEP_JPEG_decompress_1_strip";

struct ScanOutput {
  uint16_t type;  // ZEP_Y8 (grey data only), ZEP_YUV422, ZEP_RGB24, ZEP_BGR24 or ZEP_BGRX32
  uint8_t *pixels;
  std::size_t stride;  // bytes from one line to the next
  uint32_t width;      // a multiple of the MCU width
  uint32_t height;     // a multiple of the MCU height
};

// Decodes the record's data; 0, or a code reported under kDecodeStripName.
uint32_t decode_scan(const ZEP_JPEG_RECORD &record, const Sampling &sampling,
                     const ScanOutput &output);

}  // namespace vrc::jpeg
