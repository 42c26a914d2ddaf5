// Scalar reference kernels of the YUV 4:2:2 colour conversions (direct, through the conversion
// tables, and to HSI) and of RGB24 to grey, and the per-level kernel tables.
#include "imaging/convert/yuv422_rows.h"

#include <algorithm>

namespace vrc::convert {
namespace {

template <RgbLayout Layout>
void store_pixel(uint8_t *p, Rgb16 c) {
  const auto r = static_cast<uint8_t>(c.r), g = static_cast<uint8_t>(c.g),
             b = static_cast<uint8_t>(c.b);
  if constexpr (Layout == RgbLayout::rgb24) {
    p[0] = r, p[1] = g, p[2] = b;
  } else if constexpr (Layout == RgbLayout::bgr24) {
    p[0] = b, p[1] = g, p[2] = r;
  } else if constexpr (Layout == RgbLayout::rgbx32) {
    p[0] = r, p[1] = g, p[2] = b, p[3] = 0;
  } else if constexpr (Layout == RgbLayout::bgrx32) {
    p[0] = b, p[1] = g, p[2] = r, p[3] = 0;
  } else if constexpr (Layout == RgbLayout::xbgr32) {
    p[0] = 0, p[1] = b, p[2] = g, p[3] = r;
  } else if constexpr (Layout == RgbLayout::xrgb32) {
    p[0] = 0, p[1] = r, p[2] = g, p[3] = b;
  } else {
    const uint32_t word = Layout == RgbLayout::rgb16
                              ? ((c.r & 0xF8) << 8) | ((c.g & 0xFC) << 3) | (c.b >> 3)
                              : ((c.r & 0xF8) << 7) | ((c.g & 0xF8) << 2) | (c.b >> 3);
    p[0] = static_cast<uint8_t>(word);
    p[1] = static_cast<uint8_t>(word >> 8);
  }
}

template <RgbLayout Layout>
void yuv422_row_scalar(const uint8_t *yuv, uint8_t *out, uint32_t pairs) {
  constexpr uint32_t bytes = layout_bytes(Layout);
  for (uint32_t i = 0; i < pairs; ++i, yuv += 4, out += 2 * bytes) {
    const int u = yuv[1] - 128;
    const int v = yuv[3] - 128;
    store_pixel<Layout>(out, yuv_to_rgb(yuv[0], u, v));
    store_pixel<Layout>(out + bytes, yuv_to_rgb(yuv[2], u, v));
  }
}

constexpr Yuv422Kernels kScalarKernels = {
    {yuv422_row_scalar<RgbLayout::rgb24>, yuv422_row_scalar<RgbLayout::bgr24>,
     yuv422_row_scalar<RgbLayout::rgbx32>, yuv422_row_scalar<RgbLayout::bgrx32>,
     yuv422_row_scalar<RgbLayout::xbgr32>, yuv422_row_scalar<RgbLayout::xrgb32>,
     yuv422_row_scalar<RgbLayout::rgb16>, yuv422_row_scalar<RgbLayout::rgb15>}};

template <RgbLayout Layout>
void yuv422_lut_row(const uint8_t *yuv, uint8_t *out, uint32_t pairs, const uint8_t *table) {
  constexpr uint32_t bytes = layout_bytes(Layout);
  for (uint32_t i = 0; i < pairs; ++i, yuv += 4, out += 2 * bytes) {
    const uint32_t chroma = (static_cast<uint32_t>(yuv[1] & 0xFC) << 4) | (yuv[3] >> 2);
    for (uint32_t k = 0; k < 2; ++k) {
      const uint8_t *entry = table + 2 * ((static_cast<uint32_t>(yuv[2 * k] >> 1) << 12) | chroma);
      uint8_t *p = out + k * bytes;
      if constexpr (bytes == 2) {
        p[0] = entry[0];
        p[1] = entry[1];
      } else {
        const uint32_t v = entry[0] | (entry[1] << 8);
        const uint32_t r = v >> 11, g = (v >> 5) & 63, b = v & 31;
        store_pixel<Layout>(
            p, {static_cast<int>((r << 3) | (r >> 2)), static_cast<int>((g << 2) | (g >> 4)),
                static_cast<int>((b << 3) | (b >> 2))});
      }
    }
  }
}

constexpr Yuv422LutKernel kLutKernels[kLayoutCount] = {
    yuv422_lut_row<RgbLayout::rgb24>,  yuv422_lut_row<RgbLayout::bgr24>,
    yuv422_lut_row<RgbLayout::rgbx32>, yuv422_lut_row<RgbLayout::bgrx32>,
    yuv422_lut_row<RgbLayout::xbgr32>, yuv422_lut_row<RgbLayout::xrgb32>,
    yuv422_lut_row<RgbLayout::rgb16>,  yuv422_lut_row<RgbLayout::rgb15>};

void store_hsi(uint8_t *p, Rgb16 c) {
  const int mx = std::max({c.r, c.g, c.b});
  const int mn = std::min({c.r, c.g, c.b});
  const int d = mx - mn;
  const int sum = c.r + c.g + c.b;
  int hue = 0;
  if (d != 0) {
    if (mx == c.r) {
      hue = 60 * (c.g - c.b) / d;
    } else if (mx == c.g) {
      hue = 120 + 60 * (c.b - c.r) / d;
    } else {
      hue = 240 + 60 * (c.r - c.g) / d;
    }
    if (hue < 0) hue += 360;
  }
  p[0] = static_cast<uint8_t>(hue);
  p[1] = static_cast<uint8_t>(hue >> 8);
  p[2] = static_cast<uint8_t>(sum == 0 ? 0 : 255 - 765 * mn / sum);
  p[3] = static_cast<uint8_t>(sum / 3);
}

}  // namespace

Yuv422LutKernel yuv422_lut_kernel(RgbLayout layout, SimdLevel level) {
  return level == SimdLevel::avx2 ? yuv422_lut_kernel_avx2(layout)
                                  : kLutKernels[static_cast<int>(layout)];
}

void yuv422_to_hsi_row(const uint8_t *yuv, uint8_t *out, uint32_t pairs) {
  for (uint32_t i = 0; i < pairs; ++i, yuv += 4, out += 8) {
    const int u = yuv[1] - 128;
    const int v = yuv[3] - 128;
    store_hsi(out, yuv_to_rgb(yuv[0], u, v));
    store_hsi(out + 4, yuv_to_rgb(yuv[2], u, v));
  }
}

const Yuv422Kernels &yuv422_kernels(SimdLevel level) {
  switch (level) {
    case SimdLevel::avx2: return yuv422_kernels_avx2();
    case SimdLevel::sse2: return yuv422_kernels_sse2();
    case SimdLevel::scalar: break;
  }
  return kScalarKernels;
}

void rgb24_to_y8_scalar(const uint8_t *rgb24, uint8_t *grey, uint32_t width) {
  for (uint32_t x = 0; x < width; ++x, rgb24 += 3)
    grey[x] = static_cast<uint8_t>((77 * rgb24[0] + 150 * rgb24[1] + 29 * rgb24[2]) >> 8);
}

GreyRowKernel rgb24_to_y8_kernel(SimdLevel level) {
  switch (level) {
    case SimdLevel::avx2: return rgb24_to_y8_avx2;
    case SimdLevel::sse2: return rgb24_to_y8_sse2;
    case SimdLevel::scalar: break;
  }
  return rgb24_to_y8_scalar;
}

}  // namespace vrc::convert
