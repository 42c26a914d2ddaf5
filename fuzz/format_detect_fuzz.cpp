// Fuzz target: format detection on arbitrary bytes, then the read that the detected format
// dispatches to.
#include "fuzz/file_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  vrc::fuzz::read_input_file(data, size, [](uint32_t image) {
    ZEP_image_find_file_format(vrc::fuzz::input_path().c_str());
    ZEP_image_read(image, ZEP_FILE_UNKNOWN, ZEP_ACTION_DATA);
  });
  return 0;
}
