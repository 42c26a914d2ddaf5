// The controls a property page holds. Each turns what the user does into a notification sent
// to its parent window as WM_COMMAND (id, code) with the control as lparam: a combo box's
// selection change, a button's or check box's click, an edit's text change and focus loss; a
// scroll bar sends WM_HSCROLL. Setting a value from code never notifies; the *_as_user calls
// set a value and notify exactly as the user doing it would (scripts and tests use them).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/window/window.h"

class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QAbstractButton;
class QScrollBar;
class QWidget;

namespace vrc::window {

enum class ControlKind { Label, Static, GroupBox, Combo, Edit, MultiLineEdit, Check, Radio, Button, ScrollBar, Picture };

const char* kind_name(ControlKind kind);

class Control : public Window {
 public:
  Control(ControlKind kind, int id, Window* parent);
  ControlKind kind() const { return m_kind; }

 protected:
  void notify(uint16_t code);

 private:
  ControlKind m_kind;
};

class ComboBox : public Control {
 public:
  ComboBox(int id, Window* parent, QWidget* parent_widget);
  int add_string(std::string_view text);
  int insert_string(int index, std::string_view text);
  void reset_content();
  int count() const;
  std::string item_text(int index) const;
  bool set_item_data(int index, uint32_t data);
  uint32_t item_data(int index) const;  // 0xFFFFFFFF for an index outside the list
  int current() const;                  // -1 when nothing is selected
  void set_current(int index);          // -1 or an index outside the list clears the selection
  void select_as_user(int index);
  std::string text() const override;

 private:
  QComboBox* box() const;
};

class Edit : public Control {
 public:
  Edit(int id, Window* parent, QWidget* parent_widget);
  std::string text() const override;
  void set_text(std::string_view text) override;
  // Types the text, then leaves the field: a text change and a focus loss.
  void type_as_user(std::string_view text);

 private:
  QLineEdit* line() const;
};

// Read-only text of several lines; CR LF in the text separate lines.
class MultiLineEdit : public Control {
 public:
  MultiLineEdit(int id, Window* parent, QWidget* parent_widget);
  std::string text() const override;
  void set_text(std::string_view text) override;

 private:
  QPlainTextEdit* area() const;
};

// Push button, check box and radio button.
class Button : public Control {
 public:
  Button(ControlKind kind, int id, std::string_view caption, Window* parent, QWidget* parent_widget);
  std::string text() const override;
  void set_text(std::string_view text) override;
  bool checked() const;
  void set_checked(bool on);
  void click_as_user();

 private:
  QAbstractButton* button() const;
};

// Static text, label and group box: text only.
class StaticText : public Control {
 public:
  StaticText(ControlKind kind, int id, std::string_view caption, Window* parent, QWidget* parent_widget);
  std::string text() const override;
  void set_text(std::string_view text) override;
  // Long texts break between words onto a second line instead of widening the page.
  void set_word_wrap(bool on);
};

class ScrollBar : public Control {
 public:
  ScrollBar(int id, Window* parent, QWidget* parent_widget);
  void set_range(int minimum, int maximum);
  int position() const;
  void set_position(int position);
  void scroll_as_user(int position);

 private:
  QScrollBar* bar() const;
};

}  // namespace vrc::window
