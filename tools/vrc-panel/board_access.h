// Shared by the commands that reach the board: how words and refusals are written.
#pragma once

#include <cstdint>
#include <string>

namespace vrc_panel {

inline constexpr const char *kNoBoard = "no board is open";

// A 32-bit word in C hexadecimal, eight digits: 0xDEADBEEF.
std::string hex_word(uint32_t word);

}  // namespace vrc_panel
