// Fuzz target: vrc-panel's script text on arbitrary bytes: lines, words, numbers, quoted texts,
// escapes, and the answer, callback and JSON texts made from them.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "tools/vrc-panel/answer_lines.h"
#include "tools/vrc-panel/json_writer.h"
#include "tools/vrc-panel/script_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
  std::istringstream input(std::string(reinterpret_cast<const char *>(data), size));
  vrc_panel::ScriptReader reader(input);
  while (const std::optional<std::string> line = reader.next_command()) {
    vrc_panel::Words words(*line);
    const std::string_view name = words.next();
    (void)vrc_panel::parse_quoted(words.rest());
    (void)vrc_panel::unescape_newlines(words.rest());
    for (std::string_view word = words.next(); !word.empty(); word = words.next()) {
      (void)vrc_panel::parse_unsigned(word);
      (void)vrc_panel::parse_signed(word);
    }
    (void)vrc_panel::callback_line(name, 0, *line);
    (void)vrc_panel::answer_line(vrc_panel::Answer::failure(*line));
    (void)vrc_panel::json_quote(*line);
  }
  return 0;
}
