// The base of every page of the panel: a property page built from its dialog template, owned by
// a CVrxCtrl. It answers WM_USER+10 (refresh from the board), WM_USER+11 (apply to the board)
// and WM_USER+6 (enable states) through virtual operations, keeps Enter and Escape from closing
// the modeless sheet, and offers the helpers that map combo boxes, numbers, scroll bars and
// signal-source codes to board parameters. Helpers return 0, or -1 on failure.
#pragma once

#include <cstdint>

#include "control/pages/choice.h"
#include "platform/window/property_page.h"
#include "vrcw32/vrc.h"

class CVrxCtrl;

class VRC_API CVrxPage : public vrc::window::PropertyPage {
 public:
  using LRESULT = vrc::window::LRESULT;

  CVrxPage(CVrxCtrl *owner, const vrc::window::DialogTemplate &dialog);

  CVrxCtrl *GetCtrl() const { return m_ctrl; }
  int GetTemplateId() const { return dialog().id; }

  // Sets the enable states of the page's controls; the base does nothing and returns 0.
  virtual int UpdateControls();
  // WM_USER+10: re-read the page's settings from the board; 0, or -1 on failure.
  virtual LRESULT OnRefreshMessage();
  // WM_USER+11: write the page's settings to the board; 0, or non-zero to veto the apply.
  virtual LRESULT OnApplyMessage();

  LRESULT handle_message(uint32_t message, vrc::window::WPARAM wparam,
                         vrc::window::LPARAM lparam) override;
  bool pre_translate_key(int key) override;

  // ---- Helpers for the pages ----
  // Inserts the rows of `table` into combo `id` with their values as item data, at most 100,
  // stopping at the end marker.
  int FillList(int id, const vrc::pages::Choice *table);
  // Reads a board parameter and stores in `selection` the index of the last combo item whose
  // item data equals it.
  int SelectBySdkValue(int id, uint32_t parameter, int32_t &selection);
  // The same with a parameter of a display (VDL_DisplayParameterGet).
  int SelectByDisplayValue(int id, uint32_t display, uint32_t parameter, int32_t &selection);
  // Writes the item data of combo item `selection` to a board parameter.
  int WriteSelection(int id, uint32_t parameter, int32_t selection);
  int EnableItem(int id, bool enable);
  int ShowItem(int id, bool show);
  // Writes a signed number into a control and shows or hides it.
  int SetNumber(int id, int32_t value, bool show);
  // Sets a scroll bar's position, enabled and visible states.
  int SetScroll(int id, int position, bool enable, bool show);
  // After a user edit: pull the dialog data (OnChangedWithData only), light Apply Now through
  // the control, then UpdateControls.
  int OnChangedWithData();
  int OnChanged();
  // `flag` = 1 when the parameter reads other than 1, else 0.
  int FlagFromParameter(uint32_t parameter, int32_t &flag);
  int WriteNumberPlusOne(uint32_t parameter, int32_t value);
  // Source selector in bits 24-27 of a parameter to a radio index; with a non-zero `mask` the
  // parameter is tested bitwise first (all mask bits set: code 0x1, else 0x2).
  int SignalSourceToIndex(uint32_t parameter, uint32_t mask, int32_t &index);
  // Radio index to a source selector ORed into `base` and written to the parameter.
  int IndexToSignalSource(uint32_t parameter, uint32_t base, int32_t index);

 protected:
  bool on_init_dialog() override;
  uint32_t handle() const;

 private:
  CVrxCtrl *m_ctrl;
};
