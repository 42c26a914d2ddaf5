// A modeless property sheet: a tab per page, the Apply Now (12321) and Help (9) buttons, and
// room for further buttons beneath the tabs in a grid of rows and columns (columns 0 to 2 at
// the left, 4 and 5 beside Apply Now and Help). Pages added, removed and activated as a
// framework property sheet does: a page's window is made the first time its tab is activated
// and destroyed when the page is removed; the page object stays the caller's. Buttons send
// WM_COMMAND (id, BN_CLICKED) to the sheet; closing the window from the system menu sends
// WM_SYSCOMMAND SC_CLOSE, whose default handling hides the sheet.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/window/controls.h"
#include "platform/window/property_page.h"
#include "platform/window/window.h"

class QTabWidget;
class QGridLayout;

namespace vrc::window {

class PropertySheet : public Window {
 public:
  PropertySheet(std::string caption, Window* parent);
  ~PropertySheet() override;

  // Before `create` the pages are only listed; afterwards each gets its tab at once.
  void add_page(PropertyPage* page);
  void remove_page(PropertyPage* page);
  int page_count() const { return static_cast<int>(m_pages.size()); }
  PropertyPage* page(int index) const;
  int page_index(const PropertyPage* page) const;  // -1 when not in the sheet
  bool set_active_page(int index);
  int active_index() const;
  PropertyPage* active_page() const;
  std::vector<std::string> tab_captions() const;

  // Creates the window (hidden until shown) and activates the first page.
  bool create();
  // A push button beneath the tabs, sending its clicks to the sheet.
  Button* add_button(int id, std::string_view text, int row, int column);

  Window* child(int id) const override;
  LRESULT handle_message(uint32_t message, WPARAM wparam, LPARAM lparam) override;
  std::string caption() const { return m_caption; }

 protected:
  virtual bool on_init_dialog();
  virtual void on_command(int id, uint16_t code);
  virtual void on_sys_command(WPARAM command);
  void destroy_window() override;

 private:
  struct Tab {
    PropertyPage* page;
    std::unique_ptr<QWidget> holder;  // the tab's widget; the page builds itself inside it
  };
  void insert_tab(PropertyPage* page);
  void ensure_page_window(int index);

  std::string m_caption;
  std::vector<Tab> m_pages;
  std::vector<std::unique_ptr<Control>> m_buttons;
  QTabWidget* m_tabs = nullptr;
  QGridLayout* m_button_grid = nullptr;
  std::unique_ptr<Control> m_tab_control;  // id 12320, for lookups and enable state
};

}  // namespace vrc::window
