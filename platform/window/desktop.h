// Desktop services behind one interface, so that tests and scripts can answer them: message
// boxes, file open and save dialogs, the wait cursor, the main window's status-bar text,
// starting an external editor, sleeping and a monotonic performance counter. The process has
// one current implementation: the Qt one by default, a scripted one in tests and scripts.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vrc::window {

class Window;

// Message box types: buttons in the low nibble, icon in the next, as in Win32.
inline constexpr unsigned MB_OK = 0x0;
inline constexpr unsigned MB_OKCANCEL = 0x1;
inline constexpr unsigned MB_YESNOCANCEL = 0x3;
inline constexpr unsigned MB_YESNO = 0x4;
inline constexpr unsigned MB_ICONERROR = 0x10;
inline constexpr unsigned MB_ICONQUESTION = 0x20;
inline constexpr unsigned MB_ICONWARNING = 0x30;
inline constexpr unsigned MB_ICONINFORMATION = 0x40;
// Buttons pressed.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// File dialog option flags (Win32 values; the Qt dialogs honour overwrite-prompt and
// file-must-exist).
inline constexpr uint32_t OFN_OVERWRITEPROMPT = 0x0002;
inline constexpr uint32_t OFN_HIDEREADONLY = 0x0004;
inline constexpr uint32_t OFN_PATHMUSTEXIST = 0x0800;
inline constexpr uint32_t OFN_FILEMUSTEXIST = 0x1000;

struct FileFilter {
  std::string description;  // "TIFF (*.tif)"
  std::string pattern;      // "*.tif"
};

struct FileDialogRequest {
  bool save = false;
  Window* owner = nullptr;
  std::string title;
  std::vector<FileFilter> filters;
  int filter_index = 1;  // 1-based
  std::string initial_name;
  uint32_t flags = 0;
};

struct FileDialogResult {
  bool accepted = false;
  std::string path;
  int filter_index = 0;  // 1-based filter the user chose
};

class Desktop {
 public:
  virtual ~Desktop() = default;
  // Returns IDOK, IDCANCEL, IDYES or IDNO. An empty caption means the application's name.
  virtual int message_box(Window* owner, std::string_view text, std::string_view caption, unsigned type) = 0;
  virtual FileDialogResult file_dialog(const FileDialogRequest& request) = 0;
  virtual void begin_wait_cursor() = 0;
  virtual void end_wait_cursor() = 0;
  virtual void set_status_text(std::string_view text) = 0;
  // Opens the file in the user's editor ($VISUAL, $EDITOR, else xdg-open) without waiting.
  virtual bool start_editor(std::string_view path) = 0;
  virtual void sleep_ms(uint32_t milliseconds) = 0;
  virtual uint64_t performance_counter() = 0;
  virtual uint64_t performance_frequency() = 0;  // counts per second
};

Desktop& desktop();
// Installs `replacement` as the process's desktop; returns the previous one.
std::unique_ptr<Desktop> set_desktop(std::unique_ptr<Desktop> replacement);

// Shows the wait cursor for its lifetime.
class WaitCursor {
 public:
  WaitCursor() { desktop().begin_wait_cursor(); }
  ~WaitCursor() { desktop().end_wait_cursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

// The Qt implementation: dialogs, override cursor, the QMainWindow's status bar, QProcess.
std::unique_ptr<Desktop> make_qt_desktop();

}  // namespace vrc::window
