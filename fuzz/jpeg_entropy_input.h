// The input layout of the entropy decoder's fuzz target, shared with the tests that write its
// seeds: one byte choosing the header, then the entropy-coded data.
#pragma once

#include "vrcw32/zep.h"

#include <cstdint>

namespace vrc::fuzz {

struct EntropyHeader {
  uint16_t type;  // ZEP_Y8, ZEP_YUV422 or ZEP_DATA16_C (4:1:1)
  uint32_t width;
  uint32_t height;
  uint16_t output;  // destination type: 0 (the natural one) or ZEP_RGB24
};

inline constexpr uint16_t kEntropyTypes[4] = {ZEP_Y8, ZEP_YUV422, ZEP_DATA16_C, ZEP_YUV422};
inline constexpr uint32_t kEntropySizes[8][2] = {{16, 8},  {203, 121}, {64, 48}, {17, 9},
                                                 {32, 16}, {20, 12},   {33, 17}, {8, 8}};

// Bits 0-1: sampling (grey, 4:2:2, 4:1:1, 4:2:2 again); bits 2-4: size; bit 5: RGB24 output.
inline EntropyHeader entropy_header(uint8_t selector) {
  const uint32_t *size = kEntropySizes[(selector >> 2) & 7];
  return {kEntropyTypes[selector & 3], size[0], size[1],
          static_cast<uint16_t>(selector & 0x20 ? ZEP_RGB24 : 0)};
}

// The selector of a header, or -1 when no preset has that size.
inline int entropy_selector(uint16_t type, uint32_t width, uint32_t height, bool rgb_output) {
  const int sampling = type == ZEP_Y8 ? 0 : (type == ZEP_DATA16_C ? 2 : 1);
  for (int s = 0; s < 8; ++s)
    if (kEntropySizes[s][0] == width && kEntropySizes[s][1] == height)
      return sampling | s << 2 | (rgb_output ? 0x20 : 0);
  return -1;
}

}  // namespace vrc::fuzz
