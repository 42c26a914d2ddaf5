// zep seq: MRAW files through the library's MRAW handles.
#include "tools/zep/sequence_format.h"
#include "tools/zep/zep_tool.h"

#include <cstdio>
#include <cstring>

namespace zep_tool {
namespace {

class MrawReader : public SequenceReader {
 public:
  explicit MrawReader(uint32_t handle) : m_handle(handle) {}
  ~MrawReader() override { ZEP_MRAW_Close(m_handle); }
  MrawReader(const MrawReader &) = delete;
  MrawReader &operator=(const MrawReader &) = delete;

  uint32_t frame_count() const override { return info().frame_count; }
  uint32_t geometry() const override { return info().image_handle; }
  bool read(uint32_t number, uint32_t image) override {
    return !ZEP_IS_ERROR(ZEP_MRAW_ImageRead(m_handle, image, static_cast<int32_t>(number)));
  }
  FrameInfo last_frame() const override {
    const ZEP_MRAW_RECORD record = info();
    return {record.frame_number, record.time_stamp,
            uint64_t{record.frame_stride} - record.header_per_image_length};
  }

 private:
  ZEP_MRAW_RECORD info() const {
    ZEP_MRAW_RECORD record{};
    ZEP_MRAW_GetInfo(m_handle, &record);
    return record;
  }

  uint32_t m_handle;
};

class MrawWriter : public SequenceWriter {
 public:
  explicit MrawWriter(uint32_t handle) : m_handle(handle) {}
  ~MrawWriter() override {
    if (m_handle != 0) ZEP_MRAW_Close(m_handle);
  }
  MrawWriter(const MrawWriter &) = delete;
  MrawWriter &operator=(const MrawWriter &) = delete;

  bool write(uint32_t image) override {
    if (ZEP_IS_ERROR(ZEP_MRAW_ImageWrite(m_handle, image))) return false;
    ++m_written;
    return true;
  }
  bool finish(uint32_t &frames_in_file) override {
    frames_in_file = m_written;
    const bool closed = !ZEP_IS_ERROR(ZEP_MRAW_Close(m_handle));
    m_handle = 0;
    return closed;
  }

 private:
  uint32_t m_handle;
  uint32_t m_written = 0;
};

bool recognise(const std::string &path) {
  char start[5] = {};
  std::FILE *file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  const bool mraw = std::fread(start, 1, sizeof start, file) == sizeof start &&
                    std::memcmp(start, "MRAW ", sizeof start) == 0;
  std::fclose(file);
  return mraw;
}

std::unique_ptr<SequenceReader> open(const std::string &path) {
  uint32_t handle = 0;
  const uint32_t status = ZEP_MRAW_Open(&handle, path.c_str());
  if (!ZEP_IS_ERROR(status)) return std::make_unique<MrawReader>(handle);
  if (handle != 0) ZEP_MRAW_Close(handle);  // a failed Open may keep its slot
  return nullptr;
}

std::unique_ptr<SequenceWriter> create(const std::string &path, const WriteOptions &) {
  uint32_t handle = 0;
  if (ZEP_IS_ERROR(ZEP_MRAW_Create(&handle, path.c_str()))) return nullptr;
  return std::make_unique<MrawWriter>(handle);
}

}  // namespace

const SequenceFormat &mraw_sequence_format() {
  static const SequenceFormat format{"MRAW", "mraw", false, nullptr, &recognise, &open, &create};
  return format;
}

}  // namespace zep_tool
