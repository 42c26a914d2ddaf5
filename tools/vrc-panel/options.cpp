// Command-line options of vrc-panel.
#include "tools/vrc-panel/options.h"

#include <string_view>

#include "tools/vrc-panel/script_text.h"

namespace vrc_panel {

const char *usage_text() {
  return "usage: vrc-panel [--pages MASK] [--script FILE|-] [--screenshot-on-exit FILE]\n"
         "  --pages MASK                the pages to build, as page-selection bits (0x4EFF)\n"
         "  --script FILE|-             run the commands of FILE (- for standard input), one\n"
         "                              answer line each, then exit\n"
         "  --screenshot-on-exit FILE   save the panel window as a PNG when it closes\n";
}

ParsedOptions parse_options(std::span<const char *const> arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view name = arguments[i];
    if (name == "--help" || name == "-h") {
      options.help = true;
      continue;
    }
    if (name != "--pages" && name != "--script" && name != "--screenshot-on-exit")
      return {std::nullopt, "unknown option '" + std::string(name) + "'"};
    if (i + 1 == arguments.size())
      return {std::nullopt, "option " + std::string(name) + " needs a value"};
    const std::string value = arguments[++i];
    if (name == "--pages") {
      options.pages = parse_unsigned(value);
      if (!options.pages)
        return {std::nullopt, "--pages takes a number such as 0x4EFF, not '" + value + "'"};
    } else if (name == "--script") {
      options.script = value;
    } else {
      options.screenshot_on_exit = value;
    }
  }
  return {options, {}};
}

}  // namespace vrc_panel
