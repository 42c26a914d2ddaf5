// The image record: defaults, type side effects, per-type checks, line rules, parameters,
// pointers and flags.
#include "imaging/core/jpeg_record.h"
#include "support/error_capture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

using vrc::test::ErrorCapture;
using vrc::test::ScopedImage;

TEST(ImageRecord, NewImageHasTheDocumentedDefaults) {
  ErrorCapture errors;
  ScopedImage image;
  ASSERT_FALSE(ZEP_IS_ERROR(image));
  const ZEP_IMAGE &r = image.record();
  EXPECT_EQ(r.type, 0);
  EXPECT_EQ(r.height, 32767u);
  EXPECT_EQ(r.line_align, 2u);
  EXPECT_EQ(r.lines_this_strip, 8u);
  EXPECT_EQ(r.current_frame, 1u);
  EXPECT_EQ(r.num_frames, 0u);
  EXPECT_EQ(r.data, nullptr);
  EXPECT_EQ(r.jpeg, nullptr);
  ASSERT_NE(r.cmap, nullptr);
  for (int i = 0; i < 1024; ++i) ASSERT_EQ(r.cmap[i], 0xAA) << i;
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_LIBRARY_ID), ZEP_LIBRARY_ID_VALUE);
  EXPECT_EQ(ZEP_image_get_parameter(0xDEAD, ZEP_LIBRARY_ID), ZEP_LIBRARY_ID_VALUE);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(ImageRecord, RecordLayoutMatchesTheFieldOrder) {
  EXPECT_EQ(offsetof(ZEP_IMAGE, type), 0u);
  EXPECT_EQ(offsetof(ZEP_IMAGE, data_width), 2u);
  EXPECT_EQ(offsetof(ZEP_IMAGE, name), 4u);
  EXPECT_EQ(offsetof(ZEP_IMAGE, infilename), 132u);
  EXPECT_EQ(offsetof(ZEP_IMAGE, outfilename), 260u);
  EXPECT_EQ(offsetof(ZEP_IMAGE, width), 388u);
  EXPECT_LT(offsetof(ZEP_IMAGE, current_frame), offsetof(ZEP_IMAGE, data));
  EXPECT_LT(offsetof(ZEP_IMAGE, data_aux), offsetof(ZEP_IMAGE, strip_bytes));
  EXPECT_LT(offsetof(ZEP_IMAGE, cmap_info), offsetof(ZEP_IMAGE, lines_this_strip));
  EXPECT_LT(offsetof(ZEP_IMAGE, field_mode), offsetof(ZEP_IMAGE, jpeg));
}

struct TypeCase {
  uint32_t type;
  uint32_t depth;
  uint16_t data_width;  // expected after setting from data width 0
};

class TypeSideEffects : public testing::TestWithParam<TypeCase> {};

TEST_P(TypeSideEffects, SettingTheTypeAssignsDepthAndDataWidth) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_flags(image, ZEP_FLAG_DIB, 1);
  ASSERT_EQ(ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, GetParam().type), 0u);
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_IMAGE_DEPTH), GetParam().depth);
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_DATA_WIDTH), GetParam().data_width);
  EXPECT_EQ(ZEP_image_get_flags(image, ZEP_FLAG_DIB), 0u);
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    EveryType, TypeSideEffects,
    testing::Values(TypeCase{1, 1, 0}, TypeCase{2, 8, 8}, TypeCase{3, 8, 8}, TypeCase{4, 8, 8},
                    TypeCase{5, 15, 0}, TypeCase{6, 16, 16}, TypeCase{7, 24, 0}, TypeCase{8, 24, 0},
                    TypeCase{9, 32, 0}, TypeCase{10, 32, 0}, TypeCase{11, 32, 0},
                    TypeCase{12, 16, 16}, TypeCase{13, 32, 0}, TypeCase{14, 16, 16},
                    TypeCase{15, 32, 0}, TypeCase{16, 32, 0}, TypeCase{17, 64, 0},
                    TypeCase{100, 32, 0}, TypeCase{101, 32, 0}, TypeCase{102, 32, 0},
                    TypeCase{103, 16, 16}, TypeCase{104, 16, 16}, TypeCase{106, 16, 16},
                    TypeCase{108, 32, 0}));

TEST(ImageRecord, RejectedTypesAreStoredAndReported) {
  ErrorCapture errors;
  ScopedImage image;
  for (uint32_t type : {18u, 99u, 105u, 107u, 200u}) {
    errors.clear();
    EXPECT_EQ(ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type), ZEP_ERR_UNSUPPORTED);
    EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE), type);
    ASSERT_EQ(errors.count(), 1u);
    EXPECT_EQ(errors.last().function, "ZEP_image_set_parameter");
    EXPECT_EQ(errors.last().message, "Unrecognized image type");
  }
  errors.clear();
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, 3);
  ZEP_image_set_parameter(image, ZEP_IMAGE_DEPTH, 24);
  EXPECT_EQ(ZEP_image_check(image), (ZEP_ERR_CORRUPT | 0x10));
  EXPECT_EQ(errors.last().message, "Unrecognised image");
  EXPECT_EQ(errors.last().function, "ZEP_image_check");
  // The line lengths and the frame count are brought up to date before the type is refused.
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE), 10u);
  EXPECT_EQ(image.record().skip_bytes, 1u);
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_NUM_FRAMES), 1u);
}

TEST(ImageRecord, PalettedTypeGivesAnEmptyMapItsFullSize) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_PALETTED);
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_CMAP_COLOURS), 256u);
  ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 16);
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_PALETTED);
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_CMAP_COLOURS), 16u);
}

struct CheckCase {
  uint16_t type;
  uint32_t depth;
  uint16_t data_width;
  uint32_t cmap_colours;
  uint32_t code;
  const char *message;
};

class PerTypeCheck : public testing::TestWithParam<CheckCase> {};

TEST_P(PerTypeCheck, FirstFailingTestDecides) {
  const CheckCase &c = GetParam();
  ErrorCapture errors;
  ScopedImage image;
  ZEP_IMAGE &r = image.record();
  r.type = c.type;
  r.depth = c.depth;
  r.data_width = c.data_width;
  r.cmap_colours = c.cmap_colours;
  r.width = 10;
  EXPECT_EQ(ZEP_image_check(image), c.code);
  if (c.code == 0) {
    EXPECT_EQ(errors.count(), 0u);
    if (c.type == ZEP_Y8) {
      EXPECT_EQ(r.data_width, 8);  // a passing grey image is made 8 bits wide
    }
  } else {
    ASSERT_EQ(errors.count(), 1u);
    EXPECT_EQ(errors.last().function, "ZEP_image_check");
    EXPECT_EQ(errors.last().code, c.code);
    EXPECT_EQ(errors.last().message, c.message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    EveryRule, PerTypeCheck,
    testing::Values(
        CheckCase{1, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x01), "Depth not 1"}, CheckCase{2, 16, 0, 0, (ZEP_ERR_CORRUPT | 0x02), "Depth not 8"},
        CheckCase{3, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x07), "Colourmap should not be 0 size"},
        CheckCase{3, 16, 0, 0, (ZEP_ERR_CORRUPT | 0x07), "Colourmap should not be 0 size"},
        CheckCase{3, 16, 0, 4, (ZEP_ERR_CORRUPT | 0x08), "Depth not 8"}, CheckCase{4, 7, 0, 0, (ZEP_ERR_CORRUPT | 0x0d), "Depth not 8"},
        CheckCase{5, 16, 0, 0, (ZEP_ERR_CORRUPT | 0x0c), "Depth not 15"}, CheckCase{6, 15, 0, 0, (ZEP_ERR_CORRUPT | 0x09), "Depth not 16"},
        CheckCase{12, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x09), "Depth not 16"}, CheckCase{103, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x09), "Depth not 16"},
        CheckCase{106, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x09), "Depth not 16"}, CheckCase{7, 32, 0, 0, (ZEP_ERR_CORRUPT | 0x03), "Depth not 24"},
        CheckCase{8, 32, 0, 0, (ZEP_ERR_CORRUPT | 0x03), "Depth not 24"}, CheckCase{9, 24, 0, 0, (ZEP_ERR_CORRUPT | 0x04), "Depth not 32"},
        CheckCase{15, 24, 0, 0, (ZEP_ERR_CORRUPT | 0x04), "Depth not 32"}, CheckCase{108, 24, 0, 0, (ZEP_ERR_CORRUPT | 0x04), "Depth not 32"},
        CheckCase{14, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x0a), "Data width not between 1 and 16"},
        CheckCase{14, 8, 17, 0, (ZEP_ERR_CORRUPT | 0x0a), "Data width not between 1 and 16"},
        CheckCase{14, 8, 12, 0, (ZEP_ERR_CORRUPT | 0x0b), "Depth not 16"}, CheckCase{16, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x0e), "Depth not 32"},
        CheckCase{17, 32, 0, 0, (ZEP_ERR_CORRUPT | 0x0f), "Depth not 64"}, CheckCase{101, 16, 0, 0, (ZEP_ERR_CORRUPT | 0x05), "Depth not 32"},
        CheckCase{102, 16, 0, 0, (ZEP_ERR_CORRUPT | 0x05), "Depth not 32"}, CheckCase{104, 32, 0, 0, (ZEP_ERR_CORRUPT | 0x06), "Depth not 16"},
        CheckCase{0, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x10), "Unrecognised image"}, CheckCase{50, 8, 0, 0, (ZEP_ERR_CORRUPT | 0x10), "Unrecognised image"},
        CheckCase{3, 8, 0, 1, 0, ""}, CheckCase{2, 8, 3, 0, 0, ""}, CheckCase{14, 16, 1, 0, 0, ""}, CheckCase{14, 16, 16, 0, 0, ""}));

struct LineCase {
  uint16_t type;
  uint32_t width;
  uint32_t line_align;
  uint32_t bytes_per_line;
  uint32_t skip_bytes;
};

class LineLength : public testing::TestWithParam<LineCase> {};

TEST_P(LineLength, CheckComputesPaddingAndLineAndStripLengths) {
  const LineCase &c = GetParam();
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, c.type);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, c.width);
  ZEP_image_set_parameter(image, ZEP_LINE_ALIGN, c.line_align);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 3);
  ASSERT_EQ(ZEP_image_check(image), 0u);
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE), c.bytes_per_line);
  EXPECT_EQ(image.record().skip_bytes, c.skip_bytes);
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_STRIP_BYTES), 3 * c.bytes_per_line);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, LineLength,
    testing::Values(LineCase{ZEP_RGB24, 3, 2, 10, 1}, LineCase{ZEP_RGB24, 3, 4, 12, 3},
                    LineCase{ZEP_RGB15, 5, 2, 10, 0}, LineCase{ZEP_Y8, 5, 2, 6, 1},
                    LineCase{ZEP_Y8, 5, 8, 8, 3}, LineCase{ZEP_Y1, 17, 2, 0, 0},
                    LineCase{ZEP_DATA32_8, 5, 2, 6, 1}, LineCase{ZEP_DATA64, 3, 2, 6, 0},
                    LineCase{ZEP_DCT32_A, 3, 4, 24, 0}, LineCase{ZEP_DATA16_B, 3, 4, 12, 2},
                    LineCase{ZEP_Y8, 5, 0, 5, 0}));

TEST(ImageRecord, CalcSkipBytesAndTotalStrips) {
  EXPECT_EQ(ZEP_image_calc_skip_bytes(3, 15, 4), 2u);
  EXPECT_EQ(ZEP_image_calc_skip_bytes(4, 24, 4), 0u);
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, 10);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 4);
  EXPECT_EQ(ZEP_image_calc_total_strips(image), 3u);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 0);
  EXPECT_EQ(ZEP_image_calc_total_strips(image), 0u);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, 0x20000);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 1);
  EXPECT_EQ(ZEP_image_calc_total_strips(image), 0u);  // 0x20000 cut to 16 bits
}

TEST(ImageRecord, OversizedLinesFailTheCheckInsteadOfWrapping) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_RGBX32);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, 0x40000000);
  EXPECT_EQ(ZEP_image_check(image), (ZEP_ERR_CORRUPT | 0x11));
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, 0x10000);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 0x10000);
  EXPECT_EQ(ZEP_image_check(image), (ZEP_ERR_CORRUPT | 0x11));
  EXPECT_EQ(errors.last().message, "Image too large");
}

TEST(ImageRecord, ParametersReadBackAndComputedOnesFollowTheirRules) {
  ErrorCapture errors;
  ScopedImage image;
  const uint16_t plain[] = {ZEP_IMAGE_WIDTH,    ZEP_IMAGE_HEIGHT, ZEP_IMAGE_DEPTH, ZEP_LINES_THIS_STRIP,
                            ZEP_BYTES_PER_LINE, ZEP_STRIP_BYTES,  ZEP_NUM_FRAMES,  ZEP_CURRENT_FRAME,
                            ZEP_CMAP_COLOURS,   ZEP_FIELD_MODE,   ZEP_LINE_ALIGN,  ZEP_DERIVED_LINE_ALIGN};
  uint32_t value = 1000;
  for (uint16_t id : plain) {
    ASSERT_EQ(ZEP_image_set_parameter(image, id, ++value), 0u) << id;
    EXPECT_EQ(ZEP_image_get_parameter(image, id), value) << id;
  }
  EXPECT_EQ(errors.count(), 0u);

  struct { uint16_t type; uint32_t bytes; } per_pixel[] = {
      {ZEP_RGB8, 3}, {ZEP_RGB15, 3}, {ZEP_RGB16, 3}, {ZEP_YUV422, 3}, {ZEP_Y16, 1},
      {ZEP_Y8, 1},   {ZEP_RGB24, 3}, {ZEP_BGRX32, 4}, {ZEP_DATA64, 8}};
  for (auto [type, bytes] : per_pixel) {
    ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type);
    EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_BYTES_PER_PIXEL), bytes) << type;
  }

  EXPECT_EQ(ZEP_image_get_parameter(image, 99), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Unknown parameter");
  for (uint16_t id : {uint16_t{22}, uint16_t{26}, uint16_t{99}}) {
    errors.clear();
    EXPECT_EQ(ZEP_image_set_parameter(image, id, 1), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(errors.last().message, "");
  }
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_JPEG_LENGTH), ZEP_ERR_HANDLE);
  EXPECT_EQ(errors.last().message, "JPEG structure does not exist");
  EXPECT_EQ(ZEP_image_set_parameter(image, ZEP_JPEG_LENGTH, 5), ZEP_ERR_HANDLE);
  EXPECT_EQ(errors.last().message, "JPEG structure does not exist");
}

TEST(ImageRecord, CheckedOperationsRejectUnknownHandlesWithAnEmptyText) {
  ErrorCapture errors;
  const uint32_t dead = 65000;
  EXPECT_EQ(ZEP_image_get_parameter(dead, ZEP_IMAGE_WIDTH), ZEP_ERR_HANDLE);
  EXPECT_EQ(ZEP_image_set_parameter(dead, ZEP_IMAGE_WIDTH, 1), ZEP_ERR_HANDLE);
  EXPECT_EQ(ZEP_image_get_flags(dead, 1), ZEP_ERR_HANDLE);
  EXPECT_EQ(ZEP_image_set_flags(dead, 1, 1), ZEP_ERR_HANDLE);
  EXPECT_EQ(ZEP_image_set_ptr(dead, ZEP_DATA_PTR, nullptr), ZEP_ERR_HANDLE);
  EXPECT_EQ(ZEP_image_free_data(dead), ZEP_ERR_HANDLE);
  EXPECT_EQ(ZEP_image_calc_total_strips(dead), ZEP_ERR_HANDLE);
  EXPECT_EQ(ZEP_image_set_infilename(dead, "a"), ZEP_ERR_HANDLE);
  EXPECT_EQ(ZEP_image_set_outfilename(dead, "a"), ZEP_ERR_HANDLE);
  ASSERT_EQ(errors.count(), 9u);
  for (const auto &report : errors.all()) {
    EXPECT_EQ(report.code, ZEP_ERR_HANDLE);
    EXPECT_EQ(report.message, "");
  }
  errors.clear();
  EXPECT_EQ(ZEP_image_get_ptr(dead, ZEP_DATA_PTR), nullptr);
  EXPECT_EQ(ZEP_image_check(dead), ZEP_ERR_CORRUPT);
  EXPECT_EQ(ZEP_image_destroy(dead), 0u);
  EXPECT_EQ(ZEP_image_check(0), ZEP_ERR_CORRUPT);
  EXPECT_EQ(ZEP_image_check(0xFFFFFFFF), ZEP_ERR_CORRUPT);
  EXPECT_EQ(errors.count(), 0u);
  EXPECT_EQ(ZEP_get_width(dead), 0u);
  EXPECT_EQ(ZEP_image_get_infilename(dead), nullptr);
}

TEST(ImageRecord, PointersAndTheJpegRecordHooks) {
  ErrorCapture errors;
  ScopedImage image;
  uint8_t map[1024] = {};
  uint8_t *old_map = static_cast<uint8_t *>(ZEP_image_get_ptr(image, ZEP_CMAP_PTR));
  EXPECT_EQ(ZEP_image_set_ptr(image, ZEP_CMAP_PTR, map), 0u);
  EXPECT_EQ(ZEP_image_get_ptr(image, ZEP_CMAP_PTR), map);
  ZEP_image_set_ptr(image, ZEP_CMAP_PTR, old_map);
  ZEP_IMAGE *record = &image.record();
  EXPECT_EQ(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR), record);
  ZEP_IMAGE spare{};
  spare.width = 77;
  ASSERT_EQ(ZEP_image_set_ptr(image, ZEP_IMAGE_RECORD_PTR, &spare), 0u);  // the slot now names it
  EXPECT_EQ(ZEP_image_get_parameter(image, ZEP_IMAGE_WIDTH), 77u);
  ZEP_image_set_ptr(image, ZEP_IMAGE_RECORD_PTR, record);
  for (uint16_t id : {uint16_t{ZEP_JPEG_BUFFER_PTR}, uint16_t{ZEP_JPEG_POSITION_PTR}, uint16_t{ZEP_JPEG_INFO_BLOCK}}) {
    EXPECT_EQ(ZEP_image_get_ptr(image, id), nullptr);
    errors.clear();
    EXPECT_EQ(ZEP_image_set_ptr(image, id, map), ZEP_ERR_HANDLE);
    EXPECT_EQ(errors.last().message, "Not a JPEG image");
  }
  EXPECT_EQ(ZEP_image_set_ptr(image, 107, map), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Unrecognized pointer type");
  EXPECT_EQ(ZEP_image_get_ptr(image, ZEP_JPEG_RECORD_PTR), nullptr);
}

TEST(ImageRecord, JpegPointersAndLengthReachTheRecordAndMoveHandsTheStreamOver) {
  ErrorCapture errors;
  ScopedImage src, dst;
  ZEP_image_set_ptr(src, ZEP_JPEG_RECORD_PTR, vrc::core::jpeg_record_create());
  ZEP_image_set_ptr(dst, ZEP_JPEG_RECORD_PTR, vrc::core::jpeg_record_create());
  auto *stream = static_cast<uint8_t *>(std::malloc(16));  // freed with dst's record
  char info[ZEP_JPEG_INFO_BLOCK_BYTES];
  std::memset(info, 'i', sizeof info);
  EXPECT_EQ(ZEP_image_set_ptr(src, ZEP_JPEG_BUFFER_PTR, stream), 0u);
  EXPECT_EQ(ZEP_image_set_ptr(src, ZEP_JPEG_POSITION_PTR, stream + 4), 0u);
  EXPECT_EQ(ZEP_image_set_ptr(src, ZEP_JPEG_INFO_BLOCK, info), 0u);
  EXPECT_EQ(ZEP_image_set_parameter(src, ZEP_JPEG_LENGTH, 16), 0u);
  EXPECT_EQ(ZEP_image_get_ptr(src, ZEP_JPEG_BUFFER_PTR), stream);
  EXPECT_EQ(ZEP_image_get_ptr(src, ZEP_JPEG_POSITION_PTR), stream + 4);
  EXPECT_EQ(std::memcmp(ZEP_image_get_ptr(src, ZEP_JPEG_INFO_BLOCK), info, sizeof info), 0);
  EXPECT_EQ(ZEP_image_get_parameter(src, ZEP_JPEG_LENGTH), 16u);

  ZEP_image_set_flags(src, ZEP_FLAG_JPEG, 1);
  ASSERT_EQ(ZEP_image_move(src, dst), 0u);
  EXPECT_EQ(ZEP_image_get_ptr(dst, ZEP_JPEG_BUFFER_PTR), stream);
  EXPECT_EQ(ZEP_image_get_ptr(dst, ZEP_JPEG_POSITION_PTR), stream + 4);
  EXPECT_EQ(ZEP_image_get_ptr(src, ZEP_JPEG_BUFFER_PTR), nullptr);
  EXPECT_EQ(ZEP_image_get_ptr(src, ZEP_JPEG_POSITION_PTR), nullptr);
  EXPECT_EQ(std::memcmp(ZEP_image_get_ptr(dst, ZEP_JPEG_INFO_BLOCK), info, sizeof info), 0);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(ImageRecord, FlagsTestAnyBitAndBulkSetReachesEveryImage) {
  ErrorCapture errors;
  ScopedImage a, b;
  EXPECT_EQ(ZEP_image_set_flags(a, ZEP_FLAG_FIELDS | ZEP_FLAG_USE_LUT, 1), 0u);
  EXPECT_EQ(ZEP_image_get_flags(a, ZEP_FLAG_USE_LUT | ZEP_FLAG_DIB), 1u);
  EXPECT_EQ(ZEP_image_get_flags(a, ZEP_FLAG_DIB), 0u);
  ZEP_image_set_flags(a, ZEP_FLAG_FIELDS, 2);  // any value but 1 clears
  EXPECT_EQ(ZEP_image_get_flags(a, ZEP_FLAG_FIELDS), 0u);
  EXPECT_EQ(ZEP_image_set_flags(ZEP_ALL_IMAGES, ZEP_FLAG_DITHER, 1), 0u);
  EXPECT_EQ(ZEP_image_get_flags(a, ZEP_FLAG_DITHER), 1u);
  EXPECT_EQ(ZEP_image_get_flags(b, ZEP_FLAG_DITHER), 1u);
}

TEST(ImageRecord, FileNamesAreCutToFitTheirFields) {
  ErrorCapture errors;
  ScopedImage image, other;
  std::string long_name(300, 'n');
  EXPECT_EQ(ZEP_image_set_infilename(image, long_name.c_str()), 0u);
  EXPECT_EQ(std::string(ZEP_image_get_infilename(image)), long_name.substr(0, 127));
  EXPECT_EQ(ZEP_image_set_outfilename(image, "out.bmp"), 0u);
  EXPECT_STREQ(ZEP_image_get_outfilename(image), "out.bmp");
  ZEP_copy_outfilename(other, image);
  EXPECT_STREQ(ZEP_image_get_outfilename(other), "out.bmp");
  EXPECT_EQ(ZEP_image_set_infilename(image, nullptr), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "File name is NULL");
  EXPECT_EQ(image.record().name[0], '\0');
}
