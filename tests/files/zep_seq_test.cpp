// zep seq as a user runs it: the numbered sequence that zep demo writes packed into an MRAW file,
// described, unpacked and extracted again with the same pixels, and into an MJPEG file, which
// holds all but the last frame, within the codec's loss; and the messages and exit statuses of
// mistakes.
#include "files/mraw_support.h"
#include "files/zep_run.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

using vrc::test::Bytes;
using vrc::test::ScopedImage;
using vrc::test::TempDir;

using vrc::test::ToolRun;
using vrc::test::zep;

// The pixels of an image file, read whole through the library.
Bytes pixels_of(const std::string &path) {
  ScopedImage image;
  ZEP_image_set_infilename(image, path.c_str());
  EXPECT_EQ(ZEP_image_read(image, ZEP_FILE_UNKNOWN, ZEP_ACTION_CLOSE), 0u) << path;
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP,
                          ZEP_image_get_parameter(image, ZEP_IMAGE_HEIGHT));
  EXPECT_EQ(ZEP_image_read(image, ZEP_FILE_UNKNOWN, ZEP_ACTION_DATA), 0u) << path;
  return vrc::test::strip_bytes(image);
}

std::string numbered(const std::string &prefix, uint32_t number, const std::string &extension) {
  char digits[8];
  std::snprintf(digits, sizeof digits, "%03u", number);
  return prefix + digits + extension;
}

class ZepSeq : public testing::Test {
 protected:
  void SetUp() override {
    ZEP_Init();
    ZEP_ErrHandlerInstall(nullptr);
    ASSERT_EQ(zep("demo " + folder.file("d")).status, 0);
    const ToolRun pack = zep("seq pack " + sequence + demo_frames());
    ASSERT_EQ(pack.status, 0) << pack.output;
    EXPECT_EQ(pack.output, sequence + ": MRAW, 12 frames, 160 x 120, RGB24\n");
  }

  // The twelve frames zep demo writes, each after a blank.
  std::string demo_frames() const {
    std::string inputs;
    for (uint32_t frame = 1; frame <= 12; ++frame) {
      inputs += ' ';
      inputs += numbered(folder.file("d/seq"), frame, ".tif");
    }
    return inputs;
  }

  TempDir folder;
  const std::string sequence = folder.file("demo.mraw");
};

TEST_F(ZepSeq, InfoDescribesTheFileAndListsItsFrames) {
  const ToolRun info = zep("seq info " + sequence);
  ASSERT_EQ(info.status, 0) << info.output;
  EXPECT_EQ(info.output, "file:    " + sequence +
                             "\nformat:  MRAW\nframes:  12\nsize:    160 x 120\npixels:  RGB24\n"
                             "depth:   24 bits per pixel\n");
  const ToolRun frames = zep("seq info --frames --quiet " + sequence);
  ASSERT_EQ(frames.status, 0) << frames.output;
  EXPECT_NE(frames.output.find(" frame  time stamp"), std::string::npos) << frames.output;
  for (uint32_t frame = 1; frame <= 12; ++frame) {
    const std::string row = (frame < 10 ? "     " : "    ") + std::to_string(frame) + "  ";
    const std::size_t at = frames.output.find("\n" + row);
    ASSERT_NE(at, std::string::npos) << frame << "\n" << frames.output;
    const std::size_t end = frames.output.find('\n', at + 1);
    EXPECT_TRUE(frames.output.substr(at, end - at).ends_with(" UTC  57600")) << frames.output;
  }
  EXPECT_EQ(frames.output.find('\r'), std::string::npos);  // no progress line off a terminal
}

TEST_F(ZepSeq, UnpackAndExtractGiveBackTheFramesPacked) {
  const std::string prefix = folder.file("out/frame");
  const ToolRun unpack = zep("seq unpack " + sequence + " " + prefix + ".bmp");
  ASSERT_EQ(unpack.status, 0) << unpack.output;
  EXPECT_EQ(unpack.output,
            sequence + ": 12 frames written as " + prefix + "001.bmp ... " + prefix + "012.bmp\n");
  for (uint32_t frame = 1; frame <= 12; ++frame) {
    EXPECT_EQ(pixels_of(numbered(prefix, frame, ".bmp")),
              pixels_of(numbered(folder.file("d/seq"), frame, ".tif")))
        << frame;
  }
  EXPECT_FALSE(std::filesystem::exists(numbered(prefix, 13, ".bmp")));

  const ToolRun extract = zep("seq extract " + sequence + " 7 " + folder.file("seven.tif"));
  ASSERT_EQ(extract.status, 0) << extract.output;
  EXPECT_EQ(pixels_of(folder.file("seven.tif")), pixels_of(folder.file("d/seq007.tif")));
}

TEST_F(ZepSeq, PackConvertsFramesToTheFirstOnesPixelFormat) {
  const std::string mixed = folder.file("mixed.mraw");
  const ToolRun pack = zep("seq pack " + mixed + " " + folder.file("d/rgb24.tif") + " " +
                           folder.file("d/bgrx32.tif") + " --quiet");
  ASSERT_EQ(pack.status, 0) << pack.output;
  EXPECT_EQ(pack.output, mixed + ": MRAW, 2 frames, 320 x 240, RGB24\n");
}

TEST_F(ZepSeq, MistakesGetAMessageAndAStatus) {
  vrc::test::write_file(folder.file("broken.mraw"), std::string("MRAW and then nothing useful"));
  const std::string d = folder.file("d/");
  const struct {
    std::string arguments;
    int status;
    const char *message;
  } cases[] = {
      {"seq", 2, "seq needs a subcommand"},
      {"seq frob", 2, "unknown seq subcommand 'frob'"},
      {"seq info", 2, "seq info needs one sequence file"},
      {"seq info " + sequence + " --loud", 2, "seq info: unknown option '--loud'"},
      {"seq info " + folder.file("none.mraw"), 1, "none.mraw: cannot open the file"},
      {"seq info " + d + "grey.bmp", 1, "grey.bmp: not a sequence file (MRAW or MJPEG)"},
      {"seq info " + folder.file("broken.mraw"), 1, "broken.mraw: cannot read the MRAW file"},
      {"seq extract " + sequence + " 13 x.bmp", 1, "no frame 13 (the file holds frames 1 to 12)"},
      {"seq extract " + sequence + " 0 x.bmp", 1, "no frame 0"},
      {"seq extract " + sequence + " two x.bmp", 2, "'two' is not a frame number"},
      {"seq extract " + sequence + " 1 " + folder.file("x.png"), 1, "cannot tell the image format"},
      {"seq pack " + folder.file("x.avi") + " " + d + "seq001.tif", 2,
       "cannot tell the sequence format"},
      {"seq pack " + folder.file("x.mraw") + " --quality 50 " + d + "seq001.tif", 2,
       "--quality does not apply to MRAW"},
      {"seq pack " + folder.file("x.mraw"), 2, "needs an output sequence file and image files"},
      {"seq pack " + folder.file("x.mjpg") + " --quality 401 " + d + "seq001.tif", 2,
       "--quality needs a JPEG quality scale from 1 to 400"},
      {"seq pack " + folder.file("x.mraw") + " " + d + "seq001.tif " + d + "rgb24.tif", 1,
       "320 x 240, but the first frame is 160 x 120"},
      {"seq pack " + folder.file("x.mraw") + " " + d + "seq001.tif " + d + "missing.tif", 1,
       "cannot read"},
      {"seq pack /nonexistent/x.mraw " + d + "seq001.tif", 1,
       "cannot create '/nonexistent/x.mraw'"},
      {"seq unpack " + sequence + " " + folder.file("frames"), 2, "cannot tell the image format"},
  };
  for (const auto &c : cases) {
    const ToolRun run = zep(c.arguments);
    EXPECT_EQ(run.status, c.status) << c.arguments << "\n" << run.output;
    EXPECT_NE(run.output.find(c.message), std::string::npos) << c.arguments << "\n" << run.output;
  }
  EXPECT_FALSE(std::filesystem::exists(folder.file("x.mraw")));  // a failed pack leaves no file
}

// The mean absolute difference of two byte strings of one length.
double mean_difference(const Bytes &a, const Bytes &b) {
  EXPECT_EQ(a.size(), b.size());
  double sum = 0;
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) sum += std::abs(a[i] - b[i]);
  return a.empty() ? 0 : sum / static_cast<double>(a.size());
}

TEST_F(ZepSeq, MjpegPackTellsWhatTheFileHoldsAndUnpacksWithinTheCodecsLoss) {
  const std::string mjpeg = folder.file("demo.mjpg");
  const ToolRun pack = zep("seq pack " + mjpeg + demo_frames() + " --quality 64");
  ASSERT_EQ(pack.status, 0) << pack.output;
  EXPECT_EQ(pack.output, mjpeg + ": MJPEG, 11 frames, 160 x 120, RGB24\nnote: " + mjpeg +
                             " holds 11 of the 12 frames given: an MJPEG file keeps its newest "
                             "frame in memory until the next one arrives, so the last frame "
                             "given is not stored (give it twice to keep it)\n");

  const ToolRun info = zep("seq info " + mjpeg);
  ASSERT_EQ(info.status, 0) << info.output;
  EXPECT_NE(info.output.find("format:  MJPEG\nframes:  11\nsize:    160 x 120\npixels:  RGB24\n"),
            std::string::npos)
      << info.output;

  const std::string prefix = folder.file("mjpeg-out/frame");
  const ToolRun unpack = zep("seq unpack " + mjpeg + " " + prefix + ".tif");
  ASSERT_EQ(unpack.status, 0) << unpack.output;
  for (uint32_t frame = 1; frame <= 11; ++frame) {
    EXPECT_LT(mean_difference(pixels_of(numbered(prefix, frame, ".tif")),
                              pixels_of(numbered(folder.file("d/seq"), frame, ".tif"))),
              4.0)
        << frame;
  }
  EXPECT_FALSE(std::filesystem::exists(numbered(prefix, 12, ".tif")));
  const ToolRun extract = zep("seq extract " + mjpeg + " 11 " + folder.file("eleven.bmp"));
  ASSERT_EQ(extract.status, 0) << extract.output;
  EXPECT_EQ(pixels_of(folder.file("eleven.bmp")), pixels_of(numbered(prefix, 11, ".tif")));
}

}  // namespace
