// A temporary image of the codec, destroyed with its scope.
#pragma once

#include "vrcw32/zep_core.h"

#include <cstdint>

namespace vrc::jpeg {

class ScopedImage {
 public:
  ScopedImage() : m_handle(ZEP_image_create()) {}
  ~ScopedImage() {
    if (!ZEP_IS_ERROR(m_handle)) ZEP_image_destroy(m_handle);
  }
  ScopedImage(const ScopedImage &) = delete;
  ScopedImage &operator=(const ScopedImage &) = delete;

  uint32_t handle() const { return m_handle; }
  bool failed() const { return ZEP_IS_ERROR(m_handle); }

 private:
  uint32_t m_handle;
};

// Gives `image` the type, size and line alignment and one strip holding the whole picture;
// returns 0 or the code of the failed check or allocation.
uint32_t make_whole_image(uint32_t image, uint16_t type, uint32_t width, uint32_t height,
                          uint32_t line_align);

}  // namespace vrc::jpeg
