// Script commands on the sheet and the controls of its active page: they act as the user
// would, so a control that is missing, disabled or hidden, an index outside a list or a tab
// that is not there is refused with a reason.
#include <QCoreApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>
#include <string>

#include "platform/window/property_sheet.h"
#include "tools/vrc-panel/command_table.h"
#include "tools/vrc-panel/panel_host.h"
#include "tools/vrc-panel/panel_json.h"

namespace vrc_panel {
namespace {

using vrc::window::Button;
using vrc::window::ComboBox;
using vrc::window::ControlKind;
using vrc::window::Edit;
using vrc::window::PropertySheet;
using vrc::window::ScrollBar;
using vrc::window::Window;

std::string id_text(int id) { return "control " + std::to_string(id); }

// Applies `action` to the control `id` of the sheet's active page (or, with `sheet_buttons`,
// to a button of the sheet itself) when it is of the wanted type and the user could reach it.
template <typename ControlType, typename Action>
Answer on_control(Session &session, int id, std::string_view wanted, Action action,
                  bool sheet_buttons = false) {
  PropertySheet *sheet = session.panel.sheet();
  if (!sheet) return Answer::failure("the panel has no window");
  const vrc::window::PropertyPage *page = sheet->active_page();
  Window *found = page ? page->child(id) : nullptr;
  if (!found && sheet_buttons) found = sheet->child(id);
  if (!found) return Answer::failure("no " + id_text(id) + " on the active page");
  auto *control = dynamic_cast<ControlType *>(found);
  if (!control) return Answer::failure(id_text(id) + " is not " + std::string(wanted));
  if (!control->enabled()) return Answer::failure(id_text(id) + " is disabled");
  if (!control->visible()) return Answer::failure(id_text(id) + " is hidden");
  return action(*control);
}

std::optional<Answer> run_tab(Session &session, Words &words) {
  const std::string_view rest = words.rest();
  if (words.at_end()) return std::nullopt;
  std::string caption = parse_quoted(rest).value_or(std::string(rest));
  caption.erase(0, caption.find_first_not_of(' '));
  caption.erase(caption.find_last_not_of(' ') + 1);
  PropertySheet *sheet = session.panel.sheet();
  if (!sheet) return Answer::failure("the panel has no window");
  const std::vector<std::string> captions = sheet->tab_captions();
  const auto it = std::find(captions.begin(), captions.end(), caption);
  if (it == captions.end()) return Answer::failure("no such tab '" + caption + "'");
  sheet->set_active_page(static_cast<int>(it - captions.begin()));
  return Answer::success();
}

std::optional<Answer> run_click(Session &session, Words &words) {
  const std::optional<int32_t> id = parse_signed(words.next());
  if (!id || !words.at_end()) return std::nullopt;
  return on_control<Button>(
      session, *id, "a button",
      [](Button &button) {
        if (button.kind() != ControlKind::Button)
          return Answer::failure(id_text(button.id()) + " is not a button");
        button.click_as_user();
        return Answer::success();
      },
      true);
}

std::optional<Answer> run_select(Session &session, Words &words) {
  const std::optional<int32_t> id = parse_signed(words.next());
  if (!id) return std::nullopt;
  const std::optional<std::string> text = parse_quoted(words.rest());
  std::optional<int32_t> index;
  if (!text) {
    index = parse_signed(words.next());
    if (!index || !words.at_end()) return std::nullopt;
  }
  return on_control<ComboBox>(session, *id, "a combo box", [&](ComboBox &combo) {
    int chosen = index.value_or(-1);
    if (text) {
      for (int i = combo.count() - 1; i >= 0; --i)
        if (combo.item_text(i) == *text) chosen = i;
      if (chosen < 0) return Answer::failure(id_text(combo.id()) + " has no item '" + *text + "'");
    } else if (chosen < 0 || chosen >= combo.count()) {
      return Answer::failure("index " + std::to_string(chosen) +
                             " out of range: " + id_text(combo.id()) + " has " +
                             std::to_string(combo.count()) + " items");
    }
    combo.select_as_user(chosen);
    return Answer::success();
  });
}

std::optional<Answer> run_set(Session &session, Words &words) {
  const std::optional<int32_t> id = parse_signed(words.next());
  if (!id) return std::nullopt;
  const std::string text(words.rest());
  return on_control<Edit>(session, *id, "an edit field", [&](Edit &edit) {
    edit.type_as_user(text);
    return Answer::success();
  });
}

std::optional<Answer> run_check(Session &session, Words &words) {
  const std::optional<int32_t> id = parse_signed(words.next());
  const std::optional<int32_t> state = parse_signed(words.next());
  if (!id || !state || (*state != 0 && *state != 1) || !words.at_end()) return std::nullopt;
  return on_control<Button>(session, *id, "a check box or radio button", [&](Button &button) {
    const bool on = *state == 1;
    if (button.kind() == ControlKind::Radio) {
      // A click never clears a radio button; choosing another one of its group does.
      if (!on)
        return Answer::failure(id_text(button.id()) +
                               " is a radio button: check another one of its group");
    } else if (button.kind() == ControlKind::Check) {
      // The click toggles; start from the other state so that it ends where asked.
      button.set_checked(!on);
    } else {
      return Answer::failure(id_text(button.id()) + " is not a check box or radio button");
    }
    button.click_as_user();
    return Answer::success();
  });
}

std::optional<Answer> run_scroll(Session &session, Words &words) {
  const std::optional<int32_t> id = parse_signed(words.next());
  const std::optional<int32_t> position = parse_signed(words.next());
  if (!id || !position || !words.at_end()) return std::nullopt;
  return on_control<ScrollBar>(session, *id, "a scroll bar", [&](ScrollBar &bar) {
    const auto *widget = static_cast<const QScrollBar *>(bar.widget());
    if (*position < widget->minimum() || *position > widget->maximum())
      return Answer::failure("position " + std::to_string(*position) + " out of range " +
                             std::to_string(widget->minimum()) + ".." +
                             std::to_string(widget->maximum()));
    bar.scroll_as_user(*position);
    return Answer::success();
  });
}

std::optional<Answer> run_key(Session &session, Words &words) {
  const std::optional<int32_t> id = parse_signed(words.next());
  const std::string_view key_name = words.next();
  if (!id || (key_name != "enter" && key_name != "escape") || !words.at_end()) return std::nullopt;
  PropertySheet *sheet = session.panel.sheet();
  if (!sheet) return Answer::failure("the panel has no window");
  vrc::window::PropertyPage *page = sheet->active_page();
  Window *target = *id == 0 ? page : (page ? page->child(*id) : nullptr);
  if (!target || !target->widget())
    return Answer::failure("no " + id_text(*id) + " on the active page");
  // Sent to the widget as the keyboard would: an unhandled key goes on to the page.
  QKeyEvent press(QEvent::KeyPress, key_name == "enter" ? Qt::Key_Return : Qt::Key_Escape,
                  Qt::NoModifier);
  QCoreApplication::sendEvent(target->widget(), &press);
  return Answer::success();
}

std::optional<Answer> run_dump(Session &session, Words &words) {
  if (!words.at_end()) return std::nullopt;
  PropertySheet *sheet = session.panel.sheet();
  if (!sheet) return Answer::failure("the panel has no window");
  return Answer::success(panel_json(*sheet));
}

constexpr Command kSheetCommands[] = {
    {"tab", "CAPTION", run_tab},
    {"click", "ID", run_click},
    {"select", "ID INDEX|\"TEXT\"", run_select},
    {"set", "ID TEXT", run_set},
    {"check", "ID 0|1", run_check},
    {"scroll", "ID POS", run_scroll},
    {"key", "ID enter|escape", run_key},
    {"dump", "", run_dump},
};

}  // namespace

std::span<const Command> sheet_commands() { return kSheetCommands; }

}  // namespace vrc_panel
