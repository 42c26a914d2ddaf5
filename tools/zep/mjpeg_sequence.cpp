// zep seq: MJPEG files through the library's MJPEG handles. Frames are decoded to Y8 (grey) or
// RGB24 (colour) when read, and compressed at the chosen quality scale when written (frames of
// other pixel formats converted to RGB24, or Y8 for grey, first).
#include "tools/zep/sequence_format.h"
#include "tools/zep/zep_tool.h"

#include <cstdio>
#include <cstring>

namespace zep_tool {
namespace {

class MjpegReader : public SequenceReader {
 public:
  explicit MjpegReader(uint32_t handle) : m_handle(handle) {
    describe_decoded(info().jpeg_image, m_geometry.handle());
  }
  ~MjpegReader() override { ZEP_MJPEG_Close(m_handle); }
  MjpegReader(const MjpegReader &) = delete;
  MjpegReader &operator=(const MjpegReader &) = delete;

  uint32_t frame_count() const override { return info().frame_count; }
  uint32_t geometry() const override { return m_geometry.handle(); }
  bool read(uint32_t number, uint32_t image) override {
    return m_frame.created() &&
           !ZEP_IS_ERROR(
               ZEP_MJPEG_ImageRead(m_handle, m_frame.handle(), static_cast<int32_t>(number))) &&
           !ZEP_IS_ERROR(decode_jpeg(m_frame.handle(), image));
  }
  FrameInfo last_frame() const override {
    const ZEP_MJPEG_RECORD record = info();
    return {record.frame_number, record.time_stamp, record.data_length};
  }

 private:
  ZEP_MJPEG_RECORD info() const {
    ZEP_MJPEG_RECORD record{};
    ZEP_MJPEG_GetInfo(m_handle, &record);
    return record;
  }

  uint32_t m_handle;
  Image m_geometry;
  Image m_frame{ZEP_JPEG_image_create()};
};

class MjpegWriter : public SequenceWriter {
 public:
  MjpegWriter(uint32_t handle, std::optional<uint16_t> quality)
      : m_handle(handle), m_quality(quality) {}
  ~MjpegWriter() override {
    if (m_handle != 0) ZEP_MJPEG_Close(m_handle);
  }
  MjpegWriter(const MjpegWriter &) = delete;
  MjpegWriter &operator=(const MjpegWriter &) = delete;

  bool write(uint32_t image) override {
    Image converted;
    const uint32_t type = ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE);
    uint32_t source = image;
    // Grey and RGB frames go to the encoder as they are; every other format as one of them.
    if (type != ZEP_Y8 && type != ZEP_RGB24) {
      const uint16_t target = ZEP_image_is_colour(image) != 0 ? ZEP_RGB24 : ZEP_Y8;
      if (ZEP_IS_ERROR(
              ZEP_image_convert(image, converted.handle(), target, 0, ZEP_MODE_NEXT_STRIP)))
        return false;
      source = converted.handle();
    }
    Image jpeg(ZEP_JPEG_image_create());
    if (!jpeg.created() || ZEP_IS_ERROR(compress_jpeg(source, jpeg.handle(), m_quality)) ||
        ZEP_IS_ERROR(ZEP_MJPEG_ImageWrite(m_handle, jpeg.handle())))
      return false;
    ++m_written;
    return true;
  }
  uint32_t stored_type(uint32_t image) const override {
    return ZEP_image_is_colour(image) != 0 ? ZEP_RGB24 : ZEP_Y8;
  }
  bool finish(uint32_t &frames_in_file) override {
    // The newest frame is only held in memory; closing drops it.
    frames_in_file = m_written > 0 ? m_written - 1 : 0;
    const bool closed = !ZEP_IS_ERROR(ZEP_MJPEG_Close(m_handle));
    m_handle = 0;
    return closed;
  }

 private:
  uint32_t m_handle;
  std::optional<uint16_t> m_quality;
  uint32_t m_written = 0;
};

// SOI, then the comment marker of a first record right after the 18-byte APP0 segment.
bool recognise(const std::string &path) {
  uint8_t start[24] = {};
  std::FILE *file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  const bool read = std::fread(start, 1, sizeof start, file) == sizeof start;
  std::fclose(file);
  constexpr uint8_t kComment[] = {0xFF, 0xFE, 0x01, 0x2A};
  return read && start[0] == 0xFF && start[1] == 0xD8 &&
         std::memcmp(start + 20, kComment, sizeof kComment) == 0;
}

std::unique_ptr<SequenceReader> open(const std::string &path) {
  uint32_t handle = 0;
  if (ZEP_IS_ERROR(ZEP_MJPEG_Open(&handle, path.c_str()))) return nullptr;
  return std::make_unique<MjpegReader>(handle);
}

std::unique_ptr<SequenceWriter> create(const std::string &path, const WriteOptions &options) {
  uint32_t handle = 0;
  if (ZEP_IS_ERROR(ZEP_MJPEG_Create(&handle, path.c_str(), 0, 0))) return nullptr;
  return std::make_unique<MjpegWriter>(handle, options.quality);
}

}  // namespace

const SequenceFormat &mjpeg_sequence_format() {
  static const SequenceFormat format{
      "MJPEG",
      "mjpg",
      true,
      "an MJPEG file keeps its newest frame in memory until the next one arrives, so the last "
      "frame given is not stored (give it twice to keep it)",
      &recognise,
      &open,
      &create};
  return format;
}

}  // namespace zep_tool
