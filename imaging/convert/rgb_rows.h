// Stateless row kernels of the direct-colour family: reading any direct format (and paletted and
// grey) into R, G, B triples, writing triples in the 24/32-bit byte orders and the 16-bit
// packings, and the rules between the two 16-bit formats.
#pragma once

#include "imaging/core/pixel_formats.h"

#include <cstdint>
#include <span>

namespace vrc::convert {

using core::pack_rgb15;
using core::pack_rgb16;
using core::pixel_bytes;

// Grey value of a Y16 sample of `data_width` significant bits.
inline uint8_t y16_to_grey(uint16_t sample, uint32_t data_width) {
  return static_cast<uint8_t>(data_width >= 8 ? sample >> (data_width - 8)
                                              : sample << (8 - data_width));
}

// Reads `width` pixels of `type` into rgb (3 bytes per pixel). `cmap` is the colour map for
// paletted rows, `data_width` the sample width of Y16 rows.
void read_rgb_row(uint16_t type, const uint8_t *row, uint32_t width, std::span<const uint8_t> cmap,
                  uint32_t data_width, uint8_t *rgb);

// Writes `width` triples as `type` (RGB24, BGR24, the four 32-bit orders, RGB15, RGB16).
void write_rgb_row(uint16_t type, const uint8_t *rgb, uint32_t width, uint8_t *row);

// RGB15 words to RGB16 words and back, by the bit rules of the 16-bit converters.
void rgb15_to_rgb16_row(const uint8_t *src, uint32_t width, uint8_t *dst);
void rgb16_to_rgb15_row(const uint8_t *src, uint32_t width, uint8_t *dst);

// Grey weights shared by every grey output.
inline uint8_t grey_of(uint32_t r, uint32_t g, uint32_t b) {
  return static_cast<uint8_t>((77 * r + 150 * g + 29 * b) >> 8);
}

}  // namespace vrc::convert
