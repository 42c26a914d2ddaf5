/* A tiny program built against the installed package. */
#include <vrcw32/zep.h>

#include <stdio.h>

int main(void) {
  uint32_t image = ZEP_image_create();
  ZEP_ImageMake(image, 4, 4, ZEP_Y8, 1);
  printf("bytes per line %u\n", ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE));
  ZEP_ErrHandlerInstall(NULL);
  return ZEP_image_destroy(image) == 0 && ZEP_image_get_parameter(image, ZEP_IMAGE_WIDTH) == ZEP_ERR_HANDLE ? 0 : 1;
}
