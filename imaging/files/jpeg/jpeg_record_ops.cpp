// Operations on the JPEG record of an image: its data buffer, copying its parameters, destroying
// it, and the parameters the file layer reads back.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "vrcw32/zep_jpeg_files.h"

#include <cstdlib>

namespace vrc::jpeg {
namespace {

// Replaces the record's data with `size` fresh bytes (their contents undefined).
uint32_t allocate_data(const char *function_name, ZEP_JPEG_RECORD &record, uint32_t size) {
  core::jpeg_record_free_data(&record);
  record.data = static_cast<uint8_t *>(std::malloc(size == 0 ? 1 : size));
  if (record.data == nullptr) return core::report(function_name, ZEP_ERR_MEMORY | (size & 0xFFFF));
  record.length = size;
  record.position = record.data;
  return 0;
}

uint32_t malloc_data(uint32_t handle) {
  constexpr char kName[] = "ZEP_JPEG_malloc_data";
  const JpegImage target = jpeg_image_of(handle, kName);
  if (target.record == nullptr) return target.status;
  return allocate_data(kName, *target.record, target.record->length);
}

uint32_t malloc_n_bytes(uint32_t handle, uint32_t size) {
  constexpr char kName[] = "ZEP_JPEG_malloc_N_bytes_data";
  const JpegImage target = jpeg_image_of(handle, kName);
  if (target.record == nullptr) return target.status;
  return allocate_data(kName, *target.record, size);
}

uint32_t copy_parameters(uint32_t source, uint32_t destination) {
  constexpr char kName[] = "ZEP_JPEG_copy_parameters";
  const ZEP_IMAGE *from = core::image_record(source);
  const ZEP_IMAGE *to = core::image_record(destination);
  if (from == nullptr) return core::report(kName, ZEP_ERR_HANDLE, "Input image does not exist");
  if (to == nullptr) return core::report(kName, ZEP_ERR_HANDLE, "Output image does not exist");
  if (from->jpeg == nullptr || to->jpeg == nullptr)
    return core::report(kName, ZEP_ERR_HANDLE, "Not a JPEG image");
  if (from->jpeg != to->jpeg) core::jpeg_record_copy_parameters(*from->jpeg, *to->jpeg);
  return 0;
}

uint32_t get_parameter(uint32_t handle, uint16_t id) {
  constexpr char kName[] = "ZEP_JPEG_get_parameter";
  const JpegImage target = jpeg_image_of(handle, kName);
  if (target.record == nullptr) return target.status;
  switch (id) {
    case ZEP_JPEG_SOS_COMPONENTS: return target.record->sos_components;
    case ZEP_JPEG_DATA_OFFSET: return target.record->data_offset;
    case ZEP_JPEG_QUANT_TABLES: return target.record->quant_tables;
    default: return core::report(kName, ZEP_ERR_BAD_PARAM, "Unknown parameter");
  }
}

}  // namespace
}  // namespace vrc::jpeg

using vrc::core::api_guard;
using namespace vrc::jpeg;

extern "C" {

uint32_t ZEP_JPEG_malloc_data(uint32_t jpeg_image) {
  return api_guard("ZEP_JPEG_malloc_data", [&] { return malloc_data(jpeg_image); });
}

uint32_t ZEP_JPEG_malloc_N_bytes_data(uint32_t jpeg_image, uint32_t size) {
  return api_guard("ZEP_JPEG_malloc_N_bytes_data",
                   [&] { return malloc_n_bytes(jpeg_image, size); });
}

uint32_t ZEP_JPEG_free_data(uint32_t jpeg_image) {
  const JpegImage target = jpeg_image_of(jpeg_image, "ZEP_JPEG_free_data");
  if (target.record == nullptr) return target.status;
  vrc::core::jpeg_record_free_data(target.record);
  return 0;
}

uint32_t ZEP_JPEG_copy_parameters(uint32_t source, uint32_t destination) {
  return api_guard("ZEP_JPEG_copy_parameters",
                   [&] { return copy_parameters(source, destination); });
}

uint32_t ZEP_JPEG_destroy_Tjpeg(uint32_t image) {
  ZEP_IMAGE *record = vrc::core::record_or_report(image, "ZEP_JPEG_destroy_Tjpeg");
  if (record == nullptr) return ZEP_ERR_HANDLE;
  vrc::core::jpeg_record_destroy(record->jpeg);
  record->jpeg = nullptr;
  record->flags &= ~ZEP_FLAG_JPEG;
  return 0;
}

uint32_t ZEP_JPEG_get_parameter(uint32_t image, uint16_t id) {
  return api_guard("ZEP_JPEG_get_parameter", [&] { return get_parameter(image, id); });
}

}  // extern "C"
