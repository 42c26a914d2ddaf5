/* The core API used from C99: handles, parameters, errors and the command-line record. Exits
 * non-zero, naming the failed check, when anything differs. */
#include "vrcw32/zep.h"

#include <stdio.h>
#include <string.h>

static int failures = 0;

#define CHECK(condition)                                          \
  do {                                                            \
    if (!(condition)) {                                           \
      fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                 \
    }                                                             \
  } while (0)

static uint32_t last_code = 0;

static uint32_t remember(uint32_t library, const char *function_name, uint32_t code, const char *message) {
  (void)library;
  (void)function_name;
  (void)message;
  last_code = code;
  return 1;
}

int main(void) {
  uint32_t image;
  uint32_t value = 0;
  const ZEP_FILE_FORMAT_INFO *format;
  ZEP_IMAGE *record;
  ZEP_CMD_LINE line;
  char *words[3];

  CHECK(ZEP_Init() == 0);
  CHECK(ZEP_ErrHandlerInstall(remember) == 0);
  image = ZEP_image_create();
  CHECK(!ZEP_IS_ERROR(image));
  CHECK(ZEP_ImageMake(image, 3, 2, ZEP_RGB24, 0x0A0B0C) == 0);
  CHECK(ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE) == 10);
  record = (ZEP_IMAGE *)ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR);
  CHECK(record != NULL && record->data[0] == 0x0A && record->data[2] == 0x0C);
  CHECK(ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, 70000) == 0);
  CHECK(ZEP_image_query_parameter(image, ZEP_IMAGE_WIDTH, &value) == 0 && value == 70000);
  CHECK(strcmp(ZEP_pixel_format_name(ZEP_RGB24), "RGB24") == 0);
  format = ZEP_file_format_info(0);
  CHECK(format != NULL && format->name != NULL && format->extensions != NULL);
  CHECK(ZEP_file_format_stores_type(ZEP_FILE_BMP, ZEP_RGB24) == 1);
  CHECK(ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, 200) == ZEP_ERR_UNSUPPORTED);
  CHECK(last_code == ZEP_ERR_UNSUPPORTED);
  CHECK(ZEP_image_destroy(ZEP_ANY_IMAGES_LEFT) == ZEP_ERR_INTERNAL);
  CHECK(ZEP_image_destroy(image) == 0);

  words[0] = "prog";
  words[1] = "-v";
  words[2] = "in.bmp";
  CHECK(ZEP_Util_ParseCommand(&line, 3, words) == 0);
  CHECK(line.n_options == 1 && line.n_arguments == 1 && strcmp(line.argument[0], "in.bmp") == 0);
  return failures == 0 ? 0 : 1;
}
