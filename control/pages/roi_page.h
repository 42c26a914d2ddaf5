// The ROI page: the source region, subsampling, camera binning, the destination buffer and the
// interlaced acquisition type. Subsampling and binning only apply to boards other than CoaXPress
// ones and are disabled there, but their values are still written on apply.
#pragma once

#include "control/pages/bound_page.h"

class VRC_API CVrxPageRoi : public vrc::pages::BoundPage {
 public:
  CVrxPageRoi();
  explicit CVrxPageRoi(CVrxCtrl *owner);

  int UpdateControls() override;
};
