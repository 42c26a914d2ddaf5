// The I/O Ports page: its lines, dialog, apply and refresh, and the input refresh timer.
#include "control/pages/io_ports_page.h"

#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int {
  IdSetAll = 17210,
  IdClearAll = 17211,
  IdReadInputs = 17230,
  IdAutoRefresh = 17231,
  kTimerId = 1
};
constexpr uint32_t kAutoRefreshMs = 200;

struct Line {
  int id;
  const char *name;
  uint32_t bit;
};

// Output lines: check boxes 17200 to 17209.
constexpr std::array<Line, 10> kOutputs{{
    {17200, "TTL Out 1", vrx::OutputTtl1},
    {17201, "TTL Out 2", vrx::OutputTtl2},
    {17202, "TTL Out 3", vrx::OutputTtl3},
    {17203, "TTL Out 4", vrx::OutputTtl4},
    {17204, "Opto Out 1", vrx::OutputOpto1},
    {17205, "Opto Out 2", vrx::OutputOpto2},
    {17206, "CC 1", vrx::OutputCc1},
    {17207, "CC 2", vrx::OutputCc2},
    {17208, "CC 3", vrx::OutputCc3},
    {17209, "CC 4", vrx::OutputCc4},
}};

// Input lines: level texts 17220 to 17228.
constexpr std::array<Line, 9> kInputs{{
    {17220, "Opto 1", vrx::InputOpto1},
    {17221, "Opto 2", vrx::InputOpto2},
    {17222, "AuxIn 1", vrx::InputAux1},
    {17223, "AuxIn 2", vrx::InputAux2},
    {17224, "CtrlIn 1 (Frame)", vrx::InputCtrl1},
    {17225, "CtrlIn 2 (Line)", vrx::InputCtrl2},
    {17226, "CtrlIn 3 (Data)", vrx::InputCtrl3},
    {17227, "CcIo 1", vrx::InputCcIo1},
    {17228, "CcIo 2", vrx::InputCcIo2},
}};

constexpr const char *kOutputGroup = "Output Lines";
constexpr const char *kInputGroup = "Input Lines";

constexpr auto kControls = [] {
  std::array<ControlTemplate, kOutputs.size() + 2 + 2 * kInputs.size() + 2> rows{};
  std::size_t n = 0;
  for (const Line &line : kOutputs)
    rows[n++] = {line.id, ControlKind::Check, line.name, kOutputGroup};
  rows[n++] = {IdSetAll, ControlKind::Button, "Set All", kOutputGroup};
  rows[n++] = {IdClearAll, ControlKind::Button, "Clear All", kOutputGroup};
  for (const Line &line : kInputs) {
    rows[n++] = {IDC_STATIC, ControlKind::Label, line.name, kInputGroup};
    rows[n++] = {line.id, ControlKind::Static, "", kInputGroup};
  }
  rows[n++] = {IdReadInputs, ControlKind::Button, "Read Inputs", kInputGroup};
  rows[n++] = {IdAutoRefresh, ControlKind::Check, "Auto Refresh", kInputGroup};
  return rows;
}();

constexpr vrc::window::DialogTemplate kDialog{16169, "I/O Ports", kControls};

bool write_word(uint32_t handle, uint32_t parameter, uint32_t value) {
  return VRX_ParameterSet(handle, parameter, &value) == VRX_OK;
}

}  // namespace

CVrxPageIoPorts::CVrxPageIoPorts(CVrxCtrl *owner)
    : CVrxPage(owner, kDialog), m_timer(this, kTimerId) {}

CVrxPageIoPorts::~CVrxPageIoPorts() { m_timer.stop(); }

bool CVrxPageIoPorts::Live() const { return GetCtrl()->GetInit() && GetCtrl()->GetAcq(); }

void CVrxPageIoPorts::do_data_exchange(vrc::window::DataExchange &exchange) {
  for (std::size_t i = 0; i < kOutputs.size(); ++i) exchange.check(kOutputs[i].id, m_outputs[i]);
  for (std::size_t i = 0; i < kInputs.size(); ++i) exchange.text(kInputs[i].id, m_inputs[i]);
  exchange.check(IdAutoRefresh, m_auto_refresh);
}

bool CVrxPageIoPorts::on_init_dialog() {
  const bool result = CVrxPage::on_init_dialog();
  FollowAutoRefresh();
  return result;
}

void CVrxPageIoPorts::destroy_window() {
  m_timer.stop();
  CVrxPage::destroy_window();
}

void CVrxPageIoPorts::on_command(int id, uint16_t code) {
  if (code != vrc::window::BN_CLICKED) return;
  switch (id) {
    case IdSetAll: DriveAll(true); return;
    case IdClearAll: DriveAll(false); return;
    case IdReadInputs:
      if (ReadInputs() == 0) update_data(false);
      return;
    case IdAutoRefresh:
      update_data(true);
      FollowAutoRefresh();
      return;
    default: break;
  }
  for (const Line &line : kOutputs)
    if (line.id == id) OnChangedWithData();
}

CVrxPage::LRESULT CVrxPageIoPorts::handle_message(uint32_t message, vrc::window::WPARAM wparam,
                                                  vrc::window::LPARAM lparam) {
  if (message == vrc::window::WM_TIMER && wparam == kTimerId) {
    if (Live() && ReadInputs() == 0) {
      for (std::size_t i = 0; i < kInputs.size(); ++i)
        if (auto *text = child(kInputs[i].id)) text->set_text(m_inputs[i]);
    }
    return 0;
  }
  return CVrxPage::handle_message(message, wparam, lparam);
}

// The timer runs while the page has its window and "Auto Refresh" is checked.
void CVrxPageIoPorts::FollowAutoRefresh() {
  if (has_window() && m_auto_refresh)
    m_timer.start(kAutoRefreshMs);
  else
    m_timer.stop();
}

int CVrxPageIoPorts::UpdateControls() {
  if (!has_window()) return -1;
  update_data(true);
  const bool live = Live();
  for (const Line &line : kOutputs) EnableItem(line.id, live);
  for (int id : {IdSetAll, IdClearAll, IdReadInputs, IdAutoRefresh}) EnableItem(id, live);
  if (!live) {
    for (std::string &level : m_inputs) level.clear();
    update_data(false);
  }
  return 0;
}

uint32_t CVrxPageIoPorts::CheckedLines() const {
  uint32_t lines = 0;
  for (std::size_t i = 0; i < kOutputs.size(); ++i)
    if (m_outputs[i]) lines |= kOutputs[i].bit;
  return lines;
}

CVrxPage::LRESULT CVrxPageIoPorts::OnApplyMessage() {
  if (!Live()) {
    UpdateControls();
    return -1;
  }
  const uint32_t handle = GetCtrl()->GetCameraHandle();
  const uint32_t set = CheckedLines();
  if (!write_word(handle, vrx::ParamOutputPortSet, vrx::PortOpSet | set) ||
      !write_word(handle, vrx::ParamOutputPortSet,
                  vrx::PortOpClear | (vrx::kOutputLinesAll & ~set)))
    return -1;
  update_data(false);
  UpdateControls();
  return 0;
}

int CVrxPageIoPorts::ReadInputs() {
  uint32_t levels = 0;
  if (VRX_ParameterGet(GetCtrl()->GetCameraHandle(), vrx::ParamInputPort, &levels) != VRX_OK)
    return -1;
  for (std::size_t i = 0; i < kInputs.size(); ++i)
    m_inputs[i] = levels & kInputs[i].bit ? "High" : "Low";
  return 0;
}

CVrxPage::LRESULT CVrxPageIoPorts::OnRefreshMessage() {
  if (!Live()) {
    UpdateControls();
    return -1;
  }
  // Each line is read with its own mask: state 0 is set, 1 cleared.
  for (std::size_t i = 0; i < kOutputs.size(); ++i) {
    int32_t state = -1;
    if (SignalSourceToIndex(vrx::ParamOutputPort, kOutputs[i].bit, state) != 0) return -1;
    m_outputs[i] = state == 0 ? 1 : 0;
  }
  if (ReadInputs() != 0) return -1;
  update_data(false);
  UpdateControls();
  return 0;
}

int CVrxPageIoPorts::DriveAll(bool set) {
  if (!Live()) return -1;
  if (!write_word(GetCtrl()->GetCameraHandle(), vrx::ParamOutputPortSet,
                  (set ? vrx::PortOpSet : vrx::PortOpClear) | vrx::kOutputLinesAll))
    return -1;
  return static_cast<int>(OnRefreshMessage());
}
