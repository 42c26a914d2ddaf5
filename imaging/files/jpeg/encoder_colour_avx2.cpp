// The AVX2 colour conversion of the encoder: eight B G R (X) pixels per register, the arithmetic
// of bgr_to_planes_scalar exactly. This unit is compiled for AVX2 and runs only where the
// processor has it.
#include "imaging/files/jpeg/encoder_colour.h"

#include "imaging/files/jpeg/simd_lanes.h"

#include <immintrin.h>

namespace vrc::jpeg {
namespace {

// Eight pixels as B G R X words (X zero for 3-byte pixels, which are read 4 bytes past the
// eighth).
__m256i load_eight(const uint8_t *pixels, int pixel_bytes) {
  if (pixel_bytes == 4) return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(pixels));
  const __m256i bytes = _mm256_inserti128_si256(
      _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i *>(pixels))),
      _mm_loadu_si128(reinterpret_cast<const __m128i *>(pixels + 12)), 1);
  const __m256i spread = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, 0,
                                          1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
  return _mm256_shuffle_epi8(bytes, spread);
}

// Y of each pixel (32-bit lanes) and U and V of the four pairs (lanes 0, 2, 4 and 6).
struct EightPixels {
  __m256i y, u, v;
};
EightPixels convert_eight(__m256i pixels) {
  const __m256i blue_red = _mm256_and_si256(pixels, _mm256_set1_epi32(0x00FF00FF));
  const __m256i green = _mm256_and_si256(_mm256_srli_epi32(pixels, 8), _mm256_set1_epi32(0xFF));
  auto weighted = [&](ColourWeights weights) {
    return _mm256_add_epi32(_mm256_madd_epi16(blue_red, Avx2Lanes::pair(weights.blue, weights.red)),
                            _mm256_madd_epi16(green, Avx2Lanes::pair(weights.green, 0)));
  };
  auto per_pair = [](__m256i per_pixel) {
    const __m256i sum = _mm256_add_epi32(per_pixel, _mm256_srli_epi64(per_pixel, 32));
    return _mm256_add_epi32(_mm256_srai_epi32(sum, 11), _mm256_set1_epi32(128));
  };
  return {_mm256_srai_epi32(weighted(kLumaWeights), 10), per_pair(weighted(kBlueDifferenceWeights)),
          per_pair(weighted(kRedDifferenceWeights))};
}

// The four pair values of `a` then of `b`, as eight bytes.
__m128i pairs_as_bytes(__m256i a, __m256i b) {
  constexpr int kPairLanes = _MM_SHUFFLE(3, 1, 2, 0);
  const __m256i a4 = _mm256_permute4x64_epi64(_mm256_shuffle_epi32(a, kPairLanes), 0b1000);
  const __m256i b4 = _mm256_permute4x64_epi64(_mm256_shuffle_epi32(b, kPairLanes), 0b1000);
  const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(a4), _mm256_castsi256_si128(b4));
  return _mm_packus_epi16(words, words);
}

}  // namespace

void bgr_to_planes_avx2(const uint8_t *pixels, int pixel_bytes, uint32_t pairs,
                        const PlaneRows &out) {
  // Sixteen pixels a step; a 3-byte pixel run is read 4 bytes long, so the last step stops a pair
  // early.
  const uint32_t vector_pairs = pairs > 8 ? pairs - 2 : 0;
  uint32_t i = 0;
  for (; i + 8 <= vector_pairs; i += 8) {
    const uint8_t *at = pixels + std::size_t{2} * i * pixel_bytes;
    const EightPixels a = convert_eight(load_eight(at, pixel_bytes));
    const EightPixels b = convert_eight(load_eight(at + 8 * pixel_bytes, pixel_bytes));
    const __m256i y16 = _mm256_permute4x64_epi64(_mm256_packs_epi32(a.y, b.y), 0b11011000);
    const __m256i y8 = _mm256_packus_epi16(y16, y16);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out.y + 2 * i), _mm256_castsi256_si128(y8));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out.y + 2 * i + 8),
                     _mm256_extracti128_si256(y8, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out.u + i), pairs_as_bytes(a.u, b.u));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out.v + i), pairs_as_bytes(a.v, b.v));
  }
  const PlaneRows rest{out.y + 2 * i, out.u + i, out.v + i};
  bgr_to_planes_sse2(pixels + std::size_t{2} * i * pixel_bytes, pixel_bytes, pairs - i, rest);
}

}  // namespace vrc::jpeg
