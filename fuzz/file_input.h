// Shared by the file-reader fuzz targets: the input bytes become a file on disk (the readers take
// file names), read into a fresh image with reporting switched off.
#pragma once

#include "vrcw32/zep.h"

#include <unistd.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace vrc::fuzz {

// One scratch file per fuzzing process, rewritten for every input.
inline const std::string &input_path() {
  static const std::string path = "/tmp/zep-fuzz-" + std::to_string(::getpid());
  return path;
}

inline bool write_input(const uint8_t *data, std::size_t size) {
  std::FILE *file = std::fopen(input_path().c_str(), "wb");
  if (file == nullptr) return false;
  const bool written =
      size == 0 || std::fwrite(data, 1, size, file) == size;  // data may be null when empty
  return std::fclose(file) == 0 && written;
}

inline void start_library() {
  static const bool started = [] {
    ZEP_Init();
    ZEP_ErrHandlerInstall(nullptr);
    std::atexit([] { std::remove(input_path().c_str()); });
    return true;
  }();
  static_cast<void>(started);
}

// Reads the input as a file through `read(image)` into a new image that may hold the whole
// picture in one strip, then destroys the image.
template <typename Read>
void read_input_file(const uint8_t *data, std::size_t size, Read read) {
  start_library();
  if (!write_input(data, size)) return;
  const uint32_t image = ZEP_image_create();
  if (ZEP_IS_ERROR(image)) return;
  ZEP_image_set_infilename(image, input_path().c_str());
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 0xFFFF);
  read(image);
  ZEP_image_destroy(image);
}

}  // namespace vrc::fuzz
