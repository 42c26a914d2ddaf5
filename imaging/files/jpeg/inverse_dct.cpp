// The scalar inverse DCT (after the IJG integer method): pass 1 transforms each column keeping two
// extra bits, pass 2 each row. Sums are formed in 64 bits and reduced modulo 2^32 where the
// vector version's 32-bit lanes would wrap, so that both agree on any input.
#include "imaging/files/jpeg/inverse_dct.h"

#include "imaging/files/jpeg/standard_tables.h"

#include <algorithm>
#include <cstring>

namespace vrc::jpeg {
namespace {

constexpr int32_t wrap32(int64_t value) {
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value)));
}
constexpr int32_t descale(int64_t value, int bits) {
  return wrap32(value + (int64_t{1} << (bits - 1))) >> bits;
}
constexpr int16_t saturate16(int32_t value) {
  return static_cast<int16_t>(std::clamp<int32_t>(value, -32768, 32767));
}
constexpr uint8_t to_sample(int32_t value) {
  return static_cast<uint8_t>(std::clamp<int32_t>(saturate16(saturate16(value) + 128), 0, 255));
}

// One 1-D transform of in[0], in[step], ... into the eight values out[0..7] (before saturation).
void transform_1d(const int16_t *in, int step, int bits, int32_t *out) {
  const int64_t in0 = in[0], in1 = in[step], in2 = in[2 * step], in3 = in[3 * step];
  const int64_t in4 = in[4 * step], in5 = in[5 * step], in6 = in[6 * step], in7 = in[7 * step];

  // Even part.
  const int64_t z1 = (in2 + in6) * kFix_0_541196100;
  const int64_t tmp2 = z1 - in6 * kFix_1_847759065;
  const int64_t tmp3 = z1 + in2 * kFix_0_765366865;
  const int64_t tmp0 = (in0 + in4) * (int64_t{1} << kConstBits);
  const int64_t tmp1 = (in0 - in4) * (int64_t{1} << kConstBits);
  const int64_t tmp10 = tmp0 + tmp3, tmp13 = tmp0 - tmp3;
  const int64_t tmp11 = tmp1 + tmp2, tmp12 = tmp1 - tmp2;

  // Odd part.
  const int64_t z5 = (in7 + in5 + in3 + in1) * kFix_1_175875602;
  const int64_t za = -(in7 + in1) * kFix_0_899976223;
  const int64_t zb = -(in5 + in3) * kFix_2_562915447;
  const int64_t zc = -(in7 + in3) * kFix_1_961570560 + z5;
  const int64_t zd = -(in5 + in1) * kFix_0_390180644 + z5;
  const int64_t odd0 = in7 * kFix_0_298631336 + za + zc;
  const int64_t odd1 = in5 * kFix_2_053119869 + zb + zd;
  const int64_t odd2 = in3 * kFix_3_072711026 + zb + zc;
  const int64_t odd3 = in1 * kFix_1_501321110 + za + zd;

  out[0] = descale(tmp10 + odd3, bits);
  out[7] = descale(tmp10 - odd3, bits);
  out[1] = descale(tmp11 + odd2, bits);
  out[6] = descale(tmp11 - odd2, bits);
  out[2] = descale(tmp12 + odd1, bits);
  out[5] = descale(tmp12 - odd1, bits);
  out[3] = descale(tmp13 + odd0, bits);
  out[4] = descale(tmp13 - odd0, bits);
}

}  // namespace

void inverse_dct_scalar(const int16_t *coefficients, uint8_t *samples, std::ptrdiff_t stride) {
  int16_t columns[64];  // pass 1 results: columns[row * 8 + column]
  for (int col = 0; col < 8; ++col) {
    int32_t out[8];
    transform_1d(coefficients + col, 8, kConstBits - kPass1Bits, out);
    for (int row = 0; row < 8; ++row) columns[row * 8 + col] = saturate16(out[row]);
  }
  for (int row = 0; row < 8; ++row) {
    int32_t out[8];
    transform_1d(columns + row * 8, 1, kConstBits + kPass1Bits + 3, out);
    for (int col = 0; col < 8; ++col) samples[row * stride + col] = to_sample(out[col]);
  }
}

void inverse_dct_dc_only(int16_t dc, uint8_t *samples, std::ptrdiff_t stride) {
  // Pass 1 gives dc << kPass1Bits (saturated) in every row of column 0 and 0 elsewhere; pass 2
  // then gives that value x 2^13 descaled by 18 bits in every sample.
  const int16_t column = saturate16(int32_t{dc} * (1 << kPass1Bits));
  const uint8_t value =
      to_sample(descale(int64_t{column} << kConstBits, kConstBits + kPass1Bits + 3));
  for (int row = 0; row < 8; ++row) std::memset(samples + row * stride, value, 8);
}

InverseDct inverse_dct(convert::SimdLevel level) {
  return level == convert::SimdLevel::scalar ? &inverse_dct_scalar : &inverse_dct_sse2;
}

namespace {

template <InverseDct kSingle>
void pair_of_singles(const int16_t *in_a, const int16_t *in_b, uint8_t *a, std::ptrdiff_t stride_a,
                     uint8_t *b, std::ptrdiff_t stride_b) {
  kSingle(in_a, a, stride_a);
  kSingle(in_b, b, stride_b);
}

}  // namespace

InverseDctPair inverse_dct_pair(convert::SimdLevel level) {
  switch (level) {
    case convert::SimdLevel::avx2: return &inverse_dct_pair_avx2;
    case convert::SimdLevel::sse2: return &pair_of_singles<&inverse_dct_sse2>;
    default: return &pair_of_singles<&inverse_dct_scalar>;
  }
}

}  // namespace vrc::jpeg
