// The SSE2 forward DCT: the same integer arithmetic as the scalar version, eight rows (or columns)
// at a time. Every rotation is written as products of interleaved pairs with combined constants,
// which gives exactly the scalar sums.
#include "imaging/files/jpeg/forward_dct.h"

#include "imaging/files/jpeg/sse2_block.h"
#include "imaging/files/jpeg/standard_tables.h"

namespace vrc::jpeg {
namespace {

using namespace sse2;

// One pass over the block: register i holds input i of eight 1-D transforms; the outputs replace
// the inputs.
template <bool kFinalPass>
void pass(Block &b) {
  constexpr int kOddBits = kFinalPass ? kConstBits + kPass1Bits + 3 : kConstBits - kPass1Bits;
  const __m128i tmp0 = _mm_add_epi16(b.r[0], b.r[7]), tmp7 = _mm_sub_epi16(b.r[0], b.r[7]);
  const __m128i tmp1 = _mm_add_epi16(b.r[1], b.r[6]), tmp6 = _mm_sub_epi16(b.r[1], b.r[6]);
  const __m128i tmp2 = _mm_add_epi16(b.r[2], b.r[5]), tmp5 = _mm_sub_epi16(b.r[2], b.r[5]);
  const __m128i tmp3 = _mm_add_epi16(b.r[3], b.r[4]), tmp4 = _mm_sub_epi16(b.r[3], b.r[4]);

  const __m128i tmp10 = _mm_add_epi16(tmp0, tmp3), tmp13 = _mm_sub_epi16(tmp0, tmp3);
  const __m128i tmp11 = _mm_add_epi16(tmp1, tmp2), tmp12 = _mm_sub_epi16(tmp1, tmp2);
  if constexpr (kFinalPass) {
    const Pairs even = interleave(tmp10, tmp11);
    b.r[0] = descale<kPass1Bits + 3>(products(even, pair_constant(1, 1)));
    b.r[4] = descale<kPass1Bits + 3>(products(even, pair_constant(1, -1)));
  } else {
    b.r[0] = _mm_slli_epi16(_mm_add_epi16(tmp10, tmp11), kPass1Bits);
    b.r[4] = _mm_slli_epi16(_mm_sub_epi16(tmp10, tmp11), kPass1Bits);
  }
  const Pairs p13_12 = interleave(tmp13, tmp12);
  b.r[2] = descale<kOddBits>(
      products(p13_12, pair_constant(kFix_0_541196100 + kFix_0_765366865, kFix_0_541196100)));
  b.r[6] = descale<kOddBits>(
      products(p13_12, pair_constant(kFix_0_541196100, kFix_0_541196100 - kFix_1_847759065)));

  const Pairs z34 = interleave(_mm_add_epi16(tmp4, tmp6), _mm_add_epi16(tmp5, tmp7));
  const Wide zc =
      products(z34, pair_constant(kFix_1_175875602 - kFix_1_961570560, kFix_1_175875602));
  const Wide zd =
      products(z34, pair_constant(kFix_1_175875602, kFix_1_175875602 - kFix_0_390180644));
  const Pairs p47 = interleave(tmp4, tmp7);
  const Pairs p56 = interleave(tmp5, tmp6);
  b.r[7] = descale<kOddBits>(add(
      products(p47, pair_constant(kFix_0_298631336 - kFix_0_899976223, -kFix_0_899976223)), zc));
  b.r[1] = descale<kOddBits>(add(
      products(p47, pair_constant(-kFix_0_899976223, kFix_1_501321110 - kFix_0_899976223)), zd));
  b.r[5] = descale<kOddBits>(add(
      products(p56, pair_constant(kFix_2_053119869 - kFix_2_562915447, -kFix_2_562915447)), zd));
  b.r[3] = descale<kOddBits>(add(
      products(p56, pair_constant(-kFix_2_562915447, kFix_3_072711026 - kFix_2_562915447)), zc));
}

}  // namespace

void forward_dct_sse2(const uint8_t *samples, std::ptrdiff_t stride, int16_t *coefficients) {
  Block b;
  const __m128i zero = _mm_setzero_si128();
  const __m128i centre = _mm_set1_epi16(128);
  for (int row = 0; row < 8; ++row) {
    const __m128i bytes =
        _mm_loadl_epi64(reinterpret_cast<const __m128i *>(samples + row * stride));
    b.r[row] = _mm_sub_epi16(_mm_unpacklo_epi8(bytes, zero), centre);
  }
  transpose(b);
  pass<false>(b);
  transpose(b);
  pass<true>(b);
  for (int row = 0; row < 8; ++row)
    _mm_storeu_si128(reinterpret_cast<__m128i *>(coefficients + row * 8), b.r[row]);
}

}  // namespace vrc::jpeg
