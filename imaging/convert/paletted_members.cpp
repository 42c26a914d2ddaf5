// Conversions into and out of paletted images: grey and RGB24 to paletted through the colour-map
// histogram (falling back to the closest map entry), RGB16, Y8 and Y16 to paletted through the
// conversion tables, and paletted back to RGB24 (or to Y8 when the map is grey).
#include "imaging/convert/colour_map.h"
#include "imaging/convert/conversion_luts.h"
#include "imaging/convert/strip_driver.h"

#include "imaging/core/report.h"

#include <algorithm>

namespace vrc::convert {
namespace {

constexpr uint16_t kHistogramSources[] = {ZEP_Y8, ZEP_RGB24};
constexpr uint16_t kLutSources[] = {ZEP_RGB16, ZEP_Y8, ZEP_Y16};
constexpr uint16_t kPalettedOnly[] = {ZEP_PALETTED};

// Quantised key of a colour under the source's histogram depths, or ZEP_CMAP_NO_INDEX when the
// record cannot give one (no record, or the depths the source uses do not fit the histogram:
// grey sources use only the grey depth, RGB24 sources only the three colour depths).
class KeyMaker {
 public:
  KeyMaker(const ZEP_CMAP_INFO *info, bool grey) : m_info(info) {
    if (info == nullptr) return;
    const uint32_t bits = info->red_bits + info->green_bits + info->blue_bits;
    m_usable =
        grey ? info->grey_bits <= 8
             : info->red_bits <= 8 && info->green_bits <= 8 && info->blue_bits <= 8 && bits <= 12;
  }
  uint32_t grey(uint8_t value) const {
    return m_usable ? value >> (8 - m_info->grey_bits) : ZEP_CMAP_NO_INDEX;
  }
  uint32_t rgb(uint8_t r, uint8_t g, uint8_t b) const {
    if (!m_usable) return ZEP_CMAP_NO_INDEX;
    const ZEP_CMAP_INFO &i = *m_info;
    return ((r >> (8 - i.red_bits)) << (i.green_bits + i.blue_bits)) +
           ((g >> (8 - i.green_bits)) << i.blue_bits) + (b >> (8 - i.blue_bits));
  }
  // The map index the histogram gives `key`, or ZEP_CMAP_NO_INDEX.
  uint32_t index_of(uint32_t key) const {
    if (key >= ZEP_CMAP_HISTOGRAM_ENTRIES) return ZEP_CMAP_NO_INDEX;
    return m_info->histogram[key][2];
  }

 private:
  const ZEP_CMAP_INFO *m_info;
  bool m_usable = false;
};

uint32_t paletted_worker(const StripJob &job) {
  if (job.dst.cmap == nullptr)
    return core::report(job.worker_name, ZEP_ERR_STATE, "Colourmap is NULL");
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const uint32_t odd = width & 1;
  const bool grey = job.src.type == ZEP_Y8;
  const uint32_t row_bytes = grey ? width : 3 * width;
  const KeyMaker keys(static_cast<const ZEP_CMAP_INFO *>(job.src.cmap_info), grey);
  const uint32_t colours = searched_entries(job.dst);
  const auto pick = [&](uint32_t key, uint8_t r, uint8_t g, uint8_t b) {
    const uint32_t index = keys.index_of(key);
    return index != ZEP_CMAP_NO_INDEX ? static_cast<uint8_t>(index)
                                      : closest_index(job.dst.cmap, colours, r, g, b);
  };
  for_each_row(job, {row_bytes + odd, row_bytes, width + odd, width},
               [&](const uint8_t *s, uint8_t *d, uint32_t) {
                 for (uint32_t x = 0; x < width; ++x) {
                   if (grey) {
                     d[x] = pick(keys.grey(s[x]), s[x], s[x], s[x]);
                   } else {
                     const uint8_t *p = s + 3 * x;
                     d[x] = pick(keys.rgb(p[0], p[1], p[2]), p[0], p[1], p[2]);
                   }
                 }
               });
  return ZEP_OK;
}

uint32_t paletted_lut_worker(const StripJob &job) {
  const uint16_t type = job.src.type;
  const uint16_t id = type == ZEP_RGB16 ? ZEP_LUT_RGB16_TO_PALETTED
                      : type == ZEP_Y8  ? ZEP_LUT_Y8_TO_PALETTED
                                        : ZEP_LUT_Y16_TO_PALETTED;
  const std::span<const uint8_t> table = lut(id);
  if (table.empty())
    return core::report(job.worker_name, ZEP_ERR_STATE, "Conversion LUT does not exist");
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const uint32_t last = static_cast<uint32_t>(table.size() - 1);
  const bool bytes = type == ZEP_Y8;
  for_each_row(job, padded_layout(job, bytes ? 1 : 2, 1),
               [&](const uint8_t *s, uint8_t *d, uint32_t) {
                 for (uint32_t x = 0; x < width; ++x) {
                   const uint32_t value = bytes ? s[x] : s[2 * x] | (s[2 * x + 1] << 8);
                   d[x] = table[std::min(value, last)];
                 }
               });
  return ZEP_OK;
}

uint32_t paletted_source(const char *member_name, const ZEP_IMAGE &src) {
  if (src.type != ZEP_PALETTED)
    return core::report(member_name, ZEP_ERR_UNSUPPORTED, "Input image should be paletted");
  return paletted_needs_map(member_name, src);
}

uint16_t grey_or_colour(uint32_t src_handle) {
  return ZEP_cmap_is_grayscale(src_handle) == 1 ? ZEP_Y8 : ZEP_RGB24;
}

uint32_t paletted_to_direct_worker(const StripJob &job) {
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const bool grey = job.dst.type == ZEP_Y8;
  for_each_row(job, padded_layout(job, 1, grey ? 1 : 3),
               [&](const uint8_t *s, uint8_t *d, uint32_t) {
                 for (uint32_t x = 0; x < width; ++x) {
                   const uint8_t *entry = job.src.cmap + 4 * s[x];
                   if (grey) {
                     d[x] = entry[0];
                   } else {
                     std::copy(entry, entry + 3, d + 3 * x);
                   }
                 }
               });
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::convert

extern "C" {

uint32_t ZEP_convert_to_paletted(uint32_t src, uint32_t dst, uint16_t mode) {
  using namespace vrc::convert;
  static StripState state;
  static const Member member{"ZEP_convert_to_paletted", "ZEP_convert_to_paletted_1_strip",
                             ZEP_PALETTED, kHistogramSources, paletted_worker};
  return run_member(member, state, src, dst, mode);
}

uint32_t ZEP_convert_to_paletted_LUT(uint32_t src, uint32_t dst, uint16_t mode) {
  using namespace vrc::convert;
  static StripState state;
  static const Member member{"ZEP_convert_to_paletted_LUT", "ZEP_convert_to_paletted_LUT_1_strip",
                             ZEP_PALETTED, kLutSources, paletted_lut_worker};
  return run_member(member, state, src, dst, mode);
}

uint32_t ZEP_paletted_to_RGB24_or_Y8(uint32_t src, uint32_t dst, uint16_t mode) {
  using namespace vrc::convert;
  static StripState state;
  static const Member member{"ZEP_paletted_to_RGB24_or_Y8",
                             "ZEP_paletted_to_RGB24_or_Y8_1_strip",
                             ZEP_RGB24,
                             kPalettedOnly,
                             paletted_to_direct_worker,
                             "Corrupt image",
                             paletted_source,
                             nullptr,
                             grey_or_colour};
  return run_member(member, state, src, dst, mode);
}

}  // extern "C"
