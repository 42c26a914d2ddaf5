// A window timer: while running it sends WM_TIMER (wparam = the timer's id) to its window on the
// window's thread every `interval_ms` milliseconds, as SetTimer does. Stopped when destroyed.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/window/message.h"

class QTimer;

namespace vrc::window {

inline constexpr uint32_t WM_TIMER = 0x0113;

class WindowTimer {
 public:
  WindowTimer(Window *target, int id);
  ~WindowTimer();
  WindowTimer(const WindowTimer &) = delete;
  WindowTimer &operator=(const WindowTimer &) = delete;

  void start(uint32_t interval_ms);
  void stop();
  bool running() const;

 private:
  Window *m_target;
  int m_id;
  std::unique_ptr<QTimer> m_timer;
};

}  // namespace vrc::window
