// Conversion benchmark on a 1920 x 1080 frame: our YUV 4:2:2 conversions (direct and through the
// conversion tables) and RGB24 to grey, each beside the closest libyuv path doing the same work,
// then a table of our time, the peer's and their ratio. The table paths are also set against the
// scalar reference kernels, which they exist to beat.
#include "vrcw32/zep.h"

#include "imaging/convert/yuv422_rows.h"

#include "bench/bench_frames.h"
#include "bench/collecting_reporter.h"

#include <benchmark/benchmark.h>
#include <libyuv/convert.h>
#include <libyuv/convert_argb.h>
#include <libyuv/convert_from_argb.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kWidth = 1920;
constexpr uint32_t kHeight = 1080;

using vrc::bench::noisy_level;

// Camera-like frames: smooth gradients and colour bars with a little sensor noise.
std::vector<uint8_t> yuv_frame() {
  std::mt19937 rng(1080);
  std::vector<uint8_t> frame(size_t{2} * kWidth * kHeight);
  for (uint32_t y = 0; y < kHeight; ++y)
    for (uint32_t x = 0; x < kWidth; x += 2) {
      uint8_t *pair = &frame[size_t{2} * (y * kWidth + x)];
      pair[0] = noisy_level(16 + int(x * 219 / kWidth), rng);
      pair[1] = noisy_level(30 + int(x / 240) * 28, rng);
      pair[2] = noisy_level(16 + int((x + 1) * 219 / kWidth), rng);
      pair[3] = noisy_level(30 + int(y / 135) * 28, rng);
    }
  return frame;
}

std::vector<uint8_t> rgb_frame() {
  std::mt19937 rng(24);
  std::vector<uint8_t> frame(size_t{3} * kWidth * kHeight);
  for (uint32_t y = 0; y < kHeight; ++y)
    for (uint32_t x = 0; x < kWidth; ++x) {
      uint8_t *p = &frame[size_t{3} * (y * kWidth + x)];
      p[0] = noisy_level(int(x * 255 / kWidth), rng);
      p[1] = noisy_level(int(y * 255 / kHeight), rng);
      p[2] = noisy_level(int((x + y) / 12), rng);
    }
  return frame;
}

struct Frames {
  std::vector<uint8_t> yuv = yuv_frame();
  std::vector<uint8_t> rgb = rgb_frame();
  uint32_t yuv_image = vrc::bench::whole_frame_image(ZEP_YUV422, kWidth, kHeight, yuv);
  uint32_t rgb_image = vrc::bench::whole_frame_image(ZEP_RGB24, kWidth, kHeight, rgb);
  uint32_t out_image = ZEP_image_create();
  std::vector<uint8_t> argb = std::vector<uint8_t>(size_t{4} * kWidth * kHeight);
  std::vector<uint8_t> out = std::vector<uint8_t>(size_t{4} * kWidth * kHeight);
};

Frames &frames() {
  static Frames f;
  return f;
}

void ours(benchmark::State &state, uint16_t out_type, uint32_t flags, bool from_rgb) {
  Frames &f = frames();
  for (auto _ : state) ZEP_image_convert(from_rgb ? f.rgb_image : f.yuv_image, f.out_image, out_type, flags, 3);
}

// The scalar reference kernels row by row into a ready buffer: the formula without SIMD.
void scalar_reference(benchmark::State &state, vrc::convert::RgbLayout layout) {
  Frames &f = frames();
  const auto kernel = vrc::convert::yuv422_kernels(vrc::convert::SimdLevel::scalar).to[static_cast<int>(layout)];
  const uint32_t out_line = vrc::convert::layout_bytes(layout) * kWidth;
  for (auto _ : state)
    for (uint32_t y = 0; y < kHeight; ++y) kernel(&f.yuv[size_t{2} * kWidth * y], &f.out[size_t{out_line} * y], kWidth / 2);
}

void peer(benchmark::State &state, const std::function<void(Frames &)> &work) {
  Frames &f = frames();
  for (auto _ : state) work(f);
}

const int kW = static_cast<int>(kWidth), kH = static_cast<int>(kHeight);

void libyuv_yuy2_to_argb(Frames &f) { libyuv::YUY2ToARGB(f.yuv.data(), 2 * kW, f.argb.data(), 4 * kW, kW, kH); }

struct Comparison {
  const char *path;
  const char *ours;
  const char *peer;
  const char *peer_label;
};

}  // namespace

int main(int argc, char **argv) {
  using vrc::convert::RgbLayout;
  ZEP_ErrHandlerInstall(nullptr);
  const uint32_t lut_image = ZEP_image_create();
  ZEP_image_conv_LUT_generate(lut_image, ZEP_LUT_YUV422_TO_RGB16);

  const auto add = [](const char *name, auto fn) { benchmark::RegisterBenchmark(name, fn)->Unit(benchmark::kMillisecond); };
  add("ours/yuv422_to_rgb24", [](benchmark::State &s) { ours(s, ZEP_RGB24, 0, false); });
  add("ours/yuv422_to_bgrx32", [](benchmark::State &s) { ours(s, ZEP_BGRX32, 0, false); });
  add("ours/yuv422_to_rgb16", [](benchmark::State &s) { ours(s, ZEP_RGB16, 0, false); });
  add("ours/yuv422_to_rgb24_lut", [](benchmark::State &s) { ours(s, ZEP_RGB24, ZEP_FLAG_USE_LUT, false); });
  add("ours/yuv422_to_bgrx32_lut", [](benchmark::State &s) { ours(s, ZEP_BGRX32, ZEP_FLAG_USE_LUT, false); });
  add("ours/yuv422_to_rgb16_lut", [](benchmark::State &s) { ours(s, ZEP_RGB16, ZEP_FLAG_USE_LUT, false); });
  add("ours/rgb24_to_y8", [](benchmark::State &s) { ours(s, ZEP_Y8, 0, true); });
  add("scalar/yuv422_to_rgb24", [](benchmark::State &s) { scalar_reference(s, RgbLayout::rgb24); });
  add("scalar/yuv422_to_bgrx32", [](benchmark::State &s) { scalar_reference(s, RgbLayout::bgrx32); });
  add("scalar/yuv422_to_rgb16", [](benchmark::State &s) { scalar_reference(s, RgbLayout::rgb16); });
  add("libyuv/yuy2_to_argb_to_raw", [](benchmark::State &s) {
    peer(s, [](Frames &f) {
      libyuv_yuy2_to_argb(f);
      libyuv::ARGBToRAW(f.argb.data(), 4 * kW, f.out.data(), 3 * kW, kW, kH);
    });
  });
  add("libyuv/yuy2_to_argb", [](benchmark::State &s) { peer(s, libyuv_yuy2_to_argb); });
  add("libyuv/yuy2_to_argb_to_rgb565", [](benchmark::State &s) {
    peer(s, [](Frames &f) {
      libyuv_yuy2_to_argb(f);
      libyuv::ARGBToRGB565(f.argb.data(), 4 * kW, f.out.data(), 2 * kW, kW, kH);
    });
  });
  add("libyuv/rgb24_to_j400", [](benchmark::State &s) {
    peer(s, [](Frames &f) { libyuv::RGB24ToJ400(f.rgb.data(), 3 * kW, f.out.data(), kW, kW, kH); });
  });

  benchmark::Initialize(&argc, argv);
  vrc::bench::CollectingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  const Comparison comparisons[] = {
      {"YUV422 -> RGB24", "ours/yuv422_to_rgb24", "libyuv/yuy2_to_argb_to_raw", "libyuv YUY2ToARGB+ARGBToRAW"},
      {"YUV422 -> BGRX32", "ours/yuv422_to_bgrx32", "libyuv/yuy2_to_argb", "libyuv YUY2ToARGB"},
      {"YUV422 -> RGB16", "ours/yuv422_to_rgb16", "libyuv/yuy2_to_argb_to_rgb565", "libyuv YUY2ToARGB+ARGBToRGB565"},
      {"RGB24 -> Y8", "ours/rgb24_to_y8", "libyuv/rgb24_to_j400", "libyuv RGB24ToJ400"},
      {"YUV422 -> RGB24 (table)", "ours/yuv422_to_rgb24_lut", "libyuv/yuy2_to_argb_to_raw", "libyuv YUY2ToARGB+ARGBToRAW"},
      {"YUV422 -> BGRX32 (table)", "ours/yuv422_to_bgrx32_lut", "libyuv/yuy2_to_argb", "libyuv YUY2ToARGB"},
      {"YUV422 -> RGB16 (table)", "ours/yuv422_to_rgb16_lut", "libyuv/yuy2_to_argb_to_rgb565", "libyuv YUY2ToARGB+ARGBToRGB565"},
      {"YUV422 -> RGB24 (table)", "ours/yuv422_to_rgb24_lut", "scalar/yuv422_to_rgb24", "our scalar formula"},
      {"YUV422 -> BGRX32 (table)", "ours/yuv422_to_bgrx32_lut", "scalar/yuv422_to_bgrx32", "our scalar formula"},
      {"YUV422 -> RGB16 (table)", "ours/yuv422_to_rgb16_lut", "scalar/yuv422_to_rgb16", "our scalar formula"},
  };
  std::printf("\n1920 x 1080 frame, milliseconds per frame (row kernels: %s)\n",
              vrc::convert::active_simd_level() == vrc::convert::SimdLevel::avx2   ? "AVX2"
              : vrc::convert::active_simd_level() == vrc::convert::SimdLevel::sse2 ? "SSE2"
                                                                                   : "scalar");
  std::printf("%-26s %9s  %9s  %7s  %s\n", "path", "ours", "peer", "ratio", "peer");
  for (const Comparison &c : comparisons) {
    const double ours_ms = reporter.ms(c.ours), peer_ms = reporter.ms(c.peer);
    if (ours_ms == 0.0 || peer_ms == 0.0) continue;
    std::printf("%-26s %9.3f  %9.3f  %7.2f  %s\n", c.path, ours_ms, peer_ms, ours_ms / peer_ms, c.peer_label);
  }
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  return 0;
}
