// The single recursive library lock and the counting allocation wrappers.
//
// Taking or releasing the lock runs under a guard: should the platform call fail, a message box
// reports it (caption with the code and function name, body with the name) and the failure is
// taken as handled, as the library has always done.
#include "imaging/core/message_box.h"
#include "vrcw32/zep_core.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <system_error>

namespace {

std::recursive_mutex &library_lock() {
  static std::recursive_mutex lock;
  return lock;
}

struct AllocationCounters {
  uint32_t allocations = 0;
  uint32_t frees = 0;
  uint32_t bytes = 0;
  uint32_t last_reported = 0;
};

AllocationCounters g_counters;

template <typename Call>
uint32_t guarded(const char *function_name, Call call) {
  try {
    call();
  } catch (const std::system_error &failure) {
    char caption[160];
    std::snprintf(caption, sizeof caption, "Failed with ExceptionCode 0x%08x in %s. Aborting!",
                  static_cast<unsigned>(failure.code().value()), function_name);
    vrc::core::show_message_box(function_name, caption);
  }
  return 0;
}

}  // namespace

extern "C" {

uint32_t ZEP_CriticalSectionInit(void) {
  library_lock();
  return 0;
}

uint32_t ZEP_CriticalSectionBegin(void) {
  return guarded("ZEP_CriticalSectionBegin", [] { library_lock().lock(); });
}

uint32_t ZEP_CriticalSectionEnd(void) {
  return guarded("ZEP_CriticalSectionEnd", [] { library_lock().unlock(); });
}

void *ZEP_DebugMalloc(size_t size) {
  void *block = std::malloc(size);
  if (block != nullptr) {
    ZEP_CriticalSectionBegin();
    ++g_counters.allocations;
    g_counters.bytes += static_cast<uint32_t>(size);
    ZEP_CriticalSectionEnd();
  }
  return block;
}

void ZEP_DebugFree(void *pointer) {
  std::free(pointer);
  ZEP_CriticalSectionBegin();
  ++g_counters.frees;
  ZEP_CriticalSectionEnd();
}

uint32_t ZEP_DebugMallocPrint(void) {
  ZEP_CriticalSectionBegin();
  g_counters.last_reported = g_counters.bytes;
  uint32_t total = g_counters.bytes;
  ZEP_CriticalSectionEnd();
  return total;
}

}  // extern "C"
