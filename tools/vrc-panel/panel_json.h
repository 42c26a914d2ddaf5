// The JSON answers of vrc-panel: the panel as `dump` shows it, the message boxes and file
// dialogs a script has met, and the acquisition figures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "platform/window/property_sheet.h"
#include "platform/window/scripted_desktop.h"

namespace vrc_panel {

// The sheet's own buttons, in the order `dump` lists them: the five acquisition buttons, then
// Apply Now and Help.
inline constexpr int kSheetButtonIds[] = {17000, 17001, 17002, 17003, 17004, 12321, 9};

// {"title", "tabs", "active", "buttons", "controls"}: the sheet's title, its tab captions, the
// active tab, the sheet's buttons and every control of the active page in creation order.
std::string panel_json(const vrc::window::PropertySheet &sheet);

// [{"caption", "text", "type", "answer"}, ...]
std::string boxes_json(std::span<const vrc::window::ScriptedDesktop::ShownBox> boxes);

// [{"save", "title", "filters", "filter_index", "initial_name", "flags", "answer"}, ...]; the
// answer is the path chosen, or null for a cancelled dialog.
std::string dialogs_json(std::span<const vrc::window::FileDialogRequest> requests,
                         std::span<const std::optional<std::string>> answers);

struct AcquisitionFigures {
  uint64_t acquired = 0;  // buffers the board reported ready
  uint64_t painted = 0;   // buffers fetched and shown
  uint64_t dropped = 0;   // stale buffers handed back unshown
  double fps = 0;         // the frame rate the panel measured (its title's)
};
std::string figures_json(const AcquisitionFigures &figures);

}  // namespace vrc_panel
