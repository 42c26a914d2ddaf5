// Script commands on the control object: its command, parameter and property interfaces, the
// tab sets, sequence saving and the acquisition figures.
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <string>

#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"
#include "tools/vrc-panel/board_access.h"
#include "tools/vrc-panel/command_table.h"
#include "tools/vrc-panel/panel_host.h"
#include "tools/vrc-panel/panel_json.h"

namespace vrc_panel {
namespace {

std::optional<Answer> run_exec(Session &session, Words &words) {
  const std::optional<uint32_t> command = parse_unsigned(words.next());
  if (!command || !words.at_end()) return std::nullopt;
  // The panel's own loop ends only when a panel without a parent is closed; this one has the
  // main window as its parent, so a script would never get control back.
  if (*command == VRC_EXEC_MESSAGE_LOOP)
    return Answer::failure("the panel's message loop would never return to the script");
  return Answer::success(
      std::to_string(session.panel.vrc()->Exec(static_cast<etVrcExec>(*command))));
}

std::optional<Answer> run_get(Session &session, Words &words) {
  const std::optional<uint32_t> parameter = parse_unsigned(words.next());
  if (!parameter || !words.at_end()) return std::nullopt;
  uint32_t word = 0xDEADBEEF;
  const eStat status =
      session.panel.vrc()->ParameterGet(static_cast<etVrcParam>(*parameter), &word);
  return Answer::success(std::to_string(status) + ' ' + hex_word(word));
}

std::optional<Answer> run_setparam(Session &session, Words &words) {
  const std::optional<uint32_t> parameter = parse_unsigned(words.next());
  const std::optional<uint32_t> value = parse_unsigned(words.next());
  if (!parameter || !value || !words.at_end()) return std::nullopt;
  // The value is handed over as a pointer; a script has no function to give as a callback.
  if (*parameter == VRC_PARAM_EVENT_CALLBACK && *value != 0)
    return Answer::failure("a script can set the event callback only to 0");
  void *argument = reinterpret_cast<void *>(static_cast<uintptr_t>(*value));
  return Answer::success(std::to_string(
      session.panel.vrc()->ParameterSet(static_cast<etVrcParam>(*parameter), argument)));
}

std::optional<Answer> run_showpages(Session &session, Words &words) {
  const std::optional<uint32_t> mode = parse_unsigned(words.next());
  if (!mode || !words.at_end()) return std::nullopt;
  session.panel.control()->ShowPages(*mode);
  return Answer::success();
}

// property KEY [TEXT]: the lookup runs on TEXT, or on the open board's information text.
std::optional<Answer> run_property(Session &session, Words &words) {
  const std::string key(words.next());
  if (key.empty()) return std::nullopt;
  std::string properties;
  if (words.at_end()) {
    const uint32_t handle = session.panel.camera_handle();
    if (handle == 0) return Answer::failure(kNoBoard);
    const char *information = nullptr;
    if (VRX_ParameterGet(handle, vrx::ParamBoardInfo, static_cast<void *>(&information)) !=
            VRX_OK ||
        !information)
      return Answer::failure("the board gives no information text");
    properties = information;
  } else {
    properties = unescape_newlines(words.rest());
  }
  // The value field holds 256 bytes and may be filled without a terminator; one more keeps
  // the answer inside it.
  std::array<uint8_t, 257> value{};
  const eStat status = session.panel.control()->VRC_PropertyGet(
      value.data(), reinterpret_cast<uint8_t *>(properties.data()),
      reinterpret_cast<const uint8_t *>(key.c_str()));
  const std::string text(reinterpret_cast<const char *>(value.data()),
                         strnlen(reinterpret_cast<const char *>(value.data()), 256));
  return Answer::success(std::to_string(status) + (text.empty() ? "" : ' ' + text));
}

std::optional<Answer> run_save_sequence(Session &, Words &words) {
  const std::optional<uint32_t> first = parse_unsigned(words.next());
  const std::optional<uint32_t> last = parse_unsigned(words.next());
  if (!first || !last || !words.at_end()) return std::nullopt;
  return Answer::failure("this panel has no sequence saving: its Display page does not offer it");
}

std::optional<Answer> run_counters(Session &session, Words &words) {
  if (!words.at_end()) return std::nullopt;
  return Answer::success(figures_json(session.panel.figures()));
}

constexpr Command kControlCommands[] = {
    {"exec", "CMD", run_exec},
    {"get", "PARAM", run_get},
    {"setparam", "PARAM VALUE", run_setparam},
    {"showpages", "MODE", run_showpages},
    {"property", "KEY [TEXT]", run_property},
    {"save-sequence", "FIRST LAST", run_save_sequence},
    {"counters", "", run_counters},
};

}  // namespace

std::span<const Command> control_commands() { return kControlCommands; }

}  // namespace vrc_panel
