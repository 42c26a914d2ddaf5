// Reciprocal quantisation, scalar and SSE2.
#include "imaging/files/jpeg/quantise.h"

#include "imaging/files/jpeg/standard_tables.h"

#include <emmintrin.h>
#include <algorithm>
#include <cstdlib>

namespace vrc::jpeg {

QuantiserTable quantiser_table(const uint32_t reciprocals_zigzag[64]) {
  QuantiserTable table;
  for (int k = 0; k < 64; ++k) {
    const int n = kZigzagToNatural[k];
    table.natural[n] = reciprocals_zigzag[k];
    table.natural16[n] = static_cast<uint16_t>(std::min<uint32_t>(reciprocals_zigzag[k], 65535));
  }
  return table;
}

void quantise_scalar(const int16_t *coefficients, const QuantiserTable &table, int16_t *quantised) {
  for (int n = 0; n < 64; ++n) {
    const int32_t value = coefficients[n];
    const int32_t magnitude =
        static_cast<int32_t>((uint32_t(std::abs(value)) * table.natural[n] + 32768u) >> 16);
    quantised[n] = static_cast<int16_t>(value < 0 ? -magnitude : magnitude);
  }
}

void quantise_sse2(const int16_t *coefficients, const QuantiserTable &table, int16_t *quantised) {
  for (int i = 0; i < 64; i += 8) {
    const __m128i value = _mm_loadu_si128(reinterpret_cast<const __m128i *>(coefficients + i));
    const __m128i reciprocal =
        _mm_loadu_si128(reinterpret_cast<const __m128i *>(table.natural16 + i));
    const __m128i sign = _mm_srai_epi16(value, 15);
    const __m128i magnitude = _mm_sub_epi16(_mm_xor_si128(value, sign), sign);
    // (magnitude x reciprocal + 2^15) >> 16: the high half plus the carry of the rounding.
    const __m128i high = _mm_mulhi_epu16(magnitude, reciprocal);
    const __m128i carry = _mm_srli_epi16(_mm_mullo_epi16(magnitude, reciprocal), 15);
    const __m128i rounded = _mm_add_epi16(high, carry);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(quantised + i),
                     _mm_sub_epi16(_mm_xor_si128(rounded, sign), sign));
  }
}

Quantise quantiser(convert::SimdLevel level) {
  return level == convert::SimdLevel::scalar ? &quantise_scalar : &quantise_sse2;
}

}  // namespace vrc::jpeg
