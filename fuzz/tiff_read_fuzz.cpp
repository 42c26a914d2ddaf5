// Fuzz target: ZEP_read_TIFF_file on arbitrary bytes, pixels and header only.
#include "fuzz/file_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  vrc::fuzz::read_input_file(data, size, [](uint32_t image) {
    ZEP_read_TIFF_file(image, ZEP_ACTION_DATA);
    ZEP_read_TIFF_file(image, ZEP_ACTION_CLOSE);
  });
  return 0;
}
