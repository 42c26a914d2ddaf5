// ZEP_convert_to_YUV422 and the RGB-to-YUV arithmetic it shares with the chroma-key functions.
// Each pixel gets its own Y, U and V; a pair stores both Ys and the average of its Us and Vs, and
// the last pixel of an odd-width line pairs with itself.
#include "imaging/convert/rgb_rows.h"
#include "imaging/convert/strip_driver.h"

#include <algorithm>
#include <vector>

namespace vrc::convert {
namespace {

constexpr uint16_t kYuv422Sources[] = {ZEP_Y8,     ZEP_PALETTED, ZEP_RGB24, ZEP_BGR24,
                                       ZEP_RGBX32, ZEP_BGRX32,   ZEP_XBGR32};

uint32_t to_yuv422_worker(const StripJob &job) {
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const uint32_t pairs = (width + 1) / 2;
  RowLayout layout = padded_layout(job, pixel_bytes(job.src.type), 2);
  layout.dst_row_bytes = 4 * pairs;
  std::vector<uint8_t> rgb(size_t{3} * width);
  const std::span<const uint8_t> cmap = colour_map_of(job.src);
  for_each_row(job, layout, [&](const uint8_t *s, uint8_t *d, uint32_t) {
    read_rgb_row(job.src.type, s, width, cmap, job.src.data_width, rgb.data());
    for (uint32_t i = 0; i < pairs; ++i, d += 4) {
      const uint8_t *p0 = &rgb[6 * i];
      const uint8_t *p1 = 2 * i + 1 < width ? p0 + 3 : p0;
      const uint32_t a = ZEP_CK_get_YUV_values_RGB(p0[0], p0[1], p0[2]);
      const uint32_t b = ZEP_CK_get_YUV_values_RGB(p1[0], p1[1], p1[2]);
      d[0] = static_cast<uint8_t>(a);
      d[1] = static_cast<uint8_t>((((a >> 8) & 255) + ((b >> 8) & 255)) >> 1);
      d[2] = static_cast<uint8_t>(b);
      d[3] = static_cast<uint8_t>(((a >> 16) + (b >> 16)) >> 1);
    }
  });
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::convert

extern "C" {

uint32_t ZEP_CK_get_YUV_values_RGB(uint8_t red, uint8_t green, uint8_t blue) {
  const int r = red, g = green, b = blue;
  const int y = std::min((306 * r + 601 * g + 117 * b) >> 10, 255);
  const int u = std::clamp(((512 * b - 339 * g - 173 * r) >> 10) + 128, 0, 255);
  const int v = std::clamp(((512 * r - 429 * g - 83 * b) >> 10) + 128, 0, 255);
  return (static_cast<uint32_t>(v) << 16) | (static_cast<uint32_t>(u) << 8) |
         static_cast<uint32_t>(y);
}

uint32_t ZEP_convert_to_YUV422(uint32_t src, uint32_t dst, uint16_t mode) {
  using namespace vrc::convert;
  static StripState state;
  static const Member member{"ZEP_convert_to_YUV422",
                             "ZEP_convert_to_YUV422_1_strip",
                             ZEP_YUV422,
                             kYuv422Sources,
                             to_yuv422_worker,
                             "Corrupt image",
                             nullptr,
                             paletted_needs_map};
  return run_member(member, state, src, dst, mode);
}

}  // extern "C"
