// Conversion tables: ids and their messages, saving and loading with the files' exact lengths,
// short files, and release by the library-wide destroy.
#include "convert_support.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

using namespace vrc::test;

namespace {

std::filesystem::path temp_file(const char *name) { return std::filesystem::temp_directory_path() / name; }

Bytes file_bytes(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

TEST(ConversionTables, UnknownIdsAndHandles) {
  ErrorCapture errors;
  ScopedImage image;
  EXPECT_EQ(ZEP_image_conv_LUT_generate(image, 199), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().function, "ZEP_image_conv_LUT_generate");
  EXPECT_EQ(errors.last().message, "LUT function not available for this image pixel format");
  EXPECT_EQ(ZEP_image_conv_LUT_destroy(206), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(ZEP_image_conv_LUT_generate(60000, ZEP_LUT_Y8_TO_PALETTED), ZEP_ERR_HANDLE);
  const std::string path = temp_file("vrc_lut_unknown.lut").string();
  EXPECT_EQ(ZEP_image_conv_LUT_save(image, 206, path.c_str()), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "Unrecognized LUT type");
  EXPECT_EQ(ZEP_image_conv_LUT_load(image, 199, path.c_str()), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().function, "ZEP_image_conv_LUT_load");
  EXPECT_EQ(ZEP_image_conv_LUT_save(60000, ZEP_LUT_Y8_TO_PALETTED, path.c_str()), ZEP_ERR_HANDLE);
}

struct TableCase {
  uint16_t id;
  uint16_t data_width;
  uintmax_t bytes;
};

class TableFiles : public ::testing::TestWithParam<TableCase> {};

TEST_P(TableFiles, SaveLoadRoundTripWithTheTableSize) {
  ErrorCapture errors;
  const TableCase c = GetParam();
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_Y16);
  ZEP_image_set_parameter(image, ZEP_DATA_WIDTH, c.data_width);
  ZEP_cmap_set_type(image, ZEP_CMAP_CUBE_332, 0);
  const std::string path = temp_file(("vrc_lut_" + std::to_string(c.id) + ".lut").c_str()).string();
  ASSERT_EQ(ZEP_image_conv_LUT_generate(image, c.id), 0u);
  ASSERT_EQ(ZEP_image_conv_LUT_save(image, c.id, path.c_str()), 0u);
  EXPECT_EQ(std::filesystem::file_size(path), c.bytes);
  const Bytes before = file_bytes(path);
  ASSERT_EQ(ZEP_image_conv_LUT_destroy(c.id), 0u);
  ASSERT_EQ(ZEP_image_conv_LUT_load(image, c.id, path.c_str()), 0u);
  const std::string again = path + ".again";
  ASSERT_EQ(ZEP_image_conv_LUT_save(image, c.id, again.c_str()), 0u);
  EXPECT_EQ(file_bytes(again), before);
  std::filesystem::remove(path);
  std::filesystem::remove(again);
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Ids, TableFiles,
                         ::testing::Values(TableCase{ZEP_LUT_RGB16_TO_PALETTED, 16, 65536},
                                           TableCase{ZEP_LUT_Y8_TO_PALETTED, 16, 256},
                                           TableCase{ZEP_LUT_Y16_TO_PALETTED, 10, 1024},
                                           TableCase{ZEP_LUT_YUV422_TO_RGB16, 16, 1048576},
                                           TableCase{ZEP_LUT_YUV422_TO_RGB15, 16, 1048576},
                                           TableCase{ZEP_LUT_YUV422_TO_PALETTED, 16, 32768}));

TEST(ConversionTables, RgbTableEntriesAreLittleEndianFormulaValues) {
  ErrorCapture errors;
  ScopedImage image;
  ASSERT_EQ(ZEP_image_conv_LUT_generate(image, ZEP_LUT_YUV422_TO_RGB16), 0u);
  const std::string path = temp_file("vrc_lut_entries.lut").string();
  ASSERT_EQ(ZEP_image_conv_LUT_save(image, ZEP_LUT_YUV422_TO_RGB16, path.c_str()), 0u);
  const Bytes table = file_bytes(path);
  std::filesystem::remove(path);
  // Index (Y >> 1) << 12 | (U >> 2) << 6 | V >> 2. Y 254, U = V = 128: grey 254 -> 0xFFFF.
  const uint32_t grey = (127u << 12) | (32u << 6) | 32u;
  EXPECT_EQ(table[2 * grey] | (table[2 * grey + 1] << 8), 0xFFFF);
  // Y 128, U 128, V 0: R = 128 - 180 -> 0, G = (131072 + 93568) >> 10 = 219, B = 128:
  // 0 | (216 << 3) | 16 = 0x06D0.
  const uint32_t reddish = (64u << 12) | (32u << 6) | 0u;
  EXPECT_EQ(table[2 * reddish] | (table[2 * reddish + 1] << 8), 0x06D0);
}

TEST(ConversionTables, ShortFilesMissingFilesAndMissingTables) {
  ErrorCapture errors;
  ScopedImage image;
  const std::string path = temp_file("vrc_lut_short.lut").string();
  {
    std::ofstream shortfile(path, std::ios::binary);
    shortfile << std::string(256, 'x');
  }
  EXPECT_EQ(ZEP_image_conv_LUT_load(image, ZEP_LUT_YUV422_TO_RGB16, path.c_str()), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().message, "Incorrect number of bytes read - correct LUT selected?");
  EXPECT_EQ(ZEP_image_conv_LUT_load(image, ZEP_LUT_Y8_TO_PALETTED, path.c_str()), 0u);
  std::filesystem::remove(path);
  EXPECT_EQ(ZEP_image_conv_LUT_load(image, ZEP_LUT_Y8_TO_PALETTED, path.c_str()), ZEP_ERR_OPEN);
  ZEP_image_conv_LUT_destroy(ZEP_LUT_YUV422_TO_PALETTED);
  EXPECT_EQ(ZEP_image_conv_LUT_save(image, ZEP_LUT_YUV422_TO_PALETTED, path.c_str()), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().message, "Conversion LUT does not exist");
  ZEP_image_conv_LUT_generate(image, ZEP_LUT_Y8_TO_PALETTED);
  EXPECT_EQ(ZEP_image_conv_LUT_save(image, ZEP_LUT_Y8_TO_PALETTED, "/nonexistent-dir/x.lut"), ZEP_ERR_OPEN);
  EXPECT_EQ(errors.last().message, "Failed to create file");
}

TEST(ConversionTables, DestroyingEveryImageReleasesTheTables) {
  ErrorCapture errors;
  {
    ScopedImage image, src, dst;
    ASSERT_EQ(ZEP_image_conv_LUT_generate(image, ZEP_LUT_YUV422_TO_RGB15), 0u);
    fill_image(src, ZEP_YUV422, 2, 1, {1, 2, 3, 4});
    ASSERT_EQ(ZEP_YUV422_to_RGB15_LUT(src, dst, 3), 0u);
  }
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  ScopedImage src, dst;
  fill_image(src, ZEP_YUV422, 2, 1, {1, 2, 3, 4});
  EXPECT_EQ(ZEP_YUV422_to_RGB15_LUT(src, dst, 3), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().message, "Conversion LUT does not exist");
  ZEP_YUV422_to_RGB15_LUT(src, dst, 4);
}

}  // namespace
