// A page whose controls each stand for one board parameter: combo boxes exchanged as the
// selected index (the board sees the item's data), signed and unsigned number edits, and check
// boxes written as one of two values. The page's table of bound controls, in the order the board
// is written on apply and read on refresh, gives its data exchange, the filling of its combo
// boxes, its apply and refresh and its change notifications; a page adds its own enable rules
// and whatever else it shows.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "control/pages/choice.h"
#include "control/vrx_page.h"

namespace vrc::pages {

enum class BoundKind : uint8_t { Combo, Number, Unsigned, Flag };

struct BoundControl {
  int id;
  BoundKind kind;
  uint32_t parameter;
  int32_t default_value;     // index, number or check state after construction
  const Choice *choices;     // Combo: the items
  uint32_t on = 0, off = 0;  // Flag: the values written when checked and when not
};

constexpr BoundControl bound_combo(int id, uint32_t parameter, const Choice *choices,
                                   int32_t default_index = 0) {
  return {id, BoundKind::Combo, parameter, default_index, choices};
}
constexpr BoundControl bound_number(int id, uint32_t parameter, int32_t default_value) {
  return {id, BoundKind::Number, parameter, default_value, nullptr};
}
constexpr BoundControl bound_unsigned(int id, uint32_t parameter, int32_t default_value) {
  return {id, BoundKind::Unsigned, parameter, default_value, nullptr};
}
constexpr BoundControl bound_flag(int id, uint32_t parameter, uint32_t on, uint32_t off) {
  return {id, BoundKind::Flag, parameter, 0, nullptr, on, off};
}

class VRC_API BoundPage : public CVrxPage {
 public:
  BoundPage(CVrxCtrl *owner, const vrc::window::DialogTemplate &dialog,
            std::span<const BoundControl> bound);

  // Writes every bound value in table order; the first refused write ends the apply with -1.
  LRESULT OnApplyMessage() override;
  // Reads every bound value in table order, then ReadExtras; the first failure ends the refresh
  // with -1 and leaves the controls as they were.
  LRESULT OnRefreshMessage() override;

  // The member of a bound control (the selection index, number or check state).
  int32_t Value(int id) const;
  // The item data of a bound combo's selected item, 0xFFFFFFFF when none.
  uint32_t SelectedData(int id) const;

 protected:
  // Whether the board is open in a mode this page works in: by default a board opened for
  // acquisition.
  virtual bool IsLive() const;
  // Further values a refresh reads after the bound ones; 0, or -1 to fail the refresh.
  virtual int ReadExtras() { return 0; }

  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;

 private:
  const BoundControl *Find(int id) const;
  int Write(const BoundControl &bound, int32_t value);
  int Read(const BoundControl &bound, int32_t &value);

  std::span<const BoundControl> m_bound;
  std::vector<int32_t> m_values;  // one member per bound control, in table order
};

}  // namespace vrc::pages
