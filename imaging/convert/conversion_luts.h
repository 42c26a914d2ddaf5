// The six process-wide conversion tables (ids 200..205): storage, sizes, and the texts reported
// when one cannot be made.
#pragma once

#include "vrcw32/zep_convert.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace vrc::convert {

constexpr bool is_lut_id(uint16_t id) {
  return id >= ZEP_LUT_RGB16_TO_PALETTED && id <= ZEP_LUT_YUV422_TO_PALETTED;
}

// Bytes of table `id` for `image` (table 202 depends on the image's data width).
size_t lut_bytes(uint16_t id, const ZEP_IMAGE &image);

// The table, or an empty span when it has not been generated or loaded. At least 4 bytes past its
// end are readable (zeros), for kernels that read whole words at 16-bit entries.
std::span<uint8_t> lut(uint16_t id);

// The table with exactly `bytes` bytes, allocated or reallocated as needed (contents kept when the
// size is unchanged); throws std::bad_alloc.
std::span<uint8_t> lut_allocate(uint16_t id, size_t bytes);

// "Unable to generate ... LUT" for `id`.
const char *lut_failure_text(uint16_t id);

}  // namespace vrc::convert
