// Camera configuration files (*.vcf): plain "key=value" lines, keys as in the parameter table,
// values in decimal or 0x hexadecimal; blank lines and lines starting with '#' or ';' are
// skipped. Reading applies each value through the parameter store's validation, so a file can
// only hold what the board accepts.
#pragma once

#include <cstdint>
#include <string>

#include "platform/board/sim/parameter_store.h"

namespace vrxsim {

// VRX_OK, or VRX_ERR_FILE with "PATH:LINE: reason" (or the open failure) in `error`.
uint32_t read_vcf_file(const std::string& path, ParameterStore& store, std::string& error);
// VRX_OK, or VRX_ERR_FILE with the reason in `error`.
uint32_t write_vcf_file(const std::string& path, const ParameterStore& store, std::string& error);

}  // namespace vrxsim
