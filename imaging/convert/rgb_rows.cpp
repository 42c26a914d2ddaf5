// Row kernels of the direct-colour family: every direct format read into R, G, B triples and
// triples written in each 24/32-bit byte order and 16-bit packing. The members that convert
// between these formats read a row into triples and write the triples out.
#include "imaging/convert/rgb_rows.h"

#include "vrcw32/zep_core.h"

namespace vrc::convert {

namespace {

// Where R, G, B and the X byte sit in a pixel of a 24/32-bit format.
struct ByteOrder {
  uint8_t r, g, b, x, bytes;
};

constexpr ByteOrder byte_order(uint16_t type) {
  switch (type) {
    case ZEP_RGB24: return {0, 1, 2, 0, 3};
    case ZEP_BGR24: return {2, 1, 0, 0, 3};
    case ZEP_RGBX32: return {0, 1, 2, 3, 4};
    case ZEP_BGRX32: return {2, 1, 0, 3, 4};
    case ZEP_XBGR32: return {3, 2, 1, 0, 4};
    case ZEP_XRGB32: return {1, 2, 3, 0, 4};
    default: return {0, 0, 0, 0, 0};
  }
}

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

}  // namespace

uint32_t pixel_bytes(uint16_t type) {
  switch (type) {
    case ZEP_Y8:
    case ZEP_PALETTED:
    case ZEP_RGB8: return 1;
    case ZEP_RGB15:
    case ZEP_RGB16:
    case ZEP_Y16:
    case ZEP_YUV422: return 2;
    case ZEP_RGB24:
    case ZEP_BGR24: return 3;
    case ZEP_RGBX32:
    case ZEP_BGRX32:
    case ZEP_XBGR32:
    case ZEP_XRGB32:
    case ZEP_CMYK32:
    case ZEP_HSI: return 4;
    default: return 0;
  }
}

void read_rgb_row(uint16_t type, const uint8_t *row, uint32_t width, std::span<const uint8_t> cmap,
                  uint32_t data_width, uint8_t *rgb) {
  switch (type) {
    case ZEP_Y8:
      for (uint32_t x = 0; x < width; ++x) put_rgb(rgb + 3 * x, row[x], row[x], row[x]);
      return;
    case ZEP_Y16:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t grey = y16_to_grey(word_at(row + 2 * x), data_width);
        put_rgb(rgb + 3 * x, grey, grey, grey);
      }
      return;
    case ZEP_PALETTED:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *entry = cmap.data() + 4 * row[x];
        put_rgb(rgb + 3 * x, entry[0], entry[1], entry[2]);
      }
      return;
    case ZEP_RGB15:
      for (uint32_t x = 0; x < width; ++x) {
        const uint16_t v = word_at(row + 2 * x);
        put_rgb(rgb + 3 * x, widen5((v >> 10) & 31), widen5((v >> 5) & 31), widen5(v & 31));
      }
      return;
    case ZEP_RGB16:
      for (uint32_t x = 0; x < width; ++x) {
        const uint16_t v = word_at(row + 2 * x);
        put_rgb(rgb + 3 * x, widen5(v >> 11), widen6((v >> 5) & 63), widen5(v & 31));
      }
      return;
    default: {
      const ByteOrder order = byte_order(type);
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *p = row + order.bytes * x;
        put_rgb(rgb + 3 * x, p[order.r], p[order.g], p[order.b]);
      }
    }
  }
}

void write_rgb_row(uint16_t type, const uint8_t *rgb, uint32_t width, uint8_t *row) {
  switch (type) {
    case ZEP_RGB16:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *c = rgb + 3 * x;
        put_word(row + 2 * x, pack_rgb16(c[0], c[1], c[2]));
      }
      return;
    case ZEP_RGB15:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *c = rgb + 3 * x;
        put_word(row + 2 * x, pack_rgb15(c[0], c[1], c[2]));
      }
      return;
    default: {
      const ByteOrder order = byte_order(type);
      for (uint32_t x = 0; x < width; ++x) {
        uint8_t *p = row + order.bytes * x;
        if (order.bytes == 4) p[order.x] = 0;
        p[order.r] = rgb[3 * x];
        p[order.g] = rgb[3 * x + 1];
        p[order.b] = rgb[3 * x + 2];
      }
    }
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
