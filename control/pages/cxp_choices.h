// What the CXP page shows: its link speed, link count and power combos, as (value, text) rows in
// item order.
#pragma once

#include "control/pages/choice.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {

inline constexpr Choice kCxpLinkSpeedChoices[] = {{vrx::CxpSpeedAutomatic, "Automatic"},
                                                  {0xC0091002, "1.25 Gbps"},
                                                  {0xC0091003, "2.5 Gbps"},
                                                  {0xC0091004, "3.125 Gbps"},
                                                  {0xC0091005, "5 Gbps"},
                                                  {0xC0091006, "6.25 Gbps"},
                                                  kChoiceEnd};
inline constexpr Choice kCxpLinkCountChoices[] = {{vrx::CxpLinksAutomatic, "Automatic"},
                                                  {0xC0091202, "1 Link"},
                                                  {0xC0091203, "2 Links"},
                                                  {0xC0091204, "4 Links"},
                                                  kChoiceEnd};
inline constexpr Choice kCxpPowerChoices[] = {{vrx::CxpPowerAutomatic, "Automatic"},
                                              {vrx::CxpPowerOff, "Power Off"},
                                              {vrx::CxpPowerTripReset, "Trip Reset"},
                                              {vrx::CxpPowerForceOn, "Force On"},
                                              kChoiceEnd};

// What the Status group shows for the link's read-only state.
inline constexpr Choice kCxpPowerStateTexts[] = {{vrx::CxpPowerStatePowered, "Powered"},
                                                 {vrx::CxpPowerStateUnavailable, "Unavailable"},
                                                 {vrx::CxpPowerStateTripped, "Tripped"},
                                                 kChoiceEnd};
inline constexpr Choice kCxpPresentTexts[] = {{1, "Yes"}, {0, "No"}, kChoiceEnd};

}  // namespace vrc::pages
