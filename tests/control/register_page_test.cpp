// The Register page: the enable rule, the validation messages of each button, the conversion of
// data text to bytes, camera and frame-grabber writes and reads against the simulated register
// spaces, a partial read's TIMEOUT message, the 96-digit display limit and Reset.
#include "control/pages/register_page.h"
#include "control/pages/register_access.h"
#include "board_page_fixture.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using namespace vrc::pages;
using vrc::control::PageSlot;
using vrc::window::Button;
using vrc::window::Edit;

class RegisterPage : public BoardPageTest<CVrcPageDevice, PageSlot::Device> {
 protected:
  void open_board() { open(0x2001); }
  void type(int id, const std::string &value) { item<Edit>(id)->type_as_user(value); }
  void click(int id) { item<Button>(id)->click_as_user(); }
  std::vector<uint8_t> read(uint32_t port, uint32_t address, uint32_t count) {
    std::vector<uint8_t> bytes(count);
    EXPECT_EQ(VRX_ControlRead(handle(), port, &address, bytes.data(), &count, 10), VRX_OK);
    bytes.resize(count);
    return bytes;
  }
  // The last message box as "caption|text".
  std::string last_box() {
    return desk().boxes().empty()
               ? ""
               : desk().boxes().back().caption + "|" + desk().boxes().back().text;
  }
};

constexpr int kAll[] = {17390, 17391, 17392, 17393, 17394, 17395, 17396,
                        17397, 17399, 17400, 17401, 17402, 17403, 17404};

TEST(RegisterText, DataTextBecomesBytesFromTheLeft) {
  EXPECT_EQ(bytes_of_data_text("0102ff"), (std::vector<uint8_t>{0x01, 0x02, 0xFF}));
  EXPECT_EQ(bytes_of_data_text("abc"), (std::vector<uint8_t>{0x0A, 0xBC}));
  EXPECT_EQ(bytes_of_data_text("7"), (std::vector<uint8_t>{0x07}));
  EXPECT_EQ(bytes_of_data_text("zz"), (std::vector<uint8_t>{0x00}));
  EXPECT_EQ(parse_hex("1234abcd99"), 0x1234ABCDu);
  EXPECT_EQ(parse_hex("g1"), 0u);
}

TEST(RegisterText, CameraReadsShowAtMost96DigitsInLinesOf32) {
  std::vector<uint8_t> bytes(60);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(0xA0 + i);
  const std::string shown = camera_read_display(bytes);
  EXPECT_EQ(shown.size(), 96u + 2 * 2);
  EXPECT_EQ(shown.substr(0, 34), "A0A1A2A3A4A5A6A7A8A9AAABACADAEAF\r\n");
  EXPECT_EQ(shown.substr(shown.size() - 32), "C0C1C2C3C4C5C6C7C8C9CACBCCCDCECF");
}

TEST_F(RegisterPage, EverythingIsDisabledUntilABoardIsOpenForAcquisition) {
  make(0x2001);
  show();
  for (int id : kAll) EXPECT_FALSE(page()->child(id)->enabled()) << id;
  EXPECT_EQ(page()->OnApplyMessage(), -1);
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
  ASSERT_TRUE(configure(0, 0, 0));
  pump_for(50);
  for (int id : kAll) EXPECT_TRUE(page()->child(id)->enabled()) << id;
  EXPECT_EQ(page()->OnApplyMessage(), 0);
  EXPECT_EQ(page()->OnRefreshMessage(), 0);
}

TEST_F(RegisterPage, ACommsOnlyBoardTakesThePageAway) {
  make(0x2001);
  ASSERT_TRUE(configure(0, 0, 2));
  EXPECT_EQ(ctrl->page_index(page()), -1);
  EXPECT_FALSE(page()->has_window());
  EXPECT_EQ(page()->OnRefreshMessage(), -1);
}

struct MessageCase {
  std::vector<std::pair<int, std::string>> typed;
  int button;
  std::string box;  // caption|text
};

class RegisterMessages : public RegisterPage, public ::testing::WithParamInterface<MessageCase> {};

TEST_P(RegisterMessages, InvalidTextsAreRefusedWithTheirMessage) {
  open_board();
  for (const auto &[id, value] : GetParam().typed) type(id, value);
  click(GetParam().button);
  ASSERT_EQ(desk().boxes().size(), 1u);
  EXPECT_EQ(last_box(), GetParam().box);
}

const std::string k129(129, '1');
INSTANTIATE_TEST_SUITE_P(
    Texts, RegisterMessages,
    ::testing::Values(
        MessageCase{
            {{17390, "123456789"}, {17391, "01"}}, 17400, "Write to Camera|Invalid write address"},
        MessageCase{{{17390, "200"}, {17391, k129}}, 17400, "Write to Camera|Invalid write data"},
        MessageCase{
            {{17390, ""}, {17391, "01"}}, 17400, "Write to Camera|Insufficient write information"},
        MessageCase{
            {{17390, "200"}, {17391, ""}}, 17400, "Write to Camera|Insufficient write information"},
        MessageCase{{{17395, "123456789"}, {17396, "01"}},
                    17401,
                    "Write to Frame Grabber|Invalid write address"},
        MessageCase{
            {{17395, "100"}, {17396, k129}}, 17401, "Write to Frame Grabber|Invalid write data"},
        MessageCase{{{17395, "100"}, {17396, ""}},
                    17401,
                    "Write to Frame Grabber|Insufficient write information"},
        MessageCase{{{17392, "123456789"}, {17393, "4"}},
                    17402,
                    "Read from Camera|Invalid camera read address"},
        MessageCase{{{17392, "100"}, {17393, k129}},
                    17402,
                    "Read from Camera|Invalid number of bytes to read"},
        MessageCase{{{17397, "123456789"}}, 17403, "Read from Frame Grabber|Invalid read address"},
        // The camera's exposure register holds 4 bytes: 8 asked for, 4 came.
        MessageCase{{{17392, "100"}, {17393, "8"}},
                    17402,
                    "Read from Camera|TIMEOUT: Requested [0x8], Read [0x4]"}));

TEST_F(RegisterPage, CameraWriteThenReadShowsTheBytes) {
  open_board();
  type(17390, "200");
  type(17391, "123456789ABCDEF");  // odd: 0x01 first, then pairs
  click(17400);
  EXPECT_EQ(read(vrx::PortCamera, 0x200, 8),
            (std::vector<uint8_t>{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}));
  type(17392, "200");
  type(17393, "8");
  click(17402);
  EXPECT_TRUE(desk().boxes().empty());
  EXPECT_EQ(text(17394), "0123456789ABCDEF");
}

TEST_F(RegisterPage, ALongCameraReadIsCutTo96DigitsAfterItsMessage) {
  open_board();
  type(17390, "200");
  type(17391, std::string(128, 'e'));
  click(17400);
  type(17392, "200");
  type(17393, "40");  // all 64 scratch bytes
  click(17402);
  ASSERT_EQ(desk().boxes().size(), 1u);
  EXPECT_EQ(last_box(), "Read from Camera|Only displaying the first 48 characters");
  const std::string line(32, 'E');
  EXPECT_EQ(text(17394), line + "\r\n" + line + "\r\n" + line);
}

TEST_F(RegisterPage, AZeroOrEmptyCountReadsNothing) {
  open_board();
  type(17392, "200");
  type(17393, "0");
  click(17402);
  type(17393, "");
  click(17402);
  EXPECT_TRUE(desk().boxes().empty());
  EXPECT_EQ(text(17394), "");
}

TEST_F(RegisterPage, FrameGrabberWriteAndReadAWord) {
  open_board();
  type(17395, "104");
  type(17396, "CAFEF00D");
  click(17401);
  EXPECT_EQ(read(vrx::PortFrameGrabber, 0x104, 4), (std::vector<uint8_t>{0xCA, 0xFE, 0xF0, 0x0D}));
  type(17397, "104");
  click(17403);
  EXPECT_EQ(text(17399), "CAFEF00D");
  // The board type register of the PoCL Camera Link board.
  type(17397, "0");
  click(17403);
  EXPECT_EQ(text(17399), "C0013005");
  EXPECT_TRUE(desk().boxes().empty());
}

TEST_F(RegisterPage, AReadOfNoRegisterEndsSilently) {
  open_board();
  type(17397, "FFF0");
  click(17403);
  EXPECT_TRUE(desk().boxes().empty());
  EXPECT_EQ(text(17399), "");
  type(17397, "");
  click(17403);
  EXPECT_TRUE(desk().boxes().empty());
}

TEST_F(RegisterPage, ResetRestoresTheCameraRegisters) {
  open_board();
  type(17390, "104");
  type(17391, "00000200");
  click(17400);
  EXPECT_EQ(read(vrx::PortCamera, 0x104, 4), (std::vector<uint8_t>{0, 0, 2, 0}));
  click(17404);
  EXPECT_EQ(read(vrx::PortCamera, 0x104, 4), (std::vector<uint8_t>{0, 0, 1, 0}));
}

}  // namespace
}  // namespace control_test
