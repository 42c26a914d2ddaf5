// The Display page's tables: capture formats as saved and loaded, line alignment, the file
// types of the dialogs, numbered file names, subsampling and the capture-format coercion.
#include <gtest/gtest.h>

#include "control/pages/sequence_formats.h"
#include "platform/board/vrx_params.h"
#include "vrcw32/zep_core.h"
#include "vrcw32/zep_files.h"

namespace {

using namespace vrc::pages;
using vrx::capture_format;

struct FormatRow {
  uint32_t k;
  uint16_t save_type;
  uint32_t bytes_per_pixel;
  uint32_t width_640;  // saved width of a 640-pixel capture
  uint16_t load_type;
};

class SequenceFormatRows : public ::testing::TestWithParam<FormatRow> {};

TEST_P(SequenceFormatRows, MapSaveAndLoad) {
  const FormatRow &row = GetParam();
  const SequenceFormat *format = sequence_format(capture_format(row.k));
  ASSERT_NE(format, nullptr);
  EXPECT_EQ(format->save_type, row.save_type);
  EXPECT_EQ(format->bytes_per_pixel, row.bytes_per_pixel);
  EXPECT_EQ(saved_width(*format, 640), row.width_640);
  EXPECT_EQ(format->load_type, row.load_type);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SequenceFormatRows,
    ::testing::Values(
        FormatRow{0, ZEP_Y8, 1, 640, ZEP_Y8}, FormatRow{18, ZEP_Y16, 2, 640, ZEP_Y16},
        FormatRow{26, ZEP_BGR24, 1, 320, 0}, FormatRow{2, ZEP_Y16, 1, 1280, ZEP_Y16},
        FormatRow{4, ZEP_Y16, 1, 640, ZEP_Y16}, FormatRow{9, ZEP_RGB15, 2, 640, ZEP_RGB15},
        FormatRow{10, ZEP_RGB16, 2, 640, ZEP_RGB16}, FormatRow{16, ZEP_BGR24, 3, 640, ZEP_BGR24},
        FormatRow{17, ZEP_RGB24, 3, 640, ZEP_RGB24}, FormatRow{31, ZEP_BGR24, 3, 640, ZEP_Y16},
        FormatRow{6, ZEP_XBGR32, 4, 640, ZEP_XBGR32}, FormatRow{11, ZEP_XRGB32, 4, 640, ZEP_XRGB32},
        FormatRow{14, ZEP_Y16, 1, 1280, ZEP_Y16}, FormatRow{27, ZEP_Y16, 1, 1920, ZEP_Y16},
        FormatRow{13, ZEP_Y16, 1, 1920, ZEP_Y16}, FormatRow{29, ZEP_YUV422, 2, 640, ZEP_YUV422},
        FormatRow{3, ZEP_Y8, 1, 640, 0}));

TEST(SequenceFormats, OnlyCaptureFormatCodesHaveRows) {
  EXPECT_EQ(sequence_format(capture_format(0) - 1), nullptr);
  EXPECT_EQ(sequence_format(capture_format(32)), nullptr);
}

TEST(SequenceFormats, LineAlignPadsToTheLineLength) {
  struct Case {
    uint32_t line_length, pixel_bytes, align;
  };
  for (const Case c : {Case{640, 640, 0}, Case{642, 641, 2}, Case{644, 640, 4}, Case{646, 640, 4},
                       Case{648, 640, 8}, Case{1280, 640, 512}, Case{16, 4, 8}}) {
    EXPECT_EQ(saved_line_align(c.line_length, c.pixel_bytes), c.align)
        << c.line_length << " " << c.pixel_bytes;
  }
}

TEST(SequenceFormats, FileTypesByFilterIndex) {
  const char *save[] = {"tif", "tif", "jpg", "bmp", "raw", "tif"};
  const uint16_t save_codes[] = {3, 3, 8, 10, 11, 3};
  const char *load[] = {"jpg", "jpg", "tif", "bmp", "raw", "jpg"};
  const uint16_t load_codes[] = {8, 8, 3, 10, 11, 8};
  for (int index = 0; index <= 5; ++index) {
    EXPECT_STREQ(save_file_type(index).extension, save[index]);
    EXPECT_EQ(save_file_type(index).zep_format, save_codes[index]);
    EXPECT_STREQ(load_file_type(index).extension, load[index]);
    EXPECT_EQ(load_file_type(index).zep_format, load_codes[index]);
  }
}

TEST(SequenceFormats, FileNamesAreNumberedOnlyForARange) {
  EXPECT_EQ(sequence_file_name("/d/seq.bmp", 3, 3, 3, "bmp"), "/d/seq.bmp");
  EXPECT_EQ(sequence_file_name("/d/seq.bmp", 1, 12, 1, "bmp"), "/d/seq001.bmp");
  EXPECT_EQ(sequence_file_name("/d/seq.bmp", 1, 12, 12, "bmp"), "/d/seq012.bmp");
  EXPECT_EQ(sequence_file_name("/d/seq.bmp", 5, 7, 7, "tif"), "/d/seq003.tif");
  EXPECT_EQ(sequence_file_name("/d/seq", 1, 2, 2, "tif"), "/d/seq002");
  EXPECT_EQ(sequence_file_name("/d.x/seq", 1, 1, 1, "tif"), "/d.x/seq");
}

TEST(SequenceFormats, SubsamplingCodes) {
  EXPECT_EQ(subsampled_size(641, 0xC0020701), 641u);
  EXPECT_EQ(subsampled_size(641, 0xC0020702), 321u);
  EXPECT_EQ(subsampled_size(641, 0xC0020703), 161u);
  EXPECT_EQ(subsampled_size(641, 0xC0020704), 81u);
  EXPECT_EQ(subsampled_size(641, 0xC0020705), std::nullopt);
  EXPECT_EQ(subsampled_size(641, 0), std::nullopt);
}

struct CoercionCase {
  uint32_t depth, colour, k_in, k_out;
};
class Coercion : public ::testing::TestWithParam<CoercionCase> {};

TEST_P(Coercion, KeepsWhatTheCameraCanFill) {
  const CoercionCase &c = GetParam();
  EXPECT_EQ(coerced_capture_format(c.depth, c.colour, capture_format(c.k_in)),
            capture_format(c.k_out));
}

constexpr uint32_t kMono = 1, kRgb = 3, kBayer = 0xC0021202, kYuv = 0xC0021205;
INSTANTIATE_TEST_SUITE_P(
    Table, Coercion,
    ::testing::Values(CoercionCase{8, kMono, 0, 0}, CoercionCase{8, kMono, 21, 21},
                      CoercionCase{8, kMono, 18, 0}, CoercionCase{8, kBayer, 16, 21},
                      CoercionCase{8, kBayer, 31, 31}, CoercionCase{8, kMono, 31, 0},
                      CoercionCase{10, kMono, 0, 0}, CoercionCase{10, kMono, 22, 22},
                      CoercionCase{10, kMono, 19, 18}, CoercionCase{10, kBayer, 19, 22},
                      CoercionCase{12, kMono, 26, 26}, CoercionCase{12, kMono, 30, 30},
                      CoercionCase{12, kMono, 20, 19}, CoercionCase{12, kBayer, 1, 23},
                      CoercionCase{14, kMono, 1, 20}, CoercionCase{14, kBayer, 25, 24},
                      CoercionCase{16, kMono, 25, 25}, CoercionCase{16, kMono, 2, 1},
                      CoercionCase{16, kBayer, 2, 25}, CoercionCase{32, kMono, 1, 1},
                      CoercionCase{32, kMono, 16, 2}, CoercionCase{32, kBayer, 16, 2},
                      CoercionCase{32, kBayer, 31, 31}, CoercionCase{8, kRgb, 16, 16},
                      CoercionCase{8, kYuv, 29, 29}, CoercionCase{9, kMono, 16, 16}));

}  // namespace
