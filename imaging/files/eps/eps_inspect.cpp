// Whether an EPS file has the shape this library writes, the only one its reader takes: header
// comments, a translated page, the image operator's fixed lines and hexadecimal pixels. For a
// paletted page the colour map is taken from the file, since the reader drops its last colour.
#include "imaging/files/eps/eps_layout.h"
#include "imaging/files/file_inspect.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace vrc::files {
namespace {

constexpr char kNotOurLayout[] =
    "EPS not in this library's layout (only hexadecimal image pages as zep writes them)";
constexpr char kShowPage[] = "showpage";

std::string read_line(std::FILE *file) {
  std::string text;
  int c = 0;
  while ((c = std::getc(file)) != EOF && c != '\n') text += static_cast<char>(c);
  return text;
}

// The integer after `prefix` at the start of `text`, or -1.
long number_after(const std::string &text, const char *prefix) {
  if (!text.starts_with(prefix)) return -1;
  return std::strtol(text.c_str() + std::char_traits<char>::length(prefix), nullptr, 10);
}

struct Page {
  uint16_t type = 0;
  long width = -1;
  long height = -1;
};

// The lines of a grey, 1-bit or RGB page after "0 rotate"; false when they are not ours.
bool read_plain_page(std::FILE *file, Page &page) {
  if (!read_line(file).starts_with("/picstr ") || !read_line(file).ends_with(" scale"))
    return false;
  long depth = -1;
  if (std::sscanf(read_line(file).c_str(), "%ld %ld %ld", &page.width, &page.height, &depth) != 3)
    return false;
  if (!read_line(file).starts_with("[") || read_line(file) != "{currentfile" ||
      read_line(file) != " picstr readhexstring pop}")
    return false;
  const std::string operation = read_line(file);
  if (operation == "false 3" && read_line(file) == "colorimage") {
    page.type = ZEP_RGB24;
  } else if (operation == "image") {
    page.type = depth == 1 ? ZEP_Y1 : ZEP_Y8;
  }
  return page.type != 0;
}

// The lines of a paletted page after "0 rotate", its colour map given to `inspection`; false
// when they are not ours.
bool read_paletted_page(std::FILE *file, Page &page, Inspection &inspection) {
  page.type = ZEP_PALETTED;
  if (!read_line(file).ends_with(" scale")) return false;
  const long last_colour = number_after(read_line(file), "[/Indexed /DeviceRGB ");
  if (last_colour < 0 || last_colour > 255) return false;
  std::string digits;
  int c = 0;
  while ((c = std::getc(file)) != EOF && c != '<') {
  }
  while ((c = std::getc(file)) != EOF && c != '>') {
    if (std::isxdigit(c)) digits += static_cast<char>(c);
  }
  if (digits.size() != 6 * static_cast<std::size_t>(last_colour + 1)) return false;
  for (long entry = 0; entry <= last_colour; ++entry) {
    uint8_t rgb[3];
    for (int k = 0; k < 3; ++k)
      rgb[k] = static_cast<uint8_t>(std::stoul(digits.substr(6 * entry + 2 * k, 2), nullptr, 16));
    inspection.set_colour(static_cast<uint32_t>(entry), rgb[0], rgb[1], rgb[2]);
  }
  for (std::string line = read_line(file); line != "image"; line = read_line(file)) {
    if (std::feof(file)) return false;
    if (const long width = number_after(line, "  /Width "); width >= 0) page.width = width;
    if (const long height = number_after(line, "  /Height "); height >= 0) page.height = height;
    if (number_after(line, "  /BitsPerComponent ") > 8) return false;
  }
  inspection.fix(ZEP_FIX_COLOUR_MAP);
  inspection.warn(
      "EPS colour map: its last colour, which the reader drops, restored after "
      "reading");
  return true;
}

// Hexadecimal digits before the "showpage" line.
uint64_t count_hex_digits(std::FILE *file) {
  uint64_t digits = 0;
  for (std::string line = read_line(file); !std::feof(file) || !line.empty();
       line = read_line(file)) {
    if (line.starts_with(kShowPage)) break;
    for (const char c : line) digits += std::isxdigit(static_cast<unsigned char>(c)) ? 1 : 0;
  }
  return digits;
}

}  // namespace

bool inspect_eps(std::FILE *file, Inspection &inspection) {
  std::string line = read_line(file);
  if (!line.starts_with("%!PS")) return false;
  bool paletted = false;
  for (; line.starts_with("%") && !std::feof(file); line = read_line(file)) {
    if (line == "%%LanguageLevel: 2") paletted = true;
  }
  Page page;
  const bool ours =
      line.ends_with(" translate") && read_line(file) == "0 rotate" &&
      (paletted ? read_paletted_page(file, page, inspection) : read_plain_page(file, page)) &&
      page.width >= 0 && page.height >= 0 && page.width <= 0xFFFF && page.height <= 0xFFFF;
  if (!ours) {
    inspection.refuse("%s", kNotOurLayout);
    return true;
  }
  inspection.check_has_pixels(static_cast<uint64_t>(page.width),
                              static_cast<uint64_t>(page.height));
  if (inspection.refused()) return true;
  const uint64_t bytes = eps::line_bytes(page.type, static_cast<uint32_t>(page.width)) *
                         static_cast<uint64_t>(page.height);
  const uint64_t digits = count_hex_digits(file);
  inspection.warn_missing_pixels(digits / 2, bytes);
  return true;
}

}  // namespace vrc::files
