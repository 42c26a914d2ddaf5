// Page slots: templates of the pages that are only slots so far, and the page made for a slot.
#include "control/page_slots.h"

#include <atomic>

#include "control/pages/acqtrig_page.h"
#include "control/pages/camera_page.h"
#include "control/pages/comms_page.h"
#include "control/pages/configure_page.h"
#include "control/pages/cxp_page.h"
#include "control/pages/display_page.h"
#include "control/pages/exposure_page.h"
#include "control/pages/intrpt_page.h"
#include "control/pages/pocl_page.h"
#include "control/pages/roi_page.h"
#include "control/vrx_page.h"

namespace vrc::control {
namespace {

// One template per slot in slot order: the slot's id and caption, no controls.
const std::array<window::DialogTemplate, kPageSlotCount> kSlotTemplates = [] {
  std::array<window::DialogTemplate, kPageSlotCount> templates{};
  for (const PageSlotInfo &info : kTabOrder)
    templates[index_of(info.slot)] = window::DialogTemplate{info.template_id, info.caption, {}};
  return templates;
}();

}  // namespace

const PageSlotInfo &slot_info(PageSlot slot) {
  for (const PageSlotInfo &info : kTabOrder)
    if (info.slot == slot) return info;
  return kTabOrder[0];
}

const window::DialogTemplate &slot_template(PageSlot slot) {
  return kSlotTemplates[index_of(slot)];
}

std::atomic<PageFactory> g_page_factory{nullptr};

PageFactory set_page_factory(PageFactory factory) { return g_page_factory.exchange(factory); }

std::unique_ptr<CVrxPage> make_page(PageSlot slot, CVrxCtrl *owner) {
  if (PageFactory factory = g_page_factory.load()) return factory(slot, owner);
  return make_default_page(slot, owner);
}

std::unique_ptr<CVrxPage> make_default_page(PageSlot slot, CVrxCtrl *owner) {
  switch (slot) {
    case PageSlot::Configure: return std::make_unique<CVrxPageConfigure>(owner);
    case PageSlot::Display: return std::make_unique<CVrxPageDisplay>(owner);
    case PageSlot::Intrpt: return std::make_unique<CVrcPageIntrpt>(owner);
    case PageSlot::Camera: return std::make_unique<CVrxPageCamera>(owner);
    case PageSlot::Acqtrig: return std::make_unique<CVrxPageAcqtrig>(owner);
    case PageSlot::Exposure: return std::make_unique<CVrxPageExposure>(owner);
    case PageSlot::Roi: return std::make_unique<CVrxPageRoi>(owner);
    case PageSlot::Comms: return std::make_unique<CVrxPageComms>(owner);
    case PageSlot::Cxp: return std::make_unique<CVrcPageCxp>(owner);
    case PageSlot::Pocl: return std::make_unique<CVrcPagePocl>(owner);
    default: return std::make_unique<CVrxPage>(owner, slot_template(slot));
  }
}

}  // namespace vrc::control
