// Library start-up, run explicitly or lazily by the first ZEP_image_create.
#include "imaging/core/init.h"
#include "imaging/core/error_table.h"
#include "imaging/core/library_lock.h"
#include "vrcw32/zep_core.h"
#include "vrcw32/zep_mjpeg.h"
#include "vrcw32/zep_mraw.h"

#include <atomic>

namespace {

std::atomic<bool> g_initialised{false};

}  // namespace

namespace vrc::core {

uint32_t library_word() {
  return __atomic_load_n(&error_table()[ZEP_LIBRARY_NUMBER].library_id, __ATOMIC_ACQUIRE);
}

void ensure_initialised() {
  if (!g_initialised.load(std::memory_order_acquire)) ZEP_Init();
}

}  // namespace vrc::core

extern "C" {

uint32_t ZEP_Init(void) {
  ZEP_CriticalSectionInit();
  {
    vrc::core::LibraryLock lock;
    ZEP_ERR_ENTRY &entry = vrc::core::error_table()[ZEP_LIBRARY_NUMBER];
    entry.last_zep_code = 0;
    entry.other_code = 0;
    __atomic_store_n(&entry.handler, &ZEP_ErrHandlerDefault, __ATOMIC_RELEASE);
    __atomic_store_n(&entry.library_id, ZEP_LIBRARY_ID_VALUE, __ATOMIC_RELEASE);
    g_initialised.store(true, std::memory_order_release);
    ZEP_MJPEG_InitLibrary();
    ZEP_MRAW_InitLibrary();
  }
  return 0;
}

uint32_t ZEP_InitLibrary(void) { return ZEP_Init(); }

}  // extern "C"
