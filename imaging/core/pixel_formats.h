// The pixel-format table: one row per image type code with everything the library knows about the
// format (its name, the depth and data width the type demands, how its pixels are laid out, the
// check ZEP_image_check makes and its line-length rule). Code that depends on a format reads its
// row instead of switching over codes; adding a format is adding a row.
#pragma once

#include <cstdint>
#include <span>

namespace vrc::core {

// How the bytes of one pixel hold its value.
enum class PixelLayout : uint8_t {
  Bits,      // Y1: packed bits; the general line rule gives its lines no bytes
  Grey8,     // one grey byte
  Index8,    // one colour-map index
  Rgb332,    // one byte of 3-3-2 colour
  Rgb555,    // little-endian word, 5-5-5
  Rgb565,    // little-endian word, 5-6-5
  Channels,  // one byte per component at the offsets of `channels`
  Yuv422,    // Y then U (even pixel) or V (odd pixel) of a pair
  Grey16,    // little-endian sample of data_width bits
  Samples,   // bytes with no colour meaning to the library (CMYK, HSI, working formats)
};

// Byte offsets of R, G, B and the unused X byte in a pixel of layout Channels; -1 where absent.
struct Channels {
  int8_t r, g, b, x;
};
inline constexpr Channels kNoChannels{-1, -1, -1, -1};

// Whether ZEP_image_is_colour calls an image of the format colour.
enum class Colour : uint8_t { No, Yes, ByColourMap };

// The tests ZEP_image_check makes beside the depth test.
enum class CheckExtra : uint8_t {
  None,
  NeedsColourMap,   // before the depth test: cmap_colours must not be 0
  NeedsDataWidth,   // before the depth test: data_width must be 1..16
  ResetsDataWidth,  // after the depth test: data_width := the row's data width
};

// Line lengths that differ from the general rule ((depth + 1) div 8 x width, padded).
enum class LineRule : uint8_t {
  General,
  AsDepth8,     // computed for depth 8 (before the depth test)
  GeneralDiv4,  // the general value divided by 4 (before the depth test)
  Width8Bytes,  // width x 8, no padding (after the depth test)
  Width4Bytes,  // width x 4, no padding (after the depth test)
};

struct PixelFormat {
  uint16_t code;
  const char *name;   // as tools show and take it ("RGB24")
  bool image_format;  // false for the working formats of the codec and processing code
  PixelLayout layout;
  uint32_t depth;       // bits per pixel the type demands
  uint16_t data_width;  // data width the type sets; 0 leaves it
  uint8_t pixel_bytes;  // bytes of one pixel in a line
  // ZEP_BYTES_PER_PIXEL; 0 = depth / 8. QUIRK: 3 for RGB8, RGB15, RGB16 and YUV422, 1 for Y16.
  uint8_t reported_pixel_bytes;
  Channels channels;
  Colour colour;
  uint32_t depth_code;  // ZEP_image_check's detail code and text when the depth is wrong
  const char *depth_message;
  CheckExtra check_extra;
  LineRule line_rule;
};

// The row of `code`, or null for a code that is no image type (0, 105, 107, 109 and above ...).
const PixelFormat *pixel_format(uint32_t code);

// Every row, in ascending code order.
std::span<const PixelFormat> pixel_formats();

// Bytes one pixel of `code` takes in a line; 0 for codes without a row.
uint32_t pixel_bytes(uint32_t code);

// The 16-bit words of layouts Rgb565 and Rgb555 for one colour.
inline uint16_t pack_rgb16(uint32_t r, uint32_t g, uint32_t b) {
  return static_cast<uint16_t>(((r & 0xF8) << 8) | ((g & 0xFC) << 3) | (b >> 3));
}
inline uint16_t pack_rgb15(uint32_t r, uint32_t g, uint32_t b) {
  return static_cast<uint16_t>(((r & 0xF8) << 7) | ((g & 0xF8) << 2) | (b >> 3));
}

}  // namespace vrc::core
