// CVrxPage: message routing, Enter and Escape, dialog initialisation.
#include "control/vrx_page.h"

#include "control/vrx_ctrl.h"
#include "control/vrx_messages.h"

using vrc::window::LPARAM;
using vrc::window::WPARAM;

CVrxPage::CVrxPage(CVrxCtrl *owner, const vrc::window::DialogTemplate &dialog)
    : PropertyPage(dialog), m_ctrl(owner) {}

int CVrxPage::UpdateControls() { return 0; }

CVrxPage::LRESULT CVrxPage::OnRefreshMessage() { return 0; }

CVrxPage::LRESULT CVrxPage::OnApplyMessage() { return 0; }

CVrxPage::LRESULT CVrxPage::handle_message(uint32_t message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case vrc::control::kMsgRefresh: return OnRefreshMessage();
    case vrc::control::kMsgApply: return OnApplyMessage();
    case vrc::control::kMsgUpdateView: return UpdateControls();
    default: return PropertyPage::handle_message(message, wparam, lparam);
  }
}

// Enter and Escape would close a dialog; the modeless sheet stays open, so both are swallowed.
bool CVrxPage::pre_translate_key(int key) { return key == 13 || key == 27; }

bool CVrxPage::on_init_dialog() {
  PropertyPage::on_init_dialog();
  update_data(true);
  UpdateControls();
  update_data(false);
  return true;
}

uint32_t CVrxPage::handle() const { return m_ctrl ? m_ctrl->GetCameraHandle() : 0; }
