// Offscreen Qt for the windowing layer's tests: one QApplication for the whole program, made
// before the first test, plus a window that records the messages it is given.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <thread>
#include <vector>

#include "platform/window/window.h"

namespace window_test {

// The program's QApplication, made by the test environment before the first test and
// destroyed after the last, while the rest of Qt still exists.
inline QApplication*& application_instance() {
  static QApplication* instance = nullptr;
  return instance;
}
inline QApplication& application() { return *application_instance(); }

// Runs the Qt event loop (and so the message queue) until `done` or a time-out.
template <typename Predicate>
bool pump_until(Predicate done, int timeout_ms = 5000) {
  for (int waited = 0; !done(); waited += 1) {
    if (waited > timeout_ms) return false;
    QApplication::processEvents(QEventLoop::AllEvents, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

struct Received {
  uint32_t message;
  vrc::window::WPARAM wparam;
  vrc::window::LPARAM lparam;
  std::thread::id thread;
};

class RecordingWindow : public vrc::window::Window {
 public:
  vrc::window::LRESULT handle_message(uint32_t message, vrc::window::WPARAM wparam,
                                      vrc::window::LPARAM lparam) override {
    received.push_back({message, wparam, lparam, std::this_thread::get_id()});
    return static_cast<vrc::window::LRESULT>(wparam) * 2;
  }
  std::vector<Received> received;
};

}  // namespace window_test
