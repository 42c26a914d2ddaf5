// Writing BMP files: Y8 and paletted images as 8-bit files with a 256-entry colour table (a Y8
// image first gets a grey map), RGB24, BGR24 and BGRX32 images as 24-bit files. Rows go out from
// the last image line to the first.
//
// The padding after the pixels of an RGB24 or BGRX32 row is computed from the image's own depth:
// a BGRX32 image gets none, so its rows are shorter than the header's row size whenever three
// times the width is not a multiple of 4. 8-bit and BGR24 rows are copied straight from the line
// start for the full stored row size.
#include "imaging/core/report.h"
#include "imaging/files/bmp/bmp_layout.h"
#include "imaging/files/file_common.h"
#include "imaging/files/file_registry.h"
#include "vrcw32/zep_convert.h"
#include "vrcw32/zep_files.h"

#include <vector>

namespace vrc::files::bmp {
namespace {

constexpr char kWriteName[] = "ZEP_write_BMP_file";

bool writes_8_bit(uint16_t type) { return type == ZEP_Y8 || type == ZEP_PALETTED; }

// Fills `row` with image line `line` in the stored layout of the image's format.
void build_row(const ZEP_IMAGE &image, uint32_t line, std::vector<uint8_t> &row,
               std::vector<uint8_t> &source) {
  const uint64_t line_start = uint64_t{line} * image.bytes_per_line;
  switch (image.type) {
    case ZEP_RGB24:
    case ZEP_BGRX32: {
      const uint32_t step = image.type == ZEP_RGB24 ? 3 : 4;
      source.resize(static_cast<std::size_t>(uint64_t{image.width} * step));
      copy_bounded(strip_range(image, line_start, source.size()), source);
      const ByteOrder order = image.type == ZEP_RGB24 ? kReversedOrder : kSameOrder;
      repack_pixels(source, step, order, row, image.width);
      break;
    }
    default:  // 8-bit and BGR24 rows are stored as they stand in memory
      copy_bounded(strip_range(image, line_start, row.size()), row);
      break;
  }
}

uint32_t ZEP_write_BMP_file_1_strip(const ZEP_IMAGE &image, std::FILE *file) {
  const uint32_t bits = writes_8_bit(image.type) ? 8 : 24;
  uint64_t stored_row = row_bytes(image.width, bits);
  if (!writes_8_bit(image.type) && image.type != ZEP_BGR24) {
    stored_row = 3 * uint64_t{image.width} + ZEP_image_calc_skip_bytes(image.width, image.depth, 4);
  }
  std::vector<uint8_t> row(static_cast<std::size_t>(stored_row), 0);
  std::vector<uint8_t> source;
  for (uint32_t line = image.height; line-- > 0;) {
    build_row(image, line, row, source);
    write_bytes(file, row);
  }
  return ZEP_OK;
}

uint32_t write_bmp(uint32_t handle) {
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = check_image_to_write(kWriteName, handle, image); status != ZEP_OK)
    return status;
  if (!stores_type(ZEP_FILE_BMP, image->type)) {
    return core::report(kWriteName, ZEP_ERR_UNSUPPORTED | image->type, message::kUnsupportedFormat);
  }
  File file = File::open(image->outfilename, "wb");
  if (!file) return core::report(kWriteName, ZEP_ERR_OPEN, message::kCreateFailed);
  std::setvbuf(file.get(), nullptr, _IOFBF, kWriteBufferBytes);

  const uint32_t bits = writes_8_bit(image->type) ? 8 : 24;
  if (image->type == ZEP_Y8) {
    if (const uint32_t status = ZEP_cmap_set_type(handle, ZEP_CMAP_GREY, 0); ZEP_IS_ERROR(status))
      return status;
  }
  const std::vector<uint8_t> header = build_header(*image, bits);
  write_bytes(file.get(), header);
  if (std::fseek(file.get(), data_offset(bits), SEEK_SET) != 0) {
    return core::report(kWriteName, ZEP_ERR_SYSTEM, message::kSeekFailed);
  }
  ZEP_write_BMP_file_1_strip(*image, file.get());
  return close_file(kWriteName, file);
}

}  // namespace
}  // namespace vrc::files::bmp

extern "C" uint32_t ZEP_write_BMP_file(uint32_t handle) {
  return vrc::core::api_guard(vrc::files::bmp::kWriteName,
                              [&] { return vrc::files::bmp::write_bmp(handle); });
}
