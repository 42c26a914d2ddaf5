// The block coder: the positions of the non-zero AC coefficients are gathered into one 64-bit
// mask, so that the loop visits only them; each symbol's code and its extra bits go out in one
// write.
#include "imaging/files/jpeg/huffman_encode.h"

#include <bit>
#include <cstdlib>

namespace vrc::jpeg {
namespace {

constexpr uint8_t kEob = 0x00;
constexpr uint8_t kZrl = 0xF0;

// Number of bits of |value| (the size category of T.81 Table F.1/F.2).
inline int size_category(int32_t value) {
  return value == 0 ? 0 : 32 - std::countl_zero(static_cast<uint32_t>(std::abs(value)));
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
  const int length = static_cast<int>(entry & 0xFF);
  writer.put(((entry >> 8) << size) | bits, length + size);
}

uint64_t nonzero_ac_mask(const int16_t *zigzag) {
  uint64_t mask = 0;
  for (int k = 1; k < 64; ++k) mask |= uint64_t{zigzag[k] != 0} << k;
  return mask;
}

}  // namespace

void encode_block(BitWriter &writer, const int16_t *zigzag, int16_t &dc_predictor, CodeTable dc,
                  CodeTable ac) {
  const int32_t difference = zigzag[0] - dc_predictor;
  dc_predictor = zigzag[0];
  const int dc_size = size_category(difference);
  put_symbol(writer, dc, static_cast<uint8_t>(dc_size), extra_bits(difference, dc_size), dc_size);

  uint64_t mask = nonzero_ac_mask(zigzag);
  int previous = 0;  // zigzag position of the previous non-zero coefficient
  while (mask != 0) {
    const int k = std::countr_zero(mask);
    mask &= mask - 1;
    int run = k - previous - 1;
    for (; run >= 16; run -= 16) put_symbol(writer, ac, kZrl, 0, 0);
    const int32_t value = zigzag[k];
    const int size = size_category(value);
    put_symbol(writer, ac, static_cast<uint8_t>(run << 4 | size), extra_bits(value, size), size);
    previous = k;
  }
  if (previous != 63) put_symbol(writer, ac, kEob, 0, 0);
}

}  // namespace vrc::jpeg
