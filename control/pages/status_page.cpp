// The Status page: its dialog, the texts of the board's figures and the two buttons.
#include "control/pages/status_page.h"

#include <cstdio>
#include <sstream>

#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int {
  IdFirmware = 17300,
  IdLibrary = 17301,
  IdBus = 17302,
  IdAcqState = 17303,
  IdCountImmediate = 17304,
  IdCountGated = 17305,
  IdFirstError = 17306,
  IdLastError = 17307,
  IdGetFirstError = 17308,
  IdBoardProperties = 17309
};

constexpr const char *kRevisions = "Revisions";
constexpr const char *kBus = "PCI Bus Information";
constexpr const char *kHardware = "Hardware && Event Status";
constexpr const char *kErrors = "Errors";

constexpr ControlTemplate kControls[] = {
    {IDC_STATIC, ControlKind::Label, "Firmware (fpga)", kRevisions},
    {IdFirmware, ControlKind::Static, "", kRevisions},
    {IDC_STATIC, ControlKind::Label, "Software Library", kRevisions},
    {IdLibrary, ControlKind::Static, "", kRevisions},
    {IdBus, ControlKind::Static, "", kBus},
    {IDC_STATIC, ControlKind::Label, "Acquisition", kHardware},
    {IdAcqState, ControlKind::Static, "", kHardware},
    {IDC_STATIC, ControlKind::Label, "Event Count (Immediate)", kHardware},
    {IdCountImmediate, ControlKind::Static, "", kHardware},
    {IDC_STATIC, ControlKind::Label, "Event Count (Gated)", kHardware},
    {IdCountGated, ControlKind::Static, "", kHardware},
    {IDC_STATIC, ControlKind::Label, "First Error", kErrors},
    {IdFirstError, ControlKind::Static, "", kErrors},
    {IDC_STATIC, ControlKind::Label, "Last Error", kErrors},
    {IdLastError, ControlKind::Static, "", kErrors},
    {IdGetFirstError, ControlKind::Button, "Get First Error", kErrors},
    {IdBoardProperties, ControlKind::Button, "Board Properties", kErrors},
};

constexpr vrc::window::DialogTemplate kDialog{16166, "Status", kControls, 1};

constexpr const char *kNoError = "None";

bool read_word(uint32_t handle, uint32_t parameter, uint32_t &value) {
  return VRX_ParameterGet(handle, parameter, &value) == VRX_OK;
}

bool read_text(uint32_t handle, uint32_t parameter, std::string &text) {
  const char *value = nullptr;
  if (VRX_ParameterGet(handle, parameter, &value) != VRX_OK) return false;
  text = value && *value ? value : kNoError;
  return true;
}

}  // namespace

namespace vrc::pages {

std::string revision_text(uint32_t revision) {
  char text[32];
  std::snprintf(text, sizeof text, "v%x.%x.%x", (revision >> 16) & 0xFF, (revision >> 8) & 0xFF,
                revision & 0xFF);
  return text;
}

std::string bus_text(uint32_t type, uint32_t width, uint32_t clock, uint32_t link_width,
                     uint32_t voltage) {
  char text[96];
  if (type == vrx::BusPciExpress) {
    std::snprintf(text, sizeof text, "PCI Express: board = x%u, link = x%u", width, link_width);
  } else {
    char volts[16];
    std::snprintf(volts, sizeof volts, voltage % 10 ? "%u.%uV" : "%uV", voltage / 10, voltage % 10);
    std::snprintf(text, sizeof text, "%s %d bit %s bus running at %d MHz", volts,
                  static_cast<int>(width), type == vrx::BusPciX ? "PCI-X" : "PCI",
                  static_cast<int>(clock));
  }
  return text;
}

const char *acquisition_state_text(uint32_t state) {
  switch (state) {
    case vrx::AcqStateIdle: return "Idle";
    case vrx::AcqStateActive: return "An acquisition is in progress";
    case vrx::AcqStateWaitingForTrigger: return "Waiting for a trigger event";
    default: return "";
  }
}

std::string board_properties_text(const char *information) {
  std::istringstream lines(information ? information : "");
  std::string text;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) continue;
    const std::size_t equals = line.find('=');
    if (!text.empty()) text += '\n';
    text += equals == std::string::npos ? line
                                        : line.substr(0, equals) + ": " + line.substr(equals + 1);
  }
  return text;
}

}  // namespace vrc::pages

CVrxPageStatus::CVrxPageStatus(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {}

bool CVrxPageStatus::Live() const { return GetCtrl()->GetInit() && GetCtrl()->GetAcq(); }

void CVrxPageStatus::do_data_exchange(vrc::window::DataExchange &exchange) {
  exchange.text(IdFirmware, m_firmware);
  exchange.text(IdLibrary, m_library);
  exchange.text(IdBus, m_bus);
  exchange.text(IdAcqState, m_state);
  exchange.text(IdCountImmediate, m_immediate);
  exchange.text(IdCountGated, m_gated);
  exchange.text(IdFirstError, m_first_error);
  exchange.text(IdLastError, m_last_error);
}

bool CVrxPageStatus::on_init_dialog() {
  for (int id : {IdFirstError, IdLastError})
    if (auto *text = control<vrc::window::StaticText>(id)) text->set_word_wrap(true);
  return CVrxPage::on_init_dialog();
}

void CVrxPageStatus::on_command(int id, uint16_t code) {
  if (code != vrc::window::BN_CLICKED) return;
  if (id == IdGetFirstError) OnGetFirstError();
  if (id == IdBoardProperties) OnBoardProperties();
}

int CVrxPageStatus::UpdateControls() {
  if (!has_window()) return -1;
  const bool live = Live();
  EnableItem(IdGetFirstError, live);
  EnableItem(IdBoardProperties, live);
  if (!live) {
    m_firmware = m_library = m_bus = m_state = m_immediate = m_gated = m_first_error =
        m_last_error = "";
    update_data(false);
  }
  return 0;
}

int CVrxPageStatus::ReadFigures() {
  const uint32_t handle = GetCtrl()->GetCameraHandle();
  uint32_t firmware = 0, library = 0, bus = 0, width = 0, clock = 0, link = 0, voltage = 0,
           state = 0, immediate = 0, gated = 0;
  if (!read_word(handle, vrx::ParamFirmwareRevision, firmware) ||
      !read_word(handle, vrx::ParamLibraryRevision, library) ||
      !read_word(handle, vrx::ParamBusType, bus) || !read_word(handle, vrx::ParamBusWidth, width) ||
      !read_word(handle, vrx::ParamBusClock, clock) ||
      !read_word(handle, vrx::ParamBusLinkWidth, link) ||
      !read_word(handle, vrx::ParamBusVoltage, voltage) ||
      !read_word(handle, vrx::ParamAcqState, state) ||
      !read_word(handle, vrx::ParamEventCountImmediate, immediate) ||
      !read_word(handle, vrx::ParamEventCountGated, gated) ||
      !read_text(handle, vrx::ParamLastError, m_last_error))
    return -1;
  m_firmware = vrc::pages::revision_text(firmware);
  m_library = vrc::pages::revision_text(library);
  m_bus = vrc::pages::bus_text(bus, width, clock, link, voltage);
  m_state = vrc::pages::acquisition_state_text(state);
  m_immediate = std::to_string(immediate);
  m_gated = std::to_string(gated);
  return 0;
}

CVrxPage::LRESULT CVrxPageStatus::OnRefreshMessage() {
  if (!Live()) {
    UpdateControls();
    return -1;
  }
  if (ReadFigures() != 0) return -1;
  update_data(false);
  UpdateControls();
  return 0;
}

CVrxPage::LRESULT CVrxPageStatus::OnApplyMessage() {
  if (!Live()) {
    UpdateControls();
    return -1;
  }
  return 0;
}

int CVrxPageStatus::OnGetFirstError() {
  if (!Live() || !read_text(GetCtrl()->GetCameraHandle(), vrx::ParamFirstError, m_first_error))
    return -1;
  update_data(false);
  return 0;
}

int CVrxPageStatus::OnBoardProperties() {
  const char *information = nullptr;
  if (!Live() ||
      VRX_ParameterGet(GetCtrl()->GetCameraHandle(), vrx::ParamBoardInfo, &information) != VRX_OK)
    return -1;
  vrc::window::desktop().message_box(this, vrc::pages::board_properties_text(information),
                                     "Board Properties",
                                     vrc::window::MB_OK | vrc::window::MB_ICONINFORMATION);
  return 0;
}
