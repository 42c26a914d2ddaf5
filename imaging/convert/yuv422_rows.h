// Stateless row kernels of the YUV 4:2:2 family and of the RGB24-to-grey path: the scalar
// reference of each, and tables of the kernels for each level (scalar, SSE2, AVX2). Every vector
// kernel gives exactly the bytes of its scalar reference.
#pragma once

#include "imaging/convert/simd_level.h"

#include <cstdint>

namespace vrc::convert {

// Output layouts of the YUV 4:2:2 colour kernels.
enum class RgbLayout { rgb24, bgr24, rgbx32, bgrx32, xbgr32, xrgb32, rgb16, rgb15, count };

constexpr int kLayoutCount = static_cast<int>(RgbLayout::count);

// Bytes one pixel of `layout` takes.
constexpr uint32_t layout_bytes(RgbLayout layout) {
  switch (layout) {
    case RgbLayout::rgb24:
    case RgbLayout::bgr24: return 3;
    case RgbLayout::rgb16:
    case RgbLayout::rgb15: return 2;
    default: return 4;
  }
}

// Converts `pairs` YUV 4:2:2 pixel pairs (Y0 U Y1 V) of one row.
using Yuv422RowKernel = void (*)(const uint8_t *yuv, uint8_t *out, uint32_t pairs);

struct Yuv422Kernels {
  Yuv422RowKernel to[kLayoutCount];
};

// The kernels of `level` (the level must be supported by the processor).
const Yuv422Kernels &yuv422_kernels(SimdLevel level);
const Yuv422Kernels &yuv422_kernels_sse2();
const Yuv422Kernels &yuv422_kernels_avx2();

// Table-driven colour kernels: each pixel's RGB16 (or RGB15) value is read from `table`, a
// 2^19-entry table of 16-bit little-endian values indexed by (Y >> 1) << 12 | (U >> 2) << 6 | V >>
// 2, with 2 readable bytes past its end. The 16-bit layouts copy the value; the 24/32-bit layouts
// widen the 5-6-5 value to 8 bits. Levels: scalar and AVX2 (SSE2 uses the scalar kernels).
using Yuv422LutKernel = void (*)(const uint8_t *yuv, uint8_t *out, uint32_t pairs,
                                 const uint8_t *table);
Yuv422LutKernel yuv422_lut_kernel(RgbLayout layout, SimdLevel level);
Yuv422LutKernel yuv422_lut_kernel_avx2(RgbLayout layout);

// Hue (degrees, 16-bit little-endian), saturation and intensity of each pixel.
void yuv422_to_hsi_row(const uint8_t *yuv, uint8_t *out, uint32_t pairs);

// R, G, B of one pixel: y is the stored Y, u and v are U - 128 and V - 128.
struct Rgb16 {
  int r, g, b;
};
constexpr int clamp_byte(int value) { return value < 0 ? 0 : (value > 255 ? 255 : value); }
constexpr Rgb16 yuv_to_rgb(int y, int u, int v) {
  return {clamp_byte((1024 * y + 1436 * v) >> 10), clamp_byte((1024 * y - 731 * v - 352 * u) >> 10),
          clamp_byte((1024 * y + 1815 * u) >> 10)};
}

// RGB24 row to Y8 row: (77 R + 150 G + 29 B) >> 8.
using GreyRowKernel = void (*)(const uint8_t *rgb24, uint8_t *grey, uint32_t width);
GreyRowKernel rgb24_to_y8_kernel(SimdLevel level);
void rgb24_to_y8_scalar(const uint8_t *rgb24, uint8_t *grey, uint32_t width);
void rgb24_to_y8_sse2(const uint8_t *rgb24, uint8_t *grey, uint32_t width);
void rgb24_to_y8_avx2(const uint8_t *rgb24, uint8_t *grey, uint32_t width);

}  // namespace vrc::convert
