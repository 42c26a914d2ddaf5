// ZEP_JPEG_decompress: checks the JPEG image, chooses the output format from the destination,
// decodes the picture at whole MCUs (into the destination, or into a temporary that is then cropped
// back to the picture's own size) and leaves the destination holding pixels.
#include "imaging/core/handle_table.h"
#include "imaging/core/library_hooks.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/jpeg/decode_scan.h"
#include "imaging/files/jpeg/huffman_decode.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/jpeg/scoped_image.h"
#include "vrcw32/zep_process.h"

namespace vrc::jpeg {
namespace {

constexpr const char *kDecompress = "ZEP_JPEG_decompress";

// The destination's format: grey data decodes to Y8; colour data to the destination's RGB24,
// BGR24 or BGRX32, and to YUV 4:2:2 for a destination of that type, of the JPEG's own type or of
// none yet. Other destination types give 0.
uint16_t output_type(const Sampling &sampling, uint16_t destination_type) {
  if (sampling.components == 1) return ZEP_Y8;
  switch (destination_type) {
    case ZEP_RGB24:
    case ZEP_BGR24:
    case ZEP_BGRX32: return destination_type;
    case ZEP_NONE:
    case ZEP_YUV422:
    case ZEP_DATA16_C: return ZEP_YUV422;
    default: return 0;
  }
}

uint32_t round_up(uint32_t value, uint32_t multiple) {
  return (value + multiple - 1) / multiple * multiple;
}

// Cuts the top-left `width` x `height` of `decoded` into `destination`.
uint32_t crop_to_picture(uint32_t decoded, uint32_t destination, uint32_t width, uint32_t height) {
  int16_t region[4] = {0, 0, static_cast<int16_t>(width), static_cast<int16_t>(height)};
  ZEP_IP_crop(decoded, destination, region, ZEP_MODE_RESET);  // drop an abandoned crop's state
  return ZEP_IP_crop(decoded, destination, region, ZEP_MODE_NEXT_STRIP);
}

// Decodes into `image`, made a whole picture of `type` at the coded size.
uint32_t decode_into(uint32_t image, const ZEP_JPEG_RECORD &record, const Sampling &sampling,
                     uint16_t type, uint32_t width, uint32_t height, uint32_t line_align) {
  if (const uint32_t status = make_whole_image(image, type, width, height, line_align);
      ZEP_IS_ERROR(status))
    return core::report(kDecompress, status, "Corrupt image");
  ZEP_IMAGE &picture = *core::image_record(image);
  const ScanOutput output{type, picture.data, picture.bytes_per_line, width, height};
  return decode_scan(record, sampling, output);
}

// The picture's size, and its size at whole MCUs.
struct Geometry {
  uint32_t width, height;
  uint32_t coded_width, coded_height;
  bool padded() const { return coded_width != width || coded_height != height; }
};

// The checks that precede any allocation; 0 or the reported code.
uint32_t check_decode(const ZEP_IMAGE &jpeg, const ZEP_JPEG_RECORD &record,
                      const Sampling &sampling, const Geometry &size, uint16_t destination_type) {
  // A JPEG image whose strips are shorter than the picture is decoded a strip of MCUs at a time;
  // 4:1:1 MCUs are 16 lines high.
  const uint32_t strip = jpeg.lines_this_strip;
  if (sampling.luma_v == 2 && strip != 0 && strip < jpeg.height && strip % 16 != 0)
    return core::report(kDecodeStripName, ZEP_ERR_UNSUPPORTED | (strip & 0xFFFF),
                        "For YUV 4:1:1 JPEG decoding, strip must be multiple of 16 lines");
  if (output_type(sampling, destination_type) == 0)
    return core::report(kDecodeStripName, ZEP_ERR_UNSUPPORTED | destination_type,
                        "Unsupported image type/pixel format");
  // The crop back to size takes 16-bit region values.
  if (size.padded() && (size.width > 32767 || size.height > 32767))
    return core::report(kDecompress, ZEP_ERR_UNSUPPORTED | jpeg.type, "Unsupported image format");
  // Every block takes at least two bits (a DC code and an end of block): data too short for the
  // picture is refused before the picture is allocated.
  const uint64_t blocks =
      uint64_t{size.coded_width / 8} * (size.coded_height / 8) * (sampling.components == 1 ? 1 : 2);
  if (record.length != 0 && uint64_t{record.length} * 8 < blocks * 2)
    return core::report(kDecodeStripName, ZEP_ERR_UNEXPECTED | 6, "Unexpected end of JPEG stream");
  return 0;
}

uint32_t decompress(uint32_t jpeg_image, uint32_t destination) {
  const JpegImage source = jpeg_image_of(jpeg_image, kDecompress);
  if (source.record == nullptr) return source.status;
  if (const uint32_t status = files::check_image(kDecompress, jpeg_image); status != ZEP_OK)
    return status;
  const Sampling *sampling = sampling_of(source.image->type);
  if (sampling == nullptr)
    return core::report(kDecompress, ZEP_ERR_UNSUPPORTED | source.image->type,
                        "Unsupported image format");
  ZEP_IMAGE *target = core::record_or_report(destination, kDecompress);
  if (target == nullptr) return ZEP_ERR_HANDLE;
  const uint32_t width = source.image->width, height = source.image->height;
  const Geometry size{width, height, round_up(width, sampling->mcu_width),
                      round_up(height, sampling->mcu_height)};
  if (const uint32_t status =
          check_decode(*source.image, *source.record, *sampling, size, target->type);
      status != 0)
    return status;

  const uint16_t type = output_type(*sampling, target->type);
  const uint32_t line_align = target->line_align;
  uint32_t status = 0;
  if (!size.padded() && destination != jpeg_image) {
    status = decode_into(destination, *source.record, *sampling, type, width, height, line_align);
  } else {
    ScopedImage decoded;
    if (decoded.failed()) return decoded.handle();
    status = decode_into(decoded.handle(), *source.record, *sampling, type, size.coded_width,
                         size.coded_height, line_align);
    if (status == 0) status = crop_to_picture(decoded.handle(), destination, width, height);
  }
  target->flags &= ~ZEP_FLAG_JPEG;
  return status;
}

void build_shared_tables() {
  for (int slot = 0; slot < kHuffmanSlots; ++slot) default_decode_table(slot);
}

}  // namespace
}  // namespace vrc::jpeg

extern "C" uint32_t ZEP_JPEG_decompress(uint32_t jpeg_image, uint32_t destination) {
  return vrc::core::api_guard(vrc::jpeg::kDecompress,
                              [&] { return vrc::jpeg::decompress(jpeg_image, destination); });
}

extern "C" uint32_t ZEP_JPEG_generate_Huffman_decode_tables(void) {
  return vrc::core::api_guard("ZEP_JPEG_generate_Huffman_decode_tables", [] {
    vrc::jpeg::build_shared_tables();
    return 0u;
  });
}
