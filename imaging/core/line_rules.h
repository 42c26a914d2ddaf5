// The general line-length rule: lines of ((depth + 1) div 8) x width bytes, padded to line_align.
#pragma once

#include <cstdint>

namespace vrc::core {

// Padding bytes at the end of a line; 0 when line_align is 0.
uint32_t skip_bytes_for(uint64_t width, uint64_t depth, uint32_t line_align);

// Bytes per line including padding, in 64 bits so that no product overflows.
uint64_t general_bytes_per_line(uint64_t width, uint64_t depth, uint32_t line_align);

}  // namespace vrc::core
