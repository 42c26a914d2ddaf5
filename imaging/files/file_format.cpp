// Recognising a file by its first bytes (never by its name) and dispatching reads and writes to
// the format that handles them. Only detection reads: a read that names a format is refused.
//
// The JPEG file layer is referenced weakly, so that this dispatch works whether or not the JPEG
// codec is part of the build; without it, JPEG files are an unsupported format.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/tiff/tiff_layout.h"
#include "vrcw32/zep_files.h"

#include <array>
#include <cstring>

extern "C" uint32_t ZEP_JPEG_file_read(uint32_t handle) __attribute__((weak));
extern "C" uint32_t ZEP_JPEG_file_write(uint32_t handle) __attribute__((weak));

namespace vrc::files {
namespace {

constexpr char kFindName[] = "ZEP_image_find_file_format";
constexpr char kReadName[] = "ZEP_image_read";
constexpr char kWriteName[] = "ZEP_image_write";
constexpr char kUnsupported[] = "Unsupported/unrecognized image format";
constexpr uint32_t kFormatWithoutReader = 1;  // what a read that names its format stands for

// 'M' or 'I', the magic 42, and a first directory entry whose field type is defined (1..11).
bool is_tiff(std::FILE *file) {
  const int mark = std::fgetc(file);
  if (mark != 'M' && mark != 'I') return false;
  const auto order = static_cast<uint16_t>(mark);
  static_cast<void>(std::fgetc(file));
  if (tiff::read_ui16(file, order) != tiff::kMagic) return false;
  const uint32_t directory = tiff::read_ui32(file, order);
  if (std::feof(file) || std::fseek(file, static_cast<long>(directory), SEEK_SET) != 0)
    return false;
  static_cast<void>(tiff::read_ui16(file, order));  // entry count
  static_cast<void>(tiff::read_ui16(file, order));  // first tag
  const uint16_t type = tiff::read_ui16(file, order);
  static_cast<void>(tiff::read_ui32(file, order));  // value count
  return !std::feof(file) && !std::ferror(file) && type >= 1 && type <= tiff::kLastFieldType;
}

uint32_t detect(std::FILE *file) {
  if (is_tiff(file)) return ZEP_FILE_TIFF;
  std::array<uint8_t, 10> head{};
  std::rewind(file);
  const std::size_t got = std::fread(head.data(), 1, head.size(), file);
  if (got >= 2 && head[0] == 0xFF && head[1] == 0xD8) return ZEP_FILE_JPEG;
  if (got >= 4 && std::memcmp(head.data(), "%!PS", 4) == 0) return ZEP_FILE_EPS;
  // "BM", the 32-bit file size, then the two reserved 16-bit fields, which must be 0.
  if (got == head.size() && head[0] == 'B' && head[1] == 'M' && ZEP_mget_ui32i(&head[6]) == 0) {
    return ZEP_FILE_BMP;
  }
  return ZEP_FILE_UNKNOWN;
}

uint32_t find_file_format(const char *path) {
  File file = File::open(path, "rb");
  if (!file) return core::report(kFindName, ZEP_ERR_OPEN, message::kOpenFailed);
  const uint32_t format = detect(file.get());
  return file.close() ? format : core::report(kFindName, ZEP_ERR_CLOSE, message::kCloseFailed);
}

uint32_t detect_for_reading(uint32_t handle, uint16_t format) {
  const ZEP_IMAGE *image = core::image_record(handle);
  if (image == nullptr) return core::report(kReadName, ZEP_ERR_HANDLE);
  // Only detection reads: a named format always ends as a format without a reader.
  uint32_t detected = kFormatWithoutReader;
  if (format == ZEP_FILE_UNKNOWN) {
    detected = ZEP_image_find_file_format(image->infilename);
    if (ZEP_IS_ERROR(detected))
      return core::report(kReadName, detected, "Failed to recognise file format");
  }
  return detected;
}

}  // namespace
}  // namespace vrc::files

using vrc::core::api_guard;
using vrc::core::report;
using namespace vrc::files;

extern "C" uint32_t ZEP_image_find_file_format(const char *path) {
  return api_guard(kFindName, [&] { return find_file_format(path); });
}

extern "C" uint32_t ZEP_image_read(uint32_t handle, uint16_t format, uint16_t action) {
  return api_guard(kReadName, [&] {
    const uint32_t detected = detect_for_reading(handle, format);
    if (ZEP_IS_ERROR(detected)) return detected;
    switch (detected) {
      case ZEP_FILE_TIFF: return ZEP_read_TIFF_file(handle, action);
      case ZEP_FILE_EPS: return ZEP_read_EPS_file(handle, action);
      case ZEP_FILE_BMP: return ZEP_read_BMP_file(handle, action);
      case ZEP_FILE_JPEG:
        if (ZEP_JPEG_file_read != nullptr) return ZEP_JPEG_file_read(handle);
        break;
      default: break;
    }
    return report(kReadName, ZEP_ERR_UNSUPPORTED, kUnsupported);
  });
}

extern "C" uint32_t ZEP_image_write(uint32_t handle, uint32_t, uint16_t format, uint16_t action) {
  return api_guard(kWriteName, [&] {
    switch (format) {
      case ZEP_FILE_TIFF: return ZEP_write_TIFF_file(handle, action);
      case ZEP_FILE_EPS: return ZEP_write_EPS_file(handle, action);
      case ZEP_FILE_BMP: return ZEP_write_BMP_file(handle);
      case ZEP_FILE_RAW: return ZEP_write_raw_data_file(handle, action);
      case ZEP_FILE_JPEG:
        if (ZEP_JPEG_file_write != nullptr) return ZEP_JPEG_file_write(handle);
        break;
      default: break;
    }
    return report(kWriteName, ZEP_ERR_UNSUPPORTED, kUnsupported);
  });
}
