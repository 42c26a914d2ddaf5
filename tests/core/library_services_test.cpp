// The pixel-format table seen through the API, the exception guard at the C boundary, the
// unchecked accessors, colour-map copies and parameters read with a separate status.
#include "imaging/core/pixel_formats.h"
#include "imaging/core/report.h"
#include "support/error_capture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <stdexcept>

using vrc::test::ErrorCapture;
using vrc::test::ScopedImage;

namespace {

uint32_t parameter(uint32_t image, uint16_t id) { return ZEP_image_get_parameter(image, id); }

}  // namespace

// Every row's type sets the row's depth and data width, passes the check with the row's line
// length, and is named (or not) as the row says.
TEST(PixelFormats, EveryRowAgreesWithSetParameterAndCheck) {
  ErrorCapture errors;
  for (const vrc::core::PixelFormat &format : vrc::core::pixel_formats()) {
    ScopedImage image;
    ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, 4);
    ASSERT_EQ(ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, format.code), 0u) << format.name;
    EXPECT_EQ(parameter(image, ZEP_IMAGE_DEPTH), format.depth) << format.name;
    if (format.data_width != 0) {
      EXPECT_EQ(parameter(image, ZEP_DATA_WIDTH), format.data_width) << format.name;
    }
    ASSERT_EQ(ZEP_image_check(image), 0u) << format.name;
    EXPECT_EQ(parameter(image, ZEP_BYTES_PER_LINE), 4u * format.pixel_bytes) << format.name;
    const char *name = ZEP_pixel_format_name(format.code);
    if (format.image_format) {
      ASSERT_NE(name, nullptr) << format.name;
      EXPECT_STREQ(name, format.name);
    } else {
      EXPECT_EQ(name, nullptr) << format.name;
    }
  }
  EXPECT_EQ(errors.count(), 0u);
}

TEST(PixelFormats, CodesWithoutARowAreRefused) {
  ErrorCapture errors;
  ScopedImage image;
  for (uint32_t code = 1; code < 300; ++code) {
    if (vrc::core::pixel_format(code) != nullptr) continue;
    EXPECT_EQ(ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, code), ZEP_ERR_UNSUPPORTED) << code;
    EXPECT_EQ(ZEP_pixel_format_name(code), nullptr) << code;
  }
  EXPECT_EQ(errors.last().message, "Unrecognized image type");
  EXPECT_EQ(ZEP_pixel_format_name(ZEP_NONE), nullptr);
}

struct Escape {
  const char *name;
  std::function<uint32_t()> body;
  uint32_t code;
  const char *message;
};

class ApiGuard : public testing::TestWithParam<Escape> {};

TEST_P(ApiGuard, TurnsAnEscapedExceptionIntoItsCode) {
  ErrorCapture errors;
  EXPECT_EQ(vrc::core::api_guard("ZEP_test_function", GetParam().body), GetParam().code);
  ASSERT_EQ(errors.count(), 1u);
  EXPECT_EQ(errors.last().function, "ZEP_test_function");
  EXPECT_EQ(errors.last().code, GetParam().code);
  EXPECT_EQ(errors.last().message, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Exceptions, ApiGuard,
    testing::Values(Escape{"bad_alloc", []() -> uint32_t { throw std::bad_alloc(); }, ZEP_ERR_MEMORY, ""},
                    Escape{"invalid_argument", []() -> uint32_t { throw std::invalid_argument("x"); },
                           ZEP_ERR_BAD_PARAM, ""},
                    Escape{"out_of_range", []() -> uint32_t { throw std::out_of_range("x"); }, ZEP_ERR_BAD_PARAM, ""},
                    Escape{"runtime_error", []() -> uint32_t { throw std::runtime_error("x"); }, ZEP_ERR_INTERNAL,
                           "Unexpected exception"},
                    Escape{"int", []() -> uint32_t { throw 7; }, ZEP_ERR_INTERNAL, "Unexpected exception"}),
    [](const testing::TestParamInfo<Escape> &param_info) { return std::string(param_info.param.name); });

TEST(ApiGuardPassThrough, ReturnsTheBodysStatusAndReportsNothing) {
  ErrorCapture errors;
  EXPECT_EQ(vrc::core::api_guard("ZEP_test_function", [] { return ZEP_ERR_CLOSE | 3; }), ZEP_ERR_CLOSE | 3);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(Accessors, ReadTheRecordOfALiveImage) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_ImageMake(image, 5, 3, ZEP_RGB24, 0x102030);
  EXPECT_EQ(ZEP_get_width(image), 5u);
  EXPECT_EQ(ZEP_get_height(image), 3u);
  EXPECT_EQ(ZEP_get_depth(image), 24u);
  EXPECT_EQ(ZEP_get_bytes_per_line(image), 16u);
  EXPECT_EQ(ZEP_get_lines_this_strip(image), 3u);

  // count x bytes_per_line writable bytes, the caller's to free.
  uint8_t *lines = ZEP_malloc_N_lines(image, 4);
  ASSERT_NE(lines, nullptr);
  std::memset(lines, 0x5A, 4 * 16);
  std::free(lines);
  EXPECT_EQ(ZEP_malloc_N_lines(0xFFFF, 4), nullptr);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(ColourMaps, CopyTakesAll256Entries) {
  ErrorCapture errors;
  ScopedImage from, to;
  for (uint16_t i = 0; i < 256; ++i) {
    ZEP_image_set_parameter(from, ZEP_CMAP_COLOURS, 256);
    ZEP_cmap_set_RGB_colour(from, i, static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), 7);
  }
  ASSERT_EQ(ZEP_cmap_copy(from, to), 0u);
  const auto *copied = static_cast<const uint8_t *>(ZEP_image_get_ptr(to, ZEP_CMAP_PTR));
  const auto *original = static_cast<const uint8_t *>(ZEP_image_get_ptr(from, ZEP_CMAP_PTR));
  EXPECT_EQ(std::memcmp(copied, original, 256 * 4), 0);
  EXPECT_EQ(copied[4 * 200 + 1], 55);

  // With either map gone nothing is copied and nothing fails.
  void *map = ZEP_image_get_ptr(to, ZEP_CMAP_PTR);
  ZEP_image_set_ptr(to, ZEP_CMAP_PTR, nullptr);
  EXPECT_EQ(ZEP_cmap_copy(from, to), 0u);
  ZEP_image_set_ptr(to, ZEP_CMAP_PTR, map);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(QueryParameter, TellsALargeValueFromAFailure) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, 0x10050000);
  uint32_t value = 0;
  EXPECT_EQ(ZEP_image_query_parameter(image, ZEP_IMAGE_WIDTH, &value), 0u);
  EXPECT_EQ(value, 0x10050000u);
  EXPECT_EQ(errors.count(), 0u);

  EXPECT_EQ(ZEP_image_query_parameter(0xFFFF, ZEP_IMAGE_WIDTH, &value), ZEP_ERR_HANDLE);
  EXPECT_EQ(errors.last().function, "ZEP_image_query_parameter");
  EXPECT_EQ(ZEP_image_query_parameter(image, 99, &value), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Unknown parameter");
  EXPECT_EQ(ZEP_image_query_parameter(image, ZEP_IMAGE_WIDTH, nullptr), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(ZEP_image_query_parameter(image, ZEP_LIBRARY_ID, &value), 0u);
  EXPECT_EQ(value, ZEP_LIBRARY_ID_VALUE);
}
