// The Test page: the board's self-tests as check boxes, run in a fixed order by "Begin Tests",
// each regardless of the ones before it, with one message box for the whole run. "Select All"
// restores the defaults (every test but "Flash"), "Select None" clears them. The SDK's error
// handler logs each failing test; the box only says whether any failed.
#pragma once

#include <array>
#include <cstdint>

#include "control/vrx_page.h"

class VRC_API CVrxPageTest : public CVrxPage {
 public:
  explicit CVrxPageTest(CVrxCtrl *owner);

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;

  // The three buttons.
  void OnBeginTests();
  void OnSelectAll();
  void OnSelectNone();
  bool IsRunning() const { return m_running; }

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  void on_command(int id, uint16_t code) override;

 private:
  bool Live() const;
  LRESULT CheckLive();
  void SetAll(bool defaults);

  std::array<int32_t, 11> m_selected{};  // one flag per test, in running order
  bool m_running = false;
  bool m_failed = false;
};
