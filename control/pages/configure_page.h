// The Configure page: the user picks a board type, board number, channel and board mode and an
// optional camera configuration file (which can be edited, and saved from the open board), opens
// the board ("Configure") and closes it again ("Release"). Opening creates and opens the SDK
// handle, hands it to the control, registers the event callback, lets the Display page set
// itself up, decides which tabs are shown and sets the panel's title. WM_USER+9 closes the board
// as Release does, without touching the title or the tabs.
#pragma once

#include <string>
#include <string_view>

#include "control/vrx_page.h"

class VRC_API CVrxPageConfigure : public CVrxPage {
 public:
  explicit CVrxPageConfigure(CVrxCtrl *owner);
  ~CVrxPageConfigure() override;

  // For the title of the frame-rate statistics.
  const char *GetBoardName() const;
  int GetBoardNumber() const { return m_board_number; }
  int GetChannelNumber() const { return m_channel; }

  int UpdateControls() override;
  LRESULT handle_message(uint32_t message, vrc::window::WPARAM wparam,
                         vrc::window::LPARAM lparam) override;

  int OnConfigure();
  int OnRelease();
  void OnSelectFile();
  void OnEditFile();
  void OnSaveAsFile();
  const std::string &GetConfigPath() const { return m_config_path; }

  // The text that stands for a configuration file's path in the 27-character field: the path
  // itself, or "..." and the file name after as many leading folders as fit.
  static std::string PathDisplayText(std::string_view path);

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;

 private:
  int CloseBoard();
  void PostStateToControl();
  int SetUpAcquisition(uint32_t handle);
  int IsCoaXPressBoard(uint32_t handle, bool &coaxpress);
  void SetTitle(uint32_t channel);

  std::string m_config_path;
  std::string m_config_text;
  int32_t m_board_type = 0, m_board_number = 0, m_channel = 0, m_board_mode = 0;
  bool m_closed_undestroyed = false;  // the held handle's board is closed, the handle not destroyed
};
