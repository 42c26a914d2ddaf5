// Where JPEG joins the rest of the library: ZEP_image_copy of an image holding JPEG data decodes
// it into the destination. (ZEP_image_read and ZEP_image_write reach the JPEG file functions
// through the JPEG row of the file-format registry.)
#include "imaging/core/handle_table.h"
#include "imaging/core/library_hooks.h"
#include "vrcw32/zep_jpeg.h"

namespace vrc::jpeg {
namespace {

// The destination has taken the JPEG image's parameters: its type is the JPEG sampling, and
// 4:1:1 data decodes as 4:2:2. Once decoded it holds pixels, no longer JPEG data.
uint32_t decompress_copy(uint32_t jpeg_image, uint32_t destination) {
  ZEP_IMAGE *target = core::image_record(destination);
  if (target->type == ZEP_DATA16_C)
    ZEP_image_set_parameter(destination, ZEP_IMAGE_TYPE, ZEP_YUV422);
  target->flags &= ~ZEP_FLAG_JPEG;
  return ZEP_JPEG_decompress(jpeg_image, destination);
}

[[maybe_unused]] const bool kRegistered = core::register_jpeg_decompressor(&decompress_copy);

}  // namespace
}  // namespace vrc::jpeg
