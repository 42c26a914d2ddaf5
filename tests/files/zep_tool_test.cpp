// The zep command-line tool as a user runs it: demo files, info, convert, and the exit statuses
// and messages of mistakes.
#include "files/zep_run.h"

#include <gtest/gtest.h>

namespace {

using vrc::test::TempDir;
using vrc::test::ToolRun;
using vrc::test::zep;

TEST(ZepTool, DemoWritesEveryImageAsBmpTiffAndEps) {
  TempDir folder;
  const std::string out = folder.file("demo");
  const ToolRun demo = zep("demo " + out);
  ASSERT_EQ(demo.status, 0) << demo.output;
  for (const char *label : {"grey", "rgb24", "bgrx32", "rgb16", "yuv422", "grey16"}) {
    for (const char *extension : {"bmp", "tif", "eps"}) {
      const std::string path = out + "/" + label + "." + extension;
      const ToolRun info = zep("info " + path);
      EXPECT_EQ(info.status, 0) << path << "\n" << info.output;
      EXPECT_NE(info.output.find("size:    320 x 240\n"), std::string::npos) << info.output;
    }
  }
  EXPECT_NE(zep("info " + out + "/grey16.tif").output.find("pixels:  Y16\ndepth:   16 bits per pixel"),
            std::string::npos);
}

TEST(ZepTool, ConvertsBetweenFormatsAndPixelFormats) {
  TempDir folder;
  ASSERT_EQ(zep("demo " + folder.file("d")).status, 0);
  const ToolRun to_eps = zep("convert " + folder.file("d/rgb24.bmp") + " " + folder.file("grey.eps") + " --type Y8");
  ASSERT_EQ(to_eps.status, 0) << to_eps.output;
  EXPECT_EQ(to_eps.output, folder.file("grey.eps") + ": EPS, 320 x 240, Y8\n");
  const ToolRun info = zep("info " + folder.file("grey.eps"));
  EXPECT_NE(info.output.find("format:  EPS\nsize:    320 x 240\npixels:  Y8\n"), std::string::npos) << info.output;
  const ToolRun raw = zep("convert " + folder.file("grey.eps") + " " + folder.file("grey.data") + " --format raw");
  ASSERT_EQ(raw.status, 0) << raw.output;
  EXPECT_EQ(vrc::test::read_file(folder.file("grey.data")).size(), 320u * 240u);
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
      {"convert " + folder.file("d/grey.bmp") + " x.png", 2, "add --format bmp|tiff|eps|raw"},
      {"convert " + folder.file("d/grey.bmp") + " x.bmp --type NOPE", 2, "unknown pixel format 'NOPE'"},
      {"convert " + folder.file("d/grey16.tif") + " " + folder.file("x.bmp"), 1, "BMP files cannot hold Y16 pixels"},
      {"convert " + folder.file("d/grey.bmp") + " /nonexistent/x.bmp", 1, "Failed to create file"},
  };
  for (const auto &c : cases) {
    const ToolRun run = zep(c.arguments);
    EXPECT_EQ(run.status, c.status) << c.arguments << "\n" << run.output;
    EXPECT_NE(run.output.find(c.message), std::string::npos) << c.arguments << "\n" << run.output;
  }
}

}  // namespace
