// Region crop: copies a rectangle of an image into a new image, one strip of the input per call.
//
// The crop's progress (idle or busy, and the input lines already passed) is process-wide, as for
// every strip-wise operation: one crop runs at a time. The output image is set up inside the first
// call after idle, and every call gives the output one strip: the lines of the region that fall
// inside the input strip, possibly none.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_process.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

namespace vrc::process {
namespace {

constexpr char kCropName[] = "ZEP_IP_crop";
constexpr char kWorkerName[] = "ZEP_IP_crop_1_strip";
constexpr char kCorruptImage[] = "Corrupt image";

enum class CropState : uint32_t { Idle = 1, Busy = 2 };

struct CropProgress {
  CropState state = CropState::Idle;
  uint32_t lines_passed = 0;  // input lines of the strips already handled
};

CropProgress g_progress;

// The region after clipping to the input image; width and height are at least 1.
struct Region {
  uint32_t x;
  uint32_t y;
  uint32_t width;
  uint32_t height;
};

constexpr std::array kCroppableTypes = {
    ZEP_Y8,     ZEP_PALETTED, ZEP_RGB15,  ZEP_RGB16,  ZEP_RGB24, ZEP_BGR24, ZEP_RGBX32,
    ZEP_BGRX32, ZEP_XBGR32,   ZEP_YUV422, ZEP_CMYK32, ZEP_Y16,   ZEP_XRGB32};

bool is_croppable(uint16_t type) {
  return std::find(kCroppableTypes.begin(), kCroppableTypes.end(), type) != kCroppableTypes.end();
}

// How the strip worker fills one output line of a format.
enum class LineCopy {
  RegionBytes,  // the region's pixels only; the output's padding stays blank
  WholeLine,    // bytes_per_line of the output, padding units included, from the region's start
};

struct FormatRule {
  uint16_t type;
  LineCopy copy;
  uint32_t pixel_bytes;
};

// The worker's formats. The 16- and 32-bit rows are copied as whole output lines: where the
// output line is padded, its padding units take the input pixels that follow the region.
constexpr std::array<FormatRule, 12> kFormatRules = {{
    {ZEP_Y8, LineCopy::RegionBytes, 1},
    {ZEP_PALETTED, LineCopy::RegionBytes, 1},
    {ZEP_RGB15, LineCopy::WholeLine, 2},
    {ZEP_RGB16, LineCopy::WholeLine, 2},
    {ZEP_YUV422, LineCopy::WholeLine, 2},
    {ZEP_Y16, LineCopy::WholeLine, 2},
    {ZEP_RGB24, LineCopy::RegionBytes, 3},
    {ZEP_BGR24, LineCopy::RegionBytes, 3},
    {ZEP_RGBX32, LineCopy::WholeLine, 4},
    {ZEP_BGRX32, LineCopy::WholeLine, 4},
    {ZEP_XBGR32, LineCopy::WholeLine, 4},
    {ZEP_CMYK32, LineCopy::WholeLine, 4},
}};

const FormatRule *format_rule(uint16_t type) {
  const auto *rule = std::find_if(kFormatRules.begin(), kFormatRules.end(),
                                  [type](const FormatRule &r) { return r.type == type; });
  return rule == kFormatRules.end() ? nullptr : rule;
}

// Copies `count` bytes from source[offset...] to the start of `target` and blanks the rest of
// `target`; source bytes beyond the end of `source` read as zero.
void copy_line(std::span<const uint8_t> source, uint64_t offset, uint64_t count,
               std::span<uint8_t> target) {
  const uint64_t available = offset < source.size() ? source.size() - offset : 0;
  const std::size_t copied =
      static_cast<std::size_t>(std::min({count, available, uint64_t{target.size()}}));
  if (copied > 0) std::memcpy(target.data(), source.data() + offset, copied);
  std::fill(target.begin() + static_cast<std::ptrdiff_t>(copied), target.end(), uint8_t{0});
}

// Fills the output's fresh strip from the input strip, starting at line `first_line` of it.
uint32_t copy_region_lines(const ZEP_IMAGE &input, ZEP_IMAGE &output, const FormatRule &rule,
                           uint32_t x, uint32_t first_line) {
  if (input.data == nullptr)
    return core::report(kWorkerName, ZEP_ERR_BAD_PARAM, "Input image has no data");
  const std::span<const uint8_t> source(input.data,
                                        std::size_t{input.bytes_per_line} * input.lines_this_strip);
  const uint64_t line_bytes = rule.copy == LineCopy::WholeLine
                                  ? output.bytes_per_line
                                  : uint64_t{output.width} * rule.pixel_bytes;
  for (uint32_t line = 0; line < output.lines_this_strip; ++line) {
    const uint64_t offset =
        uint64_t{first_line + line} * input.bytes_per_line + uint64_t{x} * rule.pixel_bytes;
    std::span<uint8_t> target(output.data + std::size_t{line} * output.bytes_per_line,
                              output.bytes_per_line);
    copy_line(source, offset, line_bytes, target);
  }
  return 0;
}

// Gives the output a new strip of its lines_this_strip lines and copies the region's part of the
// input strip into it. A failure leaves the output without a strip.
uint32_t crop_one_strip(uint32_t in, uint32_t out, uint32_t x, uint32_t first_line) {
  ZEP_image_free_data(out);
  uint32_t status = ZEP_image_malloc_a_strip(out);
  if (status != 0) return status;
  const ZEP_IMAGE &input = *core::image_record(in);
  ZEP_IMAGE &output = *core::image_record(out);
  if (input.type == ZEP_Y1) {
    status = core::report(kWorkerName, ZEP_ERR_UNSUPPORTED, "Bilevel images not supported");
  } else if (const FormatRule *rule = format_rule(input.type); rule == nullptr) {
    status = core::report(kWorkerName, ZEP_ERR_UNSUPPORTED | 1, "Unsupported image type");
  } else {
    status = copy_region_lines(input, output, *rule, x, first_line);
  }
  if (status != 0) ZEP_image_free_data(out);
  return status;
}

// Clips `region` to the input image. A region that starts outside the image or leaves nothing
// after clipping cannot be copied and is refused.
uint32_t clip_region(const ZEP_IMAGE &input, const int16_t *region, Region &clipped) {
  if (region == nullptr) return core::report(kCropName, ZEP_ERR_BAD_PARAM, "No region given");
  const int64_t x = region[ZEP_REGION_X];
  const int64_t y = region[ZEP_REGION_Y];
  const int64_t width = std::min<int64_t>(region[ZEP_REGION_WIDTH], int64_t{input.width} - x);
  const int64_t height = std::min<int64_t>(region[ZEP_REGION_HEIGHT], int64_t{input.height} - y);
  if (x < 0 || y < 0 || width < 1 || height < 1)
    return core::report(kCropName, ZEP_ERR_BAD_PARAM, "Region lies outside the image");
  clipped = {static_cast<uint32_t>(x), static_cast<uint32_t>(y), static_cast<uint32_t>(width),
             static_cast<uint32_t>(height)};
  return 0;
}

// The first call after idle: the output takes the input's parameters and the region's size. Its
// strips are the crop's own buffers, never a caller's, whatever the input's locked flag says.
uint32_t set_up_output(uint32_t in, uint32_t out, const Region &region) {
  g_progress.lines_passed = 0;
  uint32_t status = ZEP_image_copy_parameters(in, out);
  if (status != 0) return status;
  ZEP_IMAGE &output = *core::image_record(out);
  output.flags &= ~ZEP_FLAG_LOCKED;
  output.width = region.width;
  output.height = region.height;
  status = ZEP_image_check(out);
  if (status != 0) return core::report(kCropName, status, kCorruptImage);
  g_progress.state = CropState::Busy;
  return 0;
}

// Where the region's lines meet the input strip of `strip_lines` lines after `passed` lines.
struct StripOverlap {
  uint32_t output_lines;  // lines the output strip gets
  uint32_t first_line;    // first input line used, within the strip
};

StripOverlap overlap(const Region &region, uint64_t passed, uint64_t strip_lines) {
  const uint64_t region_end = uint64_t{region.y} + region.height;
  if (passed + strip_lines < region.y || passed > region_end) return {0, 0};
  if (passed >= region.y) {
    const uint64_t lines = passed + strip_lines > region_end ? region_end - passed : strip_lines;
    return {static_cast<uint32_t>(lines), 0};
  }
  const uint64_t lines = std::min<uint64_t>(passed + strip_lines - region.y, region.height);
  return {static_cast<uint32_t>(lines), static_cast<uint32_t>(region.y - passed)};
}

uint32_t crop(uint32_t in, uint32_t out, int16_t *region_values, uint16_t mode) {
  uint32_t status = ZEP_image_check(in);
  if (status != 0) return core::report(kCropName, status, kCorruptImage);
  ZEP_IMAGE &input = *core::image_record(in);
  if (!is_croppable(input.type))
    return core::report(kCropName, ZEP_ERR_UNSUPPORTED | input.type, "Unsupported image format");
  if (input.lines_this_strip == 0) return ZEP_image_copy_parameters(in, out);
  if (core::image_record(out) == &input)
    return core::report(kCropName, ZEP_ERR_BAD_PARAM, "Input and output are the same image");
  Region region{};
  status = clip_region(input, region_values, region);
  if (status != 0) return status;
  if (mode == ZEP_MODE_RESET) {
    g_progress.state = CropState::Idle;
    return 0;
  }
  if (mode != ZEP_MODE_NEXT_STRIP) return 0;
  if (g_progress.state == CropState::Idle) {
    status = set_up_output(in, out, region);
    if (status != 0) return status;
  }
  const uint32_t strip_lines = input.lines_this_strip;
  const uint64_t passed = g_progress.lines_passed;
  const StripOverlap part = overlap(region, passed, strip_lines);
  if (ZEP_IMAGE *output = core::image_record(out)) output->lines_this_strip = part.output_lines;
  // A failing worker has reported its failure; the crop goes on.
  if (passed + strip_lines < input.height) {
    crop_one_strip(in, out, region.x, part.first_line);
    g_progress.lines_passed += strip_lines;
    return 0;
  }
  // The last strip: the input record is told how many of its lines are the image's.
  input.lines_this_strip = static_cast<uint32_t>(passed < input.height ? input.height - passed : 0);
  crop_one_strip(in, out, region.x, part.first_line);
  g_progress.state = CropState::Idle;
  return 0;
}

}  // namespace
}  // namespace vrc::process

extern "C" uint32_t ZEP_IP_crop(uint32_t in, uint32_t out, int16_t *region, uint16_t mode) {
  return vrc::core::api_guard(vrc::process::kCropName,
                              [&] { return vrc::process::crop(in, out, region, mode); });
}
