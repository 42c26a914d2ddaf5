// Fuzz target: the JPEG marker parse from a file, whole (ZEP_JPEG_file_read) and header only with
// the file kept open, followed by the sequence operations on that open file.
#include "fuzz/file_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  vrc::fuzz::start_library();
  if (!vrc::fuzz::write_input(data, size)) return 0;
  const uint32_t image = ZEP_JPEG_image_create();
  const uint32_t frame = ZEP_JPEG_image_create();
  if (!ZEP_IS_ERROR(image) && !ZEP_IS_ERROR(frame)) {
    ZEP_image_set_infilename(image, vrc::fuzz::input_path().c_str());
    ZEP_JPEG_file_read(image);
    if (ZEP_JPEG_file_open(image) == 0 && ZEP_JPEG_sequence_calc_length(image) == 0) {
      const uint32_t frames = ZEP_image_get_parameter(image, ZEP_NUM_FRAMES);
      for (uint32_t n = 1; n <= frames && n <= 4; ++n)
        ZEP_JPEG_sequence_extract_frame(image, frame, n);
      ZEP_JPEG_sequence_extract_frame(image, frame, frames);
    }
    ZEP_JPEG_file_close(image);
  }
  ZEP_image_destroy(frame);
  ZEP_image_destroy(image);
  return 0;
}
