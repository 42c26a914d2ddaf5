// Test support for JPEG files.
#include "files/jpeg_support.h"

#include "imaging/core/jpeg_record.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>

namespace vrc::test {

Picture smooth_picture(uint32_t width, uint32_t height, uint32_t channels) {
  Picture picture{width, height, channels, Bytes(std::size_t{width} * height * channels)};
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const double ripple = 20.0 * std::sin(x * 0.21) * std::cos(y * 0.17);
      const double across = width > 1 ? 180.0 * x / (width - 1) : 90.0;
      const double down = height > 1 ? 160.0 * y / (height - 1) : 80.0;
      const double values[3] = {30 + across + ripple, 40 + down - ripple,
                                220 - 0.5 * (across + down) + ripple};
      for (uint32_t c = 0; c < channels; ++c) {
        const double value = channels == 1 ? 0.5 * (values[0] + values[1]) : values[c];
        picture.samples[(std::size_t{y} * width + x) * channels + c] =
            static_cast<uint8_t>(std::lround(std::fmin(255.0, std::fmax(0.0, value))));
      }
    }
  }
  return picture;
}

namespace {

// Makes `image` a whole-image strip of `type` and copies rows of `row_bytes` bytes into it.
void fill_rows(uint32_t image, uint32_t width, uint32_t height, uint16_t type, const uint8_t *rows,
               uint32_t row_bytes) {
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, width);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, height);
  ZEP_image_free_data(image);
  ASSERT_EQ(ZEP_image_malloc_a_strip(image), 0u);
  auto &record = *static_cast<ZEP_IMAGE *>(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR));
  for (uint32_t y = 0; y < height; ++y)
    std::copy_n(rows + std::size_t{y} * row_bytes, row_bytes,
                record.data + std::size_t{y} * record.bytes_per_line);
}

}  // namespace

void fill_image(uint32_t image, const Picture &picture, uint16_t type) {
  if (picture.channels == 1 || type == ZEP_RGB24) {
    fill_rows(image, picture.width, picture.height, picture.channels == 1 ? ZEP_Y8 : ZEP_RGB24,
              picture.samples.data(), picture.width * picture.channels);
    return;
  }
  ScopedImage rgb;
  fill_rows(rgb, picture.width, picture.height, ZEP_RGB24, picture.samples.data(),
            picture.width * 3);
  ASSERT_EQ(ZEP_image_convert(rgb, image, type, 0, ZEP_MODE_NEXT_STRIP), 0u);
}

Picture picture_of(uint32_t image) {
  const auto *record =
      static_cast<const ZEP_IMAGE *>(ZEP_image_get_ptr(image, ZEP_IMAGE_RECORD_PTR));
  ScopedImage converted;
  if (record->type != ZEP_Y8 && record->type != ZEP_RGB24) {
    EXPECT_EQ(ZEP_image_convert(image, converted, ZEP_RGB24, 0, ZEP_MODE_NEXT_STRIP), 0u);
    record = static_cast<const ZEP_IMAGE *>(ZEP_image_get_ptr(converted, ZEP_IMAGE_RECORD_PTR));
  }
  Picture picture{record->width, record->height, record->type == ZEP_Y8 ? 1u : 3u, {}};
  const uint32_t row = picture.width * picture.channels;
  for (uint32_t y = 0; y < picture.height && record->data != nullptr; ++y) {
    const uint8_t *start = record->data + std::size_t{y} * record->bytes_per_line;
    picture.samples.insert(picture.samples.end(), start, start + row);
  }
  return picture;
}

double psnr(const Picture &a, const Picture &b) {
  EXPECT_EQ(a.width, b.width);
  EXPECT_EQ(a.height, b.height);
  EXPECT_EQ(a.channels, b.channels);
  if (a.samples.size() != b.samples.size() || a.samples.empty()) return 0.0;
  double squared = 0;
  for (std::size_t i = 0; i < a.samples.size(); ++i) {
    const double difference = double(a.samples[i]) - double(b.samples[i]);
    squared += difference * difference;
  }
  if (squared == 0) return std::numeric_limits<double>::infinity();
  return 10.0 * std::log10(255.0 * 255.0 * a.samples.size() / squared);
}

Picture read_pnm(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  std::string magic;
  Picture picture;
  uint32_t maxval = 0;
  in >> magic >> picture.width >> picture.height >> maxval;
  in.get();
  if (!in || maxval != 255 || (magic != "P5" && magic != "P6")) return {};
  picture.channels = magic == "P5" ? 1 : 3;
  picture.samples.resize(std::size_t{picture.width} * picture.height * picture.channels);
  in.read(reinterpret_cast<char *>(picture.samples.data()),
          static_cast<std::streamsize>(picture.samples.size()));
  return in ? picture : Picture{};
}

void write_pnm(const std::string &path, const Picture &picture) {
  std::ostringstream header;
  header << (picture.channels == 1 ? "P5" : "P6") << "\n"
         << picture.width << " " << picture.height << "\n255\n";
  const std::string text = header.str();
  Bytes bytes(text.begin(), text.end());
  bytes.insert(bytes.end(), picture.samples.begin(), picture.samples.end());
  write_file(path, bytes);
}

Picture djpeg(const std::string &jpeg_path, const std::string &options) {
  const std::string out = jpeg_path + ".pnm";
  int status = 0;
  const std::string said = run_command(
      "djpeg " + options + " -pnm -outfile " + out + " " + jpeg_path + " 2>&1", &status);
  EXPECT_EQ(status, 0) << said;
  return read_pnm(out);
}

Bytes cjpeg(const Picture &picture, const std::string &options) {
  TempDir folder;
  write_pnm(folder.file("in.pnm"), picture);
  int status = 0;
  const std::string said = run_command("cjpeg " + options + " -outfile " + folder.file("out.jpg") +
                                           " " + folder.file("in.pnm") + " 2>&1",
                                       &status);
  EXPECT_EQ(status, 0) << said;
  return read_file(folder.file("out.jpg"));
}

uint32_t compress(uint32_t source, uint32_t jpeg, uint16_t quality) {
  const uint32_t status = ZEP_JPEG_set_Quality_factor(jpeg, quality);
  return status != 0 ? status : ZEP_JPEG_compress(source, jpeg);
}

Bytes jpeg_file(uint16_t type, uint32_t width, uint32_t height, uint16_t quality) {
  TempDir folder;
  ScopedImage source;
  ScopedJpeg jpeg;
  fill_image(source, smooth_picture(width, height, type == ZEP_Y8 ? 1 : 3), type);
  EXPECT_EQ(compress(source, jpeg, quality), 0u);
  EXPECT_EQ(write_jpeg(jpeg, folder.file("good.jpg")), 0u);
  return read_file(folder.file("good.jpg"));
}

Picture decode(uint32_t jpeg) {
  ScopedImage decoded;
  const auto *record =
      static_cast<const ZEP_IMAGE *>(ZEP_image_get_ptr(jpeg, ZEP_IMAGE_RECORD_PTR));
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_TYPE, record->type == ZEP_Y8 ? ZEP_Y8 : ZEP_RGB24);
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_WIDTH, record->width);
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_HEIGHT, record->height);
  ZEP_image_set_parameter(decoded, ZEP_LINES_THIS_STRIP, record->height);
  EXPECT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0u);
  return picture_of(decoded);
}

uint32_t write_jpeg(uint32_t jpeg, const std::string &path) {
  ZEP_image_set_outfilename(jpeg, path.c_str());
  return ZEP_JPEG_file_write(jpeg);
}

uint32_t read_jpeg(uint32_t jpeg, const std::string &path) {
  ZEP_image_set_infilename(jpeg, path.c_str());
  return ZEP_JPEG_file_read(jpeg);
}

}  // namespace vrc::test
