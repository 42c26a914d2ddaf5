// Writing a complete BMP (header, colour table for 8 bits, rows) into a caller's memory buffer,
// for Y8, paletted and RGB24 images. The image itself is left unchanged.
#include "imaging/core/report.h"
#include "imaging/files/bmp/bmp_layout.h"
#include "imaging/files/file_common.h"
#include "vrcw32/zep_convert.h"
#include "vrcw32/zep_files.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace vrc::files::bmp {
namespace {

constexpr char kBufferName[] = "ZEP_image_write_BMP_buffer";

// Copies the strip's lines into the zero-filled data area at `data_start`, last line first.
void ZEP_image_write_BMP_buffer_1_strip(const ZEP_IMAGE &image, uint8_t *data_start) {
  const uint32_t bits = image.type == ZEP_RGB24 ? 24 : 8;
  const auto row = static_cast<std::size_t>(row_bytes(image.width, bits));
  const uint64_t line_bytes = uint64_t{image.width} * (bits / 8);
  const uint32_t lines = image.lines_this_strip;
  for (uint32_t stored = 0; stored < lines; ++stored) {
    std::span<uint8_t> target(data_start + stored * row, static_cast<std::size_t>(line_bytes));
    std::span<const uint8_t> source =
        strip_range(image, uint64_t{lines - 1 - stored} * image.bytes_per_line, line_bytes);
    if (bits == 8) {
      std::copy(source.begin(), source.end(), target.begin());
    } else {
      repack_pixels(source, 3, kReversedOrder, target, image.width);
    }
  }
}

uint32_t write_bmp_buffer(uint32_t handle, uint8_t *buffer, uint32_t *size_out) {
  if (size_out != nullptr) *size_out = 0;
  if (buffer == nullptr || size_out == nullptr) return core::report(kBufferName, ZEP_ERR_BAD_PARAM);
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = check_image_to_write(kBufferName, handle, image); status != ZEP_OK)
    return status;
  if (image->type != ZEP_Y8 && image->type != ZEP_PALETTED && image->type != ZEP_RGB24) {
    return core::report(kBufferName, ZEP_ERR_UNSUPPORTED | image->type,
                        message::kUnsupportedFormat);
  }
  if (image->type == ZEP_Y8) {
    if (const uint32_t status = ZEP_cmap_set_type(handle, ZEP_CMAP_GREY, 0); ZEP_IS_ERROR(status))
      return status;
  }
  const uint32_t bits = image->type == ZEP_RGB24 ? 24 : 8;
  const std::vector<uint8_t> header = build_header(*image, bits);
  std::copy(header.begin(), header.end(), buffer);
  const uint64_t data_bytes = uint64_t{image->height} * row_bytes(image->width, bits);
  std::memset(buffer + header.size(), 0, static_cast<std::size_t>(data_bytes));
  *size_out = static_cast<uint32_t>(header.size() + data_bytes);
  image->lines_this_strip = std::min(image->lines_this_strip, image->height);
  ZEP_image_write_BMP_buffer_1_strip(*image, buffer + header.size());
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::files::bmp

extern "C" uint32_t ZEP_image_write_BMP_buffer(uint32_t handle, uint8_t *buffer,
                                               uint32_t *size_out) {
  return vrc::core::api_guard(vrc::files::bmp::kBufferName, [&] {
    return vrc::files::bmp::write_bmp_buffer(handle, buffer, size_out);
  });
}
