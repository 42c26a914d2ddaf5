// ZEP_DrawPixel, one pixel in the image's own layout, and ZEP_ImageMake, which fills a new
// whole-image strip with it.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_core.h"

namespace {

constexpr const char *kDrawPixel = "ZEP_DrawPixel";

uint8_t byte_of(uint32_t value, int index) { return static_cast<uint8_t>(value >> (8 * index)); }

uint16_t pack_rgb16(uint8_t r, uint8_t g, uint8_t b) {
  return static_cast<uint16_t>(((r & 0xF8) << 8) | ((g & 0xFC) << 3) | (b >> 3));
}

uint16_t pack_rgb15(uint8_t r, uint8_t g, uint8_t b) {
  return static_cast<uint16_t>(((r & 0xF8) << 7) | ((g & 0xF8) << 2) | (b >> 3));
}

// Writes the colour value's bytes, least significant first, into `count` bytes; zeros after the
// fourth.
void put_value(uint8_t *pixel, uint32_t colour, uint32_t count) {
  for (uint32_t i = 0; i < count; ++i) pixel[i] = i < 4 ? byte_of(colour, static_cast<int>(i)) : 0;
}

// Writes bytes picked from 0xXXRRGGBB: each entry of `order` is the value's byte index.
template <std::size_t N>
void put_ordered(uint8_t *pixel, uint32_t colour, const int (&order)[N]) {
  for (std::size_t i = 0; i < N; ++i) pixel[i] = byte_of(colour, order[i]);
}

constexpr int kR = 2, kG = 1, kB = 0, kX = 3;

// Bytes one pixel occupies in a line of the image's format (0 for Y1, whose lines hold none).
uint32_t pixel_stride(const ZEP_IMAGE &image) {
  switch (image.type) {
    case ZEP_Y1: return 0;
    case ZEP_DATA32_8:
    case ZEP_DATA64:
    case ZEP_DCT32_A:
    case ZEP_DCT32_B:
    case ZEP_DATA16_B: return image.width == 0 ? 0 : image.bytes_per_line / image.width;
    default: return (image.depth + 1) / 8;
  }
}

void draw(const ZEP_IMAGE &image, uint8_t *pixel, uint32_t colour, uint32_t x) {
  switch (image.type) {
    case ZEP_RGB15:
      put_value(pixel, pack_rgb15(byte_of(colour, kR), byte_of(colour, kG), byte_of(colour, kB)),
                2);
      return;
    case ZEP_RGB16:
      put_value(pixel, pack_rgb16(byte_of(colour, kR), byte_of(colour, kG), byte_of(colour, kB)),
                2);
      return;
    case ZEP_RGB24: put_ordered(pixel, colour, {kR, kG, kB}); return;
    case ZEP_BGR24: put_ordered(pixel, colour, {kB, kG, kR}); return;
    case ZEP_RGBX32: put_ordered(pixel, colour, {kR, kG, kB, kX}); return;
    case ZEP_BGRX32: put_ordered(pixel, colour, {kB, kG, kR, kX}); return;
    case ZEP_XBGR32: put_ordered(pixel, colour, {kX, kB, kG, kR}); return;
    case ZEP_XRGB32: put_ordered(pixel, colour, {kX, kR, kG, kB}); return;
    case ZEP_YUV422:
      // 0x00VVUUYY: the even pixel of a pair carries U, the odd one V.
      pixel[0] = byte_of(colour, 0);
      pixel[1] = byte_of(colour, x % 2 == 0 ? 1 : 2);
      return;
    default: put_value(pixel, colour, pixel_stride(image)); return;
  }
}

}  // namespace

extern "C" {

uint32_t ZEP_DrawPixel(uint32_t handle, uint32_t colour, uint32_t x, uint32_t y) {
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, kDrawPixel);
  if (image == nullptr) return ZEP_ERR_HANDLE;
  if (image->data == nullptr)
    return vrc::core::report(kDrawPixel, ZEP_ERR_BAD_PARAM, "Image has no data");
  if (x >= image->width || y >= image->lines_this_strip)
    return vrc::core::report(kDrawPixel, ZEP_ERR_BAD_PARAM, "Pixel outside the image");
  uint32_t stride = pixel_stride(*image);
  uint64_t offset = uint64_t{y} * image->bytes_per_line + uint64_t{x} * stride;
  if (stride == 0 || offset + stride > image->strip_bytes) return 0;
  draw(*image, image->data + offset, colour, x);
  return 0;
}

uint32_t ZEP_ImageMake(uint32_t handle, uint32_t width, uint32_t height, uint16_t type,
                       uint32_t colour) {
  ZEP_image_set_parameter(handle, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(handle, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(handle, ZEP_LINES_THIS_STRIP, height);
  ZEP_image_check(handle);
  ZEP_image_free_data(handle);
  if (ZEP_image_malloc_a_strip(handle) != 0) return 0;
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) ZEP_DrawPixel(handle, colour, x, y);
  }
  return 0;
}

}  // extern "C"
