// The simulated camera's picture: a colour ramp that moves sideways by four pixels a frame, its
// brightness scaled by the camera's gain and shaped by the board's input look-up table, with the frame number written in the top-left corner
// in white digits on black, so that a test (or a person) can tell frames apart.
#pragma once

#include <cstdint>
#include <span>

#include "platform/board/sim/input_lut.h"

namespace vrxsim {

struct PatternGeometry {
  uint32_t width = 0;           // pixels
  uint32_t height = 0;          // lines
  uint32_t bytes_per_line = 0;  // at least line_bytes(format, width)
  uint32_t format = 0;          // capture format code
  uint32_t bayer_type = 0;      // colour type used for Bayer formats
  uint32_t gain = 256;          // brightness x 1/256
  const InputLut* lut = nullptr;  // the board's input look-up table, if any
};

// Writes one frame into `out` (height x bytes_per_line bytes).
void draw_test_pattern(const PatternGeometry& geometry, uint64_t frame_number,
                       std::span<uint8_t> out);

// Digit cell size in pixels for a picture of this height (the digits are 5 x 7 cells).
uint32_t digit_scale(uint32_t height);

}  // namespace vrxsim
