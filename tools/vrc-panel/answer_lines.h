// The lines vrc-panel prints for a script: one answer per command ("ok", "ok RESULT" or
// "error REASON") and a "callback FUNCTION STATUS MESSAGE" line for every report that reaches
// the application error callback, printed when it happens. Reports can come from the board's
// event thread, so every line is written whole under a lock and flushed at once.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

namespace vrc_panel {

// What a command answers: success with an optional result, or failure with a reason.
struct Answer {
  bool ok = true;
  std::string text;

  static Answer success(std::string result = {}) { return {true, std::move(result)}; }
  static Answer failure(std::string reason) { return {false, std::move(reason)}; }
};

// The line of an answer, without its line break.
std::string answer_line(const Answer &answer);
// The line of a report: the message with one trailing line break dropped and every other line
// break written as \n, so that the report stays on one line.
std::string callback_line(std::string_view function, int status, std::string_view message);

class AnswerSink {
 public:
  explicit AnswerSink(std::FILE *out) : m_out(out) {}
  void answer(const Answer &answer) { write(answer_line(answer)); }
  void callback(std::string_view function, int status, std::string_view message) {
    write(callback_line(function, status, message));
  }

 private:
  void write(const std::string &line);

  std::mutex m_mutex;
  std::FILE *m_out;
};

}  // namespace vrc_panel
