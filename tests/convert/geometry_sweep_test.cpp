// Every member on every source format, at awkward widths, line alignments and strip heights:
// each call either converts or reports a refusal, and (under the sanitizers) nothing is read or
// written outside the strips, whatever the odd-width line rules do to the strides.
#include "convert_support.h"

using namespace vrc::test;

namespace {

constexpr ConvertFn kMembers[] = {
    ZEP_convert_to_Y8,        ZEP_convert_to_Y16,        ZEP_convert_to_RGB8,     ZEP_convert_to_RGB8_dither,
    ZEP_convert_to_RGB15,     ZEP_convert_to_RGB16,      ZEP_convert_to_RGB24,    ZEP_convert_to_BGR24,
    ZEP_convert_to_RGBX32,    ZEP_convert_to_BGRX32,     ZEP_convert_to_XBGR32,   ZEP_convert_to_XRGB32,
    ZEP_convert_to_CMYK32,    ZEP_convert_to_YUV422,     ZEP_convert_to_paletted, ZEP_convert_to_paletted_LUT,
    ZEP_paletted_to_RGB24_or_Y8, ZEP_YUV422_to_Y8,       ZEP_YUV422_to_Y16,       ZEP_YUV422_to_RGB15,
    ZEP_YUV422_to_RGB16,      ZEP_YUV422_to_RGB24,       ZEP_YUV422_to_BGR24,     ZEP_YUV422_to_RGBX32,
    ZEP_YUV422_to_BGRX32,     ZEP_YUV422_to_XBGR32,      ZEP_YUV422_to_XRGB32,    ZEP_YUV422_to_RGB15_LUT,
    ZEP_YUV422_to_RGB16_LUT,  ZEP_YUV422_to_RGB24_LUT,   ZEP_YUV422_to_BGR24_LUT, ZEP_YUV422_to_RGBX32_LUT,
    ZEP_YUV422_to_BGRX32_LUT, ZEP_YUV422_to_XBGR32_LUT,  ZEP_YUV422_to_XRGB32_LUT, ZEP_YUV422_to_paletted_LUT,
    ZEP_YUV422_to_HSI};

constexpr uint16_t kSources[] = {ZEP_Y8,     ZEP_PALETTED, ZEP_RGB8,   ZEP_RGB15,  ZEP_RGB16, ZEP_RGB24,
                                 ZEP_BGR24,  ZEP_RGBX32,   ZEP_BGRX32, ZEP_XBGR32, ZEP_YUV422, ZEP_CMYK32,
                                 ZEP_Y16,    ZEP_XRGB32};

class GeometrySweep : public ::testing::TestWithParam<uint32_t> {};

TEST_P(GeometrySweep, EveryMemberConvertsOrRefusesWithinItsStrips) {
  ErrorCapture errors;
  const uint32_t line_align = GetParam();
  ScopedImage table_source;
  ZEP_cmap_set_type(table_source, ZEP_CMAP_CUBE_332, 0);
  for (uint16_t id = ZEP_LUT_RGB16_TO_PALETTED; id <= ZEP_LUT_YUV422_TO_PALETTED; ++id)
    ASSERT_EQ(ZEP_image_conv_LUT_generate(table_source, id), 0u);
  for (uint16_t type : kSources)
    for (uint32_t width : {1u, 2u, 3u, 5u})
      for (uint32_t strip : {1u, 2u, 5u}) {
        const uint32_t height = 5;
        ScopedImage src, dst;
        ZEP_image_set_parameter(src, ZEP_IMAGE_TYPE, type);
        ZEP_cmap_set_type(src, ZEP_CMAP_CUBE_332, 0);
        const Bytes whole = random_image(type, width, height, type * 100 + width, line_align);
        fill_image(src, type, width, height, whole, line_align);
        for (ConvertFn member : kMembers) {
          for (uint32_t done = 0; done < height; done += strip) {
            ZEP_image_free_data(src);
            ZEP_image_set_parameter(src, ZEP_LINES_THIS_STRIP, strip);
            ASSERT_EQ(ZEP_image_malloc_a_strip(src), 0u);
            const ZEP_IMAGE &s = record_of(src);
            std::copy_n(whole.begin() + size_t{done} * s.bytes_per_line,
                        size_t{std::min(strip, height - done)} * s.bytes_per_line, s.data);
            const uint32_t status = member(src, dst, 3);
            if (ZEP_IS_ERROR(status)) {
              ASSERT_EQ(errors.last().code, status);
              member(src, dst, 4);
              break;
            }
          }
          ZEP_image_set_parameter(src, ZEP_LINES_THIS_STRIP, height);
          fill_image(src, type, width, height, whole, line_align);
        }
      }
}

INSTANTIATE_TEST_SUITE_P(LineAlignments, GeometrySweep, ::testing::Values(1u, 2u, 4u));

}  // namespace

namespace {

// A destination whose lines would not fit 32-bit lengths fails its check before anything is
// allocated or written, and the member passes the check's code on.
TEST(HugeImages, DestinationsBeyondThirtyTwoBitLinesAreRefused) {
  ErrorCapture errors;
  ScopedImage src, dst;
  uint8_t pixels[16] = {};
  ZEP_image_set_parameter(src, ZEP_IMAGE_TYPE, ZEP_Y8);
  ZEP_image_set_parameter(src, ZEP_IMAGE_WIDTH, 1u << 30);
  ZEP_image_set_parameter(src, ZEP_IMAGE_HEIGHT, 1);
  ZEP_image_set_parameter(src, ZEP_LINES_THIS_STRIP, 1);
  ZEP_image_set_ptr(src, ZEP_DATA_PTR, pixels);
  ZEP_image_set_flags(src, ZEP_FLAG_LOCKED, 1);
  EXPECT_EQ(ZEP_convert_to_RGBX32(src, dst, 3), (ZEP_ERR_CORRUPT | 0x11));
  EXPECT_EQ(errors.last().function, "ZEP_convert_to_RGBX32");
  EXPECT_EQ(errors.last().message, "Corrupt image");
  EXPECT_EQ(record_of(dst).data, nullptr);
  ZEP_convert_to_RGBX32(src, dst, 4);
  ZEP_image_set_ptr(src, ZEP_DATA_PTR, nullptr);
}

}  // namespace
