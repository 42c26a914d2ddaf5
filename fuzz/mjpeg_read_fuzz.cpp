// Fuzz target: ZEP_MJPEG_Open on arbitrary bytes, then reads by every positioning rule, skips by
// stored length and scans in both directions.
#include "fuzz/file_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  vrc::fuzz::start_library();
  if (!vrc::fuzz::write_input(data, size)) return 0;
  uint32_t handle = 0;
  if (ZEP_IS_ERROR(ZEP_MJPEG_Open(&handle, vrc::fuzz::input_path().c_str()))) return 0;
  const uint32_t jpeg = ZEP_JPEG_image_create();
  for (int32_t frame : {0, 0, -1, 0, 3, 2, 1, 4, -5}) ZEP_MJPEG_ImageRead(handle, jpeg, frame);
  ZEP_MJPEG_SkipForwards(handle, 2);
  ZEP_MJPEG_ImageRead(handle, jpeg, 0);
  ZEP_MJPEG_SkipBackwards(handle, 2);
  ZEP_MJPEG_ImageRead(handle, jpeg, 0);
  ZEP_MJPEG_ScanForwards(handle, 1);
  ZEP_MJPEG_ImageRead(handle, jpeg, 0);
  ZEP_MJPEG_ScanBackwards(handle, 2);
  ZEP_MJPEG_ImageRead(handle, jpeg, 0);
  ZEP_image_destroy(jpeg);
  ZEP_MJPEG_Close(handle);
  return 0;
}
