// EPS pages: the text written line for line, the page geometry, round trips, Ghostscript's
// rendering of our grey and colour pages, and reading damaged files.
#include "files/files_support.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using vrc::test::Bytes;
using vrc::test::ErrorCapture;
using vrc::test::ScopedImage;
using vrc::test::TempDir;
using vrc::test::get;
using vrc::test::read_eps;
using vrc::test::write_eps;

std::string text_of(const std::string &path) {
  const Bytes bytes = vrc::test::read_file(path);
  return std::string(bytes.begin(), bytes.end());
}

TEST(EpsWrite, GreyPageLineForLine) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  vrc::test::make_pattern_image(image, 2, 3, ZEP_Y8);
  std::strcpy(image.record().name, "demo");
  ASSERT_EQ(write_eps(image, folder.file("grey.eps")), 0u);
  std::string expected =
      "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 39 10 519 730\n%%Creator: demo\n%%EndComments\n"
      "%%EndProlog\n39 10 translate\n0 rotate\n/picstr 2 string def\n480 720 scale\n2 3 8\n"
      "[2 0 0 -3 0 3]\t% Portrait Orientation\n{currentfile\n picstr readhexstring pop}\nimage\n";
  for (uint32_t line = 0; line < 3; ++line) expected += vrc::test::hex(vrc::test::line_bytes(image, line, 2)) + "\n";
  expected += "showpage\n%%EOF\n";
  EXPECT_EQ(text_of(folder.file("grey.eps")), expected);
}

struct PageCase {
  uint32_t width, height;
  const char *bounding_box, *scale, *matrix;
};

class EpsGeometry : public testing::TestWithParam<PageCase> {};

TEST_P(EpsGeometry, FitsTheImageIntoThePageArea) {
  const PageCase &c = GetParam();
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, c.width);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, c.height);
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_RGB24);
  ASSERT_EQ(write_eps(image, folder.file("page.eps"), ZEP_ACTION_CLOSE), 0u);
  const std::string text = text_of(folder.file("page.eps"));
  EXPECT_NE(text.find(std::string("%%BoundingBox: ") + c.bounding_box + "\n"), std::string::npos) << text;
  EXPECT_NE(text.find(std::string("\n") + c.scale + " scale\n"), std::string::npos) << text;
  EXPECT_NE(text.find(std::string("\n") + c.matrix + "\n"), std::string::npos) << text;
  EXPECT_NE(text.find("%%Extensions: CMYK\n"), std::string::npos);
  EXPECT_NE(text.find("\nfalse 3\ncolorimage\n"), std::string::npos);
  EXPECT_EQ(text.find("showpage"), std::string::npos);  // header only
}

INSTANTIATE_TEST_SUITE_P(
    Pages, EpsGeometry,
    testing::Values(PageCase{640, 480, "18 22 540 718", "696 522", "[0 640 480 0 0 0]\t% Landscape Orientation"},
                    PageCase{100, 100, "18 109 540 631", "522 522", "[100 0 0 -100 0 100]\t% Portrait Orientation"},
                    PageCase{100, 400, "189 10 369 730", "180 720", "[100 0 0 -400 0 400]\t% Portrait Orientation"},
                    PageCase{1000, 10, "275 10 282 730", "720 7", "[0 1000 10 0 0 0]\t% Landscape Orientation"}));

TEST(EpsWrite, HexRowsBreakAfterEvery39thByte) {
  ErrorCapture errors;
  TempDir folder;
  for (uint32_t width : {39u, 40u}) {
    ScopedImage image;
    ZEP_ImageMake(image, width, 1, ZEP_Y8, 0xAB);
    ASSERT_EQ(write_eps(image, folder.file("rows.eps")), 0u);
    std::string row;
    for (int i = 0; i < 39; ++i) row += "ab";
    row += "\n";
    if (width == 40) row += "ab";
    EXPECT_NE(text_of(folder.file("rows.eps")).find("image\n" + row + "\nshowpage\n"), std::string::npos) << width;
  }
}

TEST(EpsWrite, PalettedPageHasAnIndexedColourSpace) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  ZEP_ImageMake(image, 3, 2, ZEP_PALETTED, 1);
  ZEP_cmap_set_type(image, ZEP_CMAP_GREY, 0);
  ZEP_image_set_parameter(image, ZEP_CMAP_COLOURS, 12);
  ASSERT_EQ(write_eps(image, folder.file("p.eps")), 0u);
  const std::string text = text_of(folder.file("p.eps"));
  std::string colours = "[/Indexed /DeviceRGB 11\n <";
  for (int i = 0; i < 12; ++i) {
    char entry[8];
    std::snprintf(entry, sizeof entry, "%02x%02x%02x", i, i, i);
    colours += entry;
    colours += i == 10 ? "\n  " : " ";
  }
  colours += ">\n] setcolorspace\n<<\n  /ImageType 1\n  /Width 3\n  /Height 2\n  /BitsPerComponent 8\n"
             "  /Decode [0 1 0 1 0 1]\n  /ImageMatrix[0 3 2 0 0 0]\t% Landscape Orientation\n"
             "  /DataSource currentfile\n  /ASCIIHexDecode filter\n>>\nimage\n010101\n010101\nshowpage\n";
  EXPECT_NE(text.find("%%LanguageLevel: 2\n"), std::string::npos);
  EXPECT_NE(text.find("720 480 scale\n" + colours), std::string::npos) << text;
}

class EpsRoundTrip : public testing::TestWithParam<std::tuple<uint16_t, uint32_t>> {};

TEST_P(EpsRoundTrip, ReadsBackThePixels) {
  const auto [type, width] = GetParam();
  ErrorCapture errors;
  TempDir folder;
  ScopedImage source;
  vrc::test::make_pattern_image(source, width, 4, type);
  if (type == ZEP_PALETTED) ZEP_cmap_set_type(source, ZEP_CMAP_CUBE_332, 0);
  ASSERT_EQ(write_eps(source, folder.file("trip.eps")), 0u);
  ScopedImage copy;
  ZEP_image_set_parameter(copy, ZEP_LINES_THIS_STRIP, 100);
  ASSERT_EQ(read_eps(copy, folder.file("trip.eps")), 0u);
  EXPECT_EQ(get(copy, ZEP_IMAGE_TYPE), type);
  EXPECT_EQ(get(copy, ZEP_IMAGE_WIDTH), width);
  EXPECT_EQ(get(copy, ZEP_IMAGE_HEIGHT), 4u);
  EXPECT_EQ(get(copy, ZEP_LINES_THIS_STRIP), 4u);
  const uint32_t bytes = type == ZEP_RGB24 ? 3 * width : width;
  for (uint32_t line = 0; line < 4; ++line) {
    EXPECT_EQ(vrc::test::line_bytes(copy, line, bytes), vrc::test::line_bytes(source, line, bytes)) << line;
  }
  if (type == ZEP_PALETTED) {
    // One colour fewer than written comes back: the last entry is lost.
    EXPECT_EQ(get(copy, ZEP_CMAP_COLOURS), 255u);
    for (uint16_t entry = 0; entry < 255; ++entry) {
      ASSERT_EQ(ZEP_cmap_get_RGB_colour(copy, entry), ZEP_cmap_get_RGB_colour(source, entry)) << entry;
    }
    EXPECT_EQ(ZEP_cmap_get_RGB_colour(copy, 255), 0u);
  }
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Formats, EpsRoundTrip,
                         testing::Combine(testing::Values(ZEP_Y8, ZEP_RGB24, ZEP_PALETTED), testing::Values(5u, 6u, 41u)));

TEST(EpsRead, AStripSmallerThanTheImageReadsOneStrip) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage source;
  vrc::test::make_pattern_image(source, 4, 20, ZEP_Y8);
  ASSERT_EQ(write_eps(source, folder.file("tall.eps")), 0u);
  ScopedImage copy;  // a new image holds 8 lines per strip
  ASSERT_EQ(read_eps(copy, folder.file("tall.eps")), 0u);
  EXPECT_EQ(get(copy, ZEP_LINES_THIS_STRIP), 8u);
  EXPECT_EQ(vrc::test::line_bytes(copy, 7, 4), vrc::test::line_bytes(source, 7, 4));
}

TEST(EpsRead, TruncatedHexDataLeavesTheRestZero) {
  ErrorCapture errors;
  TempDir folder;
  ScopedImage source;
  ZEP_ImageMake(source, 600, 2, ZEP_Y8, 0x5A);
  ASSERT_EQ(write_eps(source, folder.file("full.eps")), 0u);
  std::string text = text_of(folder.file("full.eps"));
  text.resize(text.find("image\n") + 6 + 4);  // two bytes: far less than the header's 1200
  vrc::test::write_file(folder.file("cut.eps"), text);
  vrc::test::write_seed("eps_read_fuzz", "truncated_hex_data.eps", Bytes(text.begin(), text.end()));
  ScopedImage copy;
  ZEP_image_set_parameter(copy, ZEP_LINES_THIS_STRIP, 2);
  EXPECT_EQ(read_eps(copy, folder.file("cut.eps")), 0u);
  EXPECT_EQ(errors.count(), 0u);
  EXPECT_EQ(vrc::test::line_bytes(copy, 0, 4), (Bytes{0x5A, 0x5A, 0, 0}));
  EXPECT_EQ(vrc::test::line_bytes(copy, 1, 600), Bytes(600, 0));
}

TEST(EpsRead, EndOfFileBeforeTheImageWordIsReported) {
  ErrorCapture errors;
  TempDir folder;
  const std::string text = "%!PS\n%%LanguageLevel: 2\nx\n[/Indexed /DeviceRGB 1\n <000000 ffffff>\n /Width 3 ";
  vrc::test::write_file(folder.file("cut.eps"), text);
  vrc::test::write_seed("eps_read_fuzz", "eof_in_dictionary.eps", Bytes(text.begin(), text.end()));
  ScopedImage image;
  EXPECT_EQ(read_eps(image, folder.file("cut.eps")), ZEP_ERR_UNEXPECTED);
  EXPECT_EQ(errors.last().function, "fread_word_ascii");
  EXPECT_EQ(errors.last().message, "Unexpected EOF read");
}

TEST(EpsRead, HeaderAskingForMoreThanTheFileHoldsIsRefused) {
  ErrorCapture errors;
  TempDir folder;
  const std::string text = "%!PS\n1 1 translate\n0 rotate\nx\ns\n60000 60000 8\na\nb\nc\nimage\n00\n";
  vrc::test::write_file(folder.file("big.eps"), text);
  vrc::test::write_seed("eps_read_fuzz", "dimensions_past_file.eps", Bytes(text.begin(), text.end()));
  ScopedImage image;
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, 60000);
  EXPECT_EQ(read_eps(image, folder.file("big.eps")), ZEP_ERR_UNEXPECTED);
  EXPECT_EQ(errors.last().message, "Image data runs past end of file");
  EXPECT_EQ(get(image, ZEP_IMAGE_WIDTH), 60000u);
}

// Renders `path` with Ghostscript at 72 dpi, one pixel per point, cropped to the bounding box;
// Pillow prints the page size and the colour at the centre of each 90-point square.
std::string rendered_squares(const std::string &path, const std::string &ppm) {
  int status = 0;
  const std::string gs = "gs -q -dSAFER -dBATCH -dNOPAUSE -dEPSCrop -r72 -sDEVICE=ppmraw -sOutputFile=";
  const std::string out = vrc::test::run_command(gs + ppm + " " + path + " 2>&1", &status);
  if (status != 0) return "gs: " + out;
  return vrc::test::run_pillow("im = Image.open('" + ppm + "').convert('RGB')\n"
                               "print(im.size, ''.join(bytes(im.getpixel((x * 90 + 45, y * 90 + 45))).hex()\n"
                               "                       for y in range(8) for x in range(4)))\n");
}

TEST(EpsGhostscript, RendersGreyAndColourPagesAsTheImage) {
  ASSERT_TRUE(vrc::test::program_available("gs")) << "Ghostscript not installed: scripts/setup.sh installs it";
  ErrorCapture errors;
  TempDir folder;
  for (uint16_t type : {ZEP_Y8, ZEP_RGB24}) {
    // 4 x 8 pixels fill 360 x 720 points: each pixel is a 90-point square.
    ScopedImage image;
    vrc::test::make_pattern_image(image, 4, 8, type);
    const std::string path = folder.file("page" + std::to_string(type) + ".eps");
    ASSERT_EQ(write_eps(image, path), 0u);
    Bytes wanted;
    for (uint32_t y = 0; y < 8; ++y) {
      const Bytes line = vrc::test::line_bytes(image, y, type == ZEP_RGB24 ? 12 : 4);
      for (uint32_t x = 0; x < 4; ++x) {
        if (type == ZEP_RGB24) wanted.insert(wanted.end(), line.begin() + 3 * x, line.begin() + 3 * x + 3);
        else wanted.insert(wanted.end(), 3, line[x]);
      }
    }
    EXPECT_EQ(rendered_squares(path, folder.file("page.ppm")), "(360, 720) " + vrc::test::hex(wanted) + "\n")
        << "type " << type;
  }
}

}  // namespace
