// vrc-panel end to end: the program run with scripts on the offscreen platform over the
// simulated board, its answer and callback lines checked line by line.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdio>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace {

struct PanelRun {
  int exit_code = -1;
  std::vector<std::string> lines;
};

std::string test_name() {
  std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
  for (char &c : name)
    if (c == '/') c = '_';
  return name;
}

// Runs `command` through the shell and collects its standard output line by line.
PanelRun run_shell(const std::string &command) {
  PanelRun run;
  std::FILE *pipe = popen(command.c_str(), "r");
  if (!pipe) return run;
  std::string line;
  for (int c; (c = std::fgetc(pipe)) != EOF;) {
    if (c != '\n') {
      line += static_cast<char>(c);
      continue;
    }
    run.lines.push_back(line);
    line.clear();
  }
  if (!line.empty()) run.lines.push_back(line);
  const int status = pclose(pipe);
  run.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

// Runs vrc-panel on `script` (written to a file named after the test) with extra options.
PanelRun run_panel(const std::string &script, const std::string &options = "") {
  const std::string path = test_name() + ".vrc";
  std::ofstream(path) << script;
  return run_shell(std::string("QT_QPA_PLATFORM=offscreen ") + VRC_PANEL + ' ' + options +
                   " --script " + path + " 2>" + test_name() + ".err");
}

// Each line of `run` matches the pattern of the same index, and there are as many of each.
void expect_lines(const PanelRun &run, const std::vector<std::string> &patterns) {
  EXPECT_EQ(run.exit_code, 0);
  ASSERT_EQ(run.lines.size(), patterns.size()) << ::testing::PrintToString(run.lines);
  for (std::size_t i = 0; i < patterns.size(); ++i)
    EXPECT_TRUE(std::regex_match(run.lines[i], std::regex(patterns[i])))
        << "line " << i << ": " << run.lines[i] << "\n   pattern: " << patterns[i];
}

// The JSON array that follows `"key": ` in `text`.
std::string array_after(const std::string &text, const std::string &key) {
  const std::size_t start = text.find("\"" + key + "\": [");
  if (start == std::string::npos) return {};
  const std::size_t open = text.find('[', start);
  return text.substr(open, text.find(']', open) - open + 1);
}

TEST(PanelScript, ErrorLinesNeverStopAScriptAndReportsComeFirst) {
  const PanelRun run = run_panel(
      "# every line below but the comments gets one answer\n"
      "bogus command\n"
      "\n"
      "click 99999\n"
      "select 17028 99\n"
      "select 17028 \"No Such Board\"\n"
      "tab Nowhere\n"
      "get 0x80010400\n"
      "get 0x80010200\n"
      "exec 0\n"
      "exec 0x80020200\n"
      "setparam 0x80010100 1\n"
      "setparam 0x80010200 5\n"
      "board get 0xC0070200\n"
      "trigger\n"
      "fps 100\n"
      "inject /no/such/file\n"
      "property Model\n"
      "property b a=1\\nb=2\n"
      "property c a=1\\nb=2\n"
      "property b a=1\\nb\n"
      "counters\n"
      "save-sequence 1 2\n"
      "save-sequence 1\n"
      "select 17028 Any\n"
      "status\n");
  expect_lines(run, {"error unknown command 'bogus'",
                     "error no control 99999 on the active page",
                     "error index 99 out of range: control 17028 has 25 items",
                     "error control 17028 has no item 'No Such Board'",
                     "error no such tab 'Nowhere'",
                     R"(callback VrxCtrl::\S+ 2 Bad Parameter \[0x80010400\])",
                     "ok 2 0xDEADBEEF",
                     "ok 0 0xDEADBEEF",
                     "callback VrxCtrl::Exec 2 Parameter = 0x00000000",
                     "ok 2",
                     "error the panel's message loop would never return to the script",
                     "callback VrxCtrl::ParameterSet 2 Parameter = 0x80010100",
                     "ok 2",
                     "error a script can set the event callback only to 0",
                     "error no board is open",
                     "error no board is open",
                     "error no board is open",
                     "error cannot read '/no/such/file'",
                     "error no board is open",
                     "ok 0 2",
                     "ok 0",
                     "ok 2",
                     R"(ok \{"acquired": 0, "painted": 0, "dropped": 0, "fps": [0-9.]+\})",
                     "error this panel has no sequence saving: its Display page does not offer it",
                     "error usage: save-sequence FIRST LAST",
                     "error usage: select ID INDEX\\|\"TEXT\"",
                     "ok"});
}

struct PageMaskCase {
  const char *name;
  const char *options;
  const char *tabs;
};

class PageMasks : public ::testing::TestWithParam<PageMaskCase> {};

TEST_P(PageMasks, BuildTheTabsInTabOrder) {
  const PanelRun run = run_panel("dump\n", GetParam().options);
  ASSERT_EQ(run.lines.size(), 1u);
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_TRUE(run.lines[0].starts_with("ok {\"title\": \"Vireo Control\", ")) << run.lines[0];
  EXPECT_EQ(array_after(run.lines[0], "tabs"), GetParam().tabs);
}

INSTANTIATE_TEST_SUITE_P(
    PanelScript, PageMasks,
    ::testing::Values(
        PageMaskCase{
            "Default", "",
            R"(["Configure", "Camera", "Status", "Display", "ROI", "Interrupt", "LUT", "Acq Trig", )"
            R"("Exposure", "I/O Ports", "Comms"])"},
        PageMaskCase{"ConfigureOnly", "--pages 1", R"(["Configure"])"},
        PageMaskCase{"None", "--pages 0", "[]"},
        PageMaskCase{
            "EveryPageButCxp", "--pages 0x7FFF",
            R"(["Configure", "Camera", "Status", "Display", "ROI", "Interrupt", "LUT", "Acq Trig", )"
            R"("Exposure", "I/O Ports", "Comms", "Test", "PoCL", "Register"])"},
        PageMaskCase{"DisplayAndRoi", "--pages 0xA", R"(["Display", "ROI"])"}),
    [](const ::testing::TestParamInfo<PageMaskCase> &mask) { return mask.param.name; });

TEST(PanelScript, ShowPagesSwapsTheCoaXPressTabSet) {
  const PanelRun run = run_panel("showpages 1\ndump\nshowpages 0\ndump\n");
  ASSERT_EQ(run.lines.size(), 4u);
  EXPECT_EQ(run.lines[0], "ok");
  EXPECT_EQ(array_after(run.lines[1], "tabs"),
            R"(["Configure", "Camera", "Status", "Display", "ROI", "CXP"])");
  EXPECT_EQ(
      array_after(run.lines[3], "tabs"),
      R"(["Configure", "Camera", "Status", "Display", "ROI", "Interrupt", "LUT", "Acq Trig", )"
      R"("Exposure", "I/O Ports", "Comms"])");
}

TEST(PanelScript, LiveAndFreezeOnTheSimulatedBoard) {
  const PanelRun run = run_panel(
      "tab Configure\n"
      "click 17023\n"
      "get 0x80010100\n"
      "board get 0xC0070400\n"
      "property Model\n"
      "fps 200\n"
      "click 17001\n"
      "wait 600\n"
      "counters\n"
      "click 17002\n"
      "dump\n"
      "board set 0xC0070100 5\n"
      "fault call:VRX_Acquire:2:0x8106\n"
      "click 17001\n"
      "dump\n"
      "click 17024\n"
      "get 0x80010100\n");
  ASSERT_EQ(run.exit_code, 0);
  ASSERT_EQ(run.lines.size(), 17u) << ::testing::PrintToString(run.lines);
  EXPECT_EQ(run.lines[0], "ok");
  EXPECT_EQ(run.lines[1], "ok");
  EXPECT_TRUE(std::regex_match(run.lines[2], std::regex("ok 0 0x0000[0-9A-F]{3}[1-9A-F]")))
      << run.lines[2];
  EXPECT_EQ(run.lines[3], "ok 0 0xC0010010");  // channel A
  EXPECT_TRUE(std::regex_match(run.lines[4], std::regex("ok 0 \\S+"))) << run.lines[4];
  EXPECT_EQ(run.lines[5], "ok 0");
  EXPECT_EQ(run.lines[6], "ok");
  std::smatch figures;
  ASSERT_TRUE(std::regex_match(
      run.lines[8], figures,
      std::regex(
          R"(ok \{"acquired": (\d+), "painted": (\d+), "dropped": (\d+), "fps": ([0-9.]+)\})")))
      << run.lines[8];
  EXPECT_GT(std::stoul(figures[1]), 0u);
  EXPECT_GT(std::stoul(figures[2]), 0u);
  EXPECT_LE(std::stoul(figures[2]) + std::stoul(figures[3]), std::stoul(figures[1]));
  EXPECT_EQ(run.lines[9], "ok");
  // Frozen: Live and Single Shot are offered again, Freeze is not.
  EXPECT_NE(
      run.lines[10].find(R"({"id": 17001, "text": "Live", "enabled": true, "visible": true})"),
      std::string::npos)
      << run.lines[10];
  EXPECT_NE(
      run.lines[10].find(R"({"id": 17002, "text": "Freeze", "enabled": false, "visible": true})"),
      std::string::npos);
  EXPECT_EQ(run.lines[11], "error 0xC0070100 carries a pointer, not a word");
  EXPECT_EQ(run.lines[12], "ok 0");
  // The start fails: the panel stays idle, with Live still offered.
  EXPECT_EQ(run.lines[13], "ok");
  EXPECT_NE(
      run.lines[14].find(R"({"id": 17001, "text": "Live", "enabled": true, "visible": true})"),
      std::string::npos)
      << run.lines[14];
  EXPECT_EQ(run.lines[15], "ok");
  EXPECT_EQ(run.lines[16], "ok 0 0x00000000");
}

TEST(PanelScript, InterruptBoxesTakeTheScriptsAnswers) {
  const PanelRun run = run_panel(
      "click 17023\n"
      "board set 0xC0024E00 0x80000001\n"
      "answer-box cancel\n"
      "event 0x1\n"
      "wait 300\n"
      "boxes\n"
      "event 0x400\n"
      "wait 200\n"
      "boxes\n"
      "dialogs\n");
  expect_lines(
      run,
      {"ok", "ok 0", "ok", "ok 0", "ok",
       R"(ok \[\{"caption": "Test Interrupt Received", "text": "VrxCtrl::OnInterruptTest", "type": 0, )"
       R"("answer": "cancel"\}\])",
       "ok 0", "ok", R"(ok \[\])", R"(ok \[\])"});
}

TEST(PanelScript, FileDialogsTakeTheScriptsAnswers) {
  const PanelRun run = run_panel(
      "answer-file cancel\n"
      "click 17021\n"
      "answer-file /tmp/panel test/camera.vcf 1\n"
      "click 17021\n"
      "dialogs\n"
      "dialogs\n"
      "click 17022\n"
      "dump\n");
  const std::string request =
      R"j(\{"save": false, "title": "[^"]*", "filters": \[\["Vireo Configuration File \(\*\.vcf\)", "\*\.vcf"\]\], )j"
      R"j("filter_index": 1, "initial_name": "[^"]*", "flags": 6150, )j";
  expect_lines(
      run, {"ok", "ok", "ok", "ok",
            "ok \\[" + request + R"("answer": null\}, )" + request +
                R"("answer": "/tmp/panel test/camera\.vcf"\}\])",
            R"(ok \[\])", "ok",
            R"j(ok \{.*\{"id": 17020, "kind": "static", "text": "/tmp/panel test/camera\.vcf", .*)j"
            R"j(\{"id": 17022, "kind": "button", "text": "Edit File", "enabled": true, .*)j"});
}

TEST(PanelScript, EndOfInputWhileLiveClosesThePanelCleanly) {
  const PanelRun run = run_panel(
      "click 17023\n"
      "board get 0x12345678\n"
      "fps 1000\n"
      "click 17001\n"
      "wait 300\n");
  expect_lines(run, {"ok", "ok 33026 0x00000000", "ok 0", "ok", "ok"});
}

TEST(PanelScript, AnInterruptWhileLiveClosesThePanelAsClosingItsWindowWould) {
  const std::string script = test_name() + ".vrc", shot = test_name() + ".png";
  std::ofstream(script) << "click 17023\nclick 17001\nwait 20000\nstatus\n";
  std::remove(shot.c_str());
  const PanelRun run =
      run_shell("QT_QPA_PLATFORM=offscreen " + std::string(VRC_PANEL) + " --script " + script +
                " --screenshot-on-exit " + shot +
                " 2>/dev/null & pid=$!; sleep 1.5; kill -TERM $pid; " + "wait $pid");
  // The wait ends early; the line after it is never run.
  expect_lines(run, {"ok", "ok", "ok"});
  EXPECT_TRUE(std::ifstream(shot).good());
}

TEST(PanelScript, QuitEndsTheScriptAndScreenshotsArePngFiles) {
  const std::string shot = test_name() + ".png", on_exit = test_name() + "-exit.png";
  std::remove(shot.c_str());
  std::remove(on_exit.c_str());
  const PanelRun run = run_shell(
      "printf 'screenshot " + shot +
      "\\nscreenshot /no/such/folder/x.png\\nquit\\nstatus\\n' | QT_QPA_PLATFORM=offscreen " +
      VRC_PANEL + " --script - --screenshot-on-exit " + on_exit);
  expect_lines(run, {"ok", "error cannot write '/no/such/folder/x.png'", "ok"});
  for (const std::string &path : {shot, on_exit}) {
    std::ifstream png(path, std::ios::binary);
    char signature[8] = {};
    png.read(signature, 8);
    EXPECT_EQ(std::string(signature, 8), "\x89PNG\r\n\x1a\n") << path;
  }
}

TEST(PanelScript, BadCommandLinesAreRefused) {
  EXPECT_EQ(
      run_shell(std::string("QT_QPA_PLATFORM=offscreen ") + VRC_PANEL + " --pages lots 2>/dev/null")
          .exit_code,
      2);
  EXPECT_EQ(
      run_shell(std::string("QT_QPA_PLATFORM=offscreen ") + VRC_PANEL + " --frames 2>/dev/null")
          .exit_code,
      2);
  EXPECT_EQ(run_shell(std::string("QT_QPA_PLATFORM=offscreen ") + VRC_PANEL +
                      " --script /no/such/script 2>/dev/null")
                .exit_code,
            1);
  const PanelRun help =
      run_shell(std::string("QT_QPA_PLATFORM=offscreen ") + VRC_PANEL + " --help");
  EXPECT_EQ(help.exit_code, 0);
  ASSERT_FALSE(help.lines.empty());
  EXPECT_EQ(help.lines[0],
            "usage: vrc-panel [--pages MASK] [--script FILE|-] [--screenshot-on-exit FILE]");
}

}  // namespace
