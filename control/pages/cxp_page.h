// The CXP page of CoaXPress boards: the link speed, link count and camera power the board
// should use, the camera register controls (with a time-out of the user's choosing), and the
// link's state: speed and links in use, whether a camera was found, its power, and which of the
// four links carry it.
#pragma once

#include <cstdint>

#include "control/pages/bound_page.h"

class VRC_API CVrcPageCxp : public vrc::pages::BoundPage {
 public:
  CVrcPageCxp();
  explicit CVrcPageCxp(CVrxCtrl *owner);

  int UpdateControls() override;

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  void on_command(int id, uint16_t code) override;

 private:
  void ShowLinkState(bool live);

  uint32_t m_timeout_ms = 1000;  // of the register reads, writes and reset
};
