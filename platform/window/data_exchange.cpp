// Data exchange, one function per kind of binding.
#include "platform/window/data_exchange.h"

#include <QWidget>
#include <charconv>
#include <cctype>

#include "platform/window/controls.h"
#include "platform/window/desktop.h"
#include "platform/window/property_page.h"

namespace vrc::window {
namespace {

template <typename Number>
bool parse(const std::string& text, Number& value) {
  std::size_t first = 0, last = text.size();
  while (first < last && std::isspace(static_cast<unsigned char>(text[first]))) ++first;
  while (last > first && std::isspace(static_cast<unsigned char>(text[last - 1]))) --last;
  if (first < last && text[first] == '+') ++first;
  auto [end, error] = std::from_chars(text.data() + first, text.data() + last, value);
  return error == std::errc() && end == text.data() + last && first < last;
}

}  // namespace

template <typename Control>
Control* DataExchange::find(int id) {
  if (m_failed) return nullptr;
  return dynamic_cast<Control*>(m_page.child(id));
}

void DataExchange::fail(int id, const char* message) {
  m_failed = true;
  desktop().message_box(&m_page, message, "", MB_OK | MB_ICONWARNING);
  if (Window* control = m_page.child(id); control && control->widget()) control->widget()->setFocus();
}

void DataExchange::combo_index(int id, int32_t& index) {
  if (ComboBox* combo = find<ComboBox>(id)) {
    if (m_saving)
      index = combo->current();
    else
      combo->set_current(index);
  }
}

template <typename Number>
void DataExchange::exchange_number(int id, Number& value, const char* message) {
  Window* edit = find<Window>(id);
  if (!edit) return;
  if (!m_saving) {
    edit->set_text(std::to_string(value));
    return;
  }
  Number parsed = 0;
  if (parse(edit->text(), parsed))
    value = parsed;
  else
    fail(id, message);
}

void DataExchange::number(int id, int32_t& value) { exchange_number(id, value, "Please enter an integer."); }

void DataExchange::unsigned_number(int id, uint32_t& value) {
  exchange_number(id, value, "Please enter a positive integer.");
}

void DataExchange::check(int id, int32_t& value) {
  if (Button* box = find<Button>(id)) {
    if (m_saving)
      value = box->checked() ? 1 : 0;
    else
      box->set_checked(value != 0);
  }
}

void DataExchange::radio(int first_id, int32_t& index) {
  if (m_saving) index = -1;
  for (int offset = 0;; ++offset) {
    Button* button = find<Button>(first_id + offset);
    if (!button || button->kind() != ControlKind::Radio) return;
    if (m_saving && button->checked()) index = offset;
    if (!m_saving) button->set_checked(offset == index);
  }
}

void DataExchange::text(int id, std::string& value) {
  if (Window* control = find<Window>(id)) {
    if (m_saving)
      value = control->text();
    else
      control->set_text(value);
  }
}

void DataExchange::scroll_position(int id, int32_t& value) {
  if (ScrollBar* bar = find<ScrollBar>(id)) {
    if (m_saving)
      value = bar->position();
    else
      bar->set_position(value);
  }
}

}  // namespace vrc::window
