// One row of a page's combo box: the board value it stands for and the text shown. Tables are
// arrays of rows ending with kChoiceEnd (an empty text), as the fill-list helper reads them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vrc::pages {

struct Choice {
  uint32_t value;
  const char *text;
};
inline constexpr Choice kChoiceEnd{0xFFFFFFFFu, ""};

// Rows of a table up to (not including) its end marker.
constexpr std::span<const Choice> rows_of(std::span<const Choice> table) {
  std::size_t n = 0;
  while (n < table.size() && table[n].text[0] != '\0') ++n;
  return table.first(n);
}

// The text of the row holding `value`, or `otherwise`.
constexpr const char *text_of(std::span<const Choice> table, uint32_t value,
                              const char *otherwise = "") {
  for (const Choice &row : rows_of(table))
    if (row.value == value) return row.text;
  return otherwise;
}

}  // namespace vrc::pages
