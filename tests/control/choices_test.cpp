// The pages' combo tables against the board's value sets: every row the pages offer is a value
// the board accepts, and every value the board accepts is offered, but for the two the pages
// leave out on purpose.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "control/pages/acqtrig_choices.h"
#include "control/pages/camera_choices.h"
#include "control/pages/comms_choices.h"
#include "control/pages/configure_choices.h"
#include "control/pages/cxp_choices.h"
#include "control/pages/display_choices.h"
#include "control/pages/exposure_choices.h"
#include "control/pages/roi_choices.h"

namespace control_test {
namespace {

using vrc::pages::Choice;
using vrc::pages::rows_of;

struct TableCase {
  const char *name;
  std::span<const Choice> table;
  std::span<const uint32_t> board_values;
  std::set<uint32_t> left_out;  // accepted by the board, not offered by the page
};

std::ostream &operator<<(std::ostream &out, const TableCase &c) { return out << c.name; }

// A page's combo table kNameChoices against the board's kNameValues, with the values left out.
#define PAGE_TABLE(name, ...) \
  (TableCase{#name, vrc::pages::k##name##Choices, vrx::k##name##Values, {__VA_ARGS__}})

class PageTables : public ::testing::TestWithParam<TableCase> {};

TEST_P(PageTables, OfferWhatTheBoardAccepts) {
  const TableCase &c = GetParam();
  std::set<uint32_t> offered;
  for (const Choice &row : rows_of(c.table)) {
    EXPECT_TRUE(vrx::accepts(c.board_values, row.value))
        << std::hex << row.value << " " << row.text;
    offered.insert(row.value);
  }
  for (uint32_t value : c.board_values)
    EXPECT_TRUE(offered.count(value) || c.left_out.count(value)) << std::hex << value;
  EXPECT_EQ(c.table.back().text[0], '\0');  // the end marker is there
}

INSTANTIATE_TEST_SUITE_P(
    Tables, PageTables,
    ::testing::Values(PAGE_TABLE(BoardNumber), PAGE_TABLE(Channel), PAGE_TABLE(BoardMode),
                      PAGE_TABLE(CaptureFormat, vrx::capture_format(3)), PAGE_TABLE(CameraType),
                      PAGE_TABLE(ClockPolarity), PAGE_TABLE(CameraDepth), PAGE_TABLE(CameraColour),
                      PAGE_TABLE(HTapNumber), PAGE_TABLE(HTapDirection),
                      PAGE_TABLE(HTapType, vrx::kHTapTypeUnlisted), PAGE_TABLE(HTapOrder),
                      PAGE_TABLE(VTapNumber),
                      PAGE_TABLE(VTapDirection, vrx::kVTapDirectionConverging),
                      PAGE_TABLE(VTapType), PAGE_TABLE(VTapOrder), PAGE_TABLE(AcqTrigSource),
                      PAGE_TABLE(AcqTrigMode), PAGE_TABLE(AcqTrigAlign),
                      PAGE_TABLE(AcqTrigDelayType), PAGE_TABLE(TimerPeriodUnit),
                      PAGE_TABLE(EventCountSource), PAGE_TABLE(EventGate), PAGE_TABLE(ChannelSync),
                      PAGE_TABLE(ExpTrigSource), PAGE_TABLE(Subsample), PAGE_TABLE(InterlaceMode),
                      PAGE_TABLE(CommsBaud), PAGE_TABLE(CommsDataBits), PAGE_TABLE(CommsFlow),
                      PAGE_TABLE(CommsParity), PAGE_TABLE(CommsStopBits), PAGE_TABLE(CxpLinkSpeed),
                      PAGE_TABLE(CxpLinkCount), PAGE_TABLE(CxpPower)),
    [](const ::testing::TestParamInfo<TableCase> &test) { return std::string(test.param.name); });

TEST(ConfigureTables, BoardTypesShortNamesAndCoaXPressModels) {
  const auto board_types = rows_of(vrc::pages::kBoardTypeChoices);
  ASSERT_EQ(board_types.size(), 25u);
  EXPECT_EQ(board_types[0].value, vrx::BoardTypeAny);
  EXPECT_STREQ(board_types[0].text, "Any");
  for (std::size_t i = 1; i < board_types.size(); ++i) {
    const vrx::BoardModel *model = vrx::find_board_model(board_types[i].value);
    ASSERT_NE(model, nullptr) << board_types[i].text;
    EXPECT_STREQ(vrc::pages::short_model_name(static_cast<int>(i)), model->short_name);
  }
  EXPECT_STREQ(vrc::pages::short_model_name(0), "Vireo");
  EXPECT_STREQ(vrc::pages::short_model_name(25), "Unrecognised");
  EXPECT_STREQ(vrc::pages::short_model_name(-1), "Unrecognised");
  for (std::string_view name : vrc::pages::kCoaXPressModelNames) {
    const bool a_model =
        std::any_of(vrx::kBoardModels.begin(), vrx::kBoardModels.end(),
                    [&](const vrx::BoardModel &m) { return name == m.short_name; });
    EXPECT_TRUE(a_model) << name;
  }
}

TEST(DisplayTables, InterpolationTextsArePaddedToOneWidth) {
  for (const Choice &row : rows_of(vrc::pages::kInterpolationChoices))
    EXPECT_EQ(std::string(row.text).size(), 17u) << row.text;
  EXPECT_EQ(rows_of(vrc::pages::kCaptureFormatChoices).size(), 31u);
}

}  // namespace
}  // namespace control_test
