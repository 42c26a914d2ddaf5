// Frames the benchmarks share: camera-like sample levels and a whole frame held as one strip of
// an image.
#pragma once

#include "vrcw32/zep.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace vrc::bench {

// `value` with a little sensor noise (+-4), clamped to a byte. (Pure noise would make every table
// read a cache miss, which live video does not.)
inline uint8_t noisy_level(int value, std::mt19937 &rng) {
  return static_cast<uint8_t>(std::clamp(value + int(rng() % 9) - 4, 0, 255));
}

// A new image of `type`, `width` x `height`, whose single strip holds `bytes`.
inline uint32_t whole_frame_image(uint16_t type, uint32_t width, uint32_t height,
                                  const std::vector<uint8_t> &bytes) {
  const uint32_t image = ZEP_image_create();
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, height);
  ZEP_image_malloc_a_strip(image);
  auto *record = static_cast<ZEP_IMAGE *>(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR));
  std::copy(bytes.begin(), bytes.end(), record->data);
  return image;
}

}  // namespace vrc::bench
