// The Display page as far as acquisition needs it: the display of the board's buffers (a
// display of the display library painting into a surface on the page), the display and
// conversion flags the paint step reads, the playing and sequence-collected flags every
// acquisition command clears, and the notice of a finished capture (WM_USER+13).
#pragma once

#include <cstdint>
#include <memory>

#include "control/vrx_page.h"
#include "platform/window/display_surface.h"

class VRC_API CVrxPageDisplay : public CVrxPage {
 public:
  explicit CVrxPageDisplay(CVrxCtrl *owner);
  ~CVrxPageDisplay() override;

  bool GetDisplayFlag() const { return m_display_on != 0; }
  bool GetConversionFlag() const { return m_conversion_on != 0; }
  uint32_t GetConversionBuffer() const { return m_conversion_buffer; }
  uint32_t GetDisplayHandle() const { return m_display; }
  int GetBayer() const { return m_bayer; }
  int GetColourBands() const { return m_colour_bands; }
  int GetSeqLength() const { return m_sequence_length; }
  int GetCurrentFrame() const { return m_current_frame; }
  void SetPlaying(int playing) { m_playing = playing; }
  int GetPlaying() const { return m_playing; }
  void SetSequenceCollected(int collected) { m_sequence_collected = collected; }
  int GetSequenceCollected() const { return m_sequence_collected; }
  // Captures finished (WM_USER+13 received) since construction.
  uint64_t GetCapturesFinished() const { return m_captures_finished; }
  const vrc::window::DisplaySurface *GetSurface() const { return m_surface.get(); }

  // Creates the display for a newly opened board (after every apply too); 0, or -1 when the
  // display library refuses.
  int SetUpDisplay();
  // Stops playback and destroys the display (the board is being closed).
  void StopDisplay();

  LRESULT handle_message(uint32_t message, vrc::window::WPARAM wparam,
                         vrc::window::LPARAM lparam) override;

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;
  void destroy_window() override;

 private:
  std::unique_ptr<vrc::window::DisplaySurface> m_surface;
  uint32_t m_display = 0;
  int32_t m_display_on = 1;
  int32_t m_conversion_on = 0;
  uint32_t m_conversion_buffer = 0;
  int m_bayer = 0, m_colour_bands = 1;
  int m_sequence_length = 2, m_current_frame = 1;
  int m_playing = 0, m_sequence_collected = 0;
  uint64_t m_captures_finished = 0;
};
