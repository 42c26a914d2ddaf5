// The LUT page: the curve, the gamma text, the preview, scroll bars and edits kept together, the
// table written and read back, a refused value in the middle, and the table visibly applied to
// the simulated camera's frames.
#include "control/pages/lut_page.h"
#include "board_page_fixture.h"
#include "platform/board/vrx_params.h"
#include "platform/window/picture.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;
using vrc::window::Button;
using vrc::window::Edit;
using vrc::window::ScrollBar;

TEST(LutCurve, OffsetGainAndGammaShapeTheOutput) {
  const vrx::LutChannel identity{};
  EXPECT_DOUBLE_EQ(vrx::lut_output(identity, 0.25), 0.25);
  EXPECT_DOUBLE_EQ(vrx::lut_output({0, 200, 100}, 0.25), 0.5);
  EXPECT_DOUBLE_EQ(vrx::lut_output({0, 200, 100}, 0.75), 1.0);  // clipped
  EXPECT_DOUBLE_EQ(vrx::lut_output({-255, 100, 100}, 0.9), 0.0);
  EXPECT_NEAR(vrx::lut_output({0, 100, 200}, 0.25), 0.5, 1e-12);  // gamma 2: square root
  EXPECT_NEAR(vrx::lut_output({51, 100, 100}, 0.0), 0.2, 1e-12);
}

TEST(LutCurve, GammaTextsRoundTripInHundredths) {
  EXPECT_EQ(vrc::pages::gamma_text(100), "1.00");
  EXPECT_EQ(vrc::pages::gamma_text(45), "0.45");
  int32_t gamma = 0;
  EXPECT_TRUE(vrc::pages::parse_gamma("2.2", gamma));
  EXPECT_EQ(gamma, 220);
  for (const char *bad : {"", "x", "0.05", "4.5", "1.0z"}) {
    gamma = 7;
    EXPECT_FALSE(vrc::pages::parse_gamma(bad, gamma)) << bad;
    EXPECT_EQ(gamma, 7);
  }
}

TEST(LutCurve, ThePreviewDrawsTheIdentityAndEachCurve) {
  std::array<vrx::LutChannel, 3> channels{};
  channels[0].gain = 200;
  const std::vector<uint32_t> pixels = vrc::pages::lut_preview(channels, true, 65);
  ASSERT_EQ(pixels.size(), 65u * 65u);
  auto at = [&](int x, int y) { return pixels[static_cast<std::size_t>(64 - y) * 65 + x]; };
  EXPECT_EQ(at(16, 32), 0xFFD02020u);  // red: twice the input
  EXPECT_EQ(at(48, 48), 0xFF20A020u);  // green over blue on the identity
  EXPECT_EQ(at(5, 60), 0xFFFFFFFFu);
  const std::vector<uint32_t> off = vrc::pages::lut_preview(channels, false, 65);
  EXPECT_EQ(off[static_cast<std::size_t>(64 - 32) * 65 + 16], 0xFF808080u);
}

class LutPage : public BoardPageTest<CVrxPageLut, PageSlot::Lut> {
 protected:
  ScrollBar *bar(int id) const { return item<ScrollBar>(id); }
};

TEST_F(LutPage, WithoutABoardTheControlsAreDisabledAtTheIdentity) {
  make(0x4EFF);
  show();
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
  for (int id : {17120, 17121, 17130, 17131, 17134, 17135, 17155})
    EXPECT_FALSE(page()->child(id)->enabled()) << id;
  EXPECT_EQ(text(17130), "0");
  EXPECT_EQ(text(17132), "100");
  EXPECT_EQ(text(17134), "1.00");
  EXPECT_EQ(bar(17133)->position(), 100);
  EXPECT_EQ(page()->control<vrc::window::Picture>(17170)->image_width(), 129);
}

TEST_F(LutPage, ScrollBarsAndEditsFollowEachOther) {
  open();
  ctrl->SetApply(0);
  bar(17141)->scroll_as_user(-40);  // green offset
  EXPECT_EQ(text(17140), "-40");
  EXPECT_EQ(page()->Channels()[1].offset, -40);
  EXPECT_TRUE(ctrl->child(vrc::window::ID_APPLY_NOW)->enabled());
  page()->control<Edit>(17154)->type_as_user("2.5");  // blue gamma
  EXPECT_EQ(bar(17155)->position(), 250);
  page()->control<Edit>(17132)->type_as_user("999");  // red gain beyond its range
  EXPECT_EQ(page()->Channels()[0].gain, 400);
  EXPECT_EQ(text(17132), "400");
  page()->control<Edit>(17134)->type_as_user("nonsense");
  EXPECT_EQ(text(17134), "1.00");
  page()->control<Button>(17121)->click_as_user();
  EXPECT_EQ(page()->Channels()[1].offset, 0);
  EXPECT_EQ(bar(17141)->position(), 0);
}

TEST_F(LutPage, ApplyWritesTheTableAndRefreshReadsItBack) {
  open();
  page()->control<Button>(17120)->click_as_user();
  bar(17131)->scroll_as_user(10);
  bar(17143)->scroll_as_user(150);
  page()->control<Edit>(17154)->type_as_user("0.5");
  EXPECT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_EQ(board(vrx::ParamLutEnable), vrx::FlagOn);
  EXPECT_EQ(board(vrx::ParamLutOffset[0]), 10u);
  EXPECT_EQ(board(vrx::ParamLutGain[1]), 150u);
  EXPECT_EQ(board(vrx::ParamLutGamma[2]), 50u);
  uint32_t offset = static_cast<uint32_t>(-77);
  ASSERT_EQ(VRX_ParameterSet(handle(), vrx::ParamLutOffset[2], &offset), VRX_OK);
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
  EXPECT_EQ(text(17150), "-77");
  EXPECT_EQ(bar(17151)->position(), -77);
  EXPECT_EQ(text(17154), "0.50");
}

TEST_F(LutPage, ARefusedValueLeavesTheLaterValuesUnwritten) {
  open();
  bar(17133)->scroll_as_user(300);  // red gain
  bar(17153)->scroll_as_user(50);   // blue gain
  vrxsim_fault_parameter(vrx::ParamLutGamma[0], VRXSIM_WRITE, 1, VRX_ERR_BAD_VALUE);
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  EXPECT_EQ(board(vrx::ParamLutGain[0]), 300u);  // before the refusal
  EXPECT_EQ(board(vrx::ParamLutGain[2]), 100u);  // after it
}

// The mean of one line of the last captured frame (8-bit mono), below the frame number's rows.
double frame_mean(uint32_t handle) {
  VRX_BUFFER_RECORD record{};
  if (VRX_Acquire(handle, VRX_ACQ_BUFFER_GET, &record) != VRX_OK) return -1;
  const auto *bytes = static_cast<const uint8_t *>(record.address);
  double sum = 0;
  for (int x = 0; x < 640; ++x) sum += bytes[200 * 640 + x];
  VRX_Acquire(handle, VRX_ACQ_BUFFER_RELEASE, nullptr);
  return sum / 640;
}

double mean_of_one_frame(uint32_t handle) {
  VRX_Acquire(handle, VRX_ACQ_ABORT, nullptr);
  uint32_t single = vrx::AcqModeSingle;
  VRX_ParameterSet(handle, vrx::ParamAcqMode, &single);
  VRX_Acquire(handle, VRX_ACQ_START, nullptr);
  for (int i = 0; i < 200; ++i) {
    const double mean = frame_mean(handle);
    if (mean >= 0) return mean;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return -1;
}

TEST_F(LutPage, TheFramesPassThroughTheAppliedTable) {
  open();
  const double plain = mean_of_one_frame(handle());
  ASSERT_GT(plain, 20);
  page()->control<Button>(17120)->click_as_user();
  bar(17131)->scroll_as_user(-255);  // everything black
  ASSERT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_EQ(mean_of_one_frame(handle()), 0);
  bar(17131)->scroll_as_user(0);
  page()->control<Edit>(17134)->type_as_user("4.00");  // brighter mid-tones
  ASSERT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_GT(mean_of_one_frame(handle()), plain + 20);
}

}  // namespace
}  // namespace control_test
