// The control tests' environment and helpers.
#include "control_support.h"

#include <array>
#include <mutex>

#include "platform/board/vrx_params.h"

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

std::ostream &operator<<(std::ostream &out, const Report &report) {
  return out << report.function << " " << report.status << " \"" << report.message << '"';
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
  vrc::control::set_page_factory(nullptr);
  vrxsim_fault_clear();
  vrc::window::set_desktop(std::move(m_previous));
}

std::vector<std::string> tabs_of(const CVrxCtrl &ctrl) { return ctrl.tab_captions(); }

namespace {

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;

constexpr ControlTemplate kRecordingControls[] = {
    {RecordingPage::IdCombo, ControlKind::Combo, "", "Values"},
    {RecordingPage::IdEdit, ControlKind::Edit, "", "Values"},
    {RecordingPage::IdScroll, ControlKind::ScrollBar, "", "Values"},
    {RecordingPage::IdCheck, ControlKind::Check, "Flag", "Values"},
};

// One template per slot: the slot's id and caption with the recording controls.
const vrc::window::DialogTemplate &recording_template(vrc::control::PageSlot slot) {
  static const auto templates = [] {
    std::array<vrc::window::DialogTemplate, vrc::control::kPageSlotCount> all{};
    for (const vrc::control::PageSlotInfo &info : vrc::control::kTabOrder)
      all[vrc::control::index_of(info.slot)] = {info.template_id, info.caption, kRecordingControls};
    return all;
  }();
  return templates[vrc::control::index_of(slot)];
}

}  // namespace

RecordingPage::RecordingPage(CVrxCtrl *owner, vrc::control::PageSlot slot)
    : CVrxPage(owner, recording_template(slot)) {}

RecordingPage::~RecordingPage() { record("destroyed"); }

std::vector<std::string> &RecordingPage::log() {
  static std::vector<std::string> lines;
  return lines;
}

void RecordingPage::install() {
  log().clear();
  vrc::control::set_page_factory(
      [](vrc::control::PageSlot slot, CVrxCtrl *owner) -> std::unique_ptr<CVrxPage> {
        return std::make_unique<RecordingPage>(owner, slot);
      });
}

void RecordingPage::record(const char *event) { log().push_back(caption() + " " + event); }

int RecordingPage::UpdateControls() {
  ++update_controls_calls;
  return 0;
}

CVrxPage::LRESULT RecordingPage::OnRefreshMessage() {
  record("refresh");
  return 0;
}

CVrxPage::LRESULT RecordingPage::OnApplyMessage() {
  record("apply");
  return apply_result;
}

void RecordingPage::do_data_exchange(vrc::window::DataExchange &exchange) {
  exchange.number(IdEdit, edit_value);
}

void PanelTest::TearDown() {
  ctrl.reset();
  ControlTest::TearDown();
}

void PanelTest::make(uint32_t pages, CWnd *parent) {
  ctrl = std::make_unique<CVrxCtrl>(parent, pages, &record_report);
  ASSERT_EQ(ctrl->Exec(VRC_EXEC_CREATE), VRC_OK);
}

bool PanelTest::configure(int board_number, int channel, int mode) {
  CVrxPage *configure = ctrl->GetPage(vrc::control::PageSlot::Configure);
  if (!configure) return false;
  configure->control<vrc::window::ComboBox>(17025)->select_as_user(board_number);
  configure->control<vrc::window::ComboBox>(17026)->select_as_user(channel);
  configure->control<vrc::window::ComboBox>(17029)->select_as_user(mode);
  configure->control<vrc::window::Button>(17023)->click_as_user();
  if (ctrl->GetCameraHandle() == 0) return false;
  // A ring deep enough that a slow test machine does not overflow it at 30 frames per second.
  uint32_t buffers = 16;
  VRX_ParameterSet(ctrl->GetCameraHandle(), vrx::ParamBufferCount, &buffers);
  return true;
}

void PanelTest::press(int id) {
  ctrl->send(vrc::window::WM_COMMAND,
             vrc::window::make_wparam(static_cast<uint32_t>(id), vrc::window::BN_CLICKED));
}

std::string PanelTest::buttons() const {
  std::string states;
  for (int id : {kSingle, kLive, kFreeze, kAbort, kRefresh, kApplyNow}) {
    const vrc::window::Window *button = ctrl->child(id);
    states += button && button->enabled() ? '1' : '0';
  }
  return states;
}

}  // namespace control_test
