// Checks, endings and bounded strip access shared by the file formats.
#include "imaging/files/file_common.h"

#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_files.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vrc::files {

uint32_t check_image(const char *function_name, uint32_t handle) {
  const uint32_t status = ZEP_image_check(handle);
  return ZEP_IS_ERROR(status) ? core::report(function_name, status, message::kCorruptImage)
                              : ZEP_OK;
}

uint32_t check_image_to_write(const char *function_name, uint32_t handle, ZEP_IMAGE *&image) {
  if (const uint32_t status = check_image(function_name, handle); status != ZEP_OK) return status;
  image = core::image_record(handle);
  return ZEP_OK;
}

uint32_t find_image_to_read(const char *function_name, uint32_t handle, ZEP_IMAGE *&image) {
  image = core::image_record(handle);
  return image == nullptr ? core::report(function_name, ZEP_ERR_HANDLE) : ZEP_OK;
}

uint32_t check_read_header(const char *function_name, uint32_t handle) {
  const uint32_t status = ZEP_image_check(handle);
  return ZEP_IS_ERROR(status) ? core::report(function_name, status, message::kCheckFailed) : ZEP_OK;
}

uint32_t close_file(const char *function_name, File &file) {
  return file.close() ? ZEP_OK : core::report(function_name, ZEP_ERR_CLOSE, message::kCloseFailed);
}

uint32_t finish_without_data(const char *function_name, File &file, OpenSlot slot,
                             uint16_t action) {
  if (action == ZEP_ACTION_CLOSE) return close_file(function_name, file);
  keep_open(slot, std::move(file));
  return ZEP_OK;
}

uint32_t check_fits_in_file(const char *function_name, uint64_t needed, uint64_t available) {
  if (needed <= available || needed <= kMaxUnbackedBytes) return ZEP_OK;
  return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kDataPastEnd);
}

uint32_t check_strip_fits_in_file(const char *function_name, const ZEP_IMAGE &image,
                                  uint64_t read_bytes, uint64_t available) {
  const uint64_t strip_bytes = uint64_t{image.lines_this_strip} * image.bytes_per_line;
  const uint64_t backing =
      available > UINT64_MAX / kMaxStripExpansion ? UINT64_MAX : available * kMaxStripExpansion;
  if (strip_bytes > backing && strip_bytes > kMaxUnbackedBytes)
    return core::report(function_name, ZEP_ERR_UNEXPECTED, message::kDataPastEnd);
  return check_fits_in_file(function_name, read_bytes, available);
}

uint32_t allocate_strip(uint32_t handle) {
  uint32_t status = ZEP_image_free_data(handle);
  if (!ZEP_IS_ERROR(status)) status = ZEP_image_malloc_a_strip(handle);
  if (ZEP_IS_ERROR(status)) return status;
  // Lines a short file does not reach read as zeros rather than as stale memory.
  const ZEP_IMAGE *image = core::image_record(handle);
  if (image->data != nullptr) std::memset(image->data, 0, image->strip_bytes);
  return ZEP_OK;
}

uint32_t allocate_backed_strip(const char *function_name, uint32_t handle, uint64_t needed,
                               uint64_t available) {
  if (const uint32_t status =
          check_strip_fits_in_file(function_name, *core::image_record(handle), needed, available);
      status != ZEP_OK)
    return status;
  return allocate_strip(handle);
}

std::span<uint8_t> strip_range(const ZEP_IMAGE &image, uint64_t offset, uint64_t count) {
  if (image.data == nullptr || offset >= image.strip_bytes) return {};
  const uint64_t available = image.strip_bytes - offset;
  return {image.data + offset, static_cast<std::size_t>(std::min(count, available))};
}

void repack_pixels(std::span<const uint8_t> source, uint32_t source_step, ByteOrder order,
                   std::span<uint8_t> target, uint64_t pixels) {
  const uint64_t whole = std::min<uint64_t>(pixels, target.size() / 3);
  for (uint64_t x = 0; x < whole; ++x) {
    for (std::size_t k = 0; k < 3; ++k) {
      const uint64_t from = x * source_step + order[k];
      target[3 * x + k] = from < source.size() ? source[from] : 0;
    }
  }
}

void write_bytes(std::FILE *file, std::span<const uint8_t> bytes) {
  if (!bytes.empty()) std::fwrite(bytes.data(), 1, bytes.size(), file);
}

void copy_bounded(std::span<const uint8_t> source, std::span<uint8_t> target) {
  const std::size_t copied = std::min(source.size(), target.size());
  std::copy_n(source.begin(), copied, target.begin());
  std::fill(target.begin() + static_cast<std::ptrdiff_t>(copied), target.end(), uint8_t{0});
}

}  // namespace vrc::files
