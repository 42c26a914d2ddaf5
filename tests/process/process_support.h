// Test support for crop and insert: images whose every byte (padding included) is a known
// function of its position, made as one strip, and the formats both operations accept.
#pragma once

#include "support/error_capture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace vrc::test {

using Bytes = std::vector<uint8_t>;

inline ZEP_IMAGE &record_of(uint32_t image) {
  return *static_cast<ZEP_IMAGE *>(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR));
}

// The byte at `offset` of line `line` of a test image; `salt` tells images apart.
inline uint8_t test_byte(uint32_t line, uint32_t offset, uint32_t salt = 0) {
  return static_cast<uint8_t>(line * 29 + offset * 7 + salt * 101 + 1);
}

// Gives `image` the geometry of a width x height image of `type` with `line_align`, and a strip of
// `strip_lines` lines holding lines first_line.. of the test pattern (beyond `height` too).
inline void fill_strip(uint32_t image, uint16_t type, uint32_t width, uint32_t height,
                       uint32_t line_align, uint32_t strip_lines, uint32_t first_line,
                       uint32_t salt = 0) {
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(image, ZEP_LINE_ALIGN, line_align);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, strip_lines);
  ZEP_image_free_data(image);
  ASSERT_EQ(ZEP_image_malloc_a_strip(image), 0u);
  ZEP_IMAGE &record = record_of(image);
  for (uint32_t line = 0; line < strip_lines; ++line) {
    for (uint32_t offset = 0; offset < record.bytes_per_line; ++offset)
      record.data[line * record.bytes_per_line + offset] =
          test_byte(first_line + line, offset, salt);
  }
}

inline Bytes strip_line(uint32_t image, uint32_t line) {
  const ZEP_IMAGE &record = record_of(image);
  const uint8_t *start = record.data + std::size_t{line} * record.bytes_per_line;
  return Bytes(start, start + record.bytes_per_line);
}

// A pixel format with the bytes one pixel takes in a line.
struct Format {
  uint16_t type;
  uint32_t pixel_bytes;
  const char *name;
};

inline void PrintTo(const Format &format, std::ostream *out) { *out << format.name; }
inline std::string format_name(const testing::TestParamInfo<Format> &info) {
  return info.param.name;
}

// Every format the crop copies (XRGB32 aside) and the insert pastes.
inline const std::vector<Format> kCopiedFormats = {
    {ZEP_Y8, 1, "Y8"},         {ZEP_PALETTED, 1, "PALETTED"}, {ZEP_RGB15, 2, "RGB15"},
    {ZEP_RGB16, 2, "RGB16"},   {ZEP_YUV422, 2, "YUV422"},     {ZEP_Y16, 2, "Y16"},
    {ZEP_RGB24, 3, "RGB24"},   {ZEP_BGR24, 3, "BGR24"},       {ZEP_RGBX32, 4, "RGBX32"},
    {ZEP_BGRX32, 4, "BGRX32"}, {ZEP_XBGR32, 4, "XBGR32"},     {ZEP_CMYK32, 4, "CMYK32"},
};

}  // namespace vrc::test
