// Reading EPS files of the shape this library writes. Header comment lines are read up to the
// first other line; a "LanguageLevel: 2" comment marks a paletted page, whose colour map, width,
// height and depth come from the words of its image dictionary, while the other pages give them
// on fixed lines after the header. The pixels are hexadecimal digits; every other character
// between them is skipped.
//
// QUIRK: the colour count of an indexed colour space is one less than the entries written, so the
// last colour of a paletted page is read as black.
#include "imaging/core/report.h"
#include "imaging/files/eps/eps_layout.h"
#include "imaging/files/file_common.h"
#include "vrcw32/zep_files.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

namespace vrc::files::eps {
namespace {

constexpr char kReadName[] = "ZEP_read_EPS_file";
constexpr char kWordName[] = "fread_word_ascii";

class TextReader {
 public:
  explicit TextReader(std::FILE *file) : m_file(file) {}

  // The next line, upper-cased, without its newline, cut after kTextLimit characters (the rest
  // is the next line).
  std::string line() {
    std::string text;
    int c = 0;
    while (text.size() < kTextLimit && (c = std::getc(m_file)) != EOF && c != '\n') {
      text += static_cast<char>(std::toupper(c));
    }
    return text;
  }

  // The next blank-separated word, upper-cased, cut after kTextLimit characters; false (and
  // reported) at the end of the file.
  bool word(std::string &text, uint32_t &status) {
    int c = 0;
    while ((c = std::getc(m_file)) != EOF && std::isspace(c)) {
    }
    if (c == EOF) {
      status = core::report(kWordName, ZEP_ERR_UNEXPECTED, "Unexpected EOF read");
      return false;
    }
    text.assign(1, static_cast<char>(std::toupper(c)));
    while (text.size() < kTextLimit && (c = std::getc(m_file)) != EOF && !std::isspace(c)) {
      text += static_cast<char>(std::toupper(c));
    }
    return true;
  }

  // The byte of the next two hexadecimal digits; false at the end of the file.
  bool hex_byte(uint8_t &value) {
    int digits[2] = {};
    for (int &digit : digits) {
      int c = 0;
      while ((c = std::getc(m_file)) != EOF && !std::isxdigit(c)) {
      }
      if (c == EOF) return false;
      digit = std::isdigit(c) ? c - '0' : std::toupper(c) - 'A' + 10;
    }
    value = static_cast<uint8_t>(digits[0] << 4 | digits[1]);
    return true;
  }

  void skip_character() { static_cast<void>(std::getc(m_file)); }

 private:
  std::FILE *m_file;
};

bool contains(const std::string &text, const char *part) {
  return text.find(part) != std::string::npos;
}

// The leading decimal number of `text` (blanks allowed before it), as a 16-bit value; `rest`
// moves past it.
uint16_t read_number(const char *&rest) {
  char *end = nullptr;
  const long value = std::strtol(rest, &end, 10);
  rest = end;
  return static_cast<uint16_t>(value);
}

// Reads the words of a paletted page's colour space and image dictionary up to "image".
uint32_t read_paletted_header(TextReader &text, ZEP_IMAGE &image) {
  std::string word;
  uint32_t status = ZEP_OK;
  while (text.word(word, status)) {
    if (word.rfind("IMAGE", 0) == 0) return ZEP_OK;
    if (contains(word, "DEVICERGB")) {
      if (!text.word(word, status)) break;
      const int colours = std::clamp(std::atoi(word.c_str()), 0, 256);
      image.cmap_colours = static_cast<uint32_t>(colours);
      for (int entry = 0; entry < 256 && image.cmap != nullptr; ++entry) {
        for (int component = 0; component < 3; ++component) {
          uint8_t value = 0;  // stays 0 past the colours read and at the end of the file
          if (entry < colours) text.hex_byte(value);
          image.cmap[4 * entry + component] = value;
        }
      }
    } else if (contains(word, "WIDTH") || contains(word, "HEIGHT") ||
               contains(word, "BITSPERCOMPONENT")) {
      const std::string key = word;
      if (!text.word(word, status)) break;
      const auto value = static_cast<uint32_t>(std::atoi(word.c_str()));
      if (contains(key, "WIDTH")) image.width = value;
      if (contains(key, "HEIGHT")) image.height = value;
      if (contains(key, "BITSPERCOMPONENT")) image.depth = value;
    }
  }
  return status;
}

// Reads the fixed lines of a Y1, Y8 or RGB24 page: the fourth gives width, height and depth,
// the fourth after that says whether the page is in colour.
void read_direct_header(TextReader &text, uint32_t handle, ZEP_IMAGE &image) {
  std::string line;
  for (int i = 0; i < 4; ++i) line = text.line();
  const char *rest = line.c_str();
  image.width = read_number(rest);
  image.height = read_number(rest);
  image.depth = read_number(rest);
  for (int i = 0; i < 4; ++i) line = text.line();
  if (contains(line, "FALSE 3")) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_RGB24);
    text.line();
  } else {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, image.depth == 1 ? ZEP_Y1 : ZEP_Y8);
  }
}

// Reads lines_this_strip lines of hex data; the end of the file leaves the rest as it is.
void read_hex_data(TextReader &text, const ZEP_IMAGE &image) {
  const uint64_t count = line_bytes(image.type, image.width);
  if (count == 0) return;  // empty lines: nothing to read, however many there are
  const bool odd = line_is_odd(image.type, image.width);
  uint64_t memory_offset = 0;
  for (uint32_t line = 0; line < image.lines_this_strip; ++line) {
    const std::span<uint8_t> target = strip_range(image, memory_offset, count);
    for (uint64_t i = 0; i < count; ++i) {
      uint8_t value = 0;
      if (!text.hex_byte(value)) return;
      if (i < target.size()) target[i] = value;
    }
    memory_offset += count;
    if (odd) {
      ++memory_offset;
      if (image.type == ZEP_Y1 || image.type == ZEP_RGB24) text.skip_character();
    }
  }
}

uint32_t read_eps(uint32_t handle, uint16_t action) {
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = find_image_to_read(kReadName, handle, image); status != ZEP_OK)
    return status;
  File file = File::open(image->infilename, "r");
  if (!file) return core::report(kReadName, ZEP_ERR_OPEN, message::kOpenFailed);
  ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_NONE);
  image->width = 0;
  image->height = 0;
  image->depth = 8;

  TextReader text(file.get());
  bool paletted = false;
  for (std::string line = text.line(); line.starts_with('%'); line = text.line()) {
    if (contains(line, "LANGUAGELEVEL: 2")) paletted = true;
  }
  if (paletted) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_PALETTED);
    if (const uint32_t status = read_paletted_header(text, *image); status != ZEP_OK) return status;
  } else {
    read_direct_header(text, handle, *image);
  }
  if (const uint32_t status = check_read_header(kReadName, handle); status != ZEP_OK) return status;
  if (action != ZEP_ACTION_DATA)
    return finish_without_data(kReadName, file, OpenSlot::EpsRead, action);
  if (image->lines_this_strip == 0) {
    keep_open(OpenSlot::EpsRead, std::move(file));
    return ZEP_OK;
  }
  const bool whole_image = image->lines_this_strip >= image->height;
  if (whole_image) image->lines_this_strip = image->height;
  // Each byte takes at least two characters of the file: a header asking for more bytes than
  // the file has characters cannot be meant.
  const uint64_t needed = line_bytes(image->type, image->width) * image->lines_this_strip;
  if (const uint32_t status = allocate_backed_strip(kReadName, handle, needed, file.size());
      ZEP_IS_ERROR(status))
    return status;
  read_hex_data(text, *image);
  if (!whole_image) {
    keep_open(OpenSlot::EpsRead, std::move(file));
    return ZEP_OK;
  }
  return close_file(kReadName, file);
}

}  // namespace
}  // namespace vrc::files::eps

extern "C" uint32_t ZEP_read_EPS_file(uint32_t handle, uint16_t action) {
  return vrc::core::api_guard(vrc::files::eps::kReadName,
                              [&] { return vrc::files::eps::read_eps(handle, action); });
}
