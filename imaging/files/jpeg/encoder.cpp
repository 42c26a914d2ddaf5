// ZEP_JPEG_compress: checks the source, sets up the JPEG image's tables, brings the picture to a
// codable form (padded to whole MCUs; RGB24, RGBX32 and XBGR32 converted to YUV 4:2:2 first) and
// runs the scan into the JPEG image's data.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/jpeg/encode_scan.h"
#include "imaging/files/jpeg/encoder_padding.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/jpeg/scoped_image.h"

#include <cstdlib>

namespace vrc::jpeg {
namespace {

constexpr const char *kCompress = "ZEP_JPEG_compress";

bool is_codable_source(uint16_t type) {
  switch (type) {
    case ZEP_Y8:
    case ZEP_RGB24:
    case ZEP_BGR24:
    case ZEP_RGBX32:
    case ZEP_BGRX32:
    case ZEP_XBGR32:
    case ZEP_YUV422: return true;
    default: return false;
  }
}

bool needs_yuv422_conversion(uint16_t type) {
  return type == ZEP_RGB24 || type == ZEP_RGBX32 || type == ZEP_XBGR32;
}

uint32_t round_up(uint32_t value, uint32_t multiple) {
  return (value + multiple - 1) / multiple * multiple;
}

// The padded copy of `source` at whole MCUs, in `padded`; 0 or the reported code.
uint32_t pad_source(uint32_t source, const Sampling &sampling, uint32_t padded) {
  const ZEP_IMAGE &from = *core::image_record(source);
  const uint32_t status =
      make_whole_image(padded, from.type, round_up(from.width, sampling.mcu_width),
                       round_up(from.height, sampling.mcu_height), from.line_align);
  if (ZEP_IS_ERROR(status)) return core::report(kCompress, status, "hPaddedImage is corrupt");
  fill_padded_copy(from, *core::image_record(padded));
  return 0;
}

// `source` converted to YUV 4:2:2 in `converted`; 0 or the converter's code.
uint32_t convert_source(uint32_t source, uint32_t converted) {
  ZEP_convert_to_YUV422(source, converted, ZEP_MODE_RESET);
  return ZEP_convert_to_YUV422(source, converted, ZEP_MODE_NEXT_STRIP);
}

ScanLayout scan_layout(uint16_t type) {
  switch (type) {
    case ZEP_Y8: return ScanLayout::grey;
    case ZEP_BGR24: return ScanLayout::bgr24;
    case ZEP_BGRX32: return ScanLayout::bgrx32;
    default: return ScanLayout::yuv422;
  }
}

// Codes the whole picture of `image` into the record's data, replacing what it held.
uint32_t code_picture(const ZEP_IMAGE &image, ZEP_JPEG_RECORD &record) {
  const ScanSource source{scan_layout(image.type), image.data, image.bytes_per_line, image.width,
                          image.height};
  const std::size_t bound = scan_bytes_bound(source);
  auto *data = static_cast<uint8_t *>(std::malloc(bound));
  if (data == nullptr) return core::report(kCompress, ZEP_ERR_MEMORY | (bound & 0xFFFF));
  const std::size_t length = encode_scan(source, record, data);
  if (auto *fitted = static_cast<uint8_t *>(std::realloc(data, length == 0 ? 1 : length)))
    data = fitted;
  core::jpeg_record_free_data(&record);
  record.data = data;
  record.position = data;
  record.length = static_cast<uint32_t>(length);
  return 0;
}

uint32_t compress(uint32_t source, uint32_t jpeg_image) {
  const JpegImage target = jpeg_image_of(jpeg_image, kCompress);
  if (target.record == nullptr) return target.status;
  if (const uint32_t status = files::check_image(kCompress, source); status != ZEP_OK)
    return status;
  const ZEP_IMAGE &from = *core::image_record(source);
  if (from.lines_this_strip != from.height)
    return core::report(kCompress, ZEP_ERR_UNSUPPORTED | (from.lines_this_strip & 0xFFFF),
                        "This function only supports a complete image");
  if (!is_codable_source(from.type))
    return core::report(kCompress, ZEP_ERR_UNSUPPORTED | from.type, "Unsupported image format");
  if (from.data == nullptr && from.strip_bytes != 0)
    return core::report(kCompress, ZEP_ERR_CORRUPT, "Image has no data");

  ZEP_copy_outfilename(jpeg_image, source);
  if (const uint32_t status = ZEP_JPEG_set_image(source, jpeg_image); ZEP_IS_ERROR(status))
    return status;
  ZEP_JPEG_RECORD &record = *target.record;
  make_quantisation_tables(record);
  set_default_huffman_tables(record);
  make_huffman_code_tables(record);

  const Sampling &sampling = from.type == ZEP_Y8 ? kGreySampling : kYuv422Sampling;
  uint32_t coded = source;
  ScopedImage padded;
  if (from.width % sampling.mcu_width != 0 || from.height % sampling.mcu_height != 0) {
    if (padded.failed()) return padded.handle();
    if (const uint32_t status = pad_source(source, sampling, padded.handle()); status != 0)
      return status;
    coded = padded.handle();
  }
  ScopedImage converted;
  if (needs_yuv422_conversion(from.type)) {
    if (converted.failed()) return converted.handle();
    if (const uint32_t status = convert_source(coded, converted.handle()); ZEP_IS_ERROR(status))
      return status;
    coded = converted.handle();
  }
  if (const uint32_t status = code_picture(*core::image_record(coded), record); status != 0)
    return status;

  ZEP_IMAGE &jpeg = *target.image;
  jpeg.width = from.width;
  jpeg.height = from.height;
  jpeg.lines_this_strip = from.height;
  jpeg.flags |= ZEP_FLAG_JPEG;
  return 0;
}

}  // namespace
}  // namespace vrc::jpeg

extern "C" uint32_t ZEP_JPEG_compress(uint32_t source, uint32_t jpeg_image) {
  return vrc::core::api_guard(vrc::jpeg::kCompress,
                              [&] { return vrc::jpeg::compress(source, jpeg_image); });
}
