// The encoder's input rows.
#include "imaging/files/jpeg/encoder_colour.h"

#include "imaging/files/jpeg/simd_lanes.h"

#include <emmintrin.h>
#include <cstring>

namespace vrc::jpeg {
namespace {

int weighted_sum(ColourWeights weights, int blue, int green, int red) {
  return weights.blue * blue + weights.green * green + weights.red * red;
}

}  // namespace

void bgr_to_planes_scalar(const uint8_t *pixels, int pixel_bytes, uint32_t pairs,
                          const PlaneRows &out) {
  for (uint32_t i = 0; i < pairs; ++i) {
    const uint8_t *p0 = pixels + 2 * i * pixel_bytes;
    const uint8_t *p1 = p0 + pixel_bytes;
    const int b0 = p0[0], g0 = p0[1], r0 = p0[2];
    const int b1 = p1[0], g1 = p1[1], r1 = p1[2];
    out.y[2 * i] = static_cast<uint8_t>(weighted_sum(kLumaWeights, b0, g0, r0) >> 10);
    out.y[2 * i + 1] = static_cast<uint8_t>(weighted_sum(kLumaWeights, b1, g1, r1) >> 10);
    const int r = r0 + r1, g = g0 + g1, b = b0 + b1;
    out.u[i] = static_cast<uint8_t>((weighted_sum(kBlueDifferenceWeights, b, g, r) >> 11) + 128);
    out.v[i] = static_cast<uint8_t>((weighted_sum(kRedDifferenceWeights, b, g, r) >> 11) + 128);
  }
}

namespace {

// Four B G R X pixels: Y of each (32-bit lanes) and U and V of their two pairs (lanes 0 and 2).
struct FourPixels {
  __m128i y, u, v;
};
FourPixels convert_four(__m128i pixels) {
  const __m128i blue_red = _mm_and_si128(pixels, _mm_set1_epi32(0x00FF00FF));
  const __m128i green = _mm_and_si128(_mm_srli_epi32(pixels, 8), _mm_set1_epi32(0xFF));
  auto weighted = [&](ColourWeights weights) {
    return _mm_add_epi32(_mm_madd_epi16(blue_red, Sse2Lanes::pair(weights.blue, weights.red)),
                         _mm_madd_epi16(green, Sse2Lanes::pair(weights.green, 0)));
  };
  // The pair's value is the sum of its two pixels' weighted components.
  auto per_pair = [](__m128i per_pixel) {
    const __m128i sum = _mm_add_epi32(per_pixel, _mm_srli_epi64(per_pixel, 32));
    return _mm_add_epi32(_mm_srai_epi32(sum, 11), _mm_set1_epi32(128));
  };
  return {_mm_srai_epi32(weighted(kLumaWeights), 10), per_pair(weighted(kBlueDifferenceWeights)),
          per_pair(weighted(kRedDifferenceWeights))};
}

// Lanes 0 and 2 of a and of b as four bytes.
uint32_t pair_lanes_as_bytes(__m128i a, __m128i b) {
  const __m128i values = _mm_unpacklo_epi64(_mm_shuffle_epi32(a, _MM_SHUFFLE(3, 1, 2, 0)),
                                            _mm_shuffle_epi32(b, _MM_SHUFFLE(3, 1, 2, 0)));
  const __m128i words = _mm_packs_epi32(values, values);
  return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
}

// Four pixels of `pixel_bytes` bytes as B G R X words (X undefined).
__m128i load_four(const uint8_t *pixels, int pixel_bytes) {
  if (pixel_bytes == 4) return _mm_loadu_si128(reinterpret_cast<const __m128i *>(pixels));
  uint32_t words[4];
  for (int i = 0; i < 4; ++i) std::memcpy(&words[i], pixels + 3 * i, 4);  // reads 1 byte past
  return _mm_loadu_si128(reinterpret_cast<const __m128i *>(words));
}

// 16 pairs: the low bytes of each 16-bit word are Y, the high bytes U and V alternately.
void split_16_pairs(const uint8_t *in, uint8_t *y, uint8_t *u, uint8_t *v) {
  const __m128i low = _mm_set1_epi16(0x00FF);
  __m128i words[4];
  for (int i = 0; i < 4; ++i)
    words[i] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 16 * i));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(y),
                   _mm_packus_epi16(_mm_and_si128(words[0], low), _mm_and_si128(words[1], low)));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(y + 16),
                   _mm_packus_epi16(_mm_and_si128(words[2], low), _mm_and_si128(words[3], low)));
  const __m128i uv0 = _mm_packus_epi16(_mm_srli_epi16(words[0], 8), _mm_srli_epi16(words[1], 8));
  const __m128i uv1 = _mm_packus_epi16(_mm_srli_epi16(words[2], 8), _mm_srli_epi16(words[3], 8));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(u),
                   _mm_packus_epi16(_mm_and_si128(uv0, low), _mm_and_si128(uv1, low)));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(v),
                   _mm_packus_epi16(_mm_srli_epi16(uv0, 8), _mm_srli_epi16(uv1, 8)));
}

}  // namespace

void bgr_to_planes_sse2(const uint8_t *pixels, int pixel_bytes, uint32_t pairs,
                        const PlaneRows &out) {
  // Eight pixels a step; a 3-byte pixel is read as 4 bytes, so the last step stops a pair early.
  const uint32_t vector_pairs = pairs > 4 ? pairs - 1 : 0;
  uint32_t i = 0;
  for (; i + 4 <= vector_pairs; i += 4) {
    const uint8_t *at = pixels + std::size_t{2} * i * pixel_bytes;
    const FourPixels a = convert_four(load_four(at, pixel_bytes));
    const FourPixels b = convert_four(load_four(at + 4 * pixel_bytes, pixel_bytes));
    const __m128i y16 = _mm_packs_epi32(a.y, b.y);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out.y + 2 * i), _mm_packus_epi16(y16, y16));
    const uint32_t u = pair_lanes_as_bytes(a.u, b.u), v = pair_lanes_as_bytes(a.v, b.v);
    std::memcpy(out.u + i, &u, 4);
    std::memcpy(out.v + i, &v, 4);
  }
  const PlaneRows rest{out.y + 2 * i, out.u + i, out.v + i};
  bgr_to_planes_scalar(pixels + std::size_t{2} * i * pixel_bytes, pixel_bytes, pairs - i, rest);
}

BgrToPlanes bgr_to_planes(convert::SimdLevel level) {
  switch (level) {
    case convert::SimdLevel::avx2: return &bgr_to_planes_avx2;
    case convert::SimdLevel::sse2: return &bgr_to_planes_sse2;
    default: return &bgr_to_planes_scalar;
  }
}

void yuv422_to_planes(const uint8_t *pairs_in, uint32_t pairs, const PlaneRows &out) {
  uint32_t i = 0;
  for (; i + 16 <= pairs; i += 16)
    split_16_pairs(pairs_in + 4 * i, out.y + 2 * i, out.u + i, out.v + i);
  for (; i < pairs; ++i) {
    const uint8_t *pair = pairs_in + 4 * i;
    out.y[2 * i] = pair[0];
    out.u[i] = pair[1];
    out.y[2 * i + 1] = pair[2];
    out.v[i] = pair[3];
  }
}

}  // namespace vrc::jpeg
