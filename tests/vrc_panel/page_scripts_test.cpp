// The panel's pages end to end: each script of scripts/ run by vrc-panel on the offscreen
// platform over the simulated board, every answer line matched against the pattern of the same
// line of its .expected file. A script's "# run:" line gives the board's environment settings
// and vrc-panel's options; "@SCRIPTS@" in a script stands for the scripts' folder.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kScripts = VRC_PAGE_SCRIPTS;

std::vector<std::string> lines_of(const fs::path &path) {
  std::ifstream in(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string replace_all(std::string text, const std::string &from, const std::string &to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

// The environment settings and options of a script's "# run:" line.
std::string run_line(const std::vector<std::string> &script) {
  const std::string marker = "# run:";
  for (const std::string &line : script)
    if (line.rfind(marker, 0) == 0) return line.substr(marker.size());
  return "";
}

class PageScripts : public ::testing::TestWithParam<const char *> {};

TEST_P(PageScripts, AnswerLineByLineAsExpected) {
  const std::string name = GetParam();
  const std::vector<std::string> script = lines_of(kScripts / (name + ".vrc"));
  ASSERT_FALSE(script.empty()) << name;
  std::ofstream copy(name + ".vrc");
  for (const std::string &line : script) copy << replace_all(line, "@SCRIPTS@", kScripts) << '\n';
  copy.close();

  std::string environment, options;
  std::istringstream words(run_line(script));
  for (std::string word; words >> word;)
    (word.find('=') != std::string::npos && word[0] != '-' ? environment : options) += word + ' ';
  const std::string command = "QT_QPA_PLATFORM=offscreen " + environment + VRC_PANEL + ' ' +
                              options + "--script " + name + ".vrc >" + name + ".out 2>" + name +
                              ".err";
  const int status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command;

  std::vector<std::string> patterns;
  for (const std::string &line : lines_of(kScripts / (name + ".expected")))
    if (!line.empty() && line[0] != '#') patterns.push_back(line);
  const std::vector<std::string> answers = lines_of(name + ".out");
  ASSERT_EQ(answers.size(), patterns.size()) << ::testing::PrintToString(answers);
  for (std::size_t i = 0; i < patterns.size(); ++i)
    EXPECT_TRUE(std::regex_match(answers[i], std::regex(patterns[i])))
        << name << " line " << i + 1 << ": " << answers[i].substr(0, 300)
        << "\n   pattern: " << patterns[i];
}

INSTANTIATE_TEST_SUITE_P(Scripts, PageScripts,
                         ::testing::Values("camera_pages", "comms_page", "pocl_page", "pocl_camera",
                                           "cxp_page"));

}  // namespace
