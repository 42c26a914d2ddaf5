// Fuzz target: the JPEG marker parse from memory (ZEP_JPEG_buffer_read), then the file built back
// from what was read.
#include "fuzz/file_input.h"

#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  vrc::fuzz::start_library();
  const uint32_t image = ZEP_JPEG_image_create();
  if (ZEP_IS_ERROR(image)) return 0;
  // The bytes are copied so that a read past the input's end is caught.
  const std::vector<uint8_t> bytes(data, data + size);
  if (ZEP_JPEG_buffer_read(image, bytes.data(), static_cast<uint32_t>(bytes.size())) == 0) {
    uint32_t length = 0;
    if (ZEP_JPEG_build_image(image, nullptr, &length) == 0) {
      std::vector<uint8_t> rebuilt(length);
      ZEP_JPEG_build_image(image, rebuilt.data(), &length);
    }
  }
  ZEP_image_destroy(image);
  return 0;
}
