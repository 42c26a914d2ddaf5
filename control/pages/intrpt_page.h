// The Interrupt page: which board events raise interrupts (and so reach the panel's event
// callback), the buffer-ready count and the DMA time-out. Each check box stands for one interrupt
// bit; apply writes every bit, one write each, to the enable or the disable parameter. The page
// also keeps the FIFO-overflow and frame-lost counts that the acquisition engine adds to; the
// FIFO-overflow count is shown beside its check box.
#pragma once

#include <array>
#include <cstdint>

#include "control/vrx_page.h"

class VRC_API CVrcPageIntrpt : public CVrxPage {
 public:
  explicit CVrcPageIntrpt(CVrxCtrl *owner);

  void CountFifoOverflow() { ++m_fifo_overflow_count; }
  void CountFrameLost() { ++m_frame_lost_count; }
  int32_t GetFifoOverflowCount() const { return m_fifo_overflow_count; }
  int32_t GetFrameLostCount() const { return m_frame_lost_count; }

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  void on_command(int id, uint16_t code) override;

 private:
  bool Live() const;

  std::array<int32_t, 11> m_enabled{};  // one flag per interrupt bit, in check-box order
  int32_t m_fifo_overflow_count = 0;
  int32_t m_buffer_ready_count = 0;
  int32_t m_dma_timeout_ms = 0;
  int32_t m_frame_lost_count = 0;
};
