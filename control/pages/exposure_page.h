// The Exposure page: the exposure trigger source, the two exposure timers, and "Expose", which
// sends the board a software trigger.
#pragma once

#include "control/pages/bound_page.h"

class VRC_API CVrxPageExposure : public vrc::pages::BoundPage {
 public:
  CVrxPageExposure();
  explicit CVrxPageExposure(CVrxCtrl *owner);

  int UpdateControls() override;
  // Sends the software trigger, whatever the state of the board; the result is not shown.
  void OnExpose();

 protected:
  void on_command(int id, uint16_t code) override;
};
