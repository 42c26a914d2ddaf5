// The inspection record, and ZEP_file_inspect and ZEP_file_fix_up over the registry's
// inspectors.
#include "imaging/files/file_inspect.h"

#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/file_registry.h"

#include <cstdarg>
#include <cstring>
#include <string>

namespace vrc::files {
namespace {

constexpr char kInspectName[] = "ZEP_file_inspect";
constexpr char kFixUpName[] = "ZEP_file_fix_up";

void swap_16_bit(std::span<uint8_t> line) {
  for (std::size_t x = 0; x + 1 < line.size(); x += 2) std::swap(line[x], line[x + 1]);
}

void invert(std::span<uint8_t> line, uint32_t type, uint16_t data_width) {
  if (type == ZEP_Y16) {
    const uint32_t top = data_width >= 1 && data_width <= 16 ? (1u << data_width) - 1 : 0xFFFF;
    for (std::size_t x = 0; x + 1 < line.size(); x += 2) {
      ZEP_mput_ui16i(&line[x], static_cast<uint16_t>(top - (ZEP_mget_ui16i(&line[x]) & top)));
    }
  } else {
    for (uint8_t &sample : line) sample = static_cast<uint8_t>(255 - sample);
  }
}

}  // namespace

void Inspection::refuse(const char *format, ...) {
  if (refused()) return;
  m_out.refused = 1;
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(m_out.cause, sizeof m_out.cause, format, arguments);
  va_end(arguments);
}

void Inspection::warn(const char *format, ...) {
  char line[sizeof m_out.warnings];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  const std::size_t used = std::strlen(m_out.warnings);
  const std::size_t length = std::strlen(line);
  if (used + length + 2 > sizeof m_out.warnings) return;  // the line, its newline and the end
  char *end = m_out.warnings + used;
  std::memcpy(end, line, length);
  end[length] = '\n';
  end[length + 1] = '\0';
}

void Inspection::set_colour(uint32_t index, uint8_t red, uint8_t green, uint8_t blue) {
  if (index >= 256) return;
  uint8_t *entry = &m_out.colour_map[4 * index];
  entry[0] = red;
  entry[1] = green;
  entry[2] = blue;
  entry[3] = 0;
}

void Inspection::check_pixels_present(uint64_t offset, uint64_t needed, uint64_t file_bytes) {
  warn_missing_pixels(file_bytes > offset ? file_bytes - offset : 0, needed);
}

void Inspection::warn_missing_pixels(uint64_t present, uint64_t needed) {
  if (present >= needed) return;
  warn("the file ends before its pixel data does: %llu of %llu bytes present, the rest read as 0",
       static_cast<unsigned long long>(present), static_cast<unsigned long long>(needed));
}

void Inspection::check_has_pixels(uint64_t width, uint64_t height) {
  if (width == 0 || height == 0)
    refuse("the image has no pixels (%llu x %llu)", static_cast<unsigned long long>(width),
           static_cast<unsigned long long>(height));
}

uint64_t stream_size(std::FILE *file) {
  const long position = std::ftell(file);
  if (std::fseek(file, 0, SEEK_END) != 0) return 0;
  const long end = std::ftell(file);
  std::fseek(file, position, SEEK_SET);
  return end > 0 ? static_cast<uint64_t>(end) : 0;
}

}  // namespace vrc::files

extern "C" uint32_t ZEP_file_inspect(const char *path, ZEP_FILE_INSPECTION *inspection) {
  return vrc::core::api_guard(vrc::files::kInspectName, [&]() -> uint32_t {
    using namespace vrc::files;
    if (inspection == nullptr) return vrc::core::report(kInspectName, ZEP_ERR_UNEXPECTED);
    *inspection = {};
    const uint32_t format = ZEP_image_find_file_format(path);
    if (ZEP_IS_ERROR(format)) return format;
    File file = File::open(path, "rb");
    if (!file) return vrc::core::report(kInspectName, ZEP_ERR_OPEN, message::kOpenFailed);
    Inspection record(*inspection);
    for (const FileFormatRow &row : file_format_rows()) {
      if (row.inspect == nullptr || (format != ZEP_FILE_UNKNOWN && row.code != format)) continue;
      std::rewind(file.get());
      if (row.inspect(file.get(), record)) {
        inspection->format = row.code;
        break;
      }
    }
    return ZEP_OK;
  });
}

extern "C" uint32_t ZEP_file_fix_up(uint32_t handle, const ZEP_FILE_INSPECTION *inspection) {
  return vrc::core::api_guard(vrc::files::kFixUpName, [&]() -> uint32_t {
    using namespace vrc::files;
    ZEP_IMAGE *image = vrc::core::image_record(handle);
    if (image == nullptr) return vrc::core::report(kFixUpName, ZEP_ERR_HANDLE);
    if (inspection == nullptr) return vrc::core::report(kFixUpName, ZEP_ERR_UNEXPECTED);
    const uint32_t fix_ups = inspection->fix_ups;
    if ((fix_ups & ZEP_FIX_COLOUR_MAP) != 0 && image->cmap != nullptr)
      std::memcpy(image->cmap, inspection->colour_map, sizeof inspection->colour_map);
    const bool sixteen = image->type == ZEP_Y16;
    const bool grey = sixteen || image->type == ZEP_Y8;
    const uint64_t sample_bytes = uint64_t{image->width} * (sixteen ? 2 : 1);
    for (uint64_t line = 0; grey && line < image->lines_this_strip; ++line) {
      std::span<uint8_t> samples = strip_line(*image, line);
      samples = samples.first(std::min<std::size_t>(sample_bytes, samples.size()));
      if (sixteen && (fix_ups & ZEP_FIX_SWAP_16_BIT) != 0) swap_16_bit(samples);
      if ((fix_ups & ZEP_FIX_INVERT_GREY) != 0) invert(samples, image->type, image->data_width);
    }
    return ZEP_OK;
  });
}
