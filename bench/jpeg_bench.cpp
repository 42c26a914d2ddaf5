// JPEG codec benchmark on 1920 x 1080 frames: our encoder and decoder beside TurboJPEG doing the
// same work in the same run (accurate integer DCT, the same subsampling, quality 50 for TurboJPEG
// and quality scale 16 for us, so that both use the T.81 Annex K tables unscaled), then a table
// of our time, TurboJPEG's and their ratio.
//
// Encoding: grey frames, YUV 4:2:2 frames (TurboJPEG from planes) and BGR24 frames (both convert
// the colour). Decoding: each decoder on its own stream of the same frame, to grey, to 4:2:2
// (TurboJPEG to planes, we to interleaved YUV 4:2:2) and to RGB24 (TurboJPEG with its chroma
// replicated like ours rather than interpolated); and our decoder on TurboJPEG's stream, read
// with ZEP_JPEG_buffer_read outside the timed loop.
#include "vrcw32/zep.h"

#include "imaging/convert/simd_level.h"

#include "bench/bench_frames.h"
#include "bench/collecting_reporter.h"

#include <benchmark/benchmark.h>
#include <turbojpeg.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kTurboQuality = 50;
constexpr uint16_t kQualityScale = 16;
constexpr int kTurboFlags = TJFLAG_ACCURATEDCT | TJFLAG_NOREALLOC;

using vrc::bench::noisy_level;

// Camera-like frames: smooth gradients and colour bars with a little sensor noise.
struct Frame {
  std::vector<uint8_t> grey, bgr, yuv422, y, u, v;
};

Frame make_frame() {
  std::mt19937 rng(1080);
  Frame f;
  f.grey.resize(std::size_t{kWidth} * kHeight);
  f.bgr.resize(std::size_t{3} * kWidth * kHeight);
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      const std::size_t i = std::size_t{kWidth} * y + x;
      f.grey[i] = noisy_level(16 + x * 219 / kWidth + (y / 90) * 3, rng);
      f.bgr[3 * i] = noisy_level(x * 255 / kWidth, rng);
      f.bgr[3 * i + 1] = noisy_level(y * 255 / kHeight, rng);
      f.bgr[3 * i + 2] = noisy_level(30 + (x / 240) * 28, rng);
    }
  // The 4:2:2 frame from the BGR frame, interleaved (ours) and as planes (TurboJPEG).
  f.yuv422.resize(std::size_t{2} * kWidth * kHeight);
  f.y.resize(std::size_t{kWidth} * kHeight);
  f.u.resize(std::size_t{kWidth / 2} * kHeight);
  f.v.resize(f.u.size());
  for (std::size_t i = 0; i < f.grey.size(); i += 2) {
    const uint32_t a = ZEP_CK_get_YUV_values_RGB(f.bgr[3 * i + 2], f.bgr[3 * i + 1], f.bgr[3 * i]);
    const uint32_t b =
        ZEP_CK_get_YUV_values_RGB(f.bgr[3 * i + 5], f.bgr[3 * i + 4], f.bgr[3 * i + 3]);
    const uint8_t u = static_cast<uint8_t>((((a >> 8) & 0xFF) + ((b >> 8) & 0xFF)) / 2);
    const uint8_t v = static_cast<uint8_t>(((a >> 16) + (b >> 16)) / 2);
    uint8_t *pair = &f.yuv422[2 * i];
    pair[0] = f.y[i] = static_cast<uint8_t>(a);
    pair[1] = f.u[i / 2] = u;
    pair[2] = f.y[i + 1] = static_cast<uint8_t>(b);
    pair[3] = f.v[i / 2] = v;
  }
  return f;
}

uint32_t our_jpeg_of(uint32_t source) {
  const uint32_t jpeg = ZEP_JPEG_image_create();
  ZEP_JPEG_set_Quality_factor(jpeg, kQualityScale);
  ZEP_JPEG_compress(source, jpeg);
  return jpeg;
}

struct Turbo {
  tjhandle compressor = tjInitCompress();
  tjhandle decompressor = tjInitDecompress();
  std::vector<uint8_t> buffer = std::vector<uint8_t>(tjBufSize(kWidth, kHeight, TJSAMP_444));
  unsigned long length = 0;

  void compress(const std::vector<uint8_t> &pixels, int format, int subsampling) {
    unsigned char *out = buffer.data();
    length = buffer.size();
    tjCompress2(compressor, pixels.data(), kWidth, 0, kHeight, format, &out, &length, subsampling,
                kTurboQuality, kTurboFlags);
  }
  void compress_planes(const Frame &f) {
    const unsigned char *planes[3] = {f.y.data(), f.u.data(), f.v.data()};
    unsigned char *out = buffer.data();
    length = buffer.size();
    tjCompressFromYUVPlanes(compressor, planes, kWidth, nullptr, kHeight, TJSAMP_422, &out, &length,
                            kTurboQuality, kTurboFlags);
  }
};

// What each timed loop works on: the frames as images, our JPEG images of them, TurboJPEG's
// streams of them and JPEG images read from those streams.
struct Setup {
  Frame frame = make_frame();
  uint32_t grey = vrc::bench::whole_frame_image(ZEP_Y8, kWidth, kHeight, frame.grey);
  uint32_t bgr = vrc::bench::whole_frame_image(ZEP_BGR24, kWidth, kHeight, frame.bgr);
  uint32_t yuv = vrc::bench::whole_frame_image(ZEP_YUV422, kWidth, kHeight, frame.yuv422);
  uint32_t jpeg_out = ZEP_JPEG_image_create();
  uint32_t grey_jpeg = our_jpeg_of(grey);
  uint32_t yuv_jpeg = our_jpeg_of(yuv);
  uint32_t decoded = ZEP_image_create();
  Turbo turbo;
  std::vector<uint8_t> turbo_grey, turbo_422;
  uint32_t turbo_grey_jpeg = ZEP_JPEG_image_create();
  uint32_t turbo_422_jpeg = ZEP_JPEG_image_create();
  std::vector<uint8_t> pixels = std::vector<uint8_t>(std::size_t{4} * kWidth * kHeight);

  Setup() {
    ZEP_JPEG_set_Quality_factor(jpeg_out, kQualityScale);
    turbo.compress(frame.grey, TJPF_GRAY, TJSAMP_GRAY);
    turbo_grey.assign(turbo.buffer.begin(), turbo.buffer.begin() + turbo.length);
    turbo.compress_planes(frame);
    turbo_422.assign(turbo.buffer.begin(), turbo.buffer.begin() + turbo.length);
    ZEP_JPEG_buffer_read(turbo_grey_jpeg, turbo_grey.data(), uint32_t(turbo_grey.size()));
    ZEP_JPEG_buffer_read(turbo_422_jpeg, turbo_422.data(), uint32_t(turbo_422.size()));
  }
};

Setup &setup() {
  static Setup s;
  return s;
}

void decode_ours(benchmark::State &state, uint32_t Setup::*jpeg, uint16_t type) {
  Setup &s = setup();
  for (auto _ : state) {
    ZEP_image_set_parameter(s.decoded, ZEP_IMAGE_TYPE, type);
    ZEP_JPEG_decompress(s.*jpeg, s.decoded);
  }
}

void decode_turbo(benchmark::State &state, const std::vector<uint8_t> Setup::*stream, int format) {
  Setup &s = setup();
  const std::vector<uint8_t> &bytes = s.*stream;
  for (auto _ : state)
    tjDecompress2(s.turbo.decompressor, bytes.data(), bytes.size(), s.pixels.data(), kWidth, 0,
                  kHeight, format, kTurboFlags | TJFLAG_FASTUPSAMPLE);
}

void decode_turbo_planes(benchmark::State &state) {
  Setup &s = setup();
  unsigned char *planes[3] = {s.pixels.data(), s.pixels.data() + kWidth * kHeight,
                              s.pixels.data() + kWidth * kHeight * 3 / 2};
  for (auto _ : state)
    tjDecompressToYUVPlanes(s.turbo.decompressor, s.turbo_422.data(), s.turbo_422.size(), planes,
                            kWidth, nullptr, kHeight, kTurboFlags);
}

struct Comparison {
  const char *path;
  const char *ours;
  const char *peer;
};

}  // namespace

int main(int argc, char **argv) {
  ZEP_ErrHandlerInstall(nullptr);
  const auto add = [](const char *name, auto fn) {
    benchmark::RegisterBenchmark(name, fn)->Unit(benchmark::kMillisecond);
  };
  add("ours/encode_grey", [](benchmark::State &st) {
    for (auto _ : st) ZEP_JPEG_compress(setup().grey, setup().jpeg_out);
  });
  add("turbo/encode_grey", [](benchmark::State &st) {
    for (auto _ : st) setup().turbo.compress(setup().frame.grey, TJPF_GRAY, TJSAMP_GRAY);
  });
  add("ours/encode_yuv422", [](benchmark::State &st) {
    for (auto _ : st) ZEP_JPEG_compress(setup().yuv, setup().jpeg_out);
  });
  add("turbo/encode_yuv422_planes", [](benchmark::State &st) {
    for (auto _ : st) setup().turbo.compress_planes(setup().frame);
  });
  add("ours/encode_bgr24_422", [](benchmark::State &st) {
    for (auto _ : st) ZEP_JPEG_compress(setup().bgr, setup().jpeg_out);
  });
  add("turbo/encode_bgr24_422", [](benchmark::State &st) {
    for (auto _ : st) setup().turbo.compress(setup().frame.bgr, TJPF_BGR, TJSAMP_422);
  });
  add("ours/decode_grey", [](benchmark::State &st) { decode_ours(st, &Setup::grey_jpeg, ZEP_Y8); });
  add("ours/decode_grey_turbo_stream",
      [](benchmark::State &st) { decode_ours(st, &Setup::turbo_grey_jpeg, ZEP_Y8); });
  add("turbo/decode_grey",
      [](benchmark::State &st) { decode_turbo(st, &Setup::turbo_grey, TJPF_GRAY); });
  add("ours/decode_yuv422",
      [](benchmark::State &st) { decode_ours(st, &Setup::yuv_jpeg, ZEP_YUV422); });
  add("ours/decode_yuv422_turbo_stream",
      [](benchmark::State &st) { decode_ours(st, &Setup::turbo_422_jpeg, ZEP_YUV422); });
  add("turbo/decode_yuv422_planes", [](benchmark::State &st) { decode_turbo_planes(st); });
  add("ours/decode_rgb24",
      [](benchmark::State &st) { decode_ours(st, &Setup::yuv_jpeg, ZEP_RGB24); });
  add("ours/decode_rgb24_turbo_stream",
      [](benchmark::State &st) { decode_ours(st, &Setup::turbo_422_jpeg, ZEP_RGB24); });
  add("turbo/decode_rgb24",
      [](benchmark::State &st) { decode_turbo(st, &Setup::turbo_422, TJPF_RGB); });

  benchmark::Initialize(&argc, argv);
  vrc::bench::CollectingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  const Comparison comparisons[] = {
      {"encode grey", "ours/encode_grey", "turbo/encode_grey"},
      {"encode 4:2:2 (YUV)", "ours/encode_yuv422", "turbo/encode_yuv422_planes"},
      {"encode 4:2:2 (BGR24)", "ours/encode_bgr24_422", "turbo/encode_bgr24_422"},
      {"decode grey", "ours/decode_grey", "turbo/decode_grey"},
      {"decode grey (its stream)", "ours/decode_grey_turbo_stream", "turbo/decode_grey"},
      {"decode 4:2:2 to YUV", "ours/decode_yuv422", "turbo/decode_yuv422_planes"},
      {"decode 4:2:2 to YUV (its)", "ours/decode_yuv422_turbo_stream",
       "turbo/decode_yuv422_planes"},
      {"decode 4:2:2 to RGB24", "ours/decode_rgb24", "turbo/decode_rgb24"},
      {"decode 4:2:2 RGB24 (its)", "ours/decode_rgb24_turbo_stream", "turbo/decode_rgb24"},
  };
  const auto level = vrc::convert::active_simd_level();
  std::printf("\n1920 x 1080 frame, milliseconds per frame (our stages: %s)\n",
              level == vrc::convert::SimdLevel::avx2   ? "AVX2"
              : level == vrc::convert::SimdLevel::sse2 ? "SSE2"
                                                       : "scalar");
  std::printf("stream bytes: ours grey %u, 4:2:2 %u; TurboJPEG grey %zu, 4:2:2 %zu\n",
              ZEP_image_get_parameter(setup().grey_jpeg, ZEP_JPEG_LENGTH),
              ZEP_image_get_parameter(setup().yuv_jpeg, ZEP_JPEG_LENGTH), setup().turbo_grey.size(),
              setup().turbo_422.size());
  std::printf("%-28s %9s  %9s  %7s\n", "path", "ours", "TurboJPEG", "ratio");
  for (const Comparison &c : comparisons) {
    const double ours_ms = reporter.ms(c.ours), peer_ms = reporter.ms(c.peer);
    if (ours_ms == 0.0 || peer_ms == 0.0) continue;
    std::printf("%-28s %9.3f  %9.3f  %7.2f\n", c.path, ours_ms, peer_ms, ours_ms / peer_ms);
  }
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  return 0;
}
