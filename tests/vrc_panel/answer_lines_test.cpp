// vrc-panel's answer, error and callback lines, and the JSON writer they carry.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "tools/vrc-panel/answer_lines.h"
#include "tools/vrc-panel/json_writer.h"

namespace {

using namespace vrc_panel;

TEST(AnswerLines, OkErrorAndCallbackLines) {
  EXPECT_EQ(answer_line(Answer::success()), "ok");
  EXPECT_EQ(answer_line(Answer::success("0 0x00000001")), "ok 0 0x00000001");
  EXPECT_EQ(answer_line(Answer::failure("no such tab 'X'")), "error no such tab 'X'");
  EXPECT_EQ(answer_line(Answer::failure("two\nlines")), "error two\\nlines");
  EXPECT_EQ(callback_line("VrxCtrl::Exec", 2, "Parameter = 0x00000000"),
            "callback VrxCtrl::Exec 2 Parameter = 0x00000000");
  // One trailing line break is dropped; the others stay visible as \n.
  EXPECT_EQ(callback_line("VrxCtrl::DisplayStats", 0, "QPC() failed with error 5\n"),
            "callback VrxCtrl::DisplayStats 0 QPC() failed with error 5");
  EXPECT_EQ(callback_line("F", 15, "a\nb\r\n"), "callback F 15 a\\nb");
  EXPECT_EQ(callback_line("F", 0, "a\n\n"), "callback F 0 a\\n");
}

TEST(AnswerLines, LinesFromSeveralThreadsStayWhole) {
  std::FILE *file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  {
    AnswerSink sink(file);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([&sink, t] {
        for (int i = 0; i < 200; ++i)
          sink.callback("F", t, std::string(50, static_cast<char>('a' + t)));
      });
    for (std::thread &thread : threads) thread.join();
  }
  std::rewind(file);
  char line[256];
  int count = 0;
  while (std::fgets(line, sizeof line, file)) {
    const std::string text(line);
    const char letter = static_cast<char>('a' + (text[11] - '0'));
    EXPECT_EQ(text,
              "callback F " + std::string(1, text[11]) + ' ' + std::string(50, letter) + '\n');
    ++count;
  }
  EXPECT_EQ(count, 800);
  std::fclose(file);
}

TEST(JsonWriter, QuotesEveryCharacterThatNeedsIt) {
  EXPECT_EQ(json_quote("plain"), "\"plain\"");
  EXPECT_EQ(json_quote("a\"b\\c"), R"("a\"b\\c")");
  EXPECT_EQ(json_quote("l1\nl2\r\t"), R"("l1\nl2\r\t")");
  EXPECT_EQ(json_quote(std::string_view("\x01\x1f", 2)), R"("\u0001\u001f")");
  EXPECT_EQ(json_quote("Gr\xc3\xbc\xc3\x9f"), "\"Gr\xc3\xbc\xc3\x9f\"");
}

TEST(JsonWriter, NestsObjectsAndArraysWithTheAnswerLayout) {
  JsonWriter json;
  json.begin_object()
      .member("title", "Vireo Control")
      .key("tabs")
      .strings({"Configure", "Camera"})
      .key("buttons")
      .begin_array()
      .begin_object()
      .member("id", 17001)
      .member("enabled", false)
      .end_object()
      .begin_object()
      .member("id", 9u)
      .end_object()
      .end_array()
      .key("empty")
      .begin_array()
      .end_array()
      .key("answer")
      .null()
      .key("fps")
      .value_fixed2(29.987)
      .key("bad")
      .value_fixed2(1.0 / 0.0)
      .end_object();
  EXPECT_EQ(
      json.text(),
      R"({"title": "Vireo Control", "tabs": ["Configure", "Camera"], )"
      R"("buttons": [{"id": 17001, "enabled": false}, {"id": 9}], "empty": [], "answer": null, )"
      R"("fps": 29.99, "bad": null})");
}

}  // namespace
