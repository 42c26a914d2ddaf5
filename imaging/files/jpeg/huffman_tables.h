// Huffman code construction shared by the encoder's code tables and the decoder's lookup
// tables: from a table's 16 code-length counts to the code of each value (T.81 Annex C).
#pragma once

#include <cstdint>

namespace vrc::jpeg {

// The canonical codes of a Huffman table definition, in the order of its values.
struct HuffmanCodes {
  int count = 0;             // codes generated (at most 256)
  uint16_t code[256] = {};   // code of the value at the same index
  uint8_t length[256] = {};  // its length in bits, 1..16
};

// Generates the codes of `counts` (codes of each length 1..16). Counts that claim more codes than
// a length can hold, or more than 256 in all, are cut to what fits, so that a damaged
// table definition still gives a prefix-free set of codes.
HuffmanCodes generate_huffman_codes(const uint8_t counts[16]);

}  // namespace vrc::jpeg
