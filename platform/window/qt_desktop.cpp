// Desktop services on Qt: QMessageBox, QFileDialog, the override cursor, the status bar of the
// application's QMainWindow, QProcess for the editor, and the steady clock.
#include <QApplication>
#include <QFileDialog>
#include <QMainWindow>
#include <QMessageBox>
#include <QProcess>
#include <QStatusBar>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

#include "platform/window/desktop.h"
#include "platform/window/window.h"

namespace vrc::window {
namespace {

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

QMessageBox::StandardButtons buttons_of(unsigned type) {
  switch (type & 0xF) {
    case MB_OKCANCEL: return QMessageBox::Ok | QMessageBox::Cancel;
    case MB_YESNOCANCEL: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MB_YESNO: return QMessageBox::Yes | QMessageBox::No;
    default: return QMessageBox::Ok;
  }
}

QMessageBox::Icon icon_of(unsigned type) {
  switch (type & 0xF0) {
    case MB_ICONERROR: return QMessageBox::Critical;
    case MB_ICONQUESTION: return QMessageBox::Question;
    case MB_ICONWARNING: return QMessageBox::Warning;
    case MB_ICONINFORMATION: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
  }
}

class QtDesktop : public Desktop {
 public:
  int message_box(Window* owner, std::string_view text, std::string_view caption, unsigned type) override {
    QMessageBox box(icon_of(type), caption.empty() ? QApplication::applicationDisplayName() : qs(caption), qs(text),
                    buttons_of(type), owner ? owner->widget() : nullptr);
    switch (box.exec()) {
      case QMessageBox::Cancel: return IDCANCEL;
      case QMessageBox::Yes: return IDYES;
      case QMessageBox::No: return IDNO;
      default: return IDOK;
    }
  }

  FileDialogResult file_dialog(const FileDialogRequest& request) override {
    QStringList filters;
    for (const FileFilter& filter : request.filters) filters << qs(filter.description);
    QFileDialog dialog(request.owner ? request.owner->widget() : nullptr, qs(request.title));
    dialog.setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(request.save || !(request.flags & OFN_FILEMUSTEXIST) ? QFileDialog::AnyFile
                                                                           : QFileDialog::ExistingFile);
    if (request.save && !(request.flags & OFN_OVERWRITEPROMPT))
      dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setNameFilters(filters);
    if (request.filter_index >= 1 && request.filter_index <= filters.size())
      dialog.selectNameFilter(filters[request.filter_index - 1]);
    if (!request.initial_name.empty()) dialog.selectFile(qs(request.initial_name));
    FileDialogResult result;
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return result;
    result.accepted = true;
    result.path = dialog.selectedFiles().front().toStdString();
    result.filter_index = static_cast<int>(filters.indexOf(dialog.selectedNameFilter())) + 1;
    return result;
  }

  void begin_wait_cursor() override { QApplication::setOverrideCursor(Qt::WaitCursor); }
  void end_wait_cursor() override { QApplication::restoreOverrideCursor(); }

  void set_status_text(std::string_view text) override {
    for (QWidget* top : QApplication::topLevelWidgets()) {
      if (auto* main = qobject_cast<QMainWindow*>(top)) {
        main->statusBar()->showMessage(qs(text));
        main->statusBar()->repaint();
        return;
      }
    }
  }

  bool start_editor(std::string_view path) override {
    QStringList command;
    for (const char* variable : {"VISUAL", "EDITOR"}) {
      const char* value = std::getenv(variable);
      if (value && *value) {
        command = QProcess::splitCommand(QString::fromLocal8Bit(value));
        break;
      }
    }
    if (command.isEmpty()) command << "xdg-open";
    const QString program = command.takeFirst();
    return QProcess::startDetached(program, command << qs(path));
  }

  void sleep_ms(uint32_t milliseconds) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }

  uint64_t performance_counter() override {
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                     std::chrono::steady_clock::now().time_since_epoch())
                                     .count());
  }
  uint64_t performance_frequency() override { return 1'000'000'000; }
};

std::unique_ptr<Desktop>& current_desktop() {
  static std::unique_ptr<Desktop> current = make_qt_desktop();
  return current;
}

}  // namespace

std::unique_ptr<Desktop> make_qt_desktop() { return std::make_unique<QtDesktop>(); }

Desktop& desktop() { return *current_desktop(); }

std::unique_ptr<Desktop> set_desktop(std::unique_ptr<Desktop> replacement) {
  if (!replacement) replacement = make_qt_desktop();
  return std::exchange(current_desktop(), std::move(replacement));
}

}  // namespace vrc::window
