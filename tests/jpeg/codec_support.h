// Test support for the JPEG codec: camera-like test pictures in any source format, whole-image
// strips, JPEG images made by our encoder, and the picture-quality measure the round trips state
// their tolerance in.
#pragma once

#include "support/error_capture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace vrc::test {

using Bytes = std::vector<uint8_t>;

inline ZEP_IMAGE &record_of(uint32_t image) {
  return *static_cast<ZEP_IMAGE *>(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR));
}

// R, G, B of pixel (x, y) of the test picture: smooth gradients with an edge and fine texture,
// like a camera frame (pure noise would say little about a codec made for pictures).
struct Rgb {
  uint8_t r, g, b;
};
inline Rgb test_colour(uint32_t x, uint32_t y) {
  const int ripple = static_cast<int>(12.0 * std::sin(x * 0.35) * std::cos(y * 0.27));
  const int edge = (x / 11 + y / 7) % 5 == 0 ? 40 : 0;
  auto level = [](int value) {
    return static_cast<uint8_t>(value < 0 ? 0 : (value > 255 ? 255 : value));
  };
  return {level(60 + int(x * 3 % 160) + ripple + edge), level(40 + int(y * 5 % 170) - ripple),
          level(200 - int((x + y) * 2 % 150) + edge / 2)};
}

// Gives `image` the test picture in `type` (Y8, the 24/32-bit RGB layouts or YUV 4:2:2) as one
// strip of the whole picture.
void make_test_picture(uint32_t image, uint16_t type, uint32_t width, uint32_t height);

// Gives `image` the bytes of a whole picture (`bytes` holds bytes_per_line x height).
void fill_picture(uint32_t image, uint16_t type, uint32_t width, uint32_t height,
                  const Bytes &bytes);

// The picture's pixel bytes line by line, without line padding.
Bytes picture_bytes(uint32_t image);

// Peak signal-to-noise ratio in dB between two byte vectors of equal length (infinity when equal).
double psnr(const Bytes &a, const Bytes &b);

// A JPEG image holding `source` compressed at quality scale `quality`.
uint32_t compressed(uint32_t source, uint16_t quality = 16);

// A JPEG image of `type` and size whose state block has the standard tables at quality scale 16
// and whose data is `stream`.
uint32_t jpeg_with_stream(uint16_t type, uint32_t width, uint32_t height, const Bytes &stream);

// The JPEG image's entropy-coded data.
Bytes stream_of(uint32_t jpeg_image);

// Writes `stream`, the entropy data of a picture of `type` and size, as seed `name` of the entropy
// decoder's fuzz target (after the byte that selects that header; sizes without a header of the
// target are not written).
void write_entropy_seed(const std::string &name, uint16_t type, uint32_t width, uint32_t height,
                        bool rgb_output, const Bytes &stream);

}  // namespace vrc::test
