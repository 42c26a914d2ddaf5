// zep's look at an input file before the library reads it: refusals that name what the file
// holds, warnings for what a read misses, and the corrections made right after the read.
#include "tools/zep/zep_tool.h"

#include <cstdio>
#include <cstring>

namespace zep_tool {

bool inspect_input(const char *path, ZEP_FILE_INSPECTION &inspection) {
  if (ZEP_IS_ERROR(ZEP_file_inspect(path, &inspection))) {
    fail("%s: cannot open the file", path);
    return false;
  }
  if (inspection.refused != 0) {
    std::fprintf(stderr, "zep: %s: %s\n", path, inspection.cause);
    return false;
  }
  return true;
}

void print_warnings(const char *path, const ZEP_FILE_INSPECTION &inspection) {
  for (const char *line = inspection.warnings; *line != '\0';) {
    const char *end = std::strchr(line, '\n');
    const int length = static_cast<int>(end != nullptr ? end - line : std::strlen(line));
    std::fprintf(stderr, "zep: warning: %s: %.*s\n", path, length, line);
    line += length + (end != nullptr ? 1 : 0);
  }
}

uint32_t read_checked_image(uint32_t image, const char *path,
                            const ZEP_FILE_INSPECTION &inspection) {
  const uint32_t status = read_whole_image(image, path);
  if (ZEP_IS_ERROR(status)) return status;
  print_warnings(path, inspection);
  return inspection.fix_ups != 0 ? ZEP_file_fix_up(image, &inspection) : status;
}

}  // namespace zep_tool
