// zep: names of formats, the error handler that prints the library's reports, and whole-image
// reading and writing through the library's file functions.
#include "tools/zep/zep_tool.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

namespace zep_tool {
namespace {

struct TypeName {
  uint16_t type;
  const char *name;
};

constexpr TypeName kTypes[] = {
    {ZEP_Y1, "Y1"},         {ZEP_Y8, "Y8"},         {ZEP_PALETTED, "PALETTED"},
    {ZEP_RGB8, "RGB8"},     {ZEP_RGB15, "RGB15"},   {ZEP_RGB16, "RGB16"},
    {ZEP_RGB24, "RGB24"},   {ZEP_BGR24, "BGR24"},   {ZEP_RGBX32, "RGBX32"},
    {ZEP_BGRX32, "BGRX32"}, {ZEP_XBGR32, "XBGR32"}, {ZEP_YUV422, "YUV422"},
    {ZEP_CMYK32, "CMYK32"}, {ZEP_Y16, "Y16"},       {ZEP_XRGB32, "XRGB32"},
    {ZEP_HSI, "HSI"},
};

struct FormatName {
  uint16_t format;
  const char *name;
};

constexpr FormatName kFormats[] = {
    {ZEP_FILE_BMP, "BMP"}, {ZEP_FILE_TIFF, "TIFF"}, {ZEP_FILE_EPS, "EPS"},
    {ZEP_FILE_RAW, "RAW"}, {ZEP_FILE_JPEG, "JPEG"},
};

std::string upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return std::toupper(c); });
  return result;
}

uint32_t print_report(uint32_t, const char *function_name, uint32_t code, const char *message) {
  if (message != nullptr && message[0] != '\0') {
    std::fprintf(stderr, "zep: %s: %s (error 0x%08x)\n", function_name, message, code);
  } else {
    std::fprintf(stderr, "zep: %s failed (error 0x%08x)\n", function_name, code);
  }
  return 0;
}

}  // namespace

const char *type_name(uint32_t type) {
  for (const TypeName &entry : kTypes) {
    if (entry.type == type) return entry.name;
  }
  return "unknown";
}

std::optional<uint16_t> type_from_name(std::string_view name) {
  const std::string wanted = upper(name);
  for (const TypeName &entry : kTypes) {
    if (wanted == entry.name) return entry.type;
  }
  return std::nullopt;
}

const char *format_name(uint32_t format) {
  for (const FormatName &entry : kFormats) {
    if (entry.format == format) return entry.name;
  }
  return "unknown";
}

std::optional<uint16_t> format_from_name(std::string_view name) {
  const std::string wanted = upper(name);
  if (wanted == "TIF") return ZEP_FILE_TIFF;
  if (wanted == "JPG") return ZEP_FILE_JPEG;
  for (const FormatName &entry : kFormats) {
    if (wanted == entry.name) return entry.format;
  }
  return std::nullopt;
}

std::optional<uint16_t> format_from_extension(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || path.find('/', dot) != std::string_view::npos)
    return std::nullopt;
  return format_from_name(path.substr(dot + 1));
}

void start_library() {
  ZEP_Init();
  ZEP_ErrHandlerInstall(&print_report);
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
  switch (format) {
    case ZEP_FILE_BMP:
      return type == ZEP_Y8 || type == ZEP_PALETTED || type == ZEP_RGB24 || type == ZEP_BGR24 ||
             type == ZEP_BGRX32;
    case ZEP_FILE_TIFF:
      return type == ZEP_Y8 || type == ZEP_Y16 || type == ZEP_RGB24 || type == ZEP_BGR24 ||
             type == ZEP_BGRX32 || type == ZEP_YUV422;
    case ZEP_FILE_EPS: return type == ZEP_Y8 || type == ZEP_PALETTED || type == ZEP_RGB24;
    case ZEP_FILE_RAW: return type != ZEP_Y1 && type != ZEP_CMYK32;
    case ZEP_FILE_JPEG:
      return type == ZEP_Y8 || type == ZEP_RGB24 || type == ZEP_BGR24 || type == ZEP_RGBX32 ||
             type == ZEP_BGRX32 || type == ZEP_XBGR32 || type == ZEP_YUV422;
    default: return false;
  }
}

}  // namespace zep_tool
