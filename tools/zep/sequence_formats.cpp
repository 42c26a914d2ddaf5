// zep seq: the table of sequence file formats and finding a file's format.
#include "tools/zep/sequence_format.h"

#include <algorithm>
#include <cctype>

namespace zep_tool {
namespace {

using FormatRow = const SequenceFormat &(*)();

constexpr FormatRow kFormats[] = {&mraw_sequence_format, &mjpeg_sequence_format};

bool same_text_ignoring_case(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

}  // namespace

const SequenceFormat *sequence_format_of_file(const std::string &path) {
  for (FormatRow row : kFormats) {
    if (row().recognise(path)) return &row();
  }
  return nullptr;
}

const SequenceFormat *sequence_format_of_name(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || path.find('/', dot) != std::string_view::npos)
    return nullptr;
  for (FormatRow row : kFormats) {
    if (same_text_ignoring_case(path.substr(dot + 1), row().extension)) return &row();
  }
  return nullptr;
}

std::string sequence_format_names(bool with_extensions) {
  std::string names;
  for (std::size_t i = 0; i < std::size(kFormats); ++i) {
    if (i > 0) names += i + 1 == std::size(kFormats) ? " or " : ", ";
    names += kFormats[i]().name;
    if (with_extensions) names += std::string(" .") + kFormats[i]().extension;
  }
  return names;
}

}  // namespace zep_tool
