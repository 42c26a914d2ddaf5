// One SDK handle of the simulated board: the board, channel and mode chosen before VRX_Open, and
// once open the channel's parameters, camera, capture ring, register spaces and serial link.
// Every public call is safe from any thread; calls that fail report through `report`.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/board/sim/acquisition_engine.h"
#include "platform/board/sim/cxp_link.h"
#include "platform/board/sim/parameter_store.h"
#include "platform/board/sim/register_space.h"
#include "platform/board/sim/serial_camera.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"

namespace vrxsim {

// "0x%08X" of a value, for messages.
std::string hex(uint32_t value);

// Reports one call's failure through the handle's error handler, once.
class CallReport {
 public:
  CallReport(const char* function, VRX_ERR_HANDLER handler) : m_function(function), m_handler(handler) {}
  uint32_t fail(uint32_t status, const std::string& message) const;
  const char* function() const { return m_function; }

 private:
  const char* m_function;
  VRX_ERR_HANDLER m_handler;
};

class Channel {
 public:
  Channel(uint32_t handle, VRX_ERR_HANDLER handler);
  ~Channel();
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  VRX_ERR_HANDLER error_handler() const { return m_handler; }

  uint32_t open(const CallReport& report);
  uint32_t close(const CallReport& report);
  uint32_t get_parameter(const CallReport& report, uint32_t id, void* value);
  uint32_t set_parameter(const CallReport& report, uint32_t id, void* value);
  uint32_t acquire(const CallReport& report, uint32_t operation, void* argument);
  uint32_t save_config(const CallReport& report, const char* path, uint32_t mode);
  uint32_t control_read(const CallReport& report, uint32_t port, uint32_t address, uint8_t* data,
                        uint32_t& count, uint32_t timeout_ms);
  uint32_t control_write(const CallReport& report, uint32_t port, uint32_t address,
                         const uint8_t* data, uint32_t& count);
  uint32_t control_reset(const CallReport& report, uint32_t port);
  uint32_t comms_transmit(const CallReport& report, const uint8_t* data, uint32_t& count);
  uint32_t comms_receive(const CallReport& report, uint8_t* data, uint32_t& count, uint32_t timeout_ms);
  uint32_t test(const CallReport& report, uint32_t test_id);

  // Simulator extras (vrxsim.h).
  uint32_t set_frame_rate(const CallReport& report, double frames_per_second);
  uint32_t raise_event(const CallReport& report, uint32_t event_mask);
  uint32_t trigger(const CallReport& report);
  uint32_t inject_frame(const CallReport& report, std::vector<uint8_t> bytes);
  uint32_t force_parameter(const CallReport& report, uint32_t id, uint32_t value);
  uint32_t set_pocl_camera(const CallReport& report, bool attached);
  uint32_t set_cxp_trip(const CallReport& report, bool tripped);
  // 0 when not open.
  uint64_t event_time_ns() const;

 private:
  struct Selection {
    uint32_t board_type = vrx::BoardTypeAny;
    uint32_t board_number = 0xC0010001;
    uint32_t channel = vrx::ChannelA;
    uint32_t mode = vrx::BoardModeNormal;
    std::string config_file;
  };
  struct OpenBoard {
    const vrx::BoardModel* model = nullptr;
    uint32_t board_index = 0;  // 0-based
    ParameterStore store;
    RegisterSpace camera_registers;
    RegisterSpace grabber_registers;
    std::unique_ptr<SerialCamera> serial;
    std::unique_ptr<AcquisitionEngine> engine;
    std::string info_text;
    uint32_t power_lines = 0;   // output lines set: PowerLine12V, PowerLineGround
    bool pocl_camera = false;
    CxpLink cxp;
    uint32_t comms_sent = 0, comms_received = 0;
  };

  uint32_t set_selection(const CallReport& report, uint32_t id, void* value);
  std::optional<uint32_t> get_computed(uint32_t id, void* value);
  uint32_t set_special(const CallReport& report, uint32_t id, uint32_t value, bool& handled);
  uint32_t status_word() const;
  AcquisitionSettings acquisition_settings() const;
  uint32_t check_feature(const CallReport& report, uint32_t id) const;
  RegisterSpace* register_space(uint32_t port);

  const uint32_t m_handle;
  const VRX_ERR_HANDLER m_handler;
  mutable std::mutex m_mutex;
  Selection m_selection;
  std::unique_ptr<OpenBoard> m_board;
};

}  // namespace vrxsim
