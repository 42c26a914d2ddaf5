// SSE2 helpers of the DCT passes: an 8 x 8 block of 16-bit values as eight registers, its
// transposition, and the products of interleaved pairs that the rotations are made of.
#pragma once

#include <emmintrin.h>

namespace vrc::jpeg::sse2 {

struct Block {
  __m128i r[8];
};

inline void transpose(Block &b) {
  const __m128i a0 = _mm_unpacklo_epi16(b.r[0], b.r[1]), a1 = _mm_unpackhi_epi16(b.r[0], b.r[1]);
  const __m128i a2 = _mm_unpacklo_epi16(b.r[2], b.r[3]), a3 = _mm_unpackhi_epi16(b.r[2], b.r[3]);
  const __m128i a4 = _mm_unpacklo_epi16(b.r[4], b.r[5]), a5 = _mm_unpackhi_epi16(b.r[4], b.r[5]);
  const __m128i a6 = _mm_unpacklo_epi16(b.r[6], b.r[7]), a7 = _mm_unpackhi_epi16(b.r[6], b.r[7]);
  const __m128i c0 = _mm_unpacklo_epi32(a0, a2), c1 = _mm_unpackhi_epi32(a0, a2);
  const __m128i c2 = _mm_unpacklo_epi32(a1, a3), c3 = _mm_unpackhi_epi32(a1, a3);
  const __m128i c4 = _mm_unpacklo_epi32(a4, a6), c5 = _mm_unpackhi_epi32(a4, a6);
  const __m128i c6 = _mm_unpacklo_epi32(a5, a7), c7 = _mm_unpackhi_epi32(a5, a7);
  b.r[0] = _mm_unpacklo_epi64(c0, c4);
  b.r[1] = _mm_unpackhi_epi64(c0, c4);
  b.r[2] = _mm_unpacklo_epi64(c1, c5);
  b.r[3] = _mm_unpackhi_epi64(c1, c5);
  b.r[4] = _mm_unpacklo_epi64(c2, c6);
  b.r[5] = _mm_unpackhi_epi64(c2, c6);
  b.r[6] = _mm_unpacklo_epi64(c3, c7);
  b.r[7] = _mm_unpackhi_epi64(c3, c7);
}

// Eight 32-bit sums a[i] * ca + b[i] * cb, as two registers (lanes 0-3, lanes 4-7).
struct Wide {
  __m128i lo, hi;
};

inline __m128i pair_constant(short ca, short cb) { return _mm_set_epi16(cb, ca, cb, ca, cb, ca, cb, ca); }

struct Pairs {
  __m128i lo, hi;  // a and b interleaved
};
inline Pairs interleave(__m128i a, __m128i b) {
  return {_mm_unpacklo_epi16(a, b), _mm_unpackhi_epi16(a, b)};
}
inline Wide products(const Pairs &p, __m128i constants) {
  return {_mm_madd_epi16(p.lo, constants), _mm_madd_epi16(p.hi, constants)};
}
inline Wide add(const Wide &a, const Wide &b) {
  return {_mm_add_epi32(a.lo, b.lo), _mm_add_epi32(a.hi, b.hi)};
}
inline Wide sub(const Wide &a, const Wide &b) {
  return {_mm_sub_epi32(a.lo, b.lo), _mm_sub_epi32(a.hi, b.hi)};
}
// (value + 2^(bits-1)) >> bits, packed to 16 bits with saturation.
template <int kBits>
inline __m128i descale(const Wide &w) {
  const __m128i round = _mm_set1_epi32(1 << (kBits - 1));
  return _mm_packs_epi32(_mm_srai_epi32(_mm_add_epi32(w.lo, round), kBits),
                         _mm_srai_epi32(_mm_add_epi32(w.hi, round), kBits));
}

}  // namespace vrc::jpeg::sse2
