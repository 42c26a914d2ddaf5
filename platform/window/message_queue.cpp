// Message queue: a mutex-guarded deque plus one queued Qt call to wake the owner thread.
#include "platform/window/message_queue.h"

#include <QEventLoop>
#include <QMetaObject>
#include <QObject>
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

void MessageQueue::post_quit(int exit_code) { post(nullptr, WM_QUIT, static_cast<WPARAM>(exit_code)); }

void MessageQueue::wake() {
  if (m_wake_pending.exchange(true)) return;  // one wake-up covers every message queued before it
  QMetaObject::invokeMethod(
      m_pump.get(),
      [this] {
        m_wake_pending = false;
        dispatch_pending();
      },
      Qt::QueuedConnection);
}

LRESULT MessageQueue::send(Window* target, uint32_t message, WPARAM wparam, LPARAM lparam) {
  const Message m{target, message, wparam, lparam};
  if (on_owner_thread()) return dispatch(m);
  LRESULT result = 0;
  QMetaObject::invokeMethod(m_pump.get(), [&] { result = dispatch(m); }, Qt::BlockingQueuedConnection);
  return result;
}

std::optional<Message> MessageQueue::peek(Window* target, uint32_t first, uint32_t last, bool remove) {
  std::lock_guard lock(m_mutex);
  for (auto it = m_messages.begin(); it != m_messages.end(); ++it) {
    if (!matches(*it, target, first, last)) continue;
    Message found = *it;
    if (remove) m_messages.erase(it);
    return found;
  }
  return std::nullopt;
}

bool MessageQueue::dispatch_pending() {
  while (true) {
    Message next;
    {
      std::lock_guard lock(m_mutex);
      if (m_messages.empty()) return true;
      if (m_messages.front().message == WM_QUIT) {
        if (m_loop) m_loop->quit();
        return false;
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
  // Messages queued behind the quit wait for the next loop.
  if (size() > 0) wake();
  return quit ? static_cast<int>(quit->wparam) : 0;
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
