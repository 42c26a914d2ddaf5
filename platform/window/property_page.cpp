// Property page: window life, control lookup, data exchange and notification routing.
#include "platform/window/property_page.h"

#include <QKeyEvent>
#include <QVBoxLayout>
#include <QWidget>
#include <functional>

#include "platform/window/property_sheet.h"
#include "platform/window/qt_ownership.h"

namespace vrc::window {
namespace {

// The page's own widget: offers every key that reaches it to the page first.
class PageWidget : public QWidget {
 public:
  explicit PageWidget(QWidget* parent, std::function<bool(int)> filter) : QWidget(parent), m_filter(std::move(filter)) {}

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) key = 13;
    if (key == Qt::Key_Escape) key = 27;
    if (m_filter(key))
      event->accept();
    else
      QWidget::keyPressEvent(event);
  }

 private:
  std::function<bool(int)> m_filter;
};

}  // namespace

PropertyPage::~PropertyPage() {
  if (m_sheet) m_sheet->remove_page(this);
  PropertyPage::destroy_window();
}

bool PropertyPage::create(QWidget* container, Window* sheet) {
  if (has_window()) return false;
  set_parent_window(sheet);
  auto root = std::make_unique<PageWidget>(container, [this](int key) { return pre_translate_key(key); });
  if (container) {
    if (!container->layout()) make_child<QVBoxLayout>(container);
    container->layout()->setContentsMargins(0, 0, 0, 0);
    container->layout()->addWidget(root.get());
  }
  m_controls = build_dialog(m_dialog, this, root.get());
  attach(std::move(root));
  on_init_dialog();
  return true;
}

void PropertyPage::destroy_window() {
  while (!m_controls.empty()) m_controls.pop_back();  // children before the widgets holding them
  Window::destroy_window();
}

Window* PropertyPage::child(int id) const {
  if (id == IDC_STATIC) return nullptr;
  for (const std::unique_ptr<Control>& control : m_controls)
    if (control->id() == id) return control.get();
  return nullptr;
}

bool PropertyPage::update_data(bool save) {
  if (!has_window()) return false;
  DataExchange exchange(*this, save);
  do_data_exchange(exchange);
  return !exchange.failed();
}

LRESULT PropertyPage::handle_message(uint32_t message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_COMMAND) on_command(low_word(wparam), high_word(wparam));
  if (message == WM_HSCROLL) {
    const auto* control = reinterpret_cast<const Window*>(lparam);
    on_scroll(control ? control->id() : IDC_STATIC, high_word(wparam));
  }
  return 0;
}

bool PropertyPage::pre_translate_key(int) { return false; }
void PropertyPage::do_data_exchange(DataExchange&) {}
void PropertyPage::on_command(int, uint16_t) {}
void PropertyPage::on_scroll(int, int) {}

bool PropertyPage::on_init_dialog() {
  update_data(false);
  return true;
}

}  // namespace vrc::window
