// What a BMP file holds beyond the 40-byte-header layout the reader takes: other header
// versions, depths, compression, top-down rows, pixel data elsewhere than right after a full
// colour table, and pixel data the file does not hold.
#include "imaging/files/bmp/bmp_layout.h"
#include "imaging/files/file_inspect.h"

#include <array>
#include <cstdio>
#include <string>

namespace vrc::files {
namespace {

constexpr std::size_t kHeaderBytes = bmp::kRgbDataOffset;
constexpr uint32_t kOs2HeaderBytes = 12;    // BITMAPCOREHEADER
constexpr uint32_t kOs22xHeaderBytes = 64;  // OS/2 2.x BITMAPINFOHEADER2

// biCompression values (the BMP layout's BI_* constants).
const char *compression_name(uint32_t compression) {
  switch (compression) {
    case 1: return "RLE8";
    case 2: return "RLE4";
    case 3: return "BI_BITFIELDS";
    case 4: return "JPEG";
    case 5: return "PNG";
    case 6: return "BI_ALPHABITFIELDS";
    default: return nullptr;
  }
}

// "v5 BMP header" for the 124-byte header, "52-byte BMP header" for an unnamed size.
std::string header_name(uint32_t bytes) {
  switch (bytes) {
    case 52: return "v2 BMP header";
    case 56: return "v3 BMP header";
    case 108: return "v4 BMP header";
    case 124: return "v5 BMP header";
    default: return std::to_string(bytes) + "-byte BMP header";
  }
}

}  // namespace

bool inspect_bmp(std::FILE *file, Inspection &inspection) {
  std::array<uint8_t, kHeaderBytes> head{};
  const std::size_t got = std::fread(head.data(), 1, head.size(), file);
  if (got < 2 || head[0] != 'B' || head[1] != 'M') return false;
  if (got < 18) {
    inspection.refuse("the BMP header is cut short (%zu bytes)", got);
    return true;
  }
  const uint32_t header_bytes = ZEP_mget_ui32i(&head[14]);
  if (header_bytes == kOs2HeaderBytes || header_bytes == kOs22xHeaderBytes) {
    inspection.refuse(
        "OS/2 BMP header (%u bytes) is not supported (only the 40-byte Windows "
        "header)",
        header_bytes);
    return true;
  }
  if (header_bytes < bmp::kInfoHeaderBytes || got < kHeaderBytes) {
    inspection.refuse("%u-byte BMP header is not supported (only the 40-byte Windows header)",
                      header_bytes);
    return true;
  }
  const auto width = static_cast<int32_t>(ZEP_mget_ui32i(&head[18]));
  const auto height = static_cast<int32_t>(ZEP_mget_ui32i(&head[22]));
  const uint16_t bits = ZEP_mget_ui16i(&head[28]);
  const uint32_t compression = ZEP_mget_ui32i(&head[30]);
  const uint32_t data_offset = ZEP_mget_ui32i(&head[10]);

  if (bits != 8 && bits != 24)
    inspection.refuse("%u-bit BMP is not supported (only 8 and 24 bits)", bits);
  if (compression != 0) {
    if (const char *name = compression_name(compression))
      inspection.refuse("%s-compressed BMP is not supported (only uncompressed)", name);
    else
      inspection.refuse("BMP compression %u is not supported (only uncompressed)", compression);
  }
  if (height < 0) inspection.refuse("top-down BMP (negative height) is not supported");
  if (width < 0) inspection.refuse("BMP with a negative width (%d)", width);
  const uint32_t expected_offset = bmp::data_offset(bits);
  if (data_offset != expected_offset) {
    const std::string header =
        header_bytes == bmp::kInfoHeaderBytes ? std::string("BMP") : header_name(header_bytes);
    inspection.refuse("%s: pixel data at offset %u, not %u", header.c_str(), data_offset,
                      expected_offset);
  }
  if (inspection.refused()) return true;
  inspection.check_has_pixels(static_cast<uint32_t>(width), static_cast<uint32_t>(height));
  inspection.check_pixels_present(
      data_offset,
      uint64_t{static_cast<uint32_t>(height)} * bmp::row_bytes(static_cast<uint32_t>(width), bits),
      stream_size(file));
  return true;
}

}  // namespace vrc::files
