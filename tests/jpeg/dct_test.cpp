// The arithmetic stages: forward and inverse DCT against a double-precision DCT, the scalar,
// SSE2 and AVX2 versions against each other (forward on any samples, inverse on any coefficients,
// damaged streams' included), the DC-only shortcut, quantisation, and the encoder's colour
// conversion.
#include "imaging/files/jpeg/encoder_colour.h"
#include "imaging/files/jpeg/forward_dct.h"
#include "imaging/files/jpeg/inverse_dct.h"
#include "imaging/files/jpeg/quantise.h"
#include "imaging/files/jpeg/standard_tables.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <random>

namespace vrc::jpeg {
namespace {

using Samples = std::array<uint8_t, 64>;
using Coefficients = std::array<int16_t, 64>;
using convert::SimdLevel;

// T.81 A.3.3: F(u,v) = 1/4 C(u) C(v) sum over x, y of (s(x,y) - 128) cos((2x+1)u pi/16) cos(...).
std::array<double, 64> reference_forward(const Samples &s) {
  std::array<double, 64> out{};
  for (int v = 0; v < 8; ++v)
    for (int u = 0; u < 8; ++u) {
      double sum = 0;
      for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
          sum += (s[y * 8 + x] - 128.0) * std::cos((2 * x + 1) * u * M_PI / 16) *
                 std::cos((2 * y + 1) * v * M_PI / 16);
      out[v * 8 + u] = 0.25 * (u == 0 ? M_SQRT1_2 : 1) * (v == 0 ? M_SQRT1_2 : 1) * sum;
    }
  return out;
}

std::array<double, 64> reference_inverse(const Coefficients &c) {
  std::array<double, 64> out{};
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x) {
      double sum = 0;
      for (int v = 0; v < 8; ++v)
        for (int u = 0; u < 8; ++u)
          sum += (u == 0 ? M_SQRT1_2 : 1) * (v == 0 ? M_SQRT1_2 : 1) * c[v * 8 + u] *
                 std::cos((2 * x + 1) * u * M_PI / 16) * std::cos((2 * y + 1) * v * M_PI / 16);
      out[y * 8 + x] = 0.25 * sum + 128;
    }
  return out;
}

// Blocks like pictures and unlike them: smooth, noisy, flat extremes and checkerboards.
Samples test_block(std::mt19937 &rng, int kind) {
  Samples s{};
  for (int i = 0; i < 64; ++i) {
    const int x = i % 8, y = i / 8;
    switch (kind % 4) {
      case 0: s[i] = static_cast<uint8_t>(rng() & 0xFF); break;
      case 1:
        s[i] = static_cast<uint8_t>(std::clamp(40 + 20 * x + 9 * y + int(rng() % 7), 0, 255));
        break;
      case 2: s[i] = (x + y) % 2 ? 255 : 0; break;
      default: s[i] = rng() % 2 ? 255 : 0; break;
    }
  }
  return s;
}

// The integer method's outputs are within one step of the exact transform (its descaling rounds
// twice and its constants are 13-bit).
TEST(ForwardDct, WithinOneOfTheExactTransform) {
  std::mt19937 rng(81);
  for (int i = 0; i < 2000; ++i) {
    const Samples s = test_block(rng, i);
    Coefficients ours;
    forward_dct_scalar(s.data(), 8, ours.data());
    const std::array<double, 64> exact = reference_forward(s);
    for (int n = 0; n < 64; ++n) ASSERT_NEAR(ours[n], exact[n], 1.0) << "block " << i << " n " << n;
  }
}

// On coefficients that a forward transform can give, the inverse is within one level of the
// exact inverse, rounded and clamped.
TEST(InverseDct, WithinOneOfTheExactTransform) {
  std::mt19937 rng(82);
  for (int i = 0; i < 2000; ++i) {
    const Samples s = test_block(rng, i);
    Coefficients c;
    forward_dct_scalar(s.data(), 8, c.data());
    for (int n = 0; n < 64; ++n)  // a coarse quantisation, as a decoder sees it
      if (i % 2) c[n] = static_cast<int16_t>(std::lround(c[n] / 12.0) * 12);
    Samples ours;
    inverse_dct_scalar(c.data(), ours.data(), 8);
    const std::array<double, 64> exact = reference_inverse(c);
    for (int n = 0; n < 64; ++n)
      ASSERT_NEAR(ours[n], std::clamp(exact[n], 0.0, 255.0), 1.0) << "block " << i << " n " << n;
  }
}

std::vector<SimdLevel> vector_levels() {
  std::vector<SimdLevel> levels;
  for (const SimdLevel level : {SimdLevel::sse2, SimdLevel::avx2})
    if (convert::simd_level_supported(level)) levels.push_back(level);
  return levels;
}

TEST(ForwardDct, VectorVersionsGiveTheScalarCoefficients) {
  ASSERT_FALSE(vector_levels().empty());
  std::mt19937 rng(83);
  for (int i = 0; i < 5000; ++i) {
    const Samples a = test_block(rng, i), b = test_block(rng, i + 1);
    Coefficients want_a, want_b;
    forward_dct_scalar(a.data(), 8, want_a.data());
    forward_dct_scalar(b.data(), 8, want_b.data());
    for (const SimdLevel level : vector_levels()) {
      Coefficients got_a, got_b;
      forward_dct_pair(level)(a.data(), 8, b.data(), 8, got_a.data(), got_b.data());
      ASSERT_EQ(got_a, want_a) << "block " << i << " level " << int(level);
      ASSERT_EQ(got_b, want_b) << "block " << i << " level " << int(level);
    }
  }
}

// Any 16-bit coefficients, extremes included: the versions agree to the byte (their arithmetic
// contract), whatever a damaged stream holds.
TEST(InverseDct, VectorVersionsGiveTheScalarSamplesForAnyInput) {
  std::mt19937 rng(84);
  for (int i = 0; i < 5000; ++i) {
    Coefficients a, b;
    for (int n = 0; n < 64; ++n) {
      const int kind = (i / 7) % 3;
      const int value = kind == 0   ? int(rng() % 65536) - 32768
                        : kind == 1 ? (rng() % 2 ? 32767 : -32768)
                                    : int(rng() % 2048) - 1024;
      a[n] = static_cast<int16_t>(value);
      b[n] = static_cast<int16_t>(rng() % 4 ? 0 : value / 3);
    }
    Samples want_a, want_b;
    inverse_dct_scalar(a.data(), want_a.data(), 8);
    inverse_dct_scalar(b.data(), want_b.data(), 8);
    for (const SimdLevel level : vector_levels()) {
      Samples got_a, got_b;
      inverse_dct_pair(level)(a.data(), b.data(), got_a.data(), 8, got_b.data(), 8);
      ASSERT_EQ(got_a, want_a) << "block " << i << " level " << int(level);
      ASSERT_EQ(got_b, want_b) << "block " << i << " level " << int(level);
    }
  }
}

TEST(InverseDct, DcOnlyShortcutEqualsTheFullTransform) {
  for (int dc = -32768; dc <= 32767; dc += 7) {
    Coefficients c{};
    c[0] = static_cast<int16_t>(dc);
    Samples full, shortcut;
    inverse_dct_scalar(c.data(), full.data(), 8);
    inverse_dct_dc_only(c[0], shortcut.data(), 8);
    ASSERT_EQ(shortcut, full) << dc;
  }
}

// Quantisation rounds coefficient x reciprocal / 65536 to the nearest, halves away from zero, in
// every version, for every table the quality scales give.
TEST(Quantise, VectorVersionGivesTheScalarValues) {
  std::mt19937 rng(85);
  for (int q = 1; q <= 255; ++q) {
    uint32_t reciprocals[64];
    for (int k = 0; k < 64; ++k) {
      const uint32_t entry = static_cast<uint32_t>((q + 5 * k) % 255 + 1);
      reciprocals[k] = ((entry >> 1) + 65536) / entry;
    }
    const QuantiserTable table = quantiser_table(reciprocals);
    Coefficients c;
    for (int n = 0; n < 64; ++n) c[n] = static_cast<int16_t>(int(rng() % 4096) - 2048);
    Coefficients scalar, vector;
    quantise_scalar(c.data(), table, scalar.data());
    quantise_sse2(c.data(), table, vector.data());
    ASSERT_EQ(vector, scalar) << q;
    for (int n = 0; n < 64; ++n) {
      const int k = [&] {
        for (int z = 0; z < 64; ++z)
          if (kZigzagToNatural[z] == n) return z;
        return -1;
      }();
      const double exact = c[n] * double(reciprocals[k]) / 65536.0;
      ASSERT_EQ(scalar[n], static_cast<int16_t>(exact < 0 ? -std::floor(-exact + 0.5)
                                                          : std::floor(exact + 0.5)));
    }
  }
}

// Y = (306 R + 601 G + 117 B) >> 10 per pixel; U = ((512 B - 339 G - 173 R) >> 11) + 128 and
// V = ((512 R - 429 G - 83 B) >> 11) + 128 from the sums of the pair (arithmetic shifts).
TEST(EncoderColour, FollowsTheFormula) {
  const uint8_t red_pair[] = {0, 0, 255, 0, 0, 255};  // B G R, twice
  const uint8_t mixed_pair[] = {10, 200, 30, 250, 0, 100};
  uint8_t y[2], u, v;
  bgr_to_planes_scalar(red_pair, 3, 1, {y, &u, &v});
  EXPECT_EQ(y[0], 76);  // 78030 >> 10
  EXPECT_EQ(u, 84);     // (-88230 >> 11) + 128 = -44 + 128
  EXPECT_EQ(v, 255);    // (261120 >> 11) + 128
  bgr_to_planes_scalar(mixed_pair, 3, 1, {y, &u, &v});
  EXPECT_EQ(y[0], (306 * 30 + 601 * 200 + 117 * 10) >> 10);
  EXPECT_EQ(y[1], (306 * 100 + 601 * 0 + 117 * 250) >> 10);
  EXPECT_EQ(u, ((512 * 260 - 339 * 200 - 173 * 130) >> 11) + 128);
  EXPECT_EQ(v, ((512 * 130 - 429 * 200 - 83 * 260) >> 11) + 128);
}

// Every version of the colour conversion gives the scalar formula's bytes, over row lengths that
// end inside and outside a vector step and on the colours that reach the ends of U and V.
TEST(EncoderColour, VersionsGiveTheScalarRows) {
  std::mt19937 rng(86);
  for (const int pixel_bytes : {3, 4})
    for (uint32_t pairs = 1; pairs <= 40; ++pairs) {
      std::vector<uint8_t> pixels(2 * pairs * pixel_bytes + 8);
      for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = pairs % 3 == 0 ? (rng() % 2 ? 255 : 0) : static_cast<uint8_t>(rng());
      std::vector<uint8_t> want(4 * pairs);
      bgr_to_planes_scalar(pixels.data(), pixel_bytes, pairs,
                           {want.data(), want.data() + 2 * pairs, want.data() + 3 * pairs});
      for (const BgrToPlanes version : {&bgr_to_planes_sse2, &bgr_to_planes_avx2}) {
        if (version == &bgr_to_planes_avx2 && !convert::simd_level_supported(SimdLevel::avx2))
          continue;
        std::vector<uint8_t> got(4 * pairs);
        version(pixels.data(), pixel_bytes, pairs,
                {got.data(), got.data() + 2 * pairs, got.data() + 3 * pairs});
        ASSERT_EQ(got, want) << pixel_bytes << " bytes, " << pairs << " pairs";
      }
    }
}

}  // namespace
}  // namespace vrc::jpeg
