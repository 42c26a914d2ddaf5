// The codec's tables: quantisation tables from the quality scale and their reciprocals, and the
// default Huffman tables, checked against the tables TurboJPEG writes at quality 50 (which are
// T.81 Annex K's unscaled). The codes made from them are checked by decoding TurboJPEG's streams
// (turbojpeg_test) and by the round trips.
#include "imaging/core/jpeg_record.h"
#include "imaging/files/jpeg/huffman_decode.h"
#include "imaging/files/jpeg/huffman_tables.h"
#include "imaging/files/jpeg/standard_tables.h"
#include "jpeg/codec_support.h"
#include "jpeg/stream_builder.h"

#include <turbojpeg.h>

namespace vrc::test {
namespace {

ZEP_JPEG_RECORD &jpeg_record(uint32_t image) {
  return *static_cast<ZEP_JPEG_RECORD *>(ZEP_image_get_ptr(image, ZEP_JPEG_RECORD_PTR));
}

// A JPEG image whose tables were made at `quality`.
uint32_t tables_at(uint16_t quality) {
  const uint32_t jpeg = ZEP_JPEG_image_create();
  EXPECT_EQ(ZEP_JPEG_set_Quality_factor(jpeg, quality), 0u);
  EXPECT_EQ(ZEP_JPEG_make_Q_tables(jpeg), 0u);
  return jpeg;
}

// The segments with marker `code` of a JPEG file in memory (their bytes after the length).
std::vector<Bytes> segments(const Bytes &file, uint8_t code) {
  std::vector<Bytes> found;
  for (std::size_t i = 2; i + 4 <= file.size();) {
    if (file[i] != 0xFF) break;
    const uint8_t marker = file[i + 1];
    const std::size_t length = std::size_t{file[i + 2]} << 8 | file[i + 3];
    if (marker == code) found.emplace_back(file.begin() + i + 4, file.begin() + i + 2 + length);
    if (marker == 0xDA) break;
    i += 2 + length;
  }
  return found;
}

// TurboJPEG's file of a small test picture at quality 50, grey or 4:2:2.
Bytes turbo_file(bool grey) {
  ScopedImage picture;
  make_test_picture(picture, grey ? ZEP_Y8 : ZEP_RGB24, 32, 16);
  const Bytes pixels = picture_bytes(picture);
  tjhandle handle = tjInitCompress();
  unsigned char *out = nullptr;
  unsigned long length = 0;
  tjCompress2(handle, pixels.data(), 32, 0, 16, grey ? TJPF_GRAY : TJPF_RGB, &out, &length,
              grey ? TJSAMP_GRAY : TJSAMP_422, 50, TJFLAG_ACCURATEDCT);
  Bytes file(out, out + length);
  tjFree(out);
  tjDestroy(handle);
  return file;
}

TEST(Tables, QualityScale16IsAnnexKAsTurboJpegWritesIt) {
  ErrorCapture errors;
  const uint32_t jpeg = tables_at(16);
  const ZEP_JPEG_RECORD &record = jpeg_record(jpeg);
  const std::vector<Bytes> dqt = segments(turbo_file(false), 0xDB);
  Bytes tables;
  for (const Bytes &segment : dqt) tables.insert(tables.end(), segment.begin(), segment.end());
  ASSERT_EQ(tables.size(), 130u);
  for (int t = 0; t < 2; ++t) {
    EXPECT_EQ(tables[65 * t], t);  // 8-bit precision, id t
    EXPECT_EQ(Bytes(record.quant[t], record.quant[t] + 64),
              Bytes(tables.begin() + 65 * t + 1, tables.begin() + 65 * t + 65));
  }
  EXPECT_EQ(record.quant_tables, 2);
  EXPECT_EQ(record.dqt_length, 132);
  ZEP_image_destroy(jpeg);
}

TEST(Tables, QuantisationFactor50GivesScale16) {
  ErrorCapture errors;
  const uint32_t jpeg = ZEP_JPEG_image_create();
  for (const auto &[factor, scale] : std::vector<std::pair<uint16_t, uint32_t>>{
           {50, 16}, {2, 400}, {800, 1}, {100, 8}, {3, 266}}) {
    ASSERT_EQ(ZEP_JPEG_set_Quantization_factor(jpeg, factor), 0u);
    EXPECT_EQ(jpeg_record(jpeg).quality_scale, scale) << factor;
  }
  ZEP_image_destroy(jpeg);
}

// Entries are the integer part of base x 16 / scale + 0.5 (single precision), clamped to 0..255,
// each with the reciprocal ((q >> 1) + 65536) / q; an entry of 0 gets the reciprocal 0.
struct ScaledEntry {
  uint16_t quality;
  int table, zigzag;
  uint8_t entry;
  uint32_t reciprocal;
};

class ScaledEntryTest : public ::testing::TestWithParam<ScaledEntry> {};

TEST_P(ScaledEntryTest, EntryAndReciprocal) {
  const ScaledEntry &c = GetParam();
  ErrorCapture errors;
  const uint32_t jpeg = tables_at(c.quality);
  EXPECT_EQ(jpeg_record(jpeg).quant[c.table][c.zigzag], c.entry);
  EXPECT_EQ(jpeg_record(jpeg).reciprocal[c.table][c.zigzag], c.reciprocal);
  ZEP_image_destroy(jpeg);
}

INSTANTIATE_TEST_SUITE_P(
    Scales, ScaledEntryTest,
    ::testing::Values(ScaledEntry{16, 0, 0, 16, 4096},    // K.1 DC unchanged
                      ScaledEntry{32, 0, 0, 8, 8192},     // 16 x 0.5 + 0.5 = 8.5
                      ScaledEntry{32, 0, 1, 6, 10923},    // 11 x 0.5 + 0.5 = 6.0
                      ScaledEntry{5, 0, 63, 255, 257},    // 99 x 3.2 clamped to 255
                      ScaledEntry{1, 1, 0, 255, 257},     // 17 x 16 clamped
                      ScaledEntry{400, 0, 2, 0, 0},       // 12 x 0.04 + 0.5 < 1: entry 0
                      ScaledEntry{400, 1, 63, 4, 16384},  // 99 x 0.04 + 0.5 = 4.46
                      ScaledEntry{16, 1, 5, 24, 2731}));  // K.2 at zigzag 5 (natural 2)

TEST(Tables, DefaultHuffmanTablesAreTurboJpegs) {
  ErrorCapture errors;
  const uint32_t jpeg = ZEP_JPEG_image_create();
  ASSERT_EQ(ZEP_JPEG_set_default_H_tables(jpeg), 0u);
  const ZEP_JPEG_RECORD &record = jpeg_record(jpeg);
  EXPECT_EQ(record.dht_length, 416);
  Bytes ours;
  for (int slot = 0; slot < 4; ++slot) {
    ours.push_back(record.huff_class_id[slot]);
    ours.insert(ours.end(), record.huff_counts[slot], record.huff_counts[slot] + 16);
    int values = 0;
    for (int i = 0; i < 16; ++i) values += record.huff_counts[slot][i];
    ours.insert(ours.end(), record.huff_values[slot], record.huff_values[slot] + values);
  }
  Bytes theirs;
  for (const Bytes &segment : segments(turbo_file(false), 0xC4))
    theirs.insert(theirs.end(), segment.begin(), segment.end());
  // TurboJPEG writes the tables in the order DC 0, AC 0, DC 1, AC 1; compare table by table.
  auto table_at = [](const Bytes &all, uint8_t class_id) {
    for (std::size_t i = 0; i < all.size();) {
      int values = 0;
      for (int c = 0; c < 16; ++c) values += all[i + 1 + c];
      if (all[i] == class_id) return Bytes(all.begin() + i, all.begin() + i + 17 + values);
      i += 17 + values;
    }
    return Bytes{};
  };
  for (const uint8_t id : {0x00, 0x01, 0x10, 0x11}) {
    EXPECT_FALSE(table_at(theirs, id).empty());
    EXPECT_EQ(table_at(ours, id), table_at(theirs, id)) << int(id);
  }
  ZEP_image_destroy(jpeg);
}

// Counts that claim more codes than their lengths hold are cut to a prefix-free set, and the
// decoding tables built from them stay inside their arrays.
TEST(Tables, DamagedCountsGiveAPrefixFreeSet) {
  const uint8_t counts[16] = {3, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255};
  const jpeg::HuffmanCodes codes = jpeg::generate_huffman_codes(counts);
  EXPECT_EQ(codes.count, 2);  // only "0" and "1" fit at length 1
  uint8_t values[256];
  for (int i = 0; i < 256; ++i) values[i] = static_cast<uint8_t>(i);
  jpeg::DecodeTable table;
  jpeg::build_decode_table(counts, values, table);
  EXPECT_EQ(table.lookup[0], 1 << 8 | 0);
  EXPECT_EQ(table.lookup[511], 1 << 8 | 1);
}

// ZEP_JPEG_set_image gives grey sources one component and colour sources three, with the SOF
// sampling of 4:2:2 and the SOS fields of a baseline scan.
TEST(Tables, SetImageDescribesTheFrame) {
  ErrorCapture errors;
  for (const uint16_t type : {ZEP_Y8, ZEP_RGB24}) {
    ScopedImage source;
    make_test_picture(source, type, 16, 8);
    const uint32_t jpeg = ZEP_JPEG_image_create();
    ASSERT_EQ(ZEP_JPEG_set_image(source, jpeg), 0u);
    const ZEP_JPEG_RECORD &r = jpeg_record(jpeg);
    const bool grey = type == ZEP_Y8;
    EXPECT_EQ(record_of(jpeg).type, grey ? ZEP_Y8 : ZEP_YUV422);
    EXPECT_EQ(r.sof_components, grey ? 1 : 3);
    EXPECT_EQ(r.sof_length, grey ? 11 : 17);
    EXPECT_EQ(r.sof_precision, 8);
    EXPECT_EQ(r.sampling_h[0], grey ? 1 : 2);
    EXPECT_EQ(r.sampling_v[0], 1);
    EXPECT_EQ(r.quant_table[1], 1);
    EXPECT_EQ(r.sos_components, grey ? 1 : 3);
    EXPECT_EQ(r.sos_length, grey ? 8 : 12);
    EXPECT_EQ(r.spectral_start, 0);
    EXPECT_EQ(r.spectral_end, 63);
    EXPECT_EQ(r.approximation, 0);
    ZEP_image_destroy(jpeg);
  }
}

}  // namespace
}  // namespace vrc::test
