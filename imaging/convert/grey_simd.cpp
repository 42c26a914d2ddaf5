// SSE2 and AVX2 versions of the RGB24-to-grey row kernel, (77 R + 150 G + 29 B) >> 8 exactly.
#include "imaging/convert/yuv422_rows.h"

#include <immintrin.h>

#include <cstring>

namespace vrc::convert {
namespace {

uint32_t pixel_word(const uint8_t *p) {
  uint32_t word;
  std::memcpy(&word, p, 4);
  return word;
}

}  // namespace

// Eight pixels at a time, each read as a 32-bit word (its three bytes and the next pixel's
// first byte); components are split with shifts and weighted in 16-bit lanes. The sum stays below
// 65536, so the wrapping add and the logical shift give the exact result.
void rgb24_to_y8_sse2(const uint8_t *rgb24, uint8_t *grey, uint32_t width) {
  const __m128i byte_mask = _mm_set1_epi32(0xFF);
  uint32_t x = 0;
  for (; x + 8 < width; x += 8) {  // the ninth pixel's first byte ends the last word
    const uint8_t *p = rgb24 + 3 * x;
    const __m128i a =
        _mm_setr_epi32(pixel_word(p), pixel_word(p + 3), pixel_word(p + 6), pixel_word(p + 9));
    const __m128i b = _mm_setr_epi32(pixel_word(p + 12), pixel_word(p + 15), pixel_word(p + 18),
                                     pixel_word(p + 21));
    const auto channel = [&](int shift) {
      const __m128i count = _mm_cvtsi32_si128(shift);
      return _mm_packs_epi32(_mm_and_si128(_mm_srl_epi32(a, count), byte_mask),
                             _mm_and_si128(_mm_srl_epi32(b, count), byte_mask));
    };
    const __m128i sum =
        _mm_add_epi16(_mm_add_epi16(_mm_mullo_epi16(channel(0), _mm_set1_epi16(77)),
                                    _mm_mullo_epi16(channel(8), _mm_set1_epi16(150))),
                      _mm_mullo_epi16(channel(16), _mm_set1_epi16(29)));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(grey + x),
                     _mm_packus_epi16(_mm_srli_epi16(sum, 8), _mm_setzero_si128()));
  }
  rgb24_to_y8_scalar(rgb24 + 3 * x, grey + x, width - x);
}

// 32 pixels at a time. Each 128-bit lane takes 4 pixels (12 bytes) and shuffles them into
// (R, G) and (G, B) byte pairs; maddubs weighs them with 77, 51 and 99, 29 (each pair's weights
// sum to 128, so no 16-bit saturation), and the two halves add up to 77 R + 150 G + 29 B.
__attribute__((target("avx2"))) void rgb24_to_y8_avx2(const uint8_t *rgb24, uint8_t *grey,
                                                      uint32_t width) {
  const __m256i pairs = _mm256_setr_epi8(0, 1, 3, 4, 6, 7, 9, 10, 1, 2, 4, 5, 7, 8, 10, 11,  //
                                         0, 1, 3, 4, 6, 7, 9, 10, 1, 2, 4, 5, 7, 8, 10, 11);
  const __m256i weights =
      _mm256_setr_epi8(77, 51, 77, 51, 77, 51, 77, 51, 99, 29, 99, 29, 99, 29, 99, 29,  //
                       77, 51, 77, 51, 77, 51, 77, 51, 99, 29, 99, 29, 99, 29, 99, 29);
  const auto quad = [](const uint8_t *p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
  };
  // Sixteen pixels from quads 0..3 of `p`, as 16-bit sums in pixel order.
  const auto sixteen = [&](const uint8_t *p) __attribute__((target("avx2"))) {
    const __m256i v = _mm256_set_m128i(quad(p + 24), quad(p));       // pixels 0-3 | 8-11
    const __m256i w = _mm256_set_m128i(quad(p + 36), quad(p + 12));  // pixels 4-7 | 12-15
    const __m256i sv = _mm256_maddubs_epi16(_mm256_shuffle_epi8(v, pairs), weights);
    const __m256i sw = _mm256_maddubs_epi16(_mm256_shuffle_epi8(w, pairs), weights);
    const __m256i sum =
        _mm256_add_epi16(_mm256_unpacklo_epi64(sv, sw), _mm256_unpackhi_epi64(sv, sw));
    return _mm256_srli_epi16(sum, 8);
  };
  uint32_t x = 0;
  for (; x + 34 <= width; x += 32) {  // the last 16-byte read ends 4 bytes past the block
    const uint8_t *p = rgb24 + 3 * x;
    const __m256i packed = _mm256_packus_epi16(sixteen(p), sixteen(p + 48));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(grey + x),
                        _mm256_permute4x64_epi64(packed, 0xD8));
  }
  rgb24_to_y8_scalar(rgb24 + 3 * x, grey + x, width - x);
}

}  // namespace vrc::convert
