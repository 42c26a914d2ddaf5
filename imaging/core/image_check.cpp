// Validation of an image record against its pixel format, and the line-length rules.
#include "imaging/core/handle_table.h"
#include "imaging/core/line_rules.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_core.h"

#include <cstdint>

namespace {

constexpr const char *kCheck = "ZEP_image_check";

// One per-type test: the depth a format demands, with the code and text of its failure.
struct DepthRule {
  uint32_t depth;
  uint32_t code;
  const char *message;
};

// The depth test of each type whose check is only a depth test; null for the other types.
const DepthRule *depth_rule(uint16_t type) {
  static constexpr DepthRule kDepth1{1, 0x10050001, "Depth not 1"};
  static constexpr DepthRule kY8{8, 0x10050002, "Depth not 8"};
  static constexpr DepthRule kRgb8{8, 0x1005000d, "Depth not 8"};
  static constexpr DepthRule kRgb15{15, 0x1005000c, "Depth not 15"};
  static constexpr DepthRule kDepth16{16, 0x10050009, "Depth not 16"};
  static constexpr DepthRule kDepth24{24, 0x10050003, "Depth not 24"};
  static constexpr DepthRule kDepth32{32, 0x10050004, "Depth not 32"};
  switch (type) {
    case ZEP_Y1: return &kDepth1;
    case ZEP_Y8: return &kY8;
    case ZEP_RGB8: return &kRgb8;
    case ZEP_RGB15: return &kRgb15;
    case ZEP_RGB16:
    case ZEP_YUV422:
    case ZEP_DATA16_A:
    case ZEP_DATA16_C: return &kDepth16;
    case ZEP_RGB24:
    case ZEP_BGR24: return &kDepth24;
    case ZEP_RGBX32:
    case ZEP_BGRX32:
    case ZEP_XBGR32:
    case ZEP_CMYK32:
    case ZEP_XRGB32:
    case ZEP_DATA32:
    case ZEP_HSI: return &kDepth32;
    default: return nullptr;
  }
}

uint32_t fail(uint32_t code, const char *message) {
  return vrc::core::report(kCheck, code, message);
}

// The tests of the types with more than a depth test; 0 when the record passes.
uint32_t check_special_type(ZEP_IMAGE &image, uint64_t &bytes_per_line) {
  switch (image.type) {
    case ZEP_PALETTED:
      if (image.cmap_colours == 0) return fail(0x10050007, "Colourmap should not be 0 size");
      if (image.depth != 8) return fail(0x10050008, "Depth not 8");
      return 0;
    case ZEP_Y16:
      if (image.data_width < 1 || image.data_width > 16)
        return fail(0x1005000a, "Data width not between 1 and 16");
      if (image.depth != 16) return fail(0x1005000b, "Depth not 16");
      return 0;
    case ZEP_DATA32_8:
      bytes_per_line = vrc::core::general_bytes_per_line(image.width, 8, image.line_align);
      image.skip_bytes = ZEP_image_calc_skip_bytes(image.width, 8, image.line_align);
      if (image.depth != 32) return fail(0x1005000e, "Depth not 32");
      return 0;
    case ZEP_DATA64:
      bytes_per_line /= 4;
      if (image.depth != 64) return fail(0x1005000f, "Depth not 64");
      return 0;
    case ZEP_DCT32_A:
    case ZEP_DCT32_B:
      if (image.depth != 32) return fail(0x10050005, "Depth not 32");
      bytes_per_line = uint64_t{image.width} * 8;
      return 0;
    case ZEP_DATA16_B:
      if (image.depth != 16) return fail(0x10050006, "Depth not 16");
      bytes_per_line = uint64_t{image.width} * 4;
      return 0;
    default: return fail(0x10050010, "Unrecognised image");
  }
}

// The per-type tests, first failing test deciding; 0 when the record passes.
uint32_t check_type(ZEP_IMAGE &image, uint64_t &bytes_per_line) {
  if (image.type == ZEP_NONE || image.type >= ZEP_TYPE_LIMIT)
    return fail(0x10050010, "Unrecognised image");
  const DepthRule *rule = depth_rule(image.type);
  if (rule == nullptr) return check_special_type(image, bytes_per_line);
  if (image.depth != rule->depth) return fail(rule->code, rule->message);
  if (image.type == ZEP_Y8) image.data_width = 8;
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
