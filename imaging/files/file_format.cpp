// Recognising a file by its first bytes (never by its name) and dispatching reads and writes to
// the format that handles them, through the file-format registry. Only detection reads: a read
// that names a format is refused.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/file_registry.h"
#include "vrcw32/zep_files.h"

namespace vrc::files {
namespace {

constexpr char kFindName[] = "ZEP_image_find_file_format";
constexpr char kReadName[] = "ZEP_image_read";
constexpr char kWriteName[] = "ZEP_image_write";
constexpr char kUnsupported[] = "Unsupported/unrecognized image format";
// QUIRK: what a read that names its format stands for; no format has this code.
constexpr uint32_t kFormatWithoutReader = 1;

uint32_t detect(std::FILE *file) {
  for (const FileFormatRow &row : file_format_rows()) {
    std::rewind(file);
    if (row.detect != nullptr && row.detect(file)) return row.code;
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

// The reader or writer of `code` picked by `function`; null when the format has none.
FileFunction function_of(uint32_t code, FileFunction FileFormatRow::*function) {
  const FileFormatRow *row = file_format_row(code);
  return row != nullptr ? row->*function : nullptr;
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
    const FileFunction read = function_of(detected, &FileFormatRow::read);
    return read != nullptr ? read(handle, action)
                           : report(kReadName, ZEP_ERR_UNSUPPORTED, kUnsupported);
  });
}

extern "C" uint32_t ZEP_image_write(uint32_t handle, uint32_t, uint16_t format, uint16_t action) {
  return api_guard(kWriteName, [&] {
    const FileFunction write = function_of(format, &FileFormatRow::write);
    return write != nullptr ? write(handle, action)
                            : report(kWriteName, ZEP_ERR_UNSUPPORTED, kUnsupported);
  });
}
