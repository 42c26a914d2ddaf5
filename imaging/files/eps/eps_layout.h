// Shape of the Encapsulated PostScript pages this library writes and reads back: the image is
// fitted into a 522 x 720 point area whose lower left corner is (18, 10), landscape when it is
// wider than high, and its pixels follow as lines of lower-case hexadecimal digits.
#pragma once

#include "vrcw32/zep_core.h"

#include <cstdint>
#include <optional>

namespace vrc::files::eps {

inline constexpr int64_t kAreaShort = 522;  // points
inline constexpr int64_t kAreaLong = 720;
inline constexpr int64_t kAreaLeft = 18;
inline constexpr int64_t kAreaBottom = 10;
inline constexpr uint32_t kHexBytesPerRow = 39;  // a newline follows every 39th byte of a line
inline constexpr std::size_t kTextLimit = 256;   // characters of a header line or word

struct PageGeometry {
  int64_t x0, y0, x1, y1;    // bounding box
  int64_t scale_x, scale_y;  // operands of "scale"
  bool landscape;
};

// The page of a width x height image; none when a side is 0.
std::optional<PageGeometry> page_geometry(uint32_t width, uint32_t height);

// Bytes of one image line in the hex data: packed bits for Y1, three per pixel for RGB24, one
// per pixel otherwise.
inline uint64_t line_bytes(uint16_t type, uint32_t width) {
  if (type == ZEP_Y1) return (uint64_t{width} + 7) / 8;
  return type == ZEP_RGB24 ? 3 * uint64_t{width} : width;
}

// Lines whose count (Y1 bytes, otherwise pixels) is odd are followed by one padding byte in
// memory, the 2-byte line alignment the format assumes.
inline bool line_is_odd(uint16_t type, uint32_t width) {
  return (type == ZEP_Y1 ? line_bytes(type, width) : width) % 2 == 1;
}

}  // namespace vrc::files::eps
