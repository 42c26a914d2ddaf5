// Register spaces: byte-exact reads and writes with bounds checks.
#include "platform/board/sim/register_space.h"

#include <algorithm>
#include <optional>

#include "platform/board/vrx_sdk.h"

namespace vrxsim {

void RegisterSpace::define(uint32_t address, uint32_t size, bool writable,
                           std::span<const uint8_t> initial) {
  Register reg;
  reg.initial.assign(size, 0);
  std::copy_n(initial.begin(), std::min<std::size_t>(size, initial.size()), reg.initial.begin());
  reg.bytes = reg.initial;
  reg.writable = writable;
  m_registers[address] = std::move(reg);
}

void RegisterSpace::define_word(uint32_t address, bool writable, uint32_t initial) {
  const uint8_t bytes[4] = {static_cast<uint8_t>(initial >> 24), static_cast<uint8_t>(initial >> 16),
                            static_cast<uint8_t>(initial >> 8), static_cast<uint8_t>(initial)};
  define(address, 4, writable, bytes);
}

void RegisterSpace::define_text(uint32_t address, uint32_t size, std::string_view text) {
  define(address, size, false,
         std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

std::optional<uint32_t> RegisterSpace::read(uint32_t address, std::span<uint8_t> out) const {
  auto it = m_registers.find(address);
  if (it == m_registers.end()) return std::nullopt;
  const auto count = static_cast<uint32_t>(std::min(out.size(), it->second.bytes.size()));
  std::copy_n(it->second.bytes.begin(), count, out.begin());
  return count;
}

uint32_t RegisterSpace::write(uint32_t address, std::span<const uint8_t> data) {
  auto it = m_registers.find(address);
  if (it == m_registers.end() || !it->second.writable || data.size() > it->second.bytes.size())
    return VRX_ERR_ADDRESS;
  std::copy(data.begin(), data.end(), it->second.bytes.begin());
  return VRX_OK;
}

void RegisterSpace::reset() {
  for (auto& [address, reg] : m_registers) reg.bytes = reg.initial;
}

uint32_t RegisterSpace::word(uint32_t address) const {
  auto it = m_registers.find(address);
  if (it == m_registers.end() || it->second.bytes.size() < 4) return 0;
  const std::vector<uint8_t>& b = it->second.bytes;
  return (uint32_t{b[0]} << 24) | (uint32_t{b[1]} << 16) | (uint32_t{b[2]} << 8) | b[3];
}

void RegisterSpace::set_word(uint32_t address, uint32_t value) {
  auto it = m_registers.find(address);
  if (it == m_registers.end() || it->second.bytes.size() < 4) return;
  for (int i = 0; i < 4; ++i) it->second.bytes[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

RegisterSpace make_camera_registers() {
  RegisterSpace space;
  space.define_text(0x0000, 32, "vrxsim");
  space.define_text(0x0020, 32, "VRXSIM-CAM");
  space.define_text(0x0040, 16, "1.0");
  space.define_word(kCameraExposureRegister, true, 1000);
  space.define_word(kCameraGainRegister, true, 256);
  space.define_word(kCameraTemperatureRegister, false, 415);
  space.define(0x0200, 64, true, {});
  return space;
}

RegisterSpace make_grabber_registers(uint32_t board_type, uint32_t status_word) {
  RegisterSpace space;
  space.define_word(0x0000, false, board_type);
  space.define_word(0x0004, false, 0x00010203);
  space.define_word(0x0008, false, status_word);
  space.define_word(kGrabberFrameCountRegister, false, 0);
  for (uint32_t address = 0x0100; address < 0x0200; address += 4) space.define_word(address, true, 0);
  return space;
}

}  // namespace vrxsim
