// The dispatcher's order of tests and messages, and the strip protocol every member follows.
#include "convert_support.h"

using namespace vrc::test;

namespace {

// Y8 of an RGB24 image, by the grey weights.
Bytes grey_of_rgb24(const Bytes &rgb, uint32_t width, uint32_t height) {
  const uint32_t src_line = bytes_per_line(ZEP_RGB24, width), dst_line = bytes_per_line(ZEP_Y8, width);
  Bytes grey(size_t{dst_line} * height, 0);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const uint8_t *p = &rgb[y * src_line + 3 * x];
      grey[y * dst_line + x] = static_cast<uint8_t>((77 * p[0] + 150 * p[1] + 29 * p[2]) >> 8);
    }
  return grey;
}

}  // namespace

TEST(Dispatcher, RefusesDitheringAfterReplacingTheFlagWord) {
  ErrorCapture errors;
  ScopedImage src, dst;
  fill_image(src, ZEP_Y8, 2, 1, {1, 2});
  ZEP_image_set_flags(dst, ZEP_FLAG_FIELDS, 1);
  EXPECT_EQ(ZEP_image_convert(src, dst, ZEP_RGB24, ZEP_FLAG_DITHER, 3), ZEP_ERR_UNSUPPORTED);
  ASSERT_EQ(errors.count(), 1u);
  EXPECT_EQ(errors.last().function, "ZEP_image_convert");
  EXPECT_EQ(errors.last().message, "Dithering is not yet supported");
  EXPECT_EQ(record_of(dst).flags, ZEP_FLAG_DITHER);
}

TEST(Dispatcher, UnknownOutputTypesAreRefused) {
  ErrorCapture errors;
  ScopedImage src, dst, yuv;
  fill_image(src, ZEP_RGB24, 2, 1, {1, 2, 3, 4, 5, 6});
  fill_image(yuv, ZEP_YUV422, 2, 1, {128, 128, 128, 128});
  // A YUV 4:2:2 source has only its own members: no general member is tried for it.
  const std::pair<uint32_t, int> refused[] = {{src, ZEP_CMYK32}, {src, ZEP_HSI},  {src, ZEP_Y1},
                                              {src, 200},        {yuv, ZEP_RGB8}, {yuv, ZEP_CMYK32}};
  for (const auto &[source, out] : refused) {
    errors.clear();
    EXPECT_EQ(ZEP_image_convert(source, dst, static_cast<uint16_t>(out), 0, 3), ZEP_ERR_UNSUPPORTED) << out;
    ASSERT_EQ(errors.count(), 1u);
    EXPECT_EQ(errors.last().function, "ZEP_image_convert");
    EXPECT_EQ(errors.last().message, "Unsupported or unrecognized output image format");
  }
  EXPECT_EQ(ZEP_image_convert(yuv, dst, ZEP_HSI, 0, 3), 0u);
  EXPECT_EQ(record_of(dst).type, ZEP_HSI);
}

TEST(Dispatcher, ClearsTheJpegFlagAfterEveryMemberAndChoosesTableMembers) {
  ErrorCapture errors;
  ScopedImage src, dst;
  fill_image(src, ZEP_YUV422, 2, 1, {200, 90, 100, 180});
  // The member copies the source's parameters, flags included; the dispatcher then clears JPEG.
  ZEP_image_set_flags(src, ZEP_FLAG_JPEG | ZEP_FLAG_FIELDS, 1);
  EXPECT_EQ(ZEP_image_convert(src, dst, ZEP_RGB24, ZEP_FLAG_JPEG, 3), 0u);
  EXPECT_EQ(record_of(dst).flags, ZEP_FLAG_FIELDS);
  ZEP_image_conv_LUT_destroy(ZEP_LUT_YUV422_TO_RGB16);
  EXPECT_EQ(ZEP_image_convert(src, dst, ZEP_RGB24, ZEP_FLAG_USE_LUT, 3), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().function, "ZEP_YUV422_to_RGB24_LUT_1_strip");
  EXPECT_EQ(errors.last().message, "Conversion LUT does not exist");
  EXPECT_EQ(record_of(dst).flags, ZEP_FLAG_FIELDS);  // cleared after a failing member too
  ZEP_image_convert(src, dst, ZEP_RGB24, ZEP_FLAG_USE_LUT, 4);  // the failure left it busy
}

TEST(Dispatcher, PalettedToDirectFollowsTheMap) {
  ErrorCapture errors;
  ScopedImage src, dst;
  fill_image(src, ZEP_PALETTED, 2, 1, {3, 200});
  ZEP_cmap_set_type(src, ZEP_CMAP_GREY, 0);
  ASSERT_EQ(ZEP_image_convert(src, dst, ZEP_PALETTED_TO_DIRECT, 0, 3), 0u);
  EXPECT_EQ(record_of(dst).type, ZEP_Y8);
  EXPECT_EQ(strip_bytes(dst), (Bytes{3, 200}));
  ZEP_cmap_set_RGB_colour(src, 200, 10, 20, 30);
  ASSERT_EQ(ZEP_image_convert(src, dst, ZEP_PALETTED_TO_DIRECT, 0, 3), 0u);
  EXPECT_EQ(record_of(dst).type, ZEP_RGB24);
  EXPECT_EQ(strip_bytes(dst), (Bytes{3, 3, 3, 10, 20, 30}));
  fill_image(src, ZEP_Y8, 2, 1, {3, 200});
  EXPECT_EQ(ZEP_image_convert(src, dst, ZEP_PALETTED_TO_DIRECT, 0, 3), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().function, "ZEP_paletted_to_RGB24_or_Y8");
  EXPECT_EQ(errors.last().message, "Input image should be paletted");
}

// Strip heights, including a last strip of a single line (10 = 3 + 3 + 3 + 1).
class StripProtocol : public ::testing::TestWithParam<uint32_t> {};

TEST_P(StripProtocol, StripsGiveTheWholeImageAndTheLastStripIsCut) {
  ErrorCapture errors;
  const uint32_t width = 7, height = 10, strip = GetParam();
  ScopedImage src, dst;
  const Bytes rgb = random_bytes(size_t{bytes_per_line(ZEP_RGB24, width)} * height, strip);
  fill_image(src, ZEP_RGB24, width, height, rgb);
  std::vector<uint32_t> heights;
  const Bytes grey = convert_in_strips(ZEP_convert_to_Y8, src, dst, rgb, strip, &heights);
  EXPECT_EQ(grey, grey_of_rgb24(rgb, width, height));
  std::vector<uint32_t> expected;
  for (uint32_t done = 0; done < height; done += strip) expected.push_back(std::min(strip, height - done));
  EXPECT_EQ(heights, expected);
  EXPECT_EQ(record_of(dst).type, ZEP_Y8);
  EXPECT_EQ(record_of(dst).height, height);
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Heights, StripProtocol, ::testing::Values(1u, 3u, 4u, 9u, 10u, 64u));

TEST(StripProtocol, HeaderOnlyCopyAndReset) {
  ErrorCapture errors;
  ScopedImage src, dst;
  fill_image(src, ZEP_RGB24, 4, 6, random_bytes(72, 1));
  ZEP_image_set_parameter(src, ZEP_LINES_THIS_STRIP, 0);
  ZEP_image_free_data(dst);
  EXPECT_EQ(ZEP_convert_to_BGRX32(src, dst, 3), 0u);
  EXPECT_EQ(record_of(dst).type, ZEP_BGRX32);
  EXPECT_EQ(record_of(dst).width, 4u);
  EXPECT_EQ(record_of(dst).data, nullptr);

  // Same type: a copy.
  const Bytes rgb = random_bytes(72, 2);
  fill_image(src, ZEP_RGB24, 4, 6, rgb);
  EXPECT_EQ(ZEP_convert_to_RGB24(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), rgb);

  // Abandoning after one strip: mode 4 starts the next conversion at line 0 again.
  ZEP_image_set_parameter(src, ZEP_LINES_THIS_STRIP, 2);
  EXPECT_EQ(ZEP_convert_to_Y8(src, dst, 3), 0u);
  EXPECT_EQ(ZEP_convert_to_Y8(src, dst, 4), 0u);
  fill_image(src, ZEP_RGB24, 4, 6, rgb);
  EXPECT_EQ(ZEP_convert_to_Y8(src, dst, 3), 0u);
  EXPECT_EQ(record_of(dst).lines_this_strip, 6u);
  EXPECT_EQ(strip_bytes(dst), grey_of_rgb24(rgb, 4, 6));
  EXPECT_EQ(errors.count(), 0u);
}

TEST(StripProtocol, SourceChecksAndTheirMessages) {
  ErrorCapture errors;
  ScopedImage src, dst;
  struct Case {
    ConvertFn convert;
    uint16_t type;
    const char *function;
    uint32_t code;
    const char *message;
  };
  const Case cases[] = {
      {ZEP_convert_to_Y8, ZEP_XRGB32, "ZEP_convert_to_Y8", ZEP_ERR_UNSUPPORTED, "Unsupported image format"},
      {ZEP_convert_to_Y8, ZEP_CMYK32, "ZEP_convert_to_Y8", ZEP_ERR_UNSUPPORTED, "Unsupported image format"},
      {ZEP_convert_to_RGB24, ZEP_XRGB32, "ZEP_convert_to_RGB24", ZEP_ERR_UNSUPPORTED, "Unsupported image format"},
      {ZEP_convert_to_RGB24, ZEP_PALETTED, "ZEP_convert_to_RGB24", ZEP_ERR_UNSUPPORTED, "Unsupported image format"},
      {ZEP_convert_to_YUV422, ZEP_RGB16, "ZEP_convert_to_YUV422", ZEP_ERR_UNSUPPORTED, "Unsupported image format"},
      {ZEP_YUV422_to_RGB24, ZEP_RGB24, "ZEP_YUV422_to_RGB24", ZEP_ERR_UNSUPPORTED, "Not 16 bit YUV 4:2:2"},
  };
  for (const Case &c : cases) {
    errors.clear();
    ZEP_ImageMake(src, 4, 2, c.type, 0);
    EXPECT_EQ(c.convert(src, dst, 3), c.code) << c.function;
    ASSERT_EQ(errors.count(), 1u) << c.function;
    EXPECT_EQ(errors.last().function, c.function);
    EXPECT_EQ(errors.last().message, c.message);
  }
  errors.clear();
  ZEP_ImageMake(src, 4, 2, ZEP_Y16, 0);
  ZEP_image_set_parameter(src, ZEP_DATA_WIDTH, 7);
  EXPECT_EQ(ZEP_convert_to_Y8(src, dst, 3), ZEP_ERR_CORRUPT);
  EXPECT_EQ(errors.last().message, "Data width must be > 7 for Y16");

  errors.clear();
  ZEP_ImageMake(src, 3, 2, ZEP_YUV422, 0);
  EXPECT_EQ(ZEP_YUV422_to_BGRX32(src, dst, 3), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "YUV422 image must be an even width");

  // A failed check: the grey member says "Corrupt images", the others "Corrupt image".
  ZEP_image_set_parameter(src, ZEP_IMAGE_DEPTH, 9);
  errors.clear();
  EXPECT_EQ(ZEP_convert_to_Y8(src, dst, 3), (ZEP_ERR_CORRUPT | 0x09));
  EXPECT_EQ(errors.last().function, "ZEP_convert_to_Y8");
  EXPECT_EQ(errors.last().message, "Corrupt images");
  EXPECT_EQ(ZEP_convert_to_RGB16(src, dst, 3), (ZEP_ERR_CORRUPT | 0x09));
  EXPECT_EQ(errors.last().message, "Corrupt image");
}
