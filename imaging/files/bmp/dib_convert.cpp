// Converting any common image into a device-independent bitmap for display: a BGR24 image with
// lines aligned to 4 bytes, flagged ZEP_FLAG_DIB. The pixels go through the conversion family's
// members to BGR24 (paletted and 3-3-2 RGB8 images through their colour map first) and are then
// laid out at the bitmap's line length.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "vrcw32/zep_convert.h"
#include "vrcw32/zep_files.h"

#include <algorithm>
#include <utility>

namespace vrc::files::bmp {
namespace {

constexpr char kDibName[] = "ZEP_convert_to_DIB_w31";

// A working image that lives for one conversion.
class WorkImage {
 public:
  WorkImage() : m_handle(ZEP_image_create()) {}
  WorkImage(const WorkImage &) = delete;
  WorkImage &operator=(const WorkImage &) = delete;
  ~WorkImage() {
    if (!ZEP_IS_ERROR(m_handle)) ZEP_image_destroy(m_handle);
  }
  uint32_t handle() const { return m_handle; }
  bool failed() const { return ZEP_IS_ERROR(m_handle); }

 private:
  uint32_t m_handle;
};

bool is_accepted(uint16_t type) {
  return (type >= ZEP_Y8 && type <= ZEP_YUV422) || type == ZEP_Y16;
}

// Converts `source` to BGR24 in `bgr`, passing paletted and RGB8 images through their colours.
uint32_t convert_to_bgr24(uint32_t source, uint32_t flags, WorkImage &via_map, WorkImage &direct,
                          WorkImage &bgr) {
  uint32_t from = source;
  if (ZEP_image_get_parameter(source, ZEP_IMAGE_TYPE) == ZEP_RGB8) {
    // A 3-3-2 RGB8 pixel is the index of the 3-3-2 colour cube.
    if (const uint32_t status = ZEP_image_copy(source, via_map.handle()); ZEP_IS_ERROR(status))
      return status;
    ZEP_image_set_parameter(via_map.handle(), ZEP_IMAGE_TYPE, ZEP_PALETTED);
    ZEP_cmap_set_type(via_map.handle(), ZEP_CMAP_CUBE_332, 0);
    from = via_map.handle();
  }
  if (ZEP_image_get_parameter(from, ZEP_IMAGE_TYPE) == ZEP_PALETTED) {
    const uint32_t status =
        ZEP_image_convert(from, direct.handle(), ZEP_PALETTED_TO_DIRECT, 0, ZEP_MODE_NEXT_STRIP);
    if (ZEP_IS_ERROR(status)) return status;
    from = direct.handle();
  }
  return ZEP_image_convert(from, bgr.handle(), ZEP_BGR24, flags & ZEP_FLAG_USE_LUT,
                           ZEP_MODE_NEXT_STRIP);
}

uint32_t ZEP_convert_to_DIB_w31_1_strip(uint32_t source, uint32_t destination, uint32_t flags) {
  WorkImage via_map;
  WorkImage direct;
  WorkImage bgr;
  for (const WorkImage *work : {&via_map, &direct, &bgr}) {
    if (work->failed()) return work->handle();
  }
  if (const uint32_t status = convert_to_bgr24(source, flags, via_map, direct, bgr);
      ZEP_IS_ERROR(status)) {
    return status;
  }
  if (const uint32_t status = allocate_strip(destination); ZEP_IS_ERROR(status)) return status;
  const ZEP_IMAGE &converted = *core::image_record(bgr.handle());
  const ZEP_IMAGE &bitmap = *core::image_record(destination);
  const uint64_t line_bytes = 3 * uint64_t{bitmap.width};
  const uint32_t lines = std::min(converted.lines_this_strip, bitmap.lines_this_strip);
  for (uint32_t line = 0; line < lines; ++line) {
    const std::span<uint8_t> target =
        strip_range(bitmap, uint64_t{line} * bitmap.bytes_per_line, line_bytes);
    copy_bounded(strip_range(converted, uint64_t{line} * converted.bytes_per_line, line_bytes),
                 target);
  }
  return ZEP_OK;
}

uint32_t convert_to_dib(uint32_t source, uint32_t destination, uint32_t flags, uint16_t action) {
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = check_image_to_write(kDibName, source, image); status != ZEP_OK)
    return status;
  if (image->lines_this_strip != 0 && image->lines_this_strip != image->height) {
    return core::report(kDibName, ZEP_ERR_UNSUPPORTED, "Can only process full image - not strips");
  }
  if (image->type == ZEP_BGR24 && (image->flags & ZEP_FLAG_DIB) != 0)
    return ZEP_image_copy(source, destination);
  if (!is_accepted(image->type)) {
    return core::report(kDibName, ZEP_ERR_UNSUPPORTED | image->type, message::kUnsupportedFormat);
  }
  // The bitmap's buffer stays the bitmap's: taking a locked source's flag would have the next,
  // larger conversion write into the smaller buffer of this one.
  const ZEP_IMAGE *bitmap = core::image_record(destination);
  const bool caller_buffer = bitmap != nullptr && (bitmap->flags & ZEP_FLAG_LOCKED) != 0;
  if (const uint32_t status = ZEP_image_copy_parameters(source, destination); ZEP_IS_ERROR(status))
    return status;
  ZEP_image_set_flags(destination, ZEP_FLAG_LOCKED, caller_buffer ? 1 : 0);
  ZEP_image_set_parameter(destination, ZEP_LINE_ALIGN, 4);
  ZEP_image_set_parameter(destination, ZEP_IMAGE_TYPE, ZEP_BGR24);
  ZEP_image_set_flags(destination, flags | ZEP_FLAG_DIB, 1);
  if (const uint32_t status = ZEP_image_check(destination); ZEP_IS_ERROR(status)) {
    return core::report(kDibName, status, message::kCorruptImage);
  }
  if (action != ZEP_ACTION_DATA || image->lines_this_strip == 0) return ZEP_OK;
  ZEP_image_set_parameter(destination, ZEP_LINES_THIS_STRIP, image->lines_this_strip);
  return ZEP_convert_to_DIB_w31_1_strip(source, destination, flags);
}

}  // namespace
}  // namespace vrc::files::bmp

extern "C" uint32_t ZEP_convert_to_DIB_w31(uint32_t src, uint32_t dst, uint32_t flags,
                                           uint16_t action) {
  return vrc::core::api_guard(vrc::files::bmp::kDibName, [&] {
    return vrc::files::bmp::convert_to_dib(src, dst, flags, action);
  });
}
