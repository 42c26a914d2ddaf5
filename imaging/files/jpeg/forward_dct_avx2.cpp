// The AVX2 forward DCT: two blocks at once, one in each 128-bit half of the registers. This unit
// is compiled for AVX2 and runs only where the processor has it.
#include "imaging/files/jpeg/dct_passes.h"
#include "imaging/files/jpeg/forward_dct.h"

namespace vrc::jpeg {

void forward_dct_pair_avx2(const uint8_t *a, std::ptrdiff_t stride_a, const uint8_t *b,
                           std::ptrdiff_t stride_b, int16_t *out_a, int16_t *out_b) {
  Block<Avx2Lanes> block;
  const __m256i centre = _mm256_set1_epi16(128);
  for (int row = 0; row < 8; ++row) {
    const __m128i rows =
        _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(a + row * stride_a)),
                           _mm_loadl_epi64(reinterpret_cast<const __m128i *>(b + row * stride_b)));
    block.r[row] = _mm256_sub_epi16(_mm256_cvtepu8_epi16(rows), centre);
  }
  forward_transform(block);
  for (int row = 0; row < 8; ++row) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out_a + row * 8),
                     _mm256_castsi256_si128(block.r[row]));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out_b + row * 8),
                     _mm256_extracti128_si256(block.r[row], 1));
  }
}

}  // namespace vrc::jpeg
