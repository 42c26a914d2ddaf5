// zep seq: sequence files (MRAW, MJPEG) on the command line. `info` describes a file and its
// frames, `extract` writes one frame as an image file, `pack` makes a sequence of image files,
// `unpack` writes every frame to numbered image files.
#include "tools/zep/progress.h"
#include "tools/zep/sequence_format.h"
#include "tools/zep/zep_tool.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zep_tool {
namespace {

struct SeqRequest {
  bool quiet = false;
  bool list_frames = false;
  std::optional<uint16_t> quality;
  std::vector<const char *> files;
};

// Parses the options of a seq subcommand: --quiet for all, --frames for info, --quality N for
// pack. A message and nullopt on a mistake.
std::optional<SeqRequest> parse_seq(std::string_view subcommand, int argc, char **argv) {
  SeqRequest request;
  for (int i = 0; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--quiet") {
      request.quiet = true;
    } else if (argument == "--frames" && subcommand == "info") {
      request.list_frames = true;
    } else if (argument == "--quality" && subcommand == "pack") {
      const long quality = i + 1 < argc ? std::strtol(argv[i + 1], nullptr, 10) : 0;
      if (quality < 1 || quality > 400) {
        std::fprintf(stderr,
                     "zep: --quality needs a JPEG quality scale from 1 to 400 (16: the standard "
                     "tables)\n");
        return std::nullopt;
      }
      request.quality = static_cast<uint16_t>(quality);
      ++i;
    } else if (argument.starts_with("--")) {
      std::fprintf(stderr, "zep: seq %s: unknown option '%s'\n", std::string(subcommand).c_str(),
                   argv[i]);
      return std::nullopt;
    } else {
      request.files.push_back(argv[i]);
    }
  }
  return request;
}

// The image formats a frame can be written as, for messages: "bmp, tiff, eps or raw".
std::string image_extensions() { return format_list(is_writable, Case::Lower, ", ", " or "); }

bool file_readable(const char *path) {
  std::FILE *file = std::fopen(path, "rb");
  if (file == nullptr) return false;
  std::fclose(file);
  return true;
}

// Opens a sequence file of any format, with a message when that fails.
std::unique_ptr<SequenceReader> open_sequence(const char *path) {
  const SequenceFormat *format = sequence_format_of_file(path);
  if (format == nullptr) {
    if (!file_readable(path)) {
      std::fprintf(stderr, "zep: %s: cannot open the file\n", path);
    } else {
      std::fprintf(stderr, "zep: %s: not a sequence file (%s)\n", path,
                   sequence_format_names(false).c_str());
    }
    return nullptr;
  }
  std::unique_ptr<SequenceReader> reader = format->open(path);
  if (!reader) std::fprintf(stderr, "zep: %s: cannot read the %s file\n", path, format->name);
  return reader;
}

// Writes `image` as the image file `path` (format from the extension); pixel formats the file
// cannot hold are converted to RGB24 (colour) or Y8 (grey) first.
bool write_frame_file(uint32_t image, const std::string &path) {
  if (!path_fits(path.c_str())) return false;
  const std::optional<uint16_t> format = output_format_from_extension(path);
  if (!format) {
    std::fprintf(stderr, "zep: cannot tell the image format from '%s' (%s)\n", path.c_str(),
                 image_extensions().c_str());
    return false;
  }
  uint32_t written = image;
  Image converted;
  const uint32_t type = ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE);
  if (!format_accepts(*format, type)) {
    const uint16_t fallback = ZEP_image_is_colour(image) == 1 ? ZEP_RGB24 : ZEP_Y8;
    if (!converted.created() || ZEP_IS_ERROR(ZEP_image_convert(image, converted.handle(), fallback,
                                                               0, ZEP_MODE_NEXT_STRIP))) {
      std::fprintf(stderr, "zep: cannot convert %s pixels to %s for '%s'\n", type_name(type),
                   type_name(fallback), path.c_str());
      return false;
    }
    written = converted.handle();
  }
  if (ZEP_IS_ERROR(write_image(written, path.c_str(), *format))) {
    std::fprintf(stderr, "zep: cannot write '%s'\n", path.c_str());
    return false;
  }
  return true;
}

std::string utc_text(int64_t seconds) {
  const std::time_t time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  char text[32] = "?";
  if (gmtime_r(&time, &parts) != nullptr)
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &parts);
  return text;
}

int list_frames(SequenceReader &reader, bool quiet) {
  Image frame;
  if (!frame.created()) return kFailure;
  std::printf("\n frame  time stamp                          bytes\n");
  Progress progress("reading", reader.frame_count(), quiet);
  for (uint32_t number = 1; number <= reader.frame_count(); ++number) {
    if (!reader.read(number, frame.handle())) {
      std::fprintf(stderr, "zep: cannot read frame %u\n", number);
      return kFailure;
    }
    const FrameInfo info = reader.last_frame();
    std::printf("%6u  %10" PRId64 " %s  %" PRIu64 "\n", info.number, info.time_stamp,
                utc_text(info.time_stamp).c_str(), info.bytes);
    progress.update(number);
  }
  progress.finish();
  return kSuccess;
}

int seq_info(const SeqRequest &request) {
  if (request.files.size() != 1) {
    std::fprintf(stderr, "zep: seq info needs one sequence file\n");
    return kUsage;
  }
  const char *path = request.files[0];
  std::unique_ptr<SequenceReader> reader = open_sequence(path);
  if (!reader) return kFailure;
  const uint32_t image = reader->geometry();
  std::printf("file:    %s\n", path);
  std::printf("format:  %s\n", sequence_format_of_file(path)->name);
  std::printf("frames:  %u\n", reader->frame_count());
  std::printf("size:    %u x %u\n", ZEP_image_get_parameter(image, ZEP_IMAGE_WIDTH),
              ZEP_image_get_parameter(image, ZEP_IMAGE_HEIGHT));
  std::printf("pixels:  %s\n", type_name(ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE)));
  std::printf("depth:   %u bits per pixel\n", ZEP_image_get_parameter(image, ZEP_IMAGE_DEPTH));
  return request.list_frames ? list_frames(*reader, request.quiet) : kSuccess;
}

int seq_extract(const SeqRequest &request) {
  if (request.files.size() != 3) {
    std::fprintf(stderr, "zep: seq extract needs a sequence file, a frame number and an output\n");
    return kUsage;
  }
  const char *path = request.files[0];
  char *end = nullptr;
  const unsigned long number = std::strtoul(request.files[1], &end, 10);
  if (end == request.files[1] || *end != '\0') {
    std::fprintf(stderr, "zep: '%s' is not a frame number\n", request.files[1]);
    return kUsage;
  }
  std::unique_ptr<SequenceReader> reader = open_sequence(path);
  if (!reader) return kFailure;
  if (number < 1 || number > reader->frame_count()) {
    std::fprintf(stderr, "zep: %s: no frame %s (the file holds frames 1 to %u)\n", path,
                 request.files[1], reader->frame_count());
    return kFailure;
  }
  Image frame;
  if (!frame.created() || !reader->read(static_cast<uint32_t>(number), frame.handle())) {
    std::fprintf(stderr, "zep: %s: cannot read frame %lu\n", path, number);
    return kFailure;
  }
  if (!write_frame_file(frame.handle(), request.files[2])) return kFailure;
  std::printf("%s: frame %lu of %s\n", request.files[2], number, path);
  return kSuccess;
}

// Reads the image file `path` into `frame` as the next frame of a pack whose first frame is
// `first` (0 while reading the first frame). Returns the image to write: `frame`, or its
// conversion to the first frame's pixel format in `converted`; 0 with a message on failure.
uint32_t read_pack_frame(const char *path, Image &frame, Image &converted, uint32_t first) {
  if (!path_fits(path) || !frame.created() || !converted.created()) return 0;
  if (ZEP_IS_ERROR(read_whole_image(frame.handle(), path))) {
    std::fprintf(stderr, "zep: cannot read '%s'\n", path);
    return 0;
  }
  if (first == 0) return frame.handle();
  const uint32_t width = ZEP_image_get_parameter(frame.handle(), ZEP_IMAGE_WIDTH);
  const uint32_t height = ZEP_image_get_parameter(frame.handle(), ZEP_IMAGE_HEIGHT);
  const uint32_t first_width = ZEP_image_get_parameter(first, ZEP_IMAGE_WIDTH);
  const uint32_t first_height = ZEP_image_get_parameter(first, ZEP_IMAGE_HEIGHT);
  if (width != first_width || height != first_height) {
    std::fprintf(stderr,
                 "zep: %s: %u x %u, but the first frame is %u x %u (all frames of a sequence "
                 "have one size)\n",
                 path, width, height, first_width, first_height);
    return 0;
  }
  const uint32_t type = ZEP_image_get_parameter(frame.handle(), ZEP_IMAGE_TYPE);
  const uint32_t first_type = ZEP_image_get_parameter(first, ZEP_IMAGE_TYPE);
  if (type == first_type) return frame.handle();
  if (ZEP_IS_ERROR(ZEP_image_convert(frame.handle(), converted.handle(),
                                     static_cast<uint16_t>(first_type), 0, ZEP_MODE_NEXT_STRIP))) {
    std::fprintf(stderr, "zep: %s: cannot convert %s pixels to the first frame's %s\n", path,
                 type_name(type), type_name(first_type));
    return 0;
  }
  return converted.handle();
}

int seq_pack(const SeqRequest &request) {
  if (request.files.size() < 2) {
    std::fprintf(stderr, "zep: seq pack needs an output sequence file and image files\n");
    return kUsage;
  }
  const char *output = request.files[0];
  const SequenceFormat *format = sequence_format_of_name(output);
  if (format == nullptr) {
    std::fprintf(stderr, "zep: cannot tell the sequence format from '%s' (%s)\n", output,
                 sequence_format_names(true).c_str());
    return kUsage;
  }
  if (request.quality && !format->takes_quality) {
    std::fprintf(stderr, "zep: --quality does not apply to %s files, which are not compressed\n",
                 format->name);
    return kUsage;
  }
  std::unique_ptr<SequenceWriter> writer = format->create(output, {request.quality});
  if (!writer) {
    std::fprintf(stderr, "zep: cannot create '%s'\n", output);
    return kFailure;
  }
  const uint32_t given = static_cast<uint32_t>(request.files.size() - 1);
  Image first;
  bool packed = true;
  Progress progress("packing", given, request.quiet);
  for (uint32_t index = 0; packed && index < given; ++index) {
    const char *input = request.files[index + 1];
    Image frame;
    Image converted;
    const uint32_t to_write = read_pack_frame(input, index == 0 ? first : frame, converted,
                                              index == 0 ? 0 : first.handle());
    packed = to_write != 0 && writer->write(to_write);
    if (to_write != 0 && !packed)
      std::fprintf(stderr, "zep: cannot add '%s' to '%s'\n", input, output);
    progress.update(index + 1);
  }
  progress.finish();
  uint32_t held = 0;
  if (!writer->finish(held) || !packed) {
    std::remove(output);
    std::fprintf(stderr, "zep: '%s' not written\n", output);
    return kFailure;
  }
  const uint32_t image = first.handle();
  std::printf("%s: %s, %u frame%s, %u x %u, %s\n", output, format->name, held, held == 1 ? "" : "s",
              ZEP_image_get_parameter(image, ZEP_IMAGE_WIDTH),
              ZEP_image_get_parameter(image, ZEP_IMAGE_HEIGHT),
              type_name(writer->stored_type(image)));
  if (held < given && format->shortfall_reason != nullptr) {
    std::printf("note: %s holds %u of the %u frames given: %s\n", output, held, given,
                format->shortfall_reason);
  }
  return kSuccess;
}

int seq_unpack(const SeqRequest &request) {
  if (request.files.size() != 2) {
    std::fprintf(stderr,
                 "zep: seq unpack needs a sequence file and an output name such as "
                 "frame.tif\n");
    return kUsage;
  }
  const std::string pattern = request.files[1];
  const std::size_t dot = pattern.rfind('.');
  if (dot == std::string::npos || !output_format_from_extension(pattern)) {
    std::fprintf(stderr, "zep: cannot tell the image format from '%s' (%s)\n", pattern.c_str(),
                 image_extensions().c_str());
    return kUsage;
  }
  std::unique_ptr<SequenceReader> reader = open_sequence(request.files[0]);
  if (!reader) return kFailure;
  const std::filesystem::path folder = std::filesystem::path(pattern).parent_path();
  std::error_code error;
  if (!folder.empty()) std::filesystem::create_directories(folder, error);
  if (error) {
    std::fprintf(stderr, "zep: cannot create folder '%s': %s\n", folder.c_str(),
                 error.message().c_str());
    return kFailure;
  }
  const uint32_t count = reader->frame_count();
  const int digits = std::max(3, static_cast<int>(std::to_string(count).size()));
  Image frame;
  if (!frame.created()) return kFailure;
  Progress progress("unpacking", count, request.quiet);
  for (uint32_t number = 1; number <= count; ++number) {
    char numbered[16];
    std::snprintf(numbered, sizeof numbered, "%0*u", digits, number);
    const std::string path = pattern.substr(0, dot) + numbered + pattern.substr(dot);
    if (!reader->read(number, frame.handle())) {
      std::fprintf(stderr, "zep: %s: cannot read frame %u\n", request.files[0], number);
      return kFailure;
    }
    if (!write_frame_file(frame.handle(), path)) return kFailure;
    progress.update(number);
  }
  progress.finish();
  std::printf("%s: %u frames written as %s%0*u%s ... %s%0*u%s\n", request.files[0], count,
              pattern.substr(0, dot).c_str(), digits, 1u, pattern.substr(dot).c_str(),
              pattern.substr(0, dot).c_str(), digits, count, pattern.substr(dot).c_str());
  return kSuccess;
}

}  // namespace

int run_seq(int argc, char **argv) {
  if (argc == 0) {
    std::fprintf(stderr, "zep: seq needs a subcommand: info, extract, pack or unpack\n");
    return kUsage;
  }
  const std::string_view subcommand = argv[0];
  const std::optional<SeqRequest> request = parse_seq(subcommand, argc - 1, argv + 1);
  if (!request) return kUsage;
  if (subcommand == "info") return seq_info(*request);
  if (subcommand == "extract") return seq_extract(*request);
  if (subcommand == "pack") return seq_pack(*request);
  if (subcommand == "unpack") return seq_unpack(*request);
  std::fprintf(stderr, "zep: unknown seq subcommand '%s' (info, extract, pack or unpack)\n",
               argv[0]);
  return kUsage;
}

}  // namespace zep_tool
