// Layout of the uncompressed Windows BMP files this library writes and reads: a 14-byte file
// header, the 40-byte BITMAPINFOHEADER, a 256-entry colour table for 8-bit images, then the rows,
// last image line first, each padded to a multiple of 4 bytes. All fields are little-endian.
#pragma once

#include "vrcw32/zep_core.h"

#include <cstdint>
#include <vector>

namespace vrc::files::bmp {

inline constexpr uint32_t kInfoHeaderBytes = 40;
inline constexpr uint32_t kPaletteEntries = 256;
inline constexpr uint32_t kRgbDataOffset = 54;         // file header + info header
inline constexpr uint32_t kPalettedDataOffset = 1078;  // ... + 256 entries of B, G, R, 0

// Field offsets from the start of the file.
inline constexpr long kWidthField = 18;        // 32-bit width; height follows, then planes
inline constexpr long kBitsField = 28;         // 16-bit bits per pixel
inline constexpr long kCompressionField = 30;  // 32-bit, 0 = uncompressed (BI_RGB)

inline uint32_t data_offset(uint32_t bits) {
  return bits == 8 ? kPalettedDataOffset : kRgbDataOffset;
}

// Bytes of one stored row: the pixels rounded up to a multiple of 4.
inline uint64_t row_bytes(uint32_t width, uint32_t bits) {
  return ((uint64_t{width} * (bits / 8)) + 3) & ~uint64_t{3};
}

// The file header, info header and (8-bit) colour table of `image` as stored, from the image's
// colour map for 8 bits.
std::vector<uint8_t> build_header(const ZEP_IMAGE &image, uint32_t bits);

}  // namespace vrc::files::bmp
