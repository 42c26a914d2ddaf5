// Handles, strips, destruction, copy and move, and images made by ZEP_ImageMake.
#include "support/error_capture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

using vrc::test::ErrorCapture;
using vrc::test::ScopedImage;

TEST(Handles, LowestFreeSlotIsIssuedAndReservedValuesBehave) {
  ErrorCapture errors;
  ASSERT_EQ(ZEP_image_destroy(ZEP_ALL_IMAGES), 0u);
  EXPECT_EQ(ZEP_image_destroy(ZEP_ANY_IMAGES_LEFT), 0u);
  uint32_t a = ZEP_image_create(), b = ZEP_image_create(), c = ZEP_image_create();
  EXPECT_EQ(a, 1u);
  EXPECT_EQ(b, 2u);
  EXPECT_EQ(c, 3u);
  EXPECT_EQ(ZEP_image_destroy(ZEP_ANY_IMAGES_LEFT), ZEP_ERR_INTERNAL);
  EXPECT_EQ(ZEP_ImageUnlockAndDestroy(ZEP_ANY_IMAGES_LEFT), 0u);  // returns 0 whatever it found
  ZEP_image_destroy(b);
  EXPECT_EQ(ZEP_image_create(), 2u);
  EXPECT_EQ(ZEP_image_destroy(ZEP_ALL_IMAGES), 0u);
  EXPECT_EQ(ZEP_image_destroy(ZEP_ANY_IMAGES_LEFT), 0u);
  EXPECT_EQ(ZEP_image_check(a), ZEP_ERR_CORRUPT);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(Handles, TheTableHoldsExactly65535Images) {
  ErrorCapture errors;
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  std::vector<uint32_t> handles;
  for (uint32_t i = 1; i < ZEP_MAX_HANDLES; ++i) handles.push_back(ZEP_image_create());
  EXPECT_EQ(handles.front(), 1u);
  EXPECT_EQ(handles.back(), 65535u);
  EXPECT_EQ(errors.count(), 0u);
  EXPECT_EQ(ZEP_image_create(), ZEP_ERR_NO_HANDLES);
  ASSERT_EQ(errors.count(), 1u);
  EXPECT_EQ(errors.last().function, "ZEP_image_create");
  EXPECT_EQ(errors.last().message, "Run out of image handles");
  ZEP_image_destroy(40000);
  ZEP_image_destroy(777);
  EXPECT_EQ(ZEP_image_create(), 777u);
  EXPECT_EQ(ZEP_image_create(), 40000u);
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  EXPECT_EQ(ZEP_image_create(), 1u);
  ZEP_image_destroy(ZEP_ALL_IMAGES);
}

TEST(Strips, AllocationFreeingAndTheLockedFlag) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_RGB24);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, 3);
  ASSERT_EQ(ZEP_image_malloc_a_strip(image), 0u);
  EXPECT_NE(image.record().data, nullptr);
  EXPECT_EQ(image.record().strip_bytes, 80u);  // 8 lines of 10 bytes
  ZEP_image_free_data(image);
  EXPECT_EQ(image.record().data, nullptr);

  uint8_t caller_buffer[80];
  ZEP_image_set_ptr(image, ZEP_DATA_PTR, caller_buffer);
  ZEP_image_set_flags(image, ZEP_FLAG_LOCKED, 1);
  EXPECT_EQ(ZEP_image_malloc_a_strip(image), 0u);
  EXPECT_EQ(image.record().data, caller_buffer);
  EXPECT_EQ(ZEP_image_free_data(image), 0u);
  EXPECT_EQ(image.record().data, caller_buffer);
  ZEP_image_set_ptr(image, ZEP_DATA_PTR, nullptr);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(Strips, DestroyReleasesEvenALockedBuffer) {
  ErrorCapture errors;
  uint32_t image = ZEP_image_create();
  void *owned = std::malloc(64);  // the sanitizer build reports a leak if destroy does not free it
  ZEP_image_set_ptr(image, ZEP_DATA_PTR, owned);
  ZEP_image_set_flags(image, ZEP_FLAG_LOCKED, 1);
  EXPECT_EQ(ZEP_image_destroy(image), 0u);
  EXPECT_EQ(ZEP_image_check(image), ZEP_ERR_CORRUPT);
}

TEST(Strips, MallocOfAnInvalidImageReportsCorruptImage) {
  ErrorCapture errors;
  ScopedImage image;
  EXPECT_EQ(ZEP_image_malloc_a_strip(image), (ZEP_ERR_CORRUPT | 0x10));
  ASSERT_EQ(errors.count(), 2u);
  EXPECT_EQ(errors.all()[0].function, "ZEP_image_check");
  EXPECT_EQ(errors.all()[1].function, "ZEP_image_malloc_a_strip");
  EXPECT_EQ(errors.all()[1].message, "Corrupt image");
}

namespace {

std::vector<uint8_t> strip_bytes(const ScopedImage &image) {
  const ZEP_IMAGE &r = image.record();
  return {r.data, r.data + r.strip_bytes};
}

}  // namespace

TEST(CopyAndMove, CopyDuplicatesParametersMapAndPixels) {
  ErrorCapture errors;
  ScopedImage src, dst;
  ZEP_ImageMake(src, 5, 3, ZEP_RGB24, 0x102030);
  ZEP_image_set_infilename(src, "in.tif");
  ZEP_image_set_parameter(src, ZEP_CMAP_COLOURS, 7);
  src.record().cmap[5] = 0x42;
  ASSERT_EQ(ZEP_image_copy(src, dst), 0u);
  EXPECT_EQ(strip_bytes(dst), strip_bytes(src));
  EXPECT_NE(dst.record().data, src.record().data);
  EXPECT_STREQ(ZEP_image_get_infilename(dst), "in.tif");
  EXPECT_EQ(ZEP_image_get_parameter(dst, ZEP_CMAP_COLOURS), 7u);
  EXPECT_EQ(dst.record().cmap[5], 0x42);
  EXPECT_EQ(dst.record().height, 3u);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(CopyAndMove, CopiesOntoItselfOrFromALockedBufferStayInsideTheirBuffers) {
  ErrorCapture errors;
  ScopedImage src, dst;
  ZEP_ImageMake(src, 6, 4, ZEP_Y8, 5);
  const uint8_t *own_buffer = src.record().data;
  const std::vector<uint8_t> pixels = strip_bytes(src);
  EXPECT_EQ(ZEP_image_copy(src, src), 0u);
  EXPECT_EQ(src.record().data, own_buffer);
  EXPECT_EQ(strip_bytes(src), pixels);

  // The locked flag comes over with the parameters; dst's own 4-byte buffer must not receive
  // the 64 x 8 source strip as if it were a caller's buffer of that size.
  std::vector<uint8_t> caller_buffer(64 * 8);
  for (std::size_t i = 0; i < caller_buffer.size(); ++i) caller_buffer[i] = static_cast<uint8_t>(i);
  ZEP_ImageMake(dst, 2, 2, ZEP_Y8, 1);
  const uint8_t *small_buffer = dst.record().data;
  ZEP_image_set_parameter(src, ZEP_IMAGE_WIDTH, 64);
  ZEP_image_set_parameter(src, ZEP_LINES_THIS_STRIP, 8);
  ZEP_image_free_data(src);  // setting the data pointer does not free the old buffer
  ZEP_image_set_ptr(src, ZEP_DATA_PTR, caller_buffer.data());
  ZEP_image_set_flags(src, ZEP_FLAG_LOCKED, 1);
  ASSERT_EQ(ZEP_image_copy(src, dst), 0u);
  EXPECT_NE(dst.record().data, small_buffer);
  EXPECT_EQ(strip_bytes(dst), caller_buffer);
  ZEP_image_set_ptr(src, ZEP_DATA_PTR, nullptr);  // destroy would free even a locked buffer
  EXPECT_EQ(errors.count(), 0u);
}

TEST(CopyAndMove, HeaderOnlyCopyAndFailures) {
  ErrorCapture errors;
  ScopedImage src, dst;
  ZEP_image_set_parameter(src, ZEP_IMAGE_TYPE, ZEP_Y8);
  ZEP_image_set_parameter(src, ZEP_IMAGE_WIDTH, 9);
  ZEP_image_set_parameter(src, ZEP_LINES_THIS_STRIP, 0);
  EXPECT_EQ(ZEP_image_copy(src, dst), 0u);
  EXPECT_EQ(ZEP_image_get_parameter(dst, ZEP_IMAGE_WIDTH), 9u);
  EXPECT_EQ(dst.record().data, nullptr);

  ZEP_IMAGE &r = src.record();
  r.depth = 24;
  errors.clear();
  EXPECT_EQ(ZEP_image_copy(src, dst), (ZEP_ERR_CORRUPT | 0x02));
  ASSERT_EQ(errors.count(), 2u);
  EXPECT_EQ(errors.last().function, "ZEP_image_copy");
  EXPECT_EQ(errors.last().message, "Corrupt image");

  errors.clear();
  EXPECT_EQ(ZEP_image_copy_parameters(60000, dst), ZEP_ERR_HANDLE);
  EXPECT_EQ(errors.last().message, "Input image does not exist");
  EXPECT_EQ(ZEP_image_copy_parameters_raw(src, 60000), ZEP_ERR_HANDLE);
  EXPECT_EQ(errors.last().message, "Output image does not exist");
}

TEST(CopyAndMove, MoveHandsTheBufferOverAndRefusesLockedImages) {
  ErrorCapture errors;
  ScopedImage src, dst;
  ZEP_ImageMake(src, 4, 4, ZEP_Y8, 9);
  src.record().data_aux = 1234;
  uint8_t *buffer = src.record().data;
  ASSERT_EQ(ZEP_image_move(src, dst), 0u);
  EXPECT_EQ(dst.record().data, buffer);
  EXPECT_EQ(dst.record().data_aux, 1234u);
  EXPECT_EQ(src.record().data, nullptr);
  EXPECT_EQ(src.record().data_aux, 0u);
  EXPECT_EQ(dst.record().width, 4u);

  ZEP_image_set_flags(dst, ZEP_FLAG_LOCKED, 1);
  EXPECT_EQ(ZEP_image_move(src, dst), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "Can't free locked memory (in destination image)");
  EXPECT_EQ(ZEP_image_move(dst, src), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "locked memory can't be moved (in source image)");
  ZEP_image_set_flags(dst, ZEP_FLAG_LOCKED, 0);
}

struct MakeCase {
  uint16_t type;
  uint32_t colour;
  std::vector<uint8_t> first_pixels;  // the first bytes of line 0
};

class ImageMake : public testing::TestWithParam<MakeCase> {};

TEST_P(ImageMake, FillsEveryPixelInTheFormatsLayout) {
  const MakeCase &c = GetParam();
  ErrorCapture errors;
  ScopedImage image;
  EXPECT_EQ(ZEP_ImageMake(image, 5, 3, c.type, c.colour), 0u);
  const ZEP_IMAGE &r = image.record();
  EXPECT_EQ(r.lines_this_strip, 3u);
  ASSERT_NE(r.data, nullptr);
  std::vector<uint8_t> line0(r.data, r.data + c.first_pixels.size());
  EXPECT_EQ(line0, c.first_pixels);
  std::vector<uint8_t> line2(r.data + 2 * r.bytes_per_line, r.data + 2 * r.bytes_per_line + c.first_pixels.size());
  EXPECT_EQ(line2, c.first_pixels);
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ImageMake,
    testing::Values(MakeCase{ZEP_Y8, 0x1234, {0x34, 0x34}}, MakeCase{ZEP_PALETTED, 7, {7, 7}},
                    MakeCase{ZEP_RGB24, 0x112233, {0x11, 0x22, 0x33, 0x11}},
                    MakeCase{ZEP_BGR24, 0x112233, {0x33, 0x22, 0x11, 0x33}},
                    MakeCase{ZEP_RGBX32, 0x44112233, {0x11, 0x22, 0x33, 0x44}},
                    MakeCase{ZEP_BGRX32, 0x44112233, {0x33, 0x22, 0x11, 0x44}},
                    MakeCase{ZEP_XBGR32, 0x44112233, {0x44, 0x33, 0x22, 0x11}},
                    MakeCase{ZEP_XRGB32, 0x44112233, {0x44, 0x11, 0x22, 0x33}},
                    MakeCase{ZEP_RGB16, 0xFF8040, {0x08, 0xFC}},  // 11111 100000 01000
                    MakeCase{ZEP_RGB15, 0xFF8040, {0x08, 0x7E}},  // 0 11111 10000 01000
                    MakeCase{ZEP_YUV422, 0x00C08010, {0x10, 0x80, 0x10, 0xC0, 0x10, 0x80}},
                    MakeCase{ZEP_Y16, 0xABCD, {0xCD, 0xAB, 0xCD, 0xAB}},
                    MakeCase{ZEP_CMYK32, 0x04030201, {1, 2, 3, 4, 1}},
                    MakeCase{ZEP_DCT32_A, 0x04030201, {1, 2, 3, 4, 0, 0, 0, 0, 1}},
                    MakeCase{ZEP_DATA64, 0x0201, {1, 2, 1, 2}},
                    MakeCase{ZEP_Y1, 1, {}}));  // 1-bit lines hold no bytes: nothing is drawn

TEST(DrawPixel, RefusesPixelsOutsideTheStripAndImagesWithoutData) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_Y8);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, 4);
  EXPECT_EQ(ZEP_DrawPixel(image, 1, 0, 0), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Image has no data");
  ZEP_image_malloc_a_strip(image);
  EXPECT_EQ(ZEP_DrawPixel(image, 1, 4, 0), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(ZEP_DrawPixel(image, 1, 0, 8), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Pixel outside the image");
  EXPECT_EQ(ZEP_DrawPixel(image, 200, 3, 7), 0u);
  EXPECT_EQ(image.record().data[7 * 4 + 3], 200);
}
