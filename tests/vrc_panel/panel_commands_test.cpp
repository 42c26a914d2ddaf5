// vrc-panel's commands in process: a panel with the Configure page and two sample pages that
// hold every control kind, driven line by line as a script would, with the answers and what
// reached the pages checked.
#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "platform/sample_pages.h"
#include "platform/window/message_queue.h"
#include "tools/vrc-panel/command_table.h"
#include "tools/vrc-panel/main_window.h"
#include "tools/vrc-panel/panel_host.h"
#include "tools/vrc-panel/script_desktop.h"
#include "tools/vrc-panel/status_figures.h"

namespace {

using namespace vrc_panel;
using vrc::window::BN_CLICKED;
using vrc::window::CBN_SELCHANGE;
using vrc::window::EN_CHANGE;
using vrc::window::EN_KILLFOCUS;
using window_test::SamplePage;

std::vector<std::string> &reports() {
  static std::vector<std::string> lines;
  return lines;
}

void record_report(const char *function, eStat status, const char *message) {
  reports().push_back(callback_line(function, static_cast<int>(status), message));
}

class PanelCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    reports().clear();
    auto desktop = std::make_unique<ScriptDesktop>(
        [this](std::string_view text) { m_main.set_message(text); });
    m_desktop = desktop.get();
    vrc::window::set_desktop(std::move(desktop));
    m_panel = std::make_unique<PanelHost>(&m_main, 0x0001, record_report);
    ASSERT_EQ(m_panel->create(), VRC_OK);
    m_main.host(*m_panel->sheet());
    m_panel->sheet()->add_page(&m_acquisition);
    m_panel->sheet()->add_page(&m_registers);
    m_session = std::make_unique<Session>(Session{*m_panel, m_main, *m_desktop});
  }
  void TearDown() override {
    m_panel.reset();
    vrc::window::set_desktop(nullptr);
  }

  std::string run(std::string_view line) { return answer_line(run_command(*m_session, line)); }

  MainWindow m_main{[] {}};
  ScriptDesktop *m_desktop = nullptr;
  std::unique_ptr<PanelHost> m_panel;
  SamplePage m_acquisition{window_test::kAcquisitionDialog};
  SamplePage m_registers{window_test::kRegisterDialog};
  std::unique_ptr<Session> m_session;
};

struct Exchange {
  const char *command;
  const char *answer;
};

TEST_F(PanelCommands, ControlsOfTheActivePageAnswerAsTheUserWould) {
  const Exchange exchanges[] = {
      {"tab Acq Trig", "ok"},
      {"select 100 2", "ok"},
      {"select 100 \"Opto 2\"", "ok"},
      {"select 100 3", "error index 3 out of range: control 100 has 3 items"},
      {"select 100 -1", "error index -1 out of range: control 100 has 3 items"},
      {"select 100 \"Opto 9\"", "error control 100 has no item 'Opto 9'"},
      {"select 102 0", "error control 102 is not a combo box"},
      {"set 102 -42", "ok"},
      {"set 103   spaced  text ", "ok"},
      {"set 100 1", "error control 100 is not an edit field"},
      {"check 104 0", "ok"},
      {"check 104 0", "ok"},
      {"check 107 1", "ok"},
      {"check 107 0", "error control 107 is a radio button: check another one of its group"},
      {"check 109 1", "error control 109 is not a check box or radio button"},
      {"check 104 2", "error usage: check ID 0|1"},
      {"click 109", "ok"},
      {"click 104", "error control 104 is not a button"},
      {"click 17001", "error control 17001 is disabled"},
      {"click 9", "ok"},
      {"click 4242", "error no control 4242 on the active page"},
      {"key 0 enter", "ok"},
      {"key 102 escape", "ok"},
      {"key 102 space", "error usage: key ID enter|escape"},
      {"scroll 204 10", "error no control 204 on the active page"},
      {"tab Register", "ok"},
      {"scroll 204 200", "ok"},
      {"scroll 204 256", "error position 256 out of range 0..255"},
      {"scroll 201 1", "error control 201 is not a scroll bar"},
      {"tab Nowhere", "error no such tab 'Nowhere'"},
      {"tab", "error usage: tab CAPTION"},
  };
  for (const Exchange &exchange : exchanges)
    EXPECT_EQ(run(exchange.command), exchange.answer) << exchange.command;

  using Notification = SamplePage::Notification;
  const std::vector<std::pair<int, uint16_t>> expected{
      {100, CBN_SELCHANGE}, {100, CBN_SELCHANGE}, {102, EN_CHANGE},  {102, EN_KILLFOCUS},
      {103, EN_CHANGE},     {103, EN_KILLFOCUS},  {104, BN_CLICKED}, {104, BN_CLICKED},
      {107, BN_CLICKED},    {109, BN_CLICKED}};
  std::vector<std::pair<int, uint16_t>> received;
  for (const Notification &n : m_acquisition.commands) received.emplace_back(n.id, n.code);
  EXPECT_EQ(received, expected);
  EXPECT_EQ(m_acquisition.control<vrc::window::ComboBox>(100)->current(), 1);
  EXPECT_EQ(m_acquisition.control<vrc::window::Edit>(102)->text(), "-42");
  EXPECT_EQ(m_acquisition.control<vrc::window::Edit>(103)->text(), "  spaced  text ");
  EXPECT_FALSE(m_acquisition.control<vrc::window::Button>(104)->checked());
  EXPECT_TRUE(m_acquisition.control<vrc::window::Button>(107)->checked());
  EXPECT_EQ(m_acquisition.keys, (std::vector<int>{13, 27}));
  EXPECT_EQ(m_registers.scrolls, (std::vector<std::pair<int, int>>{{204, 200}}));
}

TEST_F(PanelCommands, DumpListsTheActivePageInCreationOrder) {
  ASSERT_EQ(run("tab Register"), "ok");
  ASSERT_EQ(run("scroll 204 17"), "ok");
  ASSERT_EQ(run("check 205 1"), "ok");
  const std::string dump = run("dump");
  EXPECT_TRUE(dump.starts_with(
      R"(ok {"title": "Vireo Control", "tabs": ["Configure", "Acq Trig", "Register"], )"
      R"("active": "Register", "buttons": [{"id": 17000, "text": "Single Shot", )"))
      << dump;
  EXPECT_NE(
      dump.find(R"({"id": 12321, "text": "Apply Now", "enabled": false, "visible": true}, )"
                R"({"id": 9, "text": "Help", "enabled": true, "visible": true}], "controls": [)"),
      std::string::npos)
      << dump;
  EXPECT_NE(
      dump.find(
          R"j({"id": 200, "kind": "group", "text": "Read from Camera (hex values)", "enabled": true, )j"
          R"("visible": true})"),
      std::string::npos)
      << dump;
  EXPECT_NE(
      dump.find(R"({"id": 204, "kind": "scrollbar", "text": "", "enabled": true, "visible": true, )"
                R"("position": 17, "min": 0, "max": 255})"),
      std::string::npos)
      << dump;
  EXPECT_NE(
      dump.find(
          R"({"id": 205, "kind": "check", "text": "Enable", "enabled": true, "visible": true, )"
          R"("checked": true})"),
      std::string::npos)
      << dump;
  EXPECT_TRUE(dump.ends_with("]}")) << dump;

  ASSERT_EQ(run("tab Acq Trig"), "ok");
  const std::string acquisition = run("dump");
  EXPECT_NE(
      acquisition.find(
          R"({"id": 100, "kind": "combo", "text": "Opto 2", "enabled": true, "visible": true, )"
          R"("selection": 1, "items": ["Opto 1", "Opto 2", "Internal Timer"]})"),
      std::string::npos)
      << acquisition;
  EXPECT_NE(acquisition.find(
                R"({"id": 101, "kind": "combo", "text": "Each Positive Edge", "enabled": true, )"
                R"("visible": true, "selection": 0, "items": ["Each Positive Edge"]})"),
            std::string::npos)
      << acquisition;
  EXPECT_NE(
      acquisition.find(R"({"id": 106, "kind": "radio", "text": "Field 1 then 2", "enabled": true, )"
                       R"("visible": true, "checked": false})"),
      std::string::npos)
      << acquisition;
}

TEST_F(PanelCommands, DisabledAndHiddenControlsAreOutOfReach) {
  ASSERT_EQ(run("tab Acq Trig"), "ok");
  m_acquisition.control<vrc::window::Edit>(102)->enable(false);
  m_acquisition.control<vrc::window::Button>(109)->show(vrc::window::SW_HIDE);
  EXPECT_EQ(run("set 102 5"), "error control 102 is disabled");
  EXPECT_EQ(run("click 109"), "error control 109 is hidden");
  EXPECT_EQ(run("click 12321"), "error control 12321 is disabled");
  EXPECT_TRUE(m_acquisition.commands.empty());
}

TEST_F(PanelCommands, BoxesAndDialogsAreListedOnceWithTheirAnswers) {
  ASSERT_EQ(run("answer-box no"), "ok");
  ASSERT_EQ(run("answer-file /tmp/my file.vcf 2"), "ok");
  ASSERT_EQ(run("answer-file cancel"), "ok");
  EXPECT_EQ(run("answer-box maybe"), "error usage: answer-box ok|cancel|yes|no");
  EXPECT_EQ(run("answer-file x 0"), "error filter index 0 out of range: they start at 1");
  auto &desktop = vrc::window::desktop();
  EXPECT_EQ(desktop.message_box(nullptr, "Save?", "Question", vrc::window::MB_YESNO),
            vrc::window::IDNO);
  EXPECT_EQ(desktop.message_box(nullptr, "Done", "Info", vrc::window::MB_OK), vrc::window::IDOK);
  vrc::window::FileDialogRequest request;
  request.save = true;
  request.title = "Save \"Sequence\"";
  request.filters = {{"TIFF (*.tif)", "*.tif"}, {"Bitmap (*.bmp)", "*.bmp"}};
  request.initial_name = "frames";
  request.flags = 0x0806;
  EXPECT_EQ(desktop.file_dialog(request).path, "/tmp/my file.vcf");
  EXPECT_FALSE(desktop.file_dialog(request).accepted);

  EXPECT_EQ(run("boxes"),
            R"(ok [{"caption": "Question", "text": "Save?", "type": 4, "answer": "no"}, )"
            R"({"caption": "Info", "text": "Done", "type": 0, "answer": "ok"}])");
  EXPECT_EQ(run("boxes"), "ok []");
  EXPECT_EQ(
      run("dialogs"),
      R"j(ok [{"save": true, "title": "Save \"Sequence\"", "filters": [["TIFF (*.tif)", "*.tif"], )j"
      R"j(["Bitmap (*.bmp)", "*.bmp"]], "filter_index": 1, "initial_name": "frames", "flags": 2054, )j"
      R"j("answer": "/tmp/my file.vcf"}, {"save": true, "title": "Save \"Sequence\"", "filters": )j"
      R"j([["TIFF (*.tif)", "*.tif"], ["Bitmap (*.bmp)", "*.bmp"]], "filter_index": 1, "initial_name": )j"
      R"j("frames", "flags": 2054, "answer": null}])j");
  EXPECT_EQ(run("dialogs"), "ok []");
}

TEST_F(PanelCommands, StatusBarAndUnknownCommands) {
  char text[] = "Board opened";
  m_panel->vrc()->PrintToStatusBar(text);
  EXPECT_EQ(run("status"), "ok Board opened");
  EXPECT_EQ(run("frobnicate 1 2"), "error unknown command 'frobnicate'");
  EXPECT_EQ(run("click"), "error usage: click ID");
  EXPECT_EQ(run("click 0xZZ"), "error usage: click ID");
  EXPECT_EQ(run("dump extra"), "error usage: dump");
  EXPECT_EQ(run("wait -5"), "error usage: wait MS");
  EXPECT_EQ(run("wait 0"), "ok");
  EXPECT_EQ(run("quit"), "ok");
  EXPECT_TRUE(m_session->quit_requested);
}

TEST(StatusFigures, TextOfTheFigures) {
  EXPECT_EQ(figures_text({1234, 1200, 30, 29.97}, 9.2137),
            "Acquired 1234  Painted 1200  Dropped 30  9.21 MB/s");
}

TEST_F(PanelCommands, TheStatusBarCountsWhileLive) {
  StatusFigures figures(*m_panel, m_main);
  ASSERT_EQ(run("tab Configure"), "ok");
  ASSERT_EQ(run("click 17023"), "ok");
  ASSERT_EQ(run("fps 100"), "ok 0");
  EXPECT_EQ(m_main.figures(), "");
  ASSERT_EQ(run("click 17001"), "ok");
  ASSERT_EQ(run("wait 1100"), "ok");
  std::smatch match;
  const std::string text = m_main.figures();
  ASSERT_TRUE(std::regex_match(
      text, match, std::regex(R"(Acquired (\d+)  Painted (\d+)  Dropped (\d+)  ([0-9.]+) MB/s)")))
      << text;
  EXPECT_GT(std::stoul(match[1]), 0u);
  EXPECT_GT(std::stoul(match[2]), 0u);
  // Frames of 640 x 480 bytes at no more than 100 a second: at most 30.72 MB/s, whatever the
  // machine's speed; a rate in other units would be far off.
  EXPECT_GT(std::stod(match[4]), 0.0);
  EXPECT_LT(std::stod(match[4]), 30.72 * 1.25);
  ASSERT_EQ(run("click 17002"), "ok");
  figures.update();
  // Stopped: the last figures stay.
  EXPECT_EQ(m_main.figures(), text);
}

}  // namespace
