// Whole-picture temporaries of the codec.
#include "imaging/files/jpeg/scoped_image.h"

namespace vrc::jpeg {

uint32_t make_whole_image(uint32_t image, uint16_t type, uint32_t width, uint32_t height,
                          uint32_t line_align) {
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(image, ZEP_LINE_ALIGN, line_align);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, height);
  if (const uint32_t status = ZEP_image_check(image); ZEP_IS_ERROR(status)) return status;
  ZEP_image_free_data(image);
  return ZEP_image_malloc_a_strip(image);
}

}  // namespace vrc::jpeg
