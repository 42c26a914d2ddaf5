// The main window over QMainWindow.
#include "tools/vrc-panel/main_window.h"

#include <QCloseEvent>
#include <QEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPixmap>
#include <QStatusBar>
#include <QVBoxLayout>
#include <memory>

#include "platform/window/qt_ownership.h"

namespace vrc_panel {
namespace {

using vrc::window::make_child;

QString qs(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The standard status-bar control id, which the panel looks for.
constexpr int kStatusBarId = 59393;

class FrameWidget : public QMainWindow {
 public:
  explicit FrameWidget(std::function<void()> on_close) : m_on_close(std::move(on_close)) {}

 protected:
  // The program ends through its message loop; the window stays until then, so that a
  // screenshot on exit still shows it.
  void closeEvent(QCloseEvent *event) override {
    event->ignore();
    m_on_close();
  }

 private:
  std::function<void()> m_on_close;
};

// Keeps the main window's title equal to the hosted sheet's.
class TitleFollower : public QObject {
 public:
  TitleFollower(QWidget *source, QWidget *target) : QObject(source), m_target(target) {
    source->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject *watched, QEvent *event) override {
    if (event->type() == QEvent::WindowTitleChange)
      m_target->setWindowTitle(static_cast<QWidget *>(watched)->windowTitle());
    return false;
  }

 private:
  QWidget *m_target;
};

}  // namespace

MainWindow::MainWindow(std::function<void()> on_close) {
  auto frame = std::make_unique<FrameWidget>(std::move(on_close));
  frame->setWindowTitle("Vireo Control");
  QStatusBar *status = frame->statusBar();
  status->setObjectName(QString::number(kStatusBarId));
  m_figures = make_child<QLabel>(status);
  status->addPermanentWidget(m_figures);
  auto *central = make_child<QWidget>(frame.get());
  auto *column = make_child<QVBoxLayout>(central);
  column->setContentsMargins(0, 0, 0, 0);
  frame->setCentralWidget(central);
  attach(std::move(frame));
}

MainWindow::~MainWindow() {
  // A sheet still hosted here belongs to its own window; hand it back before the frame goes.
  if (m_hosted) m_hosted->setParent(nullptr);
}

QMainWindow *MainWindow::frame() const { return static_cast<QMainWindow *>(widget()); }

void MainWindow::host(vrc::window::Window &sheet) {
  QWidget *sheet_widget = sheet.widget();
  if (!sheet_widget) return;
  QWidget *central = frame()->centralWidget();
  sheet_widget->setParent(central, Qt::Widget);
  central->layout()->addWidget(sheet_widget);
  sheet_widget->show();
  m_hosted = sheet_widget;
  QObject::connect(sheet_widget, &QObject::destroyed, frame(), [this] { m_hosted = nullptr; });
  make_child<TitleFollower>(sheet_widget, frame());
  frame()->setWindowTitle(sheet_widget->windowTitle());
}

void MainWindow::show_window() {
  frame()->adjustSize();
  frame()->show();
}

void MainWindow::set_message(std::string_view text) {
  frame()->statusBar()->showMessage(qs(text));
  frame()->statusBar()->repaint();
}

std::string MainWindow::message() const {
  return frame()->statusBar()->currentMessage().toStdString();
}

void MainWindow::set_figures(std::string_view text) { m_figures->setText(qs(text)); }

std::string MainWindow::figures() const { return m_figures->text().toStdString(); }

bool MainWindow::save_screenshot(const std::string &path) const {
  return frame()->grab().save(QString::fromStdString(path), "PNG");
}

}  // namespace vrc_panel
