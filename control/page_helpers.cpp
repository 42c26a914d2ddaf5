// The helpers CVrxPage offers its pages: combo lists and selections tied to board or display
// parameters, enable and show, numbers and scroll bars, change notifications, flags and the
// signal-source codes of bits 24 to 27.
#include <array>
#include <string>

#include "control/vrx_ctrl.h"
#include "control/vrx_page.h"
#include "platform/board/vrx_sdk.h"

using vrc::window::ComboBox;

namespace {

constexpr int kMaxListItems = 100;

// Signal-source code (bits 24-27) by radio index.
constexpr std::array<uint32_t, 8> kSignalSources{0x1, 0x2, 0x4, 0x8, 0x5, 0x9, 0x6, 0xA};

// The index of the last item of `box` whose data is `value`, or -1.
int last_item_with(const ComboBox &box, uint32_t value) {
  for (int i = box.count() - 1; i >= 0; --i)
    if (box.item_data(i) == value) return i;
  return -1;
}

}  // namespace

int CVrxPage::FillList(int id, const vrc::pages::Choice *table) {
  auto *box = id != 0 ? control<ComboBox>(id) : nullptr;
  if (!box || !table) return -1;
  for (int i = 0; i < kMaxListItems && table[i].text[0] != '\0'; ++i) {
    box->insert_string(i, table[i].text);
    box->set_item_data(i, table[i].value);
  }
  return 0;
}

int CVrxPage::SelectBySdkValue(int id, uint32_t parameter, int32_t &selection) {
  auto *box = control<ComboBox>(id);
  uint32_t value = 0;
  if (!box || VRX_ParameterGet(handle(), parameter, &value) != VRX_OK) return -1;
  const int index = last_item_with(*box, value);
  if (index < 0) return -1;
  selection = index;
  return 0;
}

int CVrxPage::SelectByDisplayValue(int id, uint32_t display, uint32_t parameter,
                                   int32_t &selection) {
  auto *box = control<ComboBox>(id);
  uint32_t value = 0;
  if (!box || VDL_DisplayParameterGet(display, parameter, &value) != VRX_OK) return -1;
  const int index = last_item_with(*box, value);
  if (index < 0) return -1;
  selection = index;
  return 0;
}

int CVrxPage::WriteSelection(int id, uint32_t parameter, int32_t selection) {
  auto *box = control<ComboBox>(id);
  if (!box) return -1;
  uint32_t value = box->item_data(selection);
  return VRX_ParameterSet(handle(), parameter, &value) == VRX_OK ? 0 : -1;
}

int CVrxPage::EnableItem(int id, bool enable) {
  vrc::window::Window *item = child(id);
  if (!item) return -1;
  item->enable(enable);
  return 0;
}

int CVrxPage::ShowItem(int id, bool show) {
  vrc::window::Window *item = child(id);
  if (!item) return -1;
  item->show(show ? vrc::window::SW_SHOW : vrc::window::SW_HIDE);
  return 0;
}

int CVrxPage::SetNumber(int id, int32_t value, bool show) {
  vrc::window::Window *item = child(id);
  if (!item) return -1;
  item->set_text(std::to_string(value));
  item->show(show ? vrc::window::SW_SHOW : vrc::window::SW_HIDE);
  return 0;
}

int CVrxPage::SetScroll(int id, int position, bool enable, bool show) {
  auto *bar = control<vrc::window::ScrollBar>(id);
  if (!bar) return -1;
  bar->set_position(position);
  bar->enable(enable);
  bar->show(show ? vrc::window::SW_SHOW : vrc::window::SW_HIDE);
  return 0;
}

int CVrxPage::OnChangedWithData() {
  update_data(true);
  return OnChanged();
}

int CVrxPage::OnChanged() {
  if (m_ctrl) m_ctrl->SetApply(1);
  UpdateControls();
  return 0;
}

int CVrxPage::FlagFromParameter(uint32_t parameter, int32_t &flag) {
  uint32_t value = 0;
  if (VRX_ParameterGet(handle(), parameter, &value) != VRX_OK) return -1;
  flag = value != 1 ? 1 : 0;
  return 0;
}

int CVrxPage::WriteNumberPlusOne(uint32_t parameter, int32_t value) {
  uint32_t word = static_cast<uint32_t>(value) + 1;
  return VRX_ParameterSet(handle(), parameter, &word) == VRX_OK ? 0 : -1;
}

int CVrxPage::SignalSourceToIndex(uint32_t parameter, uint32_t mask, int32_t &index) {
  uint32_t value = mask;
  if (VRX_ParameterGet(handle(), parameter, &value) != VRX_OK) return -1;
  if (mask != 0) value = (value & mask) == mask ? 0x1000000 : 0x2000000;
  const uint32_t code = (value >> 24) & 0xF;
  for (std::size_t i = 0; i < kSignalSources.size(); ++i) {
    if (kSignalSources[i] == code) {
      index = static_cast<int32_t>(i);
      return 0;
    }
  }
  index = -1;
  return -1;
}

int CVrxPage::IndexToSignalSource(uint32_t parameter, uint32_t base, int32_t index) {
  if (index < 0 || index > 7) return -1;
  uint32_t value = base | (kSignalSources[static_cast<std::size_t>(index)] << 24);
  return VRX_ParameterSet(handle(), parameter, &value) == VRX_OK ? 0 : -1;
}
