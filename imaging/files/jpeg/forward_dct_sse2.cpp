// The SSE2 forward DCT: one block, a row per register.
#include "imaging/files/jpeg/dct_passes.h"
#include "imaging/files/jpeg/forward_dct.h"

namespace vrc::jpeg {

void forward_dct_sse2(const uint8_t *samples, std::ptrdiff_t stride, int16_t *coefficients) {
  Block<Sse2Lanes> b;
  const __m128i zero = _mm_setzero_si128();
  const __m128i centre = _mm_set1_epi16(128);
  for (int row = 0; row < 8; ++row) {
    const __m128i bytes =
        _mm_loadl_epi64(reinterpret_cast<const __m128i *>(samples + row * stride));
    b.r[row] = _mm_sub_epi16(_mm_unpacklo_epi8(bytes, zero), centre);
  }
  forward_transform(b);
  for (int row = 0; row < 8; ++row)
    _mm_storeu_si128(reinterpret_cast<__m128i *>(coefficients + row * 8), b.r[row]);
}

}  // namespace vrc::jpeg
