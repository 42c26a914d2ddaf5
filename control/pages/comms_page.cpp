// The Comms page: its dialog, the serial settings in the order they reach the board, the
// link's counters and interface, and the transmit, receive and send-file handlers.
#include "control/pages/comms_page.h"

#include <cstdio>
#include <memory>

#include "control/pages/comms_choices.h"
#include "control/pages/configure_page.h"
#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"
#include "platform/window/desktop.h"

using vrc::pages::bound_combo;
using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int {
  IdGetChars = 17180,
  IdDataBits = 17184,
  IdStopBits = 17185,
  IdParity = 17186,
  IdBaud = 17187,
  IdFlow = 17188,
  IdTransmit = 17189,
  IdReceive = 17190,
  IdSendFile = 17191,
  IdSelectFile = 17192,
  IdLineEnding = 17193,
  IdSentCount = 17194,
  IdReceivedCount = 17195,
  IdLinkStatus = 17196,
  IdInterface = 17197,
  IdFileName = 17370
};

constexpr const char *kConfigurationGroup = "Configuration";
constexpr const char *kTransmitGroup = "Transmit";
constexpr const char *kReceiveGroup = "Receive";

constexpr ControlTemplate kControls[] = {
    {IDC_STATIC, ControlKind::Label, "Baud Rate", kConfigurationGroup},
    {IdBaud, ControlKind::Combo, "", kConfigurationGroup},
    {IDC_STATIC, ControlKind::Label, "Data Bits", kConfigurationGroup},
    {IdDataBits, ControlKind::Combo, "", kConfigurationGroup},
    {IDC_STATIC, ControlKind::Label, "Flow Control", kConfigurationGroup},
    {IdFlow, ControlKind::Combo, "", kConfigurationGroup},
    {IDC_STATIC, ControlKind::Label, "Parity", kConfigurationGroup},
    {IdParity, ControlKind::Combo, "", kConfigurationGroup},
    {IDC_STATIC, ControlKind::Label, "Stop Bits", kConfigurationGroup},
    {IdStopBits, ControlKind::Combo, "", kConfigurationGroup},
    {IDC_STATIC, ControlKind::Label, "Interface", kConfigurationGroup},
    {IdInterface, ControlKind::Static, "", kConfigurationGroup},
    {IDC_STATIC, ControlKind::Label, "Line Ending", kTransmitGroup},
    {IdLineEnding, ControlKind::Combo, "", kTransmitGroup},
    {IDC_STATIC, ControlKind::Label, "Send", kTransmitGroup},
    {IdTransmit, ControlKind::Edit, "", kTransmitGroup},
    {IdSelectFile, ControlKind::Button, "Select File", kTransmitGroup},
    {IdSendFile, ControlKind::Button, "Send File", kTransmitGroup},
    {IDC_STATIC, ControlKind::Label, "File", kTransmitGroup},
    {IdFileName, ControlKind::Static, "Not Selected", kTransmitGroup},
    {IDC_STATIC, ControlKind::Label, "Bytes Sent", kTransmitGroup},
    {IdSentCount, ControlKind::Static, "", kTransmitGroup},
    {IdGetChars, ControlKind::Button, "Get chars", kReceiveGroup},
    {IdReceive, ControlKind::MultiLineEdit, "", kReceiveGroup},
    {IDC_STATIC, ControlKind::Label, "Bytes Received", kReceiveGroup},
    {IdReceivedCount, ControlKind::Static, "", kReceiveGroup},
    {IDC_STATIC, ControlKind::Label, "Status", kReceiveGroup},
    {IdLinkStatus, ControlKind::Static, "", kReceiveGroup},
};

constexpr vrc::window::DialogTemplate kDialog{16167, "Comms", kControls};

namespace pages = vrc::pages;

// In the order of apply and refresh.
constexpr pages::BoundControl kBound[] = {
    bound_combo(IdBaud, vrx::ParamCommsBaud, pages::kCommsBaudChoices),
    bound_combo(IdDataBits, vrx::ParamCommsDataBits, pages::kCommsDataBitsChoices),
    bound_combo(IdFlow, vrx::ParamCommsFlow, pages::kCommsFlowChoices),
    bound_combo(IdParity, vrx::ParamCommsParity, pages::kCommsParityChoices),
    bound_combo(IdStopBits, vrx::ParamCommsStopBits, pages::kCommsStopBitsChoices),
};

constexpr uint32_t kTransmitTimeoutMs = 1000;
constexpr std::size_t kFileLine = 256;       // a file line: 255 characters and the terminator
constexpr std::size_t kReceiveChunk = 256;   // bytes asked for per receive
constexpr std::size_t kReceiveShown = 8192;  // characters the receive field keeps
constexpr const char *kSendFileFunction = "VrxPageComms::OnSendfileButton";

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

// Received bytes as the field shows them: each line ending as CR LF, other control bytes as dots.
std::string shown_text(const uint8_t *bytes, uint32_t count) {
  std::string text;
  for (uint32_t i = 0; i < count; ++i) {
    const auto c = static_cast<char>(bytes[i]);
    if (c == '\n')
      text += "\r\n";
    else if (c != '\r')
      text += (bytes[i] >= 0x20 && bytes[i] < 0x7F) ? c : '.';
  }
  return text;
}

}  // namespace

CVrxPageComms::CVrxPageComms() : CVrxPageComms(nullptr) {}

CVrxPageComms::CVrxPageComms(CVrxCtrl *owner) : BoundPage(owner, kDialog, kBound) {}

bool CVrxPageComms::IsLive() const {
  const CVrxCtrl *ctrl = GetCtrl();
  return ctrl && ctrl->GetInit() && ctrl->GetComms();
}

void CVrxPageComms::do_data_exchange(vrc::window::DataExchange &exchange) {
  BoundPage::do_data_exchange(exchange);
  exchange.combo_index(IdLineEnding, m_line_ending);
}

bool CVrxPageComms::on_init_dialog() {
  FillList(IdLineEnding, pages::kCommsLineEndingChoices);
  if (auto *received = child(IdReceive)) received->set_text(m_received);
  return BoundPage::on_init_dialog();
}

bool CVrxPageComms::ReadLinkStatus() {
  const uint32_t h = handle();
  return VRX_ParameterGet(h, vrx::ParamCommsCount1, &m_sent_count) == VRX_OK &&
         VRX_ParameterGet(h, vrx::ParamCommsCount2, &m_received_count) == VRX_OK &&
         VRX_ParameterGet(h, vrx::ParamCommsStatus, &m_link_status) == VRX_OK &&
         VRX_ParameterGet(h, vrx::ParamCommsInterface, &m_interface) == VRX_OK;
}

int CVrxPageComms::ReadExtras() { return ReadLinkStatus() ? 0 : -1; }

int CVrxPageComms::UpdateControls() {
  if (!has_window()) return -1;
  const bool live = IsLive();
  for (int id : {IdBaud, IdDataBits, IdFlow, IdParity, IdStopBits, IdLineEnding, IdTransmit,
                 IdGetChars, IdSelectFile, IdSendFile})
    EnableItem(id, live);
  const auto show = [&](int id, const std::string &text) {
    if (auto *control = child(id)) control->set_text(live ? text : std::string());
  };
  show(IdSentCount, std::to_string(m_sent_count));
  show(IdReceivedCount, std::to_string(m_received_count));
  show(IdLinkStatus, pages::text_of(pages::kCommsStatusTexts, m_link_status));
  show(IdInterface, pages::text_of(pages::kCommsInterfaceTexts, m_interface));
  return 0;
}

uint32_t CVrxPageComms::Transmit(const std::string &bytes) {
  auto count = static_cast<uint32_t>(bytes.size());
  return VRX_CommsTransmit(handle(), reinterpret_cast<const uint8_t *>(bytes.data()), &count,
                           kTransmitTimeoutMs);
}

// Characters added at the end of the field go out at once; any other edit only moves the mark
// of what was sent, since sent characters cannot be taken back.
void CVrxPageComms::OnTransmitChange() {
  const auto *edit = child(IdTransmit);
  if (!edit || !IsLive()) return;
  const std::string text = edit->text();
  if (text.size() > m_typed.size() && text.compare(0, m_typed.size(), m_typed) == 0)
    Transmit(text.substr(m_typed.size()));
  m_typed = text;
}

void CVrxPageComms::EndTransmitLine() {
  if (m_typed.empty() || !IsLive()) return;
  update_data(true);
  const auto ending = static_cast<std::size_t>(m_line_ending);
  if (ending < std::size(pages::kCommsLineEndings)) Transmit(pages::kCommsLineEndings[ending]);
  m_typed.clear();
  if (auto *edit = child(IdTransmit)) edit->set_text("");
  ReadLinkStatus();
  UpdateControls();
}

// Takes whatever the camera has sent, without waiting for more.
void CVrxPageComms::OnGetChars() {
  if (!IsLive()) return;
  uint8_t chunk[kReceiveChunk];
  for (;;) {
    uint32_t count = sizeof chunk;
    const uint32_t status = VRX_CommsReceive(handle(), chunk, &count, 0);
    if (status != VRX_OK && status != VRX_STATUS_TIMEOUT) break;
    m_received += shown_text(chunk, count);
    if (count < sizeof chunk) break;
  }
  if (m_received.size() > kReceiveShown) m_received.erase(0, m_received.size() - kReceiveShown);
  if (auto *received = child(IdReceive)) received->set_text(m_received);
  ReadLinkStatus();
  UpdateControls();
}

void CVrxPageComms::OnSelectFile() {
  vrc::window::FileDialogRequest request;
  request.owner = this;
  request.title = "Select File";
  request.filters = {{"All Files (*.*)", "*.*"}};
  request.flags = vrc::window::OFN_FILEMUSTEXIST | vrc::window::OFN_PATHMUSTEXIST |
                  vrc::window::OFN_HIDEREADONLY;
  const vrc::window::FileDialogResult result = vrc::window::desktop().file_dialog(request);
  if (!result.accepted) return;
  m_file_path = result.path;
  if (auto *name = child(IdFileName))
    name->set_text(CVrxPageConfigure::PathDisplayText(m_file_path));
}

// Each line of the file (at most 255 characters, its own line ending included) is one transmit.
void CVrxPageComms::OnSendFile() {
  if (!IsLive()) return;
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(m_file_path.c_str(), "rb"));
  if (!file) {
    GetCtrl()->ErrHandler(kSendFileFunction, VRC_CREATE_FAILED, "Failed to open serial file");
    return;
  }
  char line[kFileLine];
  while (std::fgets(line, sizeof line, file.get())) {
    if (Transmit(line) != VRX_OK) break;
  }
  ReadLinkStatus();
  UpdateControls();
}

bool CVrxPageComms::pre_translate_key(int key) {
  if (key == 13) EndTransmitLine();
  return BoundPage::pre_translate_key(key);
}

void CVrxPageComms::on_command(int id, uint16_t code) {
  using vrc::window::BN_CLICKED;
  switch (id) {
    case IdTransmit:
      if (code == vrc::window::EN_CHANGE) OnTransmitChange();
      if (code == vrc::window::EN_KILLFOCUS) EndTransmitLine();
      break;
    case IdGetChars:
      if (code == BN_CLICKED) OnGetChars();
      break;
    case IdSelectFile:
      if (code == BN_CLICKED) OnSelectFile();
      break;
    case IdSendFile:
      if (code == BN_CLICKED) OnSendFile();
      break;
    default: BoundPage::on_command(id, code); break;
  }
}
