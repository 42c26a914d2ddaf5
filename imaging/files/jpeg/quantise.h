// Quantisation of the encoder: each coefficient is multiplied by its table entry's rounded 16.16
// reciprocal and rounded to the nearest integer (halves away from zero). The quantised block stays
// in natural order; the block coder visits it in zigzag order. The scalar and the SSE2 version
// give the same values.
#pragma once

#include "imaging/convert/simd_level.h"

#include <cstdint>

namespace vrc::jpeg {

// The reciprocals of one quantisation table (held in zigzag order in the state block) in natural
// order, and limited to 16 bits for the vector version (a reciprocal of 65536, the entry 1, gives
// the same result as 65535 for every coefficient the forward DCT produces).
struct QuantiserTable {
  uint32_t natural[64];
  uint16_t natural16[64];
};

QuantiserTable quantiser_table(const uint32_t reciprocals_zigzag[64]);

// Quantises 64 coefficients in natural order.
using Quantise = void (*)(const int16_t *coefficients, const QuantiserTable &table,
                          int16_t *quantised);

void quantise_scalar(const int16_t *coefficients, const QuantiserTable &table, int16_t *quantised);
void quantise_sse2(const int16_t *coefficients, const QuantiserTable &table, int16_t *quantised);

Quantise quantiser(convert::SimdLevel level);

}  // namespace vrc::jpeg
