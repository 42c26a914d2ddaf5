// Input look-up table: its parameters and its application to a line.
#include "platform/board/sim/input_lut.h"

#include <cmath>

namespace vrxsim {
namespace {

using namespace vrx;

struct Field {
  int32_t vrx::LutChannel::*member;
  const uint32_t *ids;
  int32_t minimum, maximum;
};
constexpr Field kFields[] = {{&LutChannel::offset, ParamLutOffset, kLutOffsetMin, kLutOffsetMax},
                             {&LutChannel::gain, ParamLutGain, kLutGainMin, kLutGainMax},
                             {&LutChannel::gamma, ParamLutGamma, kLutGammaMin, kLutGammaMax}};

// The field and channel of a table parameter.
bool locate(uint32_t id, const Field *&field, std::size_t &channel) {
  for (const Field &f : kFields)
    for (std::size_t c = 0; c < 3; ++c)
      if (f.ids[c] == id) {
        field = &f;
        channel = c;
        return true;
      }
  return false;
}

uint16_t through(const LutChannel &channel, uint16_t sample) {
  return static_cast<uint16_t>(std::lround(lut_output(channel, sample / 65535.0) * 65535.0));
}

}  // namespace

bool InputLut::is_parameter(uint32_t id) {
  const Field *field = nullptr;
  std::size_t channel = 0;
  return id == ParamLutEnable || locate(id, field, channel);
}

std::optional<uint32_t> InputLut::get(uint32_t id) const {
  if (id == ParamLutEnable) return enabled ? FlagOn : FlagOff;
  const Field *field = nullptr;
  std::size_t channel = 0;
  if (!locate(id, field, channel)) return std::nullopt;
  return static_cast<uint32_t>(channels[channel].*(field->member));
}

uint32_t InputLut::set(uint32_t id, uint32_t value) {
  if (id == ParamLutEnable) {
    if (value != FlagOn && value != FlagOff) return VRX_ERR_BAD_VALUE;
    enabled = value == FlagOn;
    return VRX_OK;
  }
  const Field *field = nullptr;
  std::size_t channel = 0;
  if (!locate(id, field, channel)) return VRX_ERR_BAD_PARAMETER;
  const auto number = static_cast<int32_t>(value);
  if (number < field->minimum || number > field->maximum) return VRX_ERR_BAD_VALUE;
  channels[channel].*(field->member) = number;
  return VRX_OK;
}

void apply_input_lut(const InputLut &lut, bool grey, std::span<Rgb16> line) {
  if (!lut.enabled) return;
  for (Rgb16 &pixel : line) {
    if (grey) {
      const auto level = static_cast<uint16_t>(luma(pixel));
      const uint16_t shaped = through(lut.channels[0], level);
      pixel = {shaped, shaped, shaped};
    } else {
      pixel = {through(lut.channels[0], pixel.r), through(lut.channels[1], pixel.g),
               through(lut.channels[2], pixel.b)};
    }
  }
}

}  // namespace vrxsim
