// Test support: entropy-coded data written by hand, symbol by symbol, with the default Huffman
// tables as T.81 Tables K.3 to K.6 give their codes, padded with 1 bits and byte-stuffed.
#pragma once

#include "imaging/files/jpeg/huffman_tables.h"
#include "imaging/files/jpeg/standard_tables.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vrc::test {

// A code and its extra bits, as text of '0' and '1'.
struct Code {
  std::string bits;
};

// The code of `symbol` in default table `slot` (0 DC luminance, 1 DC chrominance, 2 AC
// luminance, 3 AC chrominance), followed by `extra`.
inline Code symbol_code(int slot, uint8_t symbol, const std::string &extra = "") {
  const jpeg::HuffmanTable &table = *jpeg::kDefaultHuffman[slot];
  const jpeg::HuffmanCodes codes = jpeg::generate_huffman_codes(table.counts.data());
  for (int i = 0; i < codes.count; ++i) {
    if (table.values[i] != symbol) continue;
    std::string text;
    for (int bit = codes.length[i] - 1; bit >= 0; --bit)
      text += (codes.code[i] >> bit) & 1 ? '1' : '0';
    return {text + extra};
  }
  return {"?"};
}
inline Code dc_luma(uint8_t size, const std::string &extra = "") {
  return symbol_code(0, size, extra);
}
inline Code dc_chroma(uint8_t size, const std::string &extra = "") {
  return symbol_code(1, size, extra);
}
inline Code ac_luma(uint8_t symbol, const std::string &extra = "") {
  return symbol_code(2, symbol, extra);
}
inline Code ac_chroma(uint8_t symbol, const std::string &extra = "") {
  return symbol_code(3, symbol, extra);
}
inline Code raw(const std::string &bits) { return {bits}; }

class StreamBuilder {
 public:
  void put(const Code &code) { m_bits += code.bits; }
  std::vector<uint8_t> bytes() const {
    std::string padded = m_bits;
    while (padded.size() % 8 != 0) padded += '1';
    std::vector<uint8_t> out;
    for (std::size_t i = 0; i < padded.size(); i += 8) {
      const auto byte = static_cast<uint8_t>(std::stoi(padded.substr(i, 8), nullptr, 2));
      out.push_back(byte);
      if (byte == 0xFF) out.push_back(0x00);
    }
    return out;
  }

 private:
  std::string m_bits;
};

}  // namespace vrc::test
