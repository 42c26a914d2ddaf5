// Canonical Huffman codes from code-length counts.
#include "imaging/files/jpeg/huffman_tables.h"

namespace vrc::jpeg {

HuffmanCodes generate_huffman_codes(const uint8_t counts[16]) {
  HuffmanCodes codes;
  // T.81 Figures C.1 and C.2: codes of each length follow one another; moving to the next length
  // doubles the code.
  uint32_t code = 0;
  for (int length = 1; length <= 16; ++length) {
    for (int i = 0; i < counts[length - 1] && codes.count < 256; ++i) {
      if (code >= (1u << length)) return codes;  // this length is full: the counts are damaged
      codes.code[codes.count] = static_cast<uint16_t>(code);
      codes.length[codes.count] = static_cast<uint8_t>(length);
      ++codes.count;
      ++code;
    }
    code <<= 1;
  }
  return codes;
}

}  // namespace vrc::jpeg
