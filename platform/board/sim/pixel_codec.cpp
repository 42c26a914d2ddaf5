// Line encoders and decoders for every capture format, one small function per layout.
#include "platform/board/sim/pixel_codec.h"

#include <algorithm>
#include <cstring>

#include "platform/board/vrx_params.h"

namespace vrxsim {
namespace {

enum class Layout { Grey, Bayer, Mono12Packed, Yuv422, Word15, Word16, Bytes3, Bytes4, Word30,
                    Words3, LinePlanar };

struct FormatInfo {
  Layout layout;
  uint8_t bits;   // significant bits per sample
  uint8_t bytes;  // bytes per sample (Grey, Bayer, Words3) or per pixel
  bool msb_aligned;  // samples stored in the top bits of their word
  char order[5];  // channel letters in memory order, or from the top bits for packed words
};

// Indexed by k.
constexpr FormatInfo kFormats[vrx::kCaptureFormatCount] = {
    {Layout::Grey, 8, 1, false, "Y"},       // 0  8 bit mono
    {Layout::Grey, 16, 2, false, "Y"},      // 1  16 bit mono
    {Layout::Grey, 32, 4, false, "Y"},      // 2  32 bit mono
    {Layout::Grey, 8, 1, false, "Y"},       // 3  (not offered)
    {Layout::Word15, 5, 2, false, "RGB"},   // 4  15 bit RGB
    {Layout::Word16, 5, 2, false, "RGB"},   // 5  16 bit RGB
    {Layout::Bytes4, 8, 4, false, "XBGR"},  // 6  32 bit XBGR
    {Layout::Bytes4, 8, 4, false, "BGRX"},  // 7  32 bit BGRX
    {Layout::Words3, 16, 2, false, "RGB"},  // 8  48 bit RGB
    {Layout::Word15, 5, 2, false, "BGR"},   // 9  15 bit BGR
    {Layout::Word16, 5, 2, false, "BGR"},   // 10 16 bit BGR
    {Layout::Bytes4, 8, 4, false, "XRGB"},  // 11 32 bit XRGB
    {Layout::Bytes4, 8, 4, false, "RGBX"},  // 12 32 bit RGBX
    {Layout::Words3, 16, 2, false, "BGR"},  // 13 48 bit BGR
    {Layout::Word30, 10, 4, false, "RGB"},  // 14 32 bit RGB
    {Layout::Word30, 10, 4, false, "BGR"},  // 15 32 bit BGR
    {Layout::Bytes3, 8, 3, false, "RGB"},   // 16 24 bit RGB
    {Layout::Bytes3, 8, 3, false, "BGR"},   // 17 24 bit BGR
    {Layout::Grey, 10, 2, false, "Y"},      // 18 10 bit mono
    {Layout::Grey, 12, 2, false, "Y"},      // 19 12 bit mono
    {Layout::Grey, 14, 2, false, "Y"},      // 20 14 bit mono
    {Layout::Bayer, 8, 1, false, "Y"},      // 21 8 bit Bayer
    {Layout::Bayer, 10, 2, false, "Y"},     // 22 10 bit Bayer
    {Layout::Bayer, 12, 2, false, "Y"},     // 23 12 bit Bayer
    {Layout::Bayer, 14, 2, false, "Y"},     // 24 14 bit Bayer
    {Layout::Bayer, 16, 2, false, "Y"},     // 25 16 bit Bayer
    {Layout::Mono12Packed, 12, 0, false, "Y"},  // 26 12 bit mono x2: two pixels in three bytes
    {Layout::Words3, 12, 2, false, "RGB"},  // 27 36 bit RGB
    {Layout::Words3, 12, 2, false, "BGR"},  // 28 36 bit BGR
    {Layout::Yuv422, 8, 2, false, "YUYV"},  // 29 YUV 4:2:2
    {Layout::Grey, 12, 2, true, "Y"},       // 30 12 bit monoB: the 12 bits at the top
    {Layout::LinePlanar, 8, 3, false, "RGB"},  // 31 8 bit RGB planar: R, G, B runs per line
};

const FormatInfo* info_of(uint32_t format) {
  if (!vrx::is_capture_format(format)) return nullptr;
  return &kFormats[format - vrx::kCaptureFormatBase];
}

// 16-bit sample to `bits` and back, by shifting and bit replication.
uint32_t narrow(uint32_t v16, uint32_t bits) {
  if (bits >= 16) return bits == 32 ? (v16 << 16) | v16 : v16;
  return v16 >> (16 - bits);
}
uint16_t widen(uint32_t v, uint32_t bits) {
  if (bits >= 16) return static_cast<uint16_t>(bits == 32 ? v >> 16 : v);
  uint32_t w = v << (16 - bits);
  w |= w >> bits;
  return static_cast<uint16_t>(w);
}

void put_le(uint8_t* p, uint32_t v, uint32_t bytes) {
  for (uint32_t i = 0; i < bytes; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}
uint32_t get_le(const uint8_t* p, uint32_t bytes) {
  uint32_t v = 0;
  for (uint32_t i = 0; i < bytes; ++i) v |= uint32_t{p[i]} << (8 * i);
  return v;
}

uint16_t channel(const Rgb16& p, char letter) {
  switch (letter) {
    case 'R': return p.r;
    case 'G': return p.g;
    case 'B': return p.b;
    default: return 0;
  }
}
void set_channel(Rgb16& p, char letter, uint16_t v) {
  if (letter == 'R') p.r = v;
  if (letter == 'G') p.g = v;
  if (letter == 'B') p.b = v;
}

// Which channel a Bayer site carries: RGGB, GRBG, GBRG, BGGR by colour type.
char bayer_site(uint32_t bayer_type, uint32_t x, uint32_t row) {
  static constexpr const char* kPatterns[4] = {"RGGB", "GRBG", "GBRG", "BGGR"};
  uint32_t index = bayer_type >= vrx::ColourBayerRggb && bayer_type <= vrx::ColourBayerBggr
                       ? bayer_type - vrx::ColourBayerRggb
                       : 0;
  return kPatterns[index][(row & 1) * 2 + (x & 1)];
}

void yuv_from_rgb(const Rgb16& p, int& y, int& u, int& v) {
  int r = p.r >> 8, g = p.g >> 8, b = p.b >> 8;
  y = std::clamp((66 * r + 129 * g + 25 * b + 128) / 256 + 16, 0, 255);
  u = std::clamp((-38 * r - 74 * g + 112 * b + 128) / 256 + 128, 0, 255);
  v = std::clamp((112 * r - 94 * g - 18 * b + 128) / 256 + 128, 0, 255);
}
Rgb16 rgb_from_yuv(int y, int u, int v) {
  int c = y - 16, d = u - 128, e = v - 128;
  auto clamp8 = [](int x) { return static_cast<uint16_t>(std::clamp(x, 0, 255) * 257); };
  return {clamp8((298 * c + 409 * e + 128) >> 8), clamp8((298 * c - 100 * d - 208 * e + 128) >> 8),
          clamp8((298 * c + 516 * d + 128) >> 8)};
}

// Packed words: three fields of `bits` each, first letter in the top field.
uint32_t pack_word(const Rgb16& p, const char* order, uint32_t bits, uint32_t green_bits) {
  uint32_t word = 0;
  for (int i = 0; i < 3; ++i) {
    uint32_t field_bits = order[i] == 'G' ? green_bits : bits;
    word = (word << field_bits) | narrow(channel(p, order[i]), field_bits);
  }
  return word;
}
Rgb16 unpack_word(uint32_t word, const char* order, uint32_t bits, uint32_t green_bits) {
  Rgb16 p;
  for (int i = 2; i >= 0; --i) {
    uint32_t field_bits = order[i] == 'G' ? green_bits : bits;
    set_channel(p, order[i], widen(word & ((1u << field_bits) - 1), field_bits));
    word >>= field_bits;
  }
  return p;
}

}  // namespace

uint32_t line_bytes(uint32_t format, uint32_t width) {
  const FormatInfo* f = info_of(format);
  if (!f) return 0;
  switch (f->layout) {
    case Layout::Mono12Packed: return (width * 3 + 1) / 2;
    case Layout::Yuv422: return ((width + 1) / 2) * 4;
    case Layout::Words3: return width * 6;
    default: return width * f->bytes;
  }
}

uint32_t sample_bits(uint32_t format) {
  const FormatInfo* f = info_of(format);
  return f ? f->bits : 0;
}

bool is_bayer(uint32_t format) {
  const FormatInfo* f = info_of(format);
  return f && f->layout == Layout::Bayer;
}

bool is_grey(uint32_t format) {
  const FormatInfo* f = info_of(format);
  return f && (f->layout == Layout::Grey || f->layout == Layout::Mono12Packed);
}

uint32_t luma(const Rgb16& p) { return (77u * p.r + 150u * p.g + 29u * p.b) >> 8; }

void encode_line(uint32_t format, std::span<const Rgb16> pixels, std::span<uint8_t> out,
                 LineContext context) {
  const FormatInfo* f = info_of(format);
  const auto width = static_cast<uint32_t>(pixels.size());
  if (!f || out.size() < line_bytes(format, width)) return;
  uint8_t* o = out.data();
  switch (f->layout) {
    case Layout::Grey:
      for (uint32_t x = 0; x < width; ++x) {
        uint32_t v = narrow(luma(pixels[x]), f->bits);
        if (f->msb_aligned) v <<= 8 * f->bytes - f->bits;
        put_le(o + x * f->bytes, v, f->bytes);
      }
      break;
    case Layout::Bayer:
      for (uint32_t x = 0; x < width; ++x)
        put_le(o + x * f->bytes,
               narrow(channel(pixels[x], bayer_site(context.bayer_type, x, context.row)), f->bits),
               f->bytes);
      break;
    case Layout::Mono12Packed:
      for (uint32_t x = 0; x < width; x += 2) {
        uint32_t a = narrow(luma(pixels[x]), 12);
        uint32_t b = x + 1 < width ? narrow(luma(pixels[x + 1]), 12) : 0;
        uint8_t* q = o + (x / 2) * 3;
        q[0] = static_cast<uint8_t>(a >> 4);
        q[1] = static_cast<uint8_t>(((a & 0xF) << 4) | (b & 0xF));
        if (x + 1 < width) q[2] = static_cast<uint8_t>(b >> 4);
      }
      break;
    case Layout::Yuv422:
      for (uint32_t x = 0; x < width; x += 2) {
        int y0, u0, v0, y1 = 16, u1, v1;
        yuv_from_rgb(pixels[x], y0, u0, v0);
        if (x + 1 < width) {
          yuv_from_rgb(pixels[x + 1], y1, u1, v1);
          u0 = (u0 + u1) / 2;
          v0 = (v0 + v1) / 2;
        }
        uint8_t* q = o + (x / 2) * 4;
        q[0] = static_cast<uint8_t>(y0);
        q[1] = static_cast<uint8_t>(u0);
        q[2] = static_cast<uint8_t>(y1);
        q[3] = static_cast<uint8_t>(v0);
      }
      break;
    case Layout::Word15:
      for (uint32_t x = 0; x < width; ++x) put_le(o + 2 * x, pack_word(pixels[x], f->order, 5, 5), 2);
      break;
    case Layout::Word16:
      for (uint32_t x = 0; x < width; ++x) put_le(o + 2 * x, pack_word(pixels[x], f->order, 5, 6), 2);
      break;
    case Layout::Word30:
      for (uint32_t x = 0; x < width; ++x)
        put_le(o + 4 * x, pack_word(pixels[x], f->order, 10, 10), 4);
      break;
    case Layout::Bytes3:
    case Layout::Bytes4:
      for (uint32_t x = 0; x < width; ++x)
        for (uint32_t i = 0; i < f->bytes; ++i)
          o[x * f->bytes + i] =
              f->order[i] == 'X' ? 0xFF : static_cast<uint8_t>(channel(pixels[x], f->order[i]) >> 8);
      break;
    case Layout::Words3:
      for (uint32_t x = 0; x < width; ++x)
        for (uint32_t i = 0; i < 3; ++i)
          put_le(o + x * 6 + i * 2, narrow(channel(pixels[x], f->order[i]), f->bits), 2);
      break;
    case Layout::LinePlanar:
      for (uint32_t i = 0; i < 3; ++i)
        for (uint32_t x = 0; x < width; ++x)
          o[i * width + x] = static_cast<uint8_t>(channel(pixels[x], f->order[i]) >> 8);
      break;
  }
}

void decode_line(uint32_t format, std::span<const uint8_t> in, std::span<Rgb16> pixels,
                 LineContext) {
  const FormatInfo* f = info_of(format);
  const auto width = static_cast<uint32_t>(pixels.size());
  if (!f || in.size() < line_bytes(format, width)) return;
  const uint8_t* p = in.data();
  auto grey = [](uint16_t v) { return Rgb16{v, v, v}; };
  switch (f->layout) {
    case Layout::Grey:
    case Layout::Bayer:
      for (uint32_t x = 0; x < width; ++x) {
        uint32_t v = get_le(p + x * f->bytes, f->bytes);
        if (f->msb_aligned) v >>= 8 * f->bytes - f->bits;
        pixels[x] = grey(widen(v & (f->bits == 32 ? 0xFFFFFFFFu : (1u << f->bits) - 1), f->bits));
      }
      break;
    case Layout::Mono12Packed:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t* q = p + (x / 2) * 3;
        uint32_t v = x % 2 == 0 ? (uint32_t{q[0]} << 4) | (q[1] >> 4)
                                : (uint32_t{q[2]} << 4) | (q[1] & 0xF);
        pixels[x] = grey(widen(v, 12));
      }
      break;
    case Layout::Yuv422:
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t* q = p + (x / 2) * 4;
        pixels[x] = rgb_from_yuv(x % 2 == 0 ? q[0] : q[2], q[1], q[3]);
      }
      break;
    case Layout::Word15:
      for (uint32_t x = 0; x < width; ++x) pixels[x] = unpack_word(get_le(p + 2 * x, 2), f->order, 5, 5);
      break;
    case Layout::Word16:
      for (uint32_t x = 0; x < width; ++x) pixels[x] = unpack_word(get_le(p + 2 * x, 2), f->order, 5, 6);
      break;
    case Layout::Word30:
      for (uint32_t x = 0; x < width; ++x)
        pixels[x] = unpack_word(get_le(p + 4 * x, 4), f->order, 10, 10);
      break;
    case Layout::Bytes3:
    case Layout::Bytes4:
      for (uint32_t x = 0; x < width; ++x)
        for (uint32_t i = 0; i < f->bytes; ++i)
          set_channel(pixels[x], f->order[i], static_cast<uint16_t>(p[x * f->bytes + i] * 257));
      break;
    case Layout::Words3:
      for (uint32_t x = 0; x < width; ++x)
        for (uint32_t i = 0; i < 3; ++i)
          set_channel(pixels[x], f->order[i], widen(get_le(p + x * 6 + i * 2, 2), f->bits));
      break;
    case Layout::LinePlanar:
      for (uint32_t i = 0; i < 3; ++i)
        for (uint32_t x = 0; x < width; ++x)
          set_channel(pixels[x], f->order[i], static_cast<uint16_t>(p[i * width + x] * 257));
      break;
  }
}

std::vector<Rgb16> decode_picture(uint32_t format, const uint8_t* data, uint32_t stride,
                                  uint32_t width, uint32_t height, uint32_t bayer_type,
                                  bool demosaic) {
  std::vector<Rgb16> picture(std::size_t{width} * height);
  const uint32_t bytes = line_bytes(format, width);
  for (uint32_t y = 0; y < height; ++y)
    decode_line(format, {data + std::size_t{y} * stride, bytes},
                {picture.data() + std::size_t{y} * width, width}, {y, bayer_type});
  if (!demosaic || !is_bayer(format)) return picture;
  // Colour each 2 x 2 cell from its own four sites: one red, two green, one blue.
  for (uint32_t y = 0; y + 1 < height; y += 2)
    for (uint32_t x = 0; x + 1 < width; x += 2) {
      uint32_t sums[3] = {0, 0, 0}, counts[3] = {0, 0, 0};
      for (uint32_t dy = 0; dy < 2; ++dy)
        for (uint32_t dx = 0; dx < 2; ++dx) {
          char site = bayer_site(bayer_type, x + dx, y + dy);
          int c = site == 'R' ? 0 : site == 'G' ? 1 : 2;
          sums[c] += picture[std::size_t{y + dy} * width + x + dx].r;
          ++counts[c];
        }
      Rgb16 colour{static_cast<uint16_t>(sums[0] / counts[0]), static_cast<uint16_t>(sums[1] / counts[1]),
                   static_cast<uint16_t>(sums[2] / counts[2])};
      for (uint32_t dy = 0; dy < 2; ++dy)
        for (uint32_t dx = 0; dx < 2; ++dx) picture[std::size_t{y + dy} * width + x + dx] = colour;
    }
  return picture;
}

}  // namespace vrxsim
