// vrc-panel's script text: reading lines, words, numbers, quoted texts and escapes; and the
// command line.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tools/vrc-panel/options.h"
#include "tools/vrc-panel/script_text.h"

namespace {

using namespace vrc_panel;

TEST(ScriptReader, SkipsBlankAndCommentLinesAndTrims) {
  std::istringstream input(
      "# a comment\n\n   \ntab Camera\r\n  click 17001  \n\t# indented comment\nquit");
  ScriptReader reader(input);
  EXPECT_EQ(reader.next_command(), "tab Camera");
  EXPECT_EQ(reader.next_command(), "click 17001");
  EXPECT_EQ(reader.next_command(), "quit");
  EXPECT_EQ(reader.next_command(), std::nullopt);
}

TEST(Words, SplitsWordsAndKeepsTheRestOfTheLine) {
  Words words("set  17050 two  spaces ");
  EXPECT_EQ(words.next(), "set");
  EXPECT_EQ(words.next(), "17050");
  EXPECT_EQ(words.rest(), "two  spaces ");
  EXPECT_FALSE(words.at_end());
  EXPECT_EQ(words.next(), "two");
  EXPECT_EQ(words.next(), "spaces");
  EXPECT_TRUE(words.at_end());
  EXPECT_EQ(words.next(), "");
}

struct NumberCase {
  const char *text;
  std::optional<uint32_t> as_unsigned;
  std::optional<int32_t> as_signed;
};

class Numbers : public ::testing::TestWithParam<NumberCase> {};

TEST_P(Numbers, ParseAsDecimalOrCHexadecimal) {
  EXPECT_EQ(parse_unsigned(GetParam().text), GetParam().as_unsigned);
  EXPECT_EQ(parse_signed(GetParam().text), GetParam().as_signed);
}

INSTANTIATE_TEST_SUITE_P(ScriptText, Numbers,
                         ::testing::Values(NumberCase{"0", 0u, 0},
                                           NumberCase{"17001", 17001u, 17001},
                                           NumberCase{"0x4EFF", 0x4EFFu, 0x4EFF},
                                           NumberCase{"0X4eff", 0x4EFFu, 0x4EFF},
                                           NumberCase{"0x80010100", 0x80010100u, std::nullopt},
                                           NumberCase{"4294967295", 0xFFFFFFFFu, std::nullopt},
                                           NumberCase{"0xFFFFFFFF", 0xFFFFFFFFu, std::nullopt},
                                           NumberCase{"2147483647", 2147483647u, 2147483647},
                                           NumberCase{"-1", std::nullopt, -1},
                                           NumberCase{"-0x80000000", std::nullopt, INT32_MIN},
                                           NumberCase{"-2147483649", std::nullopt, std::nullopt},
                                           NumberCase{"4294967296", std::nullopt, std::nullopt},
                                           NumberCase{"0x100000000", std::nullopt, std::nullopt},
                                           NumberCase{"", std::nullopt, std::nullopt},
                                           NumberCase{"0x", std::nullopt, std::nullopt},
                                           NumberCase{"12abc", std::nullopt, std::nullopt},
                                           NumberCase{"+5", std::nullopt, std::nullopt},
                                           NumberCase{"0x-5", std::nullopt, std::nullopt},
                                           NumberCase{"--5", std::nullopt, std::nullopt},
                                           NumberCase{" 5", std::nullopt, std::nullopt},
                                           NumberCase{"0xG", std::nullopt, std::nullopt}));

TEST(ScriptText, QuotedTextsAndEscapes) {
  EXPECT_EQ(parse_quoted("\"8 Bit\""), "8 Bit");
  EXPECT_EQ(parse_quoted("  \"Any\"  "), "Any");
  EXPECT_EQ(parse_quoted(R"("say \"hi\" \\ now")"), R"(say "hi" \ now)");
  EXPECT_EQ(parse_quoted("\"\""), "");
  EXPECT_EQ(parse_quoted("Any"), std::nullopt);
  EXPECT_EQ(parse_quoted("\""), std::nullopt);
  EXPECT_EQ(parse_quoted("\"open"), std::nullopt);
  EXPECT_EQ(unescape_newlines(R"(a=1\nb=2\\n)"), "a=1\nb=2\\n");
  EXPECT_EQ(unescape_newlines(R"(end\)"), "end\\");
}

ParsedOptions parse(std::initializer_list<const char *> arguments) {
  return parse_options(std::span<const char *const>(arguments.begin(), arguments.size()));
}

TEST(Options, TakesPagesScriptAndScreenshot) {
  const ParsedOptions parsed =
      parse({"--pages", "0x4EFF", "--script", "-", "--screenshot-on-exit", "out.png"});
  ASSERT_TRUE(parsed.options);
  EXPECT_EQ(parsed.options->pages, 0x4EFFu);
  EXPECT_EQ(parsed.options->script, "-");
  EXPECT_EQ(parsed.options->screenshot_on_exit, "out.png");
  EXPECT_FALSE(parsed.options->help);

  const ParsedOptions none = parse({});
  ASSERT_TRUE(none.options);
  EXPECT_FALSE(none.options->pages);
  EXPECT_FALSE(none.options->script);
  EXPECT_TRUE(parse({"--help"}).options->help);
}

TEST(Options, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(parse({"--pages", "many"}).error, "--pages takes a number such as 0x4EFF, not 'many'");
  EXPECT_EQ(parse({"--script"}).error, "option --script needs a value");
  EXPECT_EQ(parse({"--verbose"}).error, "unknown option '--verbose'");
  EXPECT_FALSE(parse({"file.txt"}).options);
}

// The demonstration script and a few awkward lines seed the script text's fuzz target.
TEST(ScriptReader, WritesTheSeedsOfItsFuzzTarget) {
  const std::filesystem::path folder = std::filesystem::path(VRC_SEED_DIR) / "panel_script_fuzz";
  std::filesystem::create_directories(folder);
  std::filesystem::copy_file(std::filesystem::path(VRC_SOURCE_DIR) / "tools/vrc-panel/demo.vrc",
                             folder / "demo.vrc",
                             std::filesystem::copy_options::overwrite_existing);
  std::ofstream(folder / "awkward.vrc")
      << "select 17028 \"a \\\" b\"\r\nproperty k a=1\\nb\n"
         "setparam 0xFFFFFFFF -0x80000000\n# note\n\tset 1 \x01\xff\n";
  std::ifstream demo(folder / "demo.vrc");
  ScriptReader reader(demo);
  EXPECT_EQ(reader.next_command(), "tab Configure");
}

}  // namespace
