// zep demo: a short numbered sequence, seq001.tif ... seq012.tif, of a bar moving across a
// background, as a saved sequence would be, for `zep seq pack` to make a sequence file of.
#include "tools/zep/zep_tool.h"

#include <cstdio>
#include <string>

namespace zep_tool {
namespace {

constexpr uint32_t kFrames = 12;
constexpr uint32_t kWidth = 160;
constexpr uint32_t kHeight = 120;
constexpr uint32_t kBarWidth = 10;
constexpr uint32_t kBarStep = 12;  // pixels the bar moves per frame
constexpr uint32_t kBackground = 0x203040;
constexpr uint32_t kBar = 0xF0C020;

}  // namespace

bool write_demo_sequence(const std::string &folder) {
  for (uint32_t frame = 1; frame <= kFrames; ++frame) {
    Image image;
    if (!image.created()) return false;
    ZEP_ImageMake(image.handle(), kWidth, kHeight, ZEP_RGB24, kBackground);
    const uint32_t left = (frame - 1) * kBarStep;
    for (uint32_t y = 0; y < kHeight; ++y) {
      for (uint32_t x = left; x < left + kBarWidth; ++x) ZEP_DrawPixel(image.handle(), kBar, x, y);
    }
    char name[16];
    std::snprintf(name, sizeof name, "/seq%03u.tif", frame);
    const std::string path = folder + name;
    if (!path_fits(path.c_str()) ||
        ZEP_IS_ERROR(write_image(image.handle(), path.c_str(), ZEP_FILE_TIFF))) {
      return false;
    }
  }
  std::printf("sequence %u frames %u x %u RGB24, wrote %s/seq001.tif ... seq%03u.tif\n", kFrames,
              kWidth, kHeight, folder.c_str(), kFrames);
  return true;
}

}  // namespace zep_tool
