// The Status page: the board's service figures read on every refresh (firmware and library
// revisions, the bus the board sits on, the acquisition state and the event counter's counts)
// and its errors: the last one on every refresh, the first one since it was last asked for on
// "Get First Error". "Board Properties" shows the board's information text.
#pragma once

#include <string>

#include "control/vrx_page.h"

namespace vrc::pages {
// "v%x.%x.%x" of a revision word 0x00MMmmpp.
std::string revision_text(uint32_t revision);
// The bus description of the board's bus figures.
std::string bus_text(uint32_t type, uint32_t width, uint32_t clock, uint32_t link_width,
                     uint32_t voltage);
// The acquisition state's text; empty for an unknown state.
const char *acquisition_state_text(uint32_t state);
// The information text's key=value lines as "key: value" lines.
std::string board_properties_text(const char *information);
}  // namespace vrc::pages

class VRC_API CVrxPageStatus : public CVrxPage {
 public:
  explicit CVrxPageStatus(CVrxCtrl *owner);

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;

  int OnGetFirstError();
  int OnBoardProperties();

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;

 private:
  bool Live() const;
  int ReadFigures();

  std::string m_firmware, m_library, m_bus, m_state, m_immediate, m_gated, m_first_error,
      m_last_error;
};
