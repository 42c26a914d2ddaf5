// The I/O Ports page: the board's general-purpose output lines as check boxes, written on apply
// with the set/clear encoding (one write setting the checked lines, one clearing the others) and
// read back line by line on refresh; "Set All" and "Clear All" drive every line at once. The
// input lines' levels are shown as "High" or "Low", read on refresh, on "Read Inputs" and, while
// "Auto Refresh" is checked, five times a second.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "control/vrx_page.h"
#include "platform/window/timer.h"

class VRC_API CVrxPageIoPorts : public CVrxPage {
 public:
  explicit CVrxPageIoPorts(CVrxCtrl *owner);
  ~CVrxPageIoPorts() override;

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;
  LRESULT handle_message(uint32_t message, vrc::window::WPARAM wparam,
                         vrc::window::LPARAM lparam) override;

  // Drives every output line (set or clear), then refreshes.
  int DriveAll(bool set);
  // Reads the input levels into their texts; 0, or -1 when the read fails.
  int ReadInputs();
  bool AutoRefreshRunning() const { return m_timer.running(); }

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;
  void destroy_window() override;

 private:
  bool Live() const;
  uint32_t CheckedLines() const;
  void FollowAutoRefresh();

  std::array<int32_t, 10> m_outputs{};  // one flag per output line, 1 = set
  std::array<std::string, 9> m_inputs;  // "High", "Low" or empty
  int32_t m_auto_refresh = 0;
  vrc::window::WindowTimer m_timer;
};
