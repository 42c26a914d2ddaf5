// The Comms page: the camera's serial link. Five settings (baud rate, data bits, flow control,
// parity, stop bits) are board parameters; the line ending is the page's own. Typing in the
// transmit field sends each new character at once; leaving the field, or Enter, ends the line
// with the chosen line ending and clears the field. "Get chars" shows what the camera sent, and
// "Send File" sends a chosen file line by line. The page works whenever the board was opened
// with its serial link (Normal or Comms Only).
#pragma once

#include <cstdint>
#include <string>

#include "control/pages/bound_page.h"

class VRC_API CVrxPageComms : public vrc::pages::BoundPage {
 public:
  CVrxPageComms();
  explicit CVrxPageComms(CVrxCtrl *owner);

  int UpdateControls() override;
  bool pre_translate_key(int key) override;

  void OnTransmitChange();
  // Sends the line ending after the characters typed; nothing when none were.
  void EndTransmitLine();
  void OnGetChars();
  void OnSelectFile();
  void OnSendFile();
  const std::string &GetFilePath() const { return m_file_path; }

 protected:
  bool IsLive() const override;
  int ReadExtras() override;
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;

 private:
  uint32_t Transmit(const std::string &bytes);
  // Re-reads the link's counters, status and interface for display; false when a read failed.
  bool ReadLinkStatus();

  int32_t m_line_ending = 0;  // index into the line-ending list
  std::string m_file_path;
  std::string m_typed;     // the transmit field's characters sent so far
  std::string m_received;  // the receive field's text
  uint32_t m_sent_count = 0, m_received_count = 0, m_link_status = 0, m_interface = 0;
};
