// Control ports (the camera's and the frame grabber's register spaces), the camera's serial
// link and the board self-tests. A read that gets fewer bytes than asked for waits out its
// time-out, outside the channel's lock, and reports VRX_STATUS_TIMEOUT with the partial count.
#include <algorithm>
#include <chrono>
#include <thread>

#include "platform/board/sim/channel.h"
#include "platform/board/sim/faults.h"
#include "platform/board/sim/self_tests.h"

namespace vrxsim {
namespace {

using namespace vrx;

uint32_t wait_out(uint32_t timeout_ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(timeout_ms));
  return VRX_STATUS_TIMEOUT;
}

}  // namespace

RegisterSpace* Channel::register_space(uint32_t port) {
  if (port == PortCamera) return &m_board->camera_registers;
  if (port == PortFrameGrabber) return &m_board->grabber_registers;
  return nullptr;
}

uint32_t Channel::control_read(const CallReport& report, uint32_t port, uint32_t address,
                               uint8_t* data, uint32_t& count, uint32_t timeout_ms) {
  const uint32_t asked = count;
  {
    std::lock_guard lock(m_mutex);
    if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
    if (!data && asked > 0) return report.fail(VRX_ERR_NULL_ARGUMENT, "No data buffer given");
    RegisterSpace* space = register_space(port);
    if (!space) return report.fail(VRX_ERR_BAD_PARAMETER, "Unknown port " + hex(port));
    if (port == PortFrameGrabber)
      space->set_word(kGrabberFrameCountRegister, static_cast<uint32_t>(m_board->engine->frames_captured()));
    std::optional<uint32_t> got = space->read(address, std::span(data, asked));
    if (!got) {
      count = 0;
      return report.fail(VRX_ERR_ADDRESS, "No register at address " + hex(address));
    }
    count = *got;
  }
  return count < asked ? wait_out(timeout_ms) : VRX_OK;
}

uint32_t Channel::control_write(const CallReport& report, uint32_t port, uint32_t address,
                                const uint8_t* data, uint32_t& count) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (!data && count > 0) return report.fail(VRX_ERR_NULL_ARGUMENT, "No data given");
  RegisterSpace* space = register_space(port);
  if (!space) return report.fail(VRX_ERR_BAD_PARAMETER, "Unknown port " + hex(port));
  if (uint32_t status = space->write(address, std::span(data, count))) {
    const std::string message = "Cannot write " + std::to_string(count) + " bytes at address " + hex(address);
    count = 0;
    return report.fail(status, message);
  }
  if (port == PortCamera) m_board->engine->set_gain(space->word(kCameraGainRegister));
  return VRX_OK;
}

uint32_t Channel::control_reset(const CallReport& report, uint32_t port) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (port == PortCamera) {
    m_board->camera_registers.reset();
    m_board->engine->set_gain(m_board->camera_registers.word(kCameraGainRegister));
  } else if (port == PortFrameGrabber) {
    m_board->grabber_registers.reset();
    m_board->grabber_registers.set_word(0x0008, status_word());
  } else {
    return report.fail(VRX_ERR_BAD_PARAMETER, "Unknown port " + hex(port));
  }
  return VRX_OK;
}

uint32_t Channel::comms_transmit(const CallReport& report, const uint8_t* data, uint32_t& count) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (m_selection.mode == BoardModeAcquisitionOnly)
    return report.fail(VRX_ERR_NOT_SUPPORTED, "The board was opened for acquisition only");
  if (!data && count > 0) return report.fail(VRX_ERR_NULL_ARGUMENT, "No data given");
  m_board->serial->receive(std::span(data, count));
  m_board->engine->set_gain(m_board->camera_registers.word(kCameraGainRegister));
  m_board->comms_sent += count;
  return VRX_OK;
}

uint32_t Channel::comms_receive(const CallReport& report, uint8_t* data, uint32_t& count,
                                uint32_t timeout_ms) {
  const uint32_t asked = count;
  {
    std::lock_guard lock(m_mutex);
    if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
    if (m_selection.mode == BoardModeAcquisitionOnly)
      return report.fail(VRX_ERR_NOT_SUPPORTED, "The board was opened for acquisition only");
    if (!data && asked > 0) return report.fail(VRX_ERR_NULL_ARGUMENT, "No data buffer given");
    count = m_board->serial->transmit(std::span(data, asked));
    m_board->comms_received += count;
  }
  return count < asked ? wait_out(timeout_ms) : VRX_OK;
}

uint32_t Channel::test(const CallReport& report, uint32_t test_id) {
  {
    std::lock_guard lock(m_mutex);
    if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
    if (std::find(kTestIds.begin(), kTestIds.end(), test_id) == kTestIds.end())
      return report.fail(VRX_ERR_BAD_PARAMETER, "Unknown test " + hex(test_id));
    if (m_board->engine->running()) return report.fail(VRX_ERR_BUSY, "Tests cannot run during acquisition");
  }
  // The memory tests take a moment on a real board too.
  std::this_thread::sleep_for(std::chrono::milliseconds(self_test_duration_ms(test_id)));
  if (auto status = faults().take_test(test_id)) return report.fail(*status, self_test_failure(test_id));
  return VRX_OK;
}

}  // namespace vrxsim
