// Choice of the row-kernel level: the widest the processor supports, unless VRC_FORCE_SCALAR asks
// for the scalar reference kernels.
#include "imaging/convert/simd_level.h"

#include <cstdlib>
#include <cstring>

namespace vrc::convert {

bool simd_level_supported(SimdLevel level) {
  switch (level) {
    case SimdLevel::scalar: return true;
    case SimdLevel::sse2: return __builtin_cpu_supports("sse2");
    case SimdLevel::avx2: return __builtin_cpu_supports("avx2");
  }
  return false;
}

SimdLevel active_simd_level() {
  static const SimdLevel level = [] {
    const char *force = std::getenv("VRC_FORCE_SCALAR");
    if (force != nullptr && std::strcmp(force, "0") != 0 && force[0] != '\0')
      return SimdLevel::scalar;
    if (simd_level_supported(SimdLevel::avx2)) return SimdLevel::avx2;
    if (simd_level_supported(SimdLevel::sse2)) return SimdLevel::sse2;
    return SimdLevel::scalar;
  }();
  return level;
}

}  // namespace vrc::convert
