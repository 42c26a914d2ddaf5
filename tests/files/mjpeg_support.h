// Test support for MJPEG files: JPEG frames that differ per frame, sequences written in one call
// (with the entropy data of every frame kept for comparison), and a handle closed with its scope.
#pragma once

#include "files/jpeg_support.h"
#include "imaging/core/jpeg_record.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vrc::test {

// Compresses frame `frame` of a width x height picture (grey for ZEP_Y8, else 4:2:2) into `jpeg`.
inline void make_jpeg_frame(uint32_t jpeg, uint16_t type, uint32_t width, uint32_t height,
                            uint32_t frame) {
  Picture picture = smooth_picture(width, height, type == ZEP_Y8 ? 1 : 3);
  for (std::size_t i = 0; i < picture.samples.size(); ++i)
    picture.samples[i] = static_cast<uint8_t>(picture.samples[i] + frame * 5 + (i * frame) % 7);
  ScopedImage source;
  fill_image(source, picture, type == ZEP_Y8 ? ZEP_Y8 : ZEP_RGB24);
  EXPECT_EQ(compress(source, jpeg, 16), 0u);
}

// The entropy data a JPEG image holds.
inline Bytes jpeg_data(uint32_t jpeg) {
  const auto &record =
      *static_cast<ZEP_JPEG_RECORD *>(ZEP_image_get_ptr(jpeg, ZEP_JPEG_RECORD_PTR));
  return record.data == nullptr ? Bytes() : Bytes(record.data, record.data + record.length);
}

// The handle record of an open MJPEG handle.
inline ZEP_MJPEG_RECORD mjpeg_info(uint32_t handle) {
  ZEP_MJPEG_RECORD record{};
  EXPECT_EQ(ZEP_MJPEG_GetInfo(handle, &record), 0u);
  return record;
}

class ScopedMjpeg {
 public:
  ScopedMjpeg() = default;
  ~ScopedMjpeg() {
    if (handle != 0) ZEP_MJPEG_Close(handle);
  }
  ScopedMjpeg(const ScopedMjpeg &) = delete;
  ScopedMjpeg &operator=(const ScopedMjpeg &) = delete;
  uint32_t handle = 0;
};

// Writes `frames` frames to `path` and returns the entropy data of each (the file holds all but
// the last).
inline std::vector<Bytes> write_mjpeg(const std::string &path, uint16_t type, uint32_t width,
                                      uint32_t height, uint32_t frames, uint32_t user_value = 0) {
  std::vector<Bytes> data;
  uint32_t handle = 0;
  EXPECT_EQ(ZEP_MJPEG_Create(&handle, path.c_str(), user_value, 0), 0u);
  for (uint32_t frame = 1; frame <= frames; ++frame) {
    ScopedJpeg jpeg;
    make_jpeg_frame(jpeg, type, width, height, frame);
    EXPECT_EQ(ZEP_MJPEG_ImageWrite(handle, jpeg), 0u) << "frame " << frame;
    data.push_back(jpeg_data(jpeg));
  }
  EXPECT_EQ(ZEP_MJPEG_Close(handle), 0u);
  return data;
}

}  // namespace vrc::test
