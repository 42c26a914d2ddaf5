// What the Camera page shows: its combo boxes, as (value, text) rows in item order.
#pragma once

#include "control/pages/choice.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {

inline constexpr Choice kCameraTypeChoices[] = {{0xC0021901, "Linescan with ROI"},
                                                {0xC0021902, "Linescan (datastream)"},
                                                {0xC0021903, "Areascan with ROI"},
                                                {0xC0021904, "Areascan (datastream)"},
                                                kChoiceEnd};
inline constexpr Choice kClockPolarityChoices[] = {
    {0xC0020E01, "Positive"}, {0xC0020E02, "Negative"}, kChoiceEnd};
inline constexpr Choice kCameraDepthChoices[] = {{8, "8"},   {10, "10"}, {12, "12"}, {14, "14"},
                                                 {16, "16"}, {32, "32"}, kChoiceEnd};
inline constexpr Choice kCameraColourChoices[] = {
    {vrx::ColourMono, "Mono"},  {0xC0021201, "Bayer RGGB"},
    {0xC0021202, "Bayer GRBG"}, {0xC0021203, "Bayer GBRG"},
    {0xC0021204, "Bayer BGGR"}, {vrx::ColourYuv, "YUV"},
    {vrx::ColourRgb, "RGB"},    kChoiceEnd};
inline constexpr Choice kHTapNumberChoices[] = {{1, "1"}, {2, "2"},   {3, "3"},  {4, "4"},
                                                {8, "8"}, {10, "10"}, kChoiceEnd};
inline constexpr Choice kHTapDirectionChoices[] = {{0xC0021301, "Left to Right"},
                                                   {0xC0021302, "Right to Left"},
                                                   {0xC0021303, "Converging"},
                                                   {0xC0021304, "Diverging"},
                                                   kChoiceEnd};
// 0xC0021403 is left out of the list on purpose; the board still accepts it.
inline constexpr Choice kHTapTypeChoices[] = {
    {0xC0021401, "Linear"}, {0xC0021402, "Offset_1"}, {0xC0021404, "Offset_2"}, kChoiceEnd};
inline constexpr Choice kHTapOrderChoices[] = {
    {0xC0027C01, "Ascending"}, {0xC0027C02, "Descending"}, kChoiceEnd};
inline constexpr Choice kVTapNumberChoices[] = {{1, "1"}, {2, "2"}, {4, "4"}, kChoiceEnd};
// "Converging" and "Diverging" both carry 0xC0021604 in the list, on purpose; the board
// itself knows 0xC0021603 as converging.
inline constexpr Choice kVTapDirectionChoices[] = {{0xC0021601, "Top to Bottom"},
                                                   {0xC0021602, "Bottom to Top"},
                                                   {0xC0021604, "Converging"},
                                                   {0xC0021604, "Diverging"},
                                                   kChoiceEnd};
inline constexpr Choice kVTapTypeChoices[] = {
    {0xC0021701, "Linear"}, {0xC0021702, "Offset"}, kChoiceEnd};
inline constexpr Choice kVTapOrderChoices[] = {
    {0xC0027D01, "Ascending"}, {0xC0027D02, "Descending"}, kChoiceEnd};

}  // namespace vrc::pages
