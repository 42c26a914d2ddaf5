// The SSE2 inverse DCT: one block, a row per register.
#include "imaging/files/jpeg/dct_passes.h"
#include "imaging/files/jpeg/inverse_dct.h"

namespace vrc::jpeg {

void inverse_dct_sse2(const int16_t *coefficients, uint8_t *samples, std::ptrdiff_t stride) {
  Block<Sse2Lanes> b;
  for (int row = 0; row < 8; ++row)
    b.r[row] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(coefficients + row * 8));
  inverse_transform(b);
  const __m128i centre = _mm_set1_epi16(128);
  for (int row = 0; row < 8; ++row) {
    const __m128i shifted = _mm_adds_epi16(b.r[row], centre);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(samples + row * stride),
                     _mm_packus_epi16(shifted, shifted));
  }
}

}  // namespace vrc::jpeg
