// The single recursive library lock and the counting allocation wrappers.
//
// Taking or releasing the lock is checked: should the platform call fail (releasing a lock the
// thread does not hold, for one), a message box reports it, the caption carrying the error code
// and the function's name and the body only the name, as the library has always shown it; the
// failure is then taken as handled.
#include "imaging/core/library_lock.h"
#include "imaging/core/message_box.h"
#include "vrcw32/zep_core.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>

namespace {

// Statically initialised, so that it exists before any constructor and outlives every destructor
// that may still take it at exit.
pthread_mutex_t g_library_lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;

struct AllocationCounters {
  uint32_t allocations = 0;
  uint32_t frees = 0;
  uint32_t bytes = 0;
  uint32_t last_reported = 0;
};

AllocationCounters g_counters;

uint32_t checked(const char *function_name, int error) {
  if (error != 0) {
    char caption[160];
    std::snprintf(caption, sizeof caption, "Failed with ExceptionCode 0x%08x in %s. Aborting!",
                  static_cast<unsigned>(error), function_name);
    vrc::core::show_message_box(function_name, caption);
  }
  return 0;
}

}  // namespace

extern "C" {

// The lock is created with the library image; nothing is left to do at start-up.
uint32_t ZEP_CriticalSectionInit(void) { return 0; }

uint32_t ZEP_CriticalSectionBegin(void) {
  return checked("ZEP_CriticalSectionBegin", pthread_mutex_lock(&g_library_lock));
}

uint32_t ZEP_CriticalSectionEnd(void) {
  return checked("ZEP_CriticalSectionEnd", pthread_mutex_unlock(&g_library_lock));
}

void *ZEP_DebugMalloc(size_t size) {
  void *block = std::malloc(size);
  if (block != nullptr) {
    vrc::core::LibraryLock lock;
    ++g_counters.allocations;
    g_counters.bytes += static_cast<uint32_t>(size);
  }
  return block;
}

void ZEP_DebugFree(void *pointer) {
  std::free(pointer);
  vrc::core::LibraryLock lock;
  ++g_counters.frees;
}

uint32_t ZEP_DebugMallocPrint(void) {
  vrc::core::LibraryLock lock;
  g_counters.last_reported = g_counters.bytes;
  return g_counters.bytes;
}

}  // extern "C"
