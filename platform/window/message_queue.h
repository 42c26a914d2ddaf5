// The message queue of one UI thread. Windows belong to the thread that creates them and their
// messages go through that thread's queue. `post` may be called from any thread and wakes the
// thread's Qt event loop, which then dispatches the queued messages in order; `send` dispatches
// at once on the owner thread (from another thread it waits until the owner has dispatched it);
// `peek` looks for a waiting message of one window (or of any) in a range of message numbers,
// optionally taking it out. A post never merges messages: callers that want to coalesce peek
// first, without removing.
//
// As with Win32, a quit is a flag rather than a queued message: `post_quit` sets it, and WM_QUIT
// comes out of a thread-wide peek (any range) only once no posted message is left, after every
// message posted before or after the quit. A loop of its own that peeks the whole thread on the
// owner thread (a modal loop, a playback loop) keeps the windows alive: such a peek first lets
// the window system deliver input, painting and sends from other threads, the part of PeekMessage
// that a Qt program does in its event loop.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <thread>

#include "platform/window/message.h"
#include "platform/window/posted_messages.h"

class QEventLoop;
class QObject;

namespace vrc::window {

class MessageQueue {
 public:
  MessageQueue();
  ~MessageQueue();
  MessageQueue(const MessageQueue &) = delete;
  MessageQueue &operator=(const MessageQueue &) = delete;

  // The calling thread's queue, made on first use.
  static MessageQueue &current();

  void post(Window *target, uint32_t message, WPARAM wparam = 0, LPARAM lparam = 0);
  void post_quit(int exit_code);
  LRESULT send(Window *target, uint32_t message, WPARAM wparam = 0, LPARAM lparam = 0);
  // `target` null matches every message; `first` = `last` = 0 matches every number.
  std::optional<Message> peek(Window *target, uint32_t first, uint32_t last, bool remove);

  // Dispatches what is queued, in order; false when a WM_QUIT is waiting (it stays waiting).
  bool dispatch_pending();
  // Runs the Qt event loop, dispatching, until a WM_QUIT arrives; takes it and returns its code.
  int run();
  // Runs the Qt event loop, dispatching, for `milliseconds` or until a WM_QUIT arrives, which
  // stays waiting; false in that case.
  bool run_for(uint32_t milliseconds);
  static LRESULT dispatch(const Message &message);

  // Drops every message queued for `target` (the window is going away).
  void forget(Window *target);
  std::size_t size() const;
  // The most messages that waited at once, since construction or the last reset.
  std::size_t high_water() const { return m_posted.high_water(); }
  void reset_high_water() { m_posted.reset_high_water(); }
  bool on_owner_thread() const { return std::this_thread::get_id() == m_owner; }

 private:
  // The wake-up of the posted messages: a queued call on the owner thread.
  void wake_owner();
  // Lets Qt deliver its pending events without dispatching this queue's messages.
  void pump_window_system();

  const std::thread::id m_owner;
  PostedMessages m_posted;
  bool m_pumping = false;  // owner thread only: inside pump_window_system,
  int m_pump_level = 0;    // at this Qt event-loop level
  bool m_wake_deferred = false;
  std::unique_ptr<QObject> m_pump;  // lives on the owner thread; receives the wake-ups
  QEventLoop *m_loop = nullptr;     // the loop `run` is in, if any
};

}  // namespace vrc::window
