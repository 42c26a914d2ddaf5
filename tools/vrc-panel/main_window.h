// vrc-panel's main window: a QMainWindow, wrapped as a window of the windowing layer so that it
// can be the panel's parent, that hosts the panel's sheet above a status bar. The status bar's
// message pane is where the panel prints (the desktop's status-bar text lands there); a
// permanent pane at its right shows the acquisition figures. The window's title follows the
// sheet's, which carries the frame rate while live. Closing the window asks the program to end.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/window/window.h"

class QLabel;
class QMainWindow;
class QStatusBar;
class QWidget;

namespace vrc_panel {

class MainWindow : public vrc::window::Window {
 public:
  explicit MainWindow(std::function<void()> on_close);
  ~MainWindow() override;

  // Puts the sheet's widget into the window, under its title. The sheet's window must exist
  // and must be destroyed before the main window is.
  void host(vrc::window::Window &sheet);
  void show_window();

  void set_message(std::string_view text);
  std::string message() const;
  void set_figures(std::string_view text);
  std::string figures() const;
  bool save_screenshot(const std::string &path) const;

 private:
  QMainWindow *frame() const;

  QLabel *m_figures = nullptr;  // owned by the status bar
  QWidget *m_hosted = nullptr;  // the sheet's widget, owned by the sheet's window
};

}  // namespace vrc_panel
