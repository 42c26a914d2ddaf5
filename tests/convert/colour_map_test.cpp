// Colour maps: entry access and its index rule, named colours and preset maps, the grey and colour
// tests, the closest-colour search, map generation over strips and generations, and conversion to
// paletted images.
#include "convert_support.h"

using namespace vrc::test;

namespace {

uint32_t entry(uint32_t image, uint16_t index) { return ZEP_cmap_get_RGB_colour(image, index); }

TEST(ColourMap, PresetsAndNamedColours) {
  ErrorCapture errors;
  ScopedImage image;
  ASSERT_EQ(ZEP_cmap_set_type(image, ZEP_CMAP_NAMED, 0), 0u);
  EXPECT_EQ(record_of(image).cmap_colours, 16u);
  EXPECT_EQ(entry(image, 1), 0x000098u);
  EXPECT_EQ(entry(image, 8), 0x4C4C4Cu);
  EXPECT_EQ(entry(image, 14), 0xFFFF00u);
  ASSERT_EQ(ZEP_cmap_set_type(image, ZEP_CMAP_CUBE_332, 0), 0u);
  EXPECT_EQ(record_of(image).cmap_colours, 256u);
  EXPECT_EQ(entry(image, 0), 0x1F1F1Fu);
  EXPECT_EQ(entry(image, (5 << 5) | (2 << 2) | 3), (191u << 16) | (95u << 8) | 223u);
  ASSERT_EQ(ZEP_cmap_set_type(image, ZEP_CMAP_GREY, 0), 0u);
  EXPECT_EQ(entry(image, 77), 0x4D4D4Du);
  EXPECT_EQ(ZEP_cmap_is_grayscale(image), 1u);
  ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 5);
  ASSERT_EQ(ZEP_cmap_set_type(image, ZEP_CMAP_BLACK, 0), 0u);
  EXPECT_EQ(record_of(image).cmap_colours, 5u);
  EXPECT_EQ(entry(image, 5), 0u);

  ASSERT_EQ(ZEP_cmap_set_colour(image, 2, ZEP_COLOUR_MAGENTA), 0u);
  EXPECT_EQ(entry(image, 2), 0xFF00FFu);
  EXPECT_EQ(ZEP_cmap_is_grayscale(image), 0u);
  EXPECT_EQ(errors.count(), 0u);
  EXPECT_EQ(ZEP_cmap_set_colour(image, 2, 16), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "Unrecognised colour");
  EXPECT_EQ(ZEP_cmap_set_type(image, 4, 0), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Unrecognized colourmap type");
}

TEST(ColourMap, IndexOnePastTheUsedEntriesIsAllowed) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 4);
  EXPECT_EQ(ZEP_cmap_set_RGB_colour(image, 4, 1, 2, 3), 0u);
  EXPECT_EQ(entry(image, 4), 0x010203u);
  EXPECT_EQ(ZEP_cmap_set_RGB_colour(image, 5, 1, 2, 3), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().function, "ZEP_cmap_set_RGB_colour");
  EXPECT_EQ(errors.last().message, "Illegal colourmap index (> max number of colours)");
  // With all 256 entries in use, "one past" would leave the map: refused the same way.
  ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 256);
  EXPECT_EQ(entry(image, 256), ZEP_ERR_BAD_PARAM);
  void *map = ZEP_image_get_ptr(image, ZEP_CMAP_PTR);
  ZEP_image_set_ptr(image, ZEP_CMAP_PTR, nullptr);
  EXPECT_EQ(ZEP_cmap_is_grayscale(image), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().message, "Colourmap is NULL");
  ZEP_image_set_ptr(image, ZEP_CMAP_PTR, map);
}

TEST(ColourMap, IsColourKeepsItsTable) {
  ErrorCapture errors;
  ScopedImage image;
  for (uint16_t type = ZEP_Y1; type <= ZEP_HSI; ++type) {
    if (type == ZEP_PALETTED || type == 105 || type == 107 || (type > ZEP_DATA64 && type < ZEP_DATA32)) continue;
    ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type);
    const bool colour = (type >= ZEP_RGB8 && type <= ZEP_CMYK32) || type == ZEP_DATA16_C;
    EXPECT_EQ(ZEP_image_is_colour(image), colour ? 1u : 0u) << type;
  }
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_PALETTED);
  ZEP_cmap_set_type(image, ZEP_CMAP_GREY, 0);
  EXPECT_EQ(ZEP_image_is_colour(image), 0u);
  ZEP_cmap_set_type(image, ZEP_CMAP_CUBE_332, 0);
  EXPECT_EQ(ZEP_image_is_colour(image), 1u);
}

TEST(ColourMap, ClosestColourTakesTheLowestIndexOfATie) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 3);
  ZEP_cmap_set_RGB_colour(image, 0, 0, 0, 0);
  ZEP_cmap_set_RGB_colour(image, 1, 10, 0, 0);
  ZEP_cmap_set_RGB_colour(image, 2, 0, 10, 0);
  EXPECT_EQ(ZEP_cmap_find_closest_colour(image, 5, 0, 0), 0u);   // 25 against 25
  EXPECT_EQ(ZEP_cmap_find_closest_colour(image, 6, 6, 0), 1u);   // 36 + 16 against 16 + 36
  EXPECT_EQ(ZEP_cmap_find_closest_colour(image, 0, 255, 0), 2u);
  ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 0);
  EXPECT_EQ(ZEP_cmap_find_closest_colour(image, 0, 255, 0), 0u);
}

TEST(CmapGenerate, SingleGreyValue) {
  ErrorCapture errors;
  ScopedImage image;
  fill_image(image, ZEP_Y8, 6, 4, Bytes(24, 100));
  record_of(image).cmap_info = ZEP_cmap_create_info();
  static_cast<ZEP_CMAP_INFO *>(record_of(image).cmap_info)->grey_bits = 8;
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 3);
  ASSERT_EQ(ZEP_cmap_generate(image, 256, 3), 0u);
  ASSERT_EQ(ZEP_cmap_generate(image, 256, 3), 0u);
  EXPECT_EQ(record_of(image).lines_this_strip, 1u);  // the last strip was cut to the remaining line
  const auto &info = *static_cast<const ZEP_CMAP_INFO *>(record_of(image).cmap_info);
  EXPECT_EQ(entry(image, 0), 0x646464u);
  EXPECT_EQ(info.colours_found, 1u);
  EXPECT_EQ(info.coverage, 100u);
  for (uint16_t e = 1; e < 256; ++e) ASSERT_EQ(entry(image, e), 0u) << e;
  uint32_t counts[256];
  ASSERT_EQ(ZEP_cmap_get_occurrences(image, counts), 0u);
  EXPECT_EQ(counts[0], 24u);
  EXPECT_EQ(counts[1], 0u);
}

// A grey source's keys use the grey depth only, whatever the colour depths of the record say.
TEST(CmapGenerate, GreyConversionUsesTheHistogramWhateverTheColourDepths) {
  ErrorCapture errors;
  ScopedImage image, out;
  fill_image(image, ZEP_Y8, 6, 1, {70, 70, 70, 70, 70, 130});
  record_of(image).cmap_info = ZEP_cmap_create_info();
  auto &info = *static_cast<ZEP_CMAP_INFO *>(record_of(image).cmap_info);
  info.grey_bits = 2;
  info.red_bits = info.green_bits = info.blue_bits = 5;
  ASSERT_EQ(ZEP_cmap_generate(image, 2, 3), 0u);
  EXPECT_EQ(entry(image, 0), 0x606060u);  // key 1: 64 + 32
  EXPECT_EQ(entry(image, 1), 0xA0A0A0u);  // key 2: 128 + 32
  // 128 has key 2 (entry 1), although it lies as near entry 0 as entry 1.
  fill_image(image, ZEP_Y8, 6, 1, {128, 70, 127, 0, 255, 160});
  ASSERT_EQ(ZEP_convert_to_paletted(image, out, 3), 0u);
  EXPECT_EQ(strip_bytes(out), (Bytes{1, 0, 0, 0, 1, 1}));
  EXPECT_EQ(errors.count(), 0u);
}

TEST(CmapGenerate, RgbCellCentresCountOrderAndLaterGenerations) {
  ErrorCapture errors;
  ScopedImage image, second, out;
  // Width 3 (odd): one padding byte per line. Red 4 times, blue twice, a grey once... per 2 lines.
  fill_image(image, ZEP_RGB24, 3, 2, {255, 0, 0, 255, 0, 0, 0, 0, 250, 0,  //
                                      255, 0, 0, 255, 0, 0, 0, 0, 250, 0});
  ASSERT_EQ(ZEP_cmap_generate(image, 4, 3), 0u);
  const auto &info = *static_cast<const ZEP_CMAP_INFO *>(record_of(image).cmap_info);
  EXPECT_EQ(entry(image, 0), (248u << 16) | (8u << 8) | 8u);  // key 0xF00
  EXPECT_EQ(entry(image, 1), (8u << 16) | (8u << 8) | 248u);  // key 0x00F
  EXPECT_EQ(entry(image, 2), 0u);
  EXPECT_EQ(info.colours_found, 2u);
  EXPECT_EQ(info.coverage, 100u);
  EXPECT_EQ(info.histogram[0xF00][2], 0u);
  EXPECT_EQ(info.histogram[0x00F][2], 1u);
  EXPECT_EQ(info.histogram[0x00F][1], 2u);

  // A second image with more colours adds its most frequent one behind the first two.
  ZEP_image_copy_parameters(image, second);
  fill_image(second, ZEP_RGB24, 3, 2, {0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 0, 250, 1, 1, 0, 0, 0, 0, 0});
  record_of(second).cmap_info = ZEP_cmap_create_info();
  ZEP_image_set_parameter(second, ZEP_CMAP_COLOURS, 2);
  ASSERT_EQ(ZEP_cmap_generate(second, 3, 3), 0u);
  EXPECT_EQ(entry(second, 0), (248u << 16) | (8u << 8) | 8u);
  EXPECT_EQ(entry(second, 2), (8u << 16) | (248u << 8) | 8u);

  // Converting: keys with a map index take it; others fall back to the closest entry.
  fill_image(image, ZEP_RGB24, 3, 1, {250, 5, 5, 0, 0, 255, 100, 100, 100, 0});
  ASSERT_EQ(ZEP_convert_to_paletted(image, out, 3), 0u);
  EXPECT_EQ(strip_bytes(out), (Bytes{0, 1, 2, 0}));  // grey 100: nearest of the four is black (2)
}

TEST(CmapGenerate, RefusalsAndTheirMessages) {
  ErrorCapture errors;
  ScopedImage image;
  fill_image(image, ZEP_RGB16, 2, 1, {0, 0, 0, 0});
  EXPECT_EQ(ZEP_cmap_generate(image, 16, 3), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "Unsupported image format");
  fill_image(image, ZEP_RGB24, 2, 1, Bytes(6, 0));
  record_of(image).cmap_info = ZEP_cmap_create_info();
  auto &info = *static_cast<ZEP_CMAP_INFO *>(record_of(image).cmap_info);
  info.red_bits = 5, info.green_bits = 5, info.blue_bits = 5;
  EXPECT_EQ(ZEP_cmap_generate(image, 16, 3), ZEP_ERR_INTERNAL);
  EXPECT_EQ(errors.last().message, "Array size overflow");
  ZEP_cmap_generate(image, 16, 4);
  info.red_bits = 9, info.green_bits = 1, info.blue_bits = 1;
  EXPECT_EQ(ZEP_cmap_generate(image, 16, 3), ZEP_ERR_INTERNAL);
  EXPECT_EQ(errors.last().function, "ZEP_cmap_generate_1_strip");
  EXPECT_EQ(errors.last().message, "More than 8 bits in one colour");
  // The failure left the generation busy: an image without colour-map information is refused
  // until mode 4 ends it.
  ScopedImage other;
  fill_image(other, ZEP_Y8, 2, 1, {1, 2});
  EXPECT_EQ(ZEP_cmap_generate(other, 16, 3), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().message, "Colourmap information does not exist");
  ZEP_cmap_generate(image, 16, 4);
  EXPECT_EQ(ZEP_cmap_generate(other, 16, 3), 0u);

  // Depths and size changed between strips: keys past the 4096 entries are not counted.
  fill_image(image, ZEP_RGB24, 2, 2, Bytes(12, 255));
  info.red_bits = info.green_bits = info.blue_bits = 4;
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 1);
  ASSERT_EQ(ZEP_cmap_generate(image, 16, 3), 0u);
  info.red_bits = info.green_bits = info.blue_bits = 8;
  info.histogram_size = 1u << 24;
  EXPECT_EQ(ZEP_cmap_generate(image, 16, 3), 0u);
  EXPECT_EQ(info.histogram[0xFFF][1], 2u);
}

TEST(PalettedTables, GreyAndRgb16ThroughTheTables) {
  ErrorCapture errors;
  ScopedImage src, dst;
  fill_image(src, ZEP_Y8, 4, 1, {0, 100, 101, 255});
  ZEP_image_set_parameter(src, ZEP_CMAP_COLOURS, 2);
  ZEP_cmap_set_RGB_colour(src, 0, 0, 0, 0);
  ZEP_cmap_set_RGB_colour(src, 1, 200, 200, 200);
  ASSERT_EQ(ZEP_image_conv_LUT_generate(src, ZEP_LUT_Y8_TO_PALETTED), 0u);
  ASSERT_EQ(ZEP_image_convert(src, dst, ZEP_PALETTED, ZEP_FLAG_USE_LUT, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{0, 0, 1, 1}));  // 100 is as far from 0 as from 200: index 0
  fill_image(src, ZEP_RGB16, 2, 1, {0x00, 0x00, 0xFF, 0xFF});
  ASSERT_EQ(ZEP_image_conv_LUT_generate(src, ZEP_LUT_RGB16_TO_PALETTED), 0u);
  ASSERT_EQ(ZEP_convert_to_paletted_LUT(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{0, 1}));
  ZEP_image_conv_LUT_destroy(ZEP_LUT_RGB16_TO_PALETTED);
  EXPECT_EQ(ZEP_convert_to_paletted_LUT(src, dst, 3), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().message, "Conversion LUT does not exist");
  ZEP_convert_to_paletted_LUT(src, dst, 4);
}

TEST(PalettedTables, YuvThroughTheTableMatchesTheClosestColour) {
  ErrorCapture errors;
  ScopedImage src, dst;
  const Bytes yuv = random_image(ZEP_YUV422, 32, 4, 9);
  fill_image(src, ZEP_YUV422, 32, 4, yuv);
  ZEP_cmap_set_type(src, ZEP_CMAP_CUBE_332, 0);
  ASSERT_EQ(ZEP_image_conv_LUT_generate(src, ZEP_LUT_YUV422_TO_PALETTED), 0u);
  ASSERT_EQ(ZEP_image_convert(src, dst, ZEP_PALETTED, 0, 3), 0u);
  const Bytes out = strip_bytes(dst);
  for (uint32_t i = 0; i < 32 * 4; ++i) {
    const uint8_t *pair = &yuv[4 * (i / 2)];
    const Rgb c = reference_rgb(pair[i % 2 ? 2 : 0] & 0xF8, pair[1] & 0xF8, pair[3] & 0xF8);
    ASSERT_EQ(out[i], ZEP_cmap_find_closest_colour(src, uint8_t(c.r), uint8_t(c.g), uint8_t(c.b))) << i;
  }
}

}  // namespace
