// zep and JPEG files: reading one into a picture (grey as Y8, colour as RGB24), compressing a
// picture into one at a chosen quality scale, and describing one (size, sampling, tables, frames).
// A JPEG file is read into the library's JPEG image, which holds the tables and the compressed
// data, and decoded from there.
#include "imaging/core/jpeg_record.h"
#include "tools/zep/zep_tool.h"

#include <cstdio>

namespace zep_tool {
namespace {

// A JPEG image destroyed at the end of the scope.
class JpegImage {
 public:
  JpegImage() : m_handle(ZEP_JPEG_image_create()) {}
  ~JpegImage() {
    if (!ZEP_IS_ERROR(m_handle)) ZEP_image_destroy(m_handle);
  }
  JpegImage(const JpegImage &) = delete;
  JpegImage &operator=(const JpegImage &) = delete;
  uint32_t handle() const { return m_handle; }
  bool created() const { return !ZEP_IS_ERROR(m_handle); }
  const ZEP_JPEG_RECORD &record() const {
    return *static_cast<const ZEP_JPEG_RECORD *>(ZEP_image_get_ptr(m_handle, ZEP_JPEG_RECORD_PTR));
  }

 private:
  uint32_t m_handle;
};

const char *sampling_name(uint32_t type) {
  switch (type) {
    case ZEP_Y8: return "grey (1 component)";
    case ZEP_YUV422: return "YUV 4:2:2 (Y 2 x 1, U and V 1 x 1)";
    case ZEP_DATA16_C: return "YUV 4:1:1 (Y 2 x 2, U and V 1 x 1)";
    case ZEP_RGB24: return "three components, all 1 x 1 (not decoded)";
    default: return "unknown";
  }
}

void print_tables(const ZEP_JPEG_RECORD &record, uint32_t quantisation_tables) {
  std::printf("tables:  %u quantisation; Huffman", quantisation_tables);
  constexpr uint8_t kUnused = 255;
  for (const uint8_t class_id : record.huff_class_id) {
    if (class_id == kUnused) continue;
    std::printf(" %s%u", (class_id >> 4) == 0 ? "DC" : "AC", class_id & 0x0F);
  }
  std::printf("\n");
}

}  // namespace

uint32_t read_jpeg(uint32_t image, const char *path) {
  JpegImage jpeg;
  if (!jpeg.created()) return jpeg.handle();
  ZEP_image_set_infilename(jpeg.handle(), path);
  const uint32_t status = ZEP_JPEG_file_read(jpeg.handle());
  return ZEP_IS_ERROR(status) ? status : decode_jpeg(jpeg.handle(), image);
}

void describe_decoded(uint32_t jpeg, uint32_t image) {
  const uint32_t type = ZEP_image_get_parameter(jpeg, ZEP_IMAGE_TYPE);
  const uint32_t height = ZEP_image_get_parameter(jpeg, ZEP_IMAGE_HEIGHT);
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, type == ZEP_Y8 ? ZEP_Y8 : ZEP_RGB24);
  ZEP_image_set_parameter(image, ZEP_IMAGE_DEPTH, type == ZEP_Y8 ? 8 : 24);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, ZEP_image_get_parameter(jpeg, ZEP_IMAGE_WIDTH));
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, height);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, height);
}

uint32_t decode_jpeg(uint32_t jpeg, uint32_t image) {
  describe_decoded(jpeg, image);
  return ZEP_JPEG_decompress(jpeg, image);
}

uint32_t compress_jpeg(uint32_t image, uint32_t jpeg, std::optional<uint16_t> quality) {
  if (quality) {
    const uint32_t status = ZEP_JPEG_set_Quality_factor(jpeg, *quality);
    if (ZEP_IS_ERROR(status)) return status;
  }
  return ZEP_JPEG_compress(image, jpeg);
}

uint32_t write_jpeg(uint32_t image, const char *path, std::optional<uint16_t> quality) {
  JpegImage jpeg;
  if (!jpeg.created()) return jpeg.handle();
  const uint32_t status = compress_jpeg(image, jpeg.handle(), quality);
  if (ZEP_IS_ERROR(status)) return status;
  ZEP_image_set_outfilename(jpeg.handle(), path);
  return ZEP_image_write(jpeg.handle(), 0, ZEP_FILE_JPEG, ZEP_ACTION_DATA);
}

int describe_jpeg(const char *path) {
  JpegImage jpeg;
  if (!jpeg.created()) return kFailure;
  const uint32_t handle = jpeg.handle();
  ZEP_image_set_infilename(handle, path);
  if (ZEP_IS_ERROR(ZEP_JPEG_file_open(handle))) {
    std::fprintf(stderr, "zep: %s: cannot read the JPEG header\n", path);
    return kFailure;
  }
  const bool has_data = ZEP_JPEG_get_parameter(handle, ZEP_JPEG_DATA_OFFSET) != 0;
  if (has_data) ZEP_JPEG_sequence_calc_length(handle);
  const uint32_t type = ZEP_image_get_parameter(handle, ZEP_IMAGE_TYPE);
  std::printf("file:    %s\n", path);
  std::printf("format:  JPEG\n");
  std::printf("size:    %u x %u\n", ZEP_image_get_parameter(handle, ZEP_IMAGE_WIDTH),
              ZEP_image_get_parameter(handle, ZEP_IMAGE_HEIGHT));
  std::printf("sampling: %s\n", sampling_name(type));
  print_tables(jpeg.record(), ZEP_JPEG_get_parameter(handle, ZEP_JPEG_QUANT_TABLES));
  std::printf("frames:  %u\n", has_data ? ZEP_image_get_parameter(handle, ZEP_NUM_FRAMES) : 0);
  ZEP_JPEG_file_close(handle);
  return kSuccess;
}

}  // namespace zep_tool
