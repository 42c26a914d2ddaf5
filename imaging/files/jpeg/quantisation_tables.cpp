// The quality scale and the quantisation tables it gives: T.81 Tables K.1 and K.2 scaled by
// 16 / quality scale, in zigzag order, each entry with a rounded 16.16 reciprocal so that the
// encoder quantises by a multiplication.
#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "imaging/files/jpeg/standard_tables.h"

#include <cstring>

namespace vrc::jpeg {
namespace {

constexpr uint16_t kMinQuality = 1;
constexpr uint16_t kMaxQuality = 400;
constexpr uint16_t kMinFactor = 2;
constexpr uint16_t kMaxFactor = 800;

// q = integer part of (base x scale + 0.5) in single precision, clamped to 0..255. A scale that
// is not finite (a quality scale of 0 set behind the library's back) gives 255.
uint8_t scaled_entry(uint8_t base, float scale) {
  const float value = static_cast<float>(base) * scale + 0.5f;
  if (!(value < 256.0f)) return 255;
  return static_cast<uint8_t>(value);
}

// ((q >> 1) + 65536) / q. An entry of 0 (quality scales above about 330 round the smallest base
// entries to 0) quantises every coefficient to 0, as a decoder multiplying by 0 would see it.
uint32_t reciprocal_of(uint8_t q) { return q == 0 ? 0 : ((q >> 1) + 65536u) / q; }

void make_table(ZEP_JPEG_RECORD &record, int table, const std::array<uint8_t, 64> &base,
                float scale) {
  for (int k = 0; k < 64; ++k) {
    const uint8_t q = scaled_entry(base[kZigzagToNatural[k]], scale);
    record.quant[table][k] = q;
    record.reciprocal[table][k] = reciprocal_of(q);
  }
}

}  // namespace

void make_quantisation_tables(ZEP_JPEG_RECORD &record) {
  const float scale = 16.0f / static_cast<float>(record.quality_scale);
  make_table(record, 0, kLuminanceQuantisation, scale);
  make_table(record, 1, kChrominanceQuantisation, scale);
  record.quant_tables = 2;
  record.dqt_length = kDqtLength;
}

}  // namespace vrc::jpeg

extern "C" uint32_t ZEP_JPEG_set_Quality_factor(uint32_t jpeg_image, uint16_t q) {
  constexpr const char *kName = "ZEP_JPEG_set_Quality_factor";
  return vrc::jpeg::with_state(jpeg_image, kName, [&](ZEP_JPEG_RECORD &record) -> uint32_t {
    if (q < vrc::jpeg::kMinQuality || q > vrc::jpeg::kMaxQuality)
      return vrc::core::report(kName, ZEP_ERR_BAD_PARAM, "Q factor of range");
    record.quality_scale = q;
    return 0;
  });
}

extern "C" uint32_t ZEP_JPEG_set_Quantization_factor(uint32_t jpeg_image, uint16_t f) {
  constexpr const char *kName = "ZEP_JPEG_set_Quantization_factor";
  return vrc::jpeg::with_state(jpeg_image, kName, [&](ZEP_JPEG_RECORD &record) -> uint32_t {
    if (f < vrc::jpeg::kMinFactor || f > vrc::jpeg::kMaxFactor)
      return vrc::core::report(kName, ZEP_ERR_BAD_PARAM, "Q factor of range");
    record.quality_scale = static_cast<uint32_t>(50.0 / f * 16.0);
    return 0;
  });
}

extern "C" uint32_t ZEP_JPEG_make_Q_tables(uint32_t jpeg_image) {
  return vrc::jpeg::with_state(jpeg_image, "ZEP_JPEG_make_Q_tables", [](ZEP_JPEG_RECORD &record) {
    vrc::jpeg::make_quantisation_tables(record);
    return 0u;
  });
}

extern "C" uint32_t ZEP_JPEG_ConvertToMonoYUV(uint32_t jpeg_image) {
  return vrc::jpeg::with_state(jpeg_image, "ZEP_JPEG_ConvertToMonoYUV",
                               [](ZEP_JPEG_RECORD &record) {
                                 std::memset(record.quant[1], 0, sizeof record.quant[1]);
                                 return 0u;
                               });
}
