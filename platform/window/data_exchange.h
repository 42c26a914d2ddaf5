// Data exchange between a page's members and its controls. A page's do_data_exchange names
// each member with its control id; UpdateData(true) runs it saving (controls to members),
// UpdateData(false) loading (members to controls). A number that does not parse stops the
// exchange: the user is told, the member keeps its value and the exchange reports failure.
#pragma once

#include <cstdint>
#include <string>

namespace vrc::window {

class PropertyPage;

class DataExchange {
 public:
  DataExchange(PropertyPage& page, bool saving) : m_page(page), m_saving(saving) {}
  bool saving() const { return m_saving; }
  bool failed() const { return m_failed; }

  void combo_index(int id, int32_t& index);    // selected index, -1 for none
  void number(int id, int32_t& value);         // signed decimal text
  void unsigned_number(int id, uint32_t& value);
  void check(int id, int32_t& value);          // 0 or 1
  void radio(int first_id, int32_t& index);    // consecutive radio ids from first_id; -1 for none
  void text(int id, std::string& value);
  void scroll_position(int id, int32_t& value);

 private:
  template <typename Control> Control* find(int id);
  template <typename Number> void exchange_number(int id, Number& value, const char* message);
  void fail(int id, const char* message);

  PropertyPage& m_page;
  const bool m_saving;
  bool m_failed = false;
};

}  // namespace vrc::window
