// The Qt-free core of the message queue across threads: posts from many threads, one wake-up per
// batch, and the simulator's event thread feeding a consumer under the coalescing rule.
#include <atomic>
#include <thread>
#include <vector>

#include "platform/window/posted_messages.h"
#include "sim_support.h"

namespace vrxsim_test {
namespace {

using vrc::window::Message;
using vrc::window::PostedMessages;
using vrc::window::Window;
using vrc::window::WM_QUIT;
using vrc::window::WM_USER;

// Stand-ins for windows: only their addresses matter to the queue.
Window *window_at(int index) {
  return reinterpret_cast<Window *>(static_cast<uintptr_t>(0x1000 + 16 * index));
}

TEST(PostedMessages, KeepsEachThreadsOrderWhenManyThreadsPost) {
  PostedMessages queue;
  constexpr int kThreads = 4, kEach = 5000;
  std::vector<std::thread> posters;
  for (int t = 0; t < kThreads; ++t)
    posters.emplace_back([&queue, t] {
      for (int i = 0; i < kEach; ++i)
        queue.post({window_at(t), WM_USER + 1, static_cast<uintptr_t>(i), 0});
    });
  std::vector<int> next(kThreads, 0);
  int taken = 0;
  while (taken < kThreads * kEach) {
    Message m;
    if (queue.take_next(m) != PostedMessages::Next::Message) {
      std::this_thread::yield();
      continue;
    }
    const int t = static_cast<int>((reinterpret_cast<uintptr_t>(m.target) - 0x1000) / 16);
    ASSERT_EQ(static_cast<int>(m.wparam), next[static_cast<std::size_t>(t)]++);
    ++taken;
  }
  for (std::thread &poster : posters) poster.join();
  EXPECT_EQ(queue.size(), 0u);
}

TEST(PostedMessages, AsksForOneWakeUpPerBatch) {
  PostedMessages queue;
  std::atomic<int> wake_ups{0};
  queue.set_wake_up([&] { wake_ups.fetch_add(1); });
  std::vector<std::thread> posters;
  for (int t = 0; t < 4; ++t)
    posters.emplace_back([&queue] {
      for (int i = 0; i < 1000; ++i) queue.post({window_at(0), WM_USER, 0, 0});
    });
  for (std::thread &poster : posters) poster.join();
  EXPECT_EQ(wake_ups.load(), 1);
  queue.wake_delivered();
  queue.post({window_at(0), WM_USER, 0, 0});
  EXPECT_EQ(wake_ups.load(), 2);
  EXPECT_EQ(queue.high_water(), 4001u);
}

TEST(PostedMessages, PeeksByWindowAndRangeAndFindsTheQuitLast) {
  PostedMessages queue;
  queue.post({window_at(1), WM_USER + 250, 1, 0});
  queue.post({window_at(2), WM_USER + 12, 2, 0});
  queue.post_quit(7);
  EXPECT_FALSE(queue.peek(window_at(1), WM_USER, WM_USER + 200, false));
  ASSERT_TRUE(queue.peek(window_at(2), WM_USER, WM_USER + 200, true));
  EXPECT_EQ(queue.size(), 1u);
  Message m;
  EXPECT_EQ(queue.take_next(m), PostedMessages::Next::Message);
  EXPECT_EQ(m.wparam, 1u);
  EXPECT_TRUE(queue.quit_waiting());
  EXPECT_EQ(queue.take_next(m), PostedMessages::Next::Quit);
  std::optional<Message> quit = queue.peek(nullptr, 0, 0, true);
  ASSERT_TRUE(quit);
  EXPECT_EQ(quit->message, WM_QUIT);
  EXPECT_EQ(quit->wparam, 7u);
  EXPECT_EQ(queue.take_next(m), PostedMessages::Next::Empty);
}

// The panel's pattern without a window system: the event thread counts buffers and posts one
// paint at a time; the consumer drops stale buffers and hands every buffer back.
struct Painter {
  static void callback(uint32_t, uint32_t mask, void *context) {
    auto *self = static_cast<Painter *>(context);
    if (!(mask & VRX_EVENT_BUFFER_READY)) return;
    self->pending.fetch_add(1);
    self->ready.fetch_add(1);
    int expected = 1;
    if (!self->semaphore.compare_exchange_strong(expected, 0)) return;
    if (self->queue.peek(self->target, WM_USER, WM_USER + 200, false))
      self->semaphore.store(1);
    else
      self->queue.post({self->target, WM_USER + 12, 0, 0});
  }

  // One paint message: stale buffers released, the newest got and released.
  void paint(uint32_t handle) {
    while (pending.load() > 1 && VRX_Acquire(handle, VRX_ACQ_BUFFER_RELEASE, nullptr) == VRX_OK) {
      pending.fetch_sub(1);
      ++stale;
    }
    pending.fetch_sub(1);
    VRX_BUFFER_RECORD record{};
    if (VRX_Acquire(handle, VRX_ACQ_BUFFER_GET, &record) == VRX_OK) ++painted;
    semaphore.store(1);
    VRX_Acquire(handle, VRX_ACQ_BUFFER_RELEASE, nullptr);
  }

  PostedMessages queue;
  Window *target = window_at(3);
  std::atomic<int> pending{0}, ready{0}, semaphore{1};
  int painted = 0, stale = 0;
};

TEST_F(SimBoard, EventThreadPostsOnePaintAtATimeAtHighRate) {
  open();
  uint32_t width = 64, height = 48;
  set(vrx::ParamSrcXLength, width);
  set(vrx::ParamSrcYLength, height);
  Painter painter;
  HandleGuard guard(m_handle);
  vrxsim_set_frame_rate(m_handle, 5000);
  VRX_ParameterSet(m_handle, vrx::ParamEventContext, &painter);
  ASSERT_EQ(acquire(VRX_ACQ_START, reinterpret_cast<void *>(&Painter::callback)), VRX_OK);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while (std::chrono::steady_clock::now() < end) {
    Message m;
    if (painter.queue.take_next(m) == PostedMessages::Next::Message)
      painter.paint(m_handle);
    else
      std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  ASSERT_EQ(acquire(VRX_ACQ_ABORT), VRX_OK);
  Message m;
  while (painter.queue.take_next(m) == PostedMessages::Next::Message) painter.paint(m_handle);
  EXPECT_LE(painter.queue.high_water(), 1u);
  EXPECT_GT(painter.painted, 100);
  EXPECT_GT(painter.ready.load(), painter.painted);
  EXPECT_EQ(painter.semaphore.load(), 1);
}

}  // namespace
}  // namespace vrxsim_test
