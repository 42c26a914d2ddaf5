// The capture-format table of sequence files and the board-settings arithmetic of the Display
// page.
#include "control/pages/sequence_formats.h"

#include <array>
#include <cstdio>

#include "platform/board/vrx_params.h"
#include "vrcw32/zep_core.h"
#include "vrcw32/zep_files.h"

namespace vrc::pages {
namespace {

using vrx::capture_format;

// By k = capture format code - 0xC0022601.
constexpr std::array<SequenceFormat, vrx::kCaptureFormatCount> kSequenceFormats{{
    {ZEP_Y8, 1, 1, 1, ZEP_Y8},          // 0 8 bit mono
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 1 16 bit mono
    {ZEP_Y16, 1, 2, 1, ZEP_Y16},        // 2 32 bit mono
    {ZEP_Y8, 1, 1, 1, 0},               // 3 (not offered)
    {ZEP_Y16, 1, 1, 1, ZEP_Y16},        // 4 15 bit RGB
    {ZEP_Y16, 1, 1, 1, ZEP_Y16},        // 5 16 bit RGB
    {ZEP_XBGR32, 4, 1, 1, ZEP_XBGR32},  // 6 32 bit XBGR
    {ZEP_BGRX32, 4, 1, 1, ZEP_BGRX32},  // 7 32 bit BGRX
    {ZEP_Y16, 1, 3, 1, ZEP_Y16},        // 8 48 bit RGB
    {ZEP_RGB15, 2, 1, 1, ZEP_RGB15},    // 9 15 bit BGR
    {ZEP_RGB16, 2, 1, 1, ZEP_RGB16},    // 10 16 bit BGR
    {ZEP_XRGB32, 4, 1, 1, ZEP_XRGB32},  // 11 32 bit XRGB
    {ZEP_RGBX32, 4, 1, 1, ZEP_RGBX32},  // 12 32 bit RGBX
    {ZEP_Y16, 1, 3, 1, ZEP_Y16},        // 13 48 bit BGR
    {ZEP_Y16, 1, 2, 1, ZEP_Y16},        // 14 32 bit RGB
    {ZEP_Y16, 1, 2, 1, ZEP_Y16},        // 15 32 bit BGR
    {ZEP_BGR24, 3, 1, 1, ZEP_BGR24},    // 16 24 bit RGB
    {ZEP_RGB24, 3, 1, 1, ZEP_RGB24},    // 17 24 bit BGR
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 18 10 bit mono
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 19 12 bit mono
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 20 14 bit mono
    {ZEP_Y8, 1, 1, 1, ZEP_Y8},          // 21 8 bit Bayer
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 22 10 bit Bayer
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 23 12 bit Bayer
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 24 14 bit Bayer
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 25 16 bit Bayer
    {ZEP_BGR24, 1, 1, 2, 0},            // 26 12 bit mono x2
    {ZEP_Y16, 1, 3, 1, ZEP_Y16},        // 27 36 bit RGB
    {ZEP_Y16, 1, 3, 1, ZEP_Y16},        // 28 36 bit BGR
    {ZEP_YUV422, 2, 1, 1, ZEP_YUV422},  // 29 YUV 4:2:2
    {ZEP_Y16, 2, 1, 1, ZEP_Y16},        // 30 12 bit monoB
    {ZEP_BGR24, 3, 1, 1, ZEP_Y16},      // 31 8 bit RGB planar
}};

constexpr SequenceFileType kSaveTypes[] = {
    {"tif", ZEP_FILE_TIFF}, {"jpg", ZEP_FILE_JPEG}, {"bmp", ZEP_FILE_BMP}, {"raw", ZEP_FILE_RAW}};
constexpr SequenceFileType kLoadTypes[] = {
    {"jpg", ZEP_FILE_JPEG}, {"tif", ZEP_FILE_TIFF}, {"bmp", ZEP_FILE_BMP}, {"raw", ZEP_FILE_RAW}};

SequenceFileType file_type(const SequenceFileType (&types)[4], int filter_index) {
  return filter_index >= 1 && filter_index <= 4 ? types[filter_index - 1] : types[0];
}

// The capture formats a camera of each depth fills as chosen, by k, cumulative with depth.
struct DepthFormats {
  uint32_t depth;
  std::array<int, 4> added;  // k values, -1 unused
  uint32_t mono_k, bayer_k;  // the format forced on a mono and on a Bayer camera
};
constexpr DepthFormats kDepthFormats[] = {
    {8, {0, 21, -1, -1}, 0, 21},    {10, {18, 22, -1, -1}, 18, 22}, {12, {19, 30, 26, 23}, 19, 23},
    {14, {20, 24, -1, -1}, 20, 24}, {16, {1, 25, -1, -1}, 1, 25},   {32, {-1, -1, -1, -1}, 2, 2},
};
constexpr int kRgbPlanarK = 31;

bool is_bayer_colour(uint32_t colour_type) {
  return colour_type >= vrx::ColourBayerRggb && colour_type <= vrx::ColourBayerBggr;
}

}  // namespace

const SequenceFormat *sequence_format(uint32_t format) {
  if (!vrx::is_capture_format(format)) return nullptr;
  return &kSequenceFormats[format - vrx::kCaptureFormatBase];
}

uint32_t saved_width(const SequenceFormat &format, uint32_t width) {
  return width * format.width_times / format.width_divided;
}

uint32_t saved_line_align(uint32_t line_length, uint32_t pixel_bytes) {
  if (pixel_bytes >= line_length) return 0;
  const uint32_t difference = line_length - pixel_bytes;
  if (difference < 2) return 2;
  uint32_t n = 1;
  for (uint32_t half = difference / 2; half >= 2; half /= 2) ++n;
  return 1u << n;
}

SequenceFileType save_file_type(int filter_index) { return file_type(kSaveTypes, filter_index); }
SequenceFileType load_file_type(int filter_index) { return file_type(kLoadTypes, filter_index); }

std::string sequence_file_name(std::string_view chosen, uint32_t first, uint32_t last,
                               uint32_t frame, std::string_view extension) {
  const std::size_t slash = chosen.find_last_of('/');
  const std::size_t dot = chosen.find_last_of('.');
  const bool has_extension =
      dot != std::string_view::npos && (slash == std::string_view::npos || dot > slash);
  std::string name(has_extension ? chosen.substr(0, dot) : chosen);
  if (first != last) {
    char number[16];
    std::snprintf(number, sizeof number, "%03u", frame - first + 1);
    name += number;
  }
  if (has_extension) name.append(".").append(extension);
  return name;
}

std::optional<uint32_t> subsampled_size(uint32_t size, uint32_t code) {
  switch (code) {
    case 0xC0020701: return size;
    case 0xC0020702: return (size + 1) / 2;
    case 0xC0020703: return (size + 3) / 4;
    case 0xC0020704: return (size + 7) / 8;
    default: return std::nullopt;
  }
}

uint32_t coerced_capture_format(uint32_t depth, uint32_t colour_type, uint32_t format) {
  const bool mono = colour_type == vrx::ColourMono;
  const bool bayer = is_bayer_colour(colour_type);
  if (bayer && format == capture_format(kRgbPlanarK)) return format;
  for (const DepthFormats &row : kDepthFormats) {
    for (int k : row.added) {
      if (k >= 0 && format == capture_format(static_cast<uint32_t>(k))) return format;
    }
    if (row.depth != depth) continue;
    if (mono) return capture_format(row.mono_k);
    if (bayer) return capture_format(row.bayer_k);
    return format;
  }
  return format;
}

}  // namespace vrc::pages
