// The Qt-free core of a thread's message queue: the posted messages in order, the quit flag, the
// look-up of a waiting message by window and range (what the coalescing rule needs) and a
// wake-up callback. Posting is allowed from any thread; the wake-up callback runs on the posting
// thread, once for every batch of posts, until the owner says the wake-up was delivered.
#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

#include "platform/window/message.h"

namespace vrc::window {

class PostedMessages {
 public:
  using WakeUp = std::function<void()>;

  // Set before the first post; called outside the queue's lock.
  void set_wake_up(WakeUp wake_up) { m_wake_up = std::move(wake_up); }

  void post(const Message &message);
  void post_quit(int exit_code);
  // Asks for a wake-up unless one is already on its way.
  void wake();
  // The owner took the wake-up; the next post asks for another.
  void wake_delivered() { m_wake_pending.store(false); }

  // The first waiting message of `target` (null: any window) in [first, last] (both 0: every
  // number), optionally taken out. A thread-wide look (target null) that finds no such message
  // finds the quit, if one was posted.
  std::optional<Message> peek(Window *target, uint32_t first, uint32_t last, bool remove);

  enum class Next { Message, Quit, Empty };
  // Takes the front message into `out` unless the queue is empty or a quit is next.
  Next take_next(Message &out);
  bool quit_waiting() const;

  // Drops every message for `target`.
  void forget(Window *target);
  std::size_t size() const;
  // The most messages waiting at once since construction or the last reset.
  std::size_t high_water() const;
  void reset_high_water();

 private:
  mutable std::mutex m_mutex;
  std::deque<Message> m_messages;
  std::optional<int> m_quit;  // exit code of a posted quit not yet taken
  std::size_t m_high_water = 0;
  std::atomic<bool> m_wake_pending{false};
  WakeUp m_wake_up;
};

}  // namespace vrc::window
