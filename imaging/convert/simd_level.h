// Which row kernels run: the scalar reference or a vector version chosen by the processor's
// features. Setting VRC_FORCE_SCALAR=1 in the environment forces the scalar kernels.
#pragma once

namespace vrc::convert {

enum class SimdLevel { scalar, sse2, avx2 };

// True when this processor can run kernels of `level`.
bool simd_level_supported(SimdLevel level);

// The level the conversions use, decided once per process.
SimdLevel active_simd_level();

}  // namespace vrc::convert
