// Output lines and input levels.
#include "platform/board/sim/io_lines.h"

#include "platform/board/vrx_params.h"

namespace vrxsim {

using namespace vrx;

uint32_t IoLines::drive(uint32_t encoded) {
  const uint32_t lines = encoded & ~PortOpMask;
  if (lines & ~kOutputLinesAll) return VRX_ERR_BAD_VALUE;
  switch (encoded & PortOpMask) {
    case PortOpSet: m_outputs |= lines; return VRX_OK;
    case PortOpClear: m_outputs &= ~lines; return VRX_OK;
    default: return VRX_ERR_BAD_VALUE;
  }
}

uint32_t IoLines::test_outputs(uint32_t lines) const {
  lines &= kOutputLinesAll;
  const bool all_set = (m_outputs & lines) == lines;
  return (all_set ? PortOpSet : PortOpClear) | (m_outputs & lines);
}

uint32_t IoLines::inputs(bool acquiring) const {
  uint32_t levels = m_external & kInputLinesAll;
  if (m_outputs & OutputTtl1) levels |= InputAux1;
  if (m_outputs & OutputTtl2) levels |= InputAux2;
  if (m_outputs & OutputCc1) levels |= InputCcIo1;
  if (m_outputs & OutputCc2) levels |= InputCcIo2;
  if (acquiring) levels |= InputCtrl1;
  return levels;
}

}  // namespace vrxsim
