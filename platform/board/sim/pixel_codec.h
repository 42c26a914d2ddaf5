// The capture formats of the simulated board (codes 0xC0022601 + k): how many bytes a line takes
// and how lines and whole pictures turn into and out of 16-bit-per-channel RGB. Channel letters
// in a format's name give the bytes in memory order; for packed words (15, 16 and 32 bit) they
// run from the most significant bits down. The frame generator, VIL_Convert and VDL_BufferPaint
// all go through here.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vrxsim {

struct Rgb16 {
  uint16_t r = 0, g = 0, b = 0;
};

// Bytes of one line of `width` pixels, or 0 for an unknown format.
uint32_t line_bytes(uint32_t format, uint32_t width);
// Significant bits per sample (8 .. 32).
uint32_t sample_bits(uint32_t format);
bool is_bayer(uint32_t format);
// One grey sample per pixel.
bool is_grey(uint32_t format);
// The grey level of a colour, on the 16-bit scale.
uint32_t luma(const Rgb16& pixel);

// Bayer mosaic colour types (0xC0021201 RGGB .. 0xC0021204 BGGR); other values mean RGGB.
struct LineContext {
  uint32_t row = 0;
  uint32_t bayer_type = 0xC0021201;
};

// `out` must hold line_bytes(format, pixels.size()).
void encode_line(uint32_t format, std::span<const Rgb16> pixels, std::span<uint8_t> out,
                 LineContext context);
// Raw Bayer samples decode as grey; decode_picture can demosaic instead.
void decode_line(uint32_t format, std::span<const uint8_t> in, std::span<Rgb16> pixels,
                 LineContext context);

// A whole picture of `height` lines `stride` bytes apart. With `demosaic` a Bayer picture is
// coloured from each 2 x 2 cell.
std::vector<Rgb16> decode_picture(uint32_t format, const uint8_t* data, uint32_t stride,
                                  uint32_t width, uint32_t height, uint32_t bayer_type,
                                  bool demosaic);

}  // namespace vrxsim
