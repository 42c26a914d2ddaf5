// Row kernels of the direct-colour family: every direct format read into R, G, B triples and
// triples written in each 24/32-bit byte order and 16-bit packing. The members that convert
// between these formats read a row into triples and write the triples out.
#include "imaging/convert/rgb_rows.h"

#include "imaging/core/pixel_formats.h"
#include "vrcw32/zep_core.h"

#include <algorithm>

namespace vrc::convert {

namespace {

// 5- and 6-bit components widened to 8 bits by repeating their top bits.
constexpr uint8_t widen5(uint32_t c) { return static_cast<uint8_t>((c << 3) | (c >> 2)); }
constexpr uint8_t widen6(uint32_t c) { return static_cast<uint8_t>((c << 2) | (c >> 4)); }

uint16_t word_at(const uint8_t *p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }
void put_word(uint8_t *p, uint16_t v) {
  p[0] = static_cast<uint8_t>(v);
  p[1] = static_cast<uint8_t>(v >> 8);
}

void put_rgb(uint8_t *rgb, uint8_t r, uint8_t g, uint8_t b) {
  rgb[0] = r;
  rgb[1] = g;
  rgb[2] = b;
}

// The row of a format the members read or write; their sources and outputs all have one.
const core::PixelFormat &row_format(uint16_t type) {
  static constexpr core::PixelFormat kUnknown{};
  const core::PixelFormat *format = core::pixel_format(type);
  return format != nullptr ? *format : kUnknown;
}

}  // namespace

void read_rgb_row(uint16_t type, const uint8_t *row, uint32_t width, std::span<const uint8_t> cmap,
                  uint32_t data_width, uint8_t *rgb) {
  const core::PixelFormat &format = row_format(type);
  switch (format.layout) {
    case core::PixelLayout::Grey8:
      for (uint32_t x = 0; x < width; ++x) put_rgb(rgb + 3 * x, row[x], row[x], row[x]);
      return;
    case core::PixelLayout::Grey16:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t grey = y16_to_grey(word_at(row + 2 * x), data_width);
        put_rgb(rgb + 3 * x, grey, grey, grey);
      }
      return;
    case core::PixelLayout::Index8:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *entry = cmap.data() + 4 * row[x];
        put_rgb(rgb + 3 * x, entry[0], entry[1], entry[2]);
      }
      return;
    case core::PixelLayout::Rgb555:
      for (uint32_t x = 0; x < width; ++x) {
        const uint16_t v = word_at(row + 2 * x);
        put_rgb(rgb + 3 * x, widen5((v >> 10) & 31), widen5((v >> 5) & 31), widen5(v & 31));
      }
      return;
    case core::PixelLayout::Rgb565:
      for (uint32_t x = 0; x < width; ++x) {
        const uint16_t v = word_at(row + 2 * x);
        put_rgb(rgb + 3 * x, widen5(v >> 11), widen6((v >> 5) & 63), widen5(v & 31));
      }
      return;
    case core::PixelLayout::Channels: {
      const core::Channels order = format.channels;
      const uint32_t bytes = format.pixel_bytes;
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *p = row + bytes * x;
        put_rgb(rgb + 3 * x, p[order.r], p[order.g], p[order.b]);
      }
      return;
    }
    default: std::fill_n(rgb, 3 * std::size_t{width}, uint8_t{0}); return;
  }
}

void write_rgb_row(uint16_t type, const uint8_t *rgb, uint32_t width, uint8_t *row) {
  const core::PixelFormat &format = row_format(type);
  switch (format.layout) {
    case core::PixelLayout::Rgb565:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *c = rgb + 3 * x;
        put_word(row + 2 * x, pack_rgb16(c[0], c[1], c[2]));
      }
      return;
    case core::PixelLayout::Rgb555:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *c = rgb + 3 * x;
        put_word(row + 2 * x, pack_rgb15(c[0], c[1], c[2]));
      }
      return;
    case core::PixelLayout::Channels: {
      const core::Channels order = format.channels;
      const uint32_t bytes = format.pixel_bytes;
      for (uint32_t x = 0; x < width; ++x) {
        uint8_t *p = row + bytes * x;
        if (order.x >= 0) p[order.x] = 0;
        p[order.r] = rgb[3 * x];
        p[order.g] = rgb[3 * x + 1];
        p[order.b] = rgb[3 * x + 2];
      }
      return;
    }
    default: return;
  }
}

void rgb15_to_rgb16_row(const uint8_t *src, uint32_t width, uint8_t *dst) {
  for (uint32_t x = 0; x < width; ++x) {
    const uint32_t v = word_at(src + 2 * x);
    put_word(dst + 2 * x, static_cast<uint16_t>(((v >> 5) << 6) | (v & 31)));
  }
}

void rgb16_to_rgb15_row(const uint8_t *src, uint32_t width, uint8_t *dst) {
  for (uint32_t x = 0; x < width; ++x) {
    const uint32_t v = word_at(src + 2 * x);
    // Bit 4 of the shifted word is green's low bit, which lands in blue's top bit.
    put_word(dst + 2 * x, static_cast<uint16_t>(((v >> 1) & 0x7FF0) | (v & 31)));
  }
}

}  // namespace vrc::convert
