// Colour-map access: reading and writing entries, the named colours and preset maps, the grey
// and colour tests, the colour-map information record and the closest-colour search.
#include "imaging/convert/colour_map.h"

#include "imaging/core/handle_table.h"
#include "imaging/core/pixel_formats.h"
#include "imaging/core/report.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace vrc::convert {
namespace {

struct Rgb {
  uint8_t r, g, b;
};

// The 16 named colours, in code order.
constexpr Rgb kNamedColours[16] = {{0, 0, 0},    {0, 0, 152},   {0, 152, 0},   {0, 152, 152},
                                   {152, 0, 0},  {152, 0, 152}, {152, 152, 0}, {152, 152, 152},
                                   {76, 76, 76}, {0, 0, 255},   {0, 255, 0},   {0, 255, 255},
                                   {255, 0, 0},  {255, 0, 255}, {255, 255, 0}, {255, 255, 255}};

// Squares of the differences -255..255, indexed by difference + 255.
constexpr std::array<uint32_t, 511> kSquares = [] {
  std::array<uint32_t, 511> squares{};
  for (int d = -255; d <= 255; ++d) squares[d + 255] = static_cast<uint32_t>(d * d);
  return squares;
}();

constexpr uint32_t kNoDistanceYet = 31234567;

void put_entry(uint8_t *cmap, uint32_t index, Rgb colour) {
  cmap[4 * index] = colour.r;
  cmap[4 * index + 1] = colour.g;
  cmap[4 * index + 2] = colour.b;
}

// The record of `handle` with a colour map, or null after reporting under `name`.
ZEP_IMAGE *image_with_map(const char *name, uint32_t handle, uint32_t &status) {
  ZEP_IMAGE *image = core::image_record(handle);
  if (image == nullptr) {
    status = core::report(name, ZEP_ERR_HANDLE);
    return nullptr;
  }
  if (image->cmap == nullptr) {
    status = core::report(name, ZEP_ERR_STATE, "Colourmap is NULL");
    return nullptr;
  }
  return image;
}

}  // namespace

uint8_t closest_index(const uint8_t *cmap, uint32_t colours, uint8_t red, uint8_t green,
                      uint8_t blue) {
  uint32_t best = kNoDistanceYet;
  uint8_t best_index = 0;
  for (uint32_t e = 0; e < colours && e < ZEP_CMAP_ENTRIES; ++e) {
    const uint8_t *entry = cmap + 4 * e;
    const uint32_t distance = kSquares[red - entry[0] + 255] + kSquares[green - entry[1] + 255] +
                              kSquares[blue - entry[2] + 255];
    if (distance < best) {
      best = distance;
      best_index = static_cast<uint8_t>(e);
    }
  }
  return best_index;
}

uint32_t store_entry(const char *function_name, ZEP_IMAGE &image, uint32_t index, uint8_t red,
                     uint8_t green, uint8_t blue) {
  // One past the used entries is allowed; the map itself ends at 256 entries.
  if (index > image.cmap_colours || index >= ZEP_CMAP_ENTRIES)
    return core::report(function_name, ZEP_ERR_BAD_PARAM,
                        "Illegal colourmap index (> max number of colours)");
  put_entry(image.cmap, index, {red, green, blue});
  return ZEP_OK;
}

}  // namespace vrc::convert

using namespace vrc;
using namespace vrc::convert;

extern "C" {

uint32_t ZEP_cmap_get_RGB_colour(uint32_t handle, uint16_t index) {
  return core::api_guard("ZEP_cmap_get_RGB_colour", [&]() -> uint32_t {
    uint32_t status = ZEP_OK;
    const ZEP_IMAGE *image = image_with_map("ZEP_cmap_get_RGB_colour", handle, status);
    if (image == nullptr) return status;
    if (index > image->cmap_colours || index >= ZEP_CMAP_ENTRIES)
      return core::report("ZEP_cmap_get_RGB_colour", ZEP_ERR_BAD_PARAM,
                          "Illegal colourmap index (> max number of colours)");
    const uint8_t *entry = image->cmap + 4 * index;
    return (uint32_t{entry[0]} << 16) | (uint32_t{entry[1]} << 8) | entry[2];
  });
}

uint32_t ZEP_cmap_set_RGB_colour(uint32_t handle, uint16_t index, uint8_t red, uint8_t green,
                                 uint8_t blue) {
  return core::api_guard("ZEP_cmap_set_RGB_colour", [&]() -> uint32_t {
    uint32_t status = ZEP_OK;
    ZEP_IMAGE *image = image_with_map("ZEP_cmap_set_RGB_colour", handle, status);
    if (image == nullptr) return status;
    return store_entry("ZEP_cmap_set_RGB_colour", *image, index, red, green, blue);
  });
}

uint32_t ZEP_cmap_set_colour(uint32_t handle, uint16_t index, uint16_t colour) {
  return core::api_guard("ZEP_cmap_set_colour", [&]() -> uint32_t {
    uint32_t status = ZEP_OK;
    ZEP_IMAGE *image = image_with_map("ZEP_cmap_set_colour", handle, status);
    if (image == nullptr) return status;
    if (colour >= 16)
      return core::report("ZEP_cmap_set_colour", ZEP_ERR_UNSUPPORTED, "Unrecognised colour");
    const Rgb named = kNamedColours[colour];
    return store_entry("ZEP_cmap_set_colour", *image, index, named.r, named.g, named.b);
  });
}

uint32_t ZEP_cmap_set_type(uint32_t handle, uint16_t type, uint32_t) {
  return core::api_guard("ZEP_cmap_set_type", [&]() -> uint32_t {
    uint32_t status = ZEP_OK;
    ZEP_IMAGE *image = image_with_map("ZEP_cmap_set_type", handle, status);
    if (image == nullptr) return status;
    switch (type) {
      case ZEP_CMAP_BLACK:
        for (uint32_t i = 0; i < ZEP_CMAP_ENTRIES; ++i) put_entry(image->cmap, i, {0, 0, 0});
        return ZEP_OK;
      case ZEP_CMAP_NAMED:
        for (uint32_t i = 0; i < 16; ++i) put_entry(image->cmap, i, kNamedColours[i]);
        image->cmap_colours = 16;
        return ZEP_OK;
      case ZEP_CMAP_GREY:
        image->cmap_colours = ZEP_CMAP_ENTRIES;
        for (uint32_t i = 0; i < ZEP_CMAP_ENTRIES; ++i) {
          const auto grey = static_cast<uint8_t>(i);
          put_entry(image->cmap, i, {grey, grey, grey});
        }
        return ZEP_OK;
      case ZEP_CMAP_CUBE_332:
        image->cmap_colours = ZEP_CMAP_ENTRIES;
        for (uint32_t r = 0; r < 8; ++r)
          for (uint32_t g = 0; g < 8; ++g)
            for (uint32_t b = 0; b < 4; ++b)
              put_entry(image->cmap, (r << 5) | (g << 2) | b,
                        {static_cast<uint8_t>(r * 32 + 31), static_cast<uint8_t>(g * 32 + 31),
                         static_cast<uint8_t>(b * 64 + 31)});
        return ZEP_OK;
      default:
        return core::report("ZEP_cmap_set_type", ZEP_ERR_BAD_PARAM, "Unrecognized colourmap type");
    }
  });
}

uint32_t ZEP_cmap_is_grayscale(uint32_t handle) {
  return core::api_guard("ZEP_cmap_is_grayscale", [&]() -> uint32_t {
    uint32_t status = ZEP_OK;
    const ZEP_IMAGE *image = image_with_map("ZEP_cmap_is_grayscale", handle, status);
    if (image == nullptr) return status;
    for (uint32_t i = 0; i < searched_entries(*image); ++i) {
      const uint8_t *entry = image->cmap + 4 * i;
      if (entry[0] != entry[1] || entry[1] != entry[2]) return 0;
    }
    return 1;
  });
}

uint32_t ZEP_image_is_colour(uint32_t handle) {
  return core::api_guard("ZEP_image_is_colour", [&]() -> uint32_t {
    const ZEP_IMAGE *image = core::image_record(handle);
    if (image == nullptr) return core::report("ZEP_image_is_colour", ZEP_ERR_HANDLE);
    const core::PixelFormat *format = core::pixel_format(image->type);
    const core::Colour colour = format != nullptr ? format->colour : core::Colour::No;
    if (colour == core::Colour::ByColourMap) {
      const uint32_t grey = ZEP_cmap_is_grayscale(handle);
      return ZEP_IS_ERROR(grey) ? grey : 1 - grey;
    }
    return colour == core::Colour::Yes ? 1 : 0;
  });
}

ZEP_CMAP_INFO *ZEP_cmap_create_info(void) {
  auto *info = static_cast<ZEP_CMAP_INFO *>(std::malloc(sizeof(ZEP_CMAP_INFO)));
  if (info == nullptr) return nullptr;
  for (auto &entry : info->histogram)
    for (uint32_t &word : entry) word = 0xAA;
  info->histogram_size = 0;
  info->red_bits = 4;
  info->green_bits = 4;
  info->blue_bits = 4;
  info->grey_bits = 8;
  info->colours_to_add = ZEP_CMAP_ENTRIES;
  info->colours_found = 0;
  info->coverage = 0;
  info->reserved[0] = info->reserved[1] = 0;
  return info;
}

uint32_t ZEP_cmap_destroy_info(uint32_t handle) {
  ZEP_IMAGE *image = core::image_record(handle);
  if (image == nullptr) return core::report("ZEP_cmap_destroy_info", ZEP_ERR_HANDLE);
  std::free(image->cmap_info);
  image->cmap_info = nullptr;
  return ZEP_OK;
}

uint32_t ZEP_cmap_find_closest_colour(uint32_t handle, uint8_t red, uint8_t green, uint8_t blue) {
  return core::api_guard("ZEP_cmap_find_closest_colour", [&]() -> uint32_t {
    uint32_t status = ZEP_OK;
    const ZEP_IMAGE *image = image_with_map("ZEP_cmap_find_closest_colour", handle, status);
    if (image == nullptr) return status;
    return closest_index(image->cmap, image->cmap_colours, red, green, blue);
  });
}

uint32_t ZEP_cmap_get_occurrences(uint32_t handle, uint32_t counts[ZEP_CMAP_ENTRIES]) {
  return core::api_guard("ZEP_cmap_get_occurrences", [&]() -> uint32_t {
    const ZEP_IMAGE *image = core::image_record(handle);
    if (image == nullptr) return core::report("ZEP_cmap_get_occurrences", ZEP_ERR_HANDLE);
    if (counts == nullptr)
      return core::report("ZEP_cmap_get_occurrences", ZEP_ERR_BAD_PARAM, "No array for the counts");
    const auto *info = static_cast<const ZEP_CMAP_INFO *>(image->cmap_info);
    if (info == nullptr)
      return core::report("ZEP_cmap_get_occurrences", ZEP_ERR_STATE,
                          "Colourmap information does not exist");
    std::memset(counts, 0, sizeof(uint32_t) * ZEP_CMAP_ENTRIES);
    const uint32_t used = info->histogram_size < ZEP_CMAP_HISTOGRAM_ENTRIES
                              ? info->histogram_size
                              : ZEP_CMAP_HISTOGRAM_ENTRIES;
    for (uint32_t k = 0; k < used; ++k) {
      const uint32_t index = info->histogram[k][2];
      if (index < ZEP_CMAP_ENTRIES) counts[index] += info->histogram[k][1];
    }
    return ZEP_OK;
  });
}

}  // extern "C"
