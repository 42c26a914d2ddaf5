// The camera control panel: a modeless property sheet captioned "Vireo Control" with up to
// fifteen pages, five acquisition buttons beneath the tabs, the application's error callback and
// a small command and parameter interface. The acquisition engine (buttons, event callback,
// painting, frame statistics) and the apply and refresh fan-out to the pages are part of it.
//
// Everything runs on the thread that owns the sheet, except CtrlEventCallback, which the board
// SDK calls on its own thread; the two share only the pending-buffer count, the event semaphore
// and posted messages.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

#include "control/event_semaphore.h"
#include "control/page_slots.h"
#include "control/vrx_page.h"
#include "control/vrx_sheet.h"
#include "platform/window/controls.h"
#include "vrcw32/vrc.h"

class CVrxPageConfigure;
class CVrxPageDisplay;
class CVrcPageIntrpt;

// Acquisition figures since the last Live or Single Shot, for hosts and status bars.
struct VrcAcquisitionCounters {
  uint64_t acquired = 0;  // buffer-ready events received
  uint64_t painted = 0;   // buffers fetched and handed to the display (or counted without one)
  uint64_t dropped = 0;   // stale buffers released unpainted
  float fps = 0.0f;       // the rate of the title
  uint32_t most_paints_queued = 0;  // the most paint messages ever waiting at once
};

class VRC_API CVrxCtrl : public CVrxSheet {
 public:
  using LRESULT = vrc::window::LRESULT;
  using WPARAM = vrc::window::WPARAM;
  using LPARAM = vrc::window::LPARAM;
  using EventCallback = void (*)(uint32_t handle, uint32_t event_mask, void *context);

  CVrxCtrl(CWnd *parent, VRC_ERROR_CALLBACK callback);
  CVrxCtrl(CWnd *parent, uint32_t pages, VRC_ERROR_CALLBACK callback);
  ~CVrxCtrl() override;

  // ---- Commands and parameters ----
  eStat Exec(etVrcExec command);
  eStat ParameterGet(etVrcParam parameter, void *value);
  eStat ParameterSet(etVrcParam parameter, void *value);
  void MessageHandler();
  void PrintToStatusBar(char *text);
  void PostRefresh();
  LRESULT OnApply();

  // ---- Error reporting and accessors ----
  virtual void ErrHandler(const char *function, eStat status, const char *message);
  virtual void SetApply(int apply);
  virtual int GetAcq() const { return m_acq; }
  virtual void SetAcq(int acq) { m_acq = acq; }
  virtual int GetBayer() const;
  virtual EventCallback GetCallback() const { return m_event_callback; }
  virtual uint32_t GetCameraHandle() const { return m_camera_handle; }
  virtual void SetCameraHandle(uint32_t handle) { m_camera_handle = handle; }
  virtual int GetCameraLink() const { return m_camera_link; }
  virtual void SetCameraLink(int on) { m_camera_link = on; }
  virtual int GetComms() const { return m_comms; }
  virtual void SetComms(int on) { m_comms = on; }
  virtual int GetCLBase() const { return m_cl_base; }
  virtual void SetCLBase(int on) { m_cl_base = on; }
  virtual uint32_t GetBufferContext() const { return m_buffer_context; }
  virtual float GetFrameRate() const { return m_frame_rate; }
  virtual int GetInit() const { return m_init; }
  virtual void SetInit(int on) { m_init = on; }
  virtual int GetInterlaced() const;
  virtual int GetLive() const { return m_live; }
  virtual void SetLive(int on) { m_live = on; }
  virtual int GetColourBands() const;
  virtual int GetDepth() const;
  virtual CWnd *GetParentHandle() const { return m_parent; }
  virtual int GetSeqLength() const;
  virtual void ShowPages(uint32_t mode);
  virtual uint32_t GetPreTabsVisible() const { return m_pre_tabs_visible; }
  virtual void SetPreTabsVisible(uint32_t code) { m_pre_tabs_visible = code; }
  virtual uint32_t GetPostTabsVisible() const { return m_post_tabs_visible; }
  virtual void SetPostTabsVisible(uint32_t code) { m_post_tabs_visible = code; }
  virtual int GetCxpTabHidden() const { return m_cxp_hidden; }
  virtual eStat VRC_PropertyGet(uint8_t *value, uint8_t *properties, const uint8_t *key);
  virtual int DoModeless();

  // ---- Acquisition engine ----
  static void CtrlEventCallback(uint32_t handle, uint32_t event_mask, void *context);
  void Acquire();
  void OnLive();
  void OnSingle();
  void OnFreeze();
  void OnAbort();
  void OnRefreshButton();
  void OnHelp();
  void DisplayStats();
  LRESULT PaintBuffer();
  LRESULT OnFifoOverflow();
  LRESULT OnInterruptFrameLost();
  LRESULT OnInterruptTest();
  LRESULT OnInterruptTimeout();
  LRESULT OnInterruptAcqTrigEnd();
  LRESULT OnRefreshMessage();
  LRESULT UpdateView();
  LRESULT OnSysCommand(WPARAM command);

  // ---- For hosts (vrc-panel, tests) ----
  // The page in a slot, null when it was not requested.
  CVrxPage *GetPage(vrc::control::PageSlot slot) const;
  // A button of the sheet (17000-17004, Apply Now 12321, Help 9), null before the window.
  vrc::window::Button *GetButton(int id) const;
  VrcAcquisitionCounters GetCounters() const;
  // The Display page's set-up for a newly opened board, and its stop when the board closes.
  void SetUpDisplay();
  void StopDisplay();
  int GetFramesPerUpdate() const { return m_frames_per_update; }
  // Buffer-ready events not yet taken up by a paint.
  int32_t GetPendingBuffers() const { return m_pending_buffers.load(); }
  // Buffers got from the board and not yet handed back (0 between paints).
  int GetBuffersHeld() const { return m_buffers_held; }
  bool GetQuitFlag() const { return m_quit; }

  LRESULT handle_message(uint32_t message, WPARAM wparam, LPARAM lparam) override;

 protected:
  void DoConstruct(uint32_t pages);
  bool on_init_dialog() override;
  void on_command(int id, uint16_t code) override;
  void on_sys_command(WPARAM command) override;
  void destroy_window() override;

 private:
  void AbortForApply();
  void StartCapture(int live);
  void StopCapture(uint32_t operation);
  bool PageReady(const CVrxPage *page) const;
  void AddPageIfHidden(vrc::control::PageSlot slot, int &hidden);
  void RemovePageIfShown(vrc::control::PageSlot slot, int &hidden);
  void AddPage(vrc::control::PageSlot slot);
  void RemovePage(vrc::control::PageSlot slot);
  int *HiddenFlag(vrc::control::PageSlot slot);
  void ShowTabSet(uint32_t mode);
  void NotifyDisplayPage();
  void ResetCounters();
  void ReportTimerFailure(const char *function, const char *call);
  bool PostPaint();

  // Buttons: Single Shot, Live, Freeze, Abort, Refresh (windows made in OnInitDialog).
  std::array<vrc::window::Button *, 5> m_buttons{};
  // The fifteen pages by slot; null when not requested.
  std::array<std::unique_ptr<CVrxPage>, vrc::control::kPageSlotCount> m_pages;
  CVrxPageConfigure *m_configure = nullptr;
  CVrxPageDisplay *m_display = nullptr;
  CVrcPageIntrpt *m_intrpt = nullptr;

  std::unique_ptr<vrc::control::EventSemaphore> m_event_semaphore;
  uint32_t m_camera_handle = 0;
  std::atomic<int32_t> m_pending_buffers{0};
  EventCallback m_event_callback = nullptr;
  bool m_quit = false;
  int m_acq = 1, m_comms = 1, m_init = 0, m_live = 0, m_apply = 0, m_camera_link = 0;
  int m_cl_base = 0;
  uint32_t m_pre_tabs_visible = 0xC0010000, m_post_tabs_visible = 0;
  int m_cxp_hidden = 1, m_acqtrig_hidden = 0, m_comms_hidden = 0, m_exposure_hidden = 0,
      m_intrpt_hidden = 0, m_ioports_hidden = 0, m_lut_hidden = 0;
  VRC_ERROR_CALLBACK m_error_callback = nullptr;
  CWnd *m_parent = nullptr;
  uint32_t m_buffer_context = 0;

  // Frame statistics.
  uint32_t m_interval_ms = 0;
  uint64_t m_frequency = 0, m_start_count = 0, m_current_count = 0;
  uint32_t m_frame_counter = 0, m_frames_per_update = 10;
  float m_frame_rate = 10.0f;

  // Counters for hosts; the acquired count is written on the SDK thread.
  std::atomic<uint64_t> m_acquired{0};
  uint64_t m_painted = 0, m_dropped = 0;
  std::atomic<uint32_t> m_paints_queued{0}, m_most_paints_queued{0};
  int m_buffers_held = 0;
  std::atomic<bool> m_has_window{false};
};
