// The scalar forward DCT (after the IJG integer method): pass 1 transforms each row and keeps two
// extra bits of precision, pass 2 each column and removes them together with the factor 8 of the
// unnormalised transform.
#include "imaging/files/jpeg/forward_dct.h"

#include "imaging/files/jpeg/standard_tables.h"

namespace vrc::jpeg {
namespace {

constexpr int32_t descale(int32_t value, int bits) { return (value + (1 << (bits - 1))) >> bits; }

// One 1-D transform of the eight values at in[0], in[step], ... into out[0], out[step], ...
// Pass 1 scales the even outputs up by kPass1Bits; pass 2 divides everything by 8 as well.
template <bool kFinalPass>
void transform_1d(const int32_t *in, int step, int32_t *out) {
  const int32_t tmp0 = in[0] + in[7 * step], tmp7 = in[0] - in[7 * step];
  const int32_t tmp1 = in[step] + in[6 * step], tmp6 = in[step] - in[6 * step];
  const int32_t tmp2 = in[2 * step] + in[5 * step], tmp5 = in[2 * step] - in[5 * step];
  const int32_t tmp3 = in[3 * step] + in[4 * step], tmp4 = in[3 * step] - in[4 * step];

  // Even part.
  const int32_t tmp10 = tmp0 + tmp3, tmp13 = tmp0 - tmp3;
  const int32_t tmp11 = tmp1 + tmp2, tmp12 = tmp1 - tmp2;
  const int odd_bits = kFinalPass ? kConstBits + kPass1Bits + 3 : kConstBits - kPass1Bits;
  if constexpr (kFinalPass) {
    out[0] = descale(tmp10 + tmp11, kPass1Bits + 3);
    out[4 * step] = descale(tmp10 - tmp11, kPass1Bits + 3);
  } else {
    out[0] = (tmp10 + tmp11) * (1 << kPass1Bits);
    out[4 * step] = (tmp10 - tmp11) * (1 << kPass1Bits);
  }
  const int32_t z1 = (tmp12 + tmp13) * kFix_0_541196100;
  out[2 * step] = descale(z1 + tmp13 * kFix_0_765366865, odd_bits);
  out[6 * step] = descale(z1 - tmp12 * kFix_1_847759065, odd_bits);

  // Odd part (T.81 Figure A.3.3's rotations, factored as in Loeffler et al.).
  const int32_t z5 = (tmp4 + tmp5 + tmp6 + tmp7) * kFix_1_175875602;
  const int32_t za = -(tmp4 + tmp7) * kFix_0_899976223;
  const int32_t zb = -(tmp5 + tmp6) * kFix_2_562915447;
  const int32_t zc = -(tmp4 + tmp6) * kFix_1_961570560 + z5;
  const int32_t zd = -(tmp5 + tmp7) * kFix_0_390180644 + z5;
  out[7 * step] = descale(tmp4 * kFix_0_298631336 + za + zc, odd_bits);
  out[5 * step] = descale(tmp5 * kFix_2_053119869 + zb + zd, odd_bits);
  out[3 * step] = descale(tmp6 * kFix_3_072711026 + zb + zc, odd_bits);
  out[step] = descale(tmp7 * kFix_1_501321110 + za + zd, odd_bits);
}

}  // namespace

void forward_dct_scalar(const uint8_t *samples, std::ptrdiff_t stride, int16_t *coefficients) {
  int32_t block[64];
  for (int row = 0; row < 8; ++row)
    for (int col = 0; col < 8; ++col) block[row * 8 + col] = samples[row * stride + col] - 128;
  int32_t rows[64];
  for (int row = 0; row < 8; ++row) transform_1d<false>(block + row * 8, 1, rows + row * 8);
  int32_t columns[64];
  for (int col = 0; col < 8; ++col) transform_1d<true>(rows + col, 8, columns + col);
  for (int i = 0; i < 64; ++i) coefficients[i] = static_cast<int16_t>(columns[i]);
}

ForwardDct forward_dct(convert::SimdLevel level) {
  return level == convert::SimdLevel::scalar ? &forward_dct_scalar : &forward_dct_sse2;
}

namespace {

template <ForwardDct kSingle>
void pair_of_singles(const uint8_t *a, std::ptrdiff_t stride_a, const uint8_t *b,
                     std::ptrdiff_t stride_b, int16_t *out_a, int16_t *out_b) {
  kSingle(a, stride_a, out_a);
  kSingle(b, stride_b, out_b);
}

}  // namespace

ForwardDctPair forward_dct_pair(convert::SimdLevel level) {
  switch (level) {
    case convert::SimdLevel::avx2: return &forward_dct_pair_avx2;
    case convert::SimdLevel::sse2: return &pair_of_singles<&forward_dct_sse2>;
    default: return &pair_of_singles<&forward_dct_scalar>;
  }
}

}  // namespace vrc::jpeg
