// The PoCL page: detects whether the camera on the cable draws Power over Camera Link, and
// switches the cable's 12V supply and ground output by hand. Nothing is written on apply; every
// button ends with a refresh of the two output states.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "control/vrx_page.h"

class VRC_API CVrcPagePocl : public CVrxPage {
 public:
  CVrcPagePocl();
  explicit CVrcPagePocl(CVrxCtrl *owner);

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;

  // Each returns 0, or the status of the SDK call that failed.
  uint32_t OnDetect();
  uint32_t OnForcePowerOff();
  uint32_t OnForce12VPowerOn();
  uint32_t OnForceGndOut();

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  void on_command(int id, uint16_t code) override;

 private:
  struct ParameterWrite {
    uint32_t parameter, value;
  };
  bool IsLive() const;
  // Writes each value in turn to its parameter, stopping at the first failure.
  uint32_t WriteSequence(std::initializer_list<ParameterWrite> writes);
  // A manual button: only on a live board, the writes and then a refresh.
  uint32_t WriteAndRefresh(std::initializer_list<ParameterWrite> writes);

  uint32_t m_status = 0;    // detection result: bit 0 set for a PoCL camera
  int32_t m_power_12v = 0;  // 1 while the 12V supply is on
  int32_t m_power_gnd = 0;  // 1 while the ground output is on
};
