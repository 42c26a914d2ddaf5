// The Interrupt page as far as the acquisition engine needs it: the FIFO-overflow and
// frame-lost counters it keeps.
#pragma once

#include <cstdint>

#include "control/vrx_page.h"

class VRC_API CVrcPageIntrpt : public CVrxPage {
 public:
  explicit CVrcPageIntrpt(CVrxCtrl *owner);

  void CountFifoOverflow() { ++m_fifo_overflow_count; }
  void CountFrameLost() { ++m_frame_lost_count; }
  int32_t GetFifoOverflowCount() const { return m_fifo_overflow_count; }
  int32_t GetFrameLostCount() const { return m_frame_lost_count; }

 private:
  int32_t m_fifo_overflow_count = 0;
  int32_t m_frame_lost_count = 0;
};
