// What the Comms page shows: its serial settings combos and the line ending it sends, as (value,
// text) rows in item order.
#pragma once

#include "control/pages/choice.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {

inline constexpr Choice kCommsBaudChoices[] = {
    {300, "300"},     {600, "600"},       {1200, "1200"},     {2400, "2400"},
    {4800, "4800"},   {9600, "9600"},     {19200, "19200"},   {38400, "38400"},
    {57600, "57600"}, {115200, "115200"}, {230400, "230400"}, kChoiceEnd};
inline constexpr Choice kCommsDataBitsChoices[] = {
    {0xC0021C01, "5"}, {0xC0021C02, "6"}, {0xC0021C03, "7"}, {0xC0021C04, "8"}, kChoiceEnd};
inline constexpr Choice kCommsFlowChoices[] = {{0xC0021D01, "None"},
                                               {0xC0021D02, "Hardware (rts/cts)"},
                                               {0xC0021D03, "Software (xon/xoff)"},
                                               kChoiceEnd};
inline constexpr Choice kCommsParityChoices[] = {
    {0xC0022001, "None"}, {0xC0022002, "Even"}, {0xC0022003, "Odd"}, kChoiceEnd};
inline constexpr Choice kCommsStopBitsChoices[] = {
    {0xC0022301, "1"}, {0xC0022302, "1.5"}, {0xC0022303, "2"}, kChoiceEnd};
// Line ending the Comms page appends when it sends: a page setting, not a board parameter.
inline constexpr Choice kCommsLineEndingChoices[] = {
    {0, "CRLF"}, {1, "CR"}, {2, "LF"}, {3, "None"}, kChoiceEnd};
// The characters each line ending stands for, by its value.
inline constexpr const char *kCommsLineEndings[] = {"\r\n", "\r", "\n", ""};

// What the page shows for the serial interface and the link status it reads.
inline constexpr Choice kCommsInterfaceTexts[] = {
    {vrx::CommsRs232, "RS232"}, {vrx::CommsLvds, "LVDS"}, kChoiceEnd};
inline constexpr Choice kCommsStatusTexts[] = {{0, "Idle"}, {1, "Data waiting"}, kChoiceEnd};

}  // namespace vrc::pages
