// zep: command-line front end of the imaging library.
#include "vrcw32/zep.h"

#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

struct DemoImage {
  const char *label;
  uint16_t type;
  uint32_t colour;  // in the format's colour-value layout (see ZEP_DrawPixel)
};

constexpr DemoImage kDemoImages[] = {
    {"grey", ZEP_Y8, 0x80},
    {"rgb24", ZEP_RGB24, 0x2060C0},
    {"bgrx32", ZEP_BGRX32, 0xFFC06020},
    {"rgb16", ZEP_RGB16, 0xF08010},
    {"yuv422", ZEP_YUV422, 0x806EB4},
    {"grey16", ZEP_Y16, 0x0FFF},
};

void print_parameters(const char *label, uint32_t image) {
  std::printf("%-8s type %3u  %4u x %-4u  depth %2u  bytes/line %5u  strip bytes %7u\n", label,
              ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE),
              ZEP_image_get_parameter(image, ZEP_IMAGE_WIDTH),
              ZEP_image_get_parameter(image, ZEP_IMAGE_HEIGHT),
              ZEP_image_get_parameter(image, ZEP_IMAGE_DEPTH),
              ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE),
              ZEP_image_get_parameter(image, ZEP_STRIP_BYTES));
}

int run_demo() {
  ZEP_Init();
  std::printf("Images made with ZEP_ImageMake (library id 0x%08x):\n",
              ZEP_image_get_parameter(0, ZEP_LIBRARY_ID));
  for (const DemoImage &demo : kDemoImages) {
    uint32_t image = ZEP_image_create();
    if (ZEP_IS_ERROR(image)) return 1;
    ZEP_ImageMake(image, 320, 240, demo.type, demo.colour);
    print_parameters(demo.label, image);
    ZEP_image_destroy(image);
  }
  return 0;
}

void usage(FILE *out) {
  std::fprintf(out,
               "usage: zep COMMAND [ARGS]\n"
               "commands:\n"
               "  demo    make images in several pixel formats and print their parameters\n");
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) {
    usage(stderr);
    return 2;
  }
  std::string_view command = argv[1];
  if (command == "demo") return run_demo();
  if (command == "--help" || command == "help") {
    usage(stdout);
    return 0;
  }
  std::fprintf(stderr, "zep: unknown command '%s'\n", argv[1]);
  usage(stderr);
  return 2;
}
