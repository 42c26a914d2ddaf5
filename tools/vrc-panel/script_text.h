// The text of vrc-panel scripts: reading command lines, splitting them into words, and the
// numbers, quoted texts and escapes that commands take. Free of Qt so that it can be tested and
// fuzzed on its own.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace vrc_panel {

// Hands out the command lines of a script one at a time: blank lines and lines whose first
// non-blank character is '#' are skipped, a trailing carriage return and surrounding blanks
// are dropped.
class ScriptReader {
 public:
  explicit ScriptReader(std::istream &input) : m_input(input) {}
  std::optional<std::string> next_command();

 private:
  std::istream &m_input;
};

// A command line taken apart word by word; what is left stays available as raw text.
class Words {
 public:
  explicit Words(std::string_view line) : m_rest(line) {}
  // The next blank-separated word, or an empty view at the end of the line.
  std::string_view next();
  // The rest of the line after the one blank that ends the last word taken.
  std::string_view rest() const { return m_rest; }
  bool at_end() const;

 private:
  std::string_view m_rest;
};

// Numbers as scripts write them: decimal or C hexadecimal ("0x80010100"), with an optional
// leading '-' for the signed form. Nothing else may follow the digits.
std::optional<uint32_t> parse_unsigned(std::string_view text);
std::optional<int32_t> parse_signed(std::string_view text);

// A text in double quotes: the characters between the first and the last quote, with \" and
// \\ standing for a quote and a backslash. Empty when `text` is not quoted.
std::optional<std::string> parse_quoted(std::string_view text);
// A text with \n standing for a line break and \\ for a backslash.
std::string unescape_newlines(std::string_view text);

}  // namespace vrc_panel
