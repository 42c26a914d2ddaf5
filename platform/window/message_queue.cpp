// Message queue: the posted messages of posted_messages.h, woken by one queued Qt call on the
// owner thread.
#include "platform/window/message_queue.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QObject>
#include <QThread>
#include <QTimer>
#include <chrono>
#include <utility>

#include "platform/window/window.h"

namespace vrc::window {

MessageQueue::MessageQueue()
    : m_owner(std::this_thread::get_id()), m_pump(std::make_unique<QObject>()) {
  m_posted.set_wake_up([this] { wake_owner(); });
}

MessageQueue::~MessageQueue() = default;

MessageQueue &MessageQueue::current() {
  thread_local MessageQueue queue;
  return queue;
}

void MessageQueue::post(Window *target, uint32_t message, WPARAM wparam, LPARAM lparam) {
  m_posted.post({target, message, wparam, lparam});
}

void MessageQueue::post_quit(int exit_code) { m_posted.post_quit(exit_code); }

void MessageQueue::wake_owner() {
  QMetaObject::invokeMethod(
      m_pump.get(),
      [this] {
        m_posted.wake_delivered();
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

LRESULT MessageQueue::send(Window *target, uint32_t message, WPARAM wparam, LPARAM lparam) {
  const Message m{target, message, wparam, lparam};
  if (on_owner_thread()) return dispatch(m);
  LRESULT result = 0;
  QMetaObject::invokeMethod(
      m_pump.get(), [&] { result = dispatch(m); }, Qt::BlockingQueuedConnection);
  return result;
}

std::optional<Message> MessageQueue::peek(Window *target, uint32_t first, uint32_t last,
                                          bool remove) {
  const bool thread_wide = target == nullptr && on_owner_thread();
  if (thread_wide) pump_window_system();
  std::optional<Message> found = m_posted.peek(target, first, last, remove);
  // A wake-up swallowed by the pump is renewed for what the caller did not take.
  if (thread_wide && std::exchange(m_wake_deferred, false) && m_posted.size() > 0) m_posted.wake();
  return found;
}

bool MessageQueue::dispatch_pending() {
  while (true) {
    Message next;
    switch (m_posted.take_next(next)) {
      case PostedMessages::Next::Message: dispatch(next); break;
      case PostedMessages::Next::Quit:
        if (m_loop) m_loop->quit();
        return false;
      case PostedMessages::Next::Empty: return true;
    }
  }
}

int MessageQueue::run() {
  QEventLoop loop;
  QEventLoop *outer = std::exchange(m_loop, &loop);
  if (dispatch_pending()) loop.exec();
  m_loop = outer;
  std::optional<Message> quit = m_posted.peek(nullptr, WM_QUIT, WM_QUIT, true);
  // Messages that came in meanwhile wait for the next loop.
  if (size() > 0) m_posted.wake();
  return quit ? static_cast<int>(quit->wparam) : 0;
}

bool MessageQueue::run_for(uint32_t milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(std::chrono::milliseconds(milliseconds), &loop, &QEventLoop::quit);
  QEventLoop *outer = std::exchange(m_loop, &loop);
  if (dispatch_pending()) loop.exec();
  m_loop = outer;
  // The quit stays waiting; a wake-up lets an enclosing loop see it too.
  if (!m_posted.quit_waiting()) return true;
  m_posted.wake();
  return false;
}

LRESULT MessageQueue::dispatch(const Message &message) {
  return message.target
             ? message.target->handle_message(message.message, message.wparam, message.lparam)
             : 0;
}

void MessageQueue::forget(Window *target) { m_posted.forget(target); }

std::size_t MessageQueue::size() const { return m_posted.size(); }

}  // namespace vrc::window
