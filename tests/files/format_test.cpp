// Format detection by content, the read and write dispatch, and raw pixel data written whole or
// strip by strip. Also writes the seed corpora that the fuzz targets start from.
#include "files/files_support.h"
#include "files/jpeg_support.h"
#include "imaging/files/file_registry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <utility>

namespace {

using vrc::test::Bytes;
using vrc::test::ErrorCapture;
using vrc::test::ScopedImage;
using vrc::test::TempDir;
using vrc::test::get;

struct Sample {
  const char *name;
  Bytes bytes;
  uint32_t format;
};

Bytes tiff_start(char order, uint16_t first_type) {
  Bytes file = {uint8_t(order), uint8_t(order), 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0};
  const bool big = order == 'M';
  auto put16 = [&](std::size_t at, uint16_t v) { big ? ZEP_mput_ui16m(&file[at], v) : ZEP_mput_ui16i(&file[at], v); };
  auto put32 = [&](std::size_t at, uint32_t v) { big ? ZEP_mput_ui32m(&file[at], v) : ZEP_mput_ui32i(&file[at], v); };
  put16(2, 42);
  put32(4, 8);
  put16(8, 1);        // one entry
  put16(10, 256);     // tag
  put16(12, first_type);
  put32(14, 1);
  return file;
}

class Detection : public testing::TestWithParam<Sample> {};

TEST_P(Detection, RecognisesTheFileByItsFirstBytes) {
  ErrorCapture errors;
  TempDir folder;
  const std::string path = folder.file("sample.bin");
  vrc::test::write_file(path, GetParam().bytes);
  vrc::test::write_seed("format_detect_fuzz", std::string(GetParam().name) + ".bin", GetParam().bytes);
  EXPECT_EQ(ZEP_image_find_file_format(path.c_str()), GetParam().format);
  EXPECT_EQ(errors.count(), 0u);
}

Bytes with_tail(Bytes head, std::size_t size) {
  head.resize(size, 0);
  return head;
}

INSTANTIATE_TEST_SUITE_P(
    Samples, Detection,
    testing::Values(Sample{"tiff_big_endian", tiff_start('M', 3), ZEP_FILE_TIFF},
                    Sample{"tiff_little_endian", tiff_start('I', 4), ZEP_FILE_TIFF},
                    Sample{"tiff_type_12", tiff_start('I', 12), ZEP_FILE_UNKNOWN},
                    Sample{"tiff_type_0", tiff_start('M', 0), ZEP_FILE_UNKNOWN},
                    Sample{"tiff_mixed_marks", [] { Bytes b = tiff_start('I', 3); b[1] = 'M'; return b; }(), ZEP_FILE_TIFF},
                    Sample{"tiff_magic_only", {'I', 'I', 42, 0}, ZEP_FILE_UNKNOWN},
                    Sample{"tiff_directory_past_end", {'M', 'M', 0, 42, 0x7F, 0, 0, 0}, ZEP_FILE_UNKNOWN},
                    Sample{"jpeg", {0xFF, 0xD8, 0xFF, 0xE0}, ZEP_FILE_JPEG},
                    Sample{"eps", {'%', '!', 'P', 'S', '-'}, ZEP_FILE_EPS},
                    Sample{"bmp", with_tail({'B', 'M', 9, 9, 9, 9}, 54), ZEP_FILE_BMP},
                    Sample{"bmp_reserved_set", with_tail({'B', 'M', 0, 0, 0, 0, 0, 0, 1, 0}, 54), ZEP_FILE_UNKNOWN},
                    Sample{"bmp_cut_short", {'B', 'M', 0, 0, 0, 0, 0}, ZEP_FILE_UNKNOWN},
                    Sample{"empty", {}, ZEP_FILE_UNKNOWN},
                    Sample{"text", {'h', 'e', 'l', 'l', 'o'}, ZEP_FILE_UNKNOWN}),
    [](const testing::TestParamInfo<Sample> &param_info) { return std::string(param_info.param.name); });

TEST(Detection, MissingFileFailsToOpenInTheDetectorAndEveryReader) {
  ErrorCapture errors;
  ScopedImage image;
  const std::string missing = "/nonexistent/file";
  const std::pair<const char *, std::function<uint32_t()>> calls[] = {
      {"ZEP_image_find_file_format", [&] { return ZEP_image_find_file_format(missing.c_str()); }},
      {"ZEP_read_BMP_file", [&] { return vrc::test::read_bmp(image, missing); }},
      {"ZEP_read_TIFF_file", [&] { return vrc::test::read_tiff(image, missing); }},
      {"ZEP_read_EPS_file", [&] { return vrc::test::read_eps(image, missing); }},
  };
  for (const auto &[function, call] : calls) {
    EXPECT_EQ(call(), ZEP_ERR_OPEN) << function;
    EXPECT_EQ(errors.last().function, function);
    EXPECT_EQ(errors.last().message, "Failed to open file");
  }
}

TEST(Dispatch, ReadsEveryFormatByDetectionOnly) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage source;
  vrc::test::make_pattern_image(source, 6, 3, ZEP_RGB24);
  for (const vrc::files::FileFormatRow &row : vrc::files::file_format_rows()) {
    // JPEG files hold JPEG images, lossily: their dispatch is tested with the JPEG files.
    if (row.read == nullptr || row.write == nullptr || row.code == ZEP_FILE_JPEG) continue;
    const uint16_t format = row.code;
    const std::string path = folder.file("image" + std::to_string(format));
    ZEP_image_set_outfilename(source, path.c_str());
    ASSERT_EQ(ZEP_image_write(source, 0, format, ZEP_ACTION_DATA), 0u) << format;
    ScopedImage copy;
    ZEP_image_set_infilename(copy, path.c_str());
    ZEP_image_set_parameter(copy, ZEP_LINES_THIS_STRIP, 3);
    ASSERT_EQ(ZEP_image_read(copy, 0, ZEP_ACTION_DATA), 0u) << format;
    EXPECT_EQ(get(copy, ZEP_IMAGE_TYPE), unsigned{ZEP_RGB24});
    EXPECT_EQ(vrc::test::line_bytes(copy, 2, 18), vrc::test::line_bytes(source, 2, 18)) << format;

    // A named format is never read, even the right one.
    EXPECT_EQ(ZEP_image_read(copy, format, ZEP_ACTION_DATA), ZEP_ERR_UNSUPPORTED);
    EXPECT_EQ(errors.last().function, "ZEP_image_read");
    EXPECT_EQ(errors.last().message, "Unsupported/unrecognized image format");
  }
}

TEST(Dispatch, UnknownFormatsAndUnreadableFiles) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  ZEP_ImageMake(image, 2, 2, ZEP_Y8, 0);
  ZEP_image_set_outfilename(image, folder.file("x").c_str());
  EXPECT_EQ(ZEP_image_write(image, 0, 2, ZEP_ACTION_DATA), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().function, "ZEP_image_write");
  EXPECT_EQ(errors.last().message, "Unsupported/unrecognized image format");

  vrc::test::write_file(folder.file("text"), std::string("plain text"));
  ZEP_image_set_infilename(image, folder.file("text").c_str());
  EXPECT_EQ(ZEP_image_read(image, 0, ZEP_ACTION_DATA), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "Unsupported/unrecognized image format");

  ZEP_image_set_infilename(image, folder.file("missing").c_str());
  errors.clear();
  EXPECT_EQ(ZEP_image_read(image, 0, ZEP_ACTION_DATA), ZEP_ERR_OPEN);
  ASSERT_EQ(errors.count(), 2u);
  EXPECT_EQ(errors.all()[0].function, "ZEP_image_find_file_format");
  EXPECT_EQ(errors.all()[1].function, "ZEP_image_read");
  EXPECT_EQ(errors.all()[1].message, "Failed to recognise file format");
}

TEST(RawData, LinesAsStoredExceptSixteenBitSamplesWithoutPadding) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage y16;
  ZEP_image_set_parameter(y16, ZEP_LINE_ALIGN, 4);
  vrc::test::make_pattern_image(y16, 3, 2, ZEP_Y16);
  ASSERT_EQ(get(y16, ZEP_BYTES_PER_LINE), 8u);
  ZEP_image_set_outfilename(y16, folder.file("y16.raw").c_str());
  ASSERT_EQ(ZEP_image_write(y16, 0, ZEP_FILE_RAW, ZEP_ACTION_DATA), 0u);
  Bytes expected = vrc::test::line_bytes(y16, 0, 6);
  const Bytes second = vrc::test::line_bytes(y16, 1, 6);
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(vrc::test::read_file(folder.file("y16.raw")), expected);

  ScopedImage rgb;
  vrc::test::make_pattern_image(rgb, 3, 2, ZEP_RGB24);
  ZEP_image_set_outfilename(rgb, folder.file("rgb.raw").c_str());
  ASSERT_EQ(ZEP_write_raw_data_file(rgb, ZEP_ACTION_DATA), 0u);
  EXPECT_EQ(vrc::test::read_file(folder.file("rgb.raw")), vrc::test::line_bytes(rgb, 0, 20));
}

TEST(RawData, StripsGoToTheSameFileUntilClosed) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage whole;
  vrc::test::make_pattern_image(whole, 4, 5, ZEP_Y8);
  ScopedImage strip;
  ZEP_image_set_outfilename(strip, folder.file("strips.raw").c_str());
  for (uint32_t first = 0; first < 5; first += 2) {
    const uint32_t lines = std::min(2u, 5 - first);
    ZEP_ImageMake(strip, 4, 5, ZEP_Y8, 0);
    ZEP_image_set_parameter(strip, ZEP_LINES_THIS_STRIP, lines);
    ZEP_image_check(strip);
    auto *data = static_cast<uint8_t *>(ZEP_image_get_ptr(strip, ZEP_DATA_PTR));
    const Bytes part = vrc::test::line_bytes(whole, first, 4 * lines);
    std::copy(part.begin(), part.end(), data);
    ASSERT_EQ(ZEP_write_raw_data_file(strip, ZEP_ACTION_DATA), 0u);
  }
  ASSERT_EQ(ZEP_write_raw_data_file(strip, ZEP_ACTION_CLOSE), 0u);
  EXPECT_EQ(vrc::test::read_file(folder.file("strips.raw")), vrc::test::line_bytes(whole, 0, 20));
}

// Every writer through the dispatch: formats it does not hold (the code or-ed in where the
// writer does so), an image that fails its check, and a file that cannot be created.
TEST(Writers, RefuseWhatTheyCannotWrite) {
  ErrorCapture errors;
  TempDir folder;
  const struct {
    uint16_t format;
    uint16_t type;
    const char *file;
    uint32_t code;
    const char *function;
    const char *message;
  } cases[] = {
      {ZEP_FILE_BMP, ZEP_Y16, "x", ZEP_ERR_UNSUPPORTED | ZEP_Y16, "ZEP_write_BMP_file", "Unsupported image format"},
      {ZEP_FILE_BMP, ZEP_NONE, "x", (ZEP_ERR_CORRUPT | 0x10), "ZEP_write_BMP_file", "Corrupt image"},
      {ZEP_FILE_BMP, ZEP_RGB24, "no/x", ZEP_ERR_OPEN, "ZEP_write_BMP_file", "Failed to create file"},
      {ZEP_FILE_TIFF, ZEP_RGB16, "x", ZEP_ERR_UNSUPPORTED | ZEP_RGB16, "ZEP_write_TIFF_file", "Unsupported image format"},
      {ZEP_FILE_TIFF, ZEP_PALETTED, "x", ZEP_ERR_UNSUPPORTED | 16, "ZEP_write_TIFF_file", "Unsupported palette/colourmap size"},
      {ZEP_FILE_EPS, ZEP_RGB16, "x", ZEP_ERR_UNSUPPORTED | ZEP_RGB16, "ZEP_write_EPS_file", "Unsupported image format"},
      {ZEP_FILE_EPS, ZEP_Y8, "no/x", ZEP_ERR_OPEN, "ZEP_write_EPS_file", "Failed to create file"},
      {ZEP_FILE_RAW, ZEP_CMYK32, "x", ZEP_ERR_UNSUPPORTED, "ZEP_write_raw_data_file", "Unsupported image format"},
      {ZEP_FILE_RAW, ZEP_Y8, "no/x", ZEP_ERR_OPEN, "ZEP_write_raw_data_file", "Failed to create file"},
  };
  for (const auto &c : cases) {
    ScopedImage image;
    if (c.type != ZEP_NONE) ZEP_ImageMake(image, 2, 2, c.type, 1);
    if (c.type == ZEP_PALETTED) ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 16);  // TIFF needs 256
    ZEP_image_set_outfilename(image, folder.file(c.file).c_str());
    EXPECT_EQ(ZEP_image_write(image, 0, c.format, ZEP_ACTION_DATA), c.code) << c.function << " " << c.type;
    EXPECT_EQ(errors.last().function, c.function);
    EXPECT_EQ(errors.last().message, c.message);
  }
  // An empty strip is no raw data and no failure.
  ScopedImage empty;
  ZEP_ImageMake(empty, 2, 2, ZEP_Y8, 0);
  ZEP_image_set_parameter(empty, ZEP_LINES_THIS_STRIP, 0);
  EXPECT_EQ(ZEP_write_raw_data_file(empty, ZEP_ACTION_DATA), 0u);
}

// Well-formed seeds for every reader, in every format each one reads.
TEST(FuzzSeeds, WrittenForEveryReader) {
  ErrorCapture errors;
  TempDir folder;
  struct Writer {
    const char *target;
    const char *extension;
    uint16_t format;
    std::vector<uint16_t> types;
  };
  const Writer writers[] = {
      {"bmp_read_fuzz", "bmp", ZEP_FILE_BMP, {ZEP_Y8, ZEP_PALETTED, ZEP_RGB24}},
      {"tiff_read_fuzz", "tif", ZEP_FILE_TIFF, {ZEP_Y8, ZEP_Y16, ZEP_PALETTED, ZEP_RGB24, ZEP_YUV422, ZEP_Y1}},
      {"eps_read_fuzz", "eps", ZEP_FILE_EPS, {ZEP_Y8, ZEP_PALETTED, ZEP_RGB24, ZEP_Y1}},
  };
  for (const Writer &writer : writers) {
    for (uint16_t type : writer.types) {
      ScopedImage image;
      vrc::test::make_pattern_image(image, 5, 3, type);
      if (type == ZEP_PALETTED) ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 256);
      const std::string path = folder.file("seed");
      ZEP_image_set_outfilename(image, path.c_str());
      ASSERT_EQ(ZEP_image_write(image, 0, writer.format, ZEP_ACTION_DATA), 0u);
      const Bytes file = vrc::test::read_file(path);
      const std::string name = "type" + std::to_string(type) + "." + writer.extension;
      vrc::test::write_seed(writer.target, name, file);
      vrc::test::write_seed("format_detect_fuzz", std::string(writer.target) + "_" + name, file);
    }
  }
  EXPECT_EQ(errors.count(), 0u);
}

// The C API's view of the registry is its rows, in order, and every writer stores every pixel
// type its row names.
TEST(Registry, DescribesEveryRowAndWritesEveryStoredType) {
  ErrorCapture errors;
  TempDir folder;
  const auto rows = vrc::files::file_format_rows();
  for (uint32_t i = 0; i < rows.size(); ++i) {
    const ZEP_FILE_FORMAT_INFO *info = ZEP_file_format_info(i);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->code, rows[i].code);
    EXPECT_STREQ(info->name, rows[i].name);
    EXPECT_EQ(info->readable, rows[i].read != nullptr ? 1u : 0u) << info->name;
    EXPECT_EQ(info->writable, rows[i].write != nullptr ? 1u : 0u) << info->name;
    for (uint16_t type : rows[i].stored_types) {
      EXPECT_EQ(ZEP_file_format_stores_type(info->code, type), 1u);
      ScopedImage picture;
      vrc::test::make_pattern_image(picture, 6, 3, type);
      // A JPEG file is written from a JPEG image: the picture is compressed first.
      vrc::test::ScopedJpeg jpeg;
      const bool compressed = info->code == ZEP_FILE_JPEG;
      if (compressed) ASSERT_EQ(vrc::test::compress(picture, jpeg, 16), 0u) << type;
      const uint32_t written = compressed ? static_cast<uint32_t>(jpeg) : static_cast<uint32_t>(picture);
      ZEP_image_set_outfilename(written, folder.file("stored").c_str());
      EXPECT_EQ(ZEP_image_write(written, 0, info->code, ZEP_ACTION_DATA), 0u)
          << info->name << " " << type;
    }
  }
  EXPECT_EQ(ZEP_file_format_info(static_cast<uint32_t>(rows.size())), nullptr);
  EXPECT_EQ(ZEP_file_format_stores_type(ZEP_FILE_BMP, ZEP_Y16), 0u);
  EXPECT_EQ(ZEP_file_format_stores_type(ZEP_FILE_UNKNOWN, ZEP_Y8), 0u);
  EXPECT_EQ(errors.count(), 0u);
}

std::size_t open_descriptors() {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                                                std::filesystem::directory_iterator()));
}

// Files that calls leave open (a header-only read, a write without data, a raw strip of a taller
// image) stay open in their slots until every image is destroyed.
TEST(OpenFileSlots, CloseWhenEveryImageIsDestroyed) {
  ErrorCapture errors;
  TempDir folder;
  ASSERT_EQ(ZEP_image_destroy(ZEP_ALL_IMAGES), 0u);  // slots emptied of earlier tests' files
  ScopedImage source;
  vrc::test::make_pattern_image(source, 4, 4, ZEP_Y8);
  ASSERT_EQ(vrc::test::write_bmp(source, folder.file("in.bmp")), 0u);
  const std::size_t before = open_descriptors();

  ScopedImage header;
  EXPECT_EQ(vrc::test::read_bmp(header, folder.file("in.bmp"), 0), 0u);
  EXPECT_EQ(vrc::test::write_tiff(source, folder.file("out.tif"), 0), 0u);
  ZEP_image_set_parameter(source, ZEP_LINES_THIS_STRIP, 2);
  ASSERT_EQ(ZEP_image_check(source), 0u);
  ZEP_image_set_outfilename(source, folder.file("out.raw").c_str());
  EXPECT_EQ(ZEP_write_raw_data_file(source, ZEP_ACTION_DATA), 0u);
  EXPECT_EQ(open_descriptors(), before + 3);

  ASSERT_EQ(ZEP_image_destroy(ZEP_ALL_IMAGES), 0u);
  EXPECT_EQ(open_descriptors(), before);
  EXPECT_EQ(errors.count(), 0u);
}

}  // namespace
