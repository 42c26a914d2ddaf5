// The board's input look-up table: per colour channel an offset, gain and gamma (vrx_params.h
// gives the curve), applied to the camera's samples before they are stored. For a grey format the
// first channel's curve shapes the grey level.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/board/sim/pixel_codec.h"
#include "platform/board/vrx_params.h"

namespace vrxsim {

struct InputLut {
  bool enabled = false;
  std::array<vrx::LutChannel, 3> channels{};

  // Whether `id` is one of the table's parameters.
  static bool is_parameter(uint32_t id);
  // The parameter's value (offsets as signed words).
  std::optional<uint32_t> get(uint32_t id) const;
  // VRX_OK, or VRX_ERR_BAD_VALUE outside the parameter's range (nothing changes).
  uint32_t set(uint32_t id, uint32_t value);
};

// Passes a line of the camera's picture through the table.
void apply_input_lut(const InputLut &lut, bool grey, std::span<Rgb16> line);

}  // namespace vrxsim
