// The rows of the file-format registry, the detectors of the formats recognised by content, and
// the registry as the C API describes it.
#include "imaging/files/file_registry.h"

#include "imaging/files/tiff/tiff_layout.h"
#include "vrcw32/zep_files.h"
#include "vrcw32/zep_jpeg_files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace vrc::files {
namespace {

constexpr std::size_t kHeadBytes = 10;  // enough for every signature below

// The first bytes of the stream; fewer when the file is shorter.
std::size_t read_head(std::FILE *file, std::array<uint8_t, kHeadBytes> &head) {
  return std::fread(head.data(), 1, head.size(), file);
}

// "BM", the 32-bit file size, then the two reserved 16-bit fields, which must be 0.
bool is_bmp(std::FILE *file) {
  std::array<uint8_t, kHeadBytes> head{};
  return read_head(file, head) == head.size() && head[0] == 'B' && head[1] == 'M' &&
         ZEP_mget_ui32i(&head[6]) == 0;
}

// 'M' or 'I' (the second byte is not looked at), the magic 42, and a first directory entry whose
// field type is defined (1..11).
bool is_tiff(std::FILE *file) {
  const int mark = std::fgetc(file);
  if (mark != tiff::kOrderMotorola && mark != tiff::kOrderIntel) return false;
  const auto order = static_cast<uint16_t>(mark);
  static_cast<void>(std::fgetc(file));
  if (tiff::read_ui16(file, order) != tiff::kMagic) return false;
  const uint32_t directory = tiff::read_ui32(file, order);
  if (std::feof(file) || std::fseek(file, static_cast<long>(directory), SEEK_SET) != 0)
    return false;
  static_cast<void>(tiff::read_ui16(file, order));  // entry count
  static_cast<void>(tiff::read_ui16(file, order));  // first tag
  const uint16_t type = tiff::read_ui16(file, order);
  static_cast<void>(tiff::read_ui32(file, order));  // value count
  return !std::feof(file) && !std::ferror(file) && type >= 1 && type <= tiff::kLastFieldType;
}

bool is_eps(std::FILE *file) {
  std::array<uint8_t, kHeadBytes> head{};
  return read_head(file, head) >= 4 && std::memcmp(head.data(), "%!PS", 4) == 0;
}

// The start-of-image marker.
bool is_jpeg(std::FILE *file) {
  std::array<uint8_t, kHeadBytes> head{};
  return read_head(file, head) >= 2 && head[0] == 0xFF && head[1] == 0xD8;
}

uint32_t write_bmp(uint32_t handle, uint16_t) { return ZEP_write_BMP_file(handle); }
uint32_t read_jpeg(uint32_t handle, uint16_t) { return ZEP_JPEG_file_read(handle); }
uint32_t write_jpeg(uint32_t handle, uint16_t) { return ZEP_JPEG_file_write(handle); }

constexpr uint16_t kBmpTypes[] = {ZEP_Y8, ZEP_PALETTED, ZEP_RGB24, ZEP_BGR24, ZEP_BGRX32};
constexpr uint16_t kTiffTypes[] = {ZEP_Y8, ZEP_Y16, ZEP_RGB24, ZEP_BGR24, ZEP_BGRX32, ZEP_YUV422};
constexpr uint16_t kEpsTypes[] = {ZEP_Y8, ZEP_PALETTED, ZEP_RGB24};
// A JPEG file is written from a JPEG image; these are the pictures ZEP_JPEG_compress codes.
constexpr uint16_t kJpegTypes[] = {ZEP_Y8,     ZEP_RGB24,  ZEP_BGR24, ZEP_RGBX32,
                                   ZEP_BGRX32, ZEP_XBGR32, ZEP_YUV422};
constexpr uint16_t kRawTypes[] = {ZEP_Y8,     ZEP_PALETTED, ZEP_RGB8,   ZEP_RGB15,  ZEP_RGB16,
                                  ZEP_RGB24,  ZEP_BGR24,    ZEP_RGBX32, ZEP_BGRX32, ZEP_XBGR32,
                                  ZEP_YUV422, ZEP_Y16,      ZEP_XRGB32, ZEP_DATA32, ZEP_HSI};

const FileFormatRow kRows[] = {
    {ZEP_FILE_BMP, "BMP", "bmp", is_bmp, ZEP_read_BMP_file, write_bmp, kBmpTypes},
    {ZEP_FILE_TIFF, "TIFF", "tif tiff", is_tiff, ZEP_read_TIFF_file, ZEP_write_TIFF_file,
     kTiffTypes},
    {ZEP_FILE_EPS, "EPS", "eps", is_eps, ZEP_read_EPS_file, ZEP_write_EPS_file, kEpsTypes},
    // Read into and written from JPEG images (ZEP_JPEG_image_create).
    {ZEP_FILE_JPEG, "JPEG", "jpg jpeg", is_jpeg, read_jpeg, write_jpeg, kJpegTypes},
    {ZEP_FILE_RAW, "RAW", "raw", nullptr, nullptr, ZEP_write_raw_data_file, kRawTypes},
};

// The rows as the C API describes them, built once.
const std::vector<ZEP_FILE_FORMAT_INFO> &public_infos() {
  static const std::vector<ZEP_FILE_FORMAT_INFO> infos = [] {
    std::vector<ZEP_FILE_FORMAT_INFO> all;
    for (const FileFormatRow &row : kRows) {
      all.push_back({row.code, row.name, row.extensions, row.detect != nullptr ? 1u : 0u,
                     row.read != nullptr ? 1u : 0u, row.write != nullptr ? 1u : 0u});
    }
    return all;
  }();
  return infos;
}

}  // namespace

std::span<const FileFormatRow> file_format_rows() { return kRows; }

const FileFormatRow *file_format_row(uint32_t code) {
  const auto row = std::find_if(std::begin(kRows), std::end(kRows),
                                [code](const FileFormatRow &r) { return r.code == code; });
  return row != std::end(kRows) ? &*row : nullptr;
}

bool stores_type(uint32_t code, uint32_t type) {
  const FileFormatRow *row = file_format_row(code);
  return row != nullptr && std::find(row->stored_types.begin(), row->stored_types.end(), type) !=
                               row->stored_types.end();
}

}  // namespace vrc::files

extern "C" const ZEP_FILE_FORMAT_INFO *ZEP_file_format_info(uint32_t index) {
  const auto &infos = vrc::files::public_infos();
  return index < infos.size() ? &infos[index] : nullptr;
}

extern "C" uint32_t ZEP_file_format_stores_type(uint32_t format, uint32_t type) {
  return vrc::files::stores_type(format, type) ? 1 : 0;
}
