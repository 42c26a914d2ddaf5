// Window base: state kept in the widget, messages through the owner thread's queue.
#include "platform/window/window.h"

#include <QWidget>

namespace vrc::window {

Window::Window() : m_queue(MessageQueue::current()) {}

Window::~Window() {
  m_queue.forget(this);
}

Window* Window::child(int) const { return nullptr; }

std::string Window::text() const {
  return m_widget ? m_widget->windowTitle().toStdString() : std::string();
}

void Window::set_text(std::string_view text) {
  if (m_widget) m_widget->setWindowTitle(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

// The window's own states, as set, whatever its parents' are.
bool Window::enabled() const { return m_widget && !m_widget->testAttribute(Qt::WA_ForceDisabled); }

void Window::enable(bool on) {
  if (m_widget) m_widget->setEnabled(on);
}

bool Window::visible() const { return m_widget && !m_widget->isHidden(); }

void Window::show(int command) {
  if (m_widget) m_widget->setVisible(command != SW_HIDE);
}

void Window::post(uint32_t message, WPARAM wparam, LPARAM lparam) { m_queue.post(this, message, wparam, lparam); }

LRESULT Window::send(uint32_t message, WPARAM wparam, LPARAM lparam) {
  return m_queue.send(this, message, wparam, lparam);
}

bool Window::has_queued(uint32_t first, uint32_t last) const {
  return m_queue.peek(const_cast<Window*>(this), first, last, false).has_value();
}

LRESULT Window::handle_message(uint32_t, WPARAM, LPARAM) { return 0; }

void Window::attach(std::unique_ptr<QWidget> widget) { m_widget = std::move(widget); }

void Window::destroy_window() {
  m_widget.reset();
  m_queue.forget(this);
}

}  // namespace vrc::window
