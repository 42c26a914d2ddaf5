// What the Configure page shows: the board selection combos (Board Type, Board Number, Channel,
// Board Mode), the short model names of the title and the CoaXPress model names, as (value, text)
// rows in item order.
#pragma once

#include <array>
#include <string_view>

#include "control/pages/choice.h"
#include "platform/board/vrx_params.h"

namespace vrc::pages {

// Board Type combo: "Any" and then every model, in model order.
inline constexpr auto kBoardTypeChoices = [] {
  std::array<Choice, vrx::kBoardModels.size() + 2> table{};
  table[0] = {vrx::BoardTypeAny, "Any"};
  for (std::size_t i = 0; i < vrx::kBoardModels.size(); ++i)
    table[i + 1] = {vrx::kBoardModels[i].value, vrx::kBoardModels[i].name};
  table[vrx::kBoardModels.size() + 1] = kChoiceEnd;
  return table;
}();

// Short model name by Board Type selection index, for the title; "Unrecognised" outside the
// table.
constexpr const char *short_model_name(int index) {
  if (index == 0) return "Vireo";
  if (index >= 1 && index <= static_cast<int>(vrx::kBoardModels.size()))
    return vrx::kBoardModels[static_cast<std::size_t>(index - 1)].short_name;
  return "Unrecognised";
}

// The "Model" property values that make a board a CoaXPress board.
inline constexpr std::array<std::string_view, 3> kCoaXPressModelNames{"VRX-CXP1", "VRX-CXP2",
                                                                      "VRX-CXP4"};

inline constexpr Choice kBoardNumberChoices[] = {
    {0xC0010001, "1"}, {0xC0010002, "2"}, {0xC0010003, "3"}, {0xC0010004, "4"},
    {0xC0010005, "5"}, {0xC0010006, "6"}, {0xC0010007, "7"}, kChoiceEnd};
inline constexpr Choice kChannelChoices[] = {
    {vrx::ChannelA, "A"}, {vrx::ChannelB, "B"}, kChoiceEnd};
inline constexpr Choice kBoardModeChoices[] = {{vrx::BoardModeNormal, "Normal"},
                                               {vrx::BoardModeAcquisitionOnly, "Acquisition Only"},
                                               {vrx::BoardModeCommsOnly, "Comms Only"},
                                               kChoiceEnd};

}  // namespace vrc::pages
