// ZEP_cmap_generate: an optimal-popularity colour map. The image's colours are counted strip by
// strip in a histogram of quantised keys; after the last strip the most frequent keys, largest
// count first, fill the map entries from the first one the generation adds, each with the centre
// of its quantisation cell. Later generations add their colours behind the earlier entries.
#include "imaging/convert/rgb_rows.h"
#include "imaging/convert/strip_driver.h"

#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace vrc::convert {
namespace {

constexpr const char *kName = "ZEP_cmap_generate";
constexpr const char *kStripName = "ZEP_cmap_generate_1_strip";

// One histogram entry: key, count, map index.
struct Entry {
  uint32_t word[3];
  uint32_t &operator[](int i) { return word[i]; }
  uint32_t operator[](int i) const { return word[i]; }
};
static_assert(sizeof(Entry) == sizeof(uint32_t[3]));

uint32_t start_generation(ZEP_IMAGE &image, uint16_t colours) {
  if (image.cmap_info == nullptr) {
    image.cmap_info = ZEP_cmap_create_info();
    if (image.cmap_info == nullptr)
      return core::report(kName, ZEP_ERR_MEMORY, "Cannot create cmap info structure");
  }
  auto &info = *static_cast<ZEP_CMAP_INFO *>(image.cmap_info);
  info.colours_to_add = colours - image.cmap_colours;
  image.cmap_colours = colours;
  const uint32_t bits =
      image.type == ZEP_RGB24 ? info.red_bits + info.green_bits + info.blue_bits : info.grey_bits;
  if (bits > 12) return core::report(kName, ZEP_ERR_INTERNAL, "Array size overflow");
  info.histogram_size = 1u << bits;
  for (uint32_t k = 0; k < info.histogram_size; ++k) {
    info.histogram[k][0] = k;
    info.histogram[k][1] = 0;
    info.histogram[k][2] = ZEP_CMAP_NO_INDEX;
  }
  return ZEP_OK;
}

// Counts the keys of the strip's pixels.
uint32_t count_strip(const ZEP_IMAGE &image) {
  auto &info = *static_cast<ZEP_CMAP_INFO *>(image.cmap_info);
  if (info.red_bits > 8 || info.green_bits > 8 || info.blue_bits > 8 || info.grey_bits > 8)
    return core::report(kStripName, ZEP_ERR_INTERNAL, "More than 8 bits in one colour");
  if (image.data == nullptr) return core::report(kStripName, ZEP_ERR_CORRUPT, "Image has no data");
  const uint32_t width = image.width;
  const uint32_t pixel = pixel_bytes(image.type);
  const uint64_t row_bytes = uint64_t{width} * pixel;
  const uint64_t stride = row_bytes + (image.type == ZEP_Y16 ? 0 : (width & 1));
  const uint64_t extent = uint64_t{image.bytes_per_line} * image.lines_this_strip;
  const auto count = [&](uint32_t key) {
    if (key < info.histogram_size && key < ZEP_CMAP_HISTOGRAM_ENTRIES) ++info.histogram[key][1];
  };
  const auto grey_key = [&](uint8_t value) { return uint32_t{value} >> (8 - info.grey_bits); };
  for (uint32_t line = 0; line < image.lines_this_strip; ++line) {
    const uint64_t at = stride * line;
    const uint32_t pixels = at + row_bytes <= extent
                                ? width
                                : static_cast<uint32_t>(at < extent ? (extent - at) / pixel : 0);
    const uint8_t *row = image.data + at;
    for (uint32_t x = 0; x < pixels; ++x) {
      if (image.type == ZEP_Y8) {
        count(grey_key(row[x]));
      } else if (image.type == ZEP_Y16) {
        count(grey_key(y16_to_grey(static_cast<uint16_t>(row[2 * x] | (row[2 * x + 1] << 8)),
                                   image.data_width)));
      } else {
        const uint8_t *p = row + 3 * x;
        count(((uint32_t{p[0]} >> (8 - info.red_bits)) << (info.green_bits + info.blue_bits)) +
              ((uint32_t{p[1]} >> (8 - info.green_bits)) << info.blue_bits) +
              (uint32_t{p[2]} >> (8 - info.blue_bits)));
      }
    }
  }
  return ZEP_OK;
}

// Centre of the quantisation cell of `key` in the top `bits` of a byte.
uint8_t cell_centre(uint32_t key, uint32_t bits) {
  return static_cast<uint8_t>(((key & ((1u << bits) - 1)) << (8 - bits)) + (128 >> bits));
}

uint32_t histogram_to_cmap(uint32_t handle, ZEP_IMAGE &image) {
  auto &info = *static_cast<ZEP_CMAP_INFO *>(image.cmap_info);
  if (info.red_bits > 8 || info.green_bits > 8 || info.blue_bits > 8 || info.grey_bits > 8)
    return core::report("histogram_to_cmap", ZEP_ERR_INTERNAL | 1,
                        "more than 8 bits in one colour");
  const uint32_t first = image.cmap_colours - info.colours_to_add;
  const uint32_t end = std::min<uint32_t>(image.cmap_colours, ZEP_CMAP_ENTRIES);
  const uint32_t size = std::min<uint32_t>(info.histogram_size, ZEP_CMAP_HISTOGRAM_ENTRIES);
  std::vector<Entry> sorted(size);
  std::memcpy(sorted.data(), info.histogram, size * sizeof(Entry));
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Entry &a, const Entry &b) { return a[1] > b[1]; });
  uint64_t covered = 0;
  for (uint32_t e = first; e < end && e - first < size; ++e) {
    Entry &entry = sorted[e - first];
    const uint32_t key = entry[0];
    uint8_t *colour = image.cmap + 4 * e;
    if (image.type == ZEP_RGB24) {
      colour[0] = cell_centre(key >> (info.blue_bits + info.green_bits), info.red_bits);
      colour[1] = cell_centre(key >> info.blue_bits, info.green_bits);
      colour[2] = cell_centre(key, info.blue_bits);
    } else {
      colour[0] = colour[1] = colour[2] = cell_centre(key, info.grey_bits);
    }
    entry[2] = e;
    covered += entry[1];
  }
  uint32_t found = 0;
  while (found < size && sorted[found][1] != 0) ++found;
  info.colours_found = found;
  const uint64_t pixels = uint64_t{image.width} * image.height;
  info.coverage = pixels == 0 ? 0 : static_cast<uint32_t>(covered * 100 / pixels);
  // Back in key order, so that entry k belongs to key k again.
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Entry &a, const Entry &b) { return a[0] < b[0]; });
  std::memcpy(info.histogram, sorted.data(), size * sizeof(Entry));
  for (uint32_t e = first + found; e < end; ++e) {
    if (uint32_t status = ZEP_cmap_set_RGB_colour(handle, static_cast<uint16_t>(e), 0, 0, 0);
        ZEP_IS_ERROR(status))
      return status;
  }
  return ZEP_OK;
}

StripState g_state;

uint32_t generate(uint32_t handle, uint16_t colours, uint16_t mode) {
  if (uint32_t status = ZEP_image_check(handle); ZEP_IS_ERROR(status))
    return core::report(kName, status, "Corrupt image");
  ZEP_IMAGE &image = *core::image_record(handle);
  if (image.type != ZEP_RGB24 && image.type != ZEP_Y16 && image.type != ZEP_Y8)
    return core::report(kName, ZEP_ERR_UNSUPPORTED, "Unsupported image format");
  if (image.lines_this_strip == 0) return ZEP_OK;
  if (image.cmap == nullptr) return core::report(kName, ZEP_ERR_STATE, "Colourmap is NULL");
  if (!g_state.busy) {
    g_state.lines_done = 0;
    if (uint32_t status = start_generation(image, colours); ZEP_IS_ERROR(status)) return status;
    g_state.busy = true;
  }
  if (mode == ZEP_MODE_RESET) {
    g_state.busy = false;
    return ZEP_OK;
  }
  if (mode != ZEP_MODE_NEXT_STRIP) return ZEP_OK;
  // A generation left busy by another image continues here; this image may have no histogram.
  if (image.cmap_info == nullptr)
    return core::report(kName, ZEP_ERR_STATE, "Colourmap information does not exist");
  const bool last = g_state.lines_done + image.lines_this_strip >= image.height;
  if (last)
    image.lines_this_strip =
        image.height > g_state.lines_done ? image.height - g_state.lines_done : 0;
  if (uint32_t status = count_strip(image); ZEP_IS_ERROR(status)) return status;
  if (!last) {
    g_state.lines_done += image.lines_this_strip;
    return ZEP_OK;
  }
  if (uint32_t status = histogram_to_cmap(handle, image); ZEP_IS_ERROR(status)) return status;
  g_state.busy = false;
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::convert

extern "C" uint32_t ZEP_cmap_generate(uint32_t handle, uint16_t colours, uint16_t mode) {
  return vrc::core::api_guard(vrc::convert::kName,
                              [&] { return vrc::convert::generate(handle, colours, mode); });
}
