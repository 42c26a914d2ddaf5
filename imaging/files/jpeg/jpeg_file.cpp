// JPEG images as JFIF files and memory buffers: writing the whole file, reading a file (header and
// data, or the header only with the file kept open for a sequence), reading from memory, and
// building the file's bytes in a caller's buffer.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/jpeg/jpeg_markers.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "vrcw32/zep_jpeg_files.h"

#include <cstring>
#include <memory>

namespace vrc::jpeg {
namespace {

struct CloseFile {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

class FileInput final : public MarkerInput {
 public:
  explicit FileInput(OwnedFile file) : m_file(std::move(file)) {
    std::fseek(m_file.get(), 0, SEEK_END);
    const long end = std::ftell(m_file.get());
    m_size = end < 0 ? 0 : static_cast<uint64_t>(end);
    std::rewind(m_file.get());
  }
  int next() override { return m_stopped ? -1 : std::fgetc(m_file.get()); }
  bool read(std::span<uint8_t> bytes) override {
    return !m_stopped && std::fread(bytes.data(), 1, bytes.size(), m_file.get()) == bytes.size();
  }
  uint64_t position() const override {
    const long at = std::ftell(m_file.get());
    return at < 0 ? m_size : static_cast<uint64_t>(at);
  }
  bool seek(uint64_t position) override {
    return std::fseek(m_file.get(), static_cast<long>(position), SEEK_SET) == 0;
  }
  uint64_t size() const override { return m_size; }
  void stop() override { m_stopped = true; }
  OwnedFile release() { return std::move(m_file); }

 private:
  OwnedFile m_file;
  uint64_t m_size = 0;
  bool m_stopped = false;
};

class MemoryInput final : public MarkerInput {
 public:
  explicit MemoryInput(std::span<const uint8_t> bytes) : m_bytes(bytes) {}
  int next() override { return m_stopped || m_at >= m_bytes.size() ? -1 : m_bytes[m_at++]; }
  bool read(std::span<uint8_t> bytes) override {
    if (m_stopped || bytes.size() > m_bytes.size() - m_at) return false;
    if (!bytes.empty()) std::memcpy(bytes.data(), m_bytes.data() + m_at, bytes.size());
    m_at += bytes.size();
    return true;
  }
  uint64_t position() const override { return m_at; }
  bool seek(uint64_t position) override {
    m_at = static_cast<std::size_t>(std::min<uint64_t>(position, m_bytes.size()));
    return true;
  }
  uint64_t size() const override { return m_bytes.size(); }
  void stop() override { m_stopped = true; }

 private:
  std::span<const uint8_t> m_bytes;
  std::size_t m_at = 0;
  bool m_stopped = false;
};

constexpr char kNotJpeg[] = "The ZEP image handle refers to a non-JPEG image";
constexpr char kFileEnded[] = "Unexpected end of file";

// The record of an image to be parsed into; reports an unknown handle or an image without one.
ZEP_JPEG_RECORD *parse_target(const char *function_name, uint32_t handle, uint32_t &status) {
  const ZEP_IMAGE *image = core::image_record(handle);
  if (image == nullptr) {
    status = core::report(function_name, ZEP_ERR_HANDLE);
    return nullptr;
  }
  if (image->jpeg == nullptr) status = core::report(function_name, ZEP_ERR_HANDLE, kNotJpeg);
  return image->jpeg;
}

// Opens the image's input file for a parse.
OwnedFile open_input(const char *function_name, uint32_t handle, uint32_t &status) {
  status = 0;
  if (parse_target(function_name, handle, status) == nullptr) return nullptr;
  OwnedFile file(std::fopen(core::image_record(handle)->infilename, "rb"));
  if (!file) status = core::report(function_name, ZEP_ERR_OPEN, "Failed to open JPEG file");
  return file;
}

// Opens the image's input file and parses its markers in `mode`. Returns the file, positioned
// after what was parsed, or null with the code in `status` when opening or parsing failed.
OwnedFile parse_input_file(const char *function_name, uint32_t handle, ParseMode mode,
                           uint32_t &status) {
  OwnedFile file = open_input(function_name, handle, status);
  if (!file) return nullptr;
  FileInput input(std::move(file));
  status = parse_markers(function_name, handle, input, mode, kFileEnded);
  if (status != 0) return nullptr;
  return input.release();
}

uint32_t file_read(uint32_t handle) {
  uint32_t status = 0;
  parse_input_file("ZEP_JPEG_file_read", handle, ParseMode::WithData, status);
  return status;
}

uint32_t file_open(uint32_t handle) {
  uint32_t status = 0;
  OwnedFile file = parse_input_file("ZEP_JPEG_file_open", handle, ParseMode::HeaderOnly, status);
  if (!file) return status;
  ZEP_JPEG_RECORD &record = *core::image_record(handle)->jpeg;
  if (record.file != nullptr) std::fclose(record.file);
  record.file = file.release();
  return 0;
}

uint32_t buffer_read(uint32_t handle, const uint8_t *buffer, uint32_t length) {
  constexpr char kName[] = "ZEP_JPEG_buffer_read";
  uint32_t status = 0;
  if (parse_target(kName, handle, status) == nullptr) return status;
  if (buffer == nullptr) return core::report(kName, ZEP_ERR_BAD_PARAM, "No buffer to read from");
  MemoryInput input(std::span<const uint8_t>(buffer, length));
  return parse_markers(kName, handle, input, ParseMode::WithData, "Unexpected end of JPEG stream");
}

uint32_t file_write(uint32_t handle) {
  constexpr char kName[] = "ZEP_JPEG_file_write";
  const JpegImage target = jpeg_image_of(handle, kName);
  if (target.record == nullptr) return target.status;
  std::vector<uint8_t> bytes;
  const uint32_t status = file_bytes(kName, *target.image, *target.record, bytes);
  if (status != 0) return status;
  std::FILE *file = std::fopen(target.image->outfilename, "wb");
  if (file == nullptr) return core::report(kName, ZEP_ERR_OPEN, files::message::kCreateFailed);
  std::setvbuf(file, nullptr, _IOFBF, files::kWriteBufferBytes);
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (std::fclose(file) != 0 || !written)
    return core::report(kName, ZEP_ERR_CLOSE, files::message::kCloseFailed);
  return 0;
}

uint32_t build_image(uint32_t source, uint8_t *destination, uint32_t *count) {
  constexpr char kName[] = "ZEP_JPEG_build_image";
  const JpegImage target = jpeg_image_of(source, kName);
  if (target.record == nullptr) return target.status;
  if (count == nullptr) return core::report(kName, ZEP_ERR_BAD_PARAM, "No buffer size given");
  std::vector<uint8_t> bytes;
  const uint32_t status = file_bytes(kName, *target.image, *target.record, bytes);
  if (status != 0) return status;
  const uint32_t capacity = *count;
  *count = static_cast<uint32_t>(bytes.size());
  if (destination == nullptr) return 0;
  if (capacity < bytes.size())
    return core::report(kName, ZEP_ERR_BAD_PARAM, "Buffer too small for the JPEG file");
  std::memcpy(destination, bytes.data(), bytes.size());
  return 0;
}

uint32_t file_close(uint32_t handle) {
  constexpr char kName[] = "ZEP_JPEG_file_close";
  const JpegImage target = jpeg_image_of(handle, kName);
  if (target.record == nullptr) return target.status;
  std::FILE *file = target.record->file;
  target.record->file = nullptr;
  if (file != nullptr && std::fclose(file) != 0)
    return core::report(kName, ZEP_ERR_CLOSE, files::message::kCloseFailed);
  return 0;
}

}  // namespace
}  // namespace vrc::jpeg

using vrc::core::api_guard;
using namespace vrc::jpeg;

extern "C" {

uint32_t ZEP_JPEG_file_write(uint32_t jpeg_image) {
  return api_guard("ZEP_JPEG_file_write", [&] { return file_write(jpeg_image); });
}

uint32_t ZEP_JPEG_file_read(uint32_t jpeg_image) {
  return api_guard("ZEP_JPEG_file_read", [&] { return file_read(jpeg_image); });
}

uint32_t ZEP_JPEG_file_open(uint32_t jpeg_image) {
  return api_guard("ZEP_JPEG_file_open", [&] { return file_open(jpeg_image); });
}

uint32_t ZEP_JPEG_file_close(uint32_t jpeg_image) {
  return api_guard("ZEP_JPEG_file_close", [&] { return file_close(jpeg_image); });
}

uint32_t ZEP_JPEG_buffer_read(uint32_t jpeg_image, const uint8_t *buffer, uint32_t length) {
  return api_guard("ZEP_JPEG_buffer_read", [&] { return buffer_read(jpeg_image, buffer, length); });
}

uint32_t ZEP_JPEG_build_image(uint32_t source, uint8_t *destination, uint32_t *count) {
  return api_guard("ZEP_JPEG_build_image", [&] { return build_image(source, destination, count); });
}

FILE *ZEP_JPEG_get_file_ptr(uint32_t jpeg_image) {
  const ZEP_IMAGE *image = vrc::core::image_record(jpeg_image);
  return image == nullptr || image->jpeg == nullptr ? nullptr : image->jpeg->file;
}

uint32_t ZEP_JPEG_set_file_ptr(uint32_t jpeg_image, FILE *file) {
  const JpegImage target = jpeg_image_of(jpeg_image, "ZEP_JPEG_set_file_ptr");
  if (target.record == nullptr) return target.status;
  target.record->file = file;
  return 0;
}

}  // extern "C"
