// The fifteen page slots of the panel: their selection bits, dialog templates, tab captions and
// the fixed orders in which the control adds, applies, refreshes and destroys them.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "platform/window/dialog_template.h"

class CVrxCtrl;
class CVrxPage;

namespace vrc::control {

// In the order the control holds its page pointers.
enum class PageSlot {
  Configure,
  Display,
  Camera,
  Roi,
  Lut,
  Acqtrig,
  Exposure,
  Comms,
  Status,
  Test,
  IoPorts,
  Intrpt,
  Pocl,
  Device,
  Cxp
};
inline constexpr std::size_t kPageSlotCount = 15;

struct PageSlotInfo {
  PageSlot slot;
  uint32_t bit;     // selection bit of DoConstruct's `pages`
  int template_id;  // dialog template
  const char *caption;
};

// Slot information in tab order (the order DoConstruct adds the pages).
inline constexpr std::array<PageSlotInfo, kPageSlotCount> kTabOrder{{
    {PageSlot::Configure, 0x0001, 16160, "Configure"},
    {PageSlot::Camera, 0x0004, 16164, "Camera"},
    {PageSlot::Status, 0x0080, 16166, "Status"},
    {PageSlot::Display, 0x0002, 16161, "Display"},
    {PageSlot::Roi, 0x0008, 16163, "ROI"},
    {PageSlot::Intrpt, 0x0400, 16170, "Interrupt"},
    {PageSlot::Lut, 0x0010, 16165, "LUT"},
    {PageSlot::Acqtrig, 0x0020, 16162, "Acq Trig"},
    {PageSlot::Exposure, 0x0800, 16171, "Exposure"},
    {PageSlot::IoPorts, 0x0200, 16169, "I/O Ports"},
    {PageSlot::Comms, 0x0040, 16167, "Comms"},
    {PageSlot::Test, 0x0100, 16168, "Test"},
    {PageSlot::Pocl, 0x1000, 16172, "PoCL"},
    {PageSlot::Device, 0x2000, 16173, "Register"},
    {PageSlot::Cxp, 0x4000, 16174, "CXP"},
}};

// The slots sent WM_USER+11 by OnApply, with the flag each depends on (Configure and PoCL are
// never applied).
enum class ApplyFlag { Acq, Comms };
struct ApplyStep {
  PageSlot slot;
  ApplyFlag flag;
};
inline constexpr std::array<ApplyStep, 13> kApplyOrder{{
    {PageSlot::Camera, ApplyFlag::Acq},
    {PageSlot::Roi, ApplyFlag::Acq},
    {PageSlot::Lut, ApplyFlag::Acq},
    {PageSlot::Display, ApplyFlag::Acq},
    {PageSlot::Acqtrig, ApplyFlag::Acq},
    {PageSlot::Exposure, ApplyFlag::Acq},
    {PageSlot::Comms, ApplyFlag::Comms},
    {PageSlot::Status, ApplyFlag::Acq},
    {PageSlot::Test, ApplyFlag::Acq},
    {PageSlot::IoPorts, ApplyFlag::Acq},
    {PageSlot::Intrpt, ApplyFlag::Acq},
    {PageSlot::Device, ApplyFlag::Acq},
    {PageSlot::Cxp, ApplyFlag::Acq},
}};

// The slots PostRefresh posts WM_USER+10 to (not Configure).
inline constexpr std::array<PageSlot, 14> kRefreshOrder{
    PageSlot::Camera,   PageSlot::Roi,   PageSlot::Lut,    PageSlot::Display, PageSlot::Acqtrig,
    PageSlot::Exposure, PageSlot::Comms, PageSlot::Status, PageSlot::Test,    PageSlot::IoPorts,
    PageSlot::Intrpt,   PageSlot::Pocl,  PageSlot::Device, PageSlot::Cxp};

// The order in which the control's destructor releases its pages.
inline constexpr std::array<PageSlot, kPageSlotCount> kDestructionOrder{
    PageSlot::Cxp,  PageSlot::Device,  PageSlot::Pocl,     PageSlot::Intrpt,  PageSlot::IoPorts,
    PageSlot::Test, PageSlot::Comms,   PageSlot::Status,   PageSlot::Lut,     PageSlot::Camera,
    PageSlot::Roi,  PageSlot::Acqtrig, PageSlot::Exposure, PageSlot::Display, PageSlot::Configure};

const PageSlotInfo &slot_info(PageSlot slot);
constexpr std::size_t index_of(PageSlot slot) { return static_cast<std::size_t>(slot); }

// A slot's dialog template: its own controls for the pages that have them, else an empty
// template of the slot's id and caption.
const window::DialogTemplate &slot_template(PageSlot slot);

// Makes the page object of a slot, owned by `owner`: through the installed page factory when
// there is one, else the panel's own page of that slot.
std::unique_ptr<CVrxPage> make_page(PageSlot slot, CVrxCtrl *owner);
// The panel's own page of a slot.
std::unique_ptr<CVrxPage> make_default_page(PageSlot slot, CVrxCtrl *owner);

// A host may bring pages of its own: the factory is asked for every requested slot of controls
// constructed from now on and may return make_default_page's page. Null restores the default.
// Returns the factory installed before.
using PageFactory = std::unique_ptr<CVrxPage> (*)(PageSlot slot, CVrxCtrl *owner);
PageFactory set_page_factory(PageFactory factory);

}  // namespace vrc::control
