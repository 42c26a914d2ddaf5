// The event semaphore between the SDK's event thread and the sheet's thread: a count of at most
// one. The event callback takes it without waiting before it posts a paint message; PaintBuffer
// gives it back. So at most one paint message is outstanding at any time.
#pragma once

#include <atomic>

namespace vrc::control {

class EventSemaphore {
 public:
  explicit EventSemaphore(int initial) : m_count(initial) {}

  // Takes the count without waiting; false when it was already taken.
  bool try_take() {
    int expected = 1;
    return m_count.compare_exchange_strong(expected, 0, std::memory_order_acq_rel);
  }
  // Gives the count back; false (and nothing changes) when it is already at its maximum.
  bool release() {
    int expected = 0;
    return m_count.compare_exchange_strong(expected, 1, std::memory_order_acq_rel);
  }
  int count() const { return m_count.load(std::memory_order_acquire); }

 private:
  std::atomic<int> m_count;
};

}  // namespace vrc::control
