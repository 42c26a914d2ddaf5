// vrc-panel: the camera control panel as a program, over the simulated (or a real) board.
// Interactive by default; with --script it runs commands and answers each on standard output.
#include <QApplication>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <span>

#include "platform/window/desktop.h"
#include "platform/window/message_queue.h"
#include "tools/vrc-panel/answer_lines.h"
#include "tools/vrc-panel/command_table.h"
#include "tools/vrc-panel/main_window.h"
#include "tools/vrc-panel/options.h"
#include "tools/vrc-panel/panel_host.h"
#include "tools/vrc-panel/quit_on_signals.h"
#include "tools/vrc-panel/script_desktop.h"
#include "tools/vrc-panel/script_runner.h"
#include "tools/vrc-panel/status_figures.h"
#include "vrcw32/zep.h"

namespace {

using namespace vrc_panel;

constexpr int kUsageError = 2;
constexpr int kFailure = 1;

// Where the panel's error callback prints: the script's answer stream, else standard error.
AnswerSink *&report_sink() {
  static AnswerSink *sink = nullptr;
  return sink;
}

void report(const char *function, eStat status, const char *message) {
  const std::string_view name = function ? function : "", text = message ? message : "";
  if (AnswerSink *sink = report_sink())
    sink->callback(name, static_cast<int>(status), text);
  else
    std::fprintf(stderr, "%s\n", callback_line(name, static_cast<int>(status), text).c_str());
}

// The imaging library's reports appear as the desktop's message boxes.
uint32_t show_imaging_report(const char *text, const char *caption) {
  return static_cast<uint32_t>(
      vrc::window::desktop().message_box(nullptr, text ? text : "", caption ? caption : "",
                                         vrc::window::MB_OK | vrc::window::MB_ICONERROR));
}

// The offscreen platform notes every window operation it cannot carry out (moving the sheet into
// the main window, size hints); those notes say nothing about the panel and are dropped.
QtMessageHandler g_default_message_handler = nullptr;

void filter_platform_notes(QtMsgType type, const QMessageLogContext &context,
                           const QString &message) {
  if (type == QtWarningMsg && message.startsWith("This plugin does not support")) return;
  g_default_message_handler(type, context, message);
}

std::shared_ptr<std::istream> open_script(const std::string &path) {
  if (path == "-") return std::shared_ptr<std::istream>(&std::cin, [](std::istream *) {});
  auto file = std::make_shared<std::ifstream>(path);
  if (!*file) return nullptr;
  return file;
}

}  // namespace

int main(int argc, char **argv) {
  QApplication application(argc, argv);
  if (QGuiApplication::platformName() == "offscreen")
    g_default_message_handler = qInstallMessageHandler(filter_platform_notes);
  const ParsedOptions parsed =
      parse_options(std::span<const char *const>(argv + 1, static_cast<std::size_t>(argc - 1)));
  if (!parsed.options) {
    std::fprintf(stderr, "vrc-panel: %s\n%s", parsed.error.c_str(), usage_text());
    return kUsageError;
  }
  const Options &options = *parsed.options;
  if (options.help) {
    std::fputs(usage_text(), stdout);
    return 0;
  }
  std::shared_ptr<std::istream> script;
  if (options.script && !(script = open_script(*options.script))) {
    std::fprintf(stderr, "vrc-panel: cannot read the script '%s'\n", options.script->c_str());
    return kFailure;
  }

  vrc::window::MessageQueue &queue = vrc::window::MessageQueue::current();
  std::unique_ptr<Session> session;
  // Closing the window or interrupting the program ends it, and a script with it.
  const auto end_program = [&queue, &session] {
    if (session) session->quit_requested = true;
    queue.post_quit(0);
  };
  MainWindow main_window(end_program);
  const QuitOnSignals interruption(end_program);
  AnswerSink answers(stdout);
  ScriptDesktop *script_desktop = nullptr;
  if (script) {
    auto desktop = std::make_unique<ScriptDesktop>(
        [&main_window](std::string_view text) { main_window.set_message(text); });
    script_desktop = desktop.get();
    vrc::window::set_desktop(std::move(desktop));
    report_sink() = &answers;
  }
  ZEP_SetMessageBox(show_imaging_report);

  PanelHost panel(&main_window, options.pages, report);
  if (panel.create() == VRC_OK) main_window.host(*panel.sheet());
  main_window.show_window();
  StatusFigures figures(panel, main_window);

  std::unique_ptr<ScriptRunner> runner;
  if (script) {
    session = std::make_unique<Session>(Session{panel, main_window, *script_desktop});
    runner = std::make_unique<ScriptRunner>(*session, answers, script);
    runner->start();
  }
  queue.run();

  if (options.screenshot_on_exit && !main_window.save_screenshot(*options.screenshot_on_exit))
    std::fprintf(stderr, "vrc-panel: cannot write the screenshot '%s'\n",
                 options.screenshot_on_exit->c_str());
  runner.reset();
  panel.close();
  ZEP_SetMessageBox(nullptr);
  report_sink() = nullptr;
  vrc::window::set_desktop(nullptr);
  return 0;
}
