// Desktop services: the scripted implementation answers and records; the Qt one starts the
// user's editor from $VISUAL.
#include <QFile>
#include <QTemporaryDir>

#include "platform/window/desktop.h"
#include "platform/window/scripted_desktop.h"
#include "qt_environment.h"

namespace window_test {
namespace {

using namespace vrc::window;

TEST(ScriptedDesktop, AnswersBoxesFromItsQueueAndRecordsThem) {
  ScriptedDesktop scripted;
  scripted.answer_box(IDNO);
  EXPECT_EQ(scripted.message_box(nullptr, "Overwrite?", "SAVE SEQUENCE", MB_YESNO), IDNO);
  EXPECT_EQ(scripted.message_box(nullptr, "Again?", "", MB_YESNO | MB_ICONQUESTION), IDYES);
  EXPECT_EQ(scripted.message_box(nullptr, "Done", "", MB_OK), IDOK);
  ASSERT_EQ(scripted.boxes().size(), 3u);
  EXPECT_EQ(scripted.boxes()[0].caption, "SAVE SEQUENCE");
  EXPECT_EQ(scripted.boxes()[0].text, "Overwrite?");
  EXPECT_EQ(scripted.boxes()[1].type, MB_YESNO | MB_ICONQUESTION);
}

TEST(ScriptedDesktop, AnswersFileDialogsWithPathAndFilter) {
  ScriptedDesktop scripted;
  FileDialogRequest request;
  request.save = true;
  request.filters = {{"TIFF (*.tif)", "*.tif"}, {"JPEG (*.jpg)", "*.jpg"}};
  request.filter_index = 1;
  request.flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
  EXPECT_EQ(request.flags, 0x1806u);
  scripted.answer_file("/tmp/seq.jpg", 2);
  scripted.answer_file("/tmp/seq.tif");
  scripted.answer_file_cancel();
  FileDialogResult first = scripted.file_dialog(request);
  EXPECT_TRUE(first.accepted);
  EXPECT_EQ(first.path, "/tmp/seq.jpg");
  EXPECT_EQ(first.filter_index, 2);
  EXPECT_EQ(scripted.file_dialog(request).filter_index, 1);  // the request's own
  EXPECT_FALSE(scripted.file_dialog(request).accepted);
  EXPECT_FALSE(scripted.file_dialog(request).accepted);  // nothing queued: cancel
  EXPECT_EQ(scripted.file_requests().size(), 4u);
  EXPECT_EQ(scripted.file_requests()[0].filters[0].description, "TIFF (*.tif)");
}

TEST(ScriptedDesktop, RecordsCursorStatusEditorAndSleep) {
  auto previous = set_desktop(std::make_unique<ScriptedDesktop>());
  auto& scripted = static_cast<ScriptedDesktop&>(desktop());
  {
    WaitCursor outer;
    WaitCursor inner;
    EXPECT_EQ(scripted.wait_cursor_depth(), 2);
  }
  EXPECT_EQ(scripted.wait_cursor_depth(), 0);
  desktop().set_status_text("Ready");
  desktop().start_editor("/tmp/camera.vcf");
  desktop().sleep_ms(2000);
  EXPECT_EQ(scripted.status_texts(), std::vector<std::string>{"Ready"});
  EXPECT_EQ(scripted.edited_files(), std::vector<std::string>{"/tmp/camera.vcf"});
  EXPECT_EQ(scripted.slept_ms(), 2000u);
  const uint64_t a = desktop().performance_counter(), b = desktop().performance_counter();
  EXPECT_LE(a, b);
  EXPECT_EQ(desktop().performance_frequency(), 1000000000u);
  set_desktop(std::move(previous));
}

TEST(QtDesktop, StartsTheEditorNamedByVisual) {
  QTemporaryDir dir;
  const QString marker = dir.filePath("opened");
  // A stand-in editor that writes down the file it was asked to open.
  const QString editor = dir.filePath("editor.sh");
  QFile script(editor);
  ASSERT_TRUE(script.open(QIODevice::WriteOnly));
  script.write("#!/bin/sh\necho \"$1\" > \"$(dirname \"$0\")/opened\"\n");
  script.close();
  script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  qputenv("VISUAL", editor.toUtf8());
  std::unique_ptr<Desktop> qt = make_qt_desktop();
  EXPECT_TRUE(qt->start_editor("/tmp/some camera.vcf"));
  ASSERT_TRUE(pump_until([&] { return QFile(marker).size() > 0; }));
  QFile file(marker);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll().trimmed(), "/tmp/some camera.vcf");
  qunsetenv("VISUAL");
}

}  // namespace
}  // namespace window_test
