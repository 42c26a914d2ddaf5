// Test support for MRAW files: frames filled with a pattern that differs per frame, sequences
// written in one call, and a handle closed with its scope.
#pragma once

#include "files/files_support.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vrc::test {

// Fills every byte of the image's strip (padding included, which MRAW stores too) with a pattern
// of the frame number.
inline void fill_frame(uint32_t image, uint32_t frame) {
  auto *data = static_cast<uint8_t *>(ZEP_image_get_ptr(image, ZEP_DATA_PTR));
  const uint32_t bytes = ZEP_image_get_parameter(image, ZEP_STRIP_BYTES);
  for (uint32_t i = 0; i < bytes; ++i) data[i] = static_cast<uint8_t>(i * 7 + frame * 13 + 1);
}

// The bytes of the image's current strip.
inline Bytes strip_bytes(uint32_t image) {
  const auto *data = static_cast<const uint8_t *>(ZEP_image_get_ptr(image, ZEP_DATA_PTR));
  return Bytes(data, data + ZEP_image_get_parameter(image, ZEP_STRIP_BYTES));
}

// Writes `frames` frames of a width x height image of `type` to `path` (frame k filled by
// fill_frame(k)) and returns their strips.
inline std::vector<Bytes> write_sequence(const std::string &path, uint16_t type, uint32_t width,
                                         uint32_t height, uint32_t frames) {
  std::vector<Bytes> strips;
  uint32_t handle = 0;
  EXPECT_EQ(ZEP_MRAW_Create(&handle, path.c_str()), 0u);
  ScopedImage image;
  ZEP_ImageMake(image, width, height, type, 0);
  for (uint32_t frame = 1; frame <= frames; ++frame) {
    fill_frame(image, frame);
    EXPECT_EQ(ZEP_MRAW_ImageWrite(handle, image), 0u) << "frame " << frame;
    strips.push_back(strip_bytes(image));
  }
  EXPECT_EQ(ZEP_MRAW_Close(handle), 0u);
  return strips;
}

// The handle record of an open MRAW handle.
inline ZEP_MRAW_RECORD mraw_info(uint32_t handle) {
  ZEP_MRAW_RECORD record{};
  EXPECT_EQ(ZEP_MRAW_GetInfo(handle, &record), 0u);
  return record;
}

// An MRAW handle closed at the end of the scope (when still in use).
class ScopedMraw {
 public:
  ScopedMraw() = default;
  ~ScopedMraw() {
    if (handle != 0) ZEP_MRAW_Close(handle);
  }
  ScopedMraw(const ScopedMraw &) = delete;
  ScopedMraw &operator=(const ScopedMraw &) = delete;
  uint32_t handle = 0;
};

// A sequence written to a temporary folder and opened for reading, with reports recorded.
struct OpenedSequence {
  OpenedSequence(uint16_t type, uint32_t width, uint32_t height, uint32_t frames)
      : strips(write_sequence(path, type, width, height, frames)) {
    EXPECT_EQ(ZEP_MRAW_Open(&mraw.handle, path.c_str()), 0u);
  }
  uint32_t handle() const { return mraw.handle; }

  ErrorCapture errors;
  TempDir folder;
  const std::string path = folder.file("sequence.mraw");
  const std::vector<Bytes> strips;
  ScopedMraw mraw;
};

}  // namespace vrc::test
