// Inverse 8 x 8 DCT of the decoder: the integer Loeffler-Ligtenberg-Moschytz method with the same
// 13-bit constants as the forward transform, columns then rows; results + 128 clamped to 0..255.
//
// Arithmetic contract shared by the scalar, SSE2 and AVX2 (two blocks at once) versions, so that
// both give the same pixels for every input, damaged streams included: products and sums are taken
// modulo 2^32, each pass rounds by adding half and shifting right arithmetically, the first pass's
// results are saturated to 16 bits, and the second pass's results are saturated to 16 bits before
// 128 is added (again saturating) and the sum clamped to 0..255.
#pragma once

#include "imaging/convert/simd_level.h"

#include <cstddef>
#include <cstdint>

namespace vrc::jpeg {

// Transforms 64 dequantised coefficients (natural order) into 8 x 8 samples at `samples`, rows
// `stride` bytes apart.
using InverseDct = void (*)(const int16_t *coefficients, uint8_t *samples, std::ptrdiff_t stride);

void inverse_dct_scalar(const int16_t *coefficients, uint8_t *samples, std::ptrdiff_t stride);
void inverse_dct_sse2(const int16_t *coefficients, uint8_t *samples, std::ptrdiff_t stride);

InverseDct inverse_dct(convert::SimdLevel level);

// Transforms two blocks, `in_a` into the samples at `a` and `in_b` into those at `b`.
using InverseDctPair = void (*)(const int16_t *in_a, const int16_t *in_b, uint8_t *a,
                                std::ptrdiff_t stride_a, uint8_t *b, std::ptrdiff_t stride_b);

void inverse_dct_pair_avx2(const int16_t *in_a, const int16_t *in_b, uint8_t *a,
                           std::ptrdiff_t stride_a, uint8_t *b, std::ptrdiff_t stride_b);

InverseDctPair inverse_dct_pair(convert::SimdLevel level);

// The block of a DC coefficient alone (every other coefficient 0), under the same contract:
// fills the 8 x 8 samples with one value.
void inverse_dct_dc_only(int16_t dc, uint8_t *samples, std::ptrdiff_t stride);

}  // namespace vrc::jpeg
