// The simulator's event thread driving a window the way the panel does: the callback counts
// buffers and posts one paint message at a time under the coalescing rule; the window, on the
// UI thread, drops stale buffers, paints the newest into a display surface and hands it back.
#include <atomic>

#include "platform/board/sim/vrxsim.h"
#include "platform/board/vrx_params.h"
#include "platform/window/display_surface.h"
#include "qt_environment.h"

namespace window_test {
namespace {

using namespace vrc::window;

constexpr uint32_t kPaint = WM_USER + 12;

class PaintingWindow : public Window {
 public:
  PaintingWindow(uint32_t handle, uint32_t display) : m_handle(handle), m_display(display) {}

  // Event thread.
  static void callback(uint32_t, uint32_t mask, void* context) {
    auto* self = static_cast<PaintingWindow*>(context);
    if (!(mask & VRX_EVENT_BUFFER_READY)) return;
    self->pending.fetch_add(1);
    if (!self->has_queued(WM_USER, WM_USER + 200)) self->post(kPaint);
    self->most_waiting = std::max<std::size_t>(self->most_waiting, self->queue().size());
  }

  // UI thread.
  LRESULT handle_message(uint32_t message, WPARAM, LPARAM) override {
    if (message != kPaint) return 0;
    while (pending.load() > 1 && VRX_Acquire(m_handle, VRX_ACQ_BUFFER_RELEASE, nullptr) == VRX_OK) {
      pending.fetch_sub(1);
      ++stale;
    }
    pending.fetch_sub(1);
    VRX_BUFFER_RECORD record{};
    if (VRX_Acquire(m_handle, VRX_ACQ_BUFFER_GET, &record) != VRX_OK) return -1;
    if (VDL_BufferPaint(m_display, record.buffer) == VRX_OK) ++painted;
    return VRX_Acquire(m_handle, VRX_ACQ_BUFFER_RELEASE, nullptr) == VRX_OK ? 0 : -1;
  }

  std::atomic<int> pending{0};
  std::atomic<std::size_t> most_waiting{0};
  int painted = 0, stale = 0;

 private:
  uint32_t m_handle, m_display;
};

TEST(EventToWindow, HighRateEventsBecomeOnePaintAtATime) {
  uint32_t handle = 0;
  ASSERT_EQ(VRX_Create(&handle, nullptr), VRX_OK);
  ASSERT_EQ(VRX_Open(&handle), VRX_OK);
  uint32_t width = 320, height = 240, buffers = 8;
  VRX_ParameterSet(handle, vrx::ParamSrcXLength, &width);
  VRX_ParameterSet(handle, vrx::ParamSrcYLength, &height);
  VRX_ParameterSet(handle, vrx::ParamBufferCount, &buffers);
  vrxsim_set_frame_rate(handle, 1000);

  DisplaySurface surface(nullptr);
  uint32_t display = 0;
  ASSERT_EQ(VDL_DisplayCreate(&display, surface.paint_sink(), surface.sink_context()), VRX_OK);
  {
    PaintingWindow window(handle, display);
    VRX_ParameterSet(handle, vrx::ParamEventContext, &window);
    ASSERT_EQ(VRX_Acquire(handle, VRX_ACQ_START, reinterpret_cast<void*>(&PaintingWindow::callback)), VRX_OK);
    ASSERT_TRUE(pump_until([&] { return window.painted >= 100; }, 10000));
    ASSERT_EQ(VRX_Acquire(handle, VRX_ACQ_ABORT, nullptr), VRX_OK);
    pump_until([&] { return window.queue().size() == 0; });
    EXPECT_EQ(window.most_waiting.load(), 1u);  // never more than one paint queued
    EXPECT_EQ(surface.pictures_painted(), static_cast<uint64_t>(window.painted));
    EXPECT_EQ(surface.picture().size(), QSize(320, 240));
    VRX_Destroy(&handle);  // joins the event thread before the window goes
  }
  VDL_DisplayDestroy(&display);
}

}  // namespace
}  // namespace window_test
