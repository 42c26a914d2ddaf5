// Where the library shows a text to the user: the message box a GUI application registered with
// ZEP_SetMessageBox, else standard error.
#pragma once

#include <cstdint>

namespace vrc::core {

// Shows `text` under `caption`; returns the box's result (1, OK, when written to standard error).
uint32_t show_message_box(const char *text, const char *caption);

}  // namespace vrc::core
