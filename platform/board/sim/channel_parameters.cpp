// VRX_ParameterGet and VRX_ParameterSet: board selection before opening, values the board
// computes (status, capture size, link state, counters), values with side effects (interrupt
// mask, output lines) and, for everything else, the validated parameter store.

#include "platform/board/sim/channel.h"
#include "platform/board/sim/faults.h"
#include "platform/board/sim/parameter_table.h"

namespace vrxsim {
namespace {

using namespace vrx;

bool is_selection(uint32_t id) {
  return id == ParamConfigFile || id == ParamBoardType || id == ParamBoardNumber ||
         id == ParamChannelNumber || id == ParamBoardMode;
}

bool is_cxp(uint32_t id) { return (id & 0xFFFF0000u) == 0xC0090000u; }
bool is_pocl(uint32_t id) {
  return id == ParamPoclSenseEnable || id == ParamPoclSense || id == ParamPoclStatus;
}

uint32_t &word_at(void *value) { return *static_cast<uint32_t *>(value); }

}  // namespace

uint32_t Channel::check_feature(const CallReport &report, uint32_t id) const {
  const BoardModel &model = *m_board->model;
  if (is_cxp(id) && model.interface != Interface::CoaXPress)
    return report.fail(VRX_ERR_NOT_SUPPORTED,
                       std::string("The ") + model.short_name + " has no CoaXPress link");
  if (is_pocl(id) && !model.pocl)
    return report.fail(VRX_ERR_NOT_SUPPORTED,
                       std::string("The ") + model.short_name + " cannot sense PoCL cameras");
  return VRX_OK;
}

uint32_t Channel::get_parameter(const CallReport &report, uint32_t id, void *value) {
  if (!value) return report.fail(VRX_ERR_NULL_ARGUMENT, "No value pointer for " + hex(id));
  if (auto status = faults().take_parameter(id, false))
    return report.fail(*status, "Injected read fault on " + hex(id));
  std::lock_guard lock(m_mutex);
  switch (id) {
    case ParamBoardType: word_at(value) = m_selection.board_type; return VRX_OK;
    case ParamBoardNumber: word_at(value) = m_selection.board_number; return VRX_OK;
    case ParamChannelNumber: word_at(value) = m_selection.channel; return VRX_OK;
    case ParamBoardMode: word_at(value) = m_selection.mode; return VRX_OK;
    case ParamConfigFile:
    case ParamEventContext:
      return report.fail(VRX_ERR_WRITE_ONLY, "Parameter " + hex(id) + " can only be written");
    default: break;
  }
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (uint32_t status = check_feature(report, id)) return status;
  if (std::optional<uint32_t> status = get_computed(id, value)) {
    if (*status) return report.fail(*status, "Parameter " + hex(id) + " cannot be read");
    return VRX_OK;
  }
  uint32_t stored = 0;
  if (uint32_t status = m_board->store.get(id, stored))
    return report.fail(status, status == VRX_ERR_WRITE_ONLY
                                   ? "Parameter " + hex(id) + " can only be written"
                                   : "Unknown parameter " + hex(id));
  word_at(value) = stored;
  return VRX_OK;
}

std::optional<uint32_t> Channel::get_computed(uint32_t id, void *value) {
  OpenBoard &board = *m_board;
  const BoardModel &model = *board.model;
  const ParameterStore &store = board.store;
  uint32_t &word = word_at(value);
  if (std::optional<uint32_t> link = board.cxp.read(model, store, id)) {
    word = *link;
    return VRX_OK;
  }
  switch (id) {
    case ParamBoardInfo:
      *static_cast<const char **>(value) = board.info_text.c_str();
      return VRX_OK;
    case ParamBoardStatusWord: word = status_word(); return VRX_OK;
    case ParamCaptureWidth: word = store.geometry().width; return VRX_OK;
    case ParamCaptureHeight: word = store.geometry().buffer_lines; return VRX_OK;
    case ParamIntrptEnable: word = board.engine->interrupt_mask(); return VRX_OK;
    case ParamIntrptDisable:
    case ParamPowerOutputSet: return VRX_ERR_WRITE_ONLY;
    case ParamPowerOutput: {
      // The in-value names the lines to test: all set reads as "set", else "clear".
      const uint32_t lines = word & ~PortOpMask;
      const bool all_set = (board.power_lines & lines) == lines;
      word = (all_set ? PortOpSet : PortOpClear) | (board.power_lines & lines);
      return VRX_OK;
    }
    case ParamPoclStatus: {
      const bool sensing =
          store.value(ParamPoclSenseEnable) == 1 && store.value(ParamPoclSense) == 1;
      word = sensing && board.pocl_camera && board.power_lines == 0 ? 1 : 0;
      return VRX_OK;
    }
    case ParamCommsCount1: word = board.comms_sent; return VRX_OK;
    case ParamCommsCount2: word = board.comms_received; return VRX_OK;
    case ParamCommsStatus: word = board.serial->waiting() > 0 ? 1 : 0; return VRX_OK;
    case ParamCommsInterface:
      word = model.interface == Interface::CameraLink || model.interface == Interface::Lvds
                 ? CommsLvds
                 : CommsRs232;
      return VRX_OK;
    default: return std::nullopt;
  }
}

uint32_t Channel::set_selection(const CallReport &report, uint32_t id, void *value) {
  if (m_board)
    return report.fail(VRX_ERR_ALREADY_OPEN,
                       "Board selection cannot change while the handle is open");
  if (id == ParamConfigFile) {
    const char *path = static_cast<const char *>(value);
    m_selection.config_file = path ? path : "";
    return VRX_OK;
  }
  if (!value) return report.fail(VRX_ERR_NULL_ARGUMENT, "No value pointer for " + hex(id));
  const uint32_t word = word_at(value);
  const bool known_type = word == BoardTypeAny || find_board_model(word) != nullptr;
  struct Target {
    uint32_t id;
    bool accepted;
    uint32_t *member;
  };
  const Target targets[] = {
      {ParamBoardType, known_type, &m_selection.board_type},
      {ParamBoardNumber, accepts(kBoardNumberValues, word), &m_selection.board_number},
      {ParamChannelNumber, accepts(kChannelValues, word), &m_selection.channel},
      {ParamBoardMode, accepts(kBoardModeValues, word), &m_selection.mode}};
  for (const Target &target : targets) {
    if (target.id != id) continue;
    if (!target.accepted)
      return report.fail(VRX_ERR_BAD_VALUE, "Value " + hex(word) + " not accepted for " + hex(id));
    *target.member = word;
  }
  return VRX_OK;
}

uint32_t Channel::set_special(const CallReport &report, uint32_t id, uint32_t value,
                              bool &handled) {
  OpenBoard &board = *m_board;
  handled = true;
  switch (id) {
    case ParamIntrptEnable:
    case ParamIntrptDisable: {
      if (value & ~kInterruptBitsKnown)
        return report.fail(VRX_ERR_BAD_VALUE,
                           "Unknown interrupt bits " + hex(value & ~kInterruptBitsKnown));
      const uint32_t mask = board.engine->interrupt_mask();
      board.engine->set_interrupt_mask(id == ParamIntrptEnable ? mask | value : mask & ~value);
      return VRX_OK;
    }
    case ParamPowerOutputSet: {
      const uint32_t lines = value & ~PortOpMask;
      if (lines & ~(PowerLine12V | PowerLineGround))
        return report.fail(VRX_ERR_BAD_VALUE, "No output line " + hex(lines));
      if ((value & PortOpMask) == PortOpSet)
        board.power_lines |= lines;
      else if ((value & PortOpMask) == PortOpClear)
        board.power_lines &= ~lines;
      else
        return report.fail(VRX_ERR_BAD_VALUE,
                           "Unknown output operation " + hex(value & PortOpMask));
      return VRX_OK;
    }
    case ParamBoardInfo:
    case ParamBoardStatusWord:
    case ParamCaptureWidth:
    case ParamCaptureHeight:
    case ParamPowerOutput:
    case ParamPoclStatus:
    case ParamCommsCount1:
    case ParamCommsCount2:
    case ParamCommsStatus:
    case ParamCommsInterface:
    case ParamCxpDiscovery:
    case ParamCxpCurrentSpeed:
    case ParamCxpCurrentLinks:
    case ParamCxpPowerState:
      return report.fail(VRX_ERR_READ_ONLY, "Parameter " + hex(id) + " can only be read");
    default: handled = false; return VRX_OK;
  }
}

uint32_t Channel::set_parameter(const CallReport &report, uint32_t id, void *value) {
  if (auto status = faults().take_parameter(id, true))
    return report.fail(*status, "Injected write fault on " + hex(id));
  std::lock_guard lock(m_mutex);
  if (is_selection(id)) return set_selection(report, id, value);
  if (!m_board) return report.fail(VRX_ERR_NOT_OPEN, "The handle is not open");
  if (id == ParamEventContext) {
    m_board->engine->set_context(value);
    return VRX_OK;
  }
  if (id == ParamApplySettings) return VRX_OK;
  if (!value) return report.fail(VRX_ERR_NULL_ARGUMENT, "No value pointer for " + hex(id));
  if (uint32_t status = check_feature(report, id)) return status;
  const uint32_t word = word_at(value);
  bool handled = false;
  const uint32_t status = set_special(report, id, word, handled);
  if (handled) return status;
  const ParameterDefinition *definition = find_parameter(id);
  if (!definition) return report.fail(VRX_ERR_BAD_PARAMETER, "Unknown parameter " + hex(id));
  if (definition->idle_only && m_board->engine->running())
    return report.fail(VRX_ERR_BUSY, "Parameter " + hex(id) + " cannot change during acquisition");
  if (uint32_t result = m_board->store.set(id, word))
    return report.fail(result, "Value " + hex(word) + " not accepted for " + hex(id));
  if (id == ParamCxpPower) m_board->cxp.power_written(word);
  return VRX_OK;
}

}  // namespace vrxsim
