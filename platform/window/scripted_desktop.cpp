// Scripted desktop: answers from queues, everything recorded.
#include "platform/window/scripted_desktop.h"

#include <chrono>
#include <thread>

namespace vrc::window {

void ScriptedDesktop::answer_file(std::string path, int filter_index) {
  m_file_answers.push_back({true, std::move(path), filter_index});
}

void ScriptedDesktop::answer_file_cancel() { m_file_answers.push_back({}); }

int ScriptedDesktop::message_box(Window*, std::string_view text, std::string_view caption, unsigned type) {
  int answer = (type & 0xF) == MB_YESNO || (type & 0xF) == MB_YESNOCANCEL ? IDYES : IDOK;
  if (!m_box_answers.empty()) {
    answer = m_box_answers.front();
    m_box_answers.pop_front();
  }
  m_boxes.push_back({std::string(caption), std::string(text), type, answer});
  return answer;
}

FileDialogResult ScriptedDesktop::file_dialog(const FileDialogRequest& request) {
  m_file_requests.push_back(request);
  if (m_file_answers.empty()) return {};
  FileDialogResult answer = m_file_answers.front();
  m_file_answers.pop_front();
  if (answer.accepted && answer.filter_index == 0) answer.filter_index = request.filter_index;
  return answer;
}

bool ScriptedDesktop::start_editor(std::string_view path) {
  m_edited_files.emplace_back(path);
  return true;
}

void ScriptedDesktop::sleep_ms(uint32_t milliseconds) {
  m_slept_ms += milliseconds;
  if (m_real_sleep) std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

uint64_t ScriptedDesktop::performance_counter() {
  return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                   std::chrono::steady_clock::now().time_since_epoch())
                                   .count());
}

}  // namespace vrc::window
