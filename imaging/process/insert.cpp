// Insertion of a whole image into another at a 1-based position. Both images hold their whole
// height in one strip; no strip protocol is involved.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "vrcw32/zep_process.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace vrc::process {
namespace {

constexpr char kInsertName[] = "ZEP_IP_image_insert";

uint32_t check_position(const ZEP_IMAGE &target, const ZEP_IMAGE &insert, uint32_t x, uint32_t y) {
  const auto refuse = [](const char *message) {
    return core::report(kInsertName, ZEP_ERR_UNSUPPORTED, message);
  };
  if (x == 0) return refuse("Trying to insert image too far left");
  if (int64_t{x} > int64_t{target.width} - insert.width + 1)
    return refuse("Trying to insert image too far right");
  if (y == 0) return refuse("Trying to insert image too high");
  if (int64_t{y} > int64_t{target.height} - insert.height + 1)
    return refuse("Trying to insert image too low");
  return 0;
}

std::span<uint8_t> strip_of(const ZEP_IMAGE &image) {
  if (image.data == nullptr) return {};
  return {image.data, std::size_t{image.bytes_per_line} * image.lines_this_strip};
}

// Copies the insert image's lines into the target. Pixel bytes are the target's padded line length
// divided by its width, not the depth, so a padded narrow line counts its padding as pixel bytes;
// copies stop at the end of either strip.
void paste_lines(const ZEP_IMAGE &target, const ZEP_IMAGE &insert, uint32_t x, uint32_t y) {
  if (target.width == 0) return;
  const uint64_t pixel_bytes = target.bytes_per_line / target.width;
  const uint64_t line_bytes = uint64_t{insert.width} * pixel_bytes;
  const std::span<const uint8_t> source = strip_of(insert);
  const std::span<uint8_t> destination = strip_of(target);
  uint64_t from = 0;
  uint64_t to = uint64_t{y - 1} * target.bytes_per_line + uint64_t{x - 1} * pixel_bytes;
  for (uint32_t line = 0; line < insert.height; ++line) {
    if (from >= source.size() || to >= destination.size()) return;
    const auto count = static_cast<std::size_t>(
        std::min({line_bytes, source.size() - from, destination.size() - to}));
    std::memcpy(destination.data() + to, source.data() + from, count);
    from += line_bytes + insert.skip_bytes;
    to += target.bytes_per_line;
  }
}

uint32_t insert_image(uint32_t in, uint32_t insert, uint32_t x, uint32_t y) {
  uint32_t status = ZEP_image_check(in);
  if (status != 0) return core::report(kInsertName, status, "hInImage is corrupt");
  status = ZEP_image_check(insert);
  if (status != 0) return core::report(kInsertName, status, "hInsertImage is corrupt");
  const ZEP_IMAGE &target = *core::image_record(in);
  const ZEP_IMAGE &inserted = *core::image_record(insert);
  if (target.type != inserted.type)
    return core::report(kInsertName, ZEP_ERR_UNSUPPORTED, "Pixel Formats are different");
  status = check_position(target, inserted, x, y);
  if (status != 0) return status;
  if (target.data == nullptr || inserted.data == nullptr)
    return core::report(kInsertName, ZEP_ERR_BAD_PARAM, "Image has no data");
  paste_lines(target, inserted, x, y);
  return 0;
}

}  // namespace
}  // namespace vrc::process

extern "C" uint32_t ZEP_IP_image_insert(uint32_t in, uint32_t insert, uint32_t x, uint32_t y) {
  return vrc::core::api_guard(vrc::process::kInsertName,
                              [&] { return vrc::process::insert_image(in, insert, x, y); });
}
