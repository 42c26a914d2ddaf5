// ZEP_DrawPixel, one pixel in the image's own layout, and ZEP_ImageMake, which fills a new
// whole-image strip with it.
#include "imaging/core/handle_table.h"
#include "imaging/core/pixel_formats.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_core.h"

#include <algorithm>

namespace {

using vrc::core::Channels;
using vrc::core::LineRule;
using vrc::core::pack_rgb15;
using vrc::core::pack_rgb16;
using vrc::core::PixelFormat;
using vrc::core::PixelLayout;

constexpr const char *kDrawPixel = "ZEP_DrawPixel";

uint8_t byte_of(uint32_t value, int index) { return static_cast<uint8_t>(value >> (8 * index)); }

// Writes the colour value's bytes, least significant first, into `count` bytes; zeros after the
// fourth.
void put_value(uint8_t *pixel, uint32_t colour, uint32_t count) {
  for (uint32_t i = 0; i < count; ++i) pixel[i] = i < 4 ? byte_of(colour, static_cast<int>(i)) : 0;
}

// Value bytes of 0xXXRRGGBB.
constexpr int kR = 2, kG = 1, kB = 0, kX = 3;

// Bytes one pixel occupies in a line of the image's format: what its line rule gives, none for
// packed bits, else whole bytes of the depth (also for codes without a row).
uint32_t pixel_stride(const ZEP_IMAGE &image, const PixelFormat *format) {
  if (format != nullptr && format->layout == PixelLayout::Bits) return 0;
  if (format != nullptr && format->line_rule != LineRule::General)
    return image.width == 0 ? 0 : image.bytes_per_line / image.width;
  return (image.depth + 1) / 8;
}

// Bytes draw() writes: a packed or component layout writes its whole pixel even when the depth
// field says less.
uint32_t written_bytes(const PixelFormat *format, uint32_t stride) {
  if (format == nullptr || format->layout == PixelLayout::Samples) return stride;
  return std::max<uint32_t>(stride, format->pixel_bytes);
}

void put_channels(uint8_t *pixel, uint32_t colour, const Channels &channels) {
  pixel[channels.r] = byte_of(colour, kR);
  pixel[channels.g] = byte_of(colour, kG);
  pixel[channels.b] = byte_of(colour, kB);
  if (channels.x >= 0) pixel[channels.x] = byte_of(colour, kX);
}

void draw(const PixelFormat *format, uint8_t *pixel, uint32_t colour, uint32_t x, uint32_t stride) {
  const uint8_t r = byte_of(colour, kR), g = byte_of(colour, kG), b = byte_of(colour, kB);
  switch (format != nullptr ? format->layout : PixelLayout::Samples) {
    case PixelLayout::Rgb555: put_value(pixel, pack_rgb15(r, g, b), 2); return;
    case PixelLayout::Rgb565: put_value(pixel, pack_rgb16(r, g, b), 2); return;
    case PixelLayout::Channels: put_channels(pixel, colour, format->channels); return;
    case PixelLayout::Yuv422:
      // 0x00VVUUYY: the even pixel of a pair carries U, the odd one V.
      pixel[0] = byte_of(colour, 0);
      pixel[1] = byte_of(colour, x % 2 == 0 ? 1 : 2);
      return;
    default: put_value(pixel, colour, stride); return;
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
  const PixelFormat *format = vrc::core::pixel_format(image->type);
  const uint32_t stride = pixel_stride(*image, format);
  uint64_t offset = uint64_t{y} * image->bytes_per_line + uint64_t{x} * stride;
  if (stride == 0 || offset + written_bytes(format, stride) > image->strip_bytes) return 0;
  draw(format, image->data + offset, colour, x, stride);
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
