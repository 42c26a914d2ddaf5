// The entropy stages: byte stuffing and padding of the bit writer, the bit reader's handling of
// stuffed bytes, markers and the end of the data, and Huffman coding and decoding of blocks with
// the default tables.
#include "imaging/core/jpeg_record.h"
#include "imaging/files/jpeg/bit_reader.h"
#include "imaging/files/jpeg/bit_writer.h"
#include "imaging/files/jpeg/huffman_decode.h"
#include "imaging/files/jpeg/huffman_encode.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/jpeg/standard_tables.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace vrc::jpeg {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes written(const std::vector<std::pair<uint32_t, int>> &codes) {
  Bytes out(16 + codes.size() * 8);
  BitWriter writer(out.data());
  for (const auto &[bits, length] : codes) writer.put(bits, length);
  out.resize(writer.finish());
  return out;
}

struct WriterCase {
  const char *name;
  std::vector<std::pair<uint32_t, int>> codes;
  Bytes bytes;
};

class BitWriterTest : public ::testing::TestWithParam<WriterCase> {};

TEST_P(BitWriterTest, WritesStuffedPaddedBytes) {
  EXPECT_EQ(written(GetParam().codes), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, BitWriterTest,
    ::testing::Values(
        WriterCase{"nothing", {}, {}}, WriterCase{"padding_with_ones", {{0b101, 3}}, {0xBF}},
        WriterCase{"ff_is_stuffed", {{0xFF, 8}}, {0xFF, 0x00}},
        WriterCase{"ff_from_padding_is_stuffed", {{0xF, 4}}, {0xFF, 0x00}},
        WriterCase{"ff_across_codes", {{0x7, 3}, {0x1F, 5}, {0x12, 8}}, {0xFF, 0x00, 0x12}},
        // Nine bytes: the eight-byte word written at once holds an FF, so it goes byte by byte.
        WriterCase{"word_with_ff",
                   {{0x01020304, 32}, {0x05FF0708, 32}, {0x09, 8}},
                   {0x01, 0x02, 0x03, 0x04, 0x05, 0xFF, 0x00, 0x07, 0x08, 0x09}},
        WriterCase{"word_without_ff",
                   {{0x01020304, 32}, {0x05060708, 32}, {0x3, 2}},
                   {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0xFF, 0x00}}),
    [](const auto &param_info) { return std::string(param_info.param.name); });

// Random codes of 1 to 32 bits written and read back, with many 0xFF bytes among them.
TEST(BitReader, ReadsBackWhatTheWriterWrote) {
  std::mt19937 rng(10);
  std::vector<std::pair<uint32_t, int>> codes;
  for (int i = 0; i < 20000; ++i) {
    const int length = 1 + int(rng() % 32);
    const uint32_t bits = (rng() % 3 == 0 ? 0xFFFFFFFFu : uint32_t(rng())) >> (32 - length);
    codes.emplace_back(bits, length);
  }
  const Bytes data = written(codes);
  BitReader reader(data.data(), data.size());
  for (const auto &[bits, length] : codes) {
    reader.need32();
    ASSERT_EQ(reader.take(length), bits);
  }
  EXPECT_FALSE(reader.overran());
}

TEST(BitReader, AMarkerEndsTheData) {
  const Bytes data = {0x12, 0xFF, 0x00, 0x34, 0xFF, 0xFF, 0xD9, 0x56};
  BitReader reader(data.data(), data.size());
  reader.need32();
  EXPECT_EQ(reader.take(24), 0x12FF34u);
  EXPECT_FALSE(reader.overran());
  EXPECT_TRUE(reader.ended_at_eoi());
  EXPECT_TRUE(reader.short_of(1));
  EXPECT_EQ(reader.take(8), 0xFFu);  // fill after the marker, never the bytes behind it
  EXPECT_TRUE(reader.overran());
}

TEST(BitReader, PastTheEndFeedsOnes) {
  const Bytes data = {0x80};
  BitReader reader(data.data(), data.size());
  reader.need32();
  EXPECT_EQ(reader.take(8), 0x80u);
  EXPECT_FALSE(reader.overran());
  EXPECT_FALSE(reader.ended_at_eoi());
  for (int i = 0; i < 10; ++i) {
    reader.need32();
    EXPECT_EQ(reader.take(32), 0xFFFFFFFFu);
  }
  EXPECT_TRUE(reader.overran());
}

// Blocks of every shape the coder meets: long zero runs (ZRL), a last coefficient at 63 (no EOB),
// the largest DC differences and AC values of 8-bit samples, and flat blocks.
std::vector<std::array<int16_t, 64>> test_blocks() {
  std::mt19937 rng(11);
  std::vector<std::array<int16_t, 64>> blocks;
  for (int i = 0; i < 3000; ++i) {
    std::array<int16_t, 64> b{};
    b[0] = static_cast<int16_t>(i % 5 == 0 ? (i % 10 ? 1023 : -1024) : int(rng() % 2047) - 1023);
    const int density = i % 4;
    for (int n = 1; n < 64; ++n)
      if (density && rng() % (density * 9) == 0)
        b[n] = static_cast<int16_t>(rng() % 2 ? int(rng() % 1023) + 1 : -int(rng() % 1023) - 1);
    if (i % 7 == 0) b[kZigzagToNatural[63]] = -1;
    blocks.push_back(b);
  }
  return blocks;
}

// Decoding gives the coded blocks, each coefficient multiplied by the table entry of its zigzag
// position (entries 1 to 3, so that a position mixed up shows).
TEST(Huffman, BlocksDecodeToWhatWasCodedDequantised) {
  ZEP_JPEG_RECORD record{};
  set_default_huffman_tables(record);
  make_huffman_code_tables(record);
  const auto blocks = test_blocks();
  Bytes data(blocks.size() * 420 + 16);
  BitWriter writer(data.data());
  int16_t predictors[2] = {0, 0};
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const int c = int(i % 2);  // alternate luminance and chrominance tables
    encode_block(writer, blocks[i].data(), predictors[c], record.huff_code[c],
                 record.huff_code[2 + c]);
  }
  data.resize(writer.finish());

  BitReader reader(data.data(), data.size());
  uint8_t quant[64];
  for (int k = 0; k < 64; ++k) quant[k] = static_cast<uint8_t>(1 + k * 7 % 3);
  BlockTables tables[2] = {{&default_decode_table(0), &default_decode_table(2), quant},
                           {&default_decode_table(1), &default_decode_table(3), quant}};
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    int16_t decoded[64] = {};
    bool dc_only = false;
    ASSERT_EQ(decode_block(reader, tables[i % 2], decoded, dc_only), BlockError::none) << i;
    std::vector<int16_t> expected(64);
    for (int k = 0; k < 64; ++k)
      expected[kZigzagToNatural[k]] = int16_t(blocks[i][kZigzagToNatural[k]] * quant[k]);
    ASSERT_EQ(std::vector<int16_t>(decoded, decoded + 64), expected) << "block " << i;
    bool all_ac_zero = true;
    for (int n = 1; n < 64; ++n) all_ac_zero &= blocks[i][n] == 0;
    EXPECT_EQ(dc_only, all_ac_zero);
  }
  EXPECT_FALSE(reader.overran());
}

}  // namespace
}  // namespace vrc::jpeg
