// The YUV 4:2:2 members: grey, Y16, the eight colour outputs by direct arithmetic and through the
// conversion tables, paletted through its table, and HSI. Each takes only YUV 4:2:2 sources of
// even width and converts width / 2 pixel pairs per line.
#include "imaging/convert/conversion_luts.h"
#include "imaging/convert/strip_driver.h"
#include "imaging/convert/yuv422_rows.h"

#include "imaging/core/report.h"

namespace vrc::convert {
namespace {

constexpr uint16_t kYuv422Only[] = {ZEP_YUV422};

uint32_t yuv422_source(const char *member_name, const ZEP_IMAGE &src) {
  if (src.type != ZEP_YUV422)
    return core::report(member_name, ZEP_ERR_UNSUPPORTED, "Not 16 bit YUV 4:2:2");
  if (src.width & 1)
    return core::report(member_name, ZEP_ERR_UNSUPPORTED, "YUV422 image must be an even width");
  return ZEP_OK;
}

// Runs `row(yuv_row, out_row, pairs)` over the strip after allocating the destination. Lines
// follow one another with no padding in source or destination (none arises at even widths with
// the usual alignment of 2).
template <typename Row>
uint32_t walk_pairs(const StripJob &job, uint32_t out_pixel_bytes, Row row) {
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const uint32_t pairs = width / 2;
  const RowLayout packed{2 * width, 2 * width, out_pixel_bytes * width, out_pixel_bytes * width};
  for_each_row(job, packed, [&](const uint8_t *s, uint8_t *d, uint32_t) { row(s, d, pairs); });
  return ZEP_OK;
}

// Table `id`, or an empty span after reporting that it is missing.
std::span<const uint8_t> needed_lut(const StripJob &job, uint16_t id) {
  const std::span<const uint8_t> table = lut(id);
  if (table.empty()) core::report(job.worker_name, ZEP_ERR_STATE, "Conversion LUT does not exist");
  return table;
}

template <RgbLayout Layout>
uint32_t colour_worker(const StripJob &job) {
  const Yuv422RowKernel kernel = yuv422_kernels(active_simd_level()).to[static_cast<int>(Layout)];
  return walk_pairs(job, layout_bytes(Layout), kernel);
}

template <RgbLayout Layout>
uint32_t colour_lut_worker(const StripJob &job) {
  const std::span<const uint8_t> table = needed_lut(
      job, Layout == RgbLayout::rgb15 ? ZEP_LUT_YUV422_TO_RGB15 : ZEP_LUT_YUV422_TO_RGB16);
  if (table.empty()) return ZEP_ERR_STATE;
  const Yuv422LutKernel kernel = yuv422_lut_kernel(Layout, active_simd_level());
  return walk_pairs(job, layout_bytes(Layout), [&](const uint8_t *s, uint8_t *d, uint32_t pairs) {
    kernel(s, d, pairs, table.data());
  });
}

uint32_t y8_worker(const StripJob &job) {
  return walk_pairs(job, 1, [](const uint8_t *s, uint8_t *d, uint32_t pairs) {
    for (uint32_t x = 0; x < 2 * pairs; ++x) d[x] = s[2 * x];
  });
}

uint32_t y16_worker(const StripJob &job) {
  const uint32_t data_width = job.dst.data_width;
  return walk_pairs(job, 2, [data_width](const uint8_t *s, uint8_t *d, uint32_t pairs) {
    for (uint32_t x = 0; x < 2 * pairs; ++x) {
      const uint32_t sample =
          data_width >= 8 ? s[2 * x] << (data_width - 8) : s[2 * x] >> (8 - data_width);
      d[2 * x] = static_cast<uint8_t>(sample);
      d[2 * x + 1] = static_cast<uint8_t>(sample >> 8);
    }
  });
}

uint32_t paletted_lut_worker(const StripJob &job) {
  const std::span<const uint8_t> table = needed_lut(job, ZEP_LUT_YUV422_TO_PALETTED);
  if (table.empty()) return ZEP_ERR_STATE;
  return walk_pairs(job, 1, [&](const uint8_t *s, uint8_t *d, uint32_t pairs) {
    for (uint32_t i = 0; i < pairs; ++i, s += 4, d += 2) {
      const uint32_t chroma = ((s[1] >> 3) << 5) | (s[3] >> 3);
      d[0] = table[((s[0] >> 3) << 10) | chroma];
      d[1] = table[((s[2] >> 3) << 10) | chroma];
    }
  });
}

uint32_t hsi_worker(const StripJob &job) { return walk_pairs(job, 4, yuv422_to_hsi_row); }

}  // namespace
}  // namespace vrc::convert

// Each member: its state, its table entry, and its C entry point.
#define VRC_YUV422_MEMBER(NAME, TYPE, WORKER)                                       \
  extern "C" uint32_t NAME(uint32_t src, uint32_t dst, uint16_t mode) {             \
    using namespace vrc::convert;                                                   \
    static StripState state;                                                        \
    static const Member member{#NAME,  #NAME "_1_strip", TYPE,         kYuv422Only, \
                               WORKER, "Corrupt image",  yuv422_source};            \
    return run_member(member, state, src, dst, mode);                               \
  }

VRC_YUV422_MEMBER(ZEP_YUV422_to_Y8, ZEP_Y8, y8_worker)
VRC_YUV422_MEMBER(ZEP_YUV422_to_Y16, ZEP_Y16, y16_worker)
VRC_YUV422_MEMBER(ZEP_YUV422_to_RGB15, ZEP_RGB15, colour_worker<RgbLayout::rgb15>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_RGB16, ZEP_RGB16, colour_worker<RgbLayout::rgb16>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_RGB24, ZEP_RGB24, colour_worker<RgbLayout::rgb24>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_BGR24, ZEP_BGR24, colour_worker<RgbLayout::bgr24>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_RGBX32, ZEP_RGBX32, colour_worker<RgbLayout::rgbx32>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_BGRX32, ZEP_BGRX32, colour_worker<RgbLayout::bgrx32>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_XBGR32, ZEP_XBGR32, colour_worker<RgbLayout::xbgr32>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_XRGB32, ZEP_XRGB32, colour_worker<RgbLayout::xrgb32>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_RGB15_LUT, ZEP_RGB15, colour_lut_worker<RgbLayout::rgb15>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_RGB16_LUT, ZEP_RGB16, colour_lut_worker<RgbLayout::rgb16>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_RGB24_LUT, ZEP_RGB24, colour_lut_worker<RgbLayout::rgb24>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_BGR24_LUT, ZEP_BGR24, colour_lut_worker<RgbLayout::bgr24>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_RGBX32_LUT, ZEP_RGBX32, colour_lut_worker<RgbLayout::rgbx32>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_BGRX32_LUT, ZEP_BGRX32, colour_lut_worker<RgbLayout::bgrx32>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_XBGR32_LUT, ZEP_XBGR32, colour_lut_worker<RgbLayout::xbgr32>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_XRGB32_LUT, ZEP_XRGB32, colour_lut_worker<RgbLayout::xrgb32>)
VRC_YUV422_MEMBER(ZEP_YUV422_to_paletted_LUT, ZEP_PALETTED, paletted_lut_worker)
VRC_YUV422_MEMBER(ZEP_YUV422_to_HSI, ZEP_HSI, hsi_worker)
