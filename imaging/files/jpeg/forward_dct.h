// Forward 8 x 8 DCT of the encoder: the integer Loeffler-Ligtenberg-Moschytz method with 13-bit
// constants (T.81 A.3.3), rows then columns, giving coefficients at their true scale. The scalar
// SSE2 (one block) and AVX2 (two blocks at once) versions give the same coefficients for every
// block.
#pragma once

#include "imaging/convert/simd_level.h"

#include <cstddef>
#include <cstdint>

namespace vrc::jpeg {

// Transforms the 8 x 8 samples at `samples` (rows `stride` bytes apart), level-shifted by -128,
// into 64 coefficients in natural order.
using ForwardDct = void (*)(const uint8_t *samples, std::ptrdiff_t stride, int16_t *coefficients);

void forward_dct_scalar(const uint8_t *samples, std::ptrdiff_t stride, int16_t *coefficients);
void forward_dct_sse2(const uint8_t *samples, std::ptrdiff_t stride, int16_t *coefficients);

ForwardDct forward_dct(convert::SimdLevel level);

// Transforms two blocks, `a` into `out_a` and `b` into `out_b`.
using ForwardDctPair = void (*)(const uint8_t *a, std::ptrdiff_t stride_a, const uint8_t *b,
                                std::ptrdiff_t stride_b, int16_t *out_a, int16_t *out_b);

void forward_dct_pair_avx2(const uint8_t *a, std::ptrdiff_t stride_a, const uint8_t *b,
                           std::ptrdiff_t stride_b, int16_t *out_a, int16_t *out_b);

ForwardDctPair forward_dct_pair(convert::SimdLevel level);

}  // namespace vrc::jpeg
