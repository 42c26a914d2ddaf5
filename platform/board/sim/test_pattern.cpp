// Frame generation: every line of the ramp is the same, so it is encoded once per frame (twice
// for Bayer mosaics, whose even and odd lines differ) and copied; only the lines that carry the
// frame number are encoded one by one.
#include "platform/board/sim/test_pattern.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "platform/board/sim/pixel_codec.h"

namespace vrxsim {
namespace {

// 5 x 7 glyphs of the digits, one byte a row, bit 4 leftmost.
constexpr uint8_t kDigitGlyphs[10][7] = {
    {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}, {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}, {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E},
    {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}, {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
    {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}, {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}, {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C}};

constexpr uint32_t kGlyphWidth = 5, kGlyphHeight = 7, kGlyphAdvance = 6, kMargin = 1;

uint16_t ramp(uint32_t position, uint32_t period, uint32_t gain) {
  uint32_t phase = position % period;
  uint32_t half = period / 2;
  uint32_t level = phase < half ? phase * 65535 / half : (period - phase) * 65535 / half;
  return static_cast<uint16_t>(std::min<uint32_t>(level * gain / 256, 65535));
}

void fill_ramp(std::vector<Rgb16>& line, uint64_t frame_number, uint32_t gain) {
  const auto width = static_cast<uint32_t>(line.size());
  const uint32_t period = std::max<uint32_t>(width, 64);
  const auto shift = static_cast<uint32_t>((frame_number * 4) % period);
  for (uint32_t x = 0; x < width; ++x) {
    uint32_t p = x + period - shift;
    line[x] = {ramp(p, period, gain), ramp(p + period / 3, period, gain),
               ramp(p + 2 * period / 3, period, gain)};
  }
}

// Overlays row `glyph_row` (in cells) of the number's digits onto `line`.
void overlay_digits(std::vector<Rgb16>& line, const std::string& digits, uint32_t glyph_row,
                    uint32_t scale) {
  const Rgb16 black{}, white{65535, 65535, 65535};
  const auto width = static_cast<uint32_t>(line.size());
  const uint32_t box_width = static_cast<uint32_t>(digits.size() * kGlyphAdvance + kMargin) * scale;
  for (uint32_t x = 0; x < std::min(box_width, width); ++x) {
    uint32_t cell = x / scale;
    bool lit = false;
    if (glyph_row >= kMargin && glyph_row < kMargin + kGlyphHeight && cell >= kMargin) {
      uint32_t index = (cell - kMargin) / kGlyphAdvance, column = (cell - kMargin) % kGlyphAdvance;
      if (index < digits.size() && column < kGlyphWidth)
        lit = (kDigitGlyphs[digits[index] - '0'][glyph_row - kMargin] >> (4 - column)) & 1;
    }
    line[x] = lit ? white : black;
  }
}

}  // namespace

uint32_t digit_scale(uint32_t height) { return std::max<uint32_t>(1, height / 60); }

void draw_test_pattern(const PatternGeometry& g, uint64_t frame_number, std::span<uint8_t> out) {
  const uint32_t bytes = line_bytes(g.format, g.width);
  if (g.width == 0 || g.height == 0 || bytes == 0 || g.bytes_per_line < bytes ||
      out.size() < std::size_t{g.bytes_per_line} * g.height)
    return;
  std::vector<Rgb16> ramp_line(g.width);
  fill_ramp(ramp_line, frame_number, g.gain);
  if (g.lut) apply_input_lut(*g.lut, is_grey(g.format), ramp_line);
  const uint32_t parities = is_bayer(g.format) ? 2 : 1;
  std::vector<std::vector<uint8_t>> encoded(parities, std::vector<uint8_t>(bytes));
  for (uint32_t parity = 0; parity < parities; ++parity)
    encode_line(g.format, ramp_line, encoded[parity], {parity, g.bayer_type});

  const uint32_t scale = digit_scale(g.height);
  const uint32_t digit_lines = std::min(g.height, (kGlyphHeight + 2 * kMargin) * scale);
  const std::string digits = std::to_string(frame_number);
  std::vector<Rgb16> digit_line;
  for (uint32_t y = 0; y < g.height; ++y) {
    uint8_t* row = out.data() + std::size_t{y} * g.bytes_per_line;
    if (y < digit_lines) {
      digit_line = ramp_line;
      overlay_digits(digit_line, digits, y / scale, scale);
      encode_line(g.format, digit_line, {row, bytes}, {y, g.bayer_type});
    } else {
      std::memcpy(row, encoded[y % parities].data(), bytes);
    }
  }
}

}  // namespace vrxsim
