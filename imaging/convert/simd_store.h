// Stores shared by the vector kernels: closing four 4-byte pixels up to 3 bytes each and writing
// exactly the 12 bytes that result, so that no kernel writes past the end of its row.
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <cstring>

namespace vrc::convert {

// Writes the low 12 bytes of `v`.
inline void store_12_bytes(uint8_t *out, __m128i v) {
  _mm_storel_epi64(reinterpret_cast<__m128i *>(out), v);
  const int32_t tail = _mm_cvtsi128_si32(_mm_srli_si128(v, 8));
  std::memcpy(out + 8, &tail, 4);
}

// Four pixels of bytes (c0, c1, c2, X) to 12 bytes (c0, c1, c2) with one byte shuffle.
__attribute__((target("avx2"))) inline __m128i close_pixels_to_3_bytes(__m128i pixels) {
  return _mm_shuffle_epi8(pixels,
                          _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
}

// Both 128-bit lanes of `pixels` closed up and written one after the other (24 bytes).
__attribute__((target("avx2"))) inline void store_lanes_as_3_bytes(uint8_t *out, __m256i pixels) {
  store_12_bytes(out, close_pixels_to_3_bytes(_mm256_castsi256_si128(pixels)));
  store_12_bytes(out + 12, close_pixels_to_3_bytes(_mm256_extracti128_si256(pixels, 1)));
}

}  // namespace vrc::convert
