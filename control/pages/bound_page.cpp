// Bound controls: data exchange, combo filling, apply, refresh and change notifications.
#include "control/pages/bound_page.h"

#include "control/vrx_ctrl.h"
#include "platform/board/vrx_sdk.h"

namespace vrc::pages {

using vrc::window::BN_CLICKED;
using vrc::window::CBN_SELCHANGE;
using vrc::window::EN_CHANGE;
using vrc::window::EN_KILLFOCUS;

BoundPage::BoundPage(CVrxCtrl *owner, const vrc::window::DialogTemplate &dialog,
                     std::span<const BoundControl> bound)
    : CVrxPage(owner, dialog), m_bound(bound) {
  m_values.reserve(bound.size());
  for (const BoundControl &control : bound) m_values.push_back(control.default_value);
}

bool BoundPage::IsLive() const {
  const CVrxCtrl *ctrl = GetCtrl();
  return ctrl && ctrl->GetInit() && ctrl->GetAcq();
}

const BoundControl *BoundPage::Find(int id) const {
  for (const BoundControl &control : m_bound)
    if (control.id == id) return &control;
  return nullptr;
}

int32_t BoundPage::Value(int id) const {
  const BoundControl *control = Find(id);
  return control ? m_values[static_cast<std::size_t>(control - m_bound.data())] : 0;
}

uint32_t BoundPage::SelectedData(int id) const {
  const auto *box = control<vrc::window::ComboBox>(id);
  return box ? box->item_data(Value(id)) : 0xFFFFFFFFu;
}

void BoundPage::do_data_exchange(vrc::window::DataExchange &exchange) {
  for (std::size_t i = 0; i < m_bound.size(); ++i) {
    const BoundControl &control = m_bound[i];
    int32_t &value = m_values[i];
    switch (control.kind) {
      case BoundKind::Combo: exchange.combo_index(control.id, value); break;
      case BoundKind::Number: exchange.number(control.id, value); break;
      case BoundKind::Unsigned: {
        auto word = static_cast<uint32_t>(value);
        exchange.unsigned_number(control.id, word);
        value = static_cast<int32_t>(word);
        break;
      }
      case BoundKind::Flag: exchange.check(control.id, value); break;
    }
  }
}

bool BoundPage::on_init_dialog() {
  for (const BoundControl &control : m_bound)
    if (control.kind == BoundKind::Combo) FillList(control.id, control.choices);
  return CVrxPage::on_init_dialog();
}

int BoundPage::Write(const BoundControl &bound, int32_t value) {
  if (bound.kind == BoundKind::Combo) return WriteSelection(bound.id, bound.parameter, value);
  uint32_t word = static_cast<uint32_t>(value);
  if (bound.kind == BoundKind::Flag) word = value ? bound.on : bound.off;
  return VRX_ParameterSet(handle(), bound.parameter, &word) == VRX_OK ? 0 : -1;
}

int BoundPage::Read(const BoundControl &bound, int32_t &value) {
  if (bound.kind == BoundKind::Combo) return SelectBySdkValue(bound.id, bound.parameter, value);
  uint32_t word = 0;
  if (VRX_ParameterGet(handle(), bound.parameter, &word) != VRX_OK) return -1;
  value = bound.kind == BoundKind::Flag ? (word == bound.on ? 1 : 0) : static_cast<int32_t>(word);
  return 0;
}

CVrxPage::LRESULT BoundPage::OnApplyMessage() {
  if (!IsLive()) {
    UpdateControls();
    return -1;
  }
  for (std::size_t i = 0; i < m_bound.size(); ++i)
    if (Write(m_bound[i], m_values[i]) != 0) return -1;
  update_data(false);
  UpdateControls();
  return 0;
}

CVrxPage::LRESULT BoundPage::OnRefreshMessage() {
  if (!IsLive()) {
    UpdateControls();
    return -1;
  }
  for (std::size_t i = 0; i < m_bound.size(); ++i)
    if (Read(m_bound[i], m_values[i]) != 0) return -1;
  if (ReadExtras() != 0) return -1;
  update_data(false);
  UpdateControls();
  return 0;
}

// A combo's selection, a check box's click and an edit's focus loss take the dialog's values;
// typing in an edit only marks the sheet as changed.
void BoundPage::on_command(int id, uint16_t code) {
  const BoundControl *bound = Find(id);
  if (!bound) return;
  switch (bound->kind) {
    case BoundKind::Combo:
      if (code == CBN_SELCHANGE) OnChangedWithData();
      break;
    case BoundKind::Flag:
      if (code == BN_CLICKED) OnChangedWithData();
      break;
    case BoundKind::Number:
    case BoundKind::Unsigned:
      if (code == EN_KILLFOCUS) OnChangedWithData();
      if (code == EN_CHANGE) OnChanged();
      break;
  }
}

}  // namespace vrc::pages
