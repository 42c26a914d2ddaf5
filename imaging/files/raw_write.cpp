// Writing raw pixel data with no header. The file stays open in one library-wide slot while an
// image is written strip by strip (each strip a call with the data action, then the close
// action); a whole-image strip is written and closed at once. 16-bit formats are written as
// little-endian samples without line padding; all others line by line as they stand in memory.
#include "imaging/core/library_hooks.h"
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/file_registry.h"
#include "vrcw32/zep_files.h"

#include <string>
#include <vector>

namespace vrc::files {
namespace {

constexpr char kRawName[] = "ZEP_write_raw_data_file";

// The raw file in progress and the name it was created under.
struct RawSlot {
  File file;
  std::string path;
};

RawSlot &raw_slot() {
  static RawSlot slot;
  return slot;
}

void close_raw_slot() {
  raw_slot().file.close();
  raw_slot().path.clear();
}

const bool registered = core::register_teardown(&close_raw_slot);

void write_strip(const ZEP_IMAGE &image, std::FILE *file) {
  const bool samples_16 =
      image.type == ZEP_RGB15 || image.type == ZEP_RGB16 || image.type == ZEP_Y16;
  const uint64_t written = samples_16 ? 2 * uint64_t{image.width} : image.bytes_per_line;
  std::vector<uint8_t> line(static_cast<std::size_t>(written));
  for (uint32_t y = 0; y < image.lines_this_strip; ++y) {
    copy_bounded(strip_line(image, y), line);
    write_bytes(file, line);
  }
}

uint32_t write_raw(uint32_t handle, uint16_t action) {
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = check_image_to_write(kRawName, handle, image); status != ZEP_OK)
    return status;
  if (image->lines_this_strip == 0) return ZEP_OK;
  if (!stores_type(ZEP_FILE_RAW, image->type))
    return core::report(kRawName, ZEP_ERR_UNSUPPORTED, message::kUnsupportedFormat);

  RawSlot &slot = raw_slot();
  if (!slot.file || slot.path != image->outfilename) {
    slot.file = File::open(image->outfilename, "wb");
    if (!slot.file) return core::report(kRawName, ZEP_ERR_OPEN, message::kCreateFailed);
    slot.path = image->outfilename;
  }
  if (action == ZEP_ACTION_DATA) {
    if (image->lines_this_strip < image->height) {
      write_strip(*image, slot.file.get());
      return ZEP_OK;
    }
    image->lines_this_strip = image->height;
    write_strip(*image, slot.file.get());
  }
  if (action == ZEP_ACTION_DATA || action == ZEP_ACTION_CLOSE) {
    slot.path.clear();
    return close_file(kRawName, slot.file);
  }
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::files

extern "C" uint32_t ZEP_write_raw_data_file(uint32_t handle, uint16_t action) {
  return vrc::core::api_guard(vrc::files::kRawName,
                              [&] { return vrc::files::write_raw(handle, action); });
}
