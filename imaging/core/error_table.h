// The error-handler table: entries indexed by library number; this library reports through 1.
#pragma once

#include "vrcw32/zep_core.h"

#include <cstddef>

namespace vrc::core {

inline constexpr std::size_t kErrorTableEntries = 4;

ZEP_ERR_ENTRY *error_table();

}  // namespace vrc::core
