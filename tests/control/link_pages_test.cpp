// The PoCL, Comms and CXP pages over the simulated board: enable states without a board, PoCL
// detection and the manual buttons with their write orders, the serial settings written in order
// and refused in the middle, transmit and receive, sending a file, the CoaXPress link settings
// and state, and the camera register controls with every message.
#include <filesystem>
#include <fstream>

#include "control/pages/comms_page.h"
#include "control/pages/cxp_page.h"
#include "control/pages/pocl_page.h"
#include "page_fixture.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using namespace vrx;

struct Write {
  uint32_t parameter, value;
  bool operator==(const Write &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Write &w) {
  return out << std::hex << "{0x" << w.parameter << ", 0x" << w.value << "}";
}

// ---- PoCL ----

class PoclPage : public PageFixture {
 protected:
  CVrcPagePocl &pocl() { return page<CVrcPagePocl>(PageSlot::Pocl); }
  std::vector<Write> writes() {
    std::vector<Write> list;
    for (const VRXSIM_PARAMETER_WRITE &w : traced()) list.push_back({w.parameter, w.value});
    return list;
  }
};

TEST_F(PoclPage, WithoutABoardTheStatusIsEmptyAndTheButtonsDisabled) {
  trace();
  EXPECT_EQ(text(pocl(), 17384), "");
  for (int id : {17380, 17381, 17382, 17383}) EXPECT_FALSE(enabled(pocl(), id)) << id;
  EXPECT_EQ(refresh(pocl()), -1);
  EXPECT_EQ(apply(pocl()), -1);
  click(pocl(), 17380);
  click(pocl(), 17382);
  EXPECT_TRUE(traced().empty());
}

TEST_F(PoclPage, DetectPowersAPoclCameraWith12VAndAnyOtherWithGround) {
  configure();
  for (const bool pocl_camera : {false, true}) {
    ASSERT_EQ(vrxsim_set_pocl_camera(handle(), pocl_camera), 0u);
    trace();
    const uint64_t slept = desk().slept_ms();
    EXPECT_EQ(pocl().OnDetect(), VRX_OK);
    const uint32_t power = pocl_camera ? 0x1000001 : 0x1000002;
    EXPECT_EQ(writes(), (std::vector<Write>{{ParamPowerOutputSet, 0x2000003},
                                            {ParamPoclSenseEnable, 1},
                                            {ParamPoclSense, 1},
                                            {ParamPoclSense, 2},
                                            {ParamPowerOutputSet, power}}));
    EXPECT_EQ(desk().slept_ms() - slept, 2000u);
    EXPECT_EQ(desk().wait_cursor_depth(), 0);
    EXPECT_EQ(text(pocl(), 17384), pocl_camera ? "PoCL" : "Non-PoCL");
    EXPECT_EQ(text(pocl(), 17385), pocl_camera ? "1" : "0");
    EXPECT_EQ(text(pocl(), 17386), pocl_camera ? "0" : "1");
  }
}

TEST_F(PoclPage, ARefusedWriteEndsDetection) {
  configure();
  vrxsim_fault_parameter(ParamPoclSense, VRXSIM_WRITE, 1, VRX_ERR_BAD_VALUE);
  trace();
  EXPECT_EQ(pocl().OnDetect(), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(traced().size(), 3u);
  EXPECT_EQ(desk().slept_ms(), 0u);
}

struct ManualCase {
  int button;
  std::vector<Write> writes;
  const char *power_12v, *power_gnd;
};

class PoclManualButtons : public PoclPage, public ::testing::WithParamInterface<ManualCase> {};

TEST_P(PoclManualButtons, ClearBeforeSettingAndShowTheLines) {
  configure();
  // Start from both lines on, so that every clear shows.
  set_board_value(ParamPowerOutputSet, 0x1000003);
  trace();
  click(pocl(), GetParam().button);
  EXPECT_EQ(writes(), GetParam().writes);
  EXPECT_EQ(text(pocl(), 17385), GetParam().power_12v);
  EXPECT_EQ(text(pocl(), 17386), GetParam().power_gnd);
}

INSTANTIATE_TEST_SUITE_P(
    Buttons, PoclManualButtons,
    ::testing::Values(
        ManualCase{17381, {{ParamPowerOutputSet, 0x2000003}, {ParamPoclSense, 2}}, "0", "0"},
        ManualCase{17382,
                   {{ParamPowerOutputSet, 0x2000002},
                    {ParamPoclSense, 2},
                    {ParamPowerOutputSet, 0x1000001}},
                   "1",
                   "0"},
        ManualCase{17383,
                   {{ParamPowerOutputSet, 0x2000001},
                    {ParamPoclSense, 2},
                    {ParamPowerOutputSet, 0x1000002}},
                   "0",
                   "1"}));

TEST_F(PoclPage, ApplyWritesNothingAndAFailedReadFailsTheRefresh) {
  configure();
  trace();
  EXPECT_EQ(apply(pocl()), 0);
  EXPECT_TRUE(traced().empty());
  vrxsim_fault_parameter(ParamPowerOutput, VRXSIM_READ, 1, VRX_ERR_BAD_VALUE);
  EXPECT_EQ(refresh(pocl()), -1);
  EXPECT_EQ(refresh(pocl()), 0);
}

// ---- Comms ----

struct CommsSetting {
  int id;
  uint32_t parameter;
  int index;
  uint32_t written;
};
// In the order of apply and refresh.
const CommsSetting kCommsSettings[] = {{17187, ParamCommsBaud, 10, 230400},
                                       {17184, ParamCommsDataBits, 2, 0xC0021C03},
                                       {17188, ParamCommsFlow, 1, 0xC0021D02},
                                       {17186, ParamCommsParity, 2, 0xC0022003},
                                       {17185, ParamCommsStopBits, 2, 0xC0022303}};
constexpr int kCommsControls[] = {17187, 17184, 17188, 17186, 17185,
                                  17193, 17189, 17180, 17192, 17191};

class CommsPage : public PageFixture {
 protected:
  CVrxPageComms &comms() { return page<CVrxPageComms>(PageSlot::Comms); }
  // What "Get chars" shows after the camera answered.
  std::string received() {
    click(comms(), 17180);
    return text(comms(), 17190);
  }
};

TEST_F(CommsPage, WithoutABoardEverythingIsDisabled) {
  for (int id : kCommsControls) EXPECT_FALSE(enabled(comms(), id)) << id;
  EXPECT_EQ(apply(comms()), -1);
  EXPECT_EQ(refresh(comms()), -1);
  EXPECT_EQ(text(comms(), 17370), "Not Selected");
  EXPECT_EQ(selected_text(comms(), 17193), "CRLF");
  EXPECT_EQ(text(comms(), 17197), "");
}

TEST_F(CommsPage, ApplyWritesTheSettingsInOrderAndARefusalStopsIt) {
  configure();
  for (const CommsSetting &setting : kCommsSettings) select(comms(), setting.id, setting.index);
  trace();
  ASSERT_EQ(apply(comms()), 0);
  const std::vector<VRXSIM_PARAMETER_WRITE> writes = traced();
  ASSERT_EQ(writes.size(), std::size(kCommsSettings));
  for (std::size_t i = 0; i < writes.size(); ++i) {
    EXPECT_EQ(writes[i].parameter, kCommsSettings[i].parameter) << i;
    EXPECT_EQ(writes[i].value, kCommsSettings[i].written) << i;
  }
  for (std::size_t refused = 0; refused < std::size(kCommsSettings); ++refused) {
    vrxsim_fault_parameter(kCommsSettings[refused].parameter, VRXSIM_WRITE, 1, VRX_ERR_BAD_VALUE);
    trace();
    EXPECT_EQ(apply(comms()), -1);
    EXPECT_EQ(traced().size(), refused + 1);
  }
}

TEST_F(CommsPage, RefreshShowsSettingsCountersAndInterface) {
  configure();
  for (const CommsSetting &setting : kCommsSettings)
    set_board_value(setting.parameter, setting.written);
  ASSERT_EQ(refresh(comms()), 0);
  for (const CommsSetting &setting : kCommsSettings)
    EXPECT_EQ(selection(comms(), setting.id), setting.index) << setting.id;
  EXPECT_EQ(text(comms(), 17197), "LVDS");
  EXPECT_EQ(text(comms(), 17194), "0");
  EXPECT_EQ(text(comms(), 17195), "0");
  EXPECT_EQ(text(comms(), 17196), "Idle");
  // A baud rate missing from the list fails the refresh.
  vrxsim_parameter_force(handle(), ParamCommsBaud, 110);
  EXPECT_EQ(refresh(comms()), -1);

  // A board without Camera Link talks RS232.
  release();
  const ScopedBoardSetting boards("VRXSIM_BOARDS", "0xC0013005,0xC0015001");
  configure(1);
  EXPECT_EQ(text(comms(), 17197), "RS232");
}

TEST_F(CommsPage, WorksWhereverTheBoardWasOpenedWithItsSerialLink) {
  struct Case {
    int mode;
    bool live;
  };
  for (const Case &c :
       {Case{kModeNormal, true}, Case{kModeAcquisitionOnly, false}, Case{kModeCommsOnly, true}}) {
    configure(kCameraLinkBoard, c.mode);
    if (ctrl().page_index(&comms()) < 0) {
      EXPECT_FALSE(c.live) << c.mode;
    } else {
      for (int id : kCommsControls) EXPECT_EQ(enabled(comms(), id), c.live) << c.mode << " " << id;
      EXPECT_EQ(apply(comms()), c.live ? 0 : -1) << c.mode;
    }
    release();
  }
}

TEST_F(CommsPage, TypedCharactersGoOutAsTypedAndTheLineEndsWithItsEnding) {
  configure();
  auto *edit = comms().control<vrc::window::Edit>(17189);
  for (const char *typed : {"I", "ID", "ID?"}) {
    edit->set_text(typed);
    comms().send(vrc::window::WM_COMMAND, vrc::window::make_wparam(17189, vrc::window::EN_CHANGE));
  }
  EXPECT_EQ(received(), "");
  EXPECT_TRUE(comms().pre_translate_key(13));
  EXPECT_EQ(text(comms(), 17189), "");
  EXPECT_EQ(received(), "VRXSIM-CAM,1.0\r\n");
  EXPECT_EQ(text(comms(), 17194), "5");
  EXPECT_EQ(text(comms(), 17195), "16");

  // "None": the camera waits for an ending that never comes.
  select(comms(), 17193, 3);
  type(comms(), 17189, "TEMP?");
  EXPECT_EQ(received(), "VRXSIM-CAM,1.0\r\n");
  select(comms(), 17193, 2);
  type(comms(), 17189, "X");
  EXPECT_EQ(received(), "VRXSIM-CAM,1.0\r\nERR UNKNOWN COMMAND\r\n");
}

TEST_F(CommsPage, SendFileSendsTheChosenFileLineByLine) {
  configure();
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / "vrc_comms_send_file.txt";
  std::ofstream(file, std::ios::binary) << "EXP=2500\r\nEXP?\nGAIN?\r\n";
  desk().answer_file(file.string());
  click(comms(), 17192);
  ASSERT_EQ(desk().file_requests().size(), 1u);
  EXPECT_FALSE(desk().file_requests()[0].save);
  EXPECT_EQ(text(comms(), 17370), CVrxPageConfigure::PathDisplayText(file.string()));
  click(comms(), 17191);
  EXPECT_EQ(received(), "OK\r\nEXP=2500\r\nGAIN=256\r\n");
  EXPECT_TRUE(take_reports().empty());
  std::filesystem::remove(file);
}

TEST_F(CommsPage, AFileThatCannotBeOpenedIsReported) {
  configure();
  desk().answer_file("/nonexistent/vrc/serial.txt");
  click(comms(), 17192);
  click(comms(), 17191);
  const std::vector<Report> reports = take_reports();
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].function, "VrxPageComms::OnSendfileButton");
  EXPECT_EQ(reports[0].status, 15);
  EXPECT_EQ(reports[0].message, "Failed to open serial file");
}

// ---- CXP ----

class CxpPage : public PageFixture {
 protected:
  CVrcPageCxp &cxp() { return page<CVrcPageCxp>(PageSlot::Cxp); }
  std::vector<std::string> status_texts() {
    std::vector<std::string> texts;
    for (int id = 17413; id <= 17420; ++id) texts.push_back(text(cxp(), id));
    return texts;
  }
  // The register controls answer quickly where a read comes up short.
  void short_timeout() { type(cxp(), 17422, "10"); }
  std::vector<vrc::window::ScriptedDesktop::ShownBox> boxes_after(int button) {
    const std::size_t before = desk().boxes().size();
    click(cxp(), button);
    return {desk().boxes().begin() + static_cast<std::ptrdiff_t>(before), desk().boxes().end()};
  }
};

using Texts = std::vector<std::string>;

TEST_F(CxpPage, ShowsTheLinkStateAndWritesTheModeInOrder) {
  configure(kCoaXPressBoard);
  ASSERT_EQ(refresh(cxp()), 0);
  EXPECT_EQ(status_texts(),
            (Texts{"5 Gbps", "4 Links", "Yes", "Powered", "IN USE", "IN USE", "IN USE", "IN USE"}));
  EXPECT_EQ(text(cxp(), 17422), "1000");

  select(cxp(), 17410, 2);
  select(cxp(), 17411, 2);
  select(cxp(), 17412, 3);
  trace();
  ASSERT_EQ(apply(cxp()), 0);
  EXPECT_EQ(traced_parameters(),
            (std::vector<uint32_t>{ParamCxpLinkSpeed, ParamCxpLinkCount, ParamCxpPower}));
  EXPECT_EQ(status_texts(), (Texts{"2.5 Gbps", "2 Links", "Yes", "Powered", "IN USE", "IN USE",
                                   "Not in use", "Not in use"}));

  vrxsim_fault_parameter(ParamCxpLinkCount, VRXSIM_WRITE, 1, VRX_ERR_BAD_VALUE);
  trace();
  EXPECT_EQ(apply(cxp()), -1);
  EXPECT_EQ(traced().size(), 2u);

  // Refresh shows what the board holds, and fails at a value its list lacks.
  set_board_value(ParamCxpLinkSpeed, CxpSpeedAutomatic);
  set_board_value(ParamCxpPower, CxpPowerForceOn);
  ASSERT_EQ(refresh(cxp()), 0);
  EXPECT_EQ(selection(cxp(), 17410), 0);
  EXPECT_EQ(selection(cxp(), 17412), 3);
  vrxsim_parameter_force(handle(), ParamCxpLinkCount, 0xC0091205);
  EXPECT_EQ(refresh(cxp()), -1);
}

TEST_F(CxpPage, PowerOffAndATripLoseTheCameraUntilReset) {
  configure(kCoaXPressBoard);
  select(cxp(), 17412, 1);
  ASSERT_EQ(apply(cxp()), 0);
  EXPECT_EQ(status_texts(), (Texts{"Unknown", "Unknown", "No", "Unavailable", "Not in use",
                                   "Not in use", "Not in use", "Not in use"}));
  select(cxp(), 17412, 0);
  ASSERT_EQ(apply(cxp()), 0);
  ASSERT_EQ(vrxsim_set_cxp_trip(handle(), 1), 0u);
  cxp().send(vrc::control::kMsgUpdateView);
  EXPECT_EQ(status_texts()[3], "Tripped");
  EXPECT_EQ(status_texts()[2], "No");
  select(cxp(), 17412, 2);
  ASSERT_EQ(apply(cxp()), 0);
  EXPECT_EQ(status_texts()[3], "Powered");
}

TEST_F(CxpPage, WithoutABoardNothingIsShownOrEnabled) {
  ctrl().ShowPages(1);
  EXPECT_EQ(cxp().UpdateControls(), 0);
  for (int id : {17410, 17411, 17412, 17390, 17391, 17392, 17393, 17400, 17402, 17404, 17422})
    EXPECT_FALSE(enabled(cxp(), id)) << id;
  EXPECT_EQ(status_texts(), Texts(8, ""));
  EXPECT_EQ(apply(cxp()), -1);
  EXPECT_EQ(refresh(cxp()), -1);
}

TEST_F(CxpPage, RegistersAreWrittenReadAndResetOnTheCamera) {
  configure(kCoaXPressBoard);
  type(cxp(), 17390, "200");
  type(cxp(), 17391, "ABC");  // odd: the first digit alone, then pairs
  click(cxp(), 17400);
  type(cxp(), 17392, "200");
  type(cxp(), 17393, "3");
  click(cxp(), 17402);
  EXPECT_EQ(text(cxp(), 17394), "0ABC00");
  click(cxp(), 17404);
  click(cxp(), 17402);
  EXPECT_EQ(text(cxp(), 17394), "000000");
  EXPECT_TRUE(desk().boxes().empty());
}

TEST_F(CxpPage, LongReadsShowTheirFirstNinetySixDigitsInLinesOf32) {
  configure(kCoaXPressBoard);
  type(cxp(), 17392, "200");
  type(cxp(), 17393, "40");
  const auto boxes = boxes_after(17402);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].text, "Only displaying the first 48 characters");
  EXPECT_EQ(text(cxp(), 17394),
            std::string(32, '0') + "\r\n" + std::string(32, '0') + "\r\n" + std::string(32, '0'));
}

TEST_F(CxpPage, AShortReadWaitsTheChosenTimeoutAndSaysWhatCame) {
  configure(kCoaXPressBoard);
  short_timeout();
  type(cxp(), 17392, "0108");  // the read-only temperature word: 4 bytes
  type(cxp(), 17393, "6");
  const auto boxes = boxes_after(17402);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].text, "TIMEOUT: Requested [0x6], Read [0x4]");
  EXPECT_EQ(boxes[0].caption, "Read from Camera");
  EXPECT_EQ(text(cxp(), 17394).size(), 8u);
}

struct RegisterMessage {
  int address_id, data_id;
  const char *address, *data;
  int button;
  const char *caption, *message;  // no box when message is null
};

class CxpRegisterMessages : public CxpPage,
                            public ::testing::WithParamInterface<RegisterMessage> {};

TEST_P(CxpRegisterMessages, ChecksShowTheirMessageAndTouchNothing) {
  configure(kCoaXPressBoard);
  const RegisterMessage &m = GetParam();
  type(cxp(), m.address_id, m.address);
  type(cxp(), m.data_id, m.data);
  vrxsim_fault_call("VRX_ControlWrite", 1, VRX_ERR_BUSY);
  vrxsim_fault_call("VRX_ControlRead", 1, VRX_ERR_BUSY);
  const auto boxes = boxes_after(m.button);
  if (m.message) {
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, m.message);
    EXPECT_EQ(boxes[0].caption, m.caption);
  } else {
    EXPECT_TRUE(boxes.empty());
  }
  // Nothing reached the SDK: the injected faults are still waiting.
  uint32_t address = 0x200, count = 1;
  uint8_t byte = 0;
  EXPECT_EQ(VRX_ControlWrite(handle(), PortCamera, &address, &byte, &count, 10), VRX_ERR_BUSY);
  EXPECT_EQ(VRX_ControlRead(handle(), PortCamera, &address, &byte, &count, 10), VRX_ERR_BUSY);
}

const std::string k128(128, 'A'), k129(129, 'A');

INSTANTIATE_TEST_SUITE_P(
    Messages, CxpRegisterMessages,
    ::testing::Values(RegisterMessage{17390, 17391, "123456789", "01", 17400, "Write to Camera",
                                      "Invalid write address"},
                      RegisterMessage{17390, 17391, "200", k129.c_str(), 17400, "Write to Camera",
                                      "Invalid write data"},
                      RegisterMessage{17390, 17391, "", "01", 17400, "Write to Camera",
                                      "Insufficient write information"},
                      RegisterMessage{17390, 17391, "200", "", 17400, "Write to Camera",
                                      "Insufficient write information"},
                      RegisterMessage{17392, 17393, "123456789", "4", 17402, "Read from Camera",
                                      "Invalid camera read address"},
                      RegisterMessage{17392, 17393, "200", k129.c_str(), 17402, "Read from Camera",
                                      "Invalid number of bytes to read"},
                      RegisterMessage{17392, 17393, "200", "0", 17402, "", nullptr},
                      RegisterMessage{17392, 17393, "200", "", 17402, "", nullptr}));

}  // namespace
}  // namespace control_test
