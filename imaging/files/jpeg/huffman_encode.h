// Huffman coding of one quantised block (T.81 F.1.2): the DC difference from the previous block
// of the same component, then the AC coefficients as run/size symbols with their extra bits, a
// ZRL (0xF0) for every run of 16 zeros and an EOB (0x00) after the last non-zero coefficient.
#pragma once

#include "imaging/files/jpeg/bit_writer.h"

#include <cstdint>

namespace vrc::jpeg {

// Code table of one Huffman table: per symbol, code << 8 | code length.
using CodeTable = const uint32_t *;

// Codes one quantised block held in natural order.
void encode_block(BitWriter &writer, const int16_t *block, int16_t &dc_predictor, CodeTable dc,
                  CodeTable ac);

}  // namespace vrc::jpeg
