// Copying a text into a fixed 128-character field of a record.
#pragma once

#include "vrcw32/zep_core.h"

#include <cstring>

namespace vrc::core {

// Copies `text` with its terminator, cut to 127 characters so that it always fits.
inline void copy_text_field(char (&field)[ZEP_NAME_LENGTH], const char *text) {
  std::size_t length = strnlen(text, ZEP_NAME_LENGTH - 1);
  std::memcpy(field, text, length);
  field[length] = '\0';
}

}  // namespace vrc::core
