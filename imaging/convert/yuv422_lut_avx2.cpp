// AVX2 versions of the table-driven YUV 4:2:2 kernels: eight pixels' table indices are formed in
// 32-bit lanes and their entries fetched with one gather; the 24/32-bit layouts widen the 5-6-5
// value in the lanes. (Without a gather instruction, SSE2 gains nothing over the scalar lookups.)
#include "imaging/convert/simd_store.h"
#include "imaging/convert/yuv422_rows.h"

#include <immintrin.h>

namespace vrc::convert {
namespace {

#define VRC_TARGET __attribute__((target("avx2")))

// The 16-bit table entries of four pixel pairs (16 bytes of YUV 4:2:2), one per 32-bit lane.
VRC_TARGET inline __m256i gather_entries(const uint8_t *yuv, const uint8_t *table) {
  const __m128i pairs = _mm_loadu_si128(reinterpret_cast<const __m128i *>(yuv));
  // Each pair's word (Y0 | U << 8 | Y1 << 16 | V << 24) in both of its pixels' lanes.
  const __m256i words = _mm256_permutevar8x32_epi32(_mm256_castsi128_si256(pairs),
                                                    _mm256_setr_epi32(0, 0, 1, 1, 2, 2, 3, 3));
  const __m256i y = _mm256_srlv_epi32(words, _mm256_setr_epi32(0, 16, 0, 16, 0, 16, 0, 16));
  const __m256i index = _mm256_or_si256(
      _mm256_or_si256(_mm256_and_si256(_mm256_slli_epi32(y, 11), _mm256_set1_epi32(0x7F000)),
                      _mm256_and_si256(_mm256_srli_epi32(words, 4), _mm256_set1_epi32(0xFC0))),
      _mm256_srli_epi32(words, 26));
  const __m256i entries = _mm256_i32gather_epi32(reinterpret_cast<const int *>(table), index, 2);
  return _mm256_and_si256(entries, _mm256_set1_epi32(0xFFFF));
}

// 5-bit and 6-bit fields widened to 8 bits by repeating their top bits.
VRC_TARGET inline __m256i widen5(__m256i c) {
  return _mm256_or_si256(_mm256_slli_epi32(c, 3), _mm256_srli_epi32(c, 2));
}
VRC_TARGET inline __m256i widen6(__m256i c) {
  return _mm256_or_si256(_mm256_slli_epi32(c, 2), _mm256_srli_epi32(c, 4));
}

// An 8-bit component moved to byte `Byte` of its lane.
template <int Byte>
VRC_TARGET inline __m256i place(__m256i c) {
  return _mm256_slli_epi32(c, 8 * Byte);
}

template <RgbLayout Layout>
VRC_TARGET void yuv422_lut_row_avx2(const uint8_t *yuv, uint8_t *out, uint32_t pairs,
                                    const uint8_t *table) {
  constexpr uint32_t kOutBytes = 8 * layout_bytes(Layout);
  uint32_t done = 0;
  for (; done + 4 <= pairs; done += 4, yuv += 16, out += kOutBytes) {
    const __m256i v = gather_entries(yuv, table);
    if constexpr (layout_bytes(Layout) == 2) {
      const __m256i words = _mm256_permute4x64_epi64(_mm256_packus_epi32(v, v), 0x08);
      _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm256_castsi256_si128(words));
    } else {
      const __m256i mask5 = _mm256_set1_epi32(31);
      const __m256i r = widen5(_mm256_srli_epi32(v, 11));
      const __m256i g = widen6(_mm256_and_si256(_mm256_srli_epi32(v, 5), _mm256_set1_epi32(63)));
      const __m256i b = widen5(_mm256_and_si256(v, mask5));
      __m256i pixels;
      if constexpr (Layout == RgbLayout::rgbx32 || Layout == RgbLayout::rgb24) {
        pixels = _mm256_or_si256(_mm256_or_si256(place<0>(r), place<1>(g)), place<2>(b));
      } else if constexpr (Layout == RgbLayout::bgrx32 || Layout == RgbLayout::bgr24) {
        pixels = _mm256_or_si256(_mm256_or_si256(place<0>(b), place<1>(g)), place<2>(r));
      } else if constexpr (Layout == RgbLayout::xbgr32) {
        pixels = _mm256_or_si256(_mm256_or_si256(place<1>(b), place<2>(g)), place<3>(r));
      } else {
        pixels = _mm256_or_si256(_mm256_or_si256(place<1>(r), place<2>(g)), place<3>(b));
      }
      if constexpr (layout_bytes(Layout) == 3) {
        store_lanes_as_3_bytes(out, pixels);
      } else {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), pixels);
      }
    }
  }
  yuv422_lut_kernel(Layout, SimdLevel::scalar)(yuv, out, pairs - done, table);
}

#undef VRC_TARGET

constexpr Yuv422LutKernel kKernels[kLayoutCount] = {
    yuv422_lut_row_avx2<RgbLayout::rgb24>,  yuv422_lut_row_avx2<RgbLayout::bgr24>,
    yuv422_lut_row_avx2<RgbLayout::rgbx32>, yuv422_lut_row_avx2<RgbLayout::bgrx32>,
    yuv422_lut_row_avx2<RgbLayout::xbgr32>, yuv422_lut_row_avx2<RgbLayout::xrgb32>,
    yuv422_lut_row_avx2<RgbLayout::rgb16>,  yuv422_lut_row_avx2<RgbLayout::rgb15>};

}  // namespace

Yuv422LutKernel yuv422_lut_kernel_avx2(RgbLayout layout) {
  return kKernels[static_cast<int>(layout)];
}

}  // namespace vrc::convert
