// The Camera page: the camera's type, clock polarity, depth and colours, its active region, the
// horizontal and vertical tap layout, and the data-valid and interlaced flags. The tap, clock
// polarity and data-valid controls only apply to boards other than CoaXPress ones and are
// disabled there, but their values are still written on apply.
#pragma once

#include "control/pages/bound_page.h"

class VRC_API CVrxPageCamera : public vrc::pages::BoundPage {
 public:
  CVrxPageCamera();
  explicit CVrxPageCamera(CVrxCtrl *owner);

  int UpdateControls() override;
};
