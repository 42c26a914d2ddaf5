// The block decoder and its tables.
#include "imaging/files/jpeg/huffman_decode.h"

#include "imaging/files/jpeg/huffman_tables.h"
#include "imaging/files/jpeg/standard_tables.h"

#include <array>
#include <cstring>

namespace vrc::jpeg {
namespace {

constexpr int kLookBits = DecodeTable::kLookBits;
constexpr int kMaxDcSize = 11;  // DC differences of 8-bit samples have at most 11 bits
constexpr uint8_t kZrl = 0xF0;

// T.81 F.2.2.1 EXTEND: the `size`-bit value `bits` as a signed difference.
inline int32_t extend(uint32_t bits, int size) {
  const int32_t value = static_cast<int32_t>(bits);
  return value < (1 << (size - 1)) ? value - (1 << size) + 1 : value;
}

void build_fast_ac(DecodeTable &table) {
  for (uint32_t index = 0; index < (1u << kLookBits); ++index) {
    table.fast_ac[index] = 0;
    const uint16_t entry = table.lookup[index];
    const int length = entry >> 8;
    const int symbol = entry & 0xFF;
    const int run = symbol >> 4;
    const int size = symbol & 15;
    if (length == 0 || size == 0 || length + size > kLookBits) continue;
    const uint32_t bits = (index >> (kLookBits - length - size)) & ((1u << size) - 1);
    table.fast_ac[index] = static_cast<int32_t>(static_cast<uint32_t>(extend(bits, size)) << 16) |
                           run << 8 | (length + size);
  }
}

// The symbol of the next code, or -1 when no code of the table matches.
inline int decode_symbol(BitReader &reader, const DecodeTable &table) {
  const uint16_t entry = table.lookup[reader.peek(kLookBits)];
  if (entry != 0) {
    reader.skip(entry >> 8);
    return entry & 0xFF;
  }
  const uint32_t bits = reader.peek(16);
  for (int length = kLookBits + 1; length <= 16; ++length) {
    const int32_t code = static_cast<int32_t>(bits >> (16 - length));
    if (code <= table.max_code[length]) {
      reader.skip(length);
      return table.values[(code + table.value_offset[length]) & 0xFF];
    }
  }
  return -1;
}

inline int16_t dequantise(int32_t value, uint8_t q) {
  return static_cast<int16_t>(static_cast<uint32_t>(value) * q);
}

}  // namespace

void build_decode_table(const uint8_t counts[16], const uint8_t values[256], DecodeTable &table) {
  const HuffmanCodes codes = generate_huffman_codes(counts);
  std::memcpy(table.values, values, sizeof table.values);
  std::memset(table.lookup, 0, sizeof table.lookup);
  for (int length = 0; length < 18; ++length) table.max_code[length] = -1;
  for (int length = 0; length < 17; ++length) table.value_offset[length] = 0;
  for (int i = 0; i < codes.count; ++i) {
    const int length = codes.length[i];
    if (table.max_code[length] < 0) table.value_offset[length] = i - codes.code[i];
    table.max_code[length] = codes.code[i];
    if (length > kLookBits) continue;
    const int shift = kLookBits - length;
    const uint32_t first = uint32_t{codes.code[i]} << shift;
    for (uint32_t fill = 0; fill < (1u << shift); ++fill)
      table.lookup[first + fill] = static_cast<uint16_t>(length << 8 | values[i]);
  }
  build_fast_ac(table);
}

const DecodeTable &default_decode_table(int slot) {
  static const std::array<DecodeTable, 4> tables = [] {
    std::array<DecodeTable, 4> built{};
    for (int i = 0; i < 4; ++i) {
      uint8_t values[256] = {};
      std::memcpy(values, kDefaultHuffman[i]->values.data(), kDefaultHuffman[i]->value_count);
      build_decode_table(kDefaultHuffman[i]->counts.data(), values, built[i]);
    }
    return built;
  }();
  return tables[slot];
}

BlockError decode_block(BitReader &reader, BlockTables &tables, int16_t *block, bool &dc_only) {
  reader.need32();
  const int dc_size = decode_symbol(reader, *tables.dc);
  if (dc_size < 0 || dc_size > kMaxDcSize) return BlockError::dc;
  if (dc_size != 0) {
    const int32_t difference = extend(reader.take(dc_size), dc_size);
    tables.predictor = static_cast<int32_t>(static_cast<uint32_t>(tables.predictor) +
                                            static_cast<uint32_t>(difference));
  }
  block[0] = dequantise(tables.predictor, tables.quant[0]);

  dc_only = true;
  const DecodeTable &ac = *tables.ac;
  for (int k = 1; k < 64;) {
    reader.need32();
    const int32_t fast = ac.fast_ac[reader.peek(kLookBits)];
    if (fast != 0) {
      k += (fast >> 8) & 15;
      if (k > 63) return BlockError::too_many_coefficients;
      reader.skip(fast & 0xFF);
      block[kZigzagToNatural[k]] = dequantise(fast >> 16, tables.quant[k]);
      dc_only = false;
      ++k;
      continue;
    }
    const int symbol = decode_symbol(reader, ac);
    if (symbol < 0) return BlockError::ac;
    const int run = symbol >> 4;
    const int size = symbol & 15;
    if (size == 0) {
      if (symbol != kZrl) break;  // end of block
      k += 16;
      if (k > 64) return BlockError::too_many_coefficients;
      continue;
    }
    k += run;
    if (k > 63) return BlockError::too_many_coefficients;
    block[kZigzagToNatural[k]] = dequantise(extend(reader.take(size), size), tables.quant[k]);
    dc_only = false;
    ++k;
  }
  return BlockError::none;
}

}  // namespace vrc::jpeg
