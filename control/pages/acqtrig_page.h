// The Acq Trig page: the acquisition trigger (source, mode, alignment, delay), the internal
// timer, the event counter, the trigger chain with its master or slave status, and channel sync.
#pragma once

#include "control/pages/bound_page.h"

class VRC_API CVrxPageAcqtrig : public vrc::pages::BoundPage {
 public:
  CVrxPageAcqtrig();
  explicit CVrxPageAcqtrig(CVrxCtrl *owner);

  int UpdateControls() override;
};
