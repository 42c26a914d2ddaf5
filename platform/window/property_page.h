// A property page built from a dialog template. Its controls exist while the page has a window
// (from `create` until the sheet removes the page or the page goes away). Control notifications
// arrive as WM_COMMAND and WM_HSCROLL through handle_message and reach on_command and
// on_scroll; a subclass adds its own messages (WM_USER + n) by overriding handle_message.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/window/controls.h"
#include "platform/window/data_exchange.h"
#include "platform/window/dialog_template.h"
#include "platform/window/window.h"

class QWidget;

namespace vrc::window {

class PropertySheet;

class PropertyPage : public Window {
 public:
  explicit PropertyPage(const DialogTemplate& dialog) : m_dialog(dialog) {}
  ~PropertyPage() override;

  const DialogTemplate& dialog() const { return m_dialog; }
  std::string caption() const { return m_dialog.caption; }

  // Builds the page's widgets inside `container`, then runs on_init_dialog. False when the page
  // already has a window.
  bool create(QWidget* container, Window* sheet);
  void destroy() { destroy_window(); }

  Window* child(int id) const override;
  template <typename ControlType>
  ControlType* control(int id) const {
    return dynamic_cast<ControlType*>(child(id));
  }
  const std::vector<std::unique_ptr<Control>>& controls() const { return m_controls; }

  // UpdateData: true pulls the controls into the members, false pushes the members out.
  bool update_data(bool save);

  LRESULT handle_message(uint32_t message, WPARAM wparam, LPARAM lparam) override;
  // Win32 virtual-key code (13 Enter, 27 Escape, else the Qt key); true swallows the key.
  virtual bool pre_translate_key(int key);

 protected:
  virtual void do_data_exchange(DataExchange& exchange);
  virtual bool on_init_dialog();
  virtual void on_command(int id, uint16_t code);
  virtual void on_scroll(int id, int position);
  void destroy_window() override;

 private:
  friend class PropertySheet;
  PropertySheet* m_sheet = nullptr;  // the sheet listing this page, told when the page goes
  const DialogTemplate& m_dialog;
  std::vector<std::unique_ptr<Control>> m_controls;  // in creation order: group boxes first
};

// Creates the controls of `dialog` inside `root`, laid out, with `owner` as their parent window.
std::vector<std::unique_ptr<Control>> build_dialog(const DialogTemplate& dialog, Window* owner, QWidget* root);

}  // namespace vrc::window
