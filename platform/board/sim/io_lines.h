// The board's general-purpose lines: outputs driven with the set/clear encoding, and inputs whose
// levels come from what a test sets (vrxsim_set_input_lines) and from the board's own wiring: a
// loop-back plug takes TTL outputs 1 and 2 to AuxIn 1 and 2, the camera control lines CC 1 and
// CC 2 read back on CcIo 1 and 2, and CtrlIn 1 (frame) is high while the camera delivers frames.
#pragma once

#include <cstdint>

namespace vrxsim {

class IoLines {
 public:
  // PortOpSet or PortOpClear with line bits; VRX_ERR_BAD_VALUE for an unknown line or operation.
  uint32_t drive(uint32_t encoded);
  // The read of ParamOutputPort: `lines` tested, PortOpSet | lines set when all are set, else
  // PortOpClear | the ones set.
  uint32_t test_outputs(uint32_t lines) const;
  uint32_t outputs() const { return m_outputs; }
  void set_external_inputs(uint32_t levels) { m_external = levels; }
  uint32_t inputs(bool acquiring) const;

 private:
  uint32_t m_outputs = 0;
  uint32_t m_external = 0;
};

}  // namespace vrxsim
