// Per-pixel rules of the direct-colour and grey members, pinned with hand-derived values, and
// round trips between the byte orders.
#include "convert_support.h"

using namespace vrc::test;

namespace {

struct PixelCase {
  const char *name;
  ConvertFn convert;
  uint16_t src_type;
  Bytes src;  // one line of two pixels
  Bytes expected;
  uint16_t data_width = 0;
};

class OnePixelRules : public ::testing::TestWithParam<PixelCase> {};

TEST_P(OnePixelRules, GiveTheHandDerivedBytes) {
  ErrorCapture errors;
  const PixelCase &c = GetParam();
  ScopedImage src, dst;
  fill_image(src, c.src_type, 2, 1, c.src);
  if (c.data_width) ZEP_image_set_parameter(src, ZEP_DATA_WIDTH, c.data_width);
  ASSERT_EQ(c.convert(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), c.expected);
  EXPECT_EQ(errors.count(), 0u);
}

std::string case_name(const ::testing::TestParamInfo<PixelCase> &info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(
    Grey, OnePixelRules,
    ::testing::Values(
        // (77 + 150 + 29) x 255 >> 8 = 255; 77 x 255 >> 8 = 76.
        PixelCase{"Rgb24", ZEP_convert_to_Y8, ZEP_RGB24, {255, 255, 255, 255, 0, 0}, {255, 76}},
        PixelCase{"Bgr24", ZEP_convert_to_Y8, ZEP_BGR24, {0, 0, 255, 0, 255, 0}, {76, 149}},
        PixelCase{"Rgbx32", ZEP_convert_to_Y8, ZEP_RGBX32, {255, 0, 0, 9, 0, 0, 255, 9}, {76, 28}},
        PixelCase{"Bgrx32", ZEP_convert_to_Y8, ZEP_BGRX32, {0, 0, 255, 9, 255, 0, 0, 9}, {76, 28}},
        PixelCase{"Xbgr32", ZEP_convert_to_Y8, ZEP_XBGR32, {9, 0, 0, 255, 9, 255, 0, 0}, {76, 28}},
        // 0x7FFF: R = 0xFF, G = 0xFF, B = 0xF8 (whole-byte slices) -> 65077 >> 8 = 254.
        // 0x001F: R = 0, G = 7, B = 0xF8 -> 8242 >> 8 = 32.
        PixelCase{"Rgb15", ZEP_convert_to_Y8, ZEP_RGB15, {0xFF, 0x7F, 0x1F, 0x00}, {254, 32}},
        // 0xF800: R = 0xF8, G = 0, B = 0 -> 74; 0x001F: R = 0, G = 3, B = 0xF8 -> 7642 >> 8 = 29.
        PixelCase{"Rgb16", ZEP_convert_to_Y8, ZEP_RGB16, {0x00, 0xF8, 0x1F, 0x00}, {74, 29}},
        PixelCase{"Yuv422", ZEP_convert_to_Y8, ZEP_YUV422, {10, 200, 20, 50}, {10, 20}},
        PixelCase{"Y16", ZEP_convert_to_Y8, ZEP_Y16, {0xBC, 0x0A, 0xFF, 0x0F}, {0xAB, 0xFF}, 12}),
    case_name);

INSTANTIATE_TEST_SUITE_P(
    Packing, OnePixelRules,
    ::testing::Values(
        // (255, 128, 7): 0xF800 | 0x0400 | 0 and 0x7C00 | 0x0200 | 0.
        PixelCase{"Rgb24ToRgb16", ZEP_convert_to_RGB16, ZEP_RGB24, {255, 128, 7, 0, 0, 255}, {0x00, 0xFC, 0x1F, 0x00}},
        PixelCase{"Rgb24ToRgb15", ZEP_convert_to_RGB15, ZEP_RGB24, {255, 128, 7, 0, 0, 255}, {0x00, 0x7E, 0x1F, 0x00}},
        PixelCase{"XBgr32ToRgb16", ZEP_convert_to_RGB16, ZEP_XBGR32, {1, 7, 128, 255, 1, 255, 0, 0}, {0x00, 0xFC, 0x1F, 0x00}},
        // y = 200: 25 << 11 | 200 << 3 | 25 = 0xCE59; 25 << 10 | 25 << 5 | 25 = 0x6739.
        PixelCase{"Y8ToRgb16", ZEP_convert_to_RGB16, ZEP_Y8, {200, 0}, {0x59, 0xCE, 0, 0}},
        PixelCase{"Y8ToRgb15", ZEP_convert_to_RGB15, ZEP_Y8, {200, 0}, {0x39, 0x67, 0, 0}},
        // 0x7FFF -> ((0x3FF) << 6) | 31 = 0xFFDF; 0x0001 -> 0x0001.
        PixelCase{"Rgb15ToRgb16", ZEP_convert_to_RGB16, ZEP_RGB15, {0xFF, 0x7F, 0x01, 0x00}, {0xDF, 0xFF, 0x01, 0x00}},
        // 0x0020 (green's low bit) lands in blue's top bit: 0x0010; 0xFFFF -> 0x7FFF.
        PixelCase{"Rgb16ToRgb15", ZEP_convert_to_RGB15, ZEP_RGB16, {0x20, 0x00, 0xFF, 0xFF}, {0x10, 0x00, 0xFF, 0x7F}}),
    case_name);

INSTANTIATE_TEST_SUITE_P(
    Others, OnePixelRules,
    ::testing::Values(
        PixelCase{"Rgb24ToBgr24", ZEP_convert_to_BGR24, ZEP_RGB24, {1, 2, 3, 4, 5, 6}, {3, 2, 1, 6, 5, 4}},
        PixelCase{"Rgb24ToRgbx32", ZEP_convert_to_RGBX32, ZEP_RGB24, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 0, 4, 5, 6, 0}},
        PixelCase{"Rgb24ToBgrx32", ZEP_convert_to_BGRX32, ZEP_RGB24, {1, 2, 3, 4, 5, 6}, {3, 2, 1, 0, 6, 5, 4, 0}},
        PixelCase{"Rgb24ToXbgr32", ZEP_convert_to_XBGR32, ZEP_RGB24, {1, 2, 3, 4, 5, 6}, {0, 3, 2, 1, 0, 6, 5, 4}},
        PixelCase{"Rgb24ToXrgb32", ZEP_convert_to_XRGB32, ZEP_RGB24, {1, 2, 3, 4, 5, 6}, {0, 1, 2, 3, 0, 4, 5, 6}},
        // 5-bit and 6-bit components widen by repeating their top bits.
        PixelCase{"Rgb16ToRgb24", ZEP_convert_to_RGB24, ZEP_RGB16, {0xFF, 0xFF, 0x10, 0x84}, {255, 255, 255, 132, 130, 132}},
        PixelCase{"Y16ToRgb24", ZEP_convert_to_RGB24, ZEP_Y16, {0xBC, 0x0A, 0x00, 0x00}, {0xAB, 0xAB, 0xAB, 0, 0, 0}, 12},
        PixelCase{"Y8ToY16", ZEP_convert_to_Y16, ZEP_Y8, {0xAB, 1}, {0x00, 0xAB, 0x00, 0x01}},
        PixelCase{"Rgb24ToY16", ZEP_convert_to_Y16, ZEP_RGB24, {255, 0, 0, 255, 255, 255}, {0x00, 76, 0x00, 255}},
        // C, M, Y complement R, G, B; K = min(C, M, Y) comes out of each.
        PixelCase{"Rgb24ToCmyk32", ZEP_convert_to_CMYK32, ZEP_RGB24, {255, 0, 0, 100, 110, 120}, {0, 255, 255, 0, 20, 10, 0, 135}},
        // 3-3-2: (R & 0xE0) | (G & 0xE0) >> 3 | B >> 6.
        PixelCase{"Rgb24ToRgb8", ZEP_convert_to_RGB8, ZEP_RGB24, {255, 0, 255, 0x40, 0xC0, 0x80}, {0xE3, 0x5A}}),
    case_name);

TEST(Cmyk32, FromPalettedComplementsEveryByteOfTheEntry) {
  ErrorCapture errors;
  ScopedImage src, dst;
  fill_image(src, ZEP_PALETTED, 2, 1, {5, 6});
  uint8_t *map = record_of(src).cmap;
  const uint8_t entry5[4] = {10, 20, 30, 40}, entry6[4] = {0, 255, 1, 254};
  std::memcpy(map + 20, entry5, 4);
  std::memcpy(map + 24, entry6, 4);
  ASSERT_EQ(ZEP_convert_to_CMYK32(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{245, 235, 225, 215, 255, 0, 254, 1}));
}

TEST(Rgb8, DitherFollowsTheImagePositionAcrossStrips) {
  ErrorCapture errors;
  ScopedImage src, dst;
  const uint32_t width = 4, height = 4;
  const Bytes grey(size_t{width} * height, 100);
  fill_image(src, ZEP_Y8, width, height, grey);
  // Grey 100 plus the threshold t (2t for red and green, 4t for blue) before quantising.
  const Bytes whole = convert_in_strips(ZEP_convert_to_RGB8_dither, src, dst, grey, 4);
  const Bytes strips = convert_in_strips(ZEP_convert_to_RGB8_dither, src, dst, grey, 1);
  EXPECT_EQ(whole, strips);
  EXPECT_EQ(whole[0], 0x6D);              // t = 0: (100, 100, 100) -> 0x60 | 0x0C | 1
  EXPECT_EQ(whole[width * 3 + 0], 0x92);  // t = 15: (130, 130, 160) -> 0x80 | 0x10 | 2
}

// Odd widths: the grey member steps over one source byte per line even for 32-bit sources, whose
// lines have no padding, so each later line starts one byte further on.
TEST(Y8LineEnds, ThirtyTwoBitSourcesDriftByOneBytePerLine) {
  ErrorCapture errors;
  ScopedImage src, dst;
  Bytes bytes(24);
  for (uint32_t i = 0; i < 24; ++i) bytes[i] = static_cast<uint8_t>(10 * i);
  fill_image(src, ZEP_RGBX32, 3, 2, bytes);
  ASSERT_EQ(ZEP_convert_to_Y8(src, dst, 3), 0u);
  const auto grey = [](int r, int g, int b) { return static_cast<uint8_t>((77 * r + 150 * g + 29 * b) >> 8); };
  // Line 1 reads from byte 13; its last pixel's byte 24 lies past the strip and reads as 0.
  const Bytes expected = {grey(0, 10, 20),    grey(40, 50, 60),   grey(80, 90, 100),  0,
                          grey(130, 140, 150), grey(170, 180, 190), grey(210, 220, 230), 0};
  EXPECT_EQ(strip_bytes(dst), expected);
}

// RGB24 through each 32-bit byte order and back, in strips, gives the same bytes. (RGB24 does
// not take XRGB32, so every format returns through BGR24, which takes them all.)
struct Via {
  uint16_t type;
  ConvertFn to;
};

class ByteOrderRoundTrip : public ::testing::TestWithParam<std::tuple<Via, uint32_t>> {};

TEST_P(ByteOrderRoundTrip, ThroughEachFormatAndBack) {
  ErrorCapture errors;
  const auto [via, width] = GetParam();
  const uint32_t height = 5;
  const Bytes rgb = random_image(ZEP_RGB24, width, height, width);
  ScopedImage src, mid, bgr, back;
  fill_image(src, ZEP_RGB24, width, height, rgb);
  const Bytes converted = convert_in_strips(via.to, src, mid, rgb, 2);
  fill_image(mid, via.type, width, height, converted);
  const Bytes swapped = convert_in_strips(ZEP_convert_to_BGR24, mid, bgr, converted, 3);
  fill_image(bgr, ZEP_BGR24, width, height, swapped);
  EXPECT_EQ(convert_in_strips(ZEP_convert_to_RGB24, bgr, back, swapped, 4), rgb);
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ByteOrderRoundTrip,
    ::testing::Combine(::testing::Values(Via{ZEP_RGBX32, ZEP_convert_to_RGBX32}, Via{ZEP_BGRX32, ZEP_convert_to_BGRX32},
                                         Via{ZEP_XBGR32, ZEP_convert_to_XBGR32}, Via{ZEP_XRGB32, ZEP_convert_to_XRGB32}),
                       ::testing::Values(1u, 2u, 5u, 33u)));

}  // namespace
