// JSON text for vrc-panel's answers.
#include "tools/vrc-panel/json_writer.h"

#include <cmath>
#include <cstdio>

namespace vrc_panel {

std::string json_quote(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    switch (c) {
      case '"': quoted += "\\\""; break;
      case '\\': quoted += "\\\\"; break;
      case '\n': quoted += "\\n"; break;
      case '\r': quoted += "\\r"; break;
      case '\t': quoted += "\\t"; break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
          quoted += escaped;
        } else {
          quoted += c;
        }
    }
  }
  return quoted + "\"";
}

void JsonWriter::separate() {
  if (m_after_key) {
    m_after_key = false;
    return;
  }
  if (!m_has_members.empty()) {
    if (m_has_members.back()) m_text += ", ";
    m_has_members.back() = true;
  }
}

JsonWriter &JsonWriter::begin_object() {
  separate();
  m_text += '{';
  m_has_members.push_back(false);
  return *this;
}

JsonWriter &JsonWriter::end_object() {
  m_text += '}';
  m_has_members.pop_back();
  return *this;
}

JsonWriter &JsonWriter::begin_array() {
  separate();
  m_text += '[';
  m_has_members.push_back(false);
  return *this;
}

JsonWriter &JsonWriter::end_array() {
  m_text += ']';
  m_has_members.pop_back();
  return *this;
}

JsonWriter &JsonWriter::key(std::string_view name) {
  separate();
  m_text += json_quote(name);
  m_text += ": ";
  m_after_key = true;
  return *this;
}

JsonWriter &JsonWriter::value(std::string_view text) {
  separate();
  m_text += json_quote(text);
  return *this;
}

JsonWriter &JsonWriter::integer(int64_t number) {
  separate();
  m_text += std::to_string(number);
  return *this;
}

JsonWriter &JsonWriter::value(bool flag) {
  separate();
  m_text += flag ? "true" : "false";
  return *this;
}

JsonWriter &JsonWriter::value_fixed2(double number) {
  if (!std::isfinite(number)) return null();
  separate();
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", number);
  m_text += text;
  return *this;
}

JsonWriter &JsonWriter::null() {
  separate();
  m_text += "null";
  return *this;
}

JsonWriter &JsonWriter::strings(const std::vector<std::string> &texts) {
  begin_array();
  for (const std::string &text : texts) value(std::string_view(text));
  return end_array();
}

}  // namespace vrc_panel
