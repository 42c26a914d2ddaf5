// The message queue of one UI thread. Windows belong to the thread that creates them and their
// messages go through that thread's queue. `post` may be called from any thread and wakes the
// thread's Qt event loop, which then dispatches the queued messages in order; `send` dispatches
// at once on the owner thread (from another thread it waits until the owner has dispatched it);
// `peek` looks for a waiting message of one window (or of any) in a range of message numbers,
// optionally taking it out. A post never merges messages: callers that want to coalesce peek
// first, without removing. WM_QUIT stops dispatching and stays queued until `run` takes it.
#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/window/message.h"

class QEventLoop;
class QObject;

namespace vrc::window {

class MessageQueue {
 public:
  MessageQueue();
  ~MessageQueue();
  MessageQueue(const MessageQueue&) = delete;
  MessageQueue& operator=(const MessageQueue&) = delete;

  // The calling thread's queue, made on first use.
  static MessageQueue& current();

  void post(Window* target, uint32_t message, WPARAM wparam = 0, LPARAM lparam = 0);
  void post_quit(int exit_code);
  LRESULT send(Window* target, uint32_t message, WPARAM wparam = 0, LPARAM lparam = 0);
  // `target` null matches every message; `first` = `last` = 0 matches every number.
  std::optional<Message> peek(Window* target, uint32_t first, uint32_t last, bool remove);

  // Dispatches what is queued, in order, up to a WM_QUIT; false when a WM_QUIT is waiting.
  bool dispatch_pending();
  // Runs the Qt event loop, dispatching, until a WM_QUIT arrives; takes it and returns its code.
  int run();
  static LRESULT dispatch(const Message& message);

  // Drops every message queued for `target` (the window is going away).
  void forget(Window* target);
  std::size_t size() const;
  bool on_owner_thread() const { return std::this_thread::get_id() == m_owner; }

 private:
  void wake();

  const std::thread::id m_owner;
  mutable std::mutex m_mutex;
  std::deque<Message> m_messages;
  std::atomic<bool> m_wake_pending{false};
  std::unique_ptr<QObject> m_pump;  // lives on the owner thread; receives the wake-ups
  QEventLoop* m_loop = nullptr;     // the loop `run` is in, if any
};

}  // namespace vrc::window
