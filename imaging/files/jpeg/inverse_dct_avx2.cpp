// The AVX2 inverse DCT: two blocks at once, one in each 128-bit half of the registers. This unit
// is compiled for AVX2 and runs only where the processor has it.
#include "imaging/files/jpeg/dct_passes.h"
#include "imaging/files/jpeg/inverse_dct.h"

namespace vrc::jpeg {

void inverse_dct_pair_avx2(const int16_t *in_a, const int16_t *in_b, uint8_t *a,
                           std::ptrdiff_t stride_a, uint8_t *b, std::ptrdiff_t stride_b) {
  Block<Avx2Lanes> block;
  for (int row = 0; row < 8; ++row)
    block.r[row] = _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in_a + row * 8))),
        _mm_loadu_si128(reinterpret_cast<const __m128i *>(in_b + row * 8)), 1);
  inverse_transform(block);
  const __m256i centre = _mm256_set1_epi16(128);
  for (int row = 0; row < 8; ++row) {
    const __m256i shifted = _mm256_adds_epi16(block.r[row], centre);
    const __m256i bytes = _mm256_packus_epi16(shifted, shifted);  // a's row, then b's, per half
    _mm_storel_epi64(reinterpret_cast<__m128i *>(a + row * stride_a),
                     _mm256_castsi256_si128(bytes));
    _mm_storel_epi64(reinterpret_cast<__m128i *>(b + row * stride_b),
                     _mm256_extracti128_si256(bytes, 1));
  }
}

}  // namespace vrc::jpeg
