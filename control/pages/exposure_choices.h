// What the Exposure page shows: its trigger source combo, as (value, text) rows in item order.
#pragma once

#include "control/pages/choice.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {

inline constexpr Choice kExpTrigSourceChoices[] = {{0xC0027203, "No Trigger"},
                                                   {0xC0027202, "Acquisition Trigger"},
                                                   {vrx::ExpTrigSoftware, "Software Trigger"},
                                                   {0xC0027209, "Internal Timer"},
                                                   {0xC0027205, "AuxIn 1 Rising Edge"},
                                                   {0xC0027206, "AuxIn 1 Falling Edge"},
                                                   {0xC0027207, "AuxIn 2 Rising Edge"},
                                                   {0xC0027208, "AuxIn 2 Falling Edge"},
                                                   kChoiceEnd};

}  // namespace vrc::pages
