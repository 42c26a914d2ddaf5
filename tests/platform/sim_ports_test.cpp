// Control ports, serial link, self-tests and PoCL lines of the simulated board.
#include <chrono>
#include <cstring>
#include <string>

#include "sim_support.h"

namespace vrxsim_test {
namespace {

using namespace vrx;

class Ports : public SimBoard {
 protected:
  void SetUp() override {
    SimBoard::SetUp();
    open();
  }
  uint32_t read(uint32_t port, uint32_t address, std::vector<uint8_t>& out, uint32_t timeout_ms = 5) {
    uint32_t count = static_cast<uint32_t>(out.size());
    uint32_t status = VRX_ControlRead(m_handle, port, &address, out.data(), &count, timeout_ms);
    out.resize(count);
    return status;
  }
  uint32_t write(uint32_t port, uint32_t address, std::vector<uint8_t> data) {
    uint32_t count = static_cast<uint32_t>(data.size());
    return VRX_ControlWrite(m_handle, port, &address, data.data(), &count, 1000);
  }
  void send(const std::string& text) {
    uint32_t count = static_cast<uint32_t>(text.size());
    ASSERT_EQ(VRX_CommsTransmit(m_handle, reinterpret_cast<const uint8_t*>(text.data()), &count, 1000), VRX_OK);
  }
  std::string receive(uint32_t asked = 256) {
    std::string text(asked, '\0');
    uint32_t count = asked;
    VRX_CommsReceive(m_handle, reinterpret_cast<uint8_t*>(text.data()), &count, 0);
    text.resize(count);
    return text;
  }
};

TEST_F(Ports, CameraRegistersReadBackWhatWasWritten) {
  ASSERT_EQ(write(PortCamera, 0x0104, {0x00, 0x00, 0x02, 0x00}), VRX_OK);
  std::vector<uint8_t> bytes(4);
  ASSERT_EQ(read(PortCamera, 0x0104, bytes), VRX_OK);
  EXPECT_EQ(bytes, (std::vector<uint8_t>{0, 0, 2, 0}));
  // A partial write changes the leading bytes only.
  ASSERT_EQ(write(PortCamera, 0x0200, {0xAB}), VRX_OK);
  std::vector<uint8_t> scratch(2);
  ASSERT_EQ(read(PortCamera, 0x0200, scratch), VRX_OK);
  EXPECT_EQ(scratch, (std::vector<uint8_t>{0xAB, 0x00}));
}

TEST_F(Ports, ReadingMoreThanARegisterHoldsTimesOutWithWhatCame) {
  std::vector<uint8_t> bytes(40);
  const auto started = std::chrono::steady_clock::now();
  EXPECT_EQ(read(PortCamera, 0x0020, bytes, 30), VRX_STATUS_TIMEOUT);
  EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::milliseconds(30));
  ASSERT_EQ(bytes.size(), 32u);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data())), "VRXSIM-CAM");
  EXPECT_TRUE(Reports::take().empty());  // a time-out with data is not a failure
}

struct RegisterFault {
  const char* name;
  uint32_t port, address;
  std::vector<uint8_t> data;
  uint32_t status;
};

class RegisterWriteFault : public Ports, public ::testing::WithParamInterface<RegisterFault> {};

TEST_P(RegisterWriteFault, IsRefused) {
  const RegisterFault& f = GetParam();
  EXPECT_EQ(write(f.port, f.address, f.data), f.status);
  std::vector<Report> reports = Reports::take();
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].function, "VRX_ControlWrite");
}

INSTANTIATE_TEST_SUITE_P(
    Writes, RegisterWriteFault,
    ::testing::Values(RegisterFault{"unmapped", PortCamera, 0x0300, {1}, VRX_ERR_ADDRESS},
                      RegisterFault{"read_only", PortCamera, 0x0108, {0, 0, 0, 1}, VRX_ERR_ADDRESS},
                      RegisterFault{"too_long", PortCamera, 0x0104, {1, 2, 3, 4, 5}, VRX_ERR_ADDRESS},
                      RegisterFault{"grabber_id", PortFrameGrabber, 0x0000, {0, 0, 0, 1}, VRX_ERR_ADDRESS},
                      RegisterFault{"unknown_port", 0xC0080009, 0x0100, {1}, VRX_ERR_BAD_PARAMETER}),
    [](const auto& param_info) { return std::string(param_info.param.name); });

TEST_F(Ports, FrameGrabberRegistersAndReset) {
  std::vector<uint8_t> id(4);
  ASSERT_EQ(read(PortFrameGrabber, 0x0000, id), VRX_OK);
  EXPECT_EQ(id, (std::vector<uint8_t>{0xC0, 0x01, 0x30, 0x05}));
  ASSERT_EQ(write(PortFrameGrabber, 0x0104, {1, 2, 3, 4}), VRX_OK);
  ASSERT_EQ(VRX_ControlReset(m_handle, PortFrameGrabber, nullptr, 1000), VRX_OK);
  std::vector<uint8_t> scratch(4);
  ASSERT_EQ(read(PortFrameGrabber, 0x0104, scratch), VRX_OK);
  EXPECT_EQ(scratch, (std::vector<uint8_t>{0, 0, 0, 0}));
  std::vector<uint8_t> nothing(4);
  EXPECT_EQ(read(PortFrameGrabber, 0x0102, nothing), VRX_ERR_ADDRESS);
}

TEST_F(Ports, SerialCameraAnswersItsCommands) {
  const std::pair<const char*, const char*> exchanges[] = {
      {"id?\r", "VRXSIM-CAM,1.0\r\n"},      {"EXP=500\n", "OK\r\n"},
      {"EXP?\r", "EXP=500\r\n"},            {"GAIN=0\r", "ERR BAD VALUE\r\n"},
      {"TEMP?\r", "TEMP=41.5\r\n"},         {"FOCUS\r", "ERR UNKNOWN COMMAND\r\n"},
      {"\r\nRESET\r", "OK\r\n"},            {"exp?\r", "EXP=1000\r\n"}};
  for (auto [command, answer] : exchanges) {
    send(command);
    EXPECT_EQ(receive(), answer) << command;
  }
  // Serial and register views of the camera agree.
  send("GAIN=512\r");
  receive();
  std::vector<uint8_t> gain(4);
  ASSERT_EQ(read(PortCamera, 0x0104, gain), VRX_OK);
  EXPECT_EQ(gain, (std::vector<uint8_t>{0, 0, 2, 0}));
}

TEST_F(Ports, SerialAnswersArriveInPiecesAndAreCounted) {
  send("ID");
  EXPECT_EQ(receive(), "");  // no line end yet
  send("?\r");
  EXPECT_EQ(get(ParamCommsStatus), 1u);
  EXPECT_EQ(receive(6), "VRXSIM");
  EXPECT_EQ(receive(), "-CAM,1.0\r\n");
  EXPECT_EQ(get(ParamCommsCount1), 4u);
  EXPECT_EQ(get(ParamCommsCount2), 16u);
  EXPECT_EQ(get(ParamCommsInterface), CommsLvds);
}

TEST_F(SimBoard, AcquisitionOnlyModeHasNoSerialLink) {
  open(0xC0010001, ChannelA, BoardModeAcquisitionOnly);
  uint32_t count = 1;
  EXPECT_EQ(VRX_CommsTransmit(m_handle, reinterpret_cast<const uint8_t*>("x"), &count, 0), VRX_ERR_NOT_SUPPORTED);
}

TEST_F(Ports, EverySelfTestRunsAndUnknownOnesAreRefused) {
  for (uint32_t test : kTestIds) EXPECT_EQ(VRX_Test(m_handle, test, nullptr), VRX_OK) << std::hex << test;
  EXPECT_EQ(VRX_Test(m_handle, 0xC0050500, nullptr), VRX_ERR_BAD_PARAMETER);
}

TEST_F(Ports, PoclDetectionFindsAPoweredCamera) {
  // The detect sequence: power off, sense, read the status, stop sensing, power the camera.
  auto detect = [&] {
    EXPECT_EQ(set(ParamPowerOutputSet, PortOpClear | 3), VRX_OK);
    EXPECT_EQ(set(ParamPoclSenseEnable, 1), VRX_OK);
    EXPECT_EQ(set(ParamPoclSense, 1), VRX_OK);
    const uint32_t status = get(ParamPoclStatus);
    EXPECT_EQ(set(ParamPoclSense, 2), VRX_OK);
    return status;
  };
  EXPECT_EQ(detect() & 1, 0u);
  ASSERT_EQ(vrxsim_set_pocl_camera(m_handle, 1), VRX_OK);
  EXPECT_EQ(detect() & 1, 1u);

  set(ParamPowerOutputSet, PortOpSet | PowerLine12V);
  uint32_t line = PowerLine12V;
  ASSERT_EQ(VRX_ParameterGet(m_handle, ParamPowerOutput, &line), VRX_OK);
  EXPECT_EQ(line & PortOpMask, PortOpSet);
  EXPECT_EQ(line & PowerLine12V, PowerLine12V);  // the mask-test reading agrees
  uint32_t ground = PowerLineGround;
  ASSERT_EQ(VRX_ParameterGet(m_handle, ParamPowerOutput, &ground), VRX_OK);
  EXPECT_EQ(ground & PortOpMask, PortOpClear);
  EXPECT_EQ(ground & PowerLineGround, 0u);
  EXPECT_EQ(set(ParamPowerOutputSet, 0x4000001), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(set(ParamPowerOutputSet, PortOpSet | 4), VRX_ERR_BAD_VALUE);
}

TEST_F(SimBoard, PoclSensingNeedsAPoclBoard) {
  open(0xC0010002);
  EXPECT_EQ(set(ParamPoclSense, 1), VRX_ERR_NOT_SUPPORTED);
}

}  // namespace
}  // namespace vrxsim_test
