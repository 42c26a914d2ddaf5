// Fuzz target: the JPEG entropy decoder. The first byte picks a fixed header (sampling, picture
// size, output format; see jpeg_entropy_input.h); the rest is the entropy-coded data, decoded
// with the default Huffman tables and the standard quantisation tables.
#include "fuzz/jpeg_entropy_input.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  static const bool started = [] {
    ZEP_Init();
    ZEP_ErrHandlerInstall(nullptr);
    return true;
  }();
  static_cast<void>(started);
  if (size < 1) return 0;
  const vrc::fuzz::EntropyHeader header = vrc::fuzz::entropy_header(data[0]);
  const uint32_t jpeg = ZEP_JPEG_image_create();
  const uint32_t decoded = ZEP_image_create();
  if (ZEP_IS_ERROR(jpeg) || ZEP_IS_ERROR(decoded)) return 0;
  ZEP_JPEG_set_Quality_factor(jpeg, 16);
  ZEP_JPEG_make_Q_tables(jpeg);
  ZEP_JPEG_set_default_H_tables(jpeg);
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_TYPE, header.type);
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_WIDTH, header.width);
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_HEIGHT, header.height);
  ZEP_image_set_parameter(jpeg, ZEP_LINES_THIS_STRIP, header.height);
  if (ZEP_JPEG_malloc_N_bytes_data(jpeg, static_cast<uint32_t>(size - 1)) == 0 && size > 1)
    std::memcpy(ZEP_image_get_ptr(jpeg, ZEP_JPEG_BUFFER_PTR), data + 1, size - 1);
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_TYPE, header.output);
  ZEP_JPEG_decompress(jpeg, decoded);
  ZEP_image_destroy(decoded);
  ZEP_image_destroy(jpeg);
  return 0;
}
