// Answer, error and callback lines.
#include "tools/vrc-panel/answer_lines.h"

namespace vrc_panel {
namespace {

// Line breaks as the two characters \n (a carriage return before one is dropped with it).
std::string one_line(std::string_view text) {
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (text[i] == '\n')
      line += "\\n";
    else
      line += text[i];
  }
  return line;
}

}  // namespace

std::string answer_line(const Answer &answer) {
  std::string line = answer.ok ? "ok" : "error";
  if (!answer.text.empty()) line += ' ' + one_line(answer.text);
  return line;
}

std::string callback_line(std::string_view function, int status, std::string_view message) {
  if (message.ends_with("\r\n"))
    message.remove_suffix(2);
  else if (message.ends_with('\n'))
    message.remove_suffix(1);
  return "callback " + std::string(function) + ' ' + std::to_string(status) + ' ' +
         one_line(message);
}

void AnswerSink::write(const std::string &line) {
  const std::lock_guard lock(m_mutex);
  std::fputs(line.c_str(), m_out);
  std::fputc('\n', m_out);
  std::fflush(m_out);
}

}  // namespace vrc_panel
