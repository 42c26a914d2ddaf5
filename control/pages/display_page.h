// The Display page: the on-screen display of the board's buffers and the sequence features of
// the panel. The board captures into a ring of buffers (the sequence); the page plays the ring
// back, saves any range of it to numbered image files and loads numbered files back into it.
// It holds the display and conversion flags the paint step reads, the conversion and display
// buffers sized from the board's settings, the frame table, the playing and sequence-collected
// flags every acquisition command clears, and answers the notice of a finished capture
// (WM_USER+13).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "control/vrx_page.h"
#include "platform/window/display_surface.h"

class VRC_API CVrxPageDisplay : public CVrxPage {
 public:
  explicit CVrxPageDisplay(CVrxCtrl *owner);
  ~CVrxPageDisplay() override;

  bool GetDisplayFlag() const { return m_display_on != 0; }
  bool GetConversionFlag() const { return m_conversion_on != 0; }
  bool GetConversionValid() const { return m_conversion_valid != 0; }
  uint32_t GetConversionBuffer() const { return m_conversion_buffer; }
  uint32_t GetDisplayBuffer() const { return m_display_buffer; }
  uint32_t GetDisplayHandle() const { return m_display; }
  int GetBayer() const { return m_bayer; }
  int GetColourBands() const { return m_colour_bands; }
  int GetSeqLength() const { return m_sequence_length; }
  int GetCurrentFrame() const { return m_current_frame; }
  void SetPlaying(int playing) { m_playing = playing; }
  int GetPlaying() const { return m_playing; }
  void SetSequenceCollected(int collected) { m_sequence_collected = collected; }
  int GetSequenceCollected() const { return m_sequence_collected; }
  // The capture buffer of frame 1 .. sequence length; 0 before the ring has been walked.
  uint32_t GetFrameBuffer(int frame) const;
  // Captures finished (WM_USER+13 received) since construction.
  uint64_t GetCapturesFinished() const { return m_captures_finished; }
  const vrc::window::DisplaySurface *GetSurface() const { return m_surface.get(); }

  // Creates the display for a newly opened board and, after every apply, rebuilds it and the
  // conversion and display buffers for the board's settings; 0, or -1 when a board read or the
  // display or buffer library fails.
  int SetUpDisplay();
  // Stops playback and destroys the display and buffers (the board is being closed).
  void StopDisplay();

  // Plays the sequence back at the last measured frame rate, each frame once; 0, or the status
  // of a failed read of the sequence length.
  uint32_t Play();
  // Saves frames first..last to numbered files the user names; the number of files written, 0
  // when the dialog is cancelled.
  uint32_t SaveSequence(uint32_t camera_handle, uint32_t first, uint32_t last);
  // Loads numbered files into frames first..last; the number of files loaded, 0 when the dialog
  // is cancelled.
  uint32_t LoadSequence(uint32_t camera_handle, uint32_t first, uint32_t last);

  int UpdateControls() override;
  LRESULT OnRefreshMessage() override;
  LRESULT OnApplyMessage() override;
  LRESULT handle_message(uint32_t message, vrc::window::WPARAM wparam,
                         vrc::window::LPARAM lparam) override;

 protected:
  void do_data_exchange(vrc::window::DataExchange &exchange) override;
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;
  void destroy_window() override;

 private:
  struct BufferGeometry {
    uint32_t width = 0, height = 0, format = 0;
  };
  // Width, height and capture format of the conversion buffer from the board's settings.
  bool ReadBufferGeometry(BufferGeometry &geometry) const;
  bool SizeBuffer(uint32_t buffer, const BufferGeometry &geometry) const;
  int RebuildBuffers();
  void DestroyBuffers();
  // Walks the ring once, recording each buffer in the frame table.
  uint32_t CollectSequence(uint32_t length);
  void PaintFrame(int frame);
  // Peeks the thread's queue: false on a waiting WM_QUIT (left queued), else dispatches one
  // message.
  bool DispatchOneMessage();
  void ReadSequenceLength();
  void ReadCameraColour();

  std::unique_ptr<vrc::window::DisplaySurface> m_surface;
  uint32_t m_display = 0;
  int32_t m_display_on = 1;
  int32_t m_conversion_on = 0;
  int32_t m_conversion_mode = 0;
  int32_t m_conversion_valid = 0;
  int32_t m_alternative_buffers = 0;
  uint32_t m_conversion_buffer = 0;
  uint32_t m_display_buffer = 0;
  int32_t m_capture_format_index = -1, m_display_format_index = -1, m_interpolation_index = -1;
  int32_t m_first_frame = 1, m_last_frame = 2;
  std::vector<uint32_t> m_frame_table;
  int m_bayer = 0, m_colour_bands = 1;
  int m_sequence_length = 2, m_current_frame = 1;
  int m_playing = 0, m_sequence_collected = 0;
  uint64_t m_captures_finished = 0;
};
