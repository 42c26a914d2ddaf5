// Scripted desktop services of vrc-panel.
#include "tools/vrc-panel/script_desktop.h"

namespace vrc_panel {

ScriptDesktop::ScriptDesktop(std::function<void(std::string_view)> show_status)
    : m_show_status(std::move(show_status)) {
  set_real_sleep(true);
}

vrc::window::FileDialogResult ScriptDesktop::file_dialog(
    const vrc::window::FileDialogRequest &request) {
  vrc::window::FileDialogResult result = ScriptedDesktop::file_dialog(request);
  m_file_answers.push_back(result.accepted ? std::optional(result.path) : std::nullopt);
  return result;
}

void ScriptDesktop::set_status_text(std::string_view text) {
  ScriptedDesktop::set_status_text(text);
  m_show_status(text);
}

}  // namespace vrc_panel
