// Serial command interpreter.
#include "platform/board/sim/serial_camera.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <utility>

namespace vrxsim {
namespace {

bool parse_in_range(const std::string& text, uint32_t minimum, uint32_t maximum, uint32_t& value) {
  if (text.empty() || !std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); }))
    return false;
  unsigned long parsed = std::strtoul(text.c_str(), nullptr, 10);
  if (text.size() > 10 || parsed < minimum || parsed > maximum) return false;
  value = static_cast<uint32_t>(parsed);
  return true;
}

}  // namespace

void SerialCamera::receive(std::span<const uint8_t> bytes) {
  for (uint8_t byte : bytes) {
    if (byte == '\r' || byte == '\n') {
      if (!m_line.empty()) {
        std::string reply = answer(std::exchange(m_line, {})) + "\r\n";
        m_answers.insert(m_answers.end(), reply.begin(), reply.end());
      }
    } else if (m_line.size() < 256) {
      m_line.push_back(static_cast<char>(std::toupper(byte)));
    }
  }
}

uint32_t SerialCamera::transmit(std::span<uint8_t> out) {
  const auto count = static_cast<uint32_t>(std::min(out.size(), m_answers.size()));
  std::copy_n(m_answers.begin(), count, out.begin());
  m_answers.erase(m_answers.begin(), m_answers.begin() + count);
  return count;
}

std::string SerialCamera::answer(std::string command) {
  auto setting = [&](const char* name, uint32_t address, uint32_t minimum, uint32_t maximum) {
    const std::string query = std::string(name) + "?", assign = std::string(name) + "=";
    if (command == query) return assign + std::to_string(m_registers.word(address));
    uint32_t value = 0;
    if (!parse_in_range(command.substr(assign.size()), minimum, maximum, value)) return std::string("ERR BAD VALUE");
    m_registers.set_word(address, value);
    return std::string("OK");
  };
  if (command == "?" || command == "HELP") return "COMMANDS: ID? EXP? EXP=<us> GAIN? GAIN=<1/256> TEMP? RESET";
  if (command == "ID?") return "VRXSIM-CAM,1.0";
  if (command.starts_with("EXP")) return setting("EXP", kCameraExposureRegister, 1, 10000000);
  if (command.starts_with("GAIN")) return setting("GAIN", kCameraGainRegister, 1, 4096);
  if (command == "TEMP?") {
    uint32_t tenths = m_registers.word(kCameraTemperatureRegister);
    return "TEMP=" + std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
  }
  if (command == "RESET") {
    m_registers.reset();
    return "OK";
  }
  return "ERR UNKNOWN COMMAND";
}

}  // namespace vrxsim
