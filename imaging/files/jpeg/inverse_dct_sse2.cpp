// The SSE2 inverse DCT: eight columns (then rows) at a time. Every output is formed from products
// of interleaved input pairs with combined constants, so no 16-bit intermediate sum can wrap; the
// 32-bit sums wrap as the scalar version's do.
#include "imaging/files/jpeg/inverse_dct.h"

#include "imaging/files/jpeg/sse2_block.h"
#include "imaging/files/jpeg/standard_tables.h"

namespace vrc::jpeg {
namespace {

using namespace sse2;

constexpr int kC1175 = kFix_1_175875602;

// One pass: register i holds input i of eight 1-D transforms; outputs replace the inputs, each
// descaled by kBits and saturated to 16 bits.
template <int kBits>
void pass(Block &b) {
  // Even part.
  const Pairs p26 = interleave(b.r[2], b.r[6]);
  const Wide tmp3 =
      products(p26, pair_constant(kFix_0_541196100 + kFix_0_765366865, kFix_0_541196100));
  const Wide tmp2 =
      products(p26, pair_constant(kFix_0_541196100, kFix_0_541196100 - kFix_1_847759065));
  const Pairs p04 = interleave(b.r[0], b.r[4]);
  const Wide tmp0 = products(p04, pair_constant(1 << kConstBits, 1 << kConstBits));
  const Wide tmp1 = products(p04, pair_constant(1 << kConstBits, -(1 << kConstBits)));
  const Wide tmp10 = add(tmp0, tmp3), tmp13 = sub(tmp0, tmp3);
  const Wide tmp11 = add(tmp1, tmp2), tmp12 = sub(tmp1, tmp2);

  // Odd part: each output is in7, in1, in3 and in5 times combined constants.
  const Pairs p71 = interleave(b.r[7], b.r[1]);
  const Pairs p35 = interleave(b.r[3], b.r[5]);
  const Wide odd0 = add(products(p71, pair_constant(kFix_0_298631336 - kFix_0_899976223 + kC1175 -
                                                        kFix_1_961570560,
                                                    kC1175 - kFix_0_899976223)),
                        products(p35, pair_constant(kC1175 - kFix_1_961570560, kC1175)));
  const Wide odd3 =
      add(products(p71, pair_constant(kC1175 - kFix_0_899976223,
                                      kFix_1_501321110 - kFix_0_899976223 + kC1175 -
                                          kFix_0_390180644)),
          products(p35, pair_constant(kC1175, kC1175 - kFix_0_390180644)));
  const Wide odd1 =
      add(products(p71, pair_constant(kC1175, kC1175 - kFix_0_390180644)),
          products(p35, pair_constant(kC1175 - kFix_2_562915447, kFix_2_053119869 -
                                                                     kFix_2_562915447 + kC1175 -
                                                                     kFix_0_390180644)));
  const Wide odd2 =
      add(products(p71, pair_constant(kC1175 - kFix_1_961570560, kC1175)),
          products(p35, pair_constant(kFix_3_072711026 - kFix_2_562915447 + kC1175 -
                                          kFix_1_961570560,
                                      kC1175 - kFix_2_562915447)));

  b.r[0] = descale<kBits>(add(tmp10, odd3));
  b.r[7] = descale<kBits>(sub(tmp10, odd3));
  b.r[1] = descale<kBits>(add(tmp11, odd2));
  b.r[6] = descale<kBits>(sub(tmp11, odd2));
  b.r[2] = descale<kBits>(add(tmp12, odd1));
  b.r[5] = descale<kBits>(sub(tmp12, odd1));
  b.r[3] = descale<kBits>(add(tmp13, odd0));
  b.r[4] = descale<kBits>(sub(tmp13, odd0));
}

}  // namespace

void inverse_dct_sse2(const int16_t *coefficients, uint8_t *samples, std::ptrdiff_t stride) {
  Block b;
  for (int row = 0; row < 8; ++row)
    b.r[row] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(coefficients + row * 8));
  pass<kConstBits - kPass1Bits>(b);
  transpose(b);
  pass<kConstBits + kPass1Bits + 3>(b);
  transpose(b);
  const __m128i centre = _mm_set1_epi16(128);
  for (int row = 0; row < 8; ++row) {
    const __m128i shifted = _mm_adds_epi16(b.r[row], centre);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(samples + row * stride),
                     _mm_packus_epi16(shifted, shifted));
  }
}

}  // namespace vrc::jpeg
