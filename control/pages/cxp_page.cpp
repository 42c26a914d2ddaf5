// The CXP page: its dialog, the link settings in the order they reach the board, the camera
// register controls and the link's state.
#include "control/pages/cxp_page.h"

#include <string>

#include "control/pages/cxp_choices.h"
#include "control/pages/register_access.h"
#include "control/vrx_ctrl.h"
#include "platform/board/vrx_params.h"

using vrc::pages::bound_combo;
using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::IDC_STATIC;
namespace pages = vrc::pages;

namespace {

enum : int {
  IdLinkSpeed = 17410,
  IdLinkCount = 17411,
  IdPower = 17412,
  IdCurrentSpeed = 17413,
  IdCurrentLinks = 17414,
  IdCameraPresent = 17415,
  IdPowerState = 17416,
  IdLink1 = 17417,  // 17417 to 17420: links 1 to 4
  IdTimeout = 17422
};
constexpr int kLinkCount = 4;

constexpr const char *kModeGroup = "Mode";
constexpr const char *kStatusGroup = "Status";
constexpr const char *kWriteGroup = "Write to Camera (hex values)";
constexpr const char *kReadGroup = "Read from Camera (hex values)";

constexpr ControlTemplate kControls[] = {
    {IDC_STATIC, ControlKind::Label, "Link Speed", kModeGroup},
    {IdLinkSpeed, ControlKind::Combo, "", kModeGroup},
    {IDC_STATIC, ControlKind::Label, "Link Count", kModeGroup},
    {IdLinkCount, ControlKind::Combo, "", kModeGroup},
    {IDC_STATIC, ControlKind::Label, "Power", kModeGroup},
    {IdPower, ControlKind::Combo, "", kModeGroup},
    {IDC_STATIC, ControlKind::Label, "Link Speed", kStatusGroup},
    {IdCurrentSpeed, ControlKind::Static, "", kStatusGroup},
    {IDC_STATIC, ControlKind::Label, "Link Count", kStatusGroup},
    {IdCurrentLinks, ControlKind::Static, "", kStatusGroup},
    {IDC_STATIC, ControlKind::Label, "Camera Present", kStatusGroup},
    {IdCameraPresent, ControlKind::Static, "", kStatusGroup},
    {IDC_STATIC, ControlKind::Label, "Power", kStatusGroup},
    {IdPowerState, ControlKind::Static, "", kStatusGroup},
    {IDC_STATIC, ControlKind::Label, "Link 1", kStatusGroup},
    {IdLink1, ControlKind::Static, "", kStatusGroup},
    {IDC_STATIC, ControlKind::Label, "Link 2", kStatusGroup},
    {IdLink1 + 1, ControlKind::Static, "", kStatusGroup},
    {IDC_STATIC, ControlKind::Label, "Link 3", kStatusGroup},
    {IdLink1 + 2, ControlKind::Static, "", kStatusGroup},
    {IDC_STATIC, ControlKind::Label, "Link 4", kStatusGroup},
    {IdLink1 + 3, ControlKind::Static, "", kStatusGroup},
    {IDC_STATIC, ControlKind::Label, "Address", kWriteGroup},
    {pages::IdCameraWriteAddress, ControlKind::Edit, "", kWriteGroup},
    {IDC_STATIC, ControlKind::Label, "Data", kWriteGroup},
    {pages::IdCameraWriteData, ControlKind::Edit, "", kWriteGroup},
    {pages::IdCameraWrite, ControlKind::Button, "Write", kWriteGroup},
    {pages::IdCameraReset, ControlKind::Button, "Reset", kWriteGroup},
    {IDC_STATIC, ControlKind::Label, "Address", kReadGroup},
    {pages::IdCameraReadAddress, ControlKind::Edit, "", kReadGroup},
    {IDC_STATIC, ControlKind::Label, "NumBytes", kReadGroup},
    {pages::IdCameraReadCount, ControlKind::Edit, "", kReadGroup},
    {pages::IdCameraRead, ControlKind::Button, "Read", kReadGroup},
    {pages::IdCameraReadResult, ControlKind::MultiLineEdit, "", kReadGroup},
    {IDC_STATIC, ControlKind::Label, "Register time-out (ms)", ""},
    {IdTimeout, ControlKind::Edit, "", ""},
};

constexpr vrc::window::DialogTemplate kDialog{16174, "CXP", kControls};

// In the order of apply and refresh.
constexpr pages::BoundControl kBound[] = {
    bound_combo(IdLinkSpeed, vrx::ParamCxpLinkSpeed, pages::kCxpLinkSpeedChoices),
    bound_combo(IdLinkCount, vrx::ParamCxpLinkCount, pages::kCxpLinkCountChoices),
    bound_combo(IdPower, vrx::ParamCxpPower, pages::kCxpPowerChoices),
};

constexpr int kRegisterControls[] = {
    pages::IdCameraWriteAddress, pages::IdCameraWriteData,  pages::IdCameraReadAddress,
    pages::IdCameraReadCount,    pages::IdCameraReadResult, pages::IdCameraWrite,
    pages::IdCameraRead,         pages::IdCameraReset,      IdTimeout};

// Links in use for a current link-count value: 1, 2 or 4, else none.
int links_in_use(uint32_t links) {
  switch (links) {
    case 0xC0091202: return 1;
    case 0xC0091203: return 2;
    case 0xC0091204: return 4;
    default: return 0;
  }
}

}  // namespace

CVrcPageCxp::CVrcPageCxp() : CVrcPageCxp(nullptr) {}

CVrcPageCxp::CVrcPageCxp(CVrxCtrl *owner) : BoundPage(owner, kDialog, kBound) {}

void CVrcPageCxp::do_data_exchange(vrc::window::DataExchange &exchange) {
  BoundPage::do_data_exchange(exchange);
  exchange.unsigned_number(IdTimeout, m_timeout_ms);
}

int CVrcPageCxp::UpdateControls() {
  if (!has_window()) return -1;
  const bool live = IsLive();
  for (const pages::BoundControl &bound : kBound) EnableItem(bound.id, live);
  for (int id : kRegisterControls) EnableItem(id, live);
  ShowLinkState(live);
  return 0;
}

// The speed and links texts are those of the Mode lists, "Automatic" aside; a failed read
// shows as nothing found.
void CVrcPageCxp::ShowLinkState(bool live) {
  const auto read = [&](uint32_t parameter) {
    uint32_t value = 0;
    VRX_ParameterGet(handle(), parameter, &value);
    return value;
  };
  const auto show = [&](int id, const char *text) {
    if (auto *control = child(id)) control->set_text(live ? text : "");
  };
  const uint32_t speed = live ? read(vrx::ParamCxpCurrentSpeed) : 0;
  const uint32_t links = live ? read(vrx::ParamCxpCurrentLinks) : 0;
  const uint32_t present = live ? read(vrx::ParamCxpDiscovery) : 0;
  const uint32_t power = live ? read(vrx::ParamCxpPowerState) : 0;
  const auto listed = [](std::span<const pages::Choice> list, uint32_t value) {
    return value == list[0].value ? "Unknown" : pages::text_of(list, value, "Unknown");
  };
  show(IdCurrentSpeed, listed(pages::kCxpLinkSpeedChoices, speed));
  show(IdCurrentLinks, listed(pages::kCxpLinkCountChoices, links));
  show(IdCameraPresent, pages::text_of(pages::kCxpPresentTexts, present, "No"));
  show(IdPowerState, pages::text_of(pages::kCxpPowerStateTexts, power, "Unavailable"));
  for (int link = 0; link < kLinkCount; ++link)
    show(IdLink1 + link, link < links_in_use(links) ? "IN USE" : "Not in use");
}

void CVrcPageCxp::on_command(int id, uint16_t code) {
  if (code != vrc::window::BN_CLICKED) {
    BoundPage::on_command(id, code);
    return;
  }
  switch (id) {
    case pages::IdCameraWrite:
      update_data(true);
      pages::WriteCameraRegister(*this, m_timeout_ms);
      break;
    case pages::IdCameraRead:
      update_data(true);
      pages::ReadCameraRegister(*this, m_timeout_ms);
      break;
    case pages::IdCameraReset:
      update_data(true);
      pages::ResetCamera(*this, m_timeout_ms);
      break;
    default: BoundPage::on_command(id, code); break;
  }
}
