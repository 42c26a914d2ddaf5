// BMP files and buffers: the stored layout byte for byte, round trips, Pillow in both directions,
// the failure table, and device-independent-bitmap conversion.
#include "files/files_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

namespace {

using vrc::test::BadFile;
using vrc::test::Bytes;
using vrc::test::ErrorCapture;
using vrc::test::ScopedImage;
using vrc::test::TempDir;
using vrc::test::get;
using vrc::test::read_bmp;
using vrc::test::write_bmp;

uint32_t le32(const Bytes &bytes, std::size_t at) { return ZEP_mget_ui32i(&bytes[at]); }
uint16_t le16(const Bytes &bytes, std::size_t at) { return ZEP_mget_ui16i(&bytes[at]); }

class BmpLayout : public testing::TestWithParam<std::tuple<uint16_t, uint32_t>> {
 protected:
  ErrorCapture errors;
  TempDir folder;
};

TEST_P(BmpLayout, HeaderAndRowsAreStoredBottomUp) {
  const auto [type, width] = GetParam();
  const uint32_t height = 3;
  ScopedImage image;
  vrc::test::make_pattern_image(image, width, height, type);
  const std::string path = folder.file("layout.bmp");
  ASSERT_EQ(write_bmp(image, path), 0u);
  const Bytes file = vrc::test::read_file(path);

  const bool eight_bit = type == ZEP_Y8 || type == ZEP_PALETTED;
  const uint32_t offset = eight_bit ? 1078 : 54;
  const uint32_t row = eight_bit ? (width + 3) / 4 * 4 : (3 * width + 3) / 4 * 4;
  ASSERT_GE(file.size(), 54u);
  EXPECT_EQ(file[0], 'B');
  EXPECT_EQ(file[1], 'M');
  EXPECT_EQ(le32(file, 2), height * row + offset);
  EXPECT_EQ(le32(file, 6), 0u);
  EXPECT_EQ(le32(file, 10), offset);
  EXPECT_EQ(le32(file, 14), 40u);
  EXPECT_EQ(le32(file, 18), width);
  EXPECT_EQ(le32(file, 22), height);
  EXPECT_EQ(le16(file, 26), 1u);
  EXPECT_EQ(le16(file, 28), eight_bit ? 8u : 24u);
  EXPECT_EQ(le32(file, 30), 0u);
  EXPECT_EQ(le32(file, 34), height * row);
  EXPECT_EQ(Bytes(file.begin() + 38, file.begin() + 54), Bytes(16, 0));

  // BGRX32 rows carry no padding: they are shorter than the header says.
  const uint32_t stored_row = type == ZEP_BGRX32 ? 3 * width : row;
  ASSERT_EQ(file.size(), offset + height * stored_row);
  for (uint32_t stored = 0; stored < height; ++stored) {
    const uint32_t line = height - 1 - stored;
    const Bytes got(file.begin() + offset + stored * stored_row, file.begin() + offset + (stored + 1) * stored_row);
    Bytes expected;
    if (type == ZEP_RGB24 || type == ZEP_BGRX32) {
      expected = vrc::test::swap_red_blue(vrc::test::line_rgb(image, line));
      expected.resize(stored_row, 0);
    } else {
      // 8-bit and BGR24 rows are the stored row's length straight from the line start.
      const uint32_t bytes_per_line = get(image, ZEP_BYTES_PER_LINE);
      const auto *data = static_cast<const uint8_t *>(ZEP_image_get_ptr(image, ZEP_DATA_PTR));
      const uint32_t strip = bytes_per_line * height;
      for (uint32_t i = 0; i < stored_row; ++i) {
        const uint32_t at = line * bytes_per_line + i;
        expected.push_back(at < strip ? data[at] : 0);
      }
    }
    EXPECT_EQ(got, expected) << "stored row " << stored;
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, BmpLayout,
                         testing::Combine(testing::Values(ZEP_Y8, ZEP_PALETTED, ZEP_RGB24, ZEP_BGR24, ZEP_BGRX32),
                                          testing::Values(1u, 2u, 4u, 5u)));

TEST(BmpWrite, GreyImageGetsAGreyColourMap) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  ZEP_ImageMake(image, 4, 1, ZEP_Y8, 7);
  ASSERT_EQ(write_bmp(image, folder.file("grey.bmp")), 0u);
  const Bytes file = vrc::test::read_file(folder.file("grey.bmp"));
  for (uint32_t entry = 0; entry < 256; ++entry) {
    ASSERT_EQ(le32(file, 54 + 4 * entry), entry * 0x010101u) << entry;
    ASSERT_EQ(ZEP_cmap_get_RGB_colour(image, static_cast<uint16_t>(entry)), entry * 0x010101u);
  }
  EXPECT_EQ(get(image, ZEP_CMAP_COLOURS), 256u);
}

class BmpRoundTrip : public testing::TestWithParam<std::tuple<uint16_t, uint16_t, uint32_t>> {};

TEST_P(BmpRoundTrip, ReadsBackThePixels) {
  const auto [written, read_as, width] = GetParam();
  ErrorCapture errors;
  TempDir folder;
  ScopedImage source;
  vrc::test::make_pattern_image(source, width, 5, written);
  ASSERT_EQ(write_bmp(source, folder.file("trip.bmp")), 0u);
  ScopedImage copy;
  ASSERT_EQ(read_bmp(copy, folder.file("trip.bmp")), 0u);
  ASSERT_EQ(get(copy, ZEP_IMAGE_TYPE), read_as);
  ASSERT_EQ(get(copy, ZEP_IMAGE_WIDTH), width);
  ASSERT_EQ(get(copy, ZEP_IMAGE_HEIGHT), 5u);
  ASSERT_EQ(get(copy, ZEP_LINES_THIS_STRIP), 5u);
  for (uint32_t line = 0; line < 5; ++line) {
    if (read_as == ZEP_PALETTED) {
      EXPECT_EQ(vrc::test::line_bytes(copy, line, width), vrc::test::line_bytes(source, line, width));
    } else {
      EXPECT_EQ(vrc::test::line_bytes(copy, line, 3 * width), vrc::test::line_rgb(source, line)) << "line " << line;
    }
  }
  if (written == ZEP_PALETTED) {
    for (uint16_t entry = 0; entry < 256; ++entry) {
      ASSERT_EQ(ZEP_cmap_get_RGB_colour(copy, entry), ZEP_cmap_get_RGB_colour(source, entry));
    }
  }
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Formats, BmpRoundTrip,
                         testing::Values(std::make_tuple(ZEP_PALETTED, ZEP_PALETTED, 5u),
                                         std::make_tuple(ZEP_Y8, ZEP_PALETTED, 6u),
                                         std::make_tuple(ZEP_RGB24, ZEP_RGB24, 3u),
                                         std::make_tuple(ZEP_RGB24, ZEP_RGB24, 4u),
                                         std::make_tuple(ZEP_BGR24, ZEP_RGB24, 4u),
                                         std::make_tuple(ZEP_BGRX32, ZEP_RGB24, 4u)));

TEST(BmpRead, HeaderOnlyForOtherActionsAndForZeroHeight) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage source;
  vrc::test::make_pattern_image(source, 6, 4, ZEP_RGB24);
  ASSERT_EQ(write_bmp(source, folder.file("h.bmp")), 0u);
  ScopedImage header;
  EXPECT_EQ(read_bmp(header, folder.file("h.bmp"), ZEP_ACTION_CLOSE), 0u);
  EXPECT_EQ(get(header, ZEP_IMAGE_WIDTH), 6u);
  EXPECT_EQ(get(header, ZEP_IMAGE_TYPE), unsigned{ZEP_RGB24});
  EXPECT_EQ(ZEP_image_get_ptr(header, ZEP_DATA_PTR), nullptr);
  EXPECT_EQ(read_bmp(header, folder.file("h.bmp"), 7), 0u);
  EXPECT_EQ(ZEP_image_get_ptr(header, ZEP_DATA_PTR), nullptr);
  ScopedImage flat;
  ZEP_ImageMake(flat, 3, 1, ZEP_RGB24, 0);
  ZEP_image_set_parameter(flat, ZEP_IMAGE_HEIGHT, 0);
  ASSERT_EQ(write_bmp(flat, folder.file("flat.bmp")), 0u);
  EXPECT_EQ(read_bmp(header, folder.file("flat.bmp")), 0u);
  EXPECT_EQ(get(header, ZEP_IMAGE_HEIGHT), 0u);
  EXPECT_EQ(ZEP_image_get_ptr(header, ZEP_DATA_PTR), nullptr);
}

TEST(BmpRead, FewerColourTableEntriesStillReadFromTheFixedOffsets) {
  ErrorCapture errors;
  TempDir folder;
  // A 4 x 300 8-bit file with a 2-entry colour table, its rows at 62 (file row r holds r + 1):
  // the reader takes 256 entries from 54 and the rows from 1078 all the same, so the first rows
  // it reads are file rows 254 onwards, and the rows past the end of the file read as zeros.
  const uint32_t width = 4;
  const uint32_t height = 300;
  Bytes file(62 + width * height, 0);
  file[0] = 'B';
  file[1] = 'M';
  ZEP_mput_ui32i(&file[10], 62);
  ZEP_mput_ui32i(&file[14], 40);
  ZEP_mput_ui32i(&file[18], width);
  ZEP_mput_ui32i(&file[22], height);
  ZEP_mput_ui16i(&file[26], 1);
  ZEP_mput_ui16i(&file[28], 8);
  file[58] = 0x30;  // entry 1: B, G, R
  file[59] = 0x20;
  file[60] = 0x10;
  for (uint32_t row = 0; row < height; ++row) std::fill_n(file.begin() + 62 + row * width, width, uint8_t(row + 1));
  vrc::test::write_file(folder.file("short-table.bmp"), file);
  ScopedImage image;
  ASSERT_EQ(read_bmp(image, folder.file("short-table.bmp")), 0u);
  EXPECT_EQ(errors.count(), 0u);
  EXPECT_EQ(ZEP_cmap_get_RGB_colour(image, 1), 0x102030u);
  EXPECT_EQ(ZEP_cmap_get_RGB_colour(image, 2), 0x010101u);  // the bytes of file row 0
  EXPECT_EQ(vrc::test::line_bytes(image, height - 1, width), Bytes(width, 255));      // file row 254
  EXPECT_EQ(vrc::test::line_bytes(image, height - 46, width), Bytes(width, 300 % 256));  // file row 299
  EXPECT_EQ(vrc::test::line_bytes(image, height - 47, width), Bytes(width, 0));
}

class BmpReadFailure : public testing::TestWithParam<BadFile> {};

TEST_P(BmpReadFailure, ReportsTheDefect) {
  vrc::test::expect_read_failure(vrc::test::kBmpFormat, 5, 4, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Defects, BmpReadFailure,
    testing::Values(
        BadFile{"depth_16", [](Bytes &f) { ZEP_mput_ui16i(&f[28], 16); }, ZEP_ERR_UNSUPPORTED, "Unsupported image depth"},
        BadFile{"rle8", [](Bytes &f) { ZEP_mput_ui32i(&f[30], 1); }, ZEP_ERR_UNSUPPORTED, "Compressed images not supported"},
        BadFile{"compression_3", [](Bytes &f) { ZEP_mput_ui32i(&f[30], 3); }, ZEP_ERR_UNSUPPORTED,
               "Unrecognized compression type"},
        BadFile{"huge_height", [](Bytes &f) { ZEP_mput_ui32i(&f[22], 0x7FFFFFFF); }, ZEP_ERR_UNEXPECTED,
               "Image data runs past end of file"},
        BadFile{"top_down_height", [](Bytes &f) { ZEP_mput_ui32i(&f[22], 0xFFFFFFFC); }, ZEP_ERR_UNEXPECTED,
               "Image data runs past end of file"},
        BadFile{"width_past_file", [](Bytes &f) { ZEP_mput_ui32i(&f[18], 0x01000000); }, ZEP_ERR_UNEXPECTED,
               "Image data runs past end of file"},
        BadFile{"line_length_overflows", [](Bytes &f) { ZEP_mput_ui32i(&f[18], 0x60000000); }, (ZEP_ERR_CORRUPT | 0x11),
               "ZEP_image_check failed"},
        BadFile{"cut_before_bits_per_pixel", [](Bytes &f) { f.erase(f.begin() + 28, f.end()); }, ZEP_ERR_UNSUPPORTED, "Unsupported image depth"}),
    vrc::test::bad_file_name);

TEST(BmpPillow, OpensOurFilesAndSeesOurPixels) {
  ErrorCapture errors;
  TempDir folder;
  for (uint16_t type : {ZEP_Y8, ZEP_PALETTED, ZEP_RGB24, ZEP_BGR24}) {
    ScopedImage image;
    vrc::test::make_pattern_image(image, 5, 3, type);
    if (type == ZEP_PALETTED) ZEP_cmap_set_type(image, ZEP_CMAP_CUBE_332, 0);
    const std::string path = folder.file("pillow" + std::to_string(type) + ".bmp");
    ASSERT_EQ(write_bmp(image, path), 0u);
    if (type == ZEP_Y8) ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_PALETTED);  // now with a grey map
    Bytes expected_rgb;
    for (uint32_t line = 0; line < 3; ++line) {
      const Bytes part = vrc::test::line_rgb(image, line);
      expected_rgb.insert(expected_rgb.end(), part.begin(), part.end());
    }
    int status = 0;
    const std::string out = vrc::test::run_pillow(
        "im = Image.open('" + path + "')\nprint(im.size, im.convert('RGB').tobytes().hex())\n", &status);
    ASSERT_EQ(status, 0) << out;
    EXPECT_EQ(out, "(5, 3) " + vrc::test::hex(expected_rgb) + "\n") << "type " << type;
  }
}

TEST(BmpPillow, WeReadPillowsFiles) {
  ErrorCapture errors;
  TempDir folder;
  const std::string rgb_path = folder.file("pil-rgb.bmp");
  const std::string p_path = folder.file("pil-p.bmp");
  int status = 0;
  const std::string out = vrc::test::run_pillow(
      "pixels = bytes((x * 29 + 3) % 256 for x in range(7 * 3 * 3))\n"
      "Image.frombytes('RGB', (7, 3), pixels).save('" + rgb_path + "')\n"
      "p = Image.frombytes('P', (7, 3), bytes((x * 13) % 256 for x in range(21)))\n"
      "p.putpalette([(i * 7 + c * 50) % 256 for i in range(256) for c in range(3)])\n"
      "p.save('" + p_path + "')\n",
      &status);
  ASSERT_EQ(status, 0) << out;

  ScopedImage rgb;
  ASSERT_EQ(read_bmp(rgb, rgb_path), 0u);
  ASSERT_EQ(get(rgb, ZEP_IMAGE_TYPE), unsigned{ZEP_RGB24});
  for (uint32_t line = 0; line < 3; ++line) {
    Bytes expected;
    for (uint32_t i = 0; i < 21; ++i) expected.push_back(static_cast<uint8_t>(((line * 21 + i) * 29 + 3) % 256));
    EXPECT_EQ(vrc::test::line_bytes(rgb, line, 21), expected);
  }
  ScopedImage paletted;
  ASSERT_EQ(read_bmp(paletted, p_path), 0u);
  ASSERT_EQ(get(paletted, ZEP_IMAGE_TYPE), unsigned{ZEP_PALETTED});
  for (uint32_t line = 0; line < 3; ++line) {
    Bytes expected;
    for (uint32_t x = 0; x < 7; ++x) expected.push_back(static_cast<uint8_t>(((line * 7 + x) * 13) % 256));
    EXPECT_EQ(vrc::test::line_bytes(paletted, line, 7), expected);
  }
  for (uint16_t entry : {0, 1, 100, 255}) {
    const uint32_t r = (entry * 7) % 256, g = (entry * 7 + 50) % 256, b = (entry * 7 + 100) % 256;
    EXPECT_EQ(ZEP_cmap_get_RGB_colour(paletted, entry), r << 16 | g << 8 | b);
  }

  // Pillow stores only the colours a small palette has; the colours still come from 54, the
  // pixels from 1078, past the end of this file.
  const std::string small_path = folder.file("pil-p4.bmp");
  ASSERT_EQ(vrc::test::run_pillow("p = Image.frombytes('P', (4, 2), bytes([0, 1, 2, 3] * 2))\n"
                                  "p.putpalette([10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120])\n"
                                  "p.save('" + small_path + "')\n"),
            "");
  ScopedImage small;
  ASSERT_EQ(read_bmp(small, small_path), 0u);
  EXPECT_EQ(ZEP_cmap_get_RGB_colour(small, 3), 0x646E78u);
  EXPECT_EQ(vrc::test::line_bytes(small, 1, 4), Bytes(4, 0));
  EXPECT_EQ(errors.count(), 0u);
}

TEST(BmpBuffer, MatchesTheFileAndLeavesTheImageUnchanged) {
  ErrorCapture errors;
  TempDir folder;
  // Widths whose file rows carry no bytes of the next line as padding.
  for (auto [type, width] : {std::pair{ZEP_Y8, 4u}, std::pair{ZEP_PALETTED, 8u}, std::pair{ZEP_RGB24, 5u}}) {
    ScopedImage image;
    vrc::test::make_pattern_image(image, width, 4, static_cast<uint16_t>(type));
    ASSERT_EQ(write_bmp(image, folder.file("ref.bmp")), 0u);
    const Bytes file = vrc::test::read_file(folder.file("ref.bmp"));
    const Bytes before = vrc::test::line_bytes(image, 0, 4 * get(image, ZEP_BYTES_PER_LINE));
    Bytes buffer(file.size() + 16, 0xEE);
    uint32_t size = 99;
    ASSERT_EQ(ZEP_image_write_BMP_buffer(image, buffer.data(), &size), 0u);
    EXPECT_EQ(size, file.size());
    EXPECT_EQ(Bytes(buffer.begin(), buffer.begin() + size), file) << "type " << type;
    EXPECT_EQ(buffer[size], 0xEE);
    EXPECT_EQ(vrc::test::line_bytes(image, 0, 4 * get(image, ZEP_BYTES_PER_LINE)), before);
  }
  // An 8-bit row of the buffer is the line's pixels and zeros.
  ScopedImage odd;
  vrc::test::make_pattern_image(odd, 5, 2, ZEP_Y8);
  Bytes buffer(1078 + 16, 0xEE);
  uint32_t size = 0;
  ASSERT_EQ(ZEP_image_write_BMP_buffer(odd, buffer.data(), &size), 0u);
  Bytes last_line = vrc::test::line_bytes(odd, 1, 5);
  last_line.resize(8, 0);
  EXPECT_EQ(Bytes(buffer.begin() + 1078, buffer.begin() + 1086), last_line);
  ScopedImage bgr;
  ZEP_ImageMake(bgr, 2, 2, ZEP_BGR24, 0);
  size = 5;
  EXPECT_EQ(ZEP_image_write_BMP_buffer(bgr, buffer.data(), &size), (ZEP_ERR_UNSUPPORTED | ZEP_BGR24));
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(errors.last().function, "ZEP_image_write_BMP_buffer");
}

TEST(Dib, ConvertsToFourByteAlignedBgr) {
  ErrorCapture errors;
  for (uint16_t type : {ZEP_RGB24, ZEP_Y8, ZEP_PALETTED, ZEP_BGRX32, ZEP_RGB8}) {
    ScopedImage source;
    ZEP_ImageMake(source, 3, 2, type, type == ZEP_BGRX32 || type == ZEP_RGB24 ? 0x102030 : 0xE3);
    if (type == ZEP_PALETTED) ZEP_cmap_set_RGB_colour(source, 0xE3, 0x40, 0x50, 0x60);
    ScopedImage bitmap;
    ASSERT_EQ(ZEP_convert_to_DIB_w31(source, bitmap, ZEP_FLAG_USE_LUT, ZEP_ACTION_DATA), 0u) << type;
    EXPECT_EQ(get(bitmap, ZEP_IMAGE_TYPE), unsigned{ZEP_BGR24});
    EXPECT_EQ(get(bitmap, ZEP_LINE_ALIGN), 4u);
    EXPECT_EQ(get(bitmap, ZEP_BYTES_PER_LINE), 12u);
    EXPECT_EQ(ZEP_image_get_flags(bitmap, ZEP_FLAG_DIB), 1u);
    EXPECT_EQ(ZEP_image_get_flags(bitmap, ZEP_FLAG_USE_LUT), 1u);
    Bytes pixel;
    switch (type) {
      case ZEP_Y8: pixel = {0xE3, 0xE3, 0xE3}; break;
      case ZEP_PALETTED: pixel = {0x60, 0x50, 0x40}; break;
      case ZEP_RGB8: pixel = {0xDF, 0x1F, 0xFF}; break;  // 3-3-2 cube entry (7, 0, 3)
      default: pixel = {0x30, 0x20, 0x10}; break;
    }
    Bytes line;
    for (int x = 0; x < 3; ++x) line.insert(line.end(), pixel.begin(), pixel.end());
    line.resize(12, 0);
    EXPECT_EQ(vrc::test::line_bytes(bitmap, 1, 12), line) << "type " << type;
  }
  EXPECT_EQ(errors.count(), 0u);
}

TEST(Dib, RefusesStripsAndCopiesAFinishedBitmap) {
  ErrorCapture errors;
  ScopedImage source;
  ZEP_ImageMake(source, 4, 4, ZEP_RGB24, 0);
  ZEP_image_set_parameter(source, ZEP_LINES_THIS_STRIP, 2);
  ScopedImage bitmap;
  EXPECT_EQ(ZEP_convert_to_DIB_w31(source, bitmap, 0, ZEP_ACTION_DATA), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "Can only process full image - not strips");
  ZEP_image_set_parameter(source, ZEP_LINES_THIS_STRIP, 4);
  ASSERT_EQ(ZEP_convert_to_DIB_w31(source, bitmap, 0, ZEP_ACTION_DATA), 0u);
  ScopedImage again;
  ASSERT_EQ(ZEP_convert_to_DIB_w31(bitmap, again, 0, ZEP_ACTION_DATA), 0u);
  EXPECT_EQ(get(again, ZEP_LINE_ALIGN), 4u);
  ZEP_ImageMake(source, 4, 4, ZEP_CMYK32, 0);
  EXPECT_EQ(ZEP_convert_to_DIB_w31(source, bitmap, 0, ZEP_ACTION_DATA), (ZEP_ERR_UNSUPPORTED | ZEP_CMYK32));
}

}  // namespace

TEST(Dib, LockedFramesOfGrowingSizeIntoOneBitmap) {
  ErrorCapture errors;
  ScopedImage bitmap;
  for (uint32_t side : {2u, 64u}) {
    ScopedImage frame;  // stands for a grabber buffer the caller keeps
    ZEP_ImageMake(frame, side, side, ZEP_Y8, 0x44);
    ZEP_image_set_flags(frame, ZEP_FLAG_LOCKED, 1);
    ASSERT_EQ(ZEP_convert_to_DIB_w31(frame, bitmap, 0, ZEP_ACTION_DATA), 0u);
    EXPECT_EQ(vrc::test::line_bytes(bitmap, side - 1, 3 * side), Bytes(3 * side, 0x44)) << side;
    EXPECT_EQ(ZEP_image_get_flags(bitmap, ZEP_FLAG_LOCKED), 0u);
  }
}
