// Start-up state of the library.
#pragma once

#include <cstdint>

namespace vrc::core {

// Runs ZEP_Init unless it has run.
void ensure_initialised();

// The library identification word (image parameter 22): 0x00044200 once initialised, else 0.
uint32_t library_word();

}  // namespace vrc::core
