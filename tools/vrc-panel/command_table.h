// The script commands of vrc-panel: a table of (name, argument synopsis, handler). A handler
// takes the words after the command name and answers, or answers nothing when its arguments
// do not fit, which the table turns into an error line with the synopsis. Handlers are grouped
// by what they act on: the sheet and its controls, the desktop services and the program, the
// control object, and the board.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "tools/vrc-panel/answer_lines.h"
#include "tools/vrc-panel/script_text.h"

namespace vrc_panel {

class MainWindow;
class PanelHost;
class ScriptDesktop;

// What the commands act on, and what they remember between commands.
struct Session {
  PanelHost &panel;
  MainWindow &main_window;
  ScriptDesktop &desktop;
  bool quit_requested = false;
  std::size_t boxes_reported = 0;    // message boxes already listed by `boxes`
  std::size_t dialogs_reported = 0;  // file dialogs already listed by `dialogs`
};

using CommandHandler = std::optional<Answer> (*)(Session &session, Words &arguments);

struct Command {
  std::string_view name;
  std::string_view synopsis;  // the arguments, as the usage line shows them
  CommandHandler run;
};

std::span<const Command> sheet_commands();
std::span<const Command> desktop_commands();
std::span<const Command> control_commands();
std::span<const Command> board_commands();

// Runs one script line and gives its answer.
Answer run_command(Session &session, std::string_view line);

}  // namespace vrc_panel
