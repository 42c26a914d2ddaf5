// Runs a script: a reader thread takes command lines from the script's input as they come, and
// the UI thread runs them one at a time from its event loop, printing one answer line each, so
// that the message loop turns between commands and while the script waits for input. At the
// end of the input, or after `quit`, the runner posts a quit to the UI thread's message queue.
#pragma once

#include <istream>
#include <memory>
#include <thread>

#include "tools/vrc-panel/answer_lines.h"
#include "tools/vrc-panel/command_table.h"

class QObject;

namespace vrc_panel {

class ScriptRunner {
 public:
  // `input` is read on the reader thread; it must outlive the runner unless owned by it.
  ScriptRunner(Session &session, AnswerSink &sink, std::shared_ptr<std::istream> input);
  ~ScriptRunner();
  ScriptRunner(const ScriptRunner &) = delete;
  ScriptRunner &operator=(const ScriptRunner &) = delete;

  void start();

 private:
  struct Lines;  // shared with the reader thread
  void run_next();
  void schedule();

  Session &m_session;
  AnswerSink &m_sink;
  std::shared_ptr<Lines> m_lines;
  std::unique_ptr<QObject> m_receiver;  // on the UI thread; runs the queued commands
  bool m_running = false;               // inside a command (a nested loop must not start another)
  bool m_finished = false;
};

}  // namespace vrc_panel
