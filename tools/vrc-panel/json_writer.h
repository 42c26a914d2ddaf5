// A small writer of one-line JSON texts, in the layout of vrc-panel's answers: ": " after a
// key and ", " between members ({"id": 17001, "text": "Live"}). Commas are placed by the writer;
// callers only open, fill and close.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vrc_panel {

// `text` as a JSON string literal: quotes, backslashes and control characters escaped, other
// bytes (UTF-8 included) as they are.
std::string json_quote(std::string_view text);

class JsonWriter {
 public:
  JsonWriter &begin_object();
  JsonWriter &end_object();
  JsonWriter &begin_array();
  JsonWriter &end_array();
  // The key of the next member of the enclosing object.
  JsonWriter &key(std::string_view name);
  JsonWriter &value(std::string_view text);
  JsonWriter &value(const char *text) { return value(std::string_view(text)); }
  template <std::integral Number>
  requires(!std::same_as<Number, bool>) JsonWriter &value(Number number) {
    return integer(static_cast<int64_t>(number));
  }
  JsonWriter &value(bool flag);
  // A number with two decimals; null when it is not finite.
  JsonWriter &value_fixed2(double number);
  JsonWriter &null();
  // key(name).value(v) in one call.
  template <typename Value>
  JsonWriter &member(std::string_view name, Value v) {
    return key(name).value(v);
  }
  JsonWriter &strings(const std::vector<std::string> &texts);

  const std::string &text() const { return m_text; }

 private:
  void separate();
  JsonWriter &integer(int64_t number);

  std::string m_text;
  std::vector<bool> m_has_members;  // per open container: whether a member was written
  bool m_after_key = false;
};

}  // namespace vrc_panel
