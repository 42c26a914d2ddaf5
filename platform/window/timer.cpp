// Window timer on a QTimer.
#include "platform/window/timer.h"

#include <QTimer>

#include "platform/window/window.h"

namespace vrc::window {

WindowTimer::WindowTimer(Window *target, int id)
    : m_target(target), m_id(id), m_timer(std::make_unique<QTimer>()) {
  QObject::connect(m_timer.get(), &QTimer::timeout, [this] {
    if (m_target->has_window()) m_target->send(WM_TIMER, static_cast<WPARAM>(m_id));
  });
}

WindowTimer::~WindowTimer() = default;

void WindowTimer::start(uint32_t interval_ms) { m_timer->start(static_cast<int>(interval_ms)); }
void WindowTimer::stop() { m_timer->stop(); }
bool WindowTimer::running() const { return m_timer->isActive(); }

}  // namespace vrc::window
