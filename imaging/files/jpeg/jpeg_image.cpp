// JPEG images: creation with a state block, the lookup of an image's state block, and the
// set-up of the JPEG image's type and SOF/SOS fields for a source.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_state.h"

namespace vrc::jpeg {

JpegImage jpeg_image_of(uint32_t handle, const char *function_name) {
  JpegImage found;
  found.image = core::record_or_report(handle, function_name);
  if (found.image == nullptr) {
    found.status = ZEP_ERR_HANDLE;
  } else if (found.image->jpeg == nullptr) {
    found.status = core::report(function_name, ZEP_ERR_HANDLE, "Not a JPEG image");
  } else {
    found.record = found.image->jpeg;
  }
  return found;
}

namespace {

// SOF0 and SOS fields of `sampling`: component 1 takes quantisation table 0, the others table 1.
void set_frame_fields(ZEP_JPEG_RECORD &record, const Sampling &sampling) {
  record.sof_precision = 8;
  record.sof_components = sampling.components;
  record.sof_length = static_cast<uint16_t>(8 + 3 * sampling.components);
  for (int c = 0; c < 3; ++c) {
    const bool luma = c == 0;
    const bool present = c < sampling.components;
    record.sampling_h[c] = present ? (luma ? sampling.luma_h : 1) : 0;
    record.sampling_v[c] = present ? (luma ? sampling.luma_v : 1) : 0;
    record.quant_table[c] = luma ? 0 : 1;
  }
  record.sos_components = sampling.components;
  record.sos_length = static_cast<uint16_t>(6 + 2 * sampling.components);
  record.spectral_start = 0;
  record.spectral_end = 63;
  record.approximation = 0;
}

}  // namespace
}  // namespace vrc::jpeg

extern "C" uint32_t ZEP_JPEG_image_create(void) {
  constexpr const char *kName = "ZEP_JPEG_image_create";
  return vrc::core::api_guard(kName, [&]() -> uint32_t {
    const uint32_t handle = ZEP_image_create();
    if (ZEP_IS_ERROR(handle)) return handle;
    ZEP_JPEG_RECORD *record = vrc::core::jpeg_record_create();
    if (record == nullptr) {
      ZEP_image_destroy(handle);
      return vrc::core::report(kName, ZEP_ERR_MEMORY);
    }
    vrc::core::image_record(handle)->jpeg = record;
    return handle;
  });
}

extern "C" uint32_t ZEP_JPEG_set_image(uint32_t source, uint32_t jpeg_image) {
  constexpr const char *kName = "ZEP_JPEG_set_image";
  return vrc::core::api_guard(kName, [&]() -> uint32_t {
    const vrc::jpeg::JpegImage target = vrc::jpeg::jpeg_image_of(jpeg_image, kName);
    if (target.record == nullptr) return target.status;
    if (const uint32_t status = ZEP_image_check(source); ZEP_IS_ERROR(status))
      return vrc::core::report(kName, status, "Corrupt image - probably an internal error");
    const bool grey = vrc::core::image_record(source)->type == ZEP_Y8;
    const vrc::jpeg::Sampling &sampling =
        grey ? vrc::jpeg::kGreySampling : vrc::jpeg::kYuv422Sampling;
    ZEP_image_set_parameter(jpeg_image, ZEP_IMAGE_TYPE, sampling.type);
    vrc::jpeg::set_frame_fields(*target.record, sampling);
    return 0u;
  });
}
