// Fuzz target: ZEP_MRAW_Open on arbitrary bytes, then reads by every positioning rule and skips
// in both directions.
#include "fuzz/file_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  vrc::fuzz::start_library();
  if (!vrc::fuzz::write_input(data, size)) return 0;
  uint32_t handle = 0;
  if (ZEP_IS_ERROR(ZEP_MRAW_Open(&handle, vrc::fuzz::input_path().c_str()))) {
    if (handle != 0) ZEP_MRAW_Close(handle);  // a failing Open may keep its slot
    return 0;
  }
  const uint32_t image = ZEP_image_create();
  for (int32_t frame : {0, 0, -1, 0, 2, 1, 3}) ZEP_MRAW_ImageRead(handle, image, frame);
  ZEP_MRAW_SkipFrames(handle, -2);
  ZEP_MRAW_ImageRead(handle, image, 0);
  ZEP_MRAW_SkipFrames(handle, 1);
  ZEP_MRAW_ImageRead(handle, image, 0);
  ZEP_image_destroy(image);
  ZEP_MRAW_Close(handle);
  return 0;
}
