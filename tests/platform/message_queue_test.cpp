// The message queue: order, range peek, the coalescing rule, posts from other threads (also
// under load), send on and across threads, quit.
#include <atomic>

#include "platform/window/message_queue.h"
#include "qt_environment.h"

namespace window_test {
namespace {

using namespace vrc::window;

// The panel's rule: post only when nothing in WM_USER..WM_USER+200 waits for the window.
bool post_coalesced(Window& window, uint32_t message, WPARAM wparam = 0) {
  if (window.has_queued(WM_USER, WM_USER + 200)) return false;
  window.post(message, wparam);
  return true;
}

class Queue : public ::testing::Test {
 protected:
  void SetUp() override {
    queue().dispatch_pending();
  }
  static MessageQueue& queue() { return MessageQueue::current(); }
};

TEST_F(Queue, DispatchesInPostingOrder) {
  RecordingWindow a, b;
  a.post(WM_USER + 1, 1);
  b.post(WM_USER + 2, 2);
  a.post(WM_USER + 3, 3);
  EXPECT_EQ(queue().size(), 3u);
  EXPECT_TRUE(queue().dispatch_pending());
  ASSERT_EQ(a.received.size(), 2u);
  EXPECT_EQ(a.received[0].message, WM_USER + 1);
  EXPECT_EQ(a.received[1].message, WM_USER + 3);
  ASSERT_EQ(b.received.size(), 1u);
  EXPECT_EQ(queue().size(), 0u);
}

TEST_F(Queue, PeekLooksAtOneWindowAndOneRange) {
  RecordingWindow a, b;
  a.post(WM_USER + 250, 1);
  b.post(WM_USER + 10, 2);
  EXPECT_FALSE(a.has_queued(WM_USER, WM_USER + 200));
  EXPECT_TRUE(b.has_queued(WM_USER, WM_USER + 200));
  std::optional<Message> any = queue().peek(nullptr, 0, 0, false);
  ASSERT_TRUE(any);
  EXPECT_EQ(any->target, &a);
  std::optional<Message> taken = queue().peek(&b, WM_USER, WM_USER + 200, true);
  ASSERT_TRUE(taken);
  EXPECT_EQ(taken->wparam, 2u);
  EXPECT_EQ(queue().size(), 1u);
  EXPECT_FALSE(queue().peek(&b, 0, 0, false));
  queue().dispatch_pending();
  EXPECT_TRUE(b.received.empty());  // the peeked-out message is the taker's
}

TEST_F(Queue, CoalescingKeepsOneMessageWaitingPerWindow) {
  RecordingWindow window, other;
  int posted = 0;
  for (int i = 0; i < 100; ++i) posted += post_coalesced(window, WM_USER + 12, static_cast<WPARAM>(i));
  EXPECT_EQ(posted, 1);
  EXPECT_TRUE(post_coalesced(other, WM_USER + 12));  // another window has its own
  window.post(WM_USER + 500);                         // outside the range nothing is merged
  queue().dispatch_pending();
  ASSERT_EQ(window.received.size(), 2u);
  EXPECT_EQ(window.received[0].wparam, 0u);
  EXPECT_TRUE(post_coalesced(window, WM_USER + 12));  // once dispatched, a post goes through
  queue().dispatch_pending();
}

TEST_F(Queue, PostsFromOtherThreadsWakeTheLoopInOrder) {
  RecordingWindow window;
  constexpr int kPerThread = 2000;
  std::vector<std::thread> posters;
  for (int t = 0; t < 2; ++t)
    posters.emplace_back([&window, t] {
      for (int i = 0; i < kPerThread; ++i) window.post(WM_USER + 20 + static_cast<uint32_t>(t), static_cast<WPARAM>(i));
    });
  for (std::thread& poster : posters) poster.join();
  ASSERT_TRUE(pump_until([&] { return window.received.size() == 2 * kPerThread; }));
  WPARAM next[2] = {0, 0};
  for (const Received& r : window.received) {
    const uint32_t t = r.message - (WM_USER + 20);
    EXPECT_EQ(r.wparam, next[t]++);  // each thread's messages keep their order
    EXPECT_EQ(r.thread, std::this_thread::get_id());
  }
}

TEST_F(Queue, CoalescedPostsUnderLoadNeverPileUp) {
  RecordingWindow window;
  std::atomic<bool> stop{false};
  std::atomic<int> posted{0};
  std::size_t most_waiting = 0;
  std::thread producer([&] {
    while (!stop) {
      if (post_coalesced(window, WM_USER + 12)) ++posted;
      most_waiting = std::max(most_waiting, window.queue().size());
    }
  });
  ASSERT_TRUE(pump_until([&] { return window.received.size() >= 500; }));
  stop = true;
  producer.join();
  queue().dispatch_pending();
  EXPECT_EQ(window.received.size(), static_cast<std::size_t>(posted.load()));
  EXPECT_EQ(most_waiting, 1u);
}

TEST_F(Queue, SendDispatchesAtOnceOnTheOwnerThread) {
  RecordingWindow window;
  EXPECT_EQ(window.send(WM_USER + 6, 21), 42);
  EXPECT_EQ(window.received.size(), 1u);
  EXPECT_EQ(queue().size(), 0u);
}

TEST_F(Queue, SendFromAnotherThreadRunsOnTheOwnerAndWaits) {
  RecordingWindow window;
  std::atomic<LRESULT> result{0};
  std::atomic<bool> done{false};
  std::thread sender([&] {
    result = window.send(WM_USER + 7, 5);
    done = true;
  });
  ASSERT_TRUE(pump_until([&] { return done.load(); }));
  sender.join();
  EXPECT_EQ(result.load(), 10);
  ASSERT_EQ(window.received.size(), 1u);
  EXPECT_EQ(window.received[0].thread, std::this_thread::get_id());
}

TEST_F(Queue, QuitComesOutAfterEveryPostedMessage) {
  RecordingWindow window;
  window.post(WM_USER + 1);
  queue().post_quit(7);
  window.post(WM_USER + 2);
  EXPECT_FALSE(window.has_queued(WM_QUIT, WM_QUIT));  // a window's own peek never sees it
  std::optional<Message> first = queue().peek(nullptr, 0, 0, false);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->message, WM_USER + 1);
  // A range that holds no posted message still yields the quit.
  std::optional<Message> quit = queue().peek(nullptr, WM_USER + 100, WM_USER + 200, false);
  ASSERT_TRUE(quit);
  EXPECT_EQ(quit->message, WM_QUIT);
  EXPECT_EQ(quit->target, nullptr);
  EXPECT_EQ(queue().run(), 7);
  ASSERT_EQ(window.received.size(), 2u);
  EXPECT_FALSE(queue().peek(nullptr, 0, 0, false));  // run took the quit
}

TEST_F(Queue, LoopOfItsOwnSeesQuitOnlyWhenTheQueueIsEmpty) {
  RecordingWindow window;
  queue().post_quit(2);
  window.post(WM_USER + 3);
  EXPECT_FALSE(queue().dispatch_pending());  // dispatches, then reports the quit
  EXPECT_EQ(window.received.size(), 1u);
  std::optional<Message> quit = queue().peek(nullptr, 0, 0, true);
  ASSERT_TRUE(quit);
  EXPECT_EQ(quit->message, WM_QUIT);
  EXPECT_EQ(quit->wparam, 2u);
  EXPECT_TRUE(queue().dispatch_pending());
}

// On a send, runs a modal loop for a moment, as a message box does, while another thread posts
// to its partner.
class ModalWindow : public RecordingWindow {
 public:
  RecordingWindow partner;
  std::size_t partner_saw_in_modal_loop = 0;
  LRESULT handle_message(uint32_t message, WPARAM wparam, LPARAM lparam) override {
    std::thread poster([this] {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      partner.post(WM_USER + 9);
    });
    queue().run_for(100);
    poster.join();
    partner_saw_in_modal_loop = partner.received.size();
    return RecordingWindow::handle_message(message, wparam, lparam);
  }
};

TEST_F(Queue, ThreadWidePeekDeliversSendsFromOtherThreads) {
  ModalWindow window;
  std::atomic<bool> done{false};
  std::thread sender([&] {
    window.send(WM_USER + 7, 1);
    done = true;
  });
  // A loop of its own, peeking and sleeping, as a playback loop does.
  for (int i = 0; i < 5000 && !done; ++i) {
    if (std::optional<Message> m = queue().peek(nullptr, 0, 0, true)) MessageQueue::dispatch(*m);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  sender.join();
  EXPECT_TRUE(done);
  ASSERT_EQ(window.received.size(), 1u);
  EXPECT_EQ(window.received[0].thread, std::this_thread::get_id());
  EXPECT_EQ(window.partner_saw_in_modal_loop, 1u);
}

TEST_F(Queue, RunForDispatchesForAWhileAndStopsAtAQuit) {
  RecordingWindow window;
  std::thread poster([&] { window.post(WM_USER + 4); });
  poster.join();
  EXPECT_TRUE(queue().run_for(20));
  EXPECT_EQ(window.received.size(), 1u);
  queue().post_quit(0);
  EXPECT_FALSE(queue().run_for(5000));
  EXPECT_TRUE(queue().peek(nullptr, WM_QUIT, WM_QUIT, true));
}

// A window whose message runs a loop of its own for a while.
class NestedLoopWindow : public RecordingWindow {
 public:
  bool inner_saw_quit = false;
  LRESULT handle_message(uint32_t message, WPARAM wparam, LPARAM lparam) override {
    inner_saw_quit = !queue().run_for(5000);
    return RecordingWindow::handle_message(message, wparam, lparam);
  }
};

TEST_F(Queue, QuitSeenByANestedLoopAlsoEndsTheOuterRun) {
  NestedLoopWindow window;
  // The nested loop starts from a send, as from a click, not from a posted message.
  std::thread sender([&] { window.send(WM_USER + 5); });
  std::thread quitter([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    window.queue().post_quit(4);
  });
  EXPECT_EQ(queue().run(), 4);
  sender.join();
  quitter.join();
  EXPECT_TRUE(window.inner_saw_quit);
}

TEST_F(Queue, QuitPostedFromAnotherThreadEndsRun) {
  RecordingWindow window;
  std::thread poster([&] {
    for (int i = 0; i < 50; ++i) window.post(WM_USER + 3, static_cast<WPARAM>(i));
    window.queue().post_quit(3);
  });
  EXPECT_EQ(queue().run(), 3);
  poster.join();
  EXPECT_EQ(window.received.size(), 50u);
}

TEST_F(Queue, MessagesOfADestroyedWindowAreDropped) {
  auto doomed = std::make_unique<RecordingWindow>();
  RecordingWindow survivor;
  doomed->post(WM_USER + 1);
  survivor.post(WM_USER + 1);
  doomed.reset();
  EXPECT_EQ(queue().size(), 1u);
  queue().dispatch_pending();
  EXPECT_EQ(survivor.received.size(), 1u);
}

}  // namespace
}  // namespace window_test
