// The Configure page: board selection, opening and closing.
#include "control/pages/configure_page.h"

#include <cstdio>
#include <string_view>
#include <vector>

#include "control/pages/configure_choices.h"
#include "control/vrx_ctrl.h"
#include "control/vrx_messages.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"
#include "platform/window/desktop.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;

namespace {

enum : int {
  IdPathText = 17020,
  IdSelectFile = 17021,
  IdEditFile = 17022,
  IdConfigure = 17023,
  IdRelease = 17024,
  IdBoardNumber = 17025,
  IdChannel = 17026,
  IdSaveAsFile = 17027,
  IdBoardType = 17028,
  IdBoardMode = 17029
};

constexpr const char *kFileGroup = "Configuration File";
constexpr const char *kBoardGroup = "Board";

constexpr ControlTemplate kControls[] = {
    {IdPathText, ControlKind::Static, "Not Selected", kFileGroup},
    {IdSelectFile, ControlKind::Button, "Select File", kFileGroup},
    {IdEditFile, ControlKind::Button, "Edit File", kFileGroup},
    {IdSaveAsFile, ControlKind::Button, "Save As File", kFileGroup},
    {IDC_STATIC, ControlKind::Label, "Board Type", kBoardGroup},
    {IdBoardType, ControlKind::Combo, "", kBoardGroup},
    {IDC_STATIC, ControlKind::Label, "Board Number", kBoardGroup},
    {IdBoardNumber, ControlKind::Combo, "", kBoardGroup},
    {IDC_STATIC, ControlKind::Label, "Channel", kBoardGroup},
    {IdChannel, ControlKind::Combo, "", kBoardGroup},
    {IDC_STATIC, ControlKind::Label, "Board Mode", kBoardGroup},
    {IdBoardMode, ControlKind::Combo, "", kBoardGroup},
    {IdConfigure, ControlKind::Button, "Configure", kBoardGroup},
    {IdRelease, ControlKind::Button, "Release", kBoardGroup},
};

constexpr vrc::window::DialogTemplate kDialog{16160, "Configure", kControls};

// The item data of a combo's selected item.
uint32_t selected_value(const CVrxPage &page, int id) {
  auto *box = page.control<vrc::window::ComboBox>(id);
  return box ? box->item_data(box->current()) : 0xFFFFFFFFu;
}

}  // namespace

CVrxPageConfigure::CVrxPageConfigure(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {}

// A page destroyed while it holds the board closes and destroys the handle.
CVrxPageConfigure::~CVrxPageConfigure() {
  CVrxCtrl *ctrl = GetCtrl();
  if (!ctrl || ctrl->GetCameraHandle() == 0) return;
  uint32_t handle = ctrl->GetCameraHandle();
  if (ctrl->GetAcq()) VRX_Acquire(handle, vrx::AcqCmdAbort, nullptr);
  VRX_Close(&handle);
  VRX_Destroy(&handle);
  ctrl->SetCameraHandle(0);
}

const char *CVrxPageConfigure::GetBoardName() const {
  return vrc::pages::short_model_name(m_board_type);
}

void CVrxPageConfigure::do_data_exchange(vrc::window::DataExchange &exchange) {
  exchange.combo_index(IdBoardType, m_board_type);
  exchange.combo_index(IdBoardNumber, m_board_number);
  exchange.combo_index(IdChannel, m_channel);
  exchange.combo_index(IdBoardMode, m_board_mode);
}

bool CVrxPageConfigure::on_init_dialog() {
  FillList(IdBoardType, vrc::pages::kBoardTypeChoices.data());
  FillList(IdBoardNumber, vrc::pages::kBoardNumberChoices);
  FillList(IdChannel, vrc::pages::kChannelChoices);
  FillList(IdBoardMode, vrc::pages::kBoardModeChoices);
  if (auto *edit = child(IdEditFile)) edit->enable(false);
  if (auto *save = child(IdSaveAsFile)) save->enable(false);
  if (auto *release = child(IdRelease)) release->enable(false);
  return CVrxPage::on_init_dialog();
}

void CVrxPageConfigure::on_command(int id, uint16_t code) {
  if (code != vrc::window::BN_CLICKED) return;
  switch (id) {
    case IdSelectFile: OnSelectFile(); break;
    case IdEditFile: OnEditFile(); break;
    case IdSaveAsFile: OnSaveAsFile(); break;
    case IdConfigure: OnConfigure(); break;
    case IdRelease: OnRelease(); break;
    default: break;
  }
}

std::string CVrxPageConfigure::PathDisplayText(std::string_view path) {
  constexpr std::size_t kLimit = 27;
  if (path.size() <= kLimit) return std::string(path);
  const std::size_t last_slash = path.rfind('/');
  const std::string tail =
      "..." + std::string(path.substr(last_slash == std::string_view::npos ? 0 : last_slash));
  if (tail.size() >= kLimit) return tail.substr(tail.size() - kLimit);
  std::string head;
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t slash = path.find('/', start);
    if (slash == std::string_view::npos) break;
    const std::string_view component = path.substr(start, slash + 1 - start);
    if (head.size() + component.size() + tail.size() >= kLimit) break;
    head += component;
    start = slash + 1;
  }
  return head + tail;
}

namespace {

const std::vector<vrc::window::FileFilter> kConfigFilters{
    {"Vireo Configuration File (*.vcf)", "*.vcf"}};

}  // namespace

void CVrxPageConfigure::OnSelectFile() {
  vrc::window::FileDialogRequest request;
  request.owner = GetCtrl();
  request.filters = kConfigFilters;
  request.flags = vrc::window::OFN_FILEMUSTEXIST | vrc::window::OFN_PATHMUSTEXIST |
                  vrc::window::OFN_HIDEREADONLY | vrc::window::OFN_OVERWRITEPROMPT;
  const vrc::window::FileDialogResult chosen = vrc::window::desktop().file_dialog(request);
  if (!chosen.accepted) return;
  m_config_path = chosen.path;
  m_config_text = PathDisplayText(m_config_path);
  UpdateControls();
}

void CVrxPageConfigure::OnEditFile() { vrc::window::desktop().start_editor(m_config_path); }

// Saves the open board's camera configuration; a name without an extension gets ".vcf".
void CVrxPageConfigure::OnSaveAsFile() {
  vrc::window::FileDialogRequest request;
  request.save = true;
  request.owner = GetCtrl();
  request.filters = kConfigFilters;
  request.flags = vrc::window::OFN_PATHMUSTEXIST | vrc::window::OFN_HIDEREADONLY |
                  vrc::window::OFN_OVERWRITEPROMPT;
  const vrc::window::FileDialogResult chosen = vrc::window::desktop().file_dialog(request);
  if (!chosen.accepted) return;
  std::string path = chosen.path;
  const std::size_t name = path.rfind('/');
  if (path.find('.', name == std::string::npos ? 0 : name) == std::string::npos) path += ".vcf";
  VRX_CameraConfigSave(GetCtrl()->GetCameraHandle(), path.c_str(), vrx::CfgSaveAll);
  UpdateControls();
}

CVrxPage::LRESULT CVrxPageConfigure::handle_message(uint32_t message, vrc::window::WPARAM wparam,
                                                    vrc::window::LPARAM lparam) {
  if (message == vrc::control::kMsgReleaseBoard) return CloseBoard();
  return CVrxPage::handle_message(message, wparam, lparam);
}

int CVrxPageConfigure::UpdateControls() {
  if (!has_window()) return 0;
  update_data(true);
  if (!m_config_text.empty()) {
    if (auto *text = child(IdPathText)) text->set_text(m_config_text);
    EnableItem(IdEditFile, true);
  }
  const bool open = GetCtrl()->GetInit() != 0;
  EnableItem(IdSaveAsFile, open);
  EnableItem(IdRelease, open);
  for (int id : {IdConfigure, IdBoardType, IdBoardNumber, IdChannel, IdBoardMode})
    EnableItem(id, !open);
  return 0;
}

int CVrxPageConfigure::OnConfigure() {
  CVrxCtrl &ctrl = *GetCtrl();
  // A configure that failed after the handle was handed over left the board open; it is
  // closed before another is opened, or the channel would stay taken.
  if (ctrl.GetCameraHandle() != 0 && CloseBoard() != 0) return -1;
  ctrl.GetPreTabsVisible();
  update_data(true);
  uint32_t board_type = selected_value(*this, IdBoardType);
  uint32_t board_number = selected_value(*this, IdBoardNumber);
  uint32_t channel = selected_value(*this, IdChannel);
  uint32_t mode = selected_value(*this, IdBoardMode);

  uint32_t handle = 0;
  {
    vrc::window::WaitCursor wait;
    uint32_t status = VRX_Create(&handle, &VRX_ErrHandlerDefault);
    if (status == VRX_OK && !m_config_path.empty())
      status = VRX_ParameterSet(handle, vrx::ParamConfigFile, m_config_path.data());
    if (status == VRX_OK) status = VRX_ParameterSet(handle, vrx::ParamBoardType, &board_type);
    if (status == VRX_OK) status = VRX_ParameterSet(handle, vrx::ParamBoardNumber, &board_number);
    if (status == VRX_OK) status = VRX_ParameterSet(handle, vrx::ParamChannelNumber, &channel);
    if (status == VRX_OK) status = VRX_ParameterSet(handle, vrx::ParamBoardMode, &mode);
    if (status == VRX_OK) status = VRX_Open(&handle);
    if (status != VRX_OK) {
      if (handle != 0) VRX_Destroy(&handle);
      return static_cast<int>(status);
    }
  }
  ctrl.SetCameraHandle(handle);

  const bool comms_only = mode == vrx::BoardModeCommsOnly;
  if (!comms_only) {
    if (const int status = SetUpAcquisition(handle); status != 0) return status;
  }
  ctrl.SetInit(1);
  ctrl.SetAcq(mode == vrx::BoardModeNormal || mode == vrx::BoardModeAcquisitionOnly);
  ctrl.SetComms(mode == vrx::BoardModeNormal || mode == vrx::BoardModeCommsOnly);
  ctrl.SetPostTabsVisible(mode);

  bool coaxpress = false;
  if (!comms_only) {
    if (const int status = IsCoaXPressBoard(handle, coaxpress); status != 0) return status;
  }
  ctrl.ShowPages(coaxpress ? 1 : 0);
  ctrl.SetPreTabsVisible(mode);
  SetTitle(channel);
  UpdateControls();
  PostStateToControl();
  return 0;
}

// Event context, callback registration, the Camera Link flags and the Display page's set-up.
int CVrxPageConfigure::SetUpAcquisition(uint32_t handle) {
  CVrxCtrl &ctrl = *GetCtrl();
  if (const uint32_t status = VRX_ParameterSet(handle, vrx::ParamEventContext, &ctrl);
      status != VRX_OK)
    return static_cast<int>(status);
  VRX_Acquire(handle, vrx::AcqCmdRegisterCallback, reinterpret_cast<void *>(ctrl.GetCallback()));
  ctrl.SetCameraLink(0);
  ctrl.SetCLBase(0);
  uint32_t status_word = 0;
  if (VRX_ParameterGet(handle, vrx::ParamBoardStatusWord, &status_word) == VRX_OK) {
    if (status_word & vrx::StatusCameraLink) ctrl.SetCameraLink(1);
    if (status_word & vrx::StatusClBaseOnly) ctrl.SetCLBase(1);
  }
  ctrl.SetUpDisplay();
  return 0;
}

// Whether the board's "Model" property names a CoaXPress board.
int CVrxPageConfigure::IsCoaXPressBoard(uint32_t handle, bool &coaxpress) {
  const char *info = nullptr;
  if (const uint32_t status = VRX_ParameterGet(handle, vrx::ParamBoardInfo, &info);
      status != VRX_OK)
    return static_cast<int>(status);
  uint8_t model[257] = {};
  std::string properties = info ? info : "";
  const eStat status =
      GetCtrl()->VRC_PropertyGet(model, reinterpret_cast<uint8_t *>(properties.data()),
                                 reinterpret_cast<const uint8_t *>("Model"));
  if (status != VRC_OK) return static_cast<int>(status);
  const std::string_view name(reinterpret_cast<const char *>(model));
  for (std::string_view cxp : vrc::pages::kCoaXPressModelNames)
    if (name == cxp) coaxpress = true;
  return 0;
}

void CVrxPageConfigure::SetTitle(uint32_t channel) {
  char title[128];
  const char *name = vrc::pages::short_model_name(m_board_type);
  if (channel == vrx::ChannelA || channel == vrx::ChannelB)
    std::snprintf(title, sizeof title, "%s Board %d, Channel %c", name, m_board_number + 1,
                  channel == vrx::ChannelA ? 'A' : 'B');
  else
    std::snprintf(title, sizeof title, "%s Board %d, Channel ?", name, m_board_number + 1);
  GetCtrl()->set_text(title);
}

int CVrxPageConfigure::OnRelease() {
  CVrxCtrl &ctrl = *GetCtrl();
  if (ctrl.GetParentHandle()) ctrl.set_text("Vireo Control");
  ctrl.ShowPages(0);
  return CloseBoard();
}

int CVrxPageConfigure::CloseBoard() {
  CVrxCtrl &ctrl = *GetCtrl();
  uint32_t handle = ctrl.GetCameraHandle();
  if (handle != 0 && ctrl.GetAcq() && !m_closed_undestroyed &&
      VRX_Acquire(handle, vrx::AcqCmdAbort, nullptr) != VRX_OK)
    return -1;
  ctrl.StopDisplay();
  if (handle != 0) {
    // A board closed whose handle could not be destroyed is not closed again on the next try.
    if (!m_closed_undestroyed && VRX_Close(&handle) != VRX_OK) return -1;
    m_closed_undestroyed = true;
    if (VRX_Destroy(&handle) != VRX_OK) return -1;
    m_closed_undestroyed = false;
    ctrl.SetCameraHandle(0);
  }
  ctrl.SetLive(0);
  ctrl.SetInit(0);
  UpdateControls();
  PostStateToControl();
  return 0;
}

// Enable states and a refresh of every page, unless the panel already has work queued.
void CVrxPageConfigure::PostStateToControl() {
  CVrxCtrl &ctrl = *GetCtrl();
  if (!ctrl.has_window() || ctrl.has_queued(0x0400, 0x04C8)) return;
  ctrl.send(vrc::control::kMsgUpdateView);
  ctrl.send(vrc::control::kMsgRefresh);
}
