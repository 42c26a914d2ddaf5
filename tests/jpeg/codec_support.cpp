// Test support for the JPEG codec.
#include "jpeg/codec_support.h"

#include "fuzz/jpeg_entropy_input.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace vrc::test {

namespace {

// Gives `image` the geometry of a whole picture and one zeroed strip for it.
ZEP_IMAGE &whole_picture(uint32_t image, uint16_t type, uint32_t width, uint32_t height) {
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, height);
  ZEP_image_free_data(image);
  EXPECT_EQ(ZEP_image_malloc_a_strip(image), 0u);
  ZEP_IMAGE &record = record_of(image);
  std::memset(record.data, 0, record.strip_bytes);
  return record;
}

}  // namespace

void fill_picture(uint32_t image, uint16_t type, uint32_t width, uint32_t height,
                  const Bytes &bytes) {
  ZEP_IMAGE &record = whole_picture(image, type, width, height);
  ASSERT_EQ(record.strip_bytes, bytes.size());
  std::copy(bytes.begin(), bytes.end(), record.data);
}

namespace {

uint8_t grey_of(const Rgb &c) {
  return static_cast<uint8_t>((77 * c.r + 150 * c.g + 29 * c.b) >> 8);
}

// Y, U or V of a colour, in the library's own integer arithmetic.
void yuv_of(const Rgb &c, int &y, int &u, int &v) {
  const uint32_t packed = ZEP_CK_get_YUV_values_RGB(c.r, c.g, c.b);
  y = packed & 0xFF;
  u = (packed >> 8) & 0xFF;
  v = (packed >> 16) & 0xFF;
}

void write_pixel(uint16_t type, uint8_t *p, const Rgb &c) {
  switch (type) {
    case ZEP_Y8: p[0] = grey_of(c); break;
    case ZEP_RGB24: p[0] = c.r, p[1] = c.g, p[2] = c.b; break;
    case ZEP_BGR24: p[0] = c.b, p[1] = c.g, p[2] = c.r; break;
    case ZEP_RGBX32: p[0] = c.r, p[1] = c.g, p[2] = c.b, p[3] = 0; break;
    case ZEP_BGRX32: p[0] = c.b, p[1] = c.g, p[2] = c.r, p[3] = 0; break;
    case ZEP_XBGR32: p[0] = 0, p[1] = c.b, p[2] = c.g, p[3] = c.r; break;
    default: break;
  }
}

}  // namespace

void make_test_picture(uint32_t image, uint16_t type, uint32_t width, uint32_t height) {
  ZEP_IMAGE &record = whole_picture(image, type, width, height);
  const uint32_t pixel_bytes = record.depth == 16 ? 2 : (record.depth + 1) / 8;
  for (uint32_t y = 0; y < height; ++y) {
    uint8_t *line = record.data + std::size_t{y} * record.bytes_per_line;
    for (uint32_t x = 0; x < width; ++x) {
      const Rgb c = test_colour(x, y);
      if (type != ZEP_YUV422) {
        write_pixel(type, line + std::size_t{x} * pixel_bytes, c);
        continue;
      }
      int yy, u, v;
      yuv_of(c, yy, u, v);
      line[2 * x] = static_cast<uint8_t>(yy);
      line[2 * x + 1] = static_cast<uint8_t>(x % 2 == 0 ? u : v);
    }
  }
}

Bytes picture_bytes(uint32_t image) {
  const ZEP_IMAGE &record = record_of(image);
  const uint32_t row = record.bytes_per_line - record.skip_bytes;
  Bytes bytes;
  for (uint32_t y = 0; y < record.height; ++y) {
    const uint8_t *line = record.data + std::size_t{y} * record.bytes_per_line;
    bytes.insert(bytes.end(), line, line + row);
  }
  return bytes;
}

double psnr(const Bytes &a, const Bytes &b) {
  EXPECT_EQ(a.size(), b.size());
  double squares = 0;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    const double d = double(a[i]) - double(b[i]);
    squares += d * d;
  }
  if (squares == 0) return INFINITY;
  return 10.0 * std::log10(255.0 * 255.0 * double(a.size()) / squares);
}

uint32_t compressed(uint32_t source, uint16_t quality) {
  const uint32_t jpeg = ZEP_JPEG_image_create();
  EXPECT_EQ(ZEP_JPEG_set_Quality_factor(jpeg, quality), 0u);
  EXPECT_EQ(ZEP_JPEG_compress(source, jpeg), 0u);
  return jpeg;
}

uint32_t jpeg_with_stream(uint16_t type, uint32_t width, uint32_t height, const Bytes &stream) {
  ScopedImage model;
  make_test_picture(model, type == ZEP_Y8 ? ZEP_Y8 : ZEP_YUV422, 16, 8);
  const uint32_t jpeg = compressed(model);
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(jpeg, ZEP_LINES_THIS_STRIP, height);
  ZEP_JPEG_malloc_N_bytes_data(jpeg, static_cast<uint32_t>(stream.size()));
  if (!stream.empty())
    std::memcpy(ZEP_image_get_ptr(jpeg, ZEP_JPEG_BUFFER_PTR), stream.data(), stream.size());
  return jpeg;
}

Bytes stream_of(uint32_t jpeg_image) {
  const auto *data =
      static_cast<const uint8_t *>(ZEP_image_get_ptr(jpeg_image, ZEP_JPEG_BUFFER_PTR));
  const uint32_t length = ZEP_image_get_parameter(jpeg_image, ZEP_JPEG_LENGTH);
  return data == nullptr ? Bytes{} : Bytes(data, data + length);
}

void write_entropy_seed(const std::string &name, uint16_t type, uint32_t width, uint32_t height,
                        bool rgb_output, const Bytes &stream) {
  const int selector = fuzz::entropy_selector(type, width, height, rgb_output);
  if (selector < 0) return;
  const std::filesystem::path folder = std::filesystem::path(VRC_SEED_DIR) / "jpeg_entropy_fuzz";
  std::filesystem::create_directories(folder);
  std::ofstream out(folder / name, std::ios::binary);
  out.put(static_cast<char>(selector));
  out.write(reinterpret_cast<const char *>(stream.data()),
            static_cast<std::streamsize>(stream.size()));
}

}  // namespace vrc::test
