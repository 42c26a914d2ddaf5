// Posted messages: a mutex-guarded deque and one pending wake-up at a time.
#include "platform/window/posted_messages.h"

#include <algorithm>

namespace vrc::window {
namespace {

bool matches(const Message &m, Window *target, uint32_t first, uint32_t last) {
  if (target && m.target != target) return false;
  if (first == 0 && last == 0) return true;
  return m.message >= first && m.message <= last;
}

}  // namespace

void PostedMessages::post(const Message &message) {
  {
    std::lock_guard lock(m_mutex);
    m_messages.push_back(message);
    m_high_water = std::max(m_high_water, m_messages.size());
  }
  wake();
}

void PostedMessages::post_quit(int exit_code) {
  {
    std::lock_guard lock(m_mutex);
    m_quit = exit_code;
  }
  wake();
}

void PostedMessages::wake() {
  if (m_wake_pending.exchange(true)) return;  // one wake-up covers every message queued before it
  if (m_wake_up) m_wake_up();
}

std::optional<Message> PostedMessages::peek(Window *target, uint32_t first, uint32_t last,
                                            bool remove) {
  std::lock_guard lock(m_mutex);
  auto it = std::find_if(m_messages.begin(), m_messages.end(),
                         [&](const Message &m) { return matches(m, target, first, last); });
  if (it != m_messages.end()) {
    Message found = *it;
    if (remove) m_messages.erase(it);
    return found;
  }
  if (target == nullptr && m_quit) {
    Message quit{nullptr, WM_QUIT, static_cast<WPARAM>(*m_quit), 0};
    if (remove) m_quit.reset();
    return quit;
  }
  return std::nullopt;
}

PostedMessages::Next PostedMessages::take_next(Message &out) {
  std::lock_guard lock(m_mutex);
  if (m_messages.empty()) return m_quit ? Next::Quit : Next::Empty;
  if (m_messages.front().message == WM_QUIT) return Next::Quit;
  out = m_messages.front();
  m_messages.pop_front();
  return Next::Message;
}

bool PostedMessages::quit_waiting() const {
  std::lock_guard lock(m_mutex);
  return m_quit || (!m_messages.empty() && m_messages.front().message == WM_QUIT);
}

void PostedMessages::forget(Window *target) {
  std::lock_guard lock(m_mutex);
  std::erase_if(m_messages, [target](const Message &m) { return m.target == target; });
}

std::size_t PostedMessages::size() const {
  std::lock_guard lock(m_mutex);
  return m_messages.size();
}

std::size_t PostedMessages::high_water() const {
  std::lock_guard lock(m_mutex);
  return m_high_water;
}

void PostedMessages::reset_high_water() {
  std::lock_guard lock(m_mutex);
  m_high_water = m_messages.size();
}

}  // namespace vrc::window
