// The block coder: the non-zero coefficients are found as one 64-bit mask in zigzag order, so
// that the loop visits only them; each symbol's code and its extra bits go out in one write.
#include "imaging/files/jpeg/huffman_encode.h"

#include "imaging/files/jpeg/standard_tables.h"

#include <emmintrin.h>
#include <array>
#include <bit>
#include <cstdlib>

namespace vrc::jpeg {
namespace {

constexpr uint8_t kEob = 0x00;
constexpr uint8_t kZrl = 0xF0;

// For each byte b of a natural-order mask (bits 8b..8b+7) and each value of that byte, the same
// bits moved to their zigzag positions.
using ZigzagMaskTables = std::array<std::array<uint64_t, 256>, 8>;
constexpr ZigzagMaskTables make_zigzag_mask_tables() {
  std::array<int, 64> zigzag_of{};
  for (int k = 0; k < 64; ++k) zigzag_of[kZigzagToNatural[k]] = k;
  ZigzagMaskTables tables{};
  for (int b = 0; b < 8; ++b)
    for (int value = 0; value < 256; ++value)
      for (int bit = 0; bit < 8; ++bit)
        if (value & (1 << bit)) tables[b][value] |= uint64_t{1} << zigzag_of[8 * b + bit];
  return tables;
}
constexpr ZigzagMaskTables kZigzagMask = make_zigzag_mask_tables();

// Bit n set when coefficient n (natural order) is non-zero.
inline uint64_t natural_nonzero_mask(const int16_t *block) {
  const __m128i zero = _mm_setzero_si128();
  uint64_t mask = 0;
  for (int i = 0; i < 64; i += 16) {
    const __m128i a =
        _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i *>(block + i)), zero);
    const __m128i b =
        _mm_cmpeq_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i *>(block + i + 8)), zero);
    const auto zeros = static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(a, b)));
    mask |= uint64_t{~zeros & 0xFFFF} << i;
  }
  return mask;
}

inline uint64_t zigzag_mask(uint64_t natural) {
  uint64_t mask = 0;
  for (int b = 0; b < 8; ++b) mask |= kZigzagMask[b][(natural >> (8 * b)) & 0xFF];
  return mask;
}

// Number of bits of |value| (the size category of T.81 Tables F.1 and F.2).
inline int size_category(int32_t value) {
  return 32 - std::countl_zero(static_cast<uint32_t>(std::abs(value)));
}

// The extra bits of a value of `size` bits: the value itself, or for negative values the value
// minus 1 (its ones' complement), in `size` bits.
inline uint32_t extra_bits(int32_t value, int size) {
  const int32_t adjusted = value < 0 ? value - 1 : value;
  return static_cast<uint32_t>(adjusted) & ((1u << size) - 1);
}

// Writes `symbol`'s code followed by `size` extra bits.
inline void put_symbol(BitWriter &writer, CodeTable table, uint8_t symbol, uint32_t bits,
                       int size) {
  const uint32_t entry = table[symbol];
  writer.put(((entry >> 8) << size) | bits, static_cast<int>(entry & 0xFF) + size);
}

}  // namespace

void encode_block(BitWriter &writer, const int16_t *block, int16_t &dc_predictor, CodeTable dc,
                  CodeTable ac) {
  const int32_t difference = block[0] - dc_predictor;
  dc_predictor = block[0];
  const int dc_size = size_category(difference);
  put_symbol(writer, dc, static_cast<uint8_t>(dc_size), extra_bits(difference, dc_size), dc_size);

  uint64_t mask = zigzag_mask(natural_nonzero_mask(block)) & ~uint64_t{1};
  int previous = 0;  // zigzag position of the previous non-zero coefficient
  while (mask != 0) {
    const int k = std::countr_zero(mask);
    mask &= mask - 1;
    int run = k - previous - 1;
    for (; run >= 16; run -= 16) put_symbol(writer, ac, kZrl, 0, 0);
    const int32_t value = block[kZigzagToNatural[k]];
    const int size = size_category(value);
    put_symbol(writer, ac, static_cast<uint8_t>(run << 4 | size), extra_bits(value, size), size);
    previous = k;
  }
  if (previous != 63) put_symbol(writer, ac, kEob, 0, 0);
}

}  // namespace vrc::jpeg
