// YUV 4:2:2: the integer arithmetic and clamping of every output, the table-driven members, HSI,
// conversion to YUV 4:2:2, and every vector row kernel against its scalar reference.
#include "convert_support.h"

#include "imaging/convert/yuv422_rows.h"

using namespace vrc::test;

namespace {

TEST(Yuv422Arithmetic, HandDerivedPixels) {
  ErrorCapture errors;
  ScopedImage src, dst;
  // (128, 128, 128) stays grey; Y 255 with U 255 clamps blue; V 0 drives red to -180, clamped to 0.
  fill_image(src, ZEP_YUV422, 4, 1, {128, 128, 255, 128, 0, 255, 0, 0});
  ASSERT_EQ(ZEP_YUV422_to_RGB24(src, dst, 3), 0u);
  const Bytes expected = {128, 128, 128, 255, 255, 255,
                          // pair 2: u = 127, v = -128: R = 0, G = (93568 - 44704) >> 10 = 47,
                          // B = 230505 >> 10 = 225
                          0, 47, 225, 0, 47, 225};
  EXPECT_EQ(strip_bytes(dst), expected);
  fill_image(src, ZEP_YUV422, 2, 1, {255, 255, 255, 128});
  ASSERT_EQ(ZEP_YUV422_to_RGB24(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{255, 211, 255, 255, 211, 255}));
}

// At a line alignment of 4 the destination's lines would be padded; the YUV members write them
// one after the other all the same, and the rest of the strip is zeros.
TEST(Yuv422Arithmetic, LinesFollowOneAnotherWithoutPadding) {
  ErrorCapture errors;
  ScopedImage src, dst;
  fill_image(src, ZEP_YUV422, 2, 2, {128, 128, 255, 128, 0, 255, 0, 0}, 4);
  ASSERT_EQ(ZEP_YUV422_to_RGB24(src, dst, 3), 0u);
  EXPECT_EQ(record_of(dst).bytes_per_line, 8u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{128, 128, 128, 255, 255, 255, 0, 47, 225, 0, 47, 225, 0, 0, 0, 0}));
  ASSERT_EQ(ZEP_YUV422_to_Y8(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{128, 255, 0, 0, 0, 0, 0, 0}));
}

// Every colour output of random images, several widths and strip heights, against the formula.
class Yuv422Outputs : public ::testing::TestWithParam<std::tuple<uint16_t, uint32_t, uint32_t>> {};

TEST_P(Yuv422Outputs, MatchTheFormulaByteForByte) {
  ErrorCapture errors;
  const auto [type, width, strip] = GetParam();
  const uint32_t height = 7;
  const ConvertFn member = type == ZEP_RGB24    ? ZEP_YUV422_to_RGB24
                           : type == ZEP_BGR24  ? ZEP_YUV422_to_BGR24
                           : type == ZEP_RGBX32 ? ZEP_YUV422_to_RGBX32
                           : type == ZEP_BGRX32 ? ZEP_YUV422_to_BGRX32
                           : type == ZEP_XBGR32 ? ZEP_YUV422_to_XBGR32
                           : type == ZEP_XRGB32 ? ZEP_YUV422_to_XRGB32
                           : type == ZEP_RGB16  ? ZEP_YUV422_to_RGB16
                                                : ZEP_YUV422_to_RGB15;
  const Bytes yuv = random_image(ZEP_YUV422, width, height, width * 31 + strip);
  ScopedImage src, dst;
  fill_image(src, ZEP_YUV422, width, height, yuv);
  const Bytes out = convert_in_strips(member, src, dst, yuv, strip);
  const uint32_t out_line = bytes_per_line(type, width);
  ASSERT_EQ(out.size(), size_t{out_line} * height);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const uint8_t *pair = &yuv[y * 2 * width + 4 * (x / 2)];
      const Rgb c = reference_rgb(pair[x % 2 ? 2 : 0], pair[1], pair[3]);
      const uint8_t *p = &out[y * out_line + x * pixel_bytes(type)];
      const uint8_t r = uint8_t(c.r), g = uint8_t(c.g), b = uint8_t(c.b);
      Bytes want;
      switch (type) {
        case ZEP_RGB24: want = {r, g, b}; break;
        case ZEP_BGR24: want = {b, g, r}; break;
        case ZEP_RGBX32: want = {r, g, b, 0}; break;
        case ZEP_BGRX32: want = {b, g, r, 0}; break;
        case ZEP_XBGR32: want = {0, b, g, r}; break;
        case ZEP_XRGB32: want = {0, r, g, b}; break;
        case ZEP_RGB16: {
          const int w = ((c.r & 0xF8) << 8) | ((c.g & 0xFC) << 3) | (c.b >> 3);
          want = {uint8_t(w), uint8_t(w >> 8)};
          break;
        }
        default: {
          const int w = ((c.r & 0xF8) << 7) | ((c.g & 0xF8) << 2) | (c.b >> 3);
          want = {uint8_t(w), uint8_t(w >> 8)};
        }
      }
      ASSERT_EQ(Bytes(p, p + want.size()), want) << "pixel " << x << "," << y;
    }
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Formats, Yuv422Outputs,
                         ::testing::Combine(::testing::Values(ZEP_RGB24, ZEP_BGR24, ZEP_RGBX32, ZEP_BGRX32, ZEP_XBGR32,
                                                              ZEP_XRGB32, ZEP_RGB16, ZEP_RGB15),
                                            ::testing::Values(2u, 18u, 70u), ::testing::Values(1u, 3u, 7u)));

TEST(Yuv422Grey, Y8Y16AndHsi) {
  ErrorCapture errors;
  ScopedImage src, dst;
  fill_image(src, ZEP_YUV422, 4, 1, {128, 128, 255, 128, 100, 60, 150, 200});
  ASSERT_EQ(ZEP_YUV422_to_Y8(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{128, 255, 100, 150}));
  ASSERT_EQ(ZEP_YUV422_to_Y16(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{0, 128, 0, 255, 0, 100, 0, 150}));
  // (128,128,128): hue 0, saturation 0, intensity 128. (100, 60, 200) is RGB (200, 71, 0):
  // hue 60 x 71 / 200 = 21, saturation 255, intensity 90. Y 150 of that pair is RGB (250, 121, 29):
  // hue 60 x 92 / 221 = 24, saturation 255 - 22185 / 400 = 200, intensity 133.
  ASSERT_EQ(ZEP_YUV422_to_HSI(src, dst, 3), 0u);
  EXPECT_EQ(record_of(dst).type, ZEP_HSI);
  EXPECT_EQ(strip_bytes(dst),
            (Bytes{0, 0, 0, 128, 0, 0, 0, 255, 21, 0, 255, 90, 24, 0, 200, 133}));
  fill_image(src, ZEP_YUV422, 2, 1, {255, 255, 255, 128});  // RGB (255, 211, 255)
  ASSERT_EQ(ZEP_YUV422_to_HSI(src, dst, 3), 0u);
  EXPECT_EQ(strip_bytes(dst), (Bytes{0x2C, 1, 32, 240, 0x2C, 1, 32, 240}));  // hue 300
}

TEST(Yuv422Tables, GenerationFollowsTheIndexFormula) {
  ErrorCapture errors;
  ScopedImage image;
  ASSERT_EQ(ZEP_image_conv_LUT_generate(image, ZEP_LUT_YUV422_TO_RGB16), 0u);
  ASSERT_EQ(ZEP_image_conv_LUT_generate(image, ZEP_LUT_YUV422_TO_RGB15), 0u);
  ScopedImage src, d16, d15, d24;
  const uint32_t width = 64, height = 3;
  const Bytes yuv = random_image(ZEP_YUV422, width, height, 5);
  fill_image(src, ZEP_YUV422, width, height, yuv);
  ASSERT_EQ(ZEP_image_convert(src, d16, ZEP_RGB16, ZEP_FLAG_USE_LUT, 3), 0u);
  ASSERT_EQ(ZEP_image_convert(src, d15, ZEP_RGB15, ZEP_FLAG_USE_LUT, 3), 0u);
  ASSERT_EQ(ZEP_image_convert(src, d24, ZEP_RGB24, ZEP_FLAG_USE_LUT, 3), 0u);
  const Bytes out16 = strip_bytes(d16), out15 = strip_bytes(d15), out24 = strip_bytes(d24);
  for (uint32_t i = 0; i < width * height; ++i) {
    const uint8_t *pair = &yuv[4 * (i / 2)];
    // The table keeps 7 bits of Y and 6 of U and V: its entry is the formula at the cell's corner.
    const Rgb c = reference_rgb(pair[i % 2 ? 2 : 0] & 0xFE, pair[1] & 0xFC, pair[3] & 0xFC);
    const int w16 = ((c.r & 0xF8) << 8) | ((c.g & 0xFC) << 3) | (c.b >> 3);
    const int w15 = ((c.r & 0xF8) << 7) | ((c.g & 0xF8) << 2) | (c.b >> 3);
    ASSERT_EQ(out16[2 * i] | (out16[2 * i + 1] << 8), w16) << i;
    ASSERT_EQ(out15[2 * i] | (out15[2 * i + 1] << 8), w15) << i;
    const int r5 = w16 >> 11, g6 = (w16 >> 5) & 63, b5 = w16 & 31;
    ASSERT_EQ(Bytes(&out24[3 * i], &out24[3 * i + 3]),
              (Bytes{uint8_t(r5 << 3 | r5 >> 2), uint8_t(g6 << 2 | g6 >> 4), uint8_t(b5 << 3 | b5 >> 2)}));
  }
}

TEST(ToYuv422, ValuesPairsAndOddWidths) {
  ErrorCapture errors;
  // White: Y 255, U = V = 128. Red: Y = 78030 >> 10 = 76, U = (-44115 >> 10) + 128 = 84,
  // V = (130560 >> 10) + 128 = 255.
  EXPECT_EQ(ZEP_CK_get_YUV_values_RGB(255, 255, 255), 0x8080FFu);
  EXPECT_EQ(ZEP_CK_get_YUV_values_RGB(255, 0, 0), 0xFF544Cu);
  // Blue: Y = 29835 >> 10 = 29, U = 127 + 128 = 255, V = (-21165 >> 10) + 128 = 107.
  EXPECT_EQ(ZEP_CK_get_YUV_values_RGB(0, 0, 255), 0x6BFF1Du);
  ScopedImage src, dst;
  // Width 3: pixels white, red, then red paired with itself.
  fill_image(src, ZEP_RGB24, 3, 1, {255, 255, 255, 255, 0, 0, 255, 0, 0, 0});
  ASSERT_EQ(ZEP_convert_to_YUV422(src, dst, 3), 0u);
  const Bytes out = strip_bytes(dst);
  ASSERT_EQ(out.size(), 6u);
  EXPECT_EQ(out, (Bytes{255, (128 + 84) >> 1, 76, (128 + 255) >> 1, 76, 84}));
}

TEST(ToYuv422, GreyRoundTripKeepsTheLevel) {
  ErrorCapture errors;
  ScopedImage src, yuv, back;
  Bytes grey(256);
  for (int i = 0; i < 256; ++i) grey[i] = uint8_t(i);
  fill_image(src, ZEP_Y8, 16, 16, grey);
  const Bytes packed = convert_in_strips(ZEP_convert_to_YUV422, src, yuv, grey, 5);
  fill_image(yuv, ZEP_YUV422, 16, 16, packed);
  const Bytes again = convert_in_strips(ZEP_YUV422_to_Y8, yuv, back, packed, 4);
  for (int i = 0; i < 256; ++i) EXPECT_LE(std::abs(int(again[i]) - i), 1) << i;
}

// Vector kernels give the scalar kernel's bytes on random rows of many widths and unaligned starts,
// without touching a byte outside the row.
TEST(RowKernels, VectorKernelsMatchTheScalarReference) {
  using namespace vrc::convert;
  const SimdLevel levels[] = {SimdLevel::sse2, SimdLevel::avx2};
  for (SimdLevel level : levels) {
    if (!simd_level_supported(level)) continue;
    for (uint32_t pairs = 0; pairs < 80; ++pairs) {
      for (uint32_t offset = 0; offset < 4; ++offset) {
        const Bytes yuv = random_bytes(4 * pairs + offset, pairs * 7 + offset);
        for (int layout = 0; layout < kLayoutCount; ++layout) {
          const size_t out_bytes = 2 * pairs * layout_bytes(RgbLayout(layout)) + offset;
          Bytes scalar(out_bytes + 8, 0xA5), vector(out_bytes + 8, 0xA5);
          yuv422_kernels(SimdLevel::scalar).to[layout](yuv.data() + offset, scalar.data() + offset, pairs);
          yuv422_kernels(level).to[layout](yuv.data() + offset, vector.data() + offset, pairs);
          ASSERT_EQ(vector, scalar) << "level " << int(level) << " layout " << layout << " pairs " << pairs;
        }
        const uint32_t width = 4 * pairs / 3 + offset;
        const Bytes rgb = random_bytes(3 * width, width);
        Bytes scalar(width + 8, 0xA5), vector(width + 8, 0xA5);
        rgb24_to_y8_scalar(rgb.data(), scalar.data(), width);
        rgb24_to_y8_kernel(level)(rgb.data(), vector.data(), width);
        ASSERT_EQ(vector, scalar) << "grey, level " << int(level) << " width " << width;
      }
    }
  }
}

TEST(RowKernels, VectorTableKernelsMatchTheScalarReference) {
  using namespace vrc::convert;
  if (!simd_level_supported(SimdLevel::avx2)) return;  // the table kernel has no other vector version
  // A table of distinct entries (plus the 2 readable bytes past its end) shows any wrong index.
  Bytes table(2 * (1u << 19) + 2, 0);
  for (uint32_t i = 0; i < (1u << 19); ++i) {
    const uint32_t entry = (i * 2654435761u) >> 16;
    table[2 * i] = uint8_t(entry), table[2 * i + 1] = uint8_t(entry >> 8);
  }
  for (uint32_t pairs = 0; pairs < 40; ++pairs)
    for (uint32_t offset = 0; offset < 4; ++offset) {
      const Bytes yuv = random_bytes(4 * pairs + offset, pairs * 13 + offset);
      for (int layout = 0; layout < kLayoutCount; ++layout) {
        const size_t out_bytes = 2 * pairs * layout_bytes(RgbLayout(layout)) + offset;
        Bytes scalar(out_bytes + 8, 0xA5), vector(out_bytes + 8, 0xA5);
        yuv422_lut_kernel(RgbLayout(layout), SimdLevel::scalar)(yuv.data() + offset, scalar.data() + offset, pairs, table.data());
        yuv422_lut_kernel(RgbLayout(layout), SimdLevel::avx2)(yuv.data() + offset, vector.data() + offset, pairs, table.data());
        ASSERT_EQ(vector, scalar) << "layout " << layout << " pairs " << pairs;
      }
    }
}

TEST(RowKernels, EveryYuvTripleMatchesTheFormula) {
  using namespace vrc::convert;
  // All 2^24 (Y, U, V) values through the widest kernel, 256 pairs at a time.
  const SimdLevel level = active_simd_level();
  Bytes row(4 * 256), out(8 * 256);
  for (int u = 0; u < 256; ++u)
    for (int v = 0; v < 256; ++v) {
      for (int y = 0; y < 256; y += 2) {
        uint8_t *pair = &row[2 * y];
        pair[0] = uint8_t(y), pair[1] = uint8_t(u), pair[2] = uint8_t(y + 1), pair[3] = uint8_t(v);
      }
      yuv422_kernels(level).to[int(RgbLayout::rgbx32)](row.data(), out.data(), 128);
      for (int y = 0; y < 256; ++y) {
        const Rgb c = reference_rgb(y, u, v);
        if (out[4 * y] != c.r || out[4 * y + 1] != c.g || out[4 * y + 2] != c.b)
          FAIL() << "Y " << y << " U " << u << " V " << v;
      }
    }
}

}  // namespace
