// Script commands on the desktop services and the program: answers for the next message box
// or file dialog, what was shown, the status bar, screenshots, waiting and quitting.
#include <string>

#include "platform/window/message_queue.h"
#include "tools/vrc-panel/command_table.h"
#include "tools/vrc-panel/main_window.h"
#include "tools/vrc-panel/panel_json.h"
#include "tools/vrc-panel/script_desktop.h"

namespace vrc_panel {
namespace {

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// answer-file PATH [FILTER_INDEX]: the path is the rest of the line, in quotes when it ends
// in a number of its own.
std::optional<Answer> run_answer_file(Session &session, Words &words) {
  std::string_view rest = trimmed(words.rest());
  if (rest.empty()) return std::nullopt;
  if (rest == "cancel") {
    session.desktop.answer_file_cancel();
    return Answer::success();
  }
  int filter_index = 0;
  const std::size_t last_blank = rest.find_last_of(' ');
  if (last_blank != std::string_view::npos) {
    if (const std::optional<int32_t> index = parse_signed(rest.substr(last_blank + 1))) {
      if (*index < 1)
        return Answer::failure("filter index " + std::to_string(*index) +
                               " out of range: they start at 1");
      filter_index = *index;
      rest = trimmed(rest.substr(0, last_blank));
    }
  }
  session.desktop.answer_file(parse_quoted(rest).value_or(std::string(rest)), filter_index);
  return Answer::success();
}

std::optional<Answer> run_answer_box(Session &session, Words &words) {
  const std::string_view name = words.next();
  if (!words.at_end()) return std::nullopt;
  if (name == "ok")
    session.desktop.answer_box(vrc::window::IDOK);
  else if (name == "cancel")
    session.desktop.answer_box(vrc::window::IDCANCEL);
  else if (name == "yes")
    session.desktop.answer_box(vrc::window::IDYES);
  else if (name == "no")
    session.desktop.answer_box(vrc::window::IDNO);
  else
    return std::nullopt;
  return Answer::success();
}

std::optional<Answer> run_boxes(Session &session, Words &words) {
  if (!words.at_end()) return std::nullopt;
  const auto &boxes = session.desktop.boxes();
  const std::size_t first = session.boxes_reported;
  session.boxes_reported = boxes.size();
  return Answer::success(boxes_json(std::span(boxes).subspan(first)));
}

std::optional<Answer> run_dialogs(Session &session, Words &words) {
  if (!words.at_end()) return std::nullopt;
  const auto &requests = session.desktop.file_requests();
  const auto &answers = session.desktop.file_answers();
  const std::size_t first = session.dialogs_reported;
  session.dialogs_reported = requests.size();
  return Answer::success(
      dialogs_json(std::span(requests).subspan(first), std::span(answers).subspan(first)));
}

std::optional<Answer> run_status(Session &session, Words &words) {
  if (!words.at_end()) return std::nullopt;
  return Answer::success(session.main_window.message());
}

std::optional<Answer> run_screenshot(Session &session, Words &words) {
  const std::string path(trimmed(words.rest()));
  if (path.empty()) return std::nullopt;
  if (!session.main_window.save_screenshot(path))
    return Answer::failure("cannot write '" + path + "'");
  return Answer::success();
}

std::optional<Answer> run_wait(Session &, Words &words) {
  const std::optional<int32_t> milliseconds = parse_signed(words.next());
  if (!milliseconds || *milliseconds < 0 || !words.at_end()) return std::nullopt;
  vrc::window::MessageQueue::current().run_for(static_cast<uint32_t>(*milliseconds));
  return Answer::success();
}

std::optional<Answer> run_quit(Session &session, Words &words) {
  if (!words.at_end()) return std::nullopt;
  session.quit_requested = true;
  return Answer::success();
}

constexpr Command kDesktopCommands[] = {
    {"answer-file", "PATH [FILTER_INDEX] | cancel", run_answer_file},
    {"answer-box", "ok|cancel|yes|no", run_answer_box},
    {"boxes", "", run_boxes},
    {"dialogs", "", run_dialogs},
    {"status", "", run_status},
    {"screenshot", "FILE.png", run_screenshot},
    {"wait", "MS", run_wait},
    {"quit", "", run_quit},
};

}  // namespace

std::span<const Command> desktop_commands() { return kDesktopCommands; }

}  // namespace vrc_panel
