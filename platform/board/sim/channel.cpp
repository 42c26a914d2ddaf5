// Opening and closing a channel, the installed boards, acquisition commands and the
// simulator's extra controls.
#include "platform/board/sim/channel.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>

#include "platform/board/sim/vcf_file.h"

namespace vrxsim {
namespace {

using namespace vrx;

// Installed boards, by board number: VRXSIM_BOARDS or a PoCL Camera Link board and a four-link
// CoaXPress board.
std::vector<const BoardModel*> installed_boards() {
  const char* text = std::getenv("VRXSIM_BOARDS");
  std::stringstream list(text && *text ? text : "0xC0013005,0xC0016004");
  std::vector<const BoardModel*> boards;
  for (std::string item; std::getline(list, item, ',');) {
    const BoardModel* model = find_board_model(static_cast<uint32_t>(std::strtoul(item.c_str(), nullptr, 0)));
    if (model) boards.push_back(model);
  }
  return boards;
}

// VRXSIM_POCL_CAMERA=1: the camera on every PoCL board draws power over the cable.
bool pocl_camera_attached() {
  const char* text = std::getenv("VRXSIM_POCL_CAMERA");
  return text && std::strtoul(text, nullptr, 0) != 0;
}

double default_frame_rate() {
  const char* text = std::getenv("VRXSIM_FPS");
  double fps = text ? std::strtod(text, nullptr) : 0.0;
  return fps > 0 ? fps : 30.0;
}

// Board and channel pairs open in this process: one handle each at a time.
std::mutex g_open_mutex;
std::set<std::pair<uint32_t, uint32_t>> g_open_channels;

}  // namespace

std::string hex(uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", value);
  return text;
}

uint32_t CallReport::fail(uint32_t status, const std::string& message) const {
  if (m_handler) m_handler(m_function, status, message.c_str());
  return status;
}

Channel::Channel(uint32_t handle, VRX_ERR_HANDLER handler) : m_handle(handle), m_handler(handler) {}

Channel::~Channel() {
  std::unique_ptr<OpenBoard> board;
  {
    std::lock_guard lock(m_mutex);
    board = std::move(m_board);
  }
  if (board) {
    std::lock_guard lock(g_open_mutex);
    g_open_channels.erase({board->board_index, m_selection.channel});
  }
}

uint32_t Channel::open(const CallReport& report) {
  std::lock_guard lock(m_mutex);
  if (m_board) return report.fail(VRX_ERR_ALREADY_OPEN, "The handle is already open");
  const std::vector<const BoardModel*> boards = installed_boards();
  const uint32_t index = m_selection.board_number - 0xC0010001;
  if (index >= boards.size())
    return report.fail(VRX_ERR_NO_BOARD, "Board " + std::to_string(index + 1) + " is not installed");
  const BoardModel& model = *boards[index];
  if (m_selection.board_type != BoardTypeAny && m_selection.board_type != model.value)
    return report.fail(VRX_ERR_NO_BOARD, "Board " + std::to_string(index + 1) + " is a " +
                                             model.short_name + ", not the board type asked for");
  if (m_selection.channel == ChannelB && model.channels < 2)
    return report.fail(VRX_ERR_NO_BOARD, "Board " + std::to_string(index + 1) + " has no channel B");

  auto board = std::make_unique<OpenBoard>();
  board->model = &model;
  board->board_index = index;
  board->pocl_camera = model.pocl && pocl_camera_attached();
  if (!m_selection.config_file.empty()) {
    std::string error;
    if (uint32_t status = read_vcf_file(m_selection.config_file, board->store, error))
      return report.fail(status, error);
  }
  {
    std::lock_guard open_lock(g_open_mutex);
    if (!g_open_channels.insert({index, m_selection.channel}).second)
      return report.fail(VRX_ERR_ALREADY_OPEN, "Board " + std::to_string(index + 1) + " channel " +
                                                   (m_selection.channel == ChannelA ? "A" : "B") +
                                                   " is open on another handle");
  }
  board->camera_registers = make_camera_registers();
  board->grabber_registers = make_grabber_registers(model.value, 0);
  board->serial = std::make_unique<SerialCamera>(board->camera_registers);
  board->engine = std::make_unique<AcquisitionEngine>(m_handle, default_frame_rate());
  board->info_text = std::string("Model=") + model.short_name + "\nName=" + model.name +
                     "\nBoard=" + std::to_string(index + 1) +
                     "\nChannel=" + (m_selection.channel == ChannelA ? "A" : "B") +
                     "\nSerial=SIM" + std::to_string(10000 + index) + "\nFirmware=1.2.3\n";
  m_board = std::move(board);
  m_board->grabber_registers.set_word(0x0008, status_word());
  return VRX_OK;
}

uint32_t Channel::close(const CallReport& report) {
  std::unique_ptr<OpenBoard> board;
  {
    std::lock_guard lock(m_mutex);
    if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
    board = std::move(m_board);
  }
  {
    std::lock_guard open_lock(g_open_mutex);
    g_open_channels.erase({board->board_index, m_selection.channel});
  }
  // The engine's thread is joined here, outside the channel's lock, so that a callback still
  // running can finish its own calls on this handle.
  board.reset();
  return VRX_OK;
}

uint32_t Channel::status_word() const {
  uint32_t word = 0;
  if (m_board->model->interface == Interface::CameraLink) word |= StatusCameraLink;
  if (m_board->model->base_only) word |= StatusClBaseOnly;
  if (m_board->board_index == 0) word |= StatusChainMaster;
  return word;
}

AcquisitionSettings Channel::acquisition_settings() const {
  const ParameterStore& store = m_board->store;
  AcquisitionSettings settings;
  settings.geometry = store.geometry();
  settings.buffer_count = store.value(ParamBufferCount);
  settings.single_frame = store.value(ParamAcqMode) == AcqModeSingle;
  settings.trigger_mode = store.value(ParamAcqTrigMode);
  if (store.value(ParamAcqTrigSource) == TrigSourceInternalTimer) {
    // A line lasts 20 microseconds on the simulated camera.
    const uint32_t unit = store.value(ParamTimerPeriodUnit);
    const uint32_t period = store.value(ParamTimerPeriod);
    settings.timer_period_us = unit == TimerUnitUsecs ? period : unit == TimerUnitLines ? period * 20 : 0;
  }
  settings.buffer_ready_count = store.value(ParamBufferReadyCount);
  settings.timeout_ms = store.value(ParamDmaTimeout);
  return settings;
}

uint32_t Channel::acquire(const CallReport& report, uint32_t operation, void* argument) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (m_selection.mode == BoardModeCommsOnly)
    return report.fail(VRX_ERR_NOT_SUPPORTED, "The board was opened for communications only");
  AcquisitionEngine& engine = *m_board->engine;
  auto callback = reinterpret_cast<VRX_EVENT_CALLBACK>(argument);
  switch (operation) {
    case VRX_ACQ_START:
    case VRX_ACQ_RESTART:
      if (engine.running()) return report.fail(VRX_ERR_BUSY, "Acquisition is already running");
      return engine.start(callback, acquisition_settings(), operation == VRX_ACQ_RESTART);
    case VRX_ACQ_FREEZE:
    case VRX_ACQ_ABORT:
      engine.stop();
      return VRX_OK;
    case VRX_ACQ_BUFFER_GET: {
      if (!argument) return report.fail(VRX_ERR_NULL_ARGUMENT, "No buffer record given");
      if (uint32_t status = engine.buffer_get(*static_cast<VRX_BUFFER_RECORD*>(argument)))
        return report.fail(status, "No captured buffer is waiting");
      return VRX_OK;
    }
    case VRX_ACQ_BUFFER_RELEASE:
      if (uint32_t status = engine.buffer_release()) return report.fail(status, "No buffer to release");
      return VRX_OK;
    case VRX_ACQ_REGISTER_CALLBACK:
      engine.register_callback(callback);
      return VRX_OK;
    case VRX_ACQ_SOFTWARE_TRIGGER:
      engine.trigger();
      return VRX_OK;
    default:
      return report.fail(VRX_ERR_BAD_PARAMETER, "Unknown acquisition operation " + hex(operation));
  }
}

uint32_t Channel::save_config(const CallReport& report, const char* path, uint32_t mode) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (!path || !*path) return report.fail(VRX_ERR_NULL_ARGUMENT, "No file name given");
  if (mode != CfgSaveAll) return report.fail(VRX_ERR_BAD_PARAMETER, "Unknown save mode " + hex(mode));
  std::string error;
  if (uint32_t status = write_vcf_file(path, m_board->store, error)) return report.fail(status, error);
  return VRX_OK;
}

uint32_t Channel::set_frame_rate(const CallReport& report, double frames_per_second) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (!(frames_per_second >= 1.0 && frames_per_second <= 100000.0))
    return report.fail(VRX_ERR_BAD_VALUE, "Frame rate out of range");
  m_board->engine->set_frame_rate(frames_per_second);
  return VRX_OK;
}

uint32_t Channel::raise_event(const CallReport& report, uint32_t event_mask) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  m_board->engine->raise(event_mask);
  return VRX_OK;
}

uint32_t Channel::trigger(const CallReport& report) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  m_board->engine->trigger();
  return VRX_OK;
}

uint32_t Channel::inject_frame(const CallReport& report, std::vector<uint8_t> bytes) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  m_board->engine->inject_frame(std::move(bytes));
  return VRX_OK;
}

uint32_t Channel::force_parameter(const CallReport& report, uint32_t id, uint32_t value) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  m_board->store.force(id, value);
  return VRX_OK;
}

uint32_t Channel::set_pocl_camera(const CallReport& report, bool attached) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  m_board->pocl_camera = attached;
  return VRX_OK;
}

uint32_t Channel::set_cxp_trip(const CallReport& report, bool tripped) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (m_board->model->interface != Interface::CoaXPress)
    return report.fail(VRX_ERR_NOT_SUPPORTED,
                       std::string("The ") + m_board->model->short_name + " has no CoaXPress link");
  m_board->cxp.set_tripped(tripped);
  return VRX_OK;
}

uint64_t Channel::event_time_ns() const {
  std::lock_guard lock(m_mutex);
  return m_board ? m_board->engine->event_time_ns() : 0;
}

}  // namespace vrxsim
