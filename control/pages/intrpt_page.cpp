// The Interrupt page's counters.
#include "control/pages/intrpt_page.h"

#include "control/page_slots.h"

CVrcPageIntrpt::CVrcPageIntrpt(CVrxCtrl *owner)
    : CVrxPage(owner, vrc::control::slot_template(vrc::control::PageSlot::Intrpt)) {}
