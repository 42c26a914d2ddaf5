// Test support for the conversions: images filled from byte vectors, conversions run strip by
// strip the way a caller feeds them, and small byte helpers.
#pragma once

#include "imaging/convert/rgb_rows.h"
#include "support/error_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace vrc::test {

using Bytes = std::vector<uint8_t>;
using ConvertFn = uint32_t (*)(uint32_t, uint32_t, uint16_t);

inline uint32_t bytes_per_line(uint16_t type, uint32_t width, uint32_t line_align = 2) {
  ScopedImage probe;
  ZEP_image_set_parameter(probe, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(probe, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(probe, ZEP_LINE_ALIGN, line_align);
  ZEP_image_check(probe);
  return probe.record().bytes_per_line;
}

// Gives `image` the geometry and, as one strip, the bytes of a whole image (`bytes` holds
// bytes_per_line x height bytes, padding included).
inline void fill_image(uint32_t image, uint16_t type, uint32_t width, uint32_t height, const Bytes &bytes,
                       uint32_t line_align = 2) {
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(image, ZEP_LINE_ALIGN, line_align);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, height);
  ZEP_image_free_data(image);
  ASSERT_EQ(ZEP_image_malloc_a_strip(image), 0u);
  auto &record = *static_cast<ZEP_IMAGE *>(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR));
  ASSERT_EQ(record.strip_bytes, bytes.size());
  std::copy(bytes.begin(), bytes.end(), record.data);
}

inline ZEP_IMAGE &record_of(uint32_t image) {
  return *static_cast<ZEP_IMAGE *>(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR));
}

// The current strip of `image` as bytes.
inline Bytes strip_bytes(uint32_t image) {
  const ZEP_IMAGE &r = record_of(image);
  return Bytes(r.data, r.data + size_t{r.bytes_per_line} * r.lines_this_strip);
}

// Converts `whole` (the source image's bytes, geometry already set on `src`) with `convert` in
// strips of `strip_lines` lines and returns the destination's strips joined. Each strip is handed
// to the member in its own freshly allocated source strip.
inline Bytes convert_in_strips(ConvertFn convert, uint32_t src, uint32_t dst, const Bytes &whole,
                               uint32_t strip_lines, std::vector<uint32_t> *strip_heights = nullptr) {
  ZEP_IMAGE &s = record_of(src);
  const uint32_t height = s.height;
  const uint32_t line = s.bytes_per_line;
  Bytes joined;
  for (uint32_t done = 0; done < height;) {
    ZEP_image_free_data(src);
    ZEP_image_set_parameter(src, ZEP_LINES_THIS_STRIP, strip_lines);
    EXPECT_EQ(ZEP_image_malloc_a_strip(src), 0u);
    const uint32_t lines = std::min(strip_lines, height - done);
    std::memcpy(record_of(src).data, whole.data() + size_t{done} * line, size_t{lines} * line);
    EXPECT_EQ(convert(src, dst, ZEP_MODE_NEXT_STRIP), 0u);
    EXPECT_EQ(record_of(src).lines_this_strip, lines);
    if (strip_heights) strip_heights->push_back(record_of(dst).lines_this_strip);
    const Bytes out = strip_bytes(dst);
    joined.insert(joined.end(), out.begin(), out.end());
    done += lines;
  }
  return joined;
}

inline Bytes random_bytes(size_t n, uint32_t seed) {
  std::mt19937 rng(seed);
  Bytes bytes(n);
  for (auto &b : bytes) b = static_cast<uint8_t>(rng());
  return bytes;
}

using vrc::convert::pixel_bytes;

// Random pixels of an image of `type`, with zero line padding.
inline Bytes random_image(uint16_t type, uint32_t width, uint32_t height, uint32_t seed, uint32_t line_align = 2) {
  const uint32_t line = bytes_per_line(type, width, line_align);
  const uint32_t used = width * pixel_bytes(type);
  Bytes bytes = random_bytes(size_t{line} * height, seed);
  for (uint32_t y = 0; y < height; ++y) std::fill(bytes.begin() + y * line + used, bytes.begin() + (y + 1) * line, 0);
  return bytes;
}

struct Rgb {
  int r, g, b;
};

// The YUV-to-RGB arithmetic as written down: each result shifted arithmetically, then clamped.
inline Rgb reference_rgb(int y, int u_stored, int v_stored) {
  const int u = u_stored - 128, v = v_stored - 128;
  const auto clamp = [](int x) { return std::clamp(x, 0, 255); };
  return {clamp((1024 * y + 1436 * v) >> 10), clamp((1024 * y - 731 * v - 352 * u) >> 10),
          clamp((1024 * y + 1815 * u) >> 10)};
}

}  // namespace vrc::test
