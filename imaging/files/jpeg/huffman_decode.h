// Huffman decoding of one block (T.81 F.2.2): lookup tables give the symbol of any code of up to
// 9 bits at once (and, for AC tables, the whole coefficient when its extra bits fit too); longer
// codes are found by the largest code of each length (T.81 F.2.2.3). Coefficients are dequantised
// as they are placed.
#pragma once

#include "imaging/files/jpeg/bit_reader.h"

#include <cstdint>

namespace vrc::jpeg {

struct DecodeTable {
  static constexpr int kLookBits = 9;
  uint16_t lookup[1 << kLookBits];  // code length << 8 | symbol; 0: longer code or none
  int32_t fast_ac[1 << kLookBits];  // value << 16 | run << 8 | bits taken; 0: use lookup
  int32_t max_code[18];             // largest code of each length, -1 when there is none
  int32_t value_offset[17];         // index in values of a code of each length, minus the code
  uint8_t values[256];
};

// Builds the decoding tables of a Huffman table definition (counts of codes of length 1..16, then
// the values).
void build_decode_table(const uint8_t counts[16], const uint8_t values[256], DecodeTable &table);

// The tables of the four default Huffman tables in state-block order (DC luminance, DC
// chrominance, AC luminance, AC chrominance), built once for the process.
const DecodeTable &default_decode_table(int slot);

enum class BlockError { none, dc, ac, too_many_coefficients };

// What one block is decoded with: its tables, its dequantisation table (zigzag order) and the DC
// predictor of its component.
struct BlockTables {
  const DecodeTable *dc;
  const DecodeTable *ac;
  const uint8_t *quant;
  int32_t predictor = 0;
};

// Decodes one block into `block` (natural order, all zeros on entry). `dc_only` tells whether
// every AC coefficient is zero.
BlockError decode_block(BitReader &reader, BlockTables &tables, int16_t *block, bool &dc_only);

}  // namespace vrc::jpeg
