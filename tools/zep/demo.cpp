// zep demo: makes images in several pixel formats, prints their parameters and writes each in
// every file format the library both reads and writes (BMP, TIFF, EPS, JPEG) into a folder. Formats
// a file cannot hold are converted first to RGB24 (colour) or Y8 (grey).
#include "tools/zep/zep_tool.h"

#include <cstdio>
#include <filesystem>
#include <string>

namespace zep_tool {
namespace {

struct DemoImage {
  const char *label;
  uint16_t type;
  uint32_t colour;    // in the format's colour-value layout (see ZEP_DrawPixel)
  uint16_t fallback;  // pixel format written where a file cannot hold `type`
};

constexpr DemoImage kDemoImages[] = {
    {"grey", ZEP_Y8, 0x80, ZEP_Y8},
    {"rgb24", ZEP_RGB24, 0x2060C0, ZEP_RGB24},
    {"bgrx32", ZEP_BGRX32, 0xFFC06020, ZEP_RGB24},
    {"rgb16", ZEP_RGB16, 0xF08010, ZEP_RGB24},
    {"yuv422", ZEP_YUV422, 0x806EB4, ZEP_RGB24},
    {"grey16", ZEP_Y16, 0x0FFF, ZEP_Y8},
};

constexpr uint32_t kWidth = 320;
constexpr uint32_t kHeight = 240;
constexpr char kDefaultFolder[] = "zep-demo";

// The first of a format's blank-separated extensions.
std::string usual_extension(const ZEP_FILE_FORMAT_INFO &format) {
  const std::string extensions = format.extensions;
  return extensions.substr(0, extensions.find(' '));
}

void print_parameters(const char *label, uint32_t image) {
  std::printf("%-8s type %3u  %4u x %-4u  depth %2u  bytes/line %5u  strip bytes %7u\n", label,
              ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE),
              ZEP_image_get_parameter(image, ZEP_IMAGE_WIDTH),
              ZEP_image_get_parameter(image, ZEP_IMAGE_HEIGHT),
              ZEP_image_get_parameter(image, ZEP_IMAGE_DEPTH),
              ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE),
              ZEP_image_get_parameter(image, ZEP_STRIP_BYTES));
}

// Writes `image` (or its conversion to the fallback format) as `path`.
bool write_demo_file(const DemoImage &demo, uint32_t image, const ZEP_FILE_FORMAT_INFO &kind,
                     const std::string &path) {
  uint32_t written = image;
  Image converted;
  if (!format_accepts(kind.code, demo.type)) {
    if (!converted.created() ||
        ZEP_IS_ERROR(
            ZEP_image_convert(image, converted.handle(), demo.fallback, 0, ZEP_MODE_NEXT_STRIP))) {
      fail("cannot convert %s pixels to %s", type_name(demo.type), type_name(demo.fallback));
      return false;
    }
    written = converted.handle();
  }
  if (ZEP_IS_ERROR(write_image(written, path.c_str(), kind.code))) {
    fail("cannot write '%s'", path.c_str());
    return false;
  }
  std::printf("           wrote %s (%s)\n", path.c_str(),
              type_name(ZEP_image_get_parameter(written, ZEP_IMAGE_TYPE)));
  return true;
}

}  // namespace

int run_demo(int argc, char **argv) {
  if (argc > 1) {
    std::fprintf(stderr, "zep: demo takes at most one folder\n");
    return kUsage;
  }
  const std::string folder = argc == 1 ? argv[0] : kDefaultFolder;
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    std::fprintf(stderr, "zep: cannot create folder '%s': %s\n", folder.c_str(),
                 error.message().c_str());
    return kFailure;
  }
  std::printf("Images made with ZEP_ImageMake (library id 0x%08x), written to %s/:\n",
              ZEP_image_get_parameter(0, ZEP_LIBRARY_ID), folder.c_str());
  int result = kSuccess;
  for (const DemoImage &demo : kDemoImages) {
    Image image;
    if (!image.created()) {
      fail("cannot create an image");
      return kFailure;
    }
    ZEP_ImageMake(image.handle(), kWidth, kHeight, demo.type, demo.colour);
    print_parameters(demo.label, image.handle());
    for (const ZEP_FILE_FORMAT_INFO *kind : file_formats()) {
      if (!is_readable(*kind) || !is_writable(*kind)) continue;
      const std::string path = folder + "/" + demo.label + "." + usual_extension(*kind);
      if (!path_fits(path.c_str()) || !write_demo_file(demo, image.handle(), *kind, path))
        result = kFailure;
    }
  }
  if (!write_demo_sequence(folder)) result = kFailure;
  return result;
}

}  // namespace zep_tool
