// The Register page: camera registers (over the camera's serial link) and frame-grabber
// registers written, read and the camera reset by hand, with a time-out of one second. Apply and
// refresh only check that a board is open for acquisition.
#pragma once

#include "control/vrx_page.h"

class VRC_API CVrcPageDevice : public CVrxPage {
 public:
  explicit CVrcPageDevice(CVrxCtrl *owner);

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;

 protected:
  void on_command(int id, uint16_t code) override;

 private:
  bool Live() const;
  LRESULT CheckLive();
};
