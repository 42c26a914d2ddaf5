// The rows of the pixel-format table and their lookup by code.
#include "imaging/core/pixel_formats.h"

#include "vrcw32/zep_core.h"

#include <array>

namespace vrc::core {
namespace {

using L = PixelLayout;
using C = Colour;
using X = CheckExtra;
using R = LineRule;

constexpr const char *kNot1 = "Depth not 1";
constexpr const char *kNot8 = "Depth not 8";
constexpr const char *kNot15 = "Depth not 15";
constexpr const char *kNot16 = "Depth not 16";
constexpr const char *kNot24 = "Depth not 24";
constexpr const char *kNot32 = "Depth not 32";
constexpr const char *kNot64 = "Depth not 64";

// QUIRK: XRGB32 and HSI are not colour to ZEP_image_is_colour, DATA16_C is.
// clang-format off
constexpr PixelFormat kFormats[] = {
    // code, name, image format, layout, depth, data width, pixel bytes, reported pixel bytes,
    // channels, colour, depth code and text, extra test, line rule
    {ZEP_Y1,       "Y1",       true,  L::Bits,     1,  0,  0, 0, kNoChannels,   C::No,          0x10050001, kNot1,  X::None,            R::General},
    {ZEP_Y8,       "Y8",       true,  L::Grey8,    8,  8,  1, 0, kNoChannels,   C::No,          0x10050002, kNot8,  X::ResetsDataWidth, R::General},
    {ZEP_PALETTED, "PALETTED", true,  L::Index8,   8,  8,  1, 0, kNoChannels,   C::ByColourMap, 0x10050008, kNot8,  X::NeedsColourMap,  R::General},
    {ZEP_RGB8,     "RGB8",     true,  L::Rgb332,   8,  8,  1, 3, kNoChannels,   C::Yes,         0x1005000d, kNot8,  X::None,            R::General},
    {ZEP_RGB15,    "RGB15",    true,  L::Rgb555,   15, 0,  2, 3, kNoChannels,   C::Yes,         0x1005000c, kNot15, X::None,            R::General},
    {ZEP_RGB16,    "RGB16",    true,  L::Rgb565,   16, 16, 2, 3, kNoChannels,   C::Yes,         0x10050009, kNot16, X::None,            R::General},
    {ZEP_RGB24,    "RGB24",    true,  L::Channels, 24, 0,  3, 0, {0, 1, 2, -1}, C::Yes,         0x10050003, kNot24, X::None,            R::General},
    {ZEP_BGR24,    "BGR24",    true,  L::Channels, 24, 0,  3, 0, {2, 1, 0, -1}, C::Yes,         0x10050003, kNot24, X::None,            R::General},
    {ZEP_RGBX32,   "RGBX32",   true,  L::Channels, 32, 0,  4, 0, {0, 1, 2, 3},  C::Yes,         0x10050004, kNot32, X::None,            R::General},
    {ZEP_BGRX32,   "BGRX32",   true,  L::Channels, 32, 0,  4, 0, {2, 1, 0, 3},  C::Yes,         0x10050004, kNot32, X::None,            R::General},
    {ZEP_XBGR32,   "XBGR32",   true,  L::Channels, 32, 0,  4, 0, {3, 2, 1, 0},  C::Yes,         0x10050004, kNot32, X::None,            R::General},
    {ZEP_YUV422,   "YUV422",   true,  L::Yuv422,   16, 16, 2, 3, kNoChannels,   C::Yes,         0x10050009, kNot16, X::None,            R::General},
    {ZEP_CMYK32,   "CMYK32",   true,  L::Samples,  32, 0,  4, 0, kNoChannels,   C::Yes,         0x10050004, kNot32, X::None,            R::General},
    {ZEP_Y16,      "Y16",      true,  L::Grey16,   16, 16, 2, 1, kNoChannels,   C::No,          0x1005000b, kNot16, X::NeedsDataWidth,  R::General},
    {ZEP_XRGB32,   "XRGB32",   true,  L::Channels, 32, 0,  4, 0, {1, 2, 3, 0},  C::No,          0x10050004, kNot32, X::None,            R::General},
    {ZEP_DATA32_8, "DATA32_8", false, L::Samples,  32, 0,  1, 0, kNoChannels,   C::No,          0x1005000e, kNot32, X::None,            R::AsDepth8},
    {ZEP_DATA64,   "DATA64",   false, L::Samples,  64, 0,  2, 0, kNoChannels,   C::No,          0x1005000f, kNot64, X::None,            R::GeneralDiv4},
    {ZEP_DATA32,   "DATA32",   false, L::Samples,  32, 0,  4, 0, kNoChannels,   C::No,          0x10050004, kNot32, X::None,            R::General},
    {ZEP_DCT32_A,  "DCT32_A",  false, L::Samples,  32, 0,  8, 0, kNoChannels,   C::No,          0x10050005, kNot32, X::None,            R::Width8Bytes},
    {ZEP_DCT32_B,  "DCT32_B",  false, L::Samples,  32, 0,  8, 0, kNoChannels,   C::No,          0x10050005, kNot32, X::None,            R::Width8Bytes},
    {ZEP_DATA16_A, "DATA16_A", false, L::Samples,  16, 16, 2, 0, kNoChannels,   C::No,          0x10050009, kNot16, X::None,            R::General},
    {ZEP_DATA16_B, "DATA16_B", false, L::Samples,  16, 16, 4, 0, kNoChannels,   C::No,          0x10050006, kNot16, X::None,            R::Width4Bytes},
    {ZEP_DATA16_C, "DATA16_C", false, L::Samples,  16, 16, 2, 0, kNoChannels,   C::Yes,         0x10050009, kNot16, X::None,            R::General},
    {ZEP_HSI,      "HSI",      true,  L::Samples,  32, 0,  4, 0, kNoChannels,   C::No,          0x10050004, kNot32, X::None,            R::General},
};
// clang-format on

constexpr uint8_t kNoRow = 0xFF;

// Row index by code, so that a lookup costs one load.
constexpr std::array<uint8_t, ZEP_TYPE_LIMIT> kRowOfCode = [] {
  std::array<uint8_t, ZEP_TYPE_LIMIT> rows{};
  rows.fill(kNoRow);
  for (std::size_t i = 0; i < std::size(kFormats); ++i)
    rows[kFormats[i].code] = static_cast<uint8_t>(i);
  return rows;
}();

}  // namespace

const PixelFormat *pixel_format(uint32_t code) {
  if (code >= kRowOfCode.size() || kRowOfCode[code] == kNoRow) return nullptr;
  return &kFormats[kRowOfCode[code]];
}

std::span<const PixelFormat> pixel_formats() { return kFormats; }

uint32_t pixel_bytes(uint32_t code) {
  const PixelFormat *format = pixel_format(code);
  return format ? format->pixel_bytes : 0;
}

}  // namespace vrc::core

extern "C" const char *ZEP_pixel_format_name(uint32_t type) {
  const vrc::core::PixelFormat *format = vrc::core::pixel_format(type);
  return format != nullptr && format->image_format ? format->name : nullptr;
}
