// SIGINT and SIGTERM through a self-pipe into the UI thread.
#include "tools/vrc-panel/quit_on_signals.h"

#include <fcntl.h>
#include <unistd.h>
#include <QSocketNotifier>
#include <csignal>

namespace vrc_panel {
namespace {

volatile std::sig_atomic_t g_write_end = -1;

extern "C" void note_signal(int) {
  const char byte = 1;
  if (g_write_end >= 0) (void)!write(g_write_end, &byte, 1);
}

constexpr int kSignals[] = {SIGINT, SIGTERM};

}  // namespace

QuitOnSignals::QuitOnSignals(std::function<void()> quit) {
  if (pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
  g_write_end = m_pipe[1];
  m_notifier = std::make_unique<QSocketNotifier>(m_pipe[0], QSocketNotifier::Read);
  QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this, quit = std::move(quit)] {
    char bytes[16];
    while (read(m_pipe[0], bytes, sizeof bytes) > 0) {
    }
    quit();
  });
  struct sigaction action = {};
  action.sa_handler = note_signal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (const int signal_number : kSignals) sigaction(signal_number, &action, nullptr);
}

QuitOnSignals::~QuitOnSignals() {
  if (m_pipe[0] < 0) return;
  for (const int signal_number : kSignals) std::signal(signal_number, SIG_DFL);
  g_write_end = -1;
  m_notifier.reset();
  close(m_pipe[0]);
  close(m_pipe[1]);
}

}  // namespace vrc_panel
