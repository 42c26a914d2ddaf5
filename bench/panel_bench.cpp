// The control panel live over the simulated board at 30, 300, 3000 and 10000 frames per second
// of 640 x 480 (8-bit mono, 16 capture buffers), three seconds each, on the offscreen Qt
// platform. For each rate it prints the frames acquired against those painted (the rest were
// stale buffers released unpainted), the rate of the title against the true rate of the board
// (frames captured over time) and their ratio, the FIFO overflows, the most paint messages ever
// queued (the design allows 1), and the UI thread's response to a refresh posted every 20 ms while
// live, from 200 ms after the start (the aim: under 20 ms at every rate). The true rate is bounded
// by how fast the simulator can synthesise frames on this machine.
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "control/page_slots.h"
#include "control/pages/intrpt_page.h"
#include "control/vrx_ctrl.h"
#include "platform/board/sim/vrxsim.h"
#include "platform/board/vrx_params.h"
#include "platform/window/scripted_desktop.h"

namespace {

using Clock = std::chrono::steady_clock;
using vrc::window::WM_USER;

// A window that notes when the refreshes posted to it are handled.
class RefreshProbe : public vrc::window::Window {
 public:
  vrc::window::LRESULT handle_message(uint32_t message, vrc::window::WPARAM,
                                      vrc::window::LPARAM) override {
    if (message == WM_USER + 10) {
      latencies_ms.push_back(
          std::chrono::duration<double, std::milli>(Clock::now() - posted).count());
      waiting = false;
    }
    return 0;
  }
  void post_refresh() {
    posted = Clock::now();
    waiting = true;
    post(WM_USER + 10);
  }
  Clock::time_point posted;
  bool waiting = false;
  std::vector<double> latencies_ms;
};

void press(CVrxCtrl &ctrl, int id) {
  ctrl.send(vrc::window::WM_COMMAND,
            vrc::window::make_wparam(static_cast<uint32_t>(id), vrc::window::BN_CLICKED));
}

bool configure(CVrxCtrl &ctrl) {
  CVrxPage *page = ctrl.GetPage(vrc::control::PageSlot::Configure);
  page->control<vrc::window::Button>(17023)->click_as_user();
  return ctrl.GetCameraHandle() != 0;
}

// The rate in a title "... Channel A, 29.97 fps"; 0 when it has none yet.
double title_rate(const std::string &title) {
  const std::size_t comma = title.rfind(", ");
  return comma == std::string::npos || title.find(" fps") == std::string::npos
             ? 0.0
             : std::stod(title.substr(comma + 2));
}

void run(double frames_per_second) {
  constexpr auto kDuration = std::chrono::seconds(3);
  CVrxCtrl ctrl(nullptr, nullptr);
  if (ctrl.Exec(VRC_EXEC_CREATE) != VRC_OK || !configure(ctrl)) {
    std::printf("%8.0f fps: the simulated board did not open\n", frames_per_second);
    return;
  }
  const uint32_t handle = ctrl.GetCameraHandle();
  uint32_t buffers = 16;
  VRX_ParameterSet(handle, vrx::ParamBufferCount, &buffers);
  vrxsim_set_frame_rate(handle, frames_per_second);

  RefreshProbe probe;
  press(ctrl, 17001);  // Live
  const Clock::time_point started = Clock::now();
  Clock::time_point next_probe = started + std::chrono::milliseconds(200);  // after the start-up
  while (Clock::now() - started < kDuration) {
    if (!probe.waiting && Clock::now() >= next_probe) {
      probe.post_refresh();
      next_probe = Clock::now() + std::chrono::milliseconds(20);
    }
    QApplication::processEvents(QEventLoop::AllEvents, 1);
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - started).count();
  const VrcAcquisitionCounters counters = ctrl.GetCounters();
  const double title = title_rate(ctrl.text());
  const auto *intrpt = dynamic_cast<CVrcPageIntrpt *>(ctrl.GetPage(vrc::control::PageSlot::Intrpt));
  const int overflows = intrpt ? intrpt->GetFifoOverflowCount() : 0;
  press(ctrl, 17003);  // Abort

  const double true_rate = static_cast<double>(counters.acquired) / seconds;
  std::vector<double> &latencies = probe.latencies_ms;
  std::sort(latencies.begin(), latencies.end());
  const double median = latencies.empty() ? 0.0 : latencies[latencies.size() / 2];
  const double worst = latencies.empty() ? 0.0 : latencies.back();
  std::printf("%8.0f %10llu %9llu %9llu %9d %10.2f %10.2f %7.3f %8u %10.2f %9.2f\n",
              frames_per_second, static_cast<unsigned long long>(counters.acquired),
              static_cast<unsigned long long>(counters.painted),
              static_cast<unsigned long long>(counters.dropped), overflows, title, true_rate,
              true_rate > 0 ? title / true_rate : 0.0, counters.most_paints_queued, median, worst);
}

}  // namespace

int main(int argc, char **argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  vrc::window::set_desktop(std::make_unique<vrc::window::ScriptedDesktop>());
  std::printf("Control panel live, 640 x 480 8-bit mono, 16 buffers, 3 s per rate\n");
  std::printf("%8s %10s %9s %9s %9s %10s %10s %7s %8s %10s %9s\n", "fps", "acquired", "painted",
              "dropped", "overflows", "title fps", "true fps", "ratio", "paints q", "resp p50ms",
              "resp max");
  for (double rate : {30.0, 300.0, 3000.0, 10000.0}) run(rate);
  return 0;
}
