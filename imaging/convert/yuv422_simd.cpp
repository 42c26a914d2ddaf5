// SSE2 and AVX2 versions of the YUV 4:2:2 row kernels. Each section defines the lane primitives
// for its vector width and then instantiates the shared kernel text; the AVX2 section's
// functions carry the avx2 target so that the library itself needs no special flags.
#include "imaging/convert/simd_store.h"
#include "imaging/convert/yuv422_rows.h"

#include <immintrin.h>

namespace vrc::convert {

// Copies the 12 pixel bytes of 4 RGBX pixels (X = 0) held in a 128-bit vector, dropping the
// X bytes, with SSE2 shifts: each 64-bit half is closed up to 6 bytes, then the halves join.
inline void store_rgb24_from_rgbx(uint8_t *out, __m128i rgbx) {
  const __m128i low3 = _mm_set1_epi64x(0x0000000000FFFFFF);
  const __m128i high3 = _mm_set1_epi64x(0x0000FFFFFF000000);
  const __m128i halves =
      _mm_or_si128(_mm_and_si128(rgbx, low3), _mm_and_si128(_mm_srli_epi64(rgbx, 8), high3));
  const __m128i joined = _mm_or_si128(
      _mm_move_epi64(halves), _mm_srli_si128(_mm_unpackhi_epi64(_mm_setzero_si128(), halves), 2));
  store_12_bytes(out, joined);
}

namespace sse2 {

using V = __m128i;
#define VRC_TARGET

inline V load(const uint8_t *p) { return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p)); }
inline V set16(int16_t v) { return _mm_set1_epi16(v); }
inline V set32(int32_t v) { return _mm_set1_epi32(v); }
inline V and16(V a, V b) { return _mm_and_si128(a, b); }
inline V or16(V a, V b) { return _mm_or_si128(a, b); }
inline V add16(V a, V b) { return _mm_add_epi16(a, b); }
inline V sub16(V a, V b) { return _mm_sub_epi16(a, b); }
inline V mulhi16(V a, V b) { return _mm_mulhi_epi16(a, b); }
inline V madd16(V a, V b) { return _mm_madd_epi16(a, b); }
inline V min16(V a, V b) { return _mm_min_epi16(a, b); }
inline V max16(V a, V b) { return _mm_max_epi16(a, b); }
template <int N>
V srli16(V a) {
  return _mm_srli_epi16(a, N);
}
template <int N>
V slli16(V a) {
  return _mm_slli_epi16(a, N);
}
template <int N>
V srli32(V a) {
  return _mm_srli_epi32(a, N);
}
template <int N>
V slli32(V a) {
  return _mm_slli_epi32(a, N);
}
template <int N>
V srai32(V a) {
  return _mm_srai_epi32(a, N);
}

inline V duplicate_even16(V a) {
  return _mm_shufflehi_epi16(_mm_shufflelo_epi16(a, _MM_SHUFFLE(2, 2, 0, 0)),
                             _MM_SHUFFLE(2, 2, 0, 0));
}
inline V duplicate_odd16(V a) {
  return _mm_shufflehi_epi16(_mm_shufflelo_epi16(a, _MM_SHUFFLE(3, 3, 1, 1)),
                             _MM_SHUFFLE(3, 3, 1, 1));
}

template <RgbLayout>
V load_pixels(const uint8_t *p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}

inline void store_words16(uint8_t *out, V words) {
  _mm_storeu_si128(reinterpret_cast<__m128i *>(out), words);
}

// Pixels of bytes c0, c1, c2, c3 (16-bit lanes, clamped to 0..255 by the saturating packs).
template <RgbLayout Layout>
void store_pixels(uint8_t *out, V c0, V c1, V c2, V c3) {
  const V c02 = _mm_packus_epi16(c0, c2);
  const V c13 = _mm_packus_epi16(c1, c3);
  const V c01 = _mm_unpacklo_epi8(c02, c13);
  const V c23 = _mm_unpackhi_epi8(c02, c13);
  const V lo = _mm_unpacklo_epi16(c01, c23);
  const V hi = _mm_unpackhi_epi16(c01, c23);
  if constexpr (layout_bytes(Layout) == 3) {
    store_rgb24_from_rgbx(out, lo);
    store_rgb24_from_rgbx(out + 12, hi);
  } else {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out), lo);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 16), hi);
  }
}

#include "imaging/convert/yuv422_simd_kernel.inc"
#undef VRC_TARGET

}  // namespace sse2

namespace avx2 {

using V = __m256i;
#define VRC_TARGET __attribute__((target("avx2")))

VRC_TARGET inline V load(const uint8_t *p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p));
}
VRC_TARGET inline V set16(int16_t v) { return _mm256_set1_epi16(v); }
VRC_TARGET inline V set32(int32_t v) { return _mm256_set1_epi32(v); }
VRC_TARGET inline V and16(V a, V b) { return _mm256_and_si256(a, b); }
VRC_TARGET inline V or16(V a, V b) { return _mm256_or_si256(a, b); }
VRC_TARGET inline V add16(V a, V b) { return _mm256_add_epi16(a, b); }
VRC_TARGET inline V sub16(V a, V b) { return _mm256_sub_epi16(a, b); }
VRC_TARGET inline V mulhi16(V a, V b) { return _mm256_mulhi_epi16(a, b); }
VRC_TARGET inline V madd16(V a, V b) { return _mm256_madd_epi16(a, b); }
VRC_TARGET inline V min16(V a, V b) { return _mm256_min_epi16(a, b); }
VRC_TARGET inline V max16(V a, V b) { return _mm256_max_epi16(a, b); }
template <int N>
VRC_TARGET V srli16(V a) {
  return _mm256_srli_epi16(a, N);
}
template <int N>
VRC_TARGET V slli16(V a) {
  return _mm256_slli_epi16(a, N);
}
template <int N>
VRC_TARGET V srli32(V a) {
  return _mm256_srli_epi32(a, N);
}
template <int N>
VRC_TARGET V slli32(V a) {
  return _mm256_slli_epi32(a, N);
}
template <int N>
VRC_TARGET V srai32(V a) {
  return _mm256_srai_epi32(a, N);
}

VRC_TARGET inline V duplicate_even16(V a) {
  return _mm256_shuffle_epi8(
      a, _mm256_setr_epi8(0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13,  //
                          0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13));
}
VRC_TARGET inline V duplicate_odd16(V a) {
  return _mm256_shuffle_epi8(
      a, _mm256_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15,  //
                          2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15));
}

// Sixteen pixels. For the byte layouts the 8-byte quarters are reordered (pixels 0-3, 8-11 |
// 4-7, 12-15) so that the in-lane unpacking at the end comes out in pixel order; the 16-bit
// packings keep pixel order.
template <RgbLayout Layout>
VRC_TARGET V load_pixels(const uint8_t *p) {
  const V pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p));
  if constexpr (layout_bytes(Layout) == 2) return pixels;
  return _mm256_permute4x64_epi64(pixels, 0xD8);
}

VRC_TARGET inline void store_words16(uint8_t *out, V words) {
  _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), words);
}

// Pixels of bytes c0, c1, c2, c3 (16-bit lanes, clamped to 0..255 by the saturating packs). With
// the quarters as load_pixels arranged them, `lo` holds pixels 0-7 and `hi` pixels 8-15.
template <RgbLayout Layout>
VRC_TARGET void store_pixels(uint8_t *out, V c0, V c1, V c2, V c3) {
  const V c02 = _mm256_packus_epi16(c0, c2);
  const V c13 = _mm256_packus_epi16(c1, c3);
  const V c01 = _mm256_unpacklo_epi8(c02, c13);
  const V c23 = _mm256_unpackhi_epi8(c02, c13);
  const V lo = _mm256_unpacklo_epi16(c01, c23);
  const V hi = _mm256_unpackhi_epi16(c01, c23);
  if constexpr (layout_bytes(Layout) == 3) {
    store_lanes_as_3_bytes(out, lo);
    store_lanes_as_3_bytes(out + 24, hi);
  } else {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), lo);
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + 32), hi);
  }
}

#include "imaging/convert/yuv422_simd_kernel.inc"
#undef VRC_TARGET

}  // namespace avx2

const Yuv422Kernels &yuv422_kernels_sse2() { return sse2::kKernels; }
const Yuv422Kernels &yuv422_kernels_avx2() { return avx2::kKernels; }

}  // namespace vrc::convert
