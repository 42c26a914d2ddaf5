// Property sheet over QTabWidget.
#include "platform/window/property_sheet.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QWidget>
#include <algorithm>
#include <functional>

#include "platform/window/qt_ownership.h"

namespace vrc::window {
namespace {

// The sheet's top-level widget: a close from the window manager becomes a system command.
class SheetWidget : public QWidget {
 public:
  SheetWidget(QWidget* parent, std::function<void()> on_close)
      : QWidget(parent, Qt::Window), m_on_close(std::move(on_close)) {}

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    m_on_close();
  }

 private:
  std::function<void()> m_on_close;
};

// The tab control as a window of its own (id 12320), wrapping the sheet's QTabWidget.
class TabControl : public Control {
 public:
  TabControl(Window* sheet, std::unique_ptr<QTabWidget> tabs) : Control(ControlKind::Static, ID_TAB_CONTROL, sheet) {
    attach(std::move(tabs));
  }
};

constexpr int kApplyColumn = 4, kHelpColumn = 5;

}  // namespace

PropertySheet::PropertySheet(std::string caption, Window* parent) : m_caption(std::move(caption)) {
  set_parent_window(parent);
}

PropertySheet::~PropertySheet() {
  PropertySheet::destroy_window();
  for (Tab& tab : m_pages) tab.page->m_sheet = nullptr;
}

void PropertySheet::destroy_window() {
  for (Tab& tab : m_pages) {
    tab.page->destroy();
    tab.holder.reset();
  }
  m_buttons.clear();
  m_tab_control.reset();
  m_tabs = nullptr;
  Window::destroy_window();
}

PropertyPage* PropertySheet::page(int index) const {
  return index >= 0 && index < page_count() ? m_pages[static_cast<std::size_t>(index)].page : nullptr;
}

int PropertySheet::page_index(const PropertyPage* page) const {
  auto it = std::find_if(m_pages.begin(), m_pages.end(), [page](const Tab& t) { return t.page == page; });
  return it == m_pages.end() ? -1 : static_cast<int>(it - m_pages.begin());
}

void PropertySheet::add_page(PropertyPage* page) {
  if (!page || page_index(page) >= 0) return;
  m_pages.push_back({page, nullptr});
  page->m_sheet = this;
  if (has_window()) insert_tab(page);
}

void PropertySheet::insert_tab(PropertyPage* page) {
  Tab& tab = m_pages[static_cast<std::size_t>(page_index(page))];
  tab.holder = std::make_unique<QWidget>();
  make_child<QVBoxLayout>(tab.holder.get());
  m_tabs->addTab(tab.holder.get(), QString::fromStdString(page->caption()));
}

void PropertySheet::remove_page(PropertyPage* page) {
  const int index = page_index(page);
  if (index < 0) return;
  // Out of the list before the tab goes: removing the current tab makes Qt activate another
  // at once, and that page's window must be the one created.
  Tab tab = std::move(m_pages[static_cast<std::size_t>(index)]);
  m_pages.erase(m_pages.begin() + index);
  if (m_tabs) m_tabs->removeTab(index);
  tab.page->destroy();
  tab.page->m_sheet = nullptr;
}

bool PropertySheet::set_active_page(int index) {
  if (!m_tabs || index < 0 || index >= page_count()) return false;
  ensure_page_window(index);
  m_tabs->setCurrentIndex(index);
  return true;
}

void PropertySheet::ensure_page_window(int index) {
  Tab& tab = m_pages[static_cast<std::size_t>(index)];
  if (!tab.page->has_window()) tab.page->create(tab.holder.get(), this);
}

int PropertySheet::active_index() const { return m_tabs ? m_tabs->currentIndex() : -1; }

PropertyPage* PropertySheet::active_page() const { return page(active_index()); }

std::vector<std::string> PropertySheet::tab_captions() const {
  std::vector<std::string> captions;
  for (const Tab& tab : m_pages) captions.push_back(tab.page->caption());
  return captions;
}

bool PropertySheet::create() {
  if (has_window()) return false;
  QWidget* parent_widget = parent_window() ? parent_window()->widget() : nullptr;
  auto sheet = std::make_unique<SheetWidget>(parent_widget, [this] { send(WM_SYSCOMMAND, SC_CLOSE); });
  sheet->setWindowTitle(QString::fromStdString(m_caption));
  auto* column = make_child<QVBoxLayout>(sheet.get());
  auto tabs = std::make_unique<QTabWidget>(sheet.get());
  tabs->setUsesScrollButtons(true);
  m_tabs = tabs.get();
  column->addWidget(m_tabs, 1);
  m_tab_control = std::make_unique<TabControl>(this, std::move(tabs));
  m_button_grid = make_child<QGridLayout>();
  m_button_grid->setColumnStretch(3, 1);
  column->addLayout(m_button_grid);
  attach(std::move(sheet));

  add_button(ID_APPLY_NOW, "Apply Now", 1, kApplyColumn)->enable(false);
  add_button(ID_HELP, "Help", 1, kHelpColumn);
  for (Tab& tab : m_pages) insert_tab(tab.page);
  QObject::connect(m_tabs, &QTabWidget::currentChanged, [this](int index) {
    if (index >= 0 && index < page_count()) ensure_page_window(index);
  });
  if (page_count() > 0) set_active_page(0);
  on_init_dialog();
  return true;
}

Button* PropertySheet::add_button(int id, std::string_view text, int row, int column) {
  if (!has_window()) return nullptr;
  auto button = std::make_unique<Button>(ControlKind::Button, id, text, this, widget());
  m_button_grid->addWidget(button->widget(), row, column);
  Button* added = button.get();
  m_buttons.push_back(std::move(button));
  return added;
}

Window* PropertySheet::child(int id) const {
  if (id == ID_TAB_CONTROL) return m_tab_control.get();
  for (const std::unique_ptr<Control>& button : m_buttons)
    if (button->id() == id) return button.get();
  return nullptr;
}

LRESULT PropertySheet::handle_message(uint32_t message, WPARAM wparam, LPARAM) {
  if (message == WM_COMMAND) on_command(low_word(wparam), high_word(wparam));
  if (message == WM_SYSCOMMAND) on_sys_command(wparam);
  return 0;
}

bool PropertySheet::on_init_dialog() { return true; }

void PropertySheet::on_command(int, uint16_t) {}

void PropertySheet::on_sys_command(WPARAM command) {
  if ((command & 0xFFF0) == SC_CLOSE) show(SW_HIDE);
}

}  // namespace vrc::window
