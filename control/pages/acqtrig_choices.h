// What the Acq Trig page shows: its combo boxes, as (value, text) rows in item order.
#pragma once

#include "control/pages/choice.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {

inline constexpr Choice kAcqTrigSourceChoices[] = {{0xC0020413, "Opto 1"},
                                                   {0xC0020414, "Opto 2"},
                                                   {0xC0020401, "Opto A1"},
                                                   {0xC0020402, "Opto A2"},
                                                   {0xC0020403, "Opto B1"},
                                                   {0xC0020404, "Opto B2"},
                                                   {0xC0020415, "AuxIn 1"},
                                                   {0xC0020416, "AuxIn 2"},
                                                   {0xC002040F, "AuxIn A1"},
                                                   {0xC0020410, "AuxIn A2"},
                                                   {0xC0020411, "AuxIn B1"},
                                                   {0xC0020412, "AuxIn B2"},
                                                   {0xC0020417, "CtrlIn 1 (Frame)"},
                                                   {0xC0020418, "CtrlIn 2 (Line)"},
                                                   {0xC0020419, "CtrlIn 3 (Data)"},
                                                   {0xC002041A, "CcIo 1"},
                                                   {0xC002041B, "CcIo 2"},
                                                   {0xC002040B, "CcIo A1"},
                                                   {0xC002040C, "CcIo A2"},
                                                   {0xC002040D, "CcIo B1"},
                                                   {0xC002040E, "CcIo B2"},
                                                   {vrx::TrigSourceInternalTimer, "Internal Timer"},
                                                   kChoiceEnd};
inline constexpr Choice kAcqTrigModeChoices[] = {{vrx::TrigModeNone, "No acquisition trigger"},
                                                 {0xC0020502, "First Positive Edge"},
                                                 {0xC0020503, "First Negative Edge"},
                                                 {0xC0020504, "Each Positive Edge"},
                                                 {0xC0020505, "Each Negative Edge"},
                                                 {0xC0020506, "First Positive Level"},
                                                 {0xC0020507, "First Negative Level"},
                                                 {0xC0020508, "Each Positive Level"},
                                                 {0xC0020509, "Each Negative Level"},
                                                 {0xC002050A, "Gated Positive Level"},
                                                 {0xC002050B, "Gated Negative Level"},
                                                 kChoiceEnd};
inline constexpr Choice kAcqTrigAlignChoices[] = {{0xC0029001, "None"},
                                                  {0xC0029002, "Clock"},
                                                  {0xC0029003, "Line"},
                                                  {0xC0029004, "Frame"},
                                                  kChoiceEnd};
inline constexpr Choice kAcqTrigDelayTypeChoices[] = {
    {0xC0027801, "No delay"}, {0xC0027802, "Lines"}, {0xC0027803, "usecs"}, kChoiceEnd};
inline constexpr Choice kTimerPeriodUnitChoices[] = {{vrx::TimerUnitUsecs, "Time (usecs)"},
                                                     {vrx::TimerUnitDisabled, "Disabled"},
                                                     {vrx::TimerUnitLines, "Lines"},
                                                     kChoiceEnd};
inline constexpr Choice kEventCountSourceChoices[] = {
    {0xC0027A03, "Time (usecs)"}, {0xC0027A01, "Lines"}, {0xC0027A02, "Frames"}, kChoiceEnd};
inline constexpr Choice kEventGateChoices[] = {{0xC0027B04, "Lines"},
                                               {0xC0027B02, "Frames"},
                                               {0xC0027B01, "Acquisition Trigger"},
                                               {0xC0027B03, "Acquisition"},
                                               kChoiceEnd};
inline constexpr Choice kChannelSyncChoices[] = {
    {0xC0029901, "No Syncing"}, {0xC0029902, "Channels Synced"}, kChoiceEnd};

}  // namespace vrc::pages
