// The simulated board's parameters: validation against the value sets, board selection and
// opening, dependent values, configuration files, board information and interrupt masks.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "sim_support.h"

namespace vrxsim_test {
namespace {

using namespace vrx;

struct TableCase {
  uint32_t id;
  std::span<const uint32_t> values;
};

class ParameterTable : public SimBoard, public ::testing::WithParamInterface<TableCase> {};

TEST_P(ParameterTable, AcceptsEveryValueOfItsSetAndRefusesOthers) {
  open();
  const TableCase &c = GetParam();
  for (uint32_t value : c.values) {
    EXPECT_EQ(set(c.id, value), VRX_OK) << std::hex << value;
    EXPECT_EQ(get(c.id), value) << std::hex << value;
  }
  const uint32_t before = get(c.id);
  Reports::take();
  for (uint32_t unknown : {0xDEADBEEFu, (c.id & 0xFFFFFF00u) | 0xFFu}) {
    EXPECT_EQ(set(c.id, unknown), VRX_ERR_BAD_VALUE) << std::hex << unknown;
    EXPECT_EQ(get(c.id), before);
  }
  std::vector<Report> reports = Reports::take();
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[0].function, "VRX_ParameterSet");
  EXPECT_EQ(reports[0].status, VRX_ERR_BAD_VALUE);
}

INSTANTIATE_TEST_SUITE_P(
    ValueSets, ParameterTable,
    ::testing::Values(TableCase{ParamCameraType, kCameraTypeValues},
                      TableCase{ParamClockPolarity, kClockPolarityValues},
                      TableCase{ParamCameraDepth, kCameraDepthValues},
                      TableCase{ParamCameraColour, kCameraColourValues},
                      TableCase{ParamHTapNumber, kHTapNumberValues},
                      TableCase{ParamHTapDirection, kHTapDirectionValues},
                      TableCase{ParamHTapType, kHTapTypeValues},
                      TableCase{ParamHTapOrder, kHTapOrderValues},
                      TableCase{ParamVTapNumber, kVTapNumberValues},
                      TableCase{ParamVTapDirection, kVTapDirectionValues},
                      TableCase{ParamVTapType, kVTapTypeValues},
                      TableCase{ParamVTapOrder, kVTapOrderValues},
                      TableCase{ParamAcqTrigSource, kAcqTrigSourceValues},
                      TableCase{ParamAcqTrigMode, kAcqTrigModeValues},
                      TableCase{ParamAcqTrigAlign, kAcqTrigAlignValues},
                      TableCase{ParamAcqTrigDelayType, kAcqTrigDelayTypeValues},
                      TableCase{ParamTimerPeriodUnit, kTimerPeriodUnitValues},
                      TableCase{ParamEventCountSource, kEventCountSourceValues},
                      TableCase{ParamEventGate, kEventGateValues},
                      TableCase{ParamChannelSync, kChannelSyncValues},
                      TableCase{ParamExpTrigSource, kExpTrigSourceValues},
                      TableCase{ParamSubsamplePixel, kSubsampleValues},
                      TableCase{ParamSubsampleLine, kSubsampleValues},
                      TableCase{ParamInterlaceMode, kInterlaceModeValues},
                      TableCase{ParamCaptureFormat, kCaptureFormatValues},
                      TableCase{ParamCommsBaud, kCommsBaudValues},
                      TableCase{ParamCommsDataBits, kCommsDataBitsValues},
                      TableCase{ParamCommsFlow, kCommsFlowValues},
                      TableCase{ParamCommsParity, kCommsParityValues},
                      TableCase{ParamCommsStopBits, kCommsStopBitsValues}));

TEST_F(SimBoard, AcceptsTheValuesThePagesLeaveOut) {
  open();
  EXPECT_EQ(set(ParamHTapType, kHTapTypeUnlisted), VRX_OK);
  EXPECT_EQ(set(ParamVTapDirection, kVTapDirectionConverging), VRX_OK);
  EXPECT_EQ(get(ParamVTapDirection), kVTapDirectionConverging);
}

TEST_F(SimBoard, RefusesNumbersOutsideTheirRange) {
  open();
  EXPECT_EQ(set(ParamSrcXLength, 0), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(set(ParamSrcXLength, 16385), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(set(ParamBufferCount, 0), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(set(ParamBufferCount, kMaxBufferCount + 1), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(set(ParamBinPixel, 17), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(set(ParamExpTimer1, 0), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(set(ParamExpTimer1, 0xFFFFFFFF), VRX_OK);
  EXPECT_EQ(get(ParamSrcXLength), 640u);
}

TEST_F(SimBoard, NeedsAnOpenBoardForBoardParameters) {
  uint32_t value = 0;
  EXPECT_EQ(VRX_ParameterGet(m_handle, ParamCameraDepth, &value), VRX_ERR_NOT_OPEN);
  EXPECT_EQ(set(ParamCameraDepth, 8), VRX_ERR_NOT_OPEN);
  EXPECT_EQ(acquire(VRX_ACQ_START), VRX_ERR_NOT_OPEN);
  EXPECT_EQ(set(ParamBoardType, 0xC0019999), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(get(ParamBoardType), BoardTypeAny);
  EXPECT_EQ(VRX_ParameterGet(0xFFFFFF, ParamBoardType, &value), VRX_ERR_BAD_HANDLE);
}

TEST_F(SimBoard, OpensOnlyInstalledBoardsAndChannels) {
  set(ParamBoardNumber, 0xC0010003);
  EXPECT_EQ(VRX_Open(&m_handle), VRX_ERR_NO_BOARD);
  set(ParamBoardNumber, 0xC0010001);
  set(ParamChannelNumber, ChannelB);  // board 1 has one channel
  EXPECT_EQ(VRX_Open(&m_handle), VRX_ERR_NO_BOARD);
  set(ParamChannelNumber, ChannelA);
  set(ParamBoardType, 0xC0016004);  // board 1 is not the CoaXPress board
  EXPECT_EQ(VRX_Open(&m_handle), VRX_ERR_NO_BOARD);
  std::vector<Report> reports = Reports::take();
  ASSERT_EQ(reports.size(), 3u);
  EXPECT_EQ(reports[0].function, "VRX_Open");
  EXPECT_EQ(reports[0].message, "Board 3 is not installed");
  set(ParamBoardType, BoardTypeAny);
  EXPECT_EQ(VRX_Open(&m_handle), VRX_OK);
  EXPECT_EQ(VRX_Open(&m_handle), VRX_ERR_ALREADY_OPEN);
  EXPECT_EQ(set(ParamBoardNumber, 0xC0010002), VRX_ERR_ALREADY_OPEN);

  uint32_t other = 0;
  ASSERT_EQ(VRX_Create(&other, &Reports::handler), VRX_OK);
  EXPECT_EQ(VRX_Open(&other), VRX_ERR_ALREADY_OPEN);  // same board and channel
  uint32_t cxp_board = 0xC0010002, channel_b = ChannelB;
  VRX_ParameterSet(other, ParamBoardNumber, &cxp_board);
  VRX_ParameterSet(other, ParamChannelNumber, &channel_b);
  EXPECT_EQ(VRX_Open(&other), VRX_OK);
  EXPECT_EQ(VRX_Close(&other), VRX_OK);
  EXPECT_EQ(VRX_Close(&other), VRX_ERR_NOT_OPEN);
  EXPECT_EQ(VRX_Destroy(&other), VRX_OK);
  EXPECT_EQ(other, 0u);
}

TEST_F(SimBoard, KeepsTheDestinationConsistentWithSourceAndFormat) {
  open();
  EXPECT_EQ(get(ParamCaptureWidth), 640u);
  EXPECT_EQ(get(ParamDstXLength), 640u);
  set(ParamSrcXLength, 1024);  // clipped to the camera's active region
  EXPECT_EQ(get(ParamDstXLength), 640u);
  set(ParamActiveXLength, 1024);
  EXPECT_EQ(get(ParamDstXLength), 1024u);
  set(ParamCaptureFormat, capture_format(1));  // 16 bit mono: two bytes a pixel
  EXPECT_EQ(get(ParamDstXLength), 2048u);
  EXPECT_EQ(get(ParamCaptureWidth), 1024u);
  set(ParamSubsamplePixel, 0xC0020702);
  set(ParamBinPixel, 2);
  EXPECT_EQ(get(ParamCaptureWidth), 256u);
  EXPECT_EQ(get(ParamDstXLength), 512u);
  set(ParamDstXLength, 300);  // a narrower destination clips the line
  EXPECT_EQ(get(ParamCaptureWidth), 150u);

  set(ParamCameraInterlaced, InterlacedOn);
  set(ParamInterlaceMode, 0xC0020603);  // one field per buffer
  EXPECT_EQ(get(ParamDstYLength), 240u);
  set(ParamInterlaceMode, 0xC0020601);
  EXPECT_EQ(get(ParamDstYLength), 480u);
}

TEST_F(SimBoard, CaptureFormatFollowsCameraDepthAndColour) {
  open();
  set(ParamCameraDepth, 12);
  EXPECT_EQ(get(ParamCaptureFormat), capture_format(19));
  set(ParamCameraColour, ColourBayerRggb);
  EXPECT_EQ(get(ParamCaptureFormat), capture_format(23));
  set(ParamCaptureFormat,
      capture_format(31));  // a chosen format stays until depth or colour change
  set(ParamCameraDepth, 12);
  EXPECT_EQ(get(ParamCaptureFormat), capture_format(31));
}

TEST_F(SimBoard, ReportsBoardInformationAndStatus) {
  open();
  const char *info = nullptr;
  ASSERT_EQ(VRX_ParameterGet(m_handle, ParamBoardInfo, &info), VRX_OK);
  EXPECT_NE(std::string(info).find("Model=VR-PCLB-E1\n"), std::string::npos);
  EXPECT_EQ(get(ParamBoardStatusWord), StatusCameraLink | StatusClBaseOnly | StatusChainMaster);
  EXPECT_EQ(set(ParamBoardStatusWord, 0), VRX_ERR_READ_ONLY);
  uint32_t value = 0;
  EXPECT_EQ(VRX_ParameterGet(m_handle, ParamIntrptDisable, &value), VRX_ERR_WRITE_ONLY);
  EXPECT_EQ(VRX_ParameterGet(m_handle, ParamCxpLinkSpeed, &value), VRX_ERR_NOT_SUPPORTED);
  EXPECT_EQ(VRX_ParameterSet(m_handle, ParamApplySettings, nullptr), VRX_OK);
}

TEST_F(SimBoard, CoaXPressBoardReportsItsLinks) {
  open(0xC0010002);
  const char *info = nullptr;
  ASSERT_EQ(VRX_ParameterGet(m_handle, ParamBoardInfo, &info), VRX_OK);
  EXPECT_NE(std::string(info).find("Model=VRX-CXP4"), std::string::npos);
  EXPECT_EQ(get(ParamBoardStatusWord) & StatusCameraLink, 0u);
  EXPECT_EQ(get(ParamCxpCurrentLinks), 0xC0091204u);
  EXPECT_EQ(get(ParamCxpCurrentSpeed), 0xC0091005u);
  set(ParamCxpLinkCount, 0xC0091203);
  set(ParamCxpLinkSpeed, 0xC0091003);
  EXPECT_EQ(get(ParamCxpCurrentLinks), 0xC0091203u);
  EXPECT_EQ(get(ParamCxpCurrentSpeed), 0xC0091003u);
  set(ParamCxpPower, CxpPowerOff);
  EXPECT_EQ(get(ParamCxpDiscovery), 0u);
  EXPECT_EQ(get(ParamCxpCurrentLinks), 0u);
}

TEST_F(SimBoard, InterruptMaskFollowsEnableAndDisable) {
  open();
  const uint32_t initial = get(ParamIntrptEnable);
  EXPECT_EQ(initial, VRX_EVENT_GLOBAL_ENABLE | VRX_EVENT_BUFFER_READY | VRX_EVENT_FIFO_OVERFLOW |
                         VRX_EVENT_FRAME_LOST);
  set(ParamIntrptEnable, VRX_EVENT_TIMEOUT);
  set(ParamIntrptDisable, VRX_EVENT_BUFFER_READY);
  EXPECT_EQ(get(ParamIntrptEnable), (initial | VRX_EVENT_TIMEOUT) & ~VRX_EVENT_BUFFER_READY);
  EXPECT_EQ(set(ParamIntrptEnable, 0x10), VRX_ERR_BAD_VALUE);
}

TEST_F(SimBoard, ConfigurationFileRoundTrips) {
  const std::string path = ::testing::TempDir() + "roundtrip.vcf";
  open();
  set(ParamCameraDepth, 10);
  set(ParamSrcXLength, 800);
  set(ParamDstXLength, 2000);  // padded lines survive the save
  set(ParamCommsBaud, 115200);
  EXPECT_EQ(VRX_CameraConfigSave(m_handle, path.c_str(), 0x1234), VRX_ERR_BAD_PARAMETER);
  ASSERT_EQ(VRX_CameraConfigSave(m_handle, path.c_str(), CfgSaveAll), VRX_OK);
  VRX_Close(&m_handle);

  ASSERT_EQ(VRX_ParameterSet(m_handle, ParamConfigFile, const_cast<char *>(path.c_str())), VRX_OK);
  ASSERT_EQ(VRX_Open(&m_handle), VRX_OK);
  EXPECT_EQ(get(ParamCameraDepth), 10u);
  EXPECT_EQ(get(ParamSrcXLength), 800u);
  EXPECT_EQ(get(ParamDstXLength), 2000u);
  EXPECT_EQ(get(ParamCommsBaud), 115200u);
  EXPECT_EQ(get(ParamCaptureFormat), capture_format(18));
}

struct BadFile {
  const char *name;
  const char *text;
  const char *message_part;
};

class BadConfigurationFile : public SimBoard, public ::testing::WithParamInterface<BadFile> {};

TEST_P(BadConfigurationFile, IsRefusedWithItsLine) {
  const std::string path = ::testing::TempDir() + GetParam().name + ".vcf";
  std::ofstream(path) << "# comment\n\nCameraDepth=8\n" << GetParam().text << "\n";
  ASSERT_EQ(VRX_ParameterSet(m_handle, ParamConfigFile, const_cast<char *>(path.c_str())), VRX_OK);
  EXPECT_EQ(VRX_Open(&m_handle), VRX_ERR_FILE);
  std::vector<Report> reports = Reports::take();
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_NE(reports[0].message.find(":4: "), std::string::npos) << reports[0].message;
  EXPECT_NE(reports[0].message.find(GetParam().message_part), std::string::npos)
      << reports[0].message;
  uint32_t value = 0;
  EXPECT_EQ(VRX_ParameterGet(m_handle, ParamCameraDepth, &value), VRX_ERR_NOT_OPEN);
}

INSTANTIATE_TEST_SUITE_P(
    Defects, BadConfigurationFile,
    ::testing::Values(BadFile{"unknown_key", "Brightness=3", "unknown key"},
                      BadFile{"refused_value", "CameraColour=2", "not accepted"},
                      BadFile{"not_a_number", "SrcXLength=wide", "bad number"},
                      BadFile{"no_equals", "SrcXLength", "expected key=value"}),
    [](const auto &param_info) { return std::string(param_info.param.name); });

TEST_F(SimBoard, MissingConfigurationFileFailsTheOpen) {
  ASSERT_EQ(
      VRX_ParameterSet(m_handle, ParamConfigFile, const_cast<char *>("/nonexistent/camera.vcf")),
      VRX_OK);
  EXPECT_EQ(VRX_Open(&m_handle), VRX_ERR_FILE);
}

TEST(SimMemory, AllocatesZeroedBlocksAndChecksFrees) {
  void *block = nullptr;
  ASSERT_EQ(VRX_MemoryAlloc(0, &block, 300, 0, 0), VRX_OK);
  const auto *bytes = static_cast<const uint8_t *>(block);
  EXPECT_TRUE(std::all_of(bytes, bytes + 300, [](uint8_t b) { return b == 0; }));
  EXPECT_EQ(VRX_MemoryFreeAndNull(0, &block), VRX_OK);
  EXPECT_EQ(block, nullptr);
  int not_ours = 0;
  void *stranger = &not_ours;
  EXPECT_EQ(VRX_MemoryFreeAndNull(0, &stranger), VRX_ERR_MEMORY);
}

}  // namespace
}  // namespace vrxsim_test
