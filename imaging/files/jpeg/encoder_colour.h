// Rows of the encoder's 4:2:2 input: the encoder's own colour conversion of BGR24 and BGRX32
// pixels, and the split of YUV 4:2:2 pairs into Y, U and V rows.
#pragma once

#include "imaging/convert/simd_level.h"

#include <cstdint>

namespace vrc::jpeg {

struct PlaneRows {
  uint8_t *y;  // width samples
  uint8_t *u;  // width / 2 samples
  uint8_t *v;
};

// The weights of B, G and R in Y (in 1/1024) and in U and V (in 1/2048, taken of a pair's sums).
struct ColourWeights {
  int16_t blue, green, red;
};
inline constexpr ColourWeights kLumaWeights = {117, 601, 306};
inline constexpr ColourWeights kBlueDifferenceWeights = {512, -339, -173};
inline constexpr ColourWeights kRedDifferenceWeights = {-83, -429, 512};

// `pairs` pixel pairs of B G R (pixel_bytes 3) or B G R X (4) pixels: per pixel
// Y = (306 R + 601 G + 117 B) >> 10; per pair, from the sums of its two pixels' components,
// U = ((512 B - 339 G - 173 R) >> 11) + 128 and V = ((512 R - 429 G - 83 B) >> 11) + 128.
using BgrToPlanes = void (*)(const uint8_t *pixels, int pixel_bytes, uint32_t pairs,
                             const PlaneRows &out);
void bgr_to_planes_scalar(const uint8_t *pixels, int pixel_bytes, uint32_t pairs,
                          const PlaneRows &out);
// The same values, four pixels per register.
void bgr_to_planes_sse2(const uint8_t *pixels, int pixel_bytes, uint32_t pairs,
                        const PlaneRows &out);
// Eight pixels per register (processors with AVX2).
void bgr_to_planes_avx2(const uint8_t *pixels, int pixel_bytes, uint32_t pairs,
                        const PlaneRows &out);
BgrToPlanes bgr_to_planes(convert::SimdLevel level);

// `pairs` Y0 U Y1 V pairs into the three rows.
void yuv422_to_planes(const uint8_t *pairs_in, uint32_t pairs, const PlaneRows &out);

}  // namespace vrc::jpeg
