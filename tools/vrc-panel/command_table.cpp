// Finding and running a script command.
#include "tools/vrc-panel/command_table.h"

#include <array>
#include <string>

namespace vrc_panel {
namespace {

const Command *find_command(std::string_view name) {
  for (const auto groups =
           std::array{sheet_commands(), desktop_commands(), control_commands(), board_commands()};
       const std::span<const Command> group : groups)
    for (const Command &command : group)
      if (command.name == name) return &command;
  return nullptr;
}

}  // namespace

Answer run_command(Session &session, std::string_view line) {
  Words words(line);
  const std::string_view name = words.next();
  const Command *command = find_command(name);
  if (!command) return Answer::failure("unknown command '" + std::string(name) + "'");
  if (std::optional<Answer> answer = command->run(session, words)) return *answer;
  std::string usage = "usage: " + std::string(command->name);
  if (!command->synopsis.empty()) usage += ' ' + std::string(command->synopsis);
  return Answer::failure(usage);
}

}  // namespace vrc_panel
