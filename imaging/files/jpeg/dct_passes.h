// The passes of the vector DCTs, written once over the lane operations of simd_lanes.h. A block is
// eight registers of eight 16-bit values (with 256-bit registers, two blocks side by side). Every
// rotation is formed from products of interleaved pairs with combined constants, which gives
// exactly the sums of the scalar transforms; 32-bit sums wrap as theirs are defined to.
#pragma once

#include "imaging/files/jpeg/simd_lanes.h"
#include "imaging/files/jpeg/standard_tables.h"

namespace vrc::jpeg {
namespace {

template <class L>
struct Block {
  typename L::V r[8];
};

template <class L>
void transpose(Block<L> &b) {
  using V = typename L::V;
  const V a0 = L::unpacklo16(b.r[0], b.r[1]), a1 = L::unpackhi16(b.r[0], b.r[1]);
  const V a2 = L::unpacklo16(b.r[2], b.r[3]), a3 = L::unpackhi16(b.r[2], b.r[3]);
  const V a4 = L::unpacklo16(b.r[4], b.r[5]), a5 = L::unpackhi16(b.r[4], b.r[5]);
  const V a6 = L::unpacklo16(b.r[6], b.r[7]), a7 = L::unpackhi16(b.r[6], b.r[7]);
  const V c0 = L::unpacklo32(a0, a2), c1 = L::unpackhi32(a0, a2);
  const V c2 = L::unpacklo32(a1, a3), c3 = L::unpackhi32(a1, a3);
  const V c4 = L::unpacklo32(a4, a6), c5 = L::unpackhi32(a4, a6);
  const V c6 = L::unpacklo32(a5, a7), c7 = L::unpackhi32(a5, a7);
  b.r[0] = L::unpacklo64(c0, c4);
  b.r[1] = L::unpackhi64(c0, c4);
  b.r[2] = L::unpacklo64(c1, c5);
  b.r[3] = L::unpackhi64(c1, c5);
  b.r[4] = L::unpacklo64(c2, c6);
  b.r[5] = L::unpackhi64(c2, c6);
  b.r[6] = L::unpacklo64(c3, c7);
  b.r[7] = L::unpackhi64(c3, c7);
}

// Eight 32-bit sums a[i] * ca + b[i] * cb (two registers: lanes 0-3 and 4-7 of each half).
template <class L>
struct Wide {
  typename L::V lo, hi;
};
template <class L>
struct Pairs {
  typename L::V lo, hi;
};
template <class L>
Pairs<L> interleave(typename L::V a, typename L::V b) {
  return {L::unpacklo16(a, b), L::unpackhi16(a, b)};
}
template <class L>
Wide<L> products(const Pairs<L> &p, int ca, int cb) {
  const typename L::V constants = L::pair(static_cast<short>(ca), static_cast<short>(cb));
  return {L::madd(p.lo, constants), L::madd(p.hi, constants)};
}
template <class L>
Wide<L> add(const Wide<L> &a, const Wide<L> &b) {
  return {L::add32(a.lo, b.lo), L::add32(a.hi, b.hi)};
}
template <class L>
Wide<L> sub(const Wide<L> &a, const Wide<L> &b) {
  return {L::sub32(a.lo, b.lo), L::sub32(a.hi, b.hi)};
}
// (value + 2^(bits-1)) >> bits, packed to 16 bits with saturation.
template <int kBits, class L>
typename L::V descale(const Wide<L> &w) {
  const typename L::V round = L::set32(1 << (kBits - 1));
  return L::packs32(L::template srai32<kBits>(L::add32(w.lo, round)),
                    L::template srai32<kBits>(L::add32(w.hi, round)));
}

// One forward pass: register i holds input i of the 1-D transforms; outputs replace inputs.
template <class L, bool kFinalPass>
void forward_pass(Block<L> &b) {
  using V = typename L::V;
  constexpr int kOddBits = kFinalPass ? kConstBits + kPass1Bits + 3 : kConstBits - kPass1Bits;
  const V tmp0 = L::add16(b.r[0], b.r[7]), tmp7 = L::sub16(b.r[0], b.r[7]);
  const V tmp1 = L::add16(b.r[1], b.r[6]), tmp6 = L::sub16(b.r[1], b.r[6]);
  const V tmp2 = L::add16(b.r[2], b.r[5]), tmp5 = L::sub16(b.r[2], b.r[5]);
  const V tmp3 = L::add16(b.r[3], b.r[4]), tmp4 = L::sub16(b.r[3], b.r[4]);

  const V tmp10 = L::add16(tmp0, tmp3), tmp13 = L::sub16(tmp0, tmp3);
  const V tmp11 = L::add16(tmp1, tmp2), tmp12 = L::sub16(tmp1, tmp2);
  if constexpr (kFinalPass) {
    const Pairs<L> even = interleave<L>(tmp10, tmp11);
    b.r[0] = descale<kPass1Bits + 3>(products(even, 1, 1));
    b.r[4] = descale<kPass1Bits + 3>(products(even, 1, -1));
  } else {
    b.r[0] = L::template slli16<kPass1Bits>(L::add16(tmp10, tmp11));
    b.r[4] = L::template slli16<kPass1Bits>(L::sub16(tmp10, tmp11));
  }
  const Pairs<L> p13_12 = interleave<L>(tmp13, tmp12);
  b.r[2] =
      descale<kOddBits>(products(p13_12, kFix_0_541196100 + kFix_0_765366865, kFix_0_541196100));
  b.r[6] =
      descale<kOddBits>(products(p13_12, kFix_0_541196100, kFix_0_541196100 - kFix_1_847759065));

  const Pairs<L> z34 = interleave<L>(L::add16(tmp4, tmp6), L::add16(tmp5, tmp7));
  const Wide<L> zc = products(z34, kFix_1_175875602 - kFix_1_961570560, kFix_1_175875602);
  const Wide<L> zd = products(z34, kFix_1_175875602, kFix_1_175875602 - kFix_0_390180644);
  const Pairs<L> p47 = interleave<L>(tmp4, tmp7);
  const Pairs<L> p56 = interleave<L>(tmp5, tmp6);
  b.r[7] = descale<kOddBits>(
      add(products(p47, kFix_0_298631336 - kFix_0_899976223, -kFix_0_899976223), zc));
  b.r[1] = descale<kOddBits>(
      add(products(p47, -kFix_0_899976223, kFix_1_501321110 - kFix_0_899976223), zd));
  b.r[5] = descale<kOddBits>(
      add(products(p56, kFix_2_053119869 - kFix_2_562915447, -kFix_2_562915447), zd));
  b.r[3] = descale<kOddBits>(
      add(products(p56, -kFix_2_562915447, kFix_3_072711026 - kFix_2_562915447), zc));
}

// One inverse pass: register i holds input i; outputs replace inputs, descaled by kBits and
// saturated to 16 bits.
template <class L, int kBits>
void inverse_pass(Block<L> &b) {
  constexpr int kC1175 = kFix_1_175875602;
  // Even part.
  const Pairs<L> p26 = interleave<L>(b.r[2], b.r[6]);
  const Wide<L> tmp3 = products(p26, kFix_0_541196100 + kFix_0_765366865, kFix_0_541196100);
  const Wide<L> tmp2 = products(p26, kFix_0_541196100, kFix_0_541196100 - kFix_1_847759065);
  const Pairs<L> p04 = interleave<L>(b.r[0], b.r[4]);
  const Wide<L> tmp0 = products(p04, 1 << kConstBits, 1 << kConstBits);
  const Wide<L> tmp1 = products(p04, 1 << kConstBits, -(1 << kConstBits));
  const Wide<L> tmp10 = add(tmp0, tmp3), tmp13 = sub(tmp0, tmp3);
  const Wide<L> tmp11 = add(tmp1, tmp2), tmp12 = sub(tmp1, tmp2);

  // Odd part: each output is in7, in1, in3 and in5 times combined constants.
  const Pairs<L> p71 = interleave<L>(b.r[7], b.r[1]);
  const Pairs<L> p35 = interleave<L>(b.r[3], b.r[5]);
  const Wide<L> odd0 =
      add(products(p71, kFix_0_298631336 - kFix_0_899976223 + kC1175 - kFix_1_961570560,
                   kC1175 - kFix_0_899976223),
          products(p35, kC1175 - kFix_1_961570560, kC1175));
  const Wide<L> odd3 =
      add(products(p71, kC1175 - kFix_0_899976223,
                   kFix_1_501321110 - kFix_0_899976223 + kC1175 - kFix_0_390180644),
          products(p35, kC1175, kC1175 - kFix_0_390180644));
  const Wide<L> odd1 =
      add(products(p71, kC1175, kC1175 - kFix_0_390180644),
          products(p35, kC1175 - kFix_2_562915447,
                   kFix_2_053119869 - kFix_2_562915447 + kC1175 - kFix_0_390180644));
  const Wide<L> odd2 =
      add(products(p71, kC1175 - kFix_1_961570560, kC1175),
          products(p35, kFix_3_072711026 - kFix_2_562915447 + kC1175 - kFix_1_961570560,
                   kC1175 - kFix_2_562915447));

  b.r[0] = descale<kBits>(add(tmp10, odd3));
  b.r[7] = descale<kBits>(sub(tmp10, odd3));
  b.r[1] = descale<kBits>(add(tmp11, odd2));
  b.r[6] = descale<kBits>(sub(tmp11, odd2));
  b.r[2] = descale<kBits>(add(tmp12, odd1));
  b.r[5] = descale<kBits>(sub(tmp12, odd1));
  b.r[3] = descale<kBits>(add(tmp13, odd0));
  b.r[4] = descale<kBits>(sub(tmp13, odd0));
}

template <class L>
void forward_transform(Block<L> &b) {
  transpose(b);
  forward_pass<L, false>(b);
  transpose(b);
  forward_pass<L, true>(b);
}

template <class L>
void inverse_transform(Block<L> &b) {
  inverse_pass<L, kConstBits - kPass1Bits>(b);
  transpose(b);
  inverse_pass<L, kConstBits + kPass1Bits + 3>(b);
  transpose(b);
}

}  // namespace
}  // namespace vrc::jpeg
