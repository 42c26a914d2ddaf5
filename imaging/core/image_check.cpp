// Validation of an image record against its pixel format, and the line-length rules.
#include "imaging/core/handle_table.h"
#include "imaging/core/line_rules.h"
#include "imaging/core/pixel_formats.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_core.h"

#include <cstdint>

namespace {

using vrc::core::CheckExtra;
using vrc::core::LineRule;
using vrc::core::PixelFormat;

constexpr const char *kCheck = "ZEP_image_check";

uint32_t fail(uint32_t code, const char *message) {
  return vrc::core::report(kCheck, code, message);
}

// The line rules applied before the depth test (whatever its outcome) and after it passes.
void apply_line_rule_before(const PixelFormat &format, ZEP_IMAGE &image, uint64_t &bytes_per_line) {
  if (format.line_rule == LineRule::AsDepth8) {
    bytes_per_line = vrc::core::general_bytes_per_line(image.width, 8, image.line_align);
    image.skip_bytes = ZEP_image_calc_skip_bytes(image.width, 8, image.line_align);
  } else if (format.line_rule == LineRule::GeneralDiv4) {
    bytes_per_line /= 4;  // QUIRK: a quarter of the general value
  }
}

void apply_line_rule_after(const PixelFormat &format, const ZEP_IMAGE &image,
                           uint64_t &bytes_per_line) {
  if (format.line_rule == LineRule::Width8Bytes) bytes_per_line = uint64_t{image.width} * 8;
  if (format.line_rule == LineRule::Width4Bytes) bytes_per_line = uint64_t{image.width} * 4;
}

// The test made before the depth test; 0 when the record passes.
uint32_t check_before_depth(const PixelFormat &format, const ZEP_IMAGE &image) {
  if (format.check_extra == CheckExtra::NeedsColourMap && image.cmap_colours == 0)
    return fail(0x10050007, "Colourmap should not be 0 size");
  if (format.check_extra == CheckExtra::NeedsDataWidth &&
      (image.data_width < 1 || image.data_width > 16))
    return fail(0x1005000a, "Data width not between 1 and 16");
  return 0;
}

// The tests of the record's format, first failing test deciding; 0 when the record passes.
uint32_t check_type(ZEP_IMAGE &image, uint64_t &bytes_per_line) {
  const PixelFormat *format = vrc::core::pixel_format(image.type);
  if (format == nullptr) return fail(0x10050010, "Unrecognised image");
  apply_line_rule_before(*format, image, bytes_per_line);
  if (uint32_t status = check_before_depth(*format, image); status != 0) return status;
  if (image.depth != format->depth) return fail(format->depth_code, format->depth_message);
  if (format->check_extra == CheckExtra::ResetsDataWidth) image.data_width = format->data_width;
  apply_line_rule_after(*format, image, bytes_per_line);
  return 0;
}

}  // namespace

namespace vrc::core {

uint32_t skip_bytes_for(uint64_t width, uint64_t depth, uint32_t line_align) {
  if (line_align == 0) return 0;  // no alignment asked for; avoids a division by zero
  uint64_t remainder = ((depth + 1) / 8 * width) % line_align;
  return remainder == 0 ? 0 : static_cast<uint32_t>(line_align - remainder);
}

uint64_t general_bytes_per_line(uint64_t width, uint64_t depth, uint32_t line_align) {
  return (depth + 1) / 8 * width + skip_bytes_for(width, depth, line_align);
}

}  // namespace vrc::core

extern "C" {

uint32_t ZEP_image_calc_skip_bytes(uint32_t width, uint32_t depth, uint32_t line_align) {
  return vrc::core::skip_bytes_for(width, depth, line_align);
}

uint32_t ZEP_image_check(uint32_t handle) {
  ZEP_IMAGE *image = vrc::core::image_record(handle);
  if (image == nullptr) return ZEP_ERR_CORRUPT;
  if (image->num_frames < 2) image->num_frames = 1;
  image->skip_bytes = vrc::core::skip_bytes_for(image->width, image->depth, image->line_align);
  uint64_t bytes_per_line =
      vrc::core::general_bytes_per_line(image->width, image->depth, image->line_align);
  // The general line length is stored even when the type is then refused.
  uint32_t status = check_type(*image, bytes_per_line);
  image->bytes_per_line = static_cast<uint32_t>(bytes_per_line);
  if (status != 0) return status;

  // Lengths must fit the record's 32-bit fields, or every later buffer walk would overrun.
  uint64_t strip_bytes = bytes_per_line * image->lines_this_strip;
  if (bytes_per_line > UINT32_MAX || strip_bytes > UINT32_MAX)
    return fail(0x10050011, "Image too large");
  image->strip_bytes = static_cast<uint32_t>(strip_bytes);
  return 0;
}

uint32_t ZEP_ImageCheck2(uint32_t) { return 0; }

uint32_t ZEP_image_calc_total_strips(uint32_t handle) {
  ZEP_IMAGE *image = vrc::core::record_or_report(handle, "ZEP_image_calc_total_strips");
  if (image == nullptr) return ZEP_ERR_HANDLE;
  if (image->lines_this_strip == 0) return 0;
  uint64_t strips =
      (uint64_t{image->height} + image->lines_this_strip - 1) / image->lines_this_strip;
  return static_cast<uint32_t>(strips & 0xFFFF);
}

}  // extern "C"
