// Configuration file reader and writer.
#include "platform/board/sim/vcf_file.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>
#include <cstring>
#include <fstream>

#include "platform/board/sim/parameter_table.h"

namespace vrxsim {
namespace {

std::string trim(const std::string& text) {
  const char* blanks = " \t\r";
  std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

uint32_t read_vcf_file(const std::string& path, ParameterStore& store, std::string& error) {
  std::ifstream in(path);
  if (!in) {
    error = "Cannot open configuration file " + path + ": " + std::strerror(errno);
    return VRX_ERR_FILE;
  }
  std::string line;
  std::vector<std::pair<uint32_t, uint32_t>> read_values;
  for (int number = 1; std::getline(in, line); ++number) {
    line = trim(line);
    if (line.empty() || line[0] == '#' || line[0] == ';') continue;
    auto fail = [&](const std::string& reason) {
      error = path + ":" + std::to_string(number) + ": " + reason;
      return VRX_ERR_FILE;
    };
    std::size_t equals = line.find('=');
    if (equals == std::string::npos) return fail("expected key=value");
    const std::string key = trim(line.substr(0, equals)), text = trim(line.substr(equals + 1));
    const ParameterDefinition* definition = find_parameter_by_key(key);
    if (!definition || !definition->saved) return fail("unknown key '" + key + "'");
    char* end = nullptr;
    errno = 0;
    unsigned long long value = std::strtoull(text.c_str(), &end, 0);
    if (text.empty() || *end != '\0' || errno != 0 || value > 0xFFFFFFFFull)
      return fail("bad number '" + text + "'");
    if (store.set(definition->id, static_cast<uint32_t>(value)) != VRX_OK)
      return fail("value " + text + " not accepted for " + key);
    read_values.emplace_back(definition->id, static_cast<uint32_t>(value));
  }
  // Every value was validated above; storing them again undoes what the consistency rules
  // derived along the way, so the file's own destination sizes and format stand.
  for (auto [id, value] : read_values) store.force(id, value);
  return VRX_OK;
}

uint32_t write_vcf_file(const std::string& path, const ParameterStore& store, std::string& error) {
  std::ofstream out(path, std::ios::trunc);
  if (!out) {
    error = "Cannot create configuration file " + path + ": " + std::strerror(errno);
    return VRX_ERR_FILE;
  }
  out << "# Camera configuration\n";
  char line[96];
  for (const ParameterDefinition& definition : parameter_definitions()) {
    if (!definition.saved) continue;
    std::snprintf(line, sizeof line, "%s=0x%08" PRIX32 "\n", definition.key, store.value(definition.id));
    out << line;
  }
  out.flush();
  if (!out) {
    error = "Cannot write configuration file " + path;
    return VRX_ERR_FILE;
  }
  return VRX_OK;
}

}  // namespace vrxsim
