// The encoder's padded copy: a picture whose width or height is not a whole number of MCUs is
// coded from a copy enlarged to whole MCUs, its last column and last line repeated into the
// margin (which keeps the edge blocks smooth, so that the margin costs few bits).
#pragma once

#include "vrcw32/zep_core.h"

#include <cstdint>

namespace vrc::jpeg {

// Fills `padded` (already given its type, geometry and one strip) from `source` of the same type:
// `source` sits at the top left and its edges are repeated. YUV 4:2:2 pixels are repeated by
// pairs; the half pair of an odd width is completed with its own Y and the V of the pair before
// it (128 when there is none).
void fill_padded_copy(const ZEP_IMAGE &source, ZEP_IMAGE &padded);

}  // namespace vrc::jpeg
