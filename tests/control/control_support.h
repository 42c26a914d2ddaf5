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
};

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

 private:
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

}  // namespace control_test
