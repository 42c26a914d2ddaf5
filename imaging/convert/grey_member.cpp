// ZEP_convert_to_Y8: grey from every colour format with the weights (77 R + 150 G + 29 B) >> 8.
// QUIRK: the 16-bit formats give whole-byte slices of the word as components (neighbouring bits
// leak in), and at odd widths each row steps over a fixed padding: one byte for
// 24/32-bit sources, two for YUV 4:2:2, none for Y16, and one in the Y8 destination.
#include "imaging/convert/rgb_rows.h"
#include "imaging/convert/strip_driver.h"
#include "imaging/convert/yuv422_rows.h"

#include "imaging/core/report.h"

namespace vrc::convert {
namespace {

constexpr uint16_t kY8Sources[] = {ZEP_RGB15,  ZEP_RGB16,  ZEP_RGB24,  ZEP_BGR24, ZEP_RGBX32,
                                   ZEP_BGRX32, ZEP_XBGR32, ZEP_YUV422, ZEP_Y16};

uint32_t y16_data_width(const char *member_name, const ZEP_IMAGE &src) {
  if (src.type == ZEP_Y16 && src.data_width < 8)
    return core::report(member_name, ZEP_ERR_CORRUPT, "Data width must be > 7 for Y16");
  return ZEP_OK;
}

uint16_t word_at(const uint8_t *p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }

// Grey of pixels whose components sit at the byte offsets of their format's row.
void channels_to_grey(const uint8_t *src, uint8_t *grey, uint32_t width,
                      const core::PixelFormat &format) {
  const core::Channels at = format.channels;
  for (uint32_t x = 0; x < width; ++x, src += format.pixel_bytes)
    grey[x] = grey_of(src[at.r], src[at.g], src[at.b]);
}

void rgb15_to_grey(const uint8_t *src, uint8_t *grey, uint32_t width) {
  for (uint32_t x = 0; x < width; ++x) {
    const uint32_t v = word_at(src + 2 * x);
    grey[x] = grey_of((v >> 7) & 255, (v >> 2) & 255, (v << 3) & 255);
  }
}

void rgb16_to_grey(const uint8_t *src, uint8_t *grey, uint32_t width) {
  for (uint32_t x = 0; x < width; ++x) {
    const uint32_t v = word_at(src + 2 * x);
    grey[x] = grey_of(v >> 8, (v >> 3) & 255, (v << 3) & 255);
  }
}

void yuv422_to_grey(const uint8_t *src, uint8_t *grey, uint32_t width) {
  for (uint32_t x = 0; x < width; ++x) grey[x] = src[2 * x];
}

// Source bytes stepped over at the end of a row of odd width. QUIRK: one for the 24/32-bit
// formats, two for YUV 4:2:2, none for the 16-bit formats.
uint32_t odd_width_skip(const core::PixelFormat &format) {
  if (format.layout == core::PixelLayout::Yuv422) return 2;
  return format.layout == core::PixelLayout::Channels ? 1 : 0;
}

// The row kernel of a source; null for Y16 and for component formats other than RGB24, whose
// rows y8_worker converts itself.
GreyRowKernel grey_kernel(const core::PixelFormat &format) {
  if (format.code == ZEP_RGB24) return rgb24_to_y8_kernel(active_simd_level());
  switch (format.layout) {
    case core::PixelLayout::Rgb555: return rgb15_to_grey;
    case core::PixelLayout::Rgb565: return rgb16_to_grey;
    case core::PixelLayout::Yuv422: return yuv422_to_grey;
    default: return nullptr;
  }
}

uint32_t y8_worker(const StripJob &job) {
  const core::PixelFormat &format = *core::pixel_format(job.src.type);  // one of kY8Sources
  if (uint32_t status = prepare_strip(job); ZEP_IS_ERROR(status)) return status;
  const uint32_t width = job.src.width;
  const uint32_t odd = width & 1;
  const uint32_t src_row_bytes = width * format.pixel_bytes;
  const RowLayout layout{src_row_bytes + odd * odd_width_skip(format), src_row_bytes, width + odd,
                         width};
  if (format.layout == core::PixelLayout::Grey16) {
    const uint32_t shift = job.src.data_width - 8;
    for_each_row(job, layout, [&](const uint8_t *s, uint8_t *d, uint32_t) {
      for (uint32_t x = 0; x < width; ++x) d[x] = static_cast<uint8_t>(word_at(s + 2 * x) >> shift);
    });
    return ZEP_OK;
  }
  if (const GreyRowKernel kernel = grey_kernel(format)) {
    for_each_row(job, layout, [&](const uint8_t *s, uint8_t *d, uint32_t) { kernel(s, d, width); });
  } else {
    for_each_row(job, layout, [&](const uint8_t *s, uint8_t *d, uint32_t) {
      channels_to_grey(s, d, width, format);
    });
  }
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::convert

extern "C" uint32_t ZEP_convert_to_Y8(uint32_t src, uint32_t dst, uint16_t mode) {
  using namespace vrc::convert;
  static StripState state;
  static const Member member{"ZEP_convert_to_Y8",
                             "ZEP_convert_to_Y8_1_strip",
                             ZEP_Y8,
                             kY8Sources,
                             y8_worker,
                             "Corrupt images",
                             nullptr,
                             y16_data_width};
  return run_member(member, state, src, dst, mode);
}
