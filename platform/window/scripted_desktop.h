// Desktop services answered from a script: queued answers for the next message boxes and file
// dialogs, and a record of everything shown or asked for. Sleeping does not block (it only adds
// to the slept total) unless real sleeping is turned on; the performance counter is the steady
// clock. Used by tests and by `vrc-panel --script`.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "platform/window/desktop.h"

namespace vrc::window {

class ScriptedDesktop : public Desktop {
 public:
  struct ShownBox {
    std::string caption, text;
    unsigned type = 0;
    int answer = 0;
  };

  // The next message box returns `button`; without a queued answer a box returns its first
  // button (OK or Yes).
  void answer_box(int button) { m_box_answers.push_back(button); }
  // The next file dialog returns this path and filter index (0 keeps the request's), or is
  // cancelled.
  void answer_file(std::string path, int filter_index = 0);
  void answer_file_cancel();
  void set_real_sleep(bool on) { m_real_sleep = on; }

  const std::vector<ShownBox>& boxes() const { return m_boxes; }
  const std::vector<FileDialogRequest>& file_requests() const { return m_file_requests; }
  const std::vector<std::string>& status_texts() const { return m_status_texts; }
  const std::vector<std::string>& edited_files() const { return m_edited_files; }
  int wait_cursor_depth() const { return m_wait_depth; }
  uint64_t slept_ms() const { return m_slept_ms; }

  int message_box(Window* owner, std::string_view text, std::string_view caption, unsigned type) override;
  FileDialogResult file_dialog(const FileDialogRequest& request) override;
  void begin_wait_cursor() override { ++m_wait_depth; }
  void end_wait_cursor() override { --m_wait_depth; }
  void set_status_text(std::string_view text) override { m_status_texts.emplace_back(text); }
  bool start_editor(std::string_view path) override;
  void sleep_ms(uint32_t milliseconds) override;
  uint64_t performance_counter() override;
  uint64_t performance_frequency() override { return 1'000'000'000; }

 private:
  std::deque<int> m_box_answers;
  std::deque<FileDialogResult> m_file_answers;
  std::vector<ShownBox> m_boxes;
  std::vector<FileDialogRequest> m_file_requests;
  std::vector<std::string> m_status_texts;
  std::vector<std::string> m_edited_files;
  int m_wait_depth = 0;
  uint64_t m_slept_ms = 0;
  bool m_real_sleep = false;
};

}  // namespace vrc::window
