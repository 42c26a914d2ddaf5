// Running the zep tool as a user would, for the tool's tests.
#pragma once

#include "files/files_support.h"

#include <string>

namespace vrc::test {

struct ToolRun {
  int status;
  std::string output;  // standard output and standard error
};

// Runs `zep ARGUMENTS` through the shell.
inline ToolRun zep(const std::string &arguments) {
  ToolRun run{};
  run.output = run_command(std::string(ZEP_TOOL) + " " + arguments + " 2>&1", &run.status);
  return run;
}

}  // namespace vrc::test
