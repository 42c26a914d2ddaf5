// Quantisation of the encoder: each coefficient is multiplied by its table entry's rounded 16.16
// reciprocal and rounded to the nearest integer (halves away from zero), giving the quantised
// block in zigzag order. The scalar and the SSE2 version give the same values.
#pragma once

#include "imaging/convert/simd_level.h"

#include <cstdint>

namespace vrc::jpeg {

// The reciprocals of one quantisation table: as held in the state block (zigzag order), and in
// natural order limited to 16 bits for the vector version (a reciprocal of 65536, the entry 1,
// gives the same result as 65535 for every coefficient the forward DCT produces).
struct QuantiserTable {
  uint32_t zigzag[64];
  uint16_t natural16[64];
};

QuantiserTable quantiser_table(const uint32_t reciprocals_zigzag[64]);

// Quantises 64 coefficients in natural order into `zigzag`.
using Quantise = void (*)(const int16_t *coefficients, const QuantiserTable &table,
                          int16_t *zigzag);

void quantise_scalar(const int16_t *coefficients, const QuantiserTable &table, int16_t *zigzag);
void quantise_sse2(const int16_t *coefficients, const QuantiserTable &table, int16_t *zigzag);

Quantise quantiser(convert::SimdLevel level);

}  // namespace vrc::jpeg
