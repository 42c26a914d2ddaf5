// The strip protocol of the conversion members, and the row walk their workers share.
//
// A conversion runs in strips: the first call of a conversion copies the source's parameters to
// the destination and gives it the member's type; each mode-3 call converts the source's current
// strip; the strip that reaches the image's height finishes the conversion, after the source's
// line count has been cut to the lines that remain.
#include "imaging/convert/strip_driver.h"

#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace vrc::convert {

bool type_in(uint16_t type, std::span<const uint16_t> types) {
  return std::find(types.begin(), types.end(), type) != types.end();
}

uint32_t paletted_needs_map(const char *member_name, const ZEP_IMAGE &src) {
  if (src.type == ZEP_PALETTED && src.cmap == nullptr)
    return core::report(member_name, ZEP_ERR_STATE, "Colourmap is NULL");
  return ZEP_OK;
}

std::span<const uint8_t> colour_map_of(const ZEP_IMAGE &image) {
  if (image.cmap == nullptr) return {};
  return {image.cmap, ZEP_CMAP_ENTRIES * ZEP_CMAP_ENTRY_BYTES};
}

namespace {

// Gives `dst` the parameters of `src` and the member's output type.
uint32_t header_only(uint32_t src, uint32_t dst, uint16_t type) {
  if (uint32_t status = ZEP_image_copy_parameters(src, dst); ZEP_IS_ERROR(status)) return status;
  return ZEP_image_set_parameter(dst, ZEP_IMAGE_TYPE, type);
}

uint32_t start_conversion(const Member &member, StripState &state, uint32_t src, uint32_t dst,
                          uint16_t type) {
  state.lines_done = 0;
  if (uint32_t status = header_only(src, dst, type); ZEP_IS_ERROR(status)) return status;
  if (uint32_t status = ZEP_image_check(dst); ZEP_IS_ERROR(status))
    return core::report(member.name, status, "Corrupt image");
  state.busy = true;
  return ZEP_OK;
}

uint32_t convert_next_strip(const Member &member, StripState &state, uint32_t src_handle,
                            uint32_t dst_handle) {
  ZEP_IMAGE *dst_record = core::image_record(dst_handle);
  if (dst_record == nullptr)
    return core::report(member.name, ZEP_ERR_HANDLE, "Output image does not exist");
  ZEP_IMAGE &src = *core::image_record(src_handle);
  ZEP_IMAGE &dst = *dst_record;
  dst.lines_this_strip = src.lines_this_strip;
  const bool last = state.lines_done + src.lines_this_strip >= src.height;
  if (last) {
    src.lines_this_strip = src.height > state.lines_done ? src.height - state.lines_done : 0;
    dst.lines_this_strip = src.lines_this_strip;
  }
  const StripJob job{src_handle, dst_handle, src, dst, state.lines_done, member.worker_name};
  if (uint32_t status = member.worker(job); ZEP_IS_ERROR(status)) return status;
  if (last) {
    state.busy = false;
  } else {
    state.lines_done += src.lines_this_strip;
  }
  return ZEP_OK;
}

}  // namespace

uint32_t run_member(const Member &member, StripState &state, uint32_t src, uint32_t dst,
                    uint16_t mode) {
  return core::api_guard(member.name, [&]() -> uint32_t {
    if (uint32_t status = ZEP_image_check(src); ZEP_IS_ERROR(status))
      return core::report(member.name, status, member.corrupt_text);
    const ZEP_IMAGE &source = *core::image_record(src);
    if (member.early_check) {
      if (uint32_t status = member.early_check(member.name, source); ZEP_IS_ERROR(status))
        return status;
    }
    const uint16_t type = member.output_type_of ? member.output_type_of(src) : member.output_type;
    if (source.lines_this_strip == 0) return header_only(src, dst, type);
    if (source.type == type) return ZEP_image_copy(src, dst);
    if (!type_in(source.type, member.accepted))
      return core::report(member.name, ZEP_ERR_UNSUPPORTED, "Unsupported image format");
    if (member.late_check) {
      if (uint32_t status = member.late_check(member.name, source); ZEP_IS_ERROR(status))
        return status;
    }
    if (!state.busy) {
      if (uint32_t status = start_conversion(member, state, src, dst, type); ZEP_IS_ERROR(status))
        return status;
    }
    if (mode == ZEP_MODE_NEXT_STRIP) return convert_next_strip(member, state, src, dst);
    if (mode == ZEP_MODE_RESET) state.busy = false;
    return ZEP_OK;
  });
}

uint32_t prepare_strip(const StripJob &job) {
  if (job.src.data == nullptr)
    return core::report(job.worker_name, ZEP_ERR_CORRUPT, "Image has no data");
  if (uint32_t status = ZEP_image_free_data(job.dst_handle); ZEP_IS_ERROR(status)) return status;
  return ZEP_image_malloc_a_strip(job.dst_handle);
}

RowLayout padded_layout(const StripJob &job, uint32_t src_bytes_per_pixel,
                        uint32_t dst_bytes_per_pixel) {
  return RowLayout{job.src.bytes_per_line, job.src.width * src_bytes_per_pixel,
                   job.dst.bytes_per_line, job.dst.width * dst_bytes_per_pixel};
}

void for_each_row(const StripJob &job, const RowLayout &layout,
                  const std::function<void(const uint8_t *, uint8_t *, uint32_t)> &row) {
  const uint32_t lines = job.src.lines_this_strip;
  const uint64_t src_bytes = uint64_t{job.src.bytes_per_line} * lines;
  const uint64_t dst_bytes = uint64_t{job.dst.bytes_per_line} * job.dst.lines_this_strip;
  std::vector<uint8_t> src_spill;
  std::vector<uint8_t> dst_spill;
  // Rows and their padding cover lines x stride bytes; a strip longer than that (strides shorter
  // than bytes_per_line) gets zeros in the rest rather than whatever the allocation held.
  const uint64_t rows_end = uint64_t{layout.dst_stride} * lines;
  if (rows_end < dst_bytes) std::memset(job.dst.data + rows_end, 0, dst_bytes - rows_end);
  for (uint32_t line = 0; line < lines; ++line) {
    const uint64_t src_at = uint64_t{layout.src_stride} * line;
    const uint64_t dst_at = uint64_t{layout.dst_stride} * line;
    if (dst_at >= dst_bytes) return;
    const uint8_t *src_row = job.src.data + std::min(src_at, src_bytes);
    if (src_at + layout.src_row_bytes > src_bytes) {
      src_spill.assign(layout.src_row_bytes, 0);
      if (src_at < src_bytes) std::memcpy(src_spill.data(), src_row, src_bytes - src_at);
      src_row = src_spill.data();
    }
    uint8_t *dst_row = job.dst.data + dst_at;
    if (dst_at + layout.dst_row_bytes <= dst_bytes) {
      row(src_row, dst_row, line);
      // Line padding is written as zeros, so that a strip holds no stale bytes.
      const uint64_t padding_end = std::min<uint64_t>(dst_at + layout.dst_stride, dst_bytes);
      if (padding_end > dst_at + layout.dst_row_bytes)
        std::memset(dst_row + layout.dst_row_bytes, 0, padding_end - dst_at - layout.dst_row_bytes);
    } else {
      dst_spill.assign(layout.dst_row_bytes, 0);
      row(src_row, dst_spill.data(), line);
      std::memcpy(dst_row, dst_spill.data(), dst_bytes - dst_at);
    }
  }
}

}  // namespace vrc::convert
