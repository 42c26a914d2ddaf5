// Lane operations of the vector DCT passes, for 128-bit registers (SSE2: one 8 x 8 block, a row
// per register) and, in units compiled for AVX2, 256-bit registers (two blocks side by side, one
// per 128-bit half). The passes are written once over these (dct_passes.h); the encoder's colour
// conversion takes its paired weights from them too. Everything here has internal linkage, so
// that each unit keeps the code compiled for its own instruction set.
#pragma once

#include <immintrin.h>

namespace vrc::jpeg {
namespace {

// Two 16-bit values as one 32-bit lane: `low` in the low half, `high` in the high half.
constexpr int paired_words(short low, short high) {
  return static_cast<int>(static_cast<unsigned short>(low) |
                          (static_cast<unsigned>(static_cast<unsigned short>(high)) << 16));
}

struct Sse2Lanes {
  using V = __m128i;
  static V add16(V a, V b) { return _mm_add_epi16(a, b); }
  static V sub16(V a, V b) { return _mm_sub_epi16(a, b); }
  static V adds16(V a, V b) { return _mm_adds_epi16(a, b); }
  template <int N>
  static V slli16(V a) {
    return _mm_slli_epi16(a, N);
  }
  static V add32(V a, V b) { return _mm_add_epi32(a, b); }
  static V sub32(V a, V b) { return _mm_sub_epi32(a, b); }
  template <int N>
  static V srai32(V a) {
    return _mm_srai_epi32(a, N);
  }
  static V madd(V a, V b) { return _mm_madd_epi16(a, b); }
  static V packs32(V a, V b) { return _mm_packs_epi32(a, b); }
  static V unpacklo16(V a, V b) { return _mm_unpacklo_epi16(a, b); }
  static V unpackhi16(V a, V b) { return _mm_unpackhi_epi16(a, b); }
  static V unpacklo32(V a, V b) { return _mm_unpacklo_epi32(a, b); }
  static V unpackhi32(V a, V b) { return _mm_unpackhi_epi32(a, b); }
  static V unpacklo64(V a, V b) { return _mm_unpacklo_epi64(a, b); }
  static V unpackhi64(V a, V b) { return _mm_unpackhi_epi64(a, b); }
  static V set16(short v) { return _mm_set1_epi16(v); }
  static V set32(int v) { return _mm_set1_epi32(v); }
  // 16-bit lanes alternating ca, cb.
  static V pair(short ca, short cb) { return _mm_set1_epi32(paired_words(ca, cb)); }
};

#ifdef __AVX2__
struct Avx2Lanes {
  using V = __m256i;
  static V add16(V a, V b) { return _mm256_add_epi16(a, b); }
  static V sub16(V a, V b) { return _mm256_sub_epi16(a, b); }
  static V adds16(V a, V b) { return _mm256_adds_epi16(a, b); }
  template <int N>
  static V slli16(V a) {
    return _mm256_slli_epi16(a, N);
  }
  static V add32(V a, V b) { return _mm256_add_epi32(a, b); }
  static V sub32(V a, V b) { return _mm256_sub_epi32(a, b); }
  template <int N>
  static V srai32(V a) {
    return _mm256_srai_epi32(a, N);
  }
  static V madd(V a, V b) { return _mm256_madd_epi16(a, b); }
  static V packs32(V a, V b) { return _mm256_packs_epi32(a, b); }
  static V unpacklo16(V a, V b) { return _mm256_unpacklo_epi16(a, b); }
  static V unpackhi16(V a, V b) { return _mm256_unpackhi_epi16(a, b); }
  static V unpacklo32(V a, V b) { return _mm256_unpacklo_epi32(a, b); }
  static V unpackhi32(V a, V b) { return _mm256_unpackhi_epi32(a, b); }
  static V unpacklo64(V a, V b) { return _mm256_unpacklo_epi64(a, b); }
  static V unpackhi64(V a, V b) { return _mm256_unpackhi_epi64(a, b); }
  static V set16(short v) { return _mm256_set1_epi16(v); }
  static V set32(int v) { return _mm256_set1_epi32(v); }
  static V pair(short ca, short cb) { return _mm256_set1_epi32(paired_words(ca, cb)); }
};
#endif

}  // namespace
}  // namespace vrc::jpeg
