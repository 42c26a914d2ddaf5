// The script's reader thread and the commands' turn on the UI thread.
#include "tools/vrc-panel/script_runner.h"

#include <QMetaObject>
#include <QObject>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

#include "platform/window/message_queue.h"
#include "tools/vrc-panel/script_text.h"

namespace vrc_panel {

// The lines read so far. The reader thread holds its own reference: when input is still open
// as the program ends (a pipe that stays open), the thread is left behind and only this
// outlives the runner.
struct ScriptRunner::Lines {
  std::shared_ptr<std::istream> input;
  std::mutex mutex;
  std::deque<std::string> waiting;
  bool ended = false;           // the input has no more lines
  QObject *receiver = nullptr;  // null once the runner is gone

  std::optional<std::string> take() {
    const std::lock_guard lock(mutex);
    if (waiting.empty()) return std::nullopt;
    std::string line = std::move(waiting.front());
    waiting.pop_front();
    return line;
  }
  bool exhausted() {
    const std::lock_guard lock(mutex);
    return ended && waiting.empty();
  }
  bool has_waiting() {
    const std::lock_guard lock(mutex);
    return !waiting.empty();
  }
};

ScriptRunner::ScriptRunner(Session &session, AnswerSink &sink, std::shared_ptr<std::istream> input)
    : m_session(session),
      m_sink(sink),
      m_lines(std::make_shared<Lines>()),
      m_receiver(std::make_unique<QObject>()) {
  m_lines->input = std::move(input);
  m_lines->receiver = m_receiver.get();
}

ScriptRunner::~ScriptRunner() {
  const std::lock_guard lock(m_lines->mutex);
  m_lines->receiver = nullptr;
}

void ScriptRunner::start() {
  std::thread([lines = m_lines, this] {
    ScriptReader reader(*lines->input);
    for (;;) {
      std::optional<std::string> line = reader.next_command();
      const std::lock_guard lock(lines->mutex);
      if (line)
        lines->waiting.push_back(std::move(*line));
      else
        lines->ended = true;
      if (!lines->receiver) return;
      QMetaObject::invokeMethod(
          lines->receiver, [this] { run_next(); }, Qt::QueuedConnection);
      if (!line) return;
    }
  }).detach();
}

void ScriptRunner::schedule() {
  QMetaObject::invokeMethod(
      m_receiver.get(), [this] { run_next(); }, Qt::QueuedConnection);
}

void ScriptRunner::run_next() {
  if (m_running || m_finished) return;
  if (m_session.quit_requested) {
    // The window was closed or the program interrupted: the rest of the script is not run.
    m_finished = true;
    return;
  }
  m_running = true;
  if (std::optional<std::string> line = m_lines->take())
    m_sink.answer(run_command(m_session, *line));
  m_running = false;
  if (m_session.quit_requested || m_lines->exhausted()) {
    m_finished = true;
    vrc::window::MessageQueue::current().post_quit(0);
  } else if (m_lines->has_waiting()) {
    schedule();
  }
}

}  // namespace vrc_panel
