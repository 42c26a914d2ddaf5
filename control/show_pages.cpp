// ShowPages: swapping the CoaXPress tab for the tabs a CoaXPress board does not use, and the tab
// sets of the board modes.
#include "control/vrx_ctrl.h"

using vrc::control::PageSlot;

namespace {

constexpr uint32_t kTabsFull = 0xC0010080;   // every acquisition tab
constexpr uint32_t kTabsComms = 0xC0010200;  // the Comms tab alone

// The tabs a CoaXPress board does not use, in the order mode 1 removes them and mode 0 adds
// them back.
constexpr PageSlot kRemovedForCxp[] = {PageSlot::Acqtrig, PageSlot::Comms,   PageSlot::Exposure,
                                       PageSlot::Intrpt,  PageSlot::IoPorts, PageSlot::Lut};
constexpr PageSlot kRestoredWithoutCxp[] = {PageSlot::Intrpt,  PageSlot::Lut,
                                            PageSlot::Acqtrig, PageSlot::Exposure,
                                            PageSlot::IoPorts, PageSlot::Comms};

// How a page of the full tab set takes part in the tab-set codes.
enum class TabRole {
  Plain,      // added and removed as it stands
  Swappable,  // added only in mode 0 when hidden, removed only in mode 1 when shown
  Cxp         // added and removed only in mode 1
};
struct TabSetEntry {
  PageSlot slot;
  TabRole role;
};
constexpr TabSetEntry kFullTabSet[] = {{PageSlot::Camera, TabRole::Plain},
                                       {PageSlot::Intrpt, TabRole::Swappable},
                                       {PageSlot::Status, TabRole::Plain},
                                       {PageSlot::Lut, TabRole::Swappable},
                                       {PageSlot::Test, TabRole::Plain},
                                       {PageSlot::Display, TabRole::Plain},
                                       {PageSlot::Roi, TabRole::Plain},
                                       {PageSlot::Acqtrig, TabRole::Swappable},
                                       {PageSlot::Exposure, TabRole::Swappable},
                                       {PageSlot::IoPorts, TabRole::Swappable},
                                       {PageSlot::Pocl, TabRole::Plain},
                                       {PageSlot::Device, TabRole::Plain},
                                       {PageSlot::Cxp, TabRole::Cxp}};

}  // namespace

int *CVrxCtrl::HiddenFlag(PageSlot slot) {
  switch (slot) {
    case PageSlot::Cxp: return &m_cxp_hidden;
    case PageSlot::Acqtrig: return &m_acqtrig_hidden;
    case PageSlot::Comms: return &m_comms_hidden;
    case PageSlot::Exposure: return &m_exposure_hidden;
    case PageSlot::Intrpt: return &m_intrpt_hidden;
    case PageSlot::IoPorts: return &m_ioports_hidden;
    case PageSlot::Lut: return &m_lut_hidden;
    default: return nullptr;
  }
}

void CVrxCtrl::AddPage(PageSlot slot) {
  CVrxPage *page = GetPage(slot);
  if (!page) return;
  add_page(page);
  if (int *hidden = HiddenFlag(slot)) *hidden = 0;
}

void CVrxCtrl::RemovePage(PageSlot slot) {
  CVrxPage *page = GetPage(slot);
  if (!page) return;
  remove_page(page);
  if (int *hidden = HiddenFlag(slot)) *hidden = 1;
}

void CVrxCtrl::AddPageIfHidden(PageSlot slot, int &hidden) {
  if (hidden) AddPage(slot);
}

void CVrxCtrl::RemovePageIfShown(PageSlot slot, int &hidden) {
  if (!hidden) RemovePage(slot);
}

void CVrxCtrl::ShowPages(uint32_t mode) {
  if (mode == 0) {
    RemovePageIfShown(PageSlot::Cxp, m_cxp_hidden);
    for (PageSlot slot : kRestoredWithoutCxp) AddPageIfHidden(slot, *HiddenFlag(slot));
  } else {
    AddPageIfHidden(PageSlot::Cxp, m_cxp_hidden);
    for (PageSlot slot : kRemovedForCxp) RemovePageIfShown(slot, *HiddenFlag(slot));
  }
  if (m_pre_tabs_visible != m_post_tabs_visible) ShowTabSet(mode);
}

// Adds by PreTabsVisible, then removes by PostTabsVisible.
void CVrxCtrl::ShowTabSet(uint32_t mode) {
  if (m_pre_tabs_visible == kTabsComms && mode == 0)
    AddPageIfHidden(PageSlot::Comms, m_comms_hidden);
  if (m_pre_tabs_visible == kTabsFull) {
    for (const TabSetEntry &entry : kFullTabSet) {
      if (entry.role == TabRole::Plain) AddPage(entry.slot);
      if (entry.role == TabRole::Swappable && mode == 0)
        AddPageIfHidden(entry.slot, *HiddenFlag(entry.slot));
      if (entry.role == TabRole::Cxp && mode == 1) AddPage(entry.slot);
    }
  }
  if (m_post_tabs_visible == kTabsComms) {
    RemovePageIfShown(PageSlot::Comms, m_comms_hidden);
    return;
  }
  if (m_post_tabs_visible == kTabsFull) {
    for (const TabSetEntry &entry : kFullTabSet) {
      if (entry.role == TabRole::Plain) RemovePage(entry.slot);
      if (entry.role == TabRole::Swappable && mode == 1)
        RemovePageIfShown(entry.slot, *HiddenFlag(entry.slot));
      if (entry.role == TabRole::Cxp && mode == 1) RemovePage(entry.slot);
    }
  }
}
