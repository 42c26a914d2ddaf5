// Copying and moving image parameters and pixels between records, and colour maps.
#include "imaging/core/handle_table.h"
#include "imaging/core/jpeg_record.h"
#include "imaging/core/library_hooks.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_core.h"

#include <cstring>

namespace {

constexpr std::size_t kCmapBytes = 256 * 4;

// Looks both images up, reporting the missing one under `function_name`.
bool lookup_pair(uint32_t src, uint32_t dst, const char *function_name, ZEP_IMAGE *&from,
                 ZEP_IMAGE *&to) {
  from = vrc::core::image_record(src);
  to = vrc::core::image_record(dst);
  if (from == nullptr) {
    vrc::core::report(function_name, ZEP_ERR_HANDLE, "Input image does not exist");
    return false;
  }
  if (to == nullptr) {
    vrc::core::report(function_name, ZEP_ERR_HANDLE, "Output image does not exist");
    return false;
  }
  return true;
}

uint32_t copy_parameters(uint32_t src, uint32_t dst, const char *function_name, bool with_jpeg) {
  ZEP_IMAGE *from = nullptr;
  ZEP_IMAGE *to = nullptr;
  if (!lookup_pair(src, dst, function_name, from, to)) return ZEP_ERR_HANDLE;
  if (from == to) return 0;
  to->type = from->type;
  to->data_width = from->data_width;
  std::memcpy(to->name, from->name, sizeof to->name);
  std::memcpy(to->infilename, from->infilename, sizeof to->infilename);
  std::memcpy(to->outfilename, from->outfilename, sizeof to->outfilename);
  to->width = from->width;
  to->height = from->height;
  to->depth = from->depth;
  to->line_align = from->line_align;
  to->derived_line_align = from->derived_line_align;
  to->skip_bytes = from->skip_bytes;
  to->num_frames = from->num_frames;
  to->current_frame = from->current_frame;
  to->flags = from->flags;
  to->cmap_colours = from->cmap_colours;
  ZEP_cmap_copy(src, dst);
  to->field_mode = from->field_mode;
  to->lines_this_strip = from->lines_this_strip;
  to->bytes_per_line = from->bytes_per_line;
  if (with_jpeg && from->jpeg != nullptr && to->jpeg != nullptr)
    vrc::core::jpeg_record_copy_parameters(*from->jpeg, *to->jpeg);
  return 0;
}

// Gives dst a strip of its own and copies src's strip into it. `dst_owned_data` says that dst's
// buffer was the library's before the locked flag came over with src's parameters: that buffer
// was sized for dst's old geometry, so it is released rather than kept as a caller's buffer.
uint32_t copy_pixels(uint32_t dst, const ZEP_IMAGE &from, bool dst_owned_data) {
  constexpr const char *kCopy = "ZEP_image_copy";
  if (from.data == nullptr)
    return vrc::core::report(kCopy, ZEP_ERR_BAD_PARAM, "Input image has no data");
  ZEP_IMAGE *to = vrc::core::image_record(dst);
  const uint32_t flags = to->flags;
  if (dst_owned_data) to->flags &= ~ZEP_FLAG_LOCKED;
  ZEP_image_free_data(dst);
  to->flags = flags;
  uint32_t status = ZEP_image_malloc_a_strip(dst);
  if (status != 0) return status;
  std::memcpy(to->data, from.data, std::size_t{from.bytes_per_line} * from.lines_this_strip);
  return 0;
}

}  // namespace

extern "C" {

uint32_t ZEP_cmap_copy(uint32_t src, uint32_t dst) {
  ZEP_IMAGE *from = nullptr;
  ZEP_IMAGE *to = nullptr;
  if (!lookup_pair(src, dst, "ZEP_cmap_copy", from, to)) return ZEP_ERR_HANDLE;
  if (from->cmap != nullptr && to->cmap != nullptr && from->cmap != to->cmap)
    std::memcpy(to->cmap, from->cmap, kCmapBytes);
  return 0;
}

uint32_t ZEP_image_copy_parameters(uint32_t src, uint32_t dst) {
  return copy_parameters(src, dst, "ZEP_image_copy_parameters", true);
}

uint32_t ZEP_image_copy_parameters_raw(uint32_t src, uint32_t dst) {
  return copy_parameters(src, dst, "ZEP_image_copy_parameters_raw", false);
}

uint32_t ZEP_image_copy(uint32_t src, uint32_t dst) {
  constexpr const char *kCopy = "ZEP_image_copy";
  uint32_t status = ZEP_image_check(src);
  if (status != 0) return vrc::core::report(kCopy, status, "Corrupt image");
  const ZEP_IMAGE &from = *vrc::core::image_record(src);
  const ZEP_IMAGE *to = vrc::core::image_record(dst);
  if (to == &from) return 0;  // an image copied onto itself is already its copy
  const bool dst_owned_data = to != nullptr && (to->flags & ZEP_FLAG_LOCKED) == 0;
  status = ZEP_image_copy_parameters(src, dst);
  if (status != 0 || from.lines_this_strip == 0) return status;
  status = ZEP_image_check(dst);
  if (status != 0) return vrc::core::report(kCopy, status, "Corrupt image");
  if ((from.flags & ZEP_FLAG_JPEG) != 0 && vrc::core::image_record(dst)->jpeg != nullptr) {
    vrc::core::JpegDecompressor decompress = vrc::core::jpeg_decompressor();
    if (decompress == nullptr)
      return vrc::core::report(kCopy, ZEP_ERR_UNSUPPORTED, "JPEG codec not available");
    return decompress(src, dst);
  }
  return copy_pixels(dst, from, dst_owned_data);
}

uint32_t ZEP_image_move(uint32_t src, uint32_t dst) {
  constexpr const char *kMove = "ZEP_image_move";
  ZEP_IMAGE *from = nullptr;
  ZEP_IMAGE *to = nullptr;
  if (!lookup_pair(src, dst, kMove, from, to)) return ZEP_ERR_HANDLE;
  if ((from->flags & ZEP_FLAG_LOCKED) != 0)
    return vrc::core::report(kMove, ZEP_ERR_UNSUPPORTED,
                             "locked memory can't be moved (in source image)");
  if ((to->flags & ZEP_FLAG_LOCKED) != 0)
    return vrc::core::report(kMove, ZEP_ERR_UNSUPPORTED,
                             "Can't free locked memory (in destination image)");
  if (from == to) return 0;
  ZEP_image_free_data(dst);
  uint32_t status = ZEP_image_copy_parameters(src, dst);
  if (status != 0) return status;
  if ((from->flags & ZEP_FLAG_JPEG) != 0 && to->jpeg != nullptr) {
    if (from->jpeg != nullptr) {
      to->jpeg->data = from->jpeg->data;
      to->jpeg->position = from->jpeg->position;
      to->jpeg->length = from->jpeg->length;  // the length belongs with the buffer it measures
      from->jpeg->data = nullptr;
      from->jpeg->position = nullptr;
      from->jpeg->length = 0;
    }
    return 0;
  }
  to->data = from->data;
  to->data_aux = from->data_aux;
  from->data = nullptr;
  from->data_aux = 0;
  return 0;
}

}  // extern "C"
