// What the ROI page shows: its subsampling and interlace combos, as (value, text) rows in item
// order.
#pragma once

#include "control/pages/choice.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {

inline constexpr Choice kSubsampleChoices[] = {
    {0xC0020701, "x 1"}, {0xC0020702, "x 2"}, {0xC0020703, "x 4"}, {0xC0020704, "x 8"}, kChoiceEnd};
inline constexpr Choice kInterlaceModeChoices[] = {{0xC0020601, "Interleave 1 and 2"},
                                                   {0xC0020602, "Interleave 2 and 1"},
                                                   {0xC0020608, "Line double 1 then 2"},
                                                   {0xC0020609, "Line double 2 then 1"},
                                                   {0xC002060A, "Line double next"},
                                                   {0xC002060B, "Line double 1 only"},
                                                   {0xC002060C, "Line double 2 only"},
                                                   {0xC0020603, "Field 1 then 2"},
                                                   {0xC0020604, "Field 2 then 1"},
                                                   {0xC0020607, "Field next"},
                                                   {0xC0020605, "Field 1 only"},
                                                   {0xC0020606, "Field 2 only"},
                                                   kChoiceEnd};

}  // namespace vrc::pages
