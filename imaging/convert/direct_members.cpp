// The members that write direct-colour outputs from direct-colour, grey and paletted sources:
// RGB24, BGR24, the four 32-bit orders, RGB15, RGB16, Y16, CMYK32 and the 3-3-2 RGB8 (plain and
// ordered-dither). Each reads a source row into R, G, B triples and writes them in its format;
// between the two 16-bit formats the bit rules of those formats apply instead.
#include "imaging/convert/rgb_rows.h"
#include "imaging/convert/strip_driver.h"

#include "imaging/core/report.h"

#include <algorithm>
#include <vector>

namespace vrc::convert {
namespace {

constexpr uint16_t kDirectSources[] = {ZEP_Y8,    ZEP_Y16,    ZEP_RGB15,  ZEP_RGB16,  ZEP_RGB24,
                                       ZEP_BGR24, ZEP_RGBX32, ZEP_BGRX32, ZEP_XBGR32, ZEP_XRGB32};
constexpr uint16_t kRgb24Sources[] = {ZEP_RGB15,  ZEP_RGB16,  ZEP_BGR24, ZEP_RGBX32,
                                      ZEP_BGRX32, ZEP_XBGR32, ZEP_Y16,   ZEP_Y8};
constexpr uint16_t kY16Sources[] = {ZEP_Y8,     ZEP_RGB15,  ZEP_RGB16,  ZEP_RGB24, ZEP_BGR24,
                                    ZEP_RGBX32, ZEP_BGRX32, ZEP_XBGR32, ZEP_XRGB32};
constexpr uint16_t kAnyColourSources[] = {ZEP_PALETTED, ZEP_Y8,     ZEP_Y16,   ZEP_RGB15,
                                          ZEP_RGB16,    ZEP_RGB24,  ZEP_BGR24, ZEP_RGBX32,
                                          ZEP_BGRX32,   ZEP_XBGR32, ZEP_XRGB32};

// Runs `write(rgb_row, dst_row, line)` on every row after reading the source row into triples.
template <typename Write>
uint32_t through_rgb(const StripJob &job, const RowLayout &layout, Write write) {
  std::vector<uint8_t> rgb(size_t{3} * job.src.width);
  for_each_row(job, layout, [&](const uint8_t *src_row, uint8_t *dst_row, uint32_t line) {
    read_rgb_row(job.src.type, src_row, job.src.width, colour_map_of(job.src), job.src.data_width,
                 rgb.data());
    write(rgb.data(), dst_row, line);
  });
  return ZEP_OK;
}

uint32_t direct_worker(const StripJob &job) {
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint16_t in = job.src.type;
  const uint16_t out = job.dst.type;
  const uint32_t width = job.src.width;
  RowLayout layout = padded_layout(job, pixel_bytes(in), pixel_bytes(out));
  if (out == ZEP_RGB15 || out == ZEP_RGB16)
    layout.dst_stride = 2 * width + (job.dst.skip_bytes & ~1u);
  if (in == ZEP_RGB15 && out == ZEP_RGB16) {
    for_each_row(job, layout,
                 [&](const uint8_t *s, uint8_t *d, uint32_t) { rgb15_to_rgb16_row(s, width, d); });
    return ZEP_OK;
  }
  if (in == ZEP_RGB16 && out == ZEP_RGB15) {
    for_each_row(job, layout,
                 [&](const uint8_t *s, uint8_t *d, uint32_t) { rgb16_to_rgb15_row(s, width, d); });
    return ZEP_OK;
  }
  return through_rgb(job, layout, [&](const uint8_t *rgb, uint8_t *dst_row, uint32_t) {
    write_rgb_row(out, rgb, width, dst_row);
  });
}

uint32_t y16_worker(const StripJob &job) {
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const uint32_t data_width = job.dst.data_width;
  const auto sample_of = [data_width](uint8_t grey) {
    return static_cast<uint16_t>(data_width >= 8 ? grey << (data_width - 8)
                                                 : grey >> (8 - data_width));
  };
  const auto put = [](uint8_t *p, uint16_t v) {
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
  };
  const RowLayout layout = padded_layout(job, pixel_bytes(job.src.type), 2);
  if (job.src.type == ZEP_Y8) {
    for_each_row(job, layout, [&](const uint8_t *s, uint8_t *d, uint32_t) {
      for (uint32_t x = 0; x < width; ++x) put(d + 2 * x, sample_of(s[x]));
    });
    return ZEP_OK;
  }
  return through_rgb(job, layout, [&](const uint8_t *rgb, uint8_t *d, uint32_t) {
    for (uint32_t x = 0; x < width; ++x)
      put(d + 2 * x, sample_of(grey_of(rgb[3 * x], rgb[3 * x + 1], rgb[3 * x + 2])));
  });
}

uint32_t cmyk_worker(const StripJob &job) {
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const RowLayout layout = padded_layout(job, pixel_bytes(job.src.type), 4);
  if (job.src.type == ZEP_PALETTED) {
    for_each_row(job, layout, [&](const uint8_t *s, uint8_t *d, uint32_t) {
      for (uint32_t x = 0; x < width; ++x) {
        const uint8_t *entry = job.src.cmap + 4 * s[x];
        for (int i = 0; i < 4; ++i) d[4 * x + i] = static_cast<uint8_t>(~entry[i]);
      }
    });
    return ZEP_OK;
  }
  return through_rgb(job, layout, [&](const uint8_t *rgb, uint8_t *d, uint32_t) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint8_t c = static_cast<uint8_t>(255 - rgb[3 * x]);
      const uint8_t m = static_cast<uint8_t>(255 - rgb[3 * x + 1]);
      const uint8_t y = static_cast<uint8_t>(255 - rgb[3 * x + 2]);
      const uint8_t k = std::min({c, m, y});
      d[4 * x] = static_cast<uint8_t>(c - k);
      d[4 * x + 1] = static_cast<uint8_t>(m - k);
      d[4 * x + 2] = static_cast<uint8_t>(y - k);
      d[4 * x + 3] = k;
    }
  });
}

constexpr uint8_t pack_332(uint32_t r, uint32_t g, uint32_t b) {
  return static_cast<uint8_t>((r & 0xE0) | ((g & 0xE0) >> 3) | (b >> 6));
}

// 4 x 4 ordered-dither thresholds 0..15.
constexpr uint8_t kBayer4[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

template <bool Dither>
uint32_t rgb8_worker(const StripJob &job) {
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const RowLayout layout = padded_layout(job, pixel_bytes(job.src.type), 1);
  return through_rgb(job, layout, [&](const uint8_t *rgb, uint8_t *d, uint32_t line) {
    const uint8_t *thresholds = kBayer4[(job.first_line + line) & 3];
    for (uint32_t x = 0; x < width; ++x) {
      uint32_t r = rgb[3 * x], g = rgb[3 * x + 1], b = rgb[3 * x + 2];
      if constexpr (Dither) {
        const uint32_t t = thresholds[x & 3];
        r = std::min(255u, r + (t << 1));
        g = std::min(255u, g + (t << 1));
        b = std::min(255u, b + (t << 2));
      }
      d[x] = pack_332(r, g, b);
    }
  });
}

}  // namespace
}  // namespace vrc::convert

// Each member: its state, its table entry, and its C entry point.
#define VRC_DIRECT_MEMBER(NAME, TYPE, SOURCES, WORKER, CHECK)              \
  extern "C" uint32_t NAME(uint32_t src, uint32_t dst, uint16_t mode) {    \
    using namespace vrc::convert;                                          \
    static StripState state;                                               \
    static const Member member{#NAME,  #NAME "_1_strip", TYPE,    SOURCES, \
                               WORKER, "Corrupt image",  nullptr, CHECK};  \
    return run_member(member, state, src, dst, mode);                      \
  }

VRC_DIRECT_MEMBER(ZEP_convert_to_RGB24, ZEP_RGB24, kRgb24Sources, direct_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_BGR24, ZEP_BGR24, kDirectSources, direct_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_RGBX32, ZEP_RGBX32, kDirectSources, direct_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_BGRX32, ZEP_BGRX32, kDirectSources, direct_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_XBGR32, ZEP_XBGR32, kDirectSources, direct_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_XRGB32, ZEP_XRGB32, kDirectSources, direct_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_RGB15, ZEP_RGB15, kDirectSources, direct_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_RGB16, ZEP_RGB16, kDirectSources, direct_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_Y16, ZEP_Y16, kY16Sources, y16_worker, nullptr)
VRC_DIRECT_MEMBER(ZEP_convert_to_CMYK32, ZEP_CMYK32, kAnyColourSources, cmyk_worker,
                  paletted_needs_map)
VRC_DIRECT_MEMBER(ZEP_convert_to_RGB8, ZEP_RGB8, kAnyColourSources, rgb8_worker<false>,
                  paletted_needs_map)
VRC_DIRECT_MEMBER(ZEP_convert_to_RGB8_dither, ZEP_RGB8, kAnyColourSources, rgb8_worker<true>,
                  paletted_needs_map)
