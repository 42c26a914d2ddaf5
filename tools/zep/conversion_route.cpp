// The pixel format zep converts to when the output file format cannot hold the input's pixels
// and the user named none: paletted images become Y8 when their colour map is grey and RGB24
// otherwise, Y16 becomes Y8, any other colour format RGB24. The library converts a paletted image
// only through its paletted-to-direct conversion, so a grey-mapped one is turned into Y8 here,
// each index replaced by its grey, and a coloured one asks for that conversion.
#include "tools/zep/zep_tool.h"

namespace zep_tool {
namespace {

bool colour_map_is_grey(uint32_t image) {
  const auto *map = static_cast<const uint8_t *>(ZEP_image_get_ptr(image, ZEP_CMAP_PTR));
  if (map == nullptr) return false;
  for (uint32_t entry = 0; entry < 256; ++entry) {
    const uint8_t *rgb = map + 4 * entry;
    if (rgb[0] != rgb[1] || rgb[1] != rgb[2]) return false;
  }
  return true;
}

}  // namespace

namespace {

bool map_to_grey_in_place(uint32_t image) {
  if (ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE) != ZEP_PALETTED || !colour_map_is_grey(image))
    return false;
  const auto *map = static_cast<const uint8_t *>(ZEP_image_get_ptr(image, ZEP_CMAP_PTR));
  auto *data = static_cast<uint8_t *>(ZEP_image_get_ptr(image, ZEP_DATA_PTR));
  const uint32_t width = ZEP_image_get_parameter(image, ZEP_IMAGE_WIDTH);
  const uint32_t line_bytes = ZEP_image_get_parameter(image, ZEP_BYTES_PER_LINE);
  const uint32_t lines = ZEP_image_get_parameter(image, ZEP_LINES_THIS_STRIP);
  if (data == nullptr || line_bytes < width) return false;
  for (uint64_t line = 0; line < lines; ++line) {
    uint8_t *pixel = data + line * line_bytes;
    for (uint32_t x = 0; x < width; ++x) pixel[x] = map[4 * pixel[x]];
  }
  return !ZEP_IS_ERROR(ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_Y8));
}

}  // namespace

uint16_t conversion_request(uint32_t image, uint16_t type) {
  if (ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE) != ZEP_PALETTED) return type;
  if ((type == ZEP_Y8 || type == ZEP_RGB24) && map_to_grey_in_place(image)) return type;
  return type == ZEP_RGB24 ? ZEP_PALETTED_TO_DIRECT : type;
}

std::optional<uint16_t> route_type(uint16_t format, uint32_t image) {
  const uint32_t type = ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE);
  uint16_t route = ZEP_RGB24;
  if (type == ZEP_Y16 || (type == ZEP_PALETTED && colour_map_is_grey(image))) route = ZEP_Y8;
  if (format_accepts(format, route)) return route;
  if (format_accepts(format, ZEP_Y8)) return ZEP_Y8;
  return std::nullopt;
}

}  // namespace zep_tool
