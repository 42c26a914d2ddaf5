// The camera's serial command interpreter. Commands are ASCII lines ended by CR or LF, upper or
// lower case; every answer ends with CR LF:
//   ?  or HELP     "COMMANDS: ID? EXP? EXP=<us> GAIN? GAIN=<1/256> TEMP? RESET"
//   ID?            "VRXSIM-CAM,1.0"
//   EXP?  EXP=n    exposure in microseconds (1 .. 10000000): "EXP=n", "OK"
//   GAIN? GAIN=n   gain in 1/256 (1 .. 4096): "GAIN=n", "OK"
//   TEMP?          "TEMP=41.5"
//   RESET          registers back to their defaults: "OK"
//   anything else  "ERR UNKNOWN COMMAND"; a bad number "ERR BAD VALUE".
// Exposure and gain are the camera registers, so the serial and register views agree.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>

#include "platform/board/sim/register_space.h"

namespace vrxsim {

class SerialCamera {
 public:
  explicit SerialCamera(RegisterSpace& registers) : m_registers(registers) {}

  void receive(std::span<const uint8_t> bytes);  // from the frame grabber to the camera
  // Moves up to out.size() waiting answer bytes into `out`; returns the count.
  uint32_t transmit(std::span<uint8_t> out);     // from the camera to the frame grabber
  std::size_t waiting() const { return m_answers.size(); }

 private:
  std::string answer(std::string command);

  RegisterSpace& m_registers;
  std::string m_line;
  std::deque<uint8_t> m_answers;
};

}  // namespace vrxsim
