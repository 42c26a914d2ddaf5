// zep: command-line front end of the imaging library.
#include "tools/zep/zep_tool.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace {

void usage(FILE *out) {
  using zep_tool::Case;
  const std::string writable = zep_tool::format_list(zep_tool::is_writable, Case::Lower, "|", "|");
  const std::string readable =
      zep_tool::format_list(zep_tool::is_readable, Case::Upper, ", ", " or ");
  std::fprintf(
      out,
      "usage: zep COMMAND [ARGS]\n"
      "commands:\n"
      "  info FILE...                 show the format, size, pixel format and depth of "
      "image files;\n"
      "                               of a JPEG file its sampling, tables and frames\n"
      "  convert IN OUT [--format %s] [--type Y8|Y16|RGB24|BGR24|...]\n"
      "                 [--quality Q]\n"
      "                               read IN (%s, recognised by its content) and\n"
      "                               write OUT; the format defaults to OUT's extension, "
      "the\n"
      "                               pixel format to IN's (JPEG decodes to Y8 or RGB24);\n"
      "                               Q is the JPEG quality scale, 1 to 400 (16: the\n"
      "                               standard tables, larger: finer and bigger files)\n"
      "  demo [FOLDER]                make images in several pixel formats, print their "
      "parameters\n"
      "                               and write them as %s into FOLDER (zep-demo),\n"
      "                               with a numbered sequence seq001.tif ... seq012.tif\n"
      "  seq info FILE [--frames]     show a sequence file's format, frame count, size and\n"
      "                               pixel format; --frames lists each frame's number,\n"
      "                               time stamp and size\n"
      "  seq extract FILE N OUT       write frame N (from 1) as the image file OUT\n"
      "  seq pack OUT.mraw|OUT.mjpg IN... [--quality Q]\n"
      "                               make a sequence file of image files of one size\n"
      "                               (MRAW frames take the first one's pixel format; MJPEG\n"
      "                               frames are coded at quality scale Q)\n"
      "  seq unpack FILE PREFIX.ext   write every frame as PREFIX001.ext, PREFIX002.ext,\n"
      "                               ... (seq shows progress on a terminal unless --quiet)\n"
      "  help                         show this text\n",
      writable.c_str(), readable.c_str(),
      zep_tool::format_list(zep_tool::is_readable, Case::Upper, ", ", " and ").c_str());
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) {
    usage(stderr);
    return zep_tool::kUsage;
  }
  const std::string_view command = argv[1];
  if (command == "--help" || command == "help" || command == "-h") {
    usage(stdout);
    return zep_tool::kSuccess;
  }
  zep_tool::start_library();
  if (command == "demo") return zep_tool::run_demo(argc - 2, argv + 2);
  if (command == "info") return zep_tool::run_info(argc - 2, argv + 2);
  if (command == "convert") return zep_tool::run_convert(argc - 2, argv + 2);
  if (command == "seq") return zep_tool::run_seq(argc - 2, argv + 2);
  std::fprintf(stderr, "zep: unknown command '%s'\n", argv[1]);
  usage(stderr);
  return zep_tool::kUsage;
}
