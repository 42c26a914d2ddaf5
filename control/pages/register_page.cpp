// The Register page: its dialog, buttons and enable rule; the register work is in
// register_access.
#include "control/pages/register_page.h"

#include "control/pages/register_access.h"
#include "control/vrx_ctrl.h"

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;
using namespace vrc::pages;

namespace {

constexpr uint32_t kTimeoutMs = 1000;

constexpr const char *kCameraWrite = "Write to Camera (hex values)";
constexpr const char *kCameraRead = "Read from Camera (hex values)";
constexpr const char *kGrabberWrite = "Write to Frame Grabber (hex values)";
constexpr const char *kGrabberRead = "Read from Frame Grabber (hex values)";

constexpr ControlTemplate kControls[] = {
    {IDC_STATIC, ControlKind::Label, "Address", kCameraWrite},
    {IdCameraWriteAddress, ControlKind::Edit, "", kCameraWrite},
    {IDC_STATIC, ControlKind::Label, "Data", kCameraWrite},
    {IdCameraWriteData, ControlKind::Edit, "", kCameraWrite},
    {IdCameraWrite, ControlKind::Button, "Write", kCameraWrite},
    {IdCameraReset, ControlKind::Button, "Reset", kCameraWrite},
    {IDC_STATIC, ControlKind::Label, "Address", kCameraRead},
    {IdCameraReadAddress, ControlKind::Edit, "", kCameraRead},
    {IDC_STATIC, ControlKind::Label, "NumBytes", kCameraRead},
    {IdCameraReadCount, ControlKind::Edit, "", kCameraRead},
    {IdCameraRead, ControlKind::Button, "Read", kCameraRead},
    {IdCameraReadResult, ControlKind::MultiLineEdit, "", kCameraRead},
    {IDC_STATIC, ControlKind::Label, "Address", kGrabberWrite},
    {IdGrabberWriteAddress, ControlKind::Edit, "", kGrabberWrite},
    {IDC_STATIC, ControlKind::Label, "Data", kGrabberWrite},
    {IdGrabberWriteData, ControlKind::Edit, "", kGrabberWrite},
    {IdGrabberWrite, ControlKind::Button, "Write", kGrabberWrite},
    {IDC_STATIC, ControlKind::Label, "Address", kGrabberRead},
    {IdGrabberReadAddress, ControlKind::Edit, "", kGrabberRead},
    {IdGrabberRead, ControlKind::Button, "Read", kGrabberRead},
    {IdGrabberReadResult, ControlKind::Static, "", kGrabberRead},
};

constexpr vrc::window::DialogTemplate kDialog{16173, "Register", kControls};

constexpr int kEnabledWhenLive[] = {
    IdCameraWriteAddress, IdCameraWriteData,     IdCameraReadAddress, IdCameraReadCount,
    IdCameraReadResult,   IdGrabberWriteAddress, IdGrabberWriteData,  IdGrabberReadAddress,
    IdGrabberReadResult,  IdCameraWrite,         IdGrabberWrite,      IdCameraRead,
    IdGrabberRead,        IdCameraReset};

}  // namespace

CVrcPageDevice::CVrcPageDevice(CVrxCtrl *owner) : CVrxPage(owner, kDialog) {}

bool CVrcPageDevice::Live() const { return GetCtrl()->GetInit() && GetCtrl()->GetAcq(); }

void CVrcPageDevice::on_command(int id, uint16_t code) {
  if (code != vrc::window::BN_CLICKED) return;
  switch (id) {
    case IdCameraWrite: WriteCameraRegister(*this, kTimeoutMs); break;
    case IdGrabberWrite: WriteGrabberRegister(*this, kTimeoutMs); break;
    case IdCameraRead: ReadCameraRegister(*this, kTimeoutMs); break;
    case IdGrabberRead: ReadGrabberRegister(*this, kTimeoutMs); break;
    case IdCameraReset: ResetCamera(*this, kTimeoutMs); break;
    default: break;
  }
}

int CVrcPageDevice::UpdateControls() {
  if (!has_window()) return -1;
  const bool live = Live();
  for (int id : kEnabledWhenLive) EnableItem(id, live);
  return 0;
}

CVrxPage::LRESULT CVrcPageDevice::CheckLive() {
  if (Live()) return 0;
  UpdateControls();
  return -1;
}

// A refresh also sets the enable states, so that the page comes alive when a board is opened.
CVrxPage::LRESULT CVrcPageDevice::OnRefreshMessage() {
  const LRESULT result = CheckLive();
  UpdateControls();
  return result;
}
CVrxPage::LRESULT CVrcPageDevice::OnApplyMessage() { return CheckLive(); }
