// zep on files other programs write (Pillow, ImageMagick, tiffcp, Ghostscript and hand-made header
// variants, made by foreign_corpus.py): every file converts to BMP and TIFF with the pixels Pillow
// decodes, or zep warns about what it changed, or it refuses with a first line naming the cause.
#include "files/files_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace {

using vrc::test::TempDir;

// What zep does with one file of the corpus. A file that is read converts with exit 0, printing
// no warning where `bmp_warning` or `tiff_warning` is empty and else a "zep: warning: FILE: "
// line holding that text; its pixels are then those Pillow decodes unless `pixels` is false. A
// refused file makes info and convert fail with the first line "zep: FILE: " + `refusal`.
struct ForeignFile {
  const char *name;
  const char *refusal;
  const char *bmp_warning;
  const char *tiff_warning;
  bool pixels;
};

ForeignFile exact(const char *name) { return {name, nullptr, "", "", true}; }
ForeignFile warned(const char *name, const char *bmp_warning, const char *tiff_warning,
                   bool pixels = true) {
  return {name, nullptr, bmp_warning, tiff_warning, pixels};
}
ForeignFile refused(const char *name, const char *refusal) {
  return {name, refusal, "", "", false};
}

void PrintTo(const ForeignFile &file, std::ostream *out) { *out << file.name; }

struct ToolRun {
  int status = 0;
  std::string output;  // standard error, then standard output
};

ToolRun zep(const std::string &arguments) {
  ToolRun run;
  run.output = vrc::test::run_command(std::string(ZEP_TOOL) + " " + arguments + " 2>&1 >/dev/null",
                                      &run.status);
  return run;
}

std::string first_line(const std::string &text) { return text.substr(0, text.find('\n')); }

// "same" when Pillow decodes the same pixels from both files: 16-bit grey as values, all else as
// RGB (so an alpha channel is not compared); "skip" when 16-bit samples became 8-bit ones.
std::string compare_with_pillow(const std::string &input, const std::string &output) {
  return vrc::test::run_pillow(
      "a, b = Image.open('" + input + "'), Image.open('" + output +
      "')\n"
      "wide = lambda m: m.startswith('I;16')\n"
      "if wide(a.mode) != wide(b.mode): print('skip')\n"
      "elif wide(a.mode): print('same' if list(a.getdata()) == list(b.getdata()) else 'differ')\n"
      "else: print('same' if a.convert('RGB').tobytes() == b.convert('RGB').tobytes() "
      "else 'differ')\n");
}

class ForeignFiles : public testing::TestWithParam<ForeignFile> {
 public:
  static void SetUpTestSuite() {
    s_folder = std::make_unique<TempDir>();
    int status = 0;
    const std::string printed = vrc::test::run_command(
        "/usr/bin/python3 " FOREIGN_CORPUS " " + s_folder->file("") + " 2>&1", &status);
    ASSERT_EQ(status, 0) << printed;
    // Files from other programs seed the fuzzing of the inspection that zep runs before a read.
    for (const auto &entry : std::filesystem::directory_iterator(s_folder->file(""))) {
      vrc::test::write_seed("file_inspect_fuzz", entry.path().filename().string(),
                            vrc::test::read_file(entry.path().string()));
    }
  }
  static void TearDownTestSuite() { s_folder.reset(); }

 protected:
  static std::unique_ptr<TempDir> s_folder;
};

std::unique_ptr<TempDir> ForeignFiles::s_folder;

TEST_P(ForeignFiles, ConvertToBmpAndTiffAsPillowDecodes) {
  const ForeignFile &file = GetParam();
  const std::string input = s_folder->file(file.name);
  if (file.refusal != nullptr) {
    const std::string refusal = "zep: " + input + ": " + file.refusal;
    const ToolRun info = zep("info " + input);
    EXPECT_EQ(info.status, 1);
    EXPECT_EQ(first_line(info.output), refusal);
    const ToolRun convert = zep("convert " + input + " " + s_folder->file("refused.bmp"));
    EXPECT_EQ(convert.status, 1);
    EXPECT_EQ(first_line(convert.output), refusal);
    return;
  }
  for (const auto &[extension, warning] :
       {std::pair{".bmp", file.bmp_warning}, std::pair{".tif", file.tiff_warning}}) {
    SCOPED_TRACE(extension);
    const std::string output = s_folder->file(std::string(file.name) + extension);
    const ToolRun convert = zep("convert " + input + " " + output);
    ASSERT_EQ(convert.status, 0) << convert.output;
    const bool warned = convert.output.find("zep: warning: " + input + ": ") != std::string::npos;
    EXPECT_EQ(warned, *warning != '\0') << convert.output;
    EXPECT_NE(convert.output.find(warning), std::string::npos) << convert.output;
    if (!file.pixels) continue;
    const std::string verdict = compare_with_pillow(input, output);
    EXPECT_TRUE(verdict == "same\n" || (warned && verdict == "skip\n")) << verdict;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Corpus, ForeignFiles,
    testing::Values(
        exact("pillow_rgb24.bmp"), exact("magick_bmp3_rgb24.bmp"), exact("pillow_rgb24.tif"),
        exact("pillow_grey8.tif"), exact("tiffcp_grey8_big_endian.tif"),
        exact("tiffcp_rgb24_big_endian.tif"), exact("tiffcp_rgb24_strips.tif"),
        exact("magick_rgb24.tif"),
        warned("pillow_grey8.bmp", "",
               "TIFF files cannot hold PALETTED pixels; converting them to Y8"),
        warned("pillow_palette256.bmp", "",
               "TIFF files cannot hold PALETTED pixels; converting them to RGB24"),
        warned("pillow_palette16.bmp", "", "converting them to RGB24"),
        warned("tiffcp_grey16_big_endian.tif",
               "BMP files cannot hold Y16 pixels; converting them to Y8", ""),
        warned("pillow_grey16_little_endian.tif",
               "little-endian 16-bit samples: bytes swapped after reading",
               "little-endian 16-bit samples: bytes swapped after reading"),
        warned("hand_white_is_zero8.tif", "WhiteIsZero grey: values inverted after reading",
               "WhiteIsZero grey: values inverted after reading"),
        // Pillow does not invert 16-bit WhiteIsZero samples, so there is nothing to compare with.
        warned("hand_white_is_zero16.tif", "WhiteIsZero grey", "WhiteIsZero grey", false),
        warned("pillow_palette8_little_endian.tif", "", "converting them to RGB24"),
        warned("tiffcp_palette8_big_endian.tif",
               "colour map: the high byte of each 16-bit value taken after reading",
               "the high byte of each 16-bit value"),
        warned("pillow_rgba.tif", "the fourth sample of each pixel (alpha) is not kept",
               "(alpha) is not kept"),
        warned("hand_cut_short.bmp",
               "the file ends before its pixel data does: 336 of 2576 bytes present",
               "the file ends before its pixel data does", false),
        warned("hand_cut_short.tif", "the file ends before its pixel data does",
               "the file ends before its pixel data does", false),
        refused("magick_default_v5.bmp", "v5 BMP header: pixel data at offset 138, not 54"),
        refused("magick_os2.bmp",
                "OS/2 BMP header (12 bytes) is not supported (only the 40-byte Windows header)"),
        refused("magick_4bit.bmp", "4-bit BMP is not supported (only 8 and 24 bits)"),
        refused("pillow_1bit.bmp", "1-bit BMP is not supported (only 8 and 24 bits)"),
        refused("hand_top_down.bmp", "top-down BMP (negative height) is not supported"),
        refused("hand_rle8.bmp", "RLE8-compressed BMP is not supported (only uncompressed)"),
        refused("hand_zero_width.bmp", "the image has no pixels (0 x 23)"),
        refused("magick_bigtiff.tif", "BigTIFF is not supported (only classic TIFF)"),
        refused("tiffcp_tiled.tif", "tiled TIFF is not supported (only strips)"),
        refused("tiffcp_planar.tif",
                "planar TIFF (PlanarConfiguration 2) is not supported (only interleaved samples)"),
        refused("tiffcp_lzw.tif", "LZW-compressed TIFF is not supported (only uncompressed)"),
        refused("pillow_deflate.tif",
                "Deflate-compressed TIFF is not supported (only uncompressed)"),
        refused("pillow_packbits.tif",
                "PackBits-compressed TIFF is not supported (only uncompressed)"),
        refused("pillow_float.tif",
                "floating-point TIFF samples are not supported (only unsigned integers)"),
        refused("pillow_signed32.tif",
                "signed TIFF samples are not supported (only unsigned integers)"),
        refused("pillow_cmyk.tif", "CMYK TIFF is not supported (only grey, RGB and palette)"),
        refused("pillow_ycbcr.tif", "YCbCr TIFF is not supported (only grey, RGB and palette)"),
        refused("pillow_grey_alpha.tif",
                "grey TIFF with 2 samples per pixel is not supported (only 1)"),
        refused("magick_rgb48.tif", "16-bit RGB TIFF is not supported (only 8 bits per sample)"),
        refused("magick_orientation4.tif",
                "TIFF Orientation 4 is not supported (only 1, rows from the top, left to right)"),
        refused("hand_four_samples_16384x65000.tif",
                "4-sample TIFF wider than 16383 pixels is not supported"),
        refused(
            "pillow.eps",
            "EPS not in this library's layout (only hexadecimal image pages as zep writes them)"),
        refused(
            "ghostscript.eps",
            "EPS not in this library's layout (only hexadecimal image pages as zep writes them)")),
    [](const testing::TestParamInfo<ForeignFile> &param) {
      std::string name = param.param.name;
      for (char &c : name)
        if (c == '.') c = '_';
      return name;
    });

// A 1-bit TIFF is read, but its pixels have no bytes to convert.
TEST_F(ForeignFiles, OneBitTiffIsDescribedButNotConverted) {
  const std::string input = s_folder->file("pillow_1bit.tif");
  const ToolRun info = zep("info " + input);
  EXPECT_EQ(info.status, 0) << info.output;
  for (const char *output : {"one.bmp", "one.tif"}) {
    const ToolRun convert = zep("convert " + input + " " + s_folder->file(output));
    EXPECT_EQ(convert.status, 1);
    EXPECT_EQ(
        first_line(convert.output),
        "zep: " + input +
            ": 1-bit images cannot be converted: 1-bit data has no bytes in this image model");
  }
}

// The EPS reader drops the last colour of a paletted page; zep restores it from the file.
TEST_F(ForeignFiles, PalettedEpsKeepsItsLastColour) {
  const std::string bmp = s_folder->file("pillow_palette256.bmp");
  const std::string eps = s_folder->file("paletted.eps");
  const std::string back = s_folder->file("paletted_back.bmp");
  ASSERT_EQ(zep("convert " + bmp + " " + eps).status, 0);
  const ToolRun convert = zep("convert " + eps + " " + back);
  ASSERT_EQ(convert.status, 0) << convert.output;
  EXPECT_EQ(
      first_line(convert.output),
      "zep: warning: " + eps +
          ": EPS colour map: its last colour, which the reader drops, restored after reading");
  EXPECT_EQ(compare_with_pillow(bmp, back), "same\n");
}

}  // namespace
