// The desktop services while a script runs: message boxes and file dialogs take the answers the
// script gave beforehand (else OK or Yes, and cancel) and are recorded with those answers; the
// status-bar text also reaches the main window; sleeping really waits, since the simulated
// board runs in real time.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/window/scripted_desktop.h"

namespace vrc_panel {

class ScriptDesktop : public vrc::window::ScriptedDesktop {
 public:
  explicit ScriptDesktop(std::function<void(std::string_view)> show_status);

  // The path each recorded file dialog answered, or nothing when it was cancelled; in the
  // order of file_requests().
  const std::vector<std::optional<std::string>> &file_answers() const { return m_file_answers; }

  vrc::window::FileDialogResult file_dialog(const vrc::window::FileDialogRequest &request) override;
  void set_status_text(std::string_view text) override;

 private:
  std::function<void(std::string_view)> m_show_status;
  std::vector<std::optional<std::string>> m_file_answers;
};

}  // namespace vrc_panel
