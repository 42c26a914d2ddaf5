// Edge-repeating copy of an image into a larger one of the same type.
#include "imaging/files/jpeg/encoder_padding.h"

#include "imaging/core/pixel_formats.h"

#include <cstring>

namespace vrc::jpeg {
namespace {

// Completes the half pair at the end of an odd-width YUV 4:2:2 line: Y1 = Y0, V from the pair
// before it.
void complete_half_pair(uint8_t *line, uint32_t width) {
  uint8_t *pair = line + 2 * (width - 1);
  pair[2] = pair[0];
  pair[3] = width >= 3 ? pair[-1] : 128;
}

}  // namespace

void fill_padded_copy(const ZEP_IMAGE &source, ZEP_IMAGE &padded) {
  if (source.width == 0 || source.height == 0) {
    std::memset(padded.data, 0, padded.strip_bytes);  // nothing to repeat
    return;
  }
  const bool yuv = source.type == ZEP_YUV422;
  const uint32_t pixel_bytes = yuv ? 4 : core::pixel_bytes(source.type);  // a YUV unit is a pair
  const uint32_t units = yuv ? (source.width + 1) / 2 : source.width;
  const uint32_t padded_units = yuv ? padded.width / 2 : padded.width;
  for (uint32_t y = 0; y < padded.height; ++y) {
    uint8_t *line = padded.data + std::size_t{y} * padded.bytes_per_line;
    if (y >= source.height) {
      std::memcpy(line, line - padded.bytes_per_line, padded.bytes_per_line);
      continue;
    }
    const uint8_t *from = source.data + std::size_t{y} * source.bytes_per_line;
    std::memcpy(line, from, yuv ? 2 * source.width : std::size_t{units} * pixel_bytes);
    if (yuv && (source.width & 1)) complete_half_pair(line, source.width);
    const uint8_t *last = line + std::size_t{units - 1} * pixel_bytes;
    for (uint32_t x = units; x < padded_units; ++x)
      std::memcpy(line + std::size_t{x} * pixel_bytes, last, pixel_bytes);
  }
}

}  // namespace vrc::jpeg
