// Script commands on the open board: its parameters, as a test's eye on it, and the simulated
// board's own calls (faults, trigger edges, events, frame rate, injected frames).
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/board/sim/vrxsim.h"
#include "platform/board/vrx_params.h"
#include "tools/vrc-panel/board_access.h"
#include "tools/vrc-panel/command_table.h"
#include "tools/vrc-panel/panel_host.h"

namespace vrc_panel {
namespace {

// Runs `call` with the open board's handle, or refuses when no board is open.
template <typename Call>
Answer with_board(Session &session, Call call) {
  const uint32_t handle = session.panel.camera_handle();
  if (handle == 0) return Answer::failure(kNoBoard);
  return call(handle);
}

Answer status_answer(uint32_t status) { return Answer::success(std::to_string(status)); }

// Parameters whose value is a pointer rather than a word: a script cannot give or read those.
bool carries_pointer(uint32_t parameter) {
  return parameter == vrx::ParamConfigFile || parameter == vrx::ParamEventContext ||
         parameter == vrx::ParamBoardInfo;
}

std::optional<Answer> run_board(Session &session, Words &words) {
  const std::string_view direction = words.next();
  const std::optional<uint32_t> parameter = parse_unsigned(words.next());
  if (!parameter || (direction != "get" && direction != "set")) return std::nullopt;
  std::optional<uint32_t> value;
  if (direction == "set" && !(value = parse_unsigned(words.next()))) return std::nullopt;
  if (!words.at_end()) return std::nullopt;
  if (carries_pointer(*parameter))
    return Answer::failure(hex_word(*parameter) + " carries a pointer, not a word");
  return with_board(session, [&](uint32_t handle) {
    if (value) return status_answer(VRX_ParameterSet(handle, *parameter, &*value));
    uint32_t word = 0;
    const uint32_t status = VRX_ParameterGet(handle, *parameter, &word);
    return Answer::success(std::to_string(status) + ' ' + hex_word(word));
  });
}

std::optional<Answer> run_fault(Session &, Words &words) {
  if (words.at_end()) return std::nullopt;
  return status_answer(vrxsim_fault_load(std::string(words.rest()).c_str()));
}

std::optional<Answer> run_trigger(Session &session, Words &words) {
  if (!words.at_end()) return std::nullopt;
  return with_board(session, [](uint32_t handle) { return status_answer(vrxsim_trigger(handle)); });
}

std::optional<Answer> run_event(Session &session, Words &words) {
  const std::optional<uint32_t> mask = parse_unsigned(words.next());
  if (!mask || !words.at_end()) return std::nullopt;
  return with_board(
      session, [&](uint32_t handle) { return status_answer(vrxsim_raise_event(handle, *mask)); });
}

std::optional<Answer> run_fps(Session &session, Words &words) {
  const std::optional<uint32_t> rate = parse_unsigned(words.next());
  if (!rate || !words.at_end()) return std::nullopt;
  return with_board(session, [&](uint32_t handle) {
    return status_answer(vrxsim_set_frame_rate(handle, *rate));
  });
}

std::optional<Answer> run_inject(Session &session, Words &words) {
  std::string path(words.rest());
  path.erase(path.find_last_not_of(' ') + 1);
  if (path.empty()) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return Answer::failure("cannot read '" + path + "'");
  const std::vector<char> bytes((std::istreambuf_iterator<char>(file)),
                                std::istreambuf_iterator<char>());
  return with_board(session, [&](uint32_t handle) {
    return status_answer(
        vrxsim_inject_frame(handle, bytes.data(), static_cast<uint32_t>(bytes.size())));
  });
}

constexpr Command kBoardCommands[] = {
    {"board", "get ID | set ID VALUE", run_board},
    {"fault", "TEXT", run_fault},
    {"trigger", "", run_trigger},
    {"event", "MASK", run_event},
    {"fps", "N", run_fps},
    {"inject", "FILE", run_inject},
};

}  // namespace

std::string hex_word(uint32_t word) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", word);
  return text;
}

std::span<const Command> board_commands() { return kBoardCommands; }

}  // namespace vrc_panel
