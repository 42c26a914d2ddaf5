// The library lock held for a scope.
#pragma once

#include "vrcw32/zep_core.h"

namespace vrc::core {

// Takes the single recursive library lock for the lifetime of the object.
class LibraryLock {
 public:
  LibraryLock() { ZEP_CriticalSectionBegin(); }
  ~LibraryLock() { ZEP_CriticalSectionEnd(); }
  LibraryLock(const LibraryLock &) = delete;
  LibraryLock &operator=(const LibraryLock &) = delete;
};

}  // namespace vrc::core
