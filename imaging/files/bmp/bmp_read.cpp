// Reading BMP files of this library's own shape: 8-bit files become paletted images, 24-bit
// files RGB24 images. The colour table and the rows are taken from the fixed offsets 54 and
// 1078 (24-bit) rather than from the header's data-offset field, and rows are read strip-wise in
// file order, then the strip is flipped so that the top line comes first.
#include "imaging/core/report.h"
#include "imaging/files/bmp/bmp_layout.h"
#include "imaging/files/file_common.h"
#include "vrcw32/zep_files.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vrc::files::bmp {
namespace {

constexpr char kReadName[] = "ZEP_read_BMP_file";
constexpr char kStripName[] = "ZEP_read_BMP_file_1_strip";

bool seek(std::FILE *file, int64_t position) {
  return position >= 0 && std::fseek(file, static_cast<long>(position), SEEK_SET) == 0;
}

// Swaps lines i and (lines - 1 - i) of the strip so that the bottom-up file order becomes
// top-down.
void flip_strip(const ZEP_IMAGE &image, uint32_t lines) {
  for (uint32_t i = 0; i < lines / 2; ++i) {
    std::span<uint8_t> upper = strip_line(image, i);
    std::span<uint8_t> lower = strip_line(image, lines - 1 - i);
    const std::size_t common = std::min(upper.size(), lower.size());
    std::swap_ranges(upper.begin(), upper.begin() + static_cast<std::ptrdiff_t>(common),
                     lower.begin());
  }
}

// Reads lines_this_strip lines starting at image line `first_line` into the image's strip.
uint32_t ZEP_read_BMP_file_1_strip(ZEP_IMAGE &image, uint32_t first_line, std::FILE *file) {
  if (image.type != ZEP_PALETTED && image.type != ZEP_RGB24) {
    return core::report(kStripName, ZEP_ERR_UNSUPPORTED | image.type, message::kUnsupportedFormat);
  }
  // Lines of no bytes (width 0) leave nothing to read, however many there are.
  if (image.strip_bytes == 0) return ZEP_OK;
  const uint32_t bits = image.type == ZEP_PALETTED ? 8 : 24;
  const uint32_t pixel_bytes = bits / 8;
  const uint64_t row = row_bytes(image.width, bits);
  const uint32_t lines = image.lines_this_strip;
  const int64_t first_row = int64_t{image.height} - first_line - lines;
  if (!seek(file, first_row * static_cast<int64_t>(row) + data_offset(bits))) {
    return core::report(kStripName, ZEP_ERR_SYSTEM, message::kSeekFailed);
  }
  std::vector<uint8_t> file_row(static_cast<std::size_t>(row));
  const uint64_t line_bytes = uint64_t{image.width} * pixel_bytes;
  uint64_t memory_offset = 0;
  for (uint32_t line = 0; line < lines; ++line) {
    const std::size_t got = std::fread(file_row.data(), 1, file_row.size(), file);
    std::fill(file_row.begin() + static_cast<std::ptrdiff_t>(got), file_row.end(), uint8_t{0});
    std::span<uint8_t> target = strip_range(image, memory_offset, line_bytes);
    if (bits == 8) {
      copy_bounded(file_row, target);
    } else {
      repack_pixels(file_row, 3, kReversedOrder, target, image.width);
    }
    memory_offset += line_bytes + image.skip_bytes;
  }
  flip_strip(image, lines);
  return ZEP_OK;
}

// Reads the 256-entry B, G, R, 0 colour table at offset 54 into the image's map as R, G, B.
void read_colour_table(ZEP_IMAGE &image, std::FILE *file) {
  std::array<uint8_t, 4 * kPaletteEntries> table{};
  if (seek(file, kRgbDataOffset)) {
    static_cast<void>(std::fread(table.data(), 1, table.size(), file));
  }
  if (image.cmap == nullptr) return;
  for (uint32_t entry = 0; entry < kPaletteEntries; ++entry) {
    image.cmap[4 * entry + 0] = table[4 * entry + 2];
    image.cmap[4 * entry + 1] = table[4 * entry + 1];
    image.cmap[4 * entry + 2] = table[4 * entry + 0];
  }
}

uint32_t read_bmp(uint32_t handle, uint16_t action) {
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = find_image_to_read(kReadName, handle, image); status != ZEP_OK)
    return status;
  File file = File::open(image->infilename, "rb");
  if (!file) return core::report(kReadName, ZEP_ERR_OPEN, message::kOpenFailed);
  std::FILE *stream = file.get();

  if (!seek(stream, kWidthField))
    return core::report(kReadName, ZEP_ERR_SYSTEM, message::kSeekFailed);
  image->width = ZEP_fget_ui32i(stream);
  image->height = ZEP_fget_ui32i(stream);
  static_cast<void>(ZEP_fget_ui16i(stream));  // planes
  image->depth = ZEP_fget_ui16i(stream);
  if (image->depth == 8) {
    read_colour_table(*image, stream);
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_PALETTED);
  } else if (image->depth == 24) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_RGB24);
  } else {
    return core::report(kReadName, ZEP_ERR_UNSUPPORTED, "Unsupported image depth");
  }

  if (!seek(stream, kCompressionField))
    return core::report(kReadName, ZEP_ERR_SYSTEM, message::kSeekFailed);
  const uint16_t compression = ZEP_fget_ui16i(stream);
  if (compression == 1 || compression == 2) {
    return core::report(kReadName, ZEP_ERR_UNSUPPORTED, "Compressed images not supported");
  }
  if (compression != 0)
    return core::report(kReadName, ZEP_ERR_UNSUPPORTED, "Unrecognized compression type");

  if (const uint32_t status = check_read_header(kReadName, handle); status != ZEP_OK) return status;
  image->lines_this_strip = image->height;
  if (action != ZEP_ACTION_DATA)
    return finish_without_data(kReadName, file, OpenSlot::BmpRead, action);
  if (image->height == 0) {
    keep_open(OpenSlot::BmpRead, std::move(file));
    return ZEP_OK;
  }

  const uint32_t bits = image->type == ZEP_PALETTED ? 8 : 24;
  const uint64_t needed =
      data_offset(bits) + uint64_t{image->height} * row_bytes(image->width, bits);
  if (const uint32_t status = allocate_backed_strip(kReadName, handle, needed, file.size());
      ZEP_IS_ERROR(status))
    return status;
  if (const uint32_t status = ZEP_read_BMP_file_1_strip(*image, 0, stream); status != ZEP_OK)
    return status;
  return close_file(kReadName, file);
}

}  // namespace
}  // namespace vrc::files::bmp

extern "C" uint32_t ZEP_read_BMP_file(uint32_t handle, uint16_t action) {
  return vrc::core::api_guard(vrc::files::bmp::kReadName,
                              [&] { return vrc::files::bmp::read_bmp(handle, action); });
}
