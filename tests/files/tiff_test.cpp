// TIFF files: the big-endian single-strip layout byte for byte, tiffinfo and Pillow reading our
// files, our reader on files Pillow and libtiff's tools write in both byte orders, and the
// reader's refusals.
#include "files/files_support.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

namespace {

using vrc::test::BadFile;
using vrc::test::Bytes;
using vrc::test::ErrorCapture;
using vrc::test::ScopedImage;
using vrc::test::TempDir;
using vrc::test::get;
using vrc::test::read_tiff;
using vrc::test::write_tiff;

// Big-endian byte appender for expected files.
struct BigEndian {
  Bytes bytes;
  BigEndian &u16(uint32_t value) {
    bytes.insert(bytes.end(), {uint8_t(value >> 8), uint8_t(value)});
    return *this;
  }
  BigEndian &u32(uint32_t value) { return u16(value >> 16).u16(value & 0xFFFF); }
  BigEndian &entry(uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
    u16(tag).u16(type).u32(count);
    return type == 3 && count == 1 ? u16(value).u16(0) : u32(value);
  }
};

struct Entry {
  uint16_t tag, type;
  uint32_t count, value;
};

std::vector<Entry> entries_of(const Bytes &file) {
  std::vector<Entry> entries;
  const uint16_t entry_count = ZEP_mget_ui16m(&file[8]);
  for (uint16_t i = 0; i < entry_count; ++i) {
    const uint8_t *at = &file[10 + 12 * i];
    const uint16_t type = ZEP_mget_ui16m(at + 2);
    const uint32_t count = ZEP_mget_ui32m(at + 4);
    entries.push_back({ZEP_mget_ui16m(at), type, count,
                       type == 3 && count == 1 ? ZEP_mget_ui16m(at + 8) : ZEP_mget_ui32m(at + 8)});
  }
  return entries;
}

TEST(TiffLayout, GreyFileByteForByte) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  vrc::test::make_pattern_image(image, 2, 3, ZEP_Y8);
  ASSERT_EQ(write_tiff(image, folder.file("grey.tif")), 0u);
  BigEndian expected;
  expected.bytes = {'M', 'M'};
  expected.u16(42).u32(8).u16(13);
  expected.entry(254, 4, 1, 0).entry(256, 3, 1, 2).entry(257, 3, 1, 3).entry(258, 3, 1, 8);
  expected.entry(259, 3, 1, 1).entry(262, 3, 1, 1).entry(273, 4, 1, 186).entry(277, 3, 1, 1);
  expected.entry(278, 4, 1, 3).entry(279, 4, 1, 6).entry(282, 5, 1, 170).entry(283, 5, 1, 178);
  expected.entry(296, 3, 1, 1).u32(0).u32(300).u32(1).u32(300).u32(1);
  for (uint32_t line = 0; line < 3; ++line) {
    const Bytes pixels = vrc::test::line_bytes(image, line, 2);
    expected.bytes.insert(expected.bytes.end(), pixels.begin(), pixels.end());
  }
  EXPECT_EQ(vrc::test::read_file(folder.file("grey.tif")), expected.bytes);
}

struct LayoutCase {
  uint16_t type;
  std::vector<uint16_t> tags;  // after the twelve every file has
  uint32_t bits_count, bits_value, photometric, samples;
  uint32_t strip_bytes;        // StripByteCounts of a 5 x 3 image
  uint32_t data_offset;
  uint32_t pixel_bytes;        // bytes actually written
};

class TiffLayout : public testing::TestWithParam<LayoutCase> {};

TEST_P(TiffLayout, EntriesOffsetsAndPixelBytes) {
  const LayoutCase &c = GetParam();
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  vrc::test::make_pattern_image(image, 5, 3, c.type);
  if (c.type == ZEP_Y16) ZEP_image_set_parameter(image, ZEP_DATA_WIDTH, 12);
  ASSERT_EQ(write_tiff(image, folder.file("f.tif")), 0u);
  const Bytes file = vrc::test::read_file(folder.file("f.tif"));
  const std::vector<Entry> entries = entries_of(file);
  std::vector<uint16_t> tags = {254, 256, 257, 258, 259, 262, 273, 277, 278, 279, 282, 283};
  tags.insert(tags.end(), c.tags.begin(), c.tags.end());
  ASSERT_EQ(entries.size(), tags.size());
  for (std::size_t i = 0; i < tags.size(); ++i) EXPECT_EQ(entries[i].tag, tags[i]) << i;
  EXPECT_EQ(entries[3].count, c.bits_count);
  EXPECT_EQ(entries[3].value, c.bits_value);
  EXPECT_EQ(entries[5].value, c.photometric);
  EXPECT_EQ(entries[6].value, c.data_offset);
  EXPECT_EQ(entries[7].value, c.samples);
  EXPECT_EQ(entries[9].value, c.strip_bytes);
  EXPECT_EQ(entries[10].value, c.data_offset - 16);
  EXPECT_EQ(entries[11].value, c.data_offset - 8);
  EXPECT_EQ(file.size(), c.data_offset + c.pixel_bytes);
  EXPECT_EQ(ZEP_mget_ui32m(&file[c.data_offset - 16]), 300u);
  if (c.bits_count > 1) {
    for (uint32_t i = 0; i < c.bits_count; ++i) EXPECT_EQ(ZEP_mget_ui16m(&file[c.bits_value + 2 * i]), 8u);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, TiffLayout,
    testing::Values(LayoutCase{ZEP_Y1, {296}, 1, 1, 1, 1, 3, 186, 0},
                    LayoutCase{ZEP_Y8, {296}, 1, 8, 1, 1, 15, 186, 15},
                    LayoutCase{ZEP_Y16, {296}, 1, 12, 1, 1, 15, 186, 30},
                    LayoutCase{ZEP_PALETTED, {296, 320}, 1, 8, 3, 1, 15, 1734, 0},
                    LayoutCase{ZEP_RGB24, {284, 296}, 3, 182, 2, 3, 45, 204, 45},
                    LayoutCase{ZEP_BGR24, {284, 296}, 3, 182, 2, 3, 45, 204, 45},
                    LayoutCase{ZEP_BGRX32, {284, 296}, 3, 182, 2, 3, 45, 204, 45},
                    LayoutCase{ZEP_YUV422, {284, 296}, 3, 182, 2, 3, 45, 204, 45},
                    LayoutCase{ZEP_CMYK32, {284, 296}, 4, 182, 5, 4, 60, 206, 0}));

TEST(TiffWrite, ColourMapRunsHoldEachComponentTwice) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  ZEP_ImageMake(image, 2, 2, ZEP_PALETTED, 0);
  ZEP_cmap_set_RGB_colour(image, 7, 0x12, 0x34, 0x56);
  ASSERT_EQ(write_tiff(image, folder.file("p.tif")), 0u);
  const Bytes file = vrc::test::read_file(folder.file("p.tif"));
  const Entry colour_map = entries_of(file)[13];
  EXPECT_EQ(colour_map.tag, 320);
  EXPECT_EQ(colour_map.count, 768u);
  EXPECT_EQ(colour_map.value, 182u);
  EXPECT_EQ(ZEP_mget_ui16m(&file[182 + 2 * 7]), 0x1212);
  EXPECT_EQ(ZEP_mget_ui16m(&file[182 + 512 + 2 * 7]), 0x3434);
  EXPECT_EQ(ZEP_mget_ui16m(&file[182 + 1024 + 2 * 7]), 0x5656);

  ScopedImage copy;
  EXPECT_EQ(read_tiff(copy, folder.file("p.tif")), 0u);  // no pixels follow: silently short
  EXPECT_EQ(get(copy, ZEP_IMAGE_TYPE), unsigned{ZEP_PALETTED});
  for (uint16_t entry = 0; entry < 256; ++entry) {
    ASSERT_EQ(ZEP_cmap_get_RGB_colour(copy, entry), ZEP_cmap_get_RGB_colour(image, entry)) << entry;
  }
  EXPECT_EQ(errors.count(), 0u);
}

TEST(TiffWrite, WidthsAboveSixteenBitsAreCutInTheEntry) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  ZEP_ImageMake(image, 65537, 1, ZEP_Y8, 0);
  ASSERT_EQ(write_tiff(image, folder.file("wide.tif"), ZEP_ACTION_CLOSE), 0u);
  const Bytes file = vrc::test::read_file(folder.file("wide.tif"));
  EXPECT_EQ(entries_of(file)[1].value, 1u);
  EXPECT_EQ(file.size(), 186u);  // header only
}

TEST(TiffOracle, TiffinfoParsesEveryFormat) {
  ASSERT_TRUE(vrc::test::program_available("tiffinfo")) << "tiffinfo not installed: scripts/setup.sh installs it";
  ErrorCapture errors;
  TempDir folder;
  for (uint16_t type : {ZEP_Y1, ZEP_Y8, ZEP_Y16, ZEP_PALETTED, ZEP_RGB24, ZEP_BGR24, ZEP_BGRX32, ZEP_YUV422, ZEP_CMYK32}) {
    ScopedImage image;
    vrc::test::make_pattern_image(image, 6, 4, type);
    const std::string path = folder.file("info" + std::to_string(type) + ".tif");
    ASSERT_EQ(write_tiff(image, path), 0u);
    int status = 0;
    const std::string out = vrc::test::run_command("tiffinfo " + path + " 2>&1", &status);
    EXPECT_EQ(status, 0) << out;
    EXPECT_NE(out.find("Image Width: 6 Image Length: 4"), std::string::npos) << out;
  }
}

TEST(TiffOracle, PillowSeesOurPixels) {
  ErrorCapture errors;
  TempDir folder;
  for (uint16_t type : {ZEP_Y8, ZEP_RGB24, ZEP_BGR24, ZEP_BGRX32}) {
    ScopedImage image;
    vrc::test::make_pattern_image(image, 5, 3, type);
    const std::string path = folder.file("pil" + std::to_string(type) + ".tif");
    ASSERT_EQ(write_tiff(image, path), 0u);
    Bytes expected;
    for (uint32_t line = 0; line < 3; ++line) {
      const Bytes part = type == ZEP_Y8 ? vrc::test::line_bytes(image, line, 5) : vrc::test::line_rgb(image, line);
      expected.insert(expected.end(), part.begin(), part.end());
    }
    int status = 0;
    const std::string out = vrc::test::run_pillow(
        "im = Image.open('" + path + "')\nprint(im.mode, im.size, im.tobytes().hex())\n", &status);
    ASSERT_EQ(status, 0) << out;
    EXPECT_EQ(out, std::string(type == ZEP_Y8 ? "L" : "RGB") + " (5, 3) " + vrc::test::hex(expected) + "\n");
  }
  // YUV 4:2:2 pairs become R, G, B: neutral grey, and saturated red from Y 76, U 84, V 255.
  ScopedImage yuv;
  ZEP_ImageMake(yuv, 4, 1, ZEP_YUV422, 0);
  auto *data = static_cast<uint8_t *>(ZEP_image_get_ptr(yuv, ZEP_DATA_PTR));
  const uint8_t quads[] = {128, 128, 128, 128, 76, 84, 76, 255};
  std::copy(std::begin(quads), std::end(quads), data);
  ASSERT_EQ(write_tiff(yuv, folder.file("yuv.tif")), 0u);
  const std::string out = vrc::test::run_pillow(
      "print(Image.open('" + folder.file("yuv.tif") + "').tobytes().hex())\n");
  // R = (76 x 1024 + 1436 x 127) >> 10 = 254; G = (77824 - 731 x 127 + 352 x 44) >> 10 = 0;
  // B = (77824 - 1815 x 44) >> 10 = -2, clamped to 0.
  EXPECT_EQ(out, "808080808080" "fe0000" "fe0000" "\n");
}

TEST(TiffRoundTrip, EveryWrittenPixelFormatReadsBack) {
  ErrorCapture errors;
  TempDir folder;
  for (auto [written, read_as] : {std::pair{ZEP_Y8, ZEP_Y8}, std::pair{ZEP_RGB24, ZEP_RGB24},
                                  std::pair{ZEP_BGR24, ZEP_RGB24}, std::pair{ZEP_BGRX32, ZEP_RGB24},
                                  std::pair{ZEP_Y16, ZEP_Y16}}) {
    ScopedImage source;
    vrc::test::make_pattern_image(source, 7, 4, static_cast<uint16_t>(written));
    if (written == ZEP_Y16) ZEP_image_set_parameter(source, ZEP_DATA_WIDTH, 12);
    ASSERT_EQ(write_tiff(source, folder.file("trip.tif")), 0u);
    ScopedImage copy;
    ASSERT_EQ(read_tiff(copy, folder.file("trip.tif")), 0u) << written;
    ASSERT_EQ(get(copy, ZEP_IMAGE_TYPE), unsigned(read_as));
    ASSERT_EQ(get(copy, ZEP_IMAGE_WIDTH), 7u);
    ASSERT_EQ(get(copy, ZEP_IMAGE_HEIGHT), 4u);
    for (uint32_t line = 0; line < 4; ++line) {
      Bytes expected;
      if (written == ZEP_Y8) expected = vrc::test::line_bytes(source, line, 7);
      else if (written == ZEP_Y16) expected = vrc::test::line_bytes(source, line, 14);
      else expected = vrc::test::line_rgb(source, line);
      EXPECT_EQ(vrc::test::line_bytes(copy, line, static_cast<uint32_t>(expected.size())), expected)
          << "format " << written << " line " << line;
    }
    if (written == ZEP_Y16) {
      EXPECT_EQ(get(copy, ZEP_DATA_WIDTH), 12u);
    }
  }
  EXPECT_EQ(errors.count(), 0u);
}

// Files Pillow writes (little-endian) and the same after libtiff's tiffcp made them big-endian
// or cut them into strips of one or two rows.
class TiffForeign : public testing::TestWithParam<const char *> {};

TEST_P(TiffForeign, ReadsPillowAndLibtiffFiles) {
  ASSERT_TRUE(vrc::test::program_available("tiffcp")) << "tiffcp not installed: scripts/setup.sh installs it";
  const std::string variant = GetParam();
  ErrorCapture errors;
  TempDir folder;
  int status = 0;
  const std::string out = vrc::test::run_pillow(
      "grey = bytes((i * 7 + 1) % 256 for i in range(5 * 3))\n"
      "Image.frombytes('L', (5, 3), grey).save('" + folder.file("L.tif") + "')\n"
      "Image.frombytes('RGB', (5, 3), bytes((i * 11) % 256 for i in range(45))).save('" + folder.file("RGB.tif") + "')\n"
      "Image.frombytes('I;16', (5, 3), bytes((i * 13) % 256 for i in range(30))).save('" + folder.file("I16.tif") + "')\n"
      "p = Image.frombytes('P', (5, 3), grey)\n"
      "p.putpalette([(i + c * 80) % 256 for i in range(256) for c in range(3)])\n"
      "p.save('" + folder.file("P.tif") + "')\n",
      &status);
  ASSERT_EQ(status, 0) << out;
  const bool big_endian = variant == "big-endian";
  for (const char *name : {"L", "RGB", "I16", "P"}) {
    std::string path = folder.file(std::string(name) + ".tif");
    if (variant != "pillow") {
      const std::string converted = folder.file(std::string(name) + "-" + variant + ".tif");
      const std::string options = big_endian ? "-B" : "-L -r 2";
      vrc::test::run_command("tiffcp -c none " + options + " " + path + " " + converted, &status);
      ASSERT_EQ(status, 0);
      path = converted;
    }
    ScopedImage image;
    ASSERT_EQ(read_tiff(image, path), 0u) << name << " " << variant;
    ASSERT_EQ(get(image, ZEP_IMAGE_WIDTH), 5u);
    ASSERT_EQ(get(image, ZEP_IMAGE_HEIGHT), 3u);
    for (uint32_t line = 0; line < 3; ++line) {
      Bytes expected;
      const std::string kind = name;
      if (kind == "L" || kind == "P") {
        for (uint32_t x = 0; x < 5; ++x) expected.push_back(uint8_t(((line * 5 + x) * 7 + 1) % 256));
      } else if (kind == "RGB") {
        for (uint32_t i = 0; i < 15; ++i) expected.push_back(uint8_t(((line * 15 + i) * 11) % 256));
      } else {
        // 16-bit samples are always read most significant byte first: a little-endian file's
        // samples come back byte-swapped.
        for (uint32_t x = 0; x < 5; ++x) {
          const uint8_t low = uint8_t(((line * 10 + 2 * x) * 13) % 256);
          const uint8_t high = uint8_t(((line * 10 + 2 * x + 1) * 13) % 256);
          if (big_endian) expected.insert(expected.end(), {low, high});
          else expected.insert(expected.end(), {high, low});
        }
      }
      EXPECT_EQ(vrc::test::line_bytes(image, line, static_cast<uint32_t>(expected.size())), expected)
          << name << " " << variant << " line " << line;
    }
    const std::string kind = name;
    const uint32_t types[] = {ZEP_Y8, ZEP_RGB24, ZEP_Y16, ZEP_PALETTED};
    const std::size_t index = kind == "L" ? 0 : kind == "RGB" ? 1 : kind == "I16" ? 2 : 3;
    EXPECT_EQ(get(image, ZEP_IMAGE_TYPE), types[index]) << name;
    if (kind == "P" && !big_endian) {
      // Pillow stores each component c as c x 256 little-endian: read most significant byte
      // first, the low byte is c.
      EXPECT_EQ(ZEP_cmap_get_RGB_colour(image, 10), (10u << 16) | (90u << 8) | 170u);
    }
  }
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Sources, TiffForeign, testing::Values("pillow", "big-endian", "strips"),
                         [](const testing::TestParamInfo<const char *> &param_info) {
                           std::string name = param_info.param;
                           std::erase(name, '-');
                           return name;
                         });

// A little-endian 4-bit palette image of 3 x 2 pixels, written by hand.
Bytes four_bit_palette_file() {
  Bytes file = {'I', 'I', 42, 0, 8, 0, 0, 0};
  auto u16 = [&](uint32_t v) { file.insert(file.end(), {uint8_t(v), uint8_t(v >> 8)}); };
  auto u32 = [&](uint32_t v) { u16(v & 0xFFFF); u16(v >> 16); };
  auto entry = [&](uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
    u16(tag); u16(type); u32(count);
    if (type == 3) { u16(value); u16(0); } else { u32(value); }
  };
  const uint32_t colour_map = 8 + 2 + 8 * 12 + 4;
  const uint32_t pixels = colour_map + 3 * 16 * 2;
  u16(8);
  entry(256, 3, 1, 3); entry(257, 3, 1, 2); entry(258, 3, 1, 4); entry(259, 3, 1, 1);
  entry(262, 3, 1, 3); entry(273, 4, 1, pixels); entry(277, 3, 1, 1); entry(320, 3, 48, colour_map);
  u32(0);
  for (uint32_t component = 0; component < 3; ++component) {
    for (uint32_t i = 0; i < 16; ++i) u16((i * 16 + component) * 257);
  }
  file.insert(file.end(), {0x12, 0x30, 0x45, 0x60});
  return file;
}

TEST(TiffRead, FourBitPaletteHighNibbleFirst) {
  ErrorCapture errors;
  TempDir folder;
  vrc::test::write_file(folder.file("nibbles.tif"), four_bit_palette_file());
  ScopedImage image;
  ASSERT_EQ(read_tiff(image, folder.file("nibbles.tif")), 0u);
  EXPECT_EQ(get(image, ZEP_IMAGE_TYPE), unsigned{ZEP_PALETTED});
  EXPECT_EQ(get(image, ZEP_CMAP_COLOURS), 256u);
  EXPECT_EQ(vrc::test::line_bytes(image, 0, 3), (Bytes{1, 2, 3}));
  EXPECT_EQ(vrc::test::line_bytes(image, 1, 3), (Bytes{4, 5, 6}));
  EXPECT_EQ(ZEP_cmap_get_RGB_colour(image, 5), 0x505152u);
}


// Sets the value word of the entry with `tag` in a big-endian file written by this library.
void set_entry(Bytes &file, uint16_t tag, uint32_t count, uint32_t value) {
  for (uint16_t i = 0; i < ZEP_mget_ui16m(&file[8]); ++i) {
    uint8_t *at = &file[10 + 12 * i];
    if (ZEP_mget_ui16m(at) != tag) continue;
    ZEP_mput_ui32m(at + 4, count);
    if (ZEP_mget_ui16m(at + 2) == 3 && count == 1) ZEP_mput_ui16m(at + 8, static_cast<uint16_t>(value));
    else ZEP_mput_ui32m(at + 8, value);
  }
}

class TiffReadFailure : public testing::TestWithParam<BadFile> {};

TEST_P(TiffReadFailure, ReportsTheDefect) {
  vrc::test::expect_read_failure(vrc::test::kTiffFormat, 4, 3, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Defects, TiffReadFailure,
    testing::Values(
        BadFile{"byte_order_xx", [](Bytes &f) { f[0] = 'X'; }, ZEP_ERR_UNEXPECTED, "Expecting 'MM' or 'II'"},
        BadFile{"magic_43", [](Bytes &f) { f[3] = 43; }, ZEP_ERR_UNEXPECTED, "Expecting 42"},
        BadFile{"no_entries", [](Bytes &f) { f[8] = f[9] = 0; }, ZEP_ERR_UNSUPPORTED, "unsupported TIFF format"},
        BadFile{"directory_past_end", [](Bytes &f) { ZEP_mput_ui32m(&f[4], 0x7FFFFFF0); }, ZEP_ERR_UNSUPPORTED,
                "unsupported TIFF format"},
        BadFile{"reduced_resolution", [](Bytes &f) { set_entry(f, 254, 1, 1); }, ZEP_ERR_UNSUPPORTED,
                "Expecting single full resolution image"},
        BadFile{"two_subfile_types", [](Bytes &f) { set_entry(f, 254, 2, 0); }, ZEP_ERR_UNEXPECTED,
                "Expecting 1 entry in NewSubFileType"},
        BadFile{"two_widths", [](Bytes &f) { set_entry(f, 256, 2, 4); }, ZEP_ERR_UNEXPECTED,
                "Expecting 1 entry in ImageWidth"},
        BadFile{"two_lengths", [](Bytes &f) { set_entry(f, 257, 2, 3); }, ZEP_ERR_UNEXPECTED,
                "expecting 1 entry in ImageLength"},
        BadFile{"lzw", [](Bytes &f) { set_entry(f, 259, 1, 5); }, ZEP_ERR_UNSUPPORTED,
                "compressed TIFF images not supported"},
        BadFile{"photometric_cmyk", [](Bytes &f) { set_entry(f, 262, 1, 5); }, ZEP_ERR_UNSUPPORTED,
                "unsupported image type"},
        BadFile{"two_photometrics", [](Bytes &f) { set_entry(f, 262, 2, 2); }, ZEP_ERR_UNEXPECTED,
                "expecting 1 entry in PhotometricInterp"},
        BadFile{"two_sample_counts", [](Bytes &f) { set_entry(f, 277, 2, 3); }, ZEP_ERR_UNEXPECTED,
                "expecting 1 entry in SamplesPerPixeltr"},
        BadFile{"two_rows_per_strip", [](Bytes &f) { set_entry(f, 278, 2, 3); }, ZEP_ERR_UNEXPECTED,
                "expecting 1 entry in RowsPerStrip"},
        BadFile{"bits_sum_30", [](Bytes &f) { ZEP_mput_ui16m(&f[182], 14); }, ZEP_ERR_UNSUPPORTED, "unsupported image"},
        BadFile{"grey_with_three_samples", [](Bytes &f) { set_entry(f, 262, 1, 1); }, ZEP_ERR_UNSUPPORTED,
                "unsupported TIFF format"},
        BadFile{"width_overflows_line", [](Bytes &f) { set_entry(f, 256, 1, 0xFFFF); set_entry(f, 257, 1, 0xFFFF); },
                ZEP_ERR_UNEXPECTED, "Image data runs past end of file"}),
    vrc::test::bad_file_name);

TEST(TiffRead, PixelsPastTheEndAreReadSilentlyAsZeros) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage source;
  vrc::test::make_pattern_image(source, 4, 3, ZEP_Y8);
  ASSERT_EQ(write_tiff(source, folder.file("good.tif")), 0u);
  const Bytes good = vrc::test::read_file(folder.file("good.tif"));
  struct Silent {
    BadFile file;  // reported code 0, no message
    uint32_t lines_read;
  };
  const Silent damages[] = {
      {{"strip_offset_past_end", [](Bytes &f) { set_entry(f, 273, 1, 0x00FFFFFF); }, 0, ""}, 0},
      {{"cut_after_one_line", [](Bytes &f) { f.erase(f.end() - 8, f.end()); }, 0, ""}, 1},
      {{"height_past_file", [](Bytes &f) { set_entry(f, 257, 1, 60000); }, 0, ""}, 3},
  };
  for (const Silent &damage : damages) {
    SCOPED_TRACE(damage.file.name);
    const std::string bad = vrc::test::write_damaged(folder, good, damage.file, "tiff_read_fuzz", ".tif");
    ScopedImage image;
    EXPECT_EQ(read_tiff(image, bad), 0u);
    EXPECT_EQ(errors.count(), 0u);
    const uint32_t height = get(image, ZEP_IMAGE_HEIGHT);
    for (uint32_t line = 0; line < std::min(height, 4u); ++line) {
      const Bytes expected = line < damage.lines_read ? vrc::test::line_bytes(source, line, 4) : Bytes(4, 0);
      EXPECT_EQ(vrc::test::line_bytes(image, line, 4), expected) << "line " << line;
    }
  }
}

}  // namespace
