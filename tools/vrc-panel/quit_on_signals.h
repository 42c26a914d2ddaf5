// Ends the program as closing its window would when it is interrupted (SIGINT, SIGTERM): the
// signal handler only writes a byte into a pipe, and the UI thread, woken by it, asks its
// message loop to quit, so that the panel closes and stops acquisition before the program ends.
#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace vrc_panel {

class QuitOnSignals {
 public:
  explicit QuitOnSignals(std::function<void()> quit);
  ~QuitOnSignals();
  QuitOnSignals(const QuitOnSignals &) = delete;
  QuitOnSignals &operator=(const QuitOnSignals &) = delete;

 private:
  int m_pipe[2] = {-1, -1};
  std::unique_ptr<QSocketNotifier> m_notifier;
};

}  // namespace vrc_panel
