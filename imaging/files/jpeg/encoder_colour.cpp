// The encoder's input rows.
#include "imaging/files/jpeg/encoder_colour.h"

#include <emmintrin.h>

namespace vrc::jpeg {

void bgr_to_planes(const uint8_t *pixels, int pixel_bytes, uint32_t pairs, const PlaneRows &out) {
  for (uint32_t i = 0; i < pairs; ++i) {
    const uint8_t *p0 = pixels + 2 * i * pixel_bytes;
    const uint8_t *p1 = p0 + pixel_bytes;
    const int b0 = p0[0], g0 = p0[1], r0 = p0[2];
    const int b1 = p1[0], g1 = p1[1], r1 = p1[2];
    out.y[2 * i] = static_cast<uint8_t>((306 * r0 + 601 * g0 + 117 * b0) >> 10);
    out.y[2 * i + 1] = static_cast<uint8_t>((306 * r1 + 601 * g1 + 117 * b1) >> 10);
    const int r = r0 + r1, g = g0 + g1, b = b0 + b1;
    out.u[i] = static_cast<uint8_t>(((512 * b - 339 * g - 173 * r) >> 11) + 128);
    out.v[i] = static_cast<uint8_t>(((512 * r - 429 * g - 83 * b) >> 11) + 128);
  }
}

namespace {

// 16 pairs: the low bytes of each 16-bit word are Y, the high bytes U and V alternately.
void split_16_pairs(const uint8_t *in, uint8_t *y, uint8_t *u, uint8_t *v) {
  const __m128i low = _mm_set1_epi16(0x00FF);
  __m128i words[4];
  for (int i = 0; i < 4; ++i) words[i] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 16 * i));
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

void yuv422_to_planes(const uint8_t *pairs_in, uint32_t pairs, const PlaneRows &out) {
  uint32_t i = 0;
  for (; i + 16 <= pairs; i += 16) split_16_pairs(pairs_in + 4 * i, out.y + 2 * i, out.u + i, out.v + i);
  for (; i < pairs; ++i) {
    const uint8_t *pair = pairs_in + 4 * i;
    out.y[2 * i] = pair[0];
    out.u[i] = pair[1];
    out.y[2 * i + 1] = pair[2];
    out.v[i] = pair[3];
  }
}

}  // namespace vrc::jpeg
