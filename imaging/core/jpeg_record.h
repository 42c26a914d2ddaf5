// The JPEG record an image may own: the compressed data, the stream of an open sequence file, and
// the marker fields of the JPEG file layer, in the order that layer defines.
#pragma once

#include "vrcw32/zep_core.h"

#include <cstdint>
#include <cstdio>

struct ZEP_JPEG_RECORD {
  std::FILE *file;                                // open sequence file, or null
  uint32_t data_offset;                           // file offset of the first frame's entropy data
  uint8_t *data;                                  // entropy-coded data
  uint32_t length;                                // bytes of data (ZEP_JPEG_LENGTH)
  uint8_t *position;                              // current read/write position in data
  uint32_t quality_scale;                         // 32 at creation
  uint8_t info_block[ZEP_JPEG_INFO_BLOCK_BYTES];  // comment block, 32 blanks at creation
  // SOF0
  uint16_t sof_length;
  uint8_t sof_precision;
  uint8_t sampling_h[3];
  uint8_t sampling_v[3];
  uint8_t quant_table[3];
  uint8_t sof_components;
  // DQT
  uint16_t dqt_length;
  uint8_t quant[2][64];  // zigzag order
  uint8_t quant_tables;
  // DHT: four Huffman tables, each a class/id byte, 16 counts and up to 256 values; id 255 ends
  uint16_t dht_length;
  uint8_t huff_class_id[4];
  uint8_t huff_counts[4][16];
  uint8_t huff_values[4][256];
  // SOS
  uint16_t sos_length;
  uint8_t sos_components;
  uint8_t spectral_start;
  uint8_t spectral_end;
  uint8_t approximation;
  // Tables the codec derives from the fields above (ZEP_JPEG_make_Q_tables,
  // ZEP_JPEG_generate_H_codetable_LUTs); they travel with the parameters.
  uint32_t reciprocal[2][64];  // rounded 16.16 reciprocal of each quant entry, zigzag order
  uint32_t huff_code[4][256];  // per Huffman table and symbol: code << 8 | code length; 0: none
};

namespace vrc::core {

// A zeroed record with the creation defaults (quality scale 32, blank comment block); null when
// out of memory.
ZEP_JPEG_RECORD *jpeg_record_create();

// Frees the record's data (not the record).
void jpeg_record_free_data(ZEP_JPEG_RECORD *record);

// Copies the quality scale, comment block and marker fields (not the file, data or position).
void jpeg_record_copy_parameters(const ZEP_JPEG_RECORD &source, ZEP_JPEG_RECORD &destination);

// Closes the record's file, frees its data and the record.
void jpeg_record_destroy(ZEP_JPEG_RECORD *record);

}  // namespace vrc::core
