// JSON of the panel, the desktop's records and the acquisition figures.
#include "tools/vrc-panel/panel_json.h"

#include <QScrollBar>

#include "platform/window/desktop.h"
#include "tools/vrc-panel/json_writer.h"

namespace vrc_panel {
namespace {

using vrc::window::Button;
using vrc::window::ComboBox;
using vrc::window::Control;
using vrc::window::ControlKind;
using vrc::window::ScrollBar;

void write_state(JsonWriter &json, const vrc::window::Window &window) {
  json.member("enabled", window.enabled()).member("visible", window.visible());
}

void write_control(JsonWriter &json, const Control &control) {
  json.begin_object()
      .member("id", control.id())
      .member("kind", vrc::window::kind_name(control.kind()))
      .member("text", std::string_view(control.text()));
  write_state(json, control);
  switch (control.kind()) {
    case ControlKind::Combo: {
      const auto &combo = static_cast<const ComboBox &>(control);
      json.member("selection", combo.current()).key("items").begin_array();
      for (int i = 0; i < combo.count(); ++i) json.value(std::string_view(combo.item_text(i)));
      json.end_array();
      break;
    }
    case ControlKind::Check:
    case ControlKind::Radio:
      json.member("checked", static_cast<const Button &>(control).checked());
      break;
    case ControlKind::ScrollBar: {
      const auto *bar = static_cast<const QScrollBar *>(control.widget());
      json.member("position", bar->value())
          .member("min", bar->minimum())
          .member("max", bar->maximum());
      break;
    }
    default: break;
  }
  json.end_object();
}

const char *answer_name(int button) {
  switch (button) {
    case vrc::window::IDCANCEL: return "cancel";
    case vrc::window::IDYES: return "yes";
    case vrc::window::IDNO: return "no";
    default: return "ok";
  }
}

}  // namespace

std::string panel_json(const vrc::window::PropertySheet &sheet) {
  JsonWriter json;
  json.begin_object().member("title", std::string_view(sheet.text()));
  json.key("tabs").strings(sheet.tab_captions());
  const vrc::window::PropertyPage *active = sheet.active_page();
  if (active)
    json.member("active", std::string_view(active->caption()));
  else
    json.key("active").null();
  json.key("buttons").begin_array();
  for (const int id : kSheetButtonIds) {
    const vrc::window::Window *button = sheet.child(id);
    if (!button) continue;
    json.begin_object().member("id", id).member("text", std::string_view(button->text()));
    write_state(json, *button);
    json.end_object();
  }
  json.end_array().key("controls").begin_array();
  if (active && active->has_window())
    for (const auto &control : active->controls()) write_control(json, *control);
  json.end_array().end_object();
  return json.text();
}

std::string boxes_json(std::span<const vrc::window::ScriptedDesktop::ShownBox> boxes) {
  JsonWriter json;
  json.begin_array();
  for (const auto &box : boxes) {
    json.begin_object()
        .member("caption", std::string_view(box.caption))
        .member("text", std::string_view(box.text))
        .member("type", box.type)
        .member("answer", answer_name(box.answer))
        .end_object();
  }
  return json.end_array().text();
}

std::string dialogs_json(std::span<const vrc::window::FileDialogRequest> requests,
                         std::span<const std::optional<std::string>> answers) {
  JsonWriter json;
  json.begin_array();
  for (std::size_t i = 0; i < requests.size(); ++i) {
    const vrc::window::FileDialogRequest &request = requests[i];
    json.begin_object()
        .member("save", request.save)
        .member("title", std::string_view(request.title));
    json.key("filters").begin_array();
    for (const vrc::window::FileFilter &filter : request.filters)
      json.begin_array()
          .value(std::string_view(filter.description))
          .value(std::string_view(filter.pattern))
          .end_array();
    json.end_array()
        .member("filter_index", request.filter_index)
        .member("initial_name", std::string_view(request.initial_name))
        .member("flags", request.flags)
        .key("answer");
    if (i < answers.size() && answers[i])
      json.value(std::string_view(*answers[i]));
    else
      json.null();
    json.end_object();
  }
  return json.end_array().text();
}

std::string figures_json(const AcquisitionFigures &figures) {
  JsonWriter json;
  json.begin_object()
      .member("acquired", figures.acquired)
      .member("painted", figures.painted)
      .member("dropped", figures.dropped)
      .key("fps")
      .value_fixed2(figures.fps)
      .end_object();
  return json.text();
}

}  // namespace vrc_panel
