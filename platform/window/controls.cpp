// Controls over Qt widgets. Notifications come from the signals that only user actions raise
// (activated, textEdited, clicked, actionTriggered) and from focus-out events.
#include "platform/window/controls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <functional>

namespace vrc::window {
namespace {

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

class FocusReportingLineEdit : public QLineEdit {
 public:
  using QLineEdit::QLineEdit;
  std::function<void()> on_focus_out;

 protected:
  void focusOutEvent(QFocusEvent* event) override {
    QLineEdit::focusOutEvent(event);
    if (on_focus_out) on_focus_out();
  }
};

std::unique_ptr<QAbstractButton> make_button(ControlKind kind, QWidget* parent) {
  switch (kind) {
    case ControlKind::Check: return std::make_unique<QCheckBox>(parent);
    case ControlKind::Radio: return std::make_unique<QRadioButton>(parent);
    default: {
      auto push = std::make_unique<QPushButton>(parent);
      push->setAutoDefault(false);  // Enter never presses a button of a page
      return push;
    }
  }
}

}  // namespace

const char* kind_name(ControlKind kind) {
  switch (kind) {
    case ControlKind::Label: return "label";
    case ControlKind::Static: return "static";
    case ControlKind::GroupBox: return "group";
    case ControlKind::Combo: return "combo";
    case ControlKind::Edit: return "edit";
    case ControlKind::MultiLineEdit: return "multiline";
    case ControlKind::Check: return "check";
    case ControlKind::Radio: return "radio";
    case ControlKind::Button: return "button";
    case ControlKind::ScrollBar: return "scrollbar";
    case ControlKind::Picture: return "picture";
  }
  return "?";
}

Control::Control(ControlKind kind, int id, Window* parent) : m_kind(kind) {
  set_id(id);
  set_parent_window(parent);
}

void Control::notify(uint16_t code) {
  if (Window* parent = parent_window())
    parent->send(WM_COMMAND, make_wparam(static_cast<uint32_t>(id()), code), reinterpret_cast<LPARAM>(this));
}

// ---- Combo box ----------------------------------------------------------------------------

ComboBox::ComboBox(int id, Window* parent, QWidget* parent_widget) : Control(ControlKind::Combo, id, parent) {
  auto box = std::make_unique<QComboBox>(parent_widget);
  box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  QObject::connect(box.get(), &QComboBox::activated, [this](int) { notify(CBN_SELCHANGE); });
  attach(std::move(box));
}

QComboBox* ComboBox::box() const { return static_cast<QComboBox*>(widget()); }

int ComboBox::add_string(std::string_view text) {
  box()->addItem(qs(text));
  return box()->count() - 1;
}

int ComboBox::insert_string(int index, std::string_view text) {
  const int at = index < 0 || index > box()->count() ? box()->count() : index;
  const int selected = box()->currentIndex();
  box()->insertItem(at, qs(text));
  // Inserting never selects; keep "nothing selected" as it was.
  if (selected < 0) box()->setCurrentIndex(-1);
  return at;
}

void ComboBox::reset_content() { box()->clear(); }

int ComboBox::count() const { return box()->count(); }

std::string ComboBox::item_text(int index) const { return box()->itemText(index).toStdString(); }

bool ComboBox::set_item_data(int index, uint32_t data) {
  if (index < 0 || index >= count()) return false;
  box()->setItemData(index, QVariant::fromValue(data));
  return true;
}

uint32_t ComboBox::item_data(int index) const {
  if (index < 0 || index >= count()) return 0xFFFFFFFFu;
  return box()->itemData(index).value<uint32_t>();
}

int ComboBox::current() const { return box()->currentIndex(); }

void ComboBox::set_current(int index) { box()->setCurrentIndex(index >= 0 && index < count() ? index : -1); }

void ComboBox::select_as_user(int index) {
  set_current(index);
  notify(CBN_SELCHANGE);
}

std::string ComboBox::text() const { return box()->currentText().toStdString(); }

// ---- Edits --------------------------------------------------------------------------------

Edit::Edit(int id, Window* parent, QWidget* parent_widget) : Control(ControlKind::Edit, id, parent) {
  auto line = std::make_unique<FocusReportingLineEdit>(parent_widget);
  line->on_focus_out = [this] { notify(EN_KILLFOCUS); };
  QObject::connect(line.get(), &QLineEdit::textEdited, [this](const QString&) { notify(EN_CHANGE); });
  attach(std::move(line));
}

QLineEdit* Edit::line() const { return static_cast<QLineEdit*>(widget()); }

std::string Edit::text() const { return line()->text().toStdString(); }

void Edit::set_text(std::string_view text) { line()->setText(qs(text)); }

void Edit::type_as_user(std::string_view text) {
  set_text(text);
  notify(EN_CHANGE);
  notify(EN_KILLFOCUS);
}

MultiLineEdit::MultiLineEdit(int id, Window* parent, QWidget* parent_widget)
    : Control(ControlKind::MultiLineEdit, id, parent) {
  auto area = std::make_unique<QPlainTextEdit>(parent_widget);
  area->setReadOnly(true);
  area->setLineWrapMode(QPlainTextEdit::NoWrap);
  QFont fixed("Monospace");
  fixed.setStyleHint(QFont::TypeWriter);
  area->setFont(fixed);
  area->setFixedHeight(area->fontMetrics().lineSpacing() * 4 + 12);
  attach(std::move(area));
}

QPlainTextEdit* MultiLineEdit::area() const { return static_cast<QPlainTextEdit*>(widget()); }

std::string MultiLineEdit::text() const {
  return area()->toPlainText().replace('\n', "\r\n").toStdString();
}

void MultiLineEdit::set_text(std::string_view text) {
  area()->setPlainText(qs(text).replace("\r\n", "\n"));
}

// ---- Buttons ------------------------------------------------------------------------------

Button::Button(ControlKind kind, int id, std::string_view caption, Window* parent, QWidget* parent_widget)
    : Control(kind, id, parent) {
  std::unique_ptr<QAbstractButton> button = make_button(kind, parent_widget);
  button->setText(qs(caption));
  QObject::connect(button.get(), &QAbstractButton::clicked, [this](bool) { notify(BN_CLICKED); });
  attach(std::move(button));
}

QAbstractButton* Button::button() const { return static_cast<QAbstractButton*>(widget()); }

std::string Button::text() const { return button()->text().toStdString(); }

void Button::set_text(std::string_view text) { button()->setText(qs(text)); }

bool Button::checked() const { return button()->isChecked(); }

void Button::set_checked(bool on) {
  // An exclusive radio button refuses to be cleared directly; lift the exclusivity for it.
  const bool exclusive = button()->autoExclusive();
  if (!on && exclusive) button()->setAutoExclusive(false);
  button()->setChecked(on);
  if (!on && exclusive) button()->setAutoExclusive(true);
}

void Button::click_as_user() {
  // QAbstractButton::click() toggles checkable buttons and emits clicked, like a mouse click,
  // but only when enabled, as with the mouse.
  button()->click();
}

// ---- Static texts -------------------------------------------------------------------------

StaticText::StaticText(ControlKind kind, int id, std::string_view caption, Window* parent, QWidget* parent_widget)
    : Control(kind, id, parent) {
  if (kind == ControlKind::GroupBox)
    attach(std::make_unique<QGroupBox>(qs(caption), parent_widget));
  else
    attach(std::make_unique<QLabel>(qs(caption), parent_widget));
}

std::string StaticText::text() const {
  if (kind() == ControlKind::GroupBox) return static_cast<QGroupBox*>(widget())->title().toStdString();
  return static_cast<QLabel*>(widget())->text().toStdString();
}

void StaticText::set_text(std::string_view text) {
  if (kind() == ControlKind::GroupBox)
    static_cast<QGroupBox*>(widget())->setTitle(qs(text));
  else
    static_cast<QLabel*>(widget())->setText(qs(text));
}

void StaticText::set_word_wrap(bool on) {
  auto* label = dynamic_cast<QLabel*>(widget());
  if (!label) return;
  label->setWordWrap(on);
  // A grid works out the row's height before the text wraps: keep room for two lines.
  label->setMinimumHeight(on ? 2 * label->fontMetrics().lineSpacing() + 2 : 0);
}

// ---- Scroll bar ---------------------------------------------------------------------------

ScrollBar::ScrollBar(int id, Window* parent, QWidget* parent_widget) : Control(ControlKind::ScrollBar, id, parent) {
  auto bar = std::make_unique<QScrollBar>(Qt::Horizontal, parent_widget);
  bar->setMinimumWidth(120);
  QObject::connect(bar.get(), &QScrollBar::actionTriggered, [this](int) {
    // The slider has not moved yet when the action is reported; report where it goes.
    scroll_as_user(this->bar()->sliderPosition());
  });
  attach(std::move(bar));
}

QScrollBar* ScrollBar::bar() const { return static_cast<QScrollBar*>(widget()); }

void ScrollBar::set_range(int minimum, int maximum) { bar()->setRange(minimum, maximum); }

int ScrollBar::position() const { return bar()->value(); }

void ScrollBar::set_position(int position) { bar()->setValue(position); }

void ScrollBar::scroll_as_user(int position) {
  set_position(position);
  if (Window* parent = parent_window())
    parent->send(WM_HSCROLL, make_wparam(SB_THUMBPOSITION, static_cast<uint32_t>(bar()->value())),
                 reinterpret_cast<LPARAM>(this));
}

}  // namespace vrc::window
