// The control tests' environment and helpers.
#include "control_support.h"

#include <mutex>

namespace control_test {
namespace {

std::mutex g_reports_mutex;
std::vector<Report> g_reports;

class QtEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "control_tests";
    static char *argv[] = {name, nullptr};
    m_application = std::make_unique<QApplication>(argc, argv);
  }
  void TearDown() override { m_application.reset(); }

 private:
  std::unique_ptr<QApplication> m_application;
};

const auto *const g_environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace

void record_report(const char *function, eStat status, const char *message) {
  std::lock_guard lock(g_reports_mutex);
  g_reports.push_back({function, status, message});
}

std::vector<Report> take_reports() {
  std::lock_guard lock(g_reports_mutex);
  return std::exchange(g_reports, {});
}

void pump_for(int milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  pump_until([&] { return std::chrono::steady_clock::now() >= end; }, milliseconds + 1000);
}

void ControlTest::SetUp() {
  auto desktop = std::make_unique<TestDesktop>();
  m_desktop = desktop.get();
  m_previous = vrc::window::set_desktop(std::move(desktop));
  vrxsim_fault_clear();
  take_reports();
}

void ControlTest::TearDown() {
  vrxsim_fault_clear();
  vrc::window::set_desktop(std::move(m_previous));
}

std::vector<std::string> tabs_of(const CVrxCtrl &ctrl) { return ctrl.tab_captions(); }

}  // namespace control_test
