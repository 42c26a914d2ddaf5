// Shared by the control tests: the offscreen QApplication, a scripted desktop installed for each
// test, a recorder of the error callback's reports, and a panel fixture over the simulated board.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "control/page_slots.h"
#include "control/vrx_ctrl.h"
#include "platform/board/sim/vrxsim.h"
#include "platform/window/scripted_desktop.h"
#include "vrcw32/vrc.h"

namespace control_test {

struct Report {
  std::string function;
  eStat status;
  std::string message;
  bool operator==(const Report &) const = default;
};
using Reports = std::vector<Report>;
std::ostream &operator<<(std::ostream &out, const Report &report);

// The reports of the error callback, in order (the callback may run on the SDK's thread).
std::vector<Report> take_reports();
void record_report(const char *function, eStat status, const char *message);

// Runs the Qt event loop (and so the panel's messages) until `done` or a time-out.
template <typename Predicate>
bool pump_until(Predicate done, int timeout_ms = 5000) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
  while (!done()) {
    if (std::chrono::steady_clock::now() > end) return false;
    QApplication::processEvents(QEventLoop::AllEvents, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}
// Runs the event loop for a while.
void pump_for(int milliseconds);

// A desktop whose timer and sleeps the test controls.
class TestDesktop : public vrc::window::ScriptedDesktop {
 public:
  uint64_t performance_counter() override {
    return m_manual_clock ? m_clock_ns : ScriptedDesktop::performance_counter();
  }
  // From now on the performance counter reads only what advance() sets.
  void use_manual_clock(uint64_t start_ns) {
    m_manual_clock = true;
    m_clock_ns = start_ns;
  }
  void advance_ms(double ms) { m_clock_ns += static_cast<uint64_t>(ms * 1e6); }
  uint64_t performance_frequency() override { return m_frequency; }
  // 0 makes the frequency read fail.
  void set_frequency(uint64_t counts_per_second) { m_frequency = counts_per_second; }

 private:
  uint64_t m_frequency = 1'000'000'000;
  bool m_manual_clock = false;
  uint64_t m_clock_ns = 0;
};

// Installs a TestDesktop for the test and clears the simulator's faults and the reports.
class ControlTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  TestDesktop &desk() { return *m_desktop; }

 private:
  TestDesktop *m_desktop = nullptr;
  std::unique_ptr<vrc::window::Desktop> m_previous;
};

// Page captions of the tabs, in order.
std::vector<std::string> tabs_of(const CVrxCtrl &ctrl);

// A page that records what reaches it into a log shared by every recording page, as
// "<caption> <event>" lines, and that holds one control of each kind the helpers work on.
class RecordingPage : public CVrxPage {
 public:
  enum : int { IdCombo = 100, IdEdit = 101, IdScroll = 102, IdCheck = 103 };

  RecordingPage(CVrxCtrl *owner, vrc::control::PageSlot slot);
  ~RecordingPage() override;

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;

  static std::vector<std::string> &log();
  // Installs the factory that gives every slot a RecordingPage (restored by ControlTest).
  static void install();

  LRESULT apply_result = 0;
  int update_controls_calls = 0;
  int32_t edit_value = 7;

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;

 private:
  void record(const char *event);
};

// The sheet's buttons, and their states (as PanelTest::buttons gives them) on an open panel,
// idle and live.
constexpr int kSingle = 17000, kLive = 17001, kFreeze = 17002, kAbort = 17003, kRefresh = 17004;
constexpr int kApplyNow = vrc::window::ID_APPLY_NOW;
constexpr const char *kIdleButtons = "110110";
constexpr const char *kLiveButtons = "001110";

// A panel with its window over the simulated board.
class PanelTest : public ControlTest {
 protected:
  void TearDown() override;
  // Constructs the control with `pages` and creates its window.
  void make(uint32_t pages = 0x4EFF, CWnd *parent = nullptr);
  // Selects board number, channel and mode by combo index on the Configure page and presses
  // Configure; true when the board is open, with a ring of 16 capture buffers.
  bool configure(int board_number = 0, int channel = 0, int mode = 0);
  // A WM_COMMAND click of a sheet button (17000-17004, 12321, 9), enabled or not.
  void press(int id);
  // The enable states of Single Shot, Live, Freeze, Abort, Refresh and Apply Now, as 0/1 digits.
  std::string buttons() const;
  uint32_t handle() const { return ctrl->GetCameraHandle(); }
  template <typename PageType>
  PageType *page(vrc::control::PageSlot slot) const {
    return dynamic_cast<PageType *>(ctrl->GetPage(slot));
  }

  std::unique_ptr<CVrxCtrl> ctrl;
};

}  // namespace control_test
