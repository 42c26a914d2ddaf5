// The header inspection behind ZEP_file_inspect and ZEP_file_fix_up: the library's own files pass
// it untouched, and each correction makes exactly the pixels the file means.
#include "files/files_support.h"
#include "imaging/files/file_registry.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using vrc::test::Bytes;
using vrc::test::ErrorCapture;
using vrc::test::ScopedImage;
using vrc::test::TempDir;

ZEP_FILE_INSPECTION inspect(const std::string &path) {
  ZEP_FILE_INSPECTION inspection;
  EXPECT_EQ(ZEP_file_inspect(path.c_str(), &inspection), 0u) << path;
  return inspection;
}

// Every pixel type each writer stores reads back without a refusal, a warning or a correction,
// except where the library's own layout falls short: the colour map of a paletted EPS page, whose
// last colour the reader drops, and BGRX32 rows written to BMP 3 x 7 bytes long, unpadded, where
// the header says 24.
TEST(Inspect, OwnFilesNeedNothing) {
  ErrorCapture errors;
  TempDir folder;
  for (const vrc::files::FileFormatRow &row : vrc::files::file_format_rows()) {
    if (row.inspect == nullptr) continue;
    for (const uint16_t type : row.stored_types) {
      SCOPED_TRACE(std::string(row.name) + " type " + std::to_string(type));
      ScopedImage image;
      vrc::test::make_pattern_image(image, 7, 5, type);
      const std::string path = folder.file("own" + std::to_string(type));
      ZEP_image_set_outfilename(image, path.c_str());
      ASSERT_EQ(ZEP_image_write(image, 0, row.code, ZEP_ACTION_DATA), 0u);
      const ZEP_FILE_INSPECTION inspection = inspect(path);
      EXPECT_EQ(inspection.format, row.code);
      EXPECT_EQ(inspection.refused, 0u) << inspection.cause;
      const bool paletted_eps = row.code == ZEP_FILE_EPS && type == ZEP_PALETTED;
      const bool short_rows = row.code == ZEP_FILE_BMP && type == ZEP_BGRX32;
      EXPECT_EQ(inspection.fix_ups, paletted_eps ? ZEP_FIX_COLOUR_MAP : 0u);
      const char *warning = paletted_eps ? "EPS colour map: its last colour"
                            : short_rows
                                ? "the file ends before its pixel data does: 105 of 120 bytes"
                                : "";
      EXPECT_EQ(std::string(inspection.warnings).substr(0, std::strlen(warning)), warning)
          << inspection.warnings;
      EXPECT_EQ(inspection.warnings[0] == '\0', *warning == '\0') << inspection.warnings;
    }
  }
  EXPECT_EQ(errors.count(), 0u);
}

// A little-endian WhiteIsZero file of 12-bit-wide values in 16-bit samples (0x0123, 0x0FFF): the
// corrections swap the bytes first, then invert within 16 bits.
TEST(Inspect, SwapsThenInvertsSixteenBitSamples) {
  ErrorCapture errors;
  TempDir folder;
  const Bytes file = {'I',  'I',  42,   0,   8, 0, 0, 0,               // header
                      7,    0,                                         // 7 entries
                      0x00, 1,    3,    0,   1, 0, 0, 0, 2,  0, 0, 0,  // ImageWidth 2
                      0x01, 1,    3,    0,   1, 0, 0, 0, 1,  0, 0, 0,  // ImageLength 1
                      0x02, 1,    3,    0,   1, 0, 0, 0, 16, 0, 0, 0,  // BitsPerSample 16
                      0x03, 1,    3,    0,   1, 0, 0, 0, 1,  0, 0, 0,  // Compression 1
                      0x06, 1,    3,    0,   1, 0, 0, 0, 0,  0, 0, 0,  // WhiteIsZero
                      0x11, 1,    4,    0,   1, 0, 0, 0, 98, 0, 0, 0,  // StripOffsets 98
                      0x15, 1,    3,    0,   1, 0, 0, 0, 1,  0, 0, 0,  // SamplesPerPixel 1
                      0,    0,    0,    0,                             // no next directory
                      0x23, 0x01, 0xFF, 0x0F};
  ASSERT_EQ(file.size(), 102u);
  vrc::test::write_file(folder.file("white.tif"), file);
  const ZEP_FILE_INSPECTION inspection = inspect(folder.file("white.tif"));
  ASSERT_EQ(inspection.refused, 0u) << inspection.cause;
  EXPECT_EQ(inspection.fix_ups, ZEP_FIX_SWAP_16_BIT | ZEP_FIX_INVERT_GREY);
  EXPECT_STREQ(inspection.warnings,
               "little-endian 16-bit samples: bytes swapped after reading\n"
               "WhiteIsZero grey: values inverted after reading\n");
  ScopedImage image;
  ASSERT_EQ(vrc::test::read_tiff(image, folder.file("white.tif")), 0u);
  ASSERT_EQ(ZEP_file_fix_up(image, &inspection), 0u);
  const Bytes samples = vrc::test::line_bytes(image, 0, 4);
  EXPECT_EQ(ZEP_mget_ui16i(&samples[0]), 0xFFFF - 0x0123);
  EXPECT_EQ(ZEP_mget_ui16i(&samples[2]), 0xFFFF - 0x0FFF);
}

TEST(Inspect, ReportsMissingFilesAndImages) {
  ErrorCapture errors;
  ZEP_FILE_INSPECTION inspection;
  EXPECT_EQ(ZEP_file_inspect("/nonexistent/file.tif", &inspection), ZEP_ERR_OPEN);
  EXPECT_EQ(errors.last().message, "Failed to open file");
  EXPECT_EQ(ZEP_file_fix_up(0xFFFF, &inspection), ZEP_ERR_HANDLE);
  EXPECT_EQ(errors.last().function, "ZEP_file_fix_up");
}

}  // namespace
