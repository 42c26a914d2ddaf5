// Saving conversion tables to files and loading them back: the table's bytes exactly as held in
// memory, no header, so the file length is the table's size.
#include "imaging/convert/conversion_luts.h"

#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"

#include <cstdio>
#include <memory>

namespace vrc::convert {
namespace {

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// The handle and id tests that saving and loading share; 0 or a reported code.
uint32_t check_request(const char *name, uint32_t handle, uint16_t id) {
  if (core::image_record(handle) == nullptr) return core::report(name, ZEP_ERR_HANDLE);
  if (!is_lut_id(id)) return core::report(name, ZEP_ERR_UNSUPPORTED, "Unrecognized LUT type");
  return ZEP_OK;
}

uint32_t close_file(const char *name, File file) {
  if (std::fclose(file.release()) != 0)
    return core::report(name, ZEP_ERR_CLOSE, "Failed to close file");
  return ZEP_OK;
}

}  // namespace
}  // namespace vrc::convert

using namespace vrc;
using namespace vrc::convert;

extern "C" {

uint32_t ZEP_image_conv_LUT_save(uint32_t handle, uint16_t id, const char *path) {
  constexpr const char *kName = "ZEP_image_conv_LUT_save";
  return core::api_guard(kName, [&]() -> uint32_t {
    if (uint32_t status = check_request(kName, handle, id); ZEP_IS_ERROR(status)) return status;
    const std::span<const uint8_t> table = lut(id);
    if (table.empty()) return core::report(kName, ZEP_ERR_STATE, "Conversion LUT does not exist");
    File file(path != nullptr ? std::fopen(path, "wb") : nullptr);
    if (!file) return core::report(kName, ZEP_ERR_OPEN, "Failed to create file");
    for (uint8_t byte : table) std::fputc(byte, file.get());
    return close_file(kName, std::move(file));
  });
}

uint32_t ZEP_image_conv_LUT_load(uint32_t handle, uint16_t id, const char *path) {
  constexpr const char *kName = "ZEP_image_conv_LUT_load";
  return core::api_guard(kName, [&]() -> uint32_t {
    if (uint32_t status = check_request(kName, handle, id); ZEP_IS_ERROR(status)) return status;
    std::span<uint8_t> table;
    try {
      table = lut_allocate(id, lut_bytes(id, *core::image_record(handle)));
    } catch (const std::bad_alloc &) {
      return core::report(kName, ZEP_ERR_MEMORY, lut_failure_text(id));
    }
    File file(path != nullptr ? std::fopen(path, "rb") : nullptr);
    if (!file) return core::report(kName, ZEP_ERR_OPEN, "Failed to open file");
    if (std::fread(table.data(), 1, table.size(), file.get()) != table.size())
      return core::report(kName, ZEP_ERR_STATE,
                          "Incorrect number of bytes read - correct LUT selected?");
    return close_file(kName, std::move(file));
  });
}

}  // extern "C"
