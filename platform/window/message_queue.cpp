// Message queue: a mutex-guarded deque plus one queued Qt call to wake the owner thread.
#include "platform/window/message_queue.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QObject>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/window/window.h"

namespace vrc::window {
namespace {

bool matches(const Message& m, Window* target, uint32_t first, uint32_t last) {
  if (target && m.target != target) return false;
  if (first == 0 && last == 0) return true;
  return m.message >= first && m.message <= last;
}

}  // namespace

MessageQueue::MessageQueue() : m_owner(std::this_thread::get_id()), m_pump(std::make_unique<QObject>()) {}

MessageQueue::~MessageQueue() = default;

MessageQueue& MessageQueue::current() {
  thread_local MessageQueue queue;
  return queue;
}

void MessageQueue::post(Window* target, uint32_t message, WPARAM wparam, LPARAM lparam) {
  {
    std::lock_guard lock(m_mutex);
    m_messages.push_back({target, message, wparam, lparam});
  }
  wake();
}

void MessageQueue::post_quit(int exit_code) {
  {
    std::lock_guard lock(m_mutex);
    m_quit = exit_code;
  }
  wake();
}

void MessageQueue::wake() {
  if (m_wake_pending.exchange(true)) return;  // one wake-up covers every message queued before it
  QMetaObject::invokeMethod(
      m_pump.get(),
      [this] {
        m_wake_pending = false;
        // The peeking loop takes the messages itself; a modal loop opened meanwhile (a message
        // box, run) dispatches them as usual.
        if (m_pumping && QThread::currentThread()->loopLevel() == m_pump_level)
          m_wake_deferred = true;
        else
          dispatch_pending();
      },
      Qt::QueuedConnection);
}

void MessageQueue::pump_window_system() {
  if (!QCoreApplication::instance()) return;
  const bool outer = std::exchange(m_pumping, true);
  const int outer_level = std::exchange(m_pump_level, QThread::currentThread()->loopLevel());
  QCoreApplication::processEvents();
  m_pumping = outer;
  m_pump_level = outer_level;
}

LRESULT MessageQueue::send(Window* target, uint32_t message, WPARAM wparam, LPARAM lparam) {
  const Message m{target, message, wparam, lparam};
  if (on_owner_thread()) return dispatch(m);
  LRESULT result = 0;
  QMetaObject::invokeMethod(m_pump.get(), [&] { result = dispatch(m); }, Qt::BlockingQueuedConnection);
  return result;
}

std::optional<Message> MessageQueue::peek(Window* target, uint32_t first, uint32_t last, bool remove) {
  const bool thread_wide = target == nullptr && on_owner_thread();
  if (thread_wide) pump_window_system();
  std::optional<Message> found;
  bool left_waiting = false;
  {
    std::lock_guard lock(m_mutex);
    auto it = std::find_if(m_messages.begin(), m_messages.end(),
                           [&](const Message& m) { return matches(m, target, first, last); });
    if (it != m_messages.end()) {
      found = *it;
      if (remove) m_messages.erase(it);
    } else if (target == nullptr && m_quit) {
      found = Message{nullptr, WM_QUIT, static_cast<WPARAM>(*m_quit), 0};
      if (remove) m_quit.reset();
    }
    left_waiting = !m_messages.empty();
  }
  // A wake-up swallowed by the pump is renewed for what the caller did not take.
  if (thread_wide && std::exchange(m_wake_deferred, false) && left_waiting) wake();
  return found;
}

bool MessageQueue::dispatch_pending() {
  while (true) {
    Message next;
    {
      std::lock_guard lock(m_mutex);
      if (m_messages.empty() || m_messages.front().message == WM_QUIT) {
        const bool quit = m_quit || !m_messages.empty();
        if (quit && m_loop) m_loop->quit();
        return !quit;
      }
      next = m_messages.front();
      m_messages.pop_front();
    }
    dispatch(next);
  }
}

int MessageQueue::run() {
  QEventLoop loop;
  QEventLoop* outer = std::exchange(m_loop, &loop);
  if (dispatch_pending()) loop.exec();
  m_loop = outer;
  std::optional<Message> quit = peek(nullptr, WM_QUIT, WM_QUIT, true);
  // Messages that came in meanwhile wait for the next loop.
  if (size() > 0) wake();
  return quit ? static_cast<int>(quit->wparam) : 0;
}

bool MessageQueue::run_for(uint32_t milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(std::chrono::milliseconds(milliseconds), &loop, &QEventLoop::quit);
  QEventLoop* outer = std::exchange(m_loop, &loop);
  if (dispatch_pending()) loop.exec();
  m_loop = outer;
  // The quit stays waiting; a wake-up lets an enclosing loop see it too.
  if (!quit_waiting()) return true;
  wake();
  return false;
}

bool MessageQueue::quit_waiting() const {
  std::lock_guard lock(m_mutex);
  return m_quit || (!m_messages.empty() && m_messages.front().message == WM_QUIT);
}

LRESULT MessageQueue::dispatch(const Message& message) {
  return message.target ? message.target->handle_message(message.message, message.wparam, message.lparam) : 0;
}

void MessageQueue::forget(Window* target) {
  std::lock_guard lock(m_mutex);
  std::erase_if(m_messages, [target](const Message& m) { return m.target == target; });
}

std::size_t MessageQueue::size() const {
  std::lock_guard lock(m_mutex);
  return m_messages.size();
}

}  // namespace vrc::window
