// Two sample pages that between them hold every control kind, used by the control tests and for
// the screenshot of the layer's look.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/window/property_page.h"

namespace window_test {

using vrc::window::ControlKind;
using vrc::window::ControlTemplate;
using vrc::window::DialogTemplate;
using vrc::window::IDC_STATIC;

inline constexpr ControlTemplate kAcquisitionControls[] = {
    {IDC_STATIC, ControlKind::Label, "Source", "Acquisition Trigger"},
    {100, ControlKind::Combo, "", "Acquisition Trigger"},
    {IDC_STATIC, ControlKind::Label, "Mode", "Acquisition Trigger"},
    {101, ControlKind::Combo, "", "Acquisition Trigger"},
    {IDC_STATIC, ControlKind::Label, "Delay", "Acquisition Trigger"},
    {102, ControlKind::Edit, "", "Acquisition Trigger"},
    {IDC_STATIC, ControlKind::Label, "Timer 1 (usecs)", "Exposure Timers"},
    {103, ControlKind::Edit, "", "Exposure Timers"},
    {104, ControlKind::Check, "Chain Enable", "Exposure Timers"},
    {IDC_STATIC, ControlKind::Label, "Chain Status", "Exposure Timers"},
    {105, ControlKind::Static, " Master", "Exposure Timers"},
    {106, ControlKind::Radio, "Field 1 then 2", "Interlace"},
    {107, ControlKind::Radio, "Field 2 then 1", "Interlace"},
    {108, ControlKind::Radio, "Field next", "Interlace"},
    {109, ControlKind::Button, "Expose", "Interlace"},
    {110, ControlKind::Button, "Select All", "Interlace"},
};

inline constexpr ControlTemplate kRegisterControls[] = {
    {200, ControlKind::GroupBox, "Read from Camera (hex values)", ""},
    {IDC_STATIC, ControlKind::Label, "Address", "Read from Camera (hex values)"},
    {201, ControlKind::Edit, "", "Read from Camera (hex values)"},
    {202, ControlKind::Button, "Read", "Read from Camera (hex values)"},
    {203, ControlKind::MultiLineEdit, "", "Read from Camera (hex values)"},
    {IDC_STATIC, ControlKind::Label, "Gain", "Lookup Table"},
    {204, ControlKind::ScrollBar, "", "Lookup Table"},
    {205, ControlKind::Check, "Enable", "Lookup Table"},
};

inline constexpr DialogTemplate kAcquisitionDialog{16300, "Acq Trig", kAcquisitionControls};
inline constexpr DialogTemplate kRegisterDialog{16301, "Register", kRegisterControls};

// A page that records its notifications and exchanges a few members.
class SamplePage : public vrc::window::PropertyPage {
 public:
  using PropertyPage::PropertyPage;

  struct Notification {
    int id;
    uint16_t code;
  };
  std::vector<Notification> commands;
  std::vector<std::pair<int, int>> scrolls;
  std::vector<int> keys;
  bool swallow_keys = true;

  int32_t source_index = 1;
  int32_t delay = -5;
  uint32_t timer = 4000000000u;
  int32_t chain = 1;
  int32_t field = 2;
  std::string status = " Slave ";

  bool pre_translate_key(int key) override {
    keys.push_back(key);
    return swallow_keys && (key == 13 || key == 27);
  }

 protected:
  void do_data_exchange(vrc::window::DataExchange& dx) override {
    if (dialog().id != kAcquisitionDialog.id) return;
    dx.combo_index(100, source_index);
    dx.number(102, delay);
    dx.unsigned_number(103, timer);
    dx.check(104, chain);
    dx.text(105, status);
    dx.radio(106, field);
  }
  bool on_init_dialog() override {
    if (auto* combo = control<vrc::window::ComboBox>(100))
      for (auto [value, text] : {std::pair{0xC0020413u, "Opto 1"}, std::pair{0xC0020414u, "Opto 2"},
                                 std::pair{0xC002041Cu, "Internal Timer"}})
        combo->set_item_data(combo->add_string(text), value);
    if (auto* combo = control<vrc::window::ComboBox>(101)) combo->add_string("Each Positive Edge");
    if (auto* bar = control<vrc::window::ScrollBar>(204)) bar->set_range(0, 255);
    return PropertyPage::on_init_dialog();
  }
  void on_command(int id, uint16_t code) override { commands.push_back({id, code}); }
  void on_scroll(int id, int position) override { scrolls.emplace_back(id, position); }
};

}  // namespace window_test
