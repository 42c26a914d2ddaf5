// zep info and zep convert: what an image file holds, and converting a file into another file
// format and pixel format through the library.
#include "tools/zep/zep_tool.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace zep_tool {
namespace {

void list_accepted_types(uint16_t format) {
  std::fprintf(stderr, "      pixel formats %s files hold:", format_name(format));
  for (uint32_t type = ZEP_Y1; type < ZEP_TYPE_LIMIT; ++type) {
    if (format_accepts(format, type) && std::strcmp(type_name(type), "unknown") != 0) {
      std::fprintf(stderr, " %s", type_name(type));
    }
  }
  std::fprintf(stderr, "\n");
}

int describe(const char *path) {
  if (!path_fits(path)) return kFailure;
  const uint32_t format = ZEP_image_find_file_format(path);
  if (ZEP_IS_ERROR(format)) {
    fail("%s: cannot open the file", path);
    return kFailure;
  }
  if (format == ZEP_FILE_UNKNOWN) {
    std::fprintf(stderr, "zep: %s: not a %s file\n", path,
                 format_list(is_detected, Case::Upper, ", ", " or ").c_str());
    return kFailure;
  }
  if (format == ZEP_FILE_JPEG) return describe_jpeg(path);
  Image image;
  if (!image.created()) {
    fail("cannot create an image");
    return kFailure;
  }
  ZEP_image_set_infilename(image.handle(), path);
  if (ZEP_IS_ERROR(ZEP_image_read(image.handle(), ZEP_FILE_UNKNOWN, ZEP_ACTION_CLOSE))) {
    fail("%s: cannot read the %s header", path, format_name(format));
    return kFailure;
  }
  const uint32_t handle = image.handle();
  const uint32_t type = ZEP_image_get_parameter(handle, ZEP_IMAGE_TYPE);
  std::printf("file:    %s\n", path);
  std::printf("format:  %s\n", format_name(format));
  std::printf("size:    %u x %u\n", ZEP_image_get_parameter(handle, ZEP_IMAGE_WIDTH),
              ZEP_image_get_parameter(handle, ZEP_IMAGE_HEIGHT));
  std::printf("pixels:  %s\n", type_name(type));
  std::printf("depth:   %u bits per pixel", ZEP_image_get_parameter(handle, ZEP_IMAGE_DEPTH));
  if (type == ZEP_Y16)
    std::printf(" (%u significant)", ZEP_image_get_parameter(handle, ZEP_DATA_WIDTH));
  std::printf("\n");
  if (type == ZEP_PALETTED)
    std::printf("colours: %u\n", ZEP_image_get_parameter(handle, ZEP_CMAP_COLOURS));
  return kSuccess;
}

struct ConvertRequest {
  const char *input = nullptr;
  const char *output = nullptr;
  std::optional<uint16_t> format;
  std::optional<uint16_t> type;
  std::optional<uint16_t> quality;  // JPEG quality scale
};

constexpr unsigned kLowestQuality = 1;
constexpr unsigned kHighestQuality = 400;

std::optional<uint16_t> quality_from_text(const char *text) {
  char *end = nullptr;
  const unsigned long value = std::strtoul(text, &end, 10);
  if (end == text || *end != '\0' || value < kLowestQuality || value > kHighestQuality)
    return std::nullopt;
  return static_cast<uint16_t>(value);
}

// Parses IN OUT [--format F] [--type T] [--quality Q]; a message and nullopt on a mistake.
std::optional<ConvertRequest> parse_convert(int argc, char **argv) {
  ConvertRequest request;
  for (int i = 0; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--format" || argument == "--type" || argument == "--quality") {
      if (i + 1 == argc) {
        std::fprintf(stderr, "zep: %s needs a value\n", argv[i]);
        return std::nullopt;
      }
      const char *value = argv[++i];
      if (argument == "--format") {
        request.format = output_format_from_name(value);
        if (!request.format) {
          std::fprintf(stderr, "zep: unknown output format '%s' (%s)\n", value,
                       format_list(is_writable, Case::Lower, ", ", " or ").c_str());
          return std::nullopt;
        }
      } else if (argument == "--quality") {
        request.quality = quality_from_text(value);
        if (!request.quality) {
          std::fprintf(stderr,
                       "zep: quality '%s' is not a JPEG quality scale from %u to %u (16: the "
                       "standard tables, larger: finer)\n",
                       value, kLowestQuality, kHighestQuality);
          return std::nullopt;
        }
      } else {
        request.type = type_from_name(value);
        if (!request.type) {
          std::fprintf(stderr,
                       "zep: unknown pixel format '%s' (Y8, Y16, RGB24, BGR24, PALETTED, ...)\n",
                       value);
          return std::nullopt;
        }
      }
    } else if (argument.starts_with("--")) {
      std::fprintf(stderr, "zep: unknown option '%s'\n", argv[i]);
      return std::nullopt;
    } else if (request.input == nullptr) {
      request.input = argv[i];
    } else if (request.output == nullptr) {
      request.output = argv[i];
    } else {
      std::fprintf(stderr, "zep: too many files: '%s'\n", argv[i]);
      return std::nullopt;
    }
  }
  if (request.output == nullptr) {
    std::fprintf(stderr, "zep: convert needs an input and an output file\n");
    return std::nullopt;
  }
  if (!request.format) request.format = output_format_from_extension(request.output);
  if (!request.format) {
    std::fprintf(stderr, "zep: cannot tell the output format from '%s'; add --format %s\n",
                 request.output, format_list(is_writable, Case::Lower, "|", "|").c_str());
    return std::nullopt;
  }
  return request;
}

}  // namespace

int run_info(int argc, char **argv) {
  if (argc == 0) {
    std::fprintf(stderr, "zep: info needs a file\n");
    return kUsage;
  }
  int result = kSuccess;
  for (int i = 0; i < argc; ++i) {
    if (i > 0) std::printf("\n");
    if (describe(argv[i]) != kSuccess) result = kFailure;
  }
  return result;
}

int run_convert(int argc, char **argv) {
  const std::optional<ConvertRequest> request = parse_convert(argc, argv);
  if (!request) return kUsage;
  if (!path_fits(request->input) || !path_fits(request->output)) return kFailure;
  Image source;
  Image converted;
  if (!source.created() || !converted.created()) {
    fail("cannot create an image");
    return kFailure;
  }
  if (ZEP_IS_ERROR(read_whole_image(source.handle(), request->input))) {
    fail("cannot read '%s'", request->input);
    return kFailure;
  }
  uint32_t result = source.handle();
  const uint32_t source_type = ZEP_image_get_parameter(source.handle(), ZEP_IMAGE_TYPE);
  const uint32_t wanted_type = request->type.value_or(source_type);
  if (!format_accepts(*request->format, wanted_type)) {
    std::fprintf(stderr, "zep: %s files cannot hold %s pixels; choose others with --type\n",
                 format_name(*request->format), type_name(wanted_type));
    list_accepted_types(*request->format);
    return kFailure;
  }
  if (wanted_type != source_type) {
    if (ZEP_IS_ERROR(ZEP_image_convert(source.handle(), converted.handle(),
                                       static_cast<uint16_t>(wanted_type), 0,
                                       ZEP_MODE_NEXT_STRIP))) {
      fail("cannot convert %s pixels to %s", type_name(source_type), type_name(wanted_type));
      return kFailure;
    }
    result = converted.handle();
  }
  if (ZEP_IS_ERROR(write_image(result, request->output, *request->format, request->quality))) {
    fail("cannot write '%s'", request->output);
    return kFailure;
  }
  std::printf("%s: %s, %u x %u, %s\n", request->output, format_name(*request->format),
              ZEP_image_get_parameter(result, ZEP_IMAGE_WIDTH),
              ZEP_image_get_parameter(result, ZEP_IMAGE_HEIGHT), type_name(wanted_type));
  return kSuccess;
}

}  // namespace zep_tool
