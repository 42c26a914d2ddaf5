// The board's status figures (revisions, bus, acquisition state, event counts), its error texts,
// its general-purpose input and output lines and its input look-up table, as parameters.
#include "platform/board/sim/channel.h"
#include "platform/board/sim/event_counter.h"

namespace vrxsim {
namespace {

using namespace vrx;

constexpr uint32_t kFirmwareRevision = 0x00010203;  // v1.2.3, as the board information says
constexpr uint32_t kLibraryRevision = 0x00020104;   // v2.1.4

bool is_read_only_extra(uint32_t id) {
  return id == ParamFirmwareRevision || id == ParamLibraryRevision || id == ParamBusType ||
         id == ParamBusWidth || id == ParamBusClock || id == ParamBusLinkWidth ||
         id == ParamBusVoltage || id == ParamAcqState || id == ParamEventCountImmediate ||
         id == ParamEventCountGated || id == ParamFirstError || id == ParamLastError ||
         id == ParamInputPort;
}

}  // namespace

std::optional<uint32_t> Channel::get_board_extra(uint32_t id, void *value) {
  OpenBoard &board = *m_board;
  uint32_t &word = *static_cast<uint32_t *>(value);
  if (InputLut::is_parameter(id)) {
    word = *board.lut.get(id);
    return VRX_OK;
  }
  if (id == ParamOutputPort) {
    word = board.io.test_outputs(word);
    return VRX_OK;
  }
  if (id == ParamOutputPortSet) return VRX_ERR_WRITE_ONLY;
  if (!is_read_only_extra(id)) return std::nullopt;

  const BoardBus &bus = *find_board_bus(board.model->value);
  const bool pci_express = bus.type == BusPciExpress;
  AcquisitionEngine &engine = *board.engine;
  const EventCounterInputs counter{
      engine.frames_captured(), board.store.geometry().height, engine.frame_period_us(),
      board.store.value(ParamEventCountSource), board.store.value(ParamEventGate)};
  switch (id) {
    case ParamFirmwareRevision: word = kFirmwareRevision; break;
    case ParamLibraryRevision: word = kLibraryRevision; break;
    case ParamBusType: word = bus.type; break;
    case ParamBusWidth: word = bus.width; break;
    case ParamBusClock: word = bus.clock; break;
    // A board in a narrower slot than its own links at the slot's width; the simulated slots
    // are as wide as the boards.
    case ParamBusLinkWidth: word = pci_express ? bus.width : 0; break;
    case ParamBusVoltage: word = bus.voltage; break;
    case ParamAcqState:
      word = engine.waiting_for_trigger() ? AcqStateWaitingForTrigger
             : engine.running()           ? AcqStateActive
                                          : AcqStateIdle;
      break;
    case ParamEventCountImmediate: word = immediate_event_count(counter); break;
    case ParamEventCountGated: word = gated_event_count(counter); break;
    case ParamFirstError:
      board.first_error = m_errors.take_first();
      *static_cast<const char **>(value) = board.first_error.c_str();
      break;
    case ParamLastError:
      board.last_error = m_errors.last();
      *static_cast<const char **>(value) = board.last_error.c_str();
      break;
    case ParamInputPort: word = board.io.inputs(engine.running()); break;
    default: break;
  }
  return VRX_OK;
}

std::optional<uint32_t> Channel::set_board_extra(const CallReport &report, uint32_t id,
                                                 uint32_t value) {
  OpenBoard &board = *m_board;
  if (InputLut::is_parameter(id)) {
    if (board.lut.set(id, value) != VRX_OK)
      return report.fail(VRX_ERR_BAD_VALUE, "Value " + hex(value) + " not accepted for " + hex(id));
    board.engine->set_input_lut(board.lut);
    return VRX_OK;
  }
  if (id == ParamOutputPortSet) {
    if (board.io.drive(value) != VRX_OK)
      return report.fail(VRX_ERR_BAD_VALUE, "No output line or operation " + hex(value));
    return VRX_OK;
  }
  if (id == ParamOutputPort || is_read_only_extra(id))
    return report.fail(VRX_ERR_READ_ONLY, "Parameter " + hex(id) + " can only be read");
  return std::nullopt;
}

uint32_t Channel::set_input_lines(const CallReport &report, uint32_t levels) {
  std::lock_guard lock(m_mutex);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  m_board->io.set_external_inputs(levels);
  return VRX_OK;
}

}  // namespace vrxsim
