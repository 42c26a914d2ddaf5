// What the simulated board knows about each stored parameter: its configuration-file key, the
// values it accepts (a value set of vrx_params.h or a range), its default, whether it can be
// read or written, and whether it may change while acquisition runs.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/board/vrx_params.h"

namespace vrxsim {

enum class Access : uint8_t { ReadWrite, ReadOnly, WriteOnly };

struct ParameterDefinition {
  uint32_t id;
  const char *key;                   // key in .vcf files
  std::span<const uint32_t> values;  // the accepted values; empty: the range below
  uint32_t minimum, maximum;
  uint32_t default_value;
  Access access;
  bool idle_only;  // refused with VRX_ERR_BUSY while acquisition runs
  bool saved;      // written by VRX_CameraConfigSave
};

// Every stored parameter, in configuration-file order.
std::span<const ParameterDefinition> parameter_definitions();
const ParameterDefinition *find_parameter(uint32_t id);
const ParameterDefinition *find_parameter_by_key(std::string_view key);
// VRX_OK or VRX_ERR_BAD_VALUE.
uint32_t validate_value(const ParameterDefinition &definition, uint32_t value);

}  // namespace vrxsim
