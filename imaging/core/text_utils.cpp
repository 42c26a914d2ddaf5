// A whitespace-token number reader and the command-line splitter.
#include "imaging/core/report.h"
#include "imaging/core/text_field.h"
#include "vrcw32/zep_core.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

namespace {

bool is_space(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

}  // namespace

extern "C" {

char *ZEP_sscanf(char *text, uint16_t *value) {
  if (text == nullptr || value == nullptr) {
    vrc::core::report("ZEP_sscanf", ZEP_ERR_BAD_PARAM,
                      text == nullptr ? "Text is NULL" : "Value is NULL");
    return nullptr;
  }
  *value = static_cast<uint16_t>(std::strtol(text, nullptr, 10));
  char *position = text;
  while (is_space(*position)) ++position;
  // The scan stops at the text's end as well as at white space, so it never runs off the text.
  while (*position != '\0' && !is_space(*position)) ++position;
  return position;
}

uint32_t ZEP_Util_ParseCommand(void *record, int argc, char **argv) {
  constexpr const char *kParse = "ZEP_Util_ParseCommand";
  if (record == nullptr) return vrc::core::report(kParse, ZEP_ERR_BAD_PARAM, "Record is NULL");
  if (argc > 0 && argv == nullptr)
    return vrc::core::report(kParse, ZEP_ERR_BAD_PARAM, "Argument list is NULL");
  auto &line = *static_cast<ZEP_CMD_LINE *>(record);
  if (argc > 0) vrc::core::copy_text_field(line.program, argv[0] ? argv[0] : "");
  // The program name, the third option slot and the third argument slot start out empty; the
  // program name thereby stays empty, as callers of this splitter have always seen it.
  line.program[0] = '\0';
  line.option[2][0] = '\0';
  line.argument[2][0] = '\0';
  uint32_t options = 0;
  uint32_t arguments = 0;
  for (int i = 1; i < argc; ++i) {
    const char *word = argv[i] ? argv[i] : "";
    if (word[0] == '-') {
      if (options < ZEP_CMD_OPTIONS) vrc::core::copy_text_field(line.option[options++], word);
    } else if (arguments < ZEP_CMD_ARGUMENTS) {
      vrc::core::copy_text_field(line.argument[arguments++], word);
    }
  }
  line.n_options = options;
  line.n_arguments = arguments;
  line.argc = static_cast<uint32_t>(argc);
  return 0;
}

}  // extern "C"
