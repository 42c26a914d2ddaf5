// zep: names of formats, failures printed once with the library's report as their reason, and
// whole-image reading and writing through the library's file functions.
#include "tools/zep/zep_tool.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

namespace zep_tool {
namespace {

// `text` with every character passed through `map` (std::toupper or std::tolower).
std::string mapped(std::string_view text, int (*map)(int)) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [map](unsigned char c) { return static_cast<char>(map(c)); });
  return result;
}

std::string upper(std::string_view text) { return mapped(text, std::toupper); }
std::string lower(std::string_view text) { return mapped(text, std::tolower); }

// Whether `extension` (lower case) is one of the format's blank-separated extensions.
bool has_extension(const ZEP_FILE_FORMAT_INFO &format, const std::string &extension) {
  std::istringstream words(format.extensions);
  for (std::string word; words >> word;) {
    if (word == extension) return true;
  }
  return false;
}

// The library's last report, kept until the failure it belongs to is printed.
struct Report {
  bool pending = false;
  uint32_t code = 0;
  std::string message;
};

Report &last_report() {
  static Report report;
  return report;
}

uint32_t remember_report(uint32_t, const char *, uint32_t code, const char *message) {
  last_report() = {true, code, message != nullptr ? message : ""};
  return 0;
}

}  // namespace

const char *type_name(uint32_t type) {
  const char *name = ZEP_pixel_format_name(type);
  return name != nullptr ? name : "unknown";
}

std::optional<uint16_t> type_from_name(std::string_view name) {
  const std::string wanted = upper(name);
  for (uint16_t type = 0; type < ZEP_TYPE_LIMIT; ++type) {
    const char *known = ZEP_pixel_format_name(type);
    if (known != nullptr && wanted == known) return type;
  }
  return std::nullopt;
}

std::vector<const ZEP_FILE_FORMAT_INFO *> file_formats() {
  std::vector<const ZEP_FILE_FORMAT_INFO *> formats;
  for (uint32_t i = 0; const ZEP_FILE_FORMAT_INFO *info = ZEP_file_format_info(i); ++i)
    formats.push_back(info);
  return formats;
}

bool is_readable(const ZEP_FILE_FORMAT_INFO &format) { return format.readable != 0; }
bool is_writable(const ZEP_FILE_FORMAT_INFO &format) { return format.writable != 0; }
bool is_detected(const ZEP_FILE_FORMAT_INFO &format) { return format.detected != 0; }

std::string format_list(bool (*keep)(const ZEP_FILE_FORMAT_INFO &), Case letters,
                        const char *separator, const char *last_separator) {
  std::vector<std::string> names;
  for (const ZEP_FILE_FORMAT_INFO *format : file_formats()) {
    if (keep(*format)) names.push_back(letters == Case::Lower ? lower(format->name) : format->name);
  }
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) list += i + 1 == names.size() ? last_separator : separator;
    list += names[i];
  }
  return list;
}

const char *format_name(uint32_t format) {
  for (const ZEP_FILE_FORMAT_INFO *info : file_formats()) {
    if (info->code == format) return info->name;
  }
  return "unknown";
}

std::optional<uint16_t> output_format_from_name(std::string_view name) {
  const std::string wanted = lower(name);
  for (const ZEP_FILE_FORMAT_INFO *info : file_formats()) {
    if (info->writable != 0 && (wanted == lower(info->name) || has_extension(*info, wanted)))
      return info->code;
  }
  return std::nullopt;
}

std::optional<uint16_t> output_format_from_extension(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || path.find('/', dot) != std::string_view::npos)
    return std::nullopt;
  const std::string extension = lower(path.substr(dot + 1));
  for (const ZEP_FILE_FORMAT_INFO *info : file_formats()) {
    if (info->writable != 0 && has_extension(*info, extension)) return info->code;
  }
  return std::nullopt;
}

void start_library() {
  ZEP_Init();
  ZEP_ErrHandlerInstall(&remember_report);
}

void fail(const char *format, ...) {
  std::string line = "zep: ";
  char what[512];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(what, sizeof what, format, arguments);
  va_end(arguments);
  line += what;
  Report &report = last_report();
  if (report.pending) {
    char why[64];
    std::snprintf(why, sizeof why, "error 0x%08x", report.code);
    line += ": " + (report.message.empty() ? std::string(why) : report.message + " (" + why + ")");
    report = {};
  }
  std::fprintf(stderr, "%s\n", line.c_str());
}

bool path_fits(const char *path) {
  if (std::strlen(path) < ZEP_NAME_LENGTH) return true;
  std::fprintf(stderr, "zep: %s: path too long (at most %d characters)\n", path,
               ZEP_NAME_LENGTH - 1);
  return false;
}

uint32_t read_whole_image(uint32_t image, const char *path) {
  if (ZEP_image_find_file_format(path) == ZEP_FILE_JPEG) return read_jpeg(image, path);
  ZEP_image_set_infilename(image, path);
  // The header first, so that the image is read as one strip of all its lines.
  const uint32_t status = ZEP_image_read(image, ZEP_FILE_UNKNOWN, ZEP_ACTION_CLOSE);
  if (ZEP_IS_ERROR(status)) return status;
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP,
                          ZEP_image_get_parameter(image, ZEP_IMAGE_HEIGHT));
  return ZEP_image_read(image, ZEP_FILE_UNKNOWN, ZEP_ACTION_DATA);
}

uint32_t write_image(uint32_t image, const char *path, uint16_t format,
                     std::optional<uint16_t> quality) {
  if (format == ZEP_FILE_JPEG) return write_jpeg(image, path, quality);
  ZEP_image_set_outfilename(image, path);
  return ZEP_image_write(image, 0, format, ZEP_ACTION_DATA);
}

bool format_accepts(uint16_t format, uint32_t type) {
  return ZEP_file_format_stores_type(format, type) != 0;
}

}  // namespace zep_tool
