// Fuzz target: the header inspection a tool runs before reading a file, then, for a file it does
// not refuse, the read and the corrections the inspection asks for, as zep does them.
#include "fuzz/file_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  vrc::fuzz::read_input_file(data, size, [](uint32_t image) {
    ZEP_FILE_INSPECTION inspection;
    if (ZEP_IS_ERROR(ZEP_file_inspect(vrc::fuzz::input_path().c_str(), &inspection)) ||
        inspection.refused != 0)
      return;
    if (!ZEP_IS_ERROR(ZEP_image_read(image, ZEP_FILE_UNKNOWN, ZEP_ACTION_DATA)))
      ZEP_file_fix_up(image, &inspection);
  });
  return 0;
}
