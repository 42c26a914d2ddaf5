// vrc-panel's command line: vrc-panel [--pages MASK] [--script FILE|-] [--screenshot-on-exit FILE]
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace vrc_panel {

struct Options {
  std::optional<uint32_t> pages;      // page-selection bits; none: the panel's default pages
  std::optional<std::string> script;  // a file, or "-" for standard input; none: interactive
  std::optional<std::string> screenshot_on_exit;  // PNG of the panel saved as it closes
  bool help = false;
};

struct ParsedOptions {
  std::optional<Options> options;
  std::string error;  // why the command line was refused, when `options` is empty
};

// The arguments after the program name (Qt's own options already taken out).
ParsedOptions parse_options(std::span<const char *const> arguments);
const char *usage_text();

}  // namespace vrc_panel
