// What the Display page shows: the capture and display format combos and the interpolation combo,
// as (value, text) rows in item order.
#pragma once

#include "control/pages/choice.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {

// Capture format combo rows, in the order the Display page offers them (k = 3 is not offered).
inline constexpr Choice kCaptureFormatChoices[] = {
    {vrx::capture_format(0), "8 bit mono"},        {vrx::capture_format(18), "10 bit mono"},
    {vrx::capture_format(19), "12 bit mono"},      {vrx::capture_format(30), "12 bit monoB"},
    {vrx::capture_format(26), "12 bit mono x2"},   {vrx::capture_format(20), "14 bit mono"},
    {vrx::capture_format(1), "16 bit mono"},       {vrx::capture_format(2), "32 bit mono"},
    {vrx::capture_format(21), "8 bit Bayer"},      {vrx::capture_format(22), "10 bit Bayer"},
    {vrx::capture_format(23), "12 bit Bayer"},     {vrx::capture_format(24), "14 bit Bayer"},
    {vrx::capture_format(25), "16 bit Bayer"},     {vrx::capture_format(29), "YUV 4:2:2"},
    {vrx::capture_format(4), "15 bit RGB"},        {vrx::capture_format(9), "15 bit BGR"},
    {vrx::capture_format(5), "16 bit RGB"},        {vrx::capture_format(10), "16 bit BGR"},
    {vrx::capture_format(16), "24 bit RGB"},       {vrx::capture_format(17), "24 bit BGR"},
    {vrx::capture_format(31), "8 bit RGB planar"}, {vrx::capture_format(6), "32 bit XBGR"},
    {vrx::capture_format(7), "32 bit BGRX"},       {vrx::capture_format(11), "32 bit XRGB"},
    {vrx::capture_format(12), "32 bit RGBX"},      {vrx::capture_format(14), "32 bit RGB"},
    {vrx::capture_format(15), "32 bit BGR"},       {vrx::capture_format(27), "36 bit RGB"},
    {vrx::capture_format(28), "36 bit BGR"},       {vrx::capture_format(8), "48 bit RGB"},
    {vrx::capture_format(13), "48 bit BGR"},       kChoiceEnd};
// Display interpolation combo (VDL_PARAM_INTERPOLATION); the texts are padded to one width.
inline constexpr Choice kInterpolationChoices[] = {
    {0, "Pixel duplication"}, {1, "Simple averaging "}, {2, "Median filter    "}, kChoiceEnd};

}  // namespace vrc::pages
