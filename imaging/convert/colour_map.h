// Colour-map helpers shared by the paletted conversions and the conversion tables.
#pragma once

#include "vrcw32/zep_convert.h"

#include <cstdint>

namespace vrc::convert {

// Index of the entry of `cmap` (its first `colours` entries, at most 256) nearest to
// (red, green, blue) by squared distance; the lowest index wins a tie; 0 for an empty map.
uint8_t closest_index(const uint8_t *cmap, uint32_t colours, uint8_t red, uint8_t green,
                      uint8_t blue);

// The map entries that a search covers: `cmap_colours` cut to the map's 256 entries.
inline uint32_t searched_entries(const ZEP_IMAGE &image) {
  return image.cmap_colours < ZEP_CMAP_ENTRIES ? image.cmap_colours : ZEP_CMAP_ENTRIES;
}

// Stores one map entry of `image` after the index test shared by the setters; reports under
// `function_name`.
uint32_t store_entry(const char *function_name, ZEP_IMAGE &image, uint32_t index, uint8_t red,
                     uint8_t green, uint8_t blue);

}  // namespace vrc::convert
