// A register space reached through VRX_ControlRead / VRX_ControlWrite: registers of a few bytes
// each at fixed addresses, some read-only, values big-endian as they travel on the link. The
// camera's space (exposure, gain, identification, user scratch) and the frame grabber's
// (identification, status, frame counter, scratch words) are built by the two factory
// functions below.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace vrxsim {

class RegisterSpace {
 public:
  void define(uint32_t address, uint32_t size, bool writable, std::span<const uint8_t> initial);
  void define_word(uint32_t address, bool writable, uint32_t initial);
  void define_text(uint32_t address, uint32_t size, std::string_view text);

  // Copies at most `out.size()` bytes of the register at `address` into `out`; returns the count
  // copied, or nothing when the address is not a register.
  std::optional<uint32_t> read(uint32_t address, std::span<uint8_t> out) const;
  // VRX_OK, VRX_ERR_ADDRESS (no register, read-only, or more bytes than the register holds).
  uint32_t write(uint32_t address, std::span<const uint8_t> data);
  void reset();

  uint32_t word(uint32_t address) const;
  void set_word(uint32_t address, uint32_t value);  // also for read-only registers

 private:
  struct Register {
    std::vector<uint8_t> bytes, initial;
    bool writable = false;
  };
  std::map<uint32_t, Register> m_registers;
};

// Camera registers: 0x0000 vendor (32 bytes text), 0x0020 model (32), 0x0040 version (16),
// 0x0100 exposure in microseconds, 0x0104 gain in 1/256 (256 = x1), 0x0108 temperature in
// 1/10 degree (read-only), 0x0200 user scratch (64 bytes).
inline constexpr uint32_t kCameraExposureRegister = 0x0100;
inline constexpr uint32_t kCameraGainRegister = 0x0104;
inline constexpr uint32_t kCameraTemperatureRegister = 0x0108;
RegisterSpace make_camera_registers();

// Frame-grabber registers, one word each: 0x0000 board type code, 0x0004 firmware version
// (0x00MMmmpp), 0x0008 status word, 0x000C frames captured (all read-only), 0x0100..0x01FC
// scratch words.
inline constexpr uint32_t kGrabberFrameCountRegister = 0x000C;
RegisterSpace make_grabber_registers(uint32_t board_type, uint32_t status_word);

}  // namespace vrxsim
