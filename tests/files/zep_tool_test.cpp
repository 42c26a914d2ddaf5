// The zep command-line tool as a user runs it: demo files, info, convert, and the exit statuses
// and messages of mistakes.
#include "files/zep_run.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using vrc::test::TempDir;
using vrc::test::ToolRun;
using vrc::test::zep;

TEST(ZepTool, DemoWritesEveryImageAsBmpTiffEpsAndJpeg) {
  TempDir folder;
  const std::string out = folder.file("demo");
  const ToolRun demo = zep("demo " + out);
  ASSERT_EQ(demo.status, 0) << demo.output;
  for (const char *label : {"grey", "rgb24", "bgrx32", "rgb16", "yuv422", "grey16"}) {
    for (const char *extension : {"bmp", "tif", "eps", "jpg"}) {
      const std::string path = out + "/" + label + "." + extension;
      const ToolRun info = zep("info " + path);
      EXPECT_EQ(info.status, 0) << path << "\n" << info.output;
      EXPECT_NE(info.output.find("size:    320 x 240\n"), std::string::npos) << info.output;
    }
  }
  EXPECT_NE(
      zep("info " + out + "/grey16.tif").output.find("pixels:  Y16\ndepth:   16 bits per pixel"),
      std::string::npos);
}

TEST(ZepTool, ConvertsBetweenFormatsAndPixelFormats) {
  TempDir folder;
  ASSERT_EQ(zep("demo " + folder.file("d")).status, 0);
  const ToolRun to_eps =
      zep("convert " + folder.file("d/rgb24.bmp") + " " + folder.file("grey.eps") + " --type Y8");
  ASSERT_EQ(to_eps.status, 0) << to_eps.output;
  EXPECT_EQ(to_eps.output, folder.file("grey.eps") + ": EPS, 320 x 240, Y8\n");
  const ToolRun info = zep("info " + folder.file("grey.eps"));
  EXPECT_NE(info.output.find("format:  EPS\nsize:    320 x 240\npixels:  Y8\n"), std::string::npos)
      << info.output;
  const ToolRun raw =
      zep("convert " + folder.file("grey.eps") + " " + folder.file("grey.data") + " --format raw");
  ASSERT_EQ(raw.status, 0) << raw.output;
  EXPECT_EQ(vrc::test::read_file(folder.file("grey.data")).size(), 320u * 240u);
}

const vrc::test::Bytes kDqt = {0xFF, 0xDB};

// JPEG files: written at a chosen quality scale, described (size, sampling, tables, frames) and
// read back as pictures for other files.
TEST(ZepTool, ConvertsToAndFromJpeg) {
  TempDir folder;
  ASSERT_EQ(zep("demo " + folder.file("d")).status, 0);
  const ToolRun fine = zep("convert " + folder.file("d/rgb24.bmp") + " " + folder.file("fine.jpg") +
                           " --quality 64");
  ASSERT_EQ(fine.status, 0) << fine.output;
  EXPECT_EQ(fine.output, folder.file("fine.jpg") + ": JPEG, 320 x 240, RGB24\n");
  ASSERT_EQ(zep("convert " + folder.file("d/rgb24.bmp") + " " + folder.file("coarse.jpeg") +
                " --quality 8")
                .status,
            0);
  // The first luminance quantiser is 16 at scale 16: twice that at 8, a quarter at 64.
  const auto first_quantiser = [&](const char *name) {
    const vrc::test::Bytes file = vrc::test::read_file(folder.file(name));
    const std::size_t dqt =
        std::search(file.begin(), file.end(), kDqt.begin(), kDqt.end()) - file.begin();
    return dqt + 5 < file.size() ? int{file[dqt + 5]} : -1;
  };
  EXPECT_EQ(first_quantiser("fine.jpg"), 4);
  EXPECT_EQ(first_quantiser("coarse.jpeg"), 32);
  const ToolRun info = zep("info " + folder.file("fine.jpg"));
  EXPECT_NE(info.output.find(
                "format:  JPEG\nsize:    320 x 240\nsampling: YUV 4:2:2 (Y 2 x 1, U and V 1 x 1)\n"
                "tables:  2 quantisation; Huffman DC0 DC1 AC0 AC1\nframes:  1\n"),
            std::string::npos)
      << info.output;
  EXPECT_NE(zep("info " + folder.file("d/grey.jpg")).output.find("sampling: grey (1 component)"),
            std::string::npos);
  const ToolRun back = zep("convert " + folder.file("fine.jpg") + " " + folder.file("back.tif"));
  ASSERT_EQ(back.status, 0) << back.output;
  EXPECT_EQ(back.output, folder.file("back.tif") + ": TIFF, 320 x 240, RGB24\n");
  const ToolRun grey = zep("convert " + folder.file("d/grey.jpg") + " " + folder.file("grey.bmp"));
  EXPECT_EQ(grey.output, folder.file("grey.bmp") + ": BMP, 320 x 240, Y8\n");
}

TEST(ZepTool, MistakesGetAMessageAndAStatus) {
  TempDir folder;
  ASSERT_EQ(zep("demo " + folder.file("d")).status, 0);
  vrc::test::write_file(folder.file("notes.txt"), std::string("not an image\n"));
  const struct {
    std::string arguments;
    int status;
    const char *message;
  } cases[] = {
      {"", 2, "usage: zep COMMAND"},
      {"frob", 2, "unknown command 'frob'"},
      {"info", 2, "info needs a file"},
      {"info " + folder.file("none.bmp"), 1, "none.bmp: cannot open the file"},
      {"info " + folder.file("notes.txt"), 1, "not a BMP, TIFF, EPS or JPEG file"},
      {"convert " + folder.file("d/grey.bmp"), 2, "needs an input and an output file"},
      {"convert " + folder.file("d/grey.bmp") + " x.png", 2, "add --format bmp|tiff|eps|jpeg|raw"},
      {"convert " + folder.file("d/grey.bmp") + " x.jpg --quality 0", 2,
       "'0' is not a JPEG quality scale from 1 to 400"},
      {"convert " + folder.file("d/grey16.tif") + " " + folder.file("x.jpg") + " --type Y16", 1,
       "JPEG files cannot hold Y16 pixels"},
      {"convert " + folder.file("d/grey.bmp") + " x.bmp --type NOPE", 2,
       "unknown pixel format 'NOPE'"},
      {"convert " + folder.file("d/grey16.tif") + " " + folder.file("x.bmp") + " --type Y16", 1,
       "BMP files cannot hold Y16 pixels; choose others with --type"},
      {"convert " + folder.file("d/grey.bmp") + " /nonexistent/x.bmp", 1, "Failed to create file"},
  };
  for (const auto &c : cases) {
    const ToolRun run = zep(c.arguments);
    EXPECT_EQ(run.status, c.status) << c.arguments << "\n" << run.output;
    EXPECT_NE(run.output.find(c.message), std::string::npos) << c.arguments << "\n" << run.output;
  }
}

// A failure is printed once, as what the tool tried and, after a colon, the library's reason.
TEST(ZepTool, PrintsEachFailureOnceWithTheLibrarysReason) {
  TempDir folder;
  ASSERT_EQ(zep("demo " + folder.file("d")).status, 0);
  const ToolRun run = zep("convert " + folder.file("d/grey.bmp") + " /nonexistent/x.bmp");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.output,
            "zep: cannot write '/nonexistent/x.bmp': Failed to create file (error 0x10090000)\n");
  const ToolRun missing = zep("info " + folder.file("none.bmp"));
  EXPECT_EQ(missing.output, "zep: " + folder.file("none.bmp") +
                                ": cannot open the file: Failed to open file (error 0x10090000)\n");
}

}  // namespace
