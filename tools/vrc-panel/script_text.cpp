// Script lines, words, numbers and quoted texts.
#include "tools/vrc-panel/script_text.h"

#include <charconv>
#include <limits>

namespace vrc_panel {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  const std::size_t last = text.find_last_not_of(" \t\r\n");
  return text.substr(first, last - first + 1);
}

// Magnitude of a decimal or 0x-prefixed hexadecimal number, at most 0xFFFFFFFF.
std::optional<uint64_t> parse_magnitude(std::string_view text) {
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty() || text.front() == '-' || text.front() == '+') return std::nullopt;
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (value > std::numeric_limits<uint32_t>::max()) return std::nullopt;
  return value;
}

}  // namespace

std::optional<std::string> ScriptReader::next_command() {
  std::string line;
  while (std::getline(m_input, line)) {
    const std::string_view command = trim(line);
    if (command.empty() || command.front() == '#') continue;
    return std::string(command);
  }
  return std::nullopt;
}

std::string_view Words::next() {
  const std::size_t first = m_rest.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    m_rest = {};
    return {};
  }
  m_rest.remove_prefix(first);
  const std::size_t end = m_rest.find_first_of(kBlanks);
  const std::string_view word = m_rest.substr(0, end);
  m_rest = end == std::string_view::npos ? std::string_view() : m_rest.substr(end + 1);
  return word;
}

bool Words::at_end() const { return m_rest.find_first_not_of(kBlanks) == std::string_view::npos; }

std::optional<uint32_t> parse_unsigned(std::string_view text) {
  const std::optional<uint64_t> magnitude = parse_magnitude(text);
  if (!magnitude) return std::nullopt;
  return static_cast<uint32_t>(*magnitude);
}

std::optional<int32_t> parse_signed(std::string_view text) {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative) text.remove_prefix(1);
  const std::optional<uint64_t> magnitude = parse_magnitude(text);
  if (!magnitude) return std::nullopt;
  const int64_t value =
      negative ? -static_cast<int64_t>(*magnitude) : static_cast<int64_t>(*magnitude);
  if (value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max())
    return std::nullopt;
  return static_cast<int32_t>(value);
}

std::optional<std::string> parse_quoted(std::string_view text) {
  text = trim(text);
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return std::nullopt;
  text = text.substr(1, text.size() - 2);
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '"' || text[i + 1] == '\\')) ++i;
    result += text[i];
  }
  return result;
}

std::string unescape_newlines(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == 'n' || text[i + 1] == '\\')) {
      result += text[i + 1] == 'n' ? '\n' : '\\';
      ++i;
    } else {
      result += text[i];
    }
  }
  return result;
}

}  // namespace vrc_panel
