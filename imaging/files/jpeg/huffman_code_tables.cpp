// The default Huffman tables of a state block (T.81 Tables K.3 to K.6) and the encoding code
// tables generated from whatever Huffman tables it holds.
#include "imaging/files/jpeg/huffman_tables.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/jpeg/standard_tables.h"

#include <algorithm>
#include <cstring>

namespace vrc::jpeg {

void set_default_huffman_tables(ZEP_JPEG_RECORD &record) {
  for (int slot = 0; slot < kHuffmanSlots; ++slot) {
    const HuffmanTable &table = *kDefaultHuffman[slot];
    record.huff_class_id[slot] = table.class_id;
    std::copy(table.counts.begin(), table.counts.end(), record.huff_counts[slot]);
    std::memset(record.huff_values[slot], 0, sizeof record.huff_values[slot]);
    std::copy_n(table.values.begin(), table.value_count, record.huff_values[slot]);
  }
  record.dht_length = kDefaultDhtTableBytes;
}

void make_huffman_code_tables(ZEP_JPEG_RECORD &record) {
  std::memset(record.huff_code, 0, sizeof record.huff_code);
  for (int slot = 0; slot < kHuffmanSlots; ++slot) {
    if (record.huff_class_id[slot] == kUnusedHuffmanSlot) continue;
    const HuffmanCodes codes = generate_huffman_codes(record.huff_counts[slot]);
    for (int i = 0; i < codes.count; ++i)
      record.huff_code[slot][record.huff_values[slot][i]] =
          uint32_t{codes.code[i]} << 8 | codes.length[i];
  }
}

}  // namespace vrc::jpeg

extern "C" uint32_t ZEP_JPEG_set_default_H_tables(uint32_t jpeg_image) {
  return vrc::jpeg::with_state(jpeg_image, "ZEP_JPEG_set_default_H_tables",
                               [](ZEP_JPEG_RECORD &record) {
                                 vrc::jpeg::set_default_huffman_tables(record);
                                 return 0u;
                               });
}

extern "C" uint32_t ZEP_JPEG_generate_H_codetable_LUTs(uint32_t jpeg_image) {
  return vrc::jpeg::with_state(jpeg_image, "ZEP_JPEG_generate_H_codetable_LUTs",
                               [](ZEP_JPEG_RECORD &record) {
                                 vrc::jpeg::make_huffman_code_tables(record);
                                 return 0u;
                               });
}
