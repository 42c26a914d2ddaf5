// Board parameter ids, their enumerated values and the sets of values the board accepts: the
// board's side of the contract, shared by the panel and the simulated board. What the pages show
// for these values (combo texts in item order) lives beside the pages, in control/pages/.
//
// Ids are 32-bit words 0xC00Pxx00; an enumerated value shares the upper bytes of its parameter
// and numbers the choice in the low byte. A few parameters take plain numbers instead (depth in
// bits, tap counts, on/off as 1/2), kept exactly as the SDK defines them.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/board/vrx_sdk.h"

namespace vrx {

// The enumerated values first .. last, in order (an enumeration's accepted set).
template <uint32_t First, uint32_t Last>
constexpr std::array<uint32_t, Last - First + 1> value_range() {
  std::array<uint32_t, Last - First + 1> values{};
  for (uint32_t i = 0; i < values.size(); ++i) values[i] = First + i;
  return values;
}

constexpr bool accepts(std::span<const uint32_t> values, uint32_t value) {
  for (uint32_t v : values)
    if (v == value) return true;
  return false;
}

// ---- Board selection and opening ----------------------------------------------------------

inline constexpr uint32_t ParamConfigFile = 0xC0070100;
inline constexpr uint32_t ParamBoardType = 0xC0070200;
inline constexpr uint32_t ParamBoardNumber = 0xC0070300;
inline constexpr uint32_t ParamChannelNumber = 0xC0070400;
inline constexpr uint32_t ParamBoardMode = 0xC0070500;
inline constexpr uint32_t ParamEventContext = 0xC0027E00;
inline constexpr uint32_t ParamBoardInfo = 0xC0026600;
inline constexpr uint32_t ParamBoardStatusWord = 0xC0029500;

inline constexpr uint32_t BoardTypeAny = 0xC0014000;
inline constexpr uint32_t ChannelA = 0xC0010010;
inline constexpr uint32_t ChannelB = 0xC0010020;
inline constexpr uint32_t BoardModeNormal = 0xC0010000;
inline constexpr uint32_t BoardModeAcquisitionOnly = 0xC0010200;
inline constexpr uint32_t BoardModeCommsOnly = 0xC0010080;

inline constexpr uint32_t StatusCameraLink = 0x80;    // a Camera Link board
inline constexpr uint32_t StatusChainMaster = 0x100;  // master of a trigger chain
inline constexpr uint32_t StatusClBaseOnly = 0x800;   // Camera Link Base configuration only

inline constexpr uint32_t AcqCmdRegisterCallback = VRX_ACQ_REGISTER_CALLBACK;
inline constexpr uint32_t AcqCmdAbort = VRX_ACQ_ABORT;
inline constexpr uint32_t AcqCmdSoftwareTrigger = VRX_ACQ_SOFTWARE_TRIGGER;
inline constexpr uint32_t CfgSaveAll = 0xC0040007;

// The board models, with what the simulator needs to behave like each.
enum class Interface : uint8_t { Lvds, CameraLink, Analogue, Rs422, CoaXPress };
struct BoardModel {
  uint32_t value;          // board type code
  const char *name;        // the board information's "Name"
  const char *short_name;  // the board information's "Model"
  Interface interface;
  bool base_only;     // Camera Link Base configuration only
  bool pocl;          // can sense and power a PoCL camera
  uint8_t channels;   // 1 or 2
  uint8_t cxp_links;  // CoaXPress links, 0 for other interfaces
};

inline constexpr std::array<BoardModel, 24> kBoardModels{{
    {0xC0011001, "32-bit LVDS, PCI", "VR-L32", Interface::Lvds, false, false, 1, 0},
    {0xC0011002, "64-bit LVDS, PCI", "VR-L64", Interface::Lvds, false, false, 1, 0},
    {0xC0011003, "Camera Link Base, PCI", "VR-CLB", Interface::CameraLink, true, false, 1, 0},
    {0xC0011004, "Camera Link Medium, PCI", "VR-CLM", Interface::CameraLink, false, false, 1, 0},
    {0xC0011005, "Camera Link Full, PCI", "VR-CLF", Interface::CameraLink, false, false, 1, 0},
    {0xC0011006, "Dual Camera Link Base, PCI", "VR-CLD", Interface::CameraLink, true, false, 2, 0},
    {0xC0012001, "Camera Link Base, PCI-X", "VR-CLB-X", Interface::CameraLink, true, false, 1, 0},
    {0xC0012002, "Camera Link Full, PCI-X", "VR-CLF-X", Interface::CameraLink, false, false, 1, 0},
    {0xC0012003, "Dual Camera Link Base, PCI-X", "VR-CLD-X", Interface::CameraLink, true, false, 2,
     0},
    {0xC0012004, "64-bit LVDS, PCI-X", "VR-L64-X", Interface::Lvds, false, false, 1, 0},
    {0xC0013001, "Camera Link Base, PCIe x1", "VR-CLB-E1", Interface::CameraLink, true, false, 1,
     0},
    {0xC0013002, "Camera Link Full, PCIe x4", "VR-CLF-E4", Interface::CameraLink, false, false, 1,
     0},
    {0xC0013003, "Dual Camera Link Base, PCIe x4", "VR-CLD-E4", Interface::CameraLink, true, false,
     2, 0},
    {0xC0013004, "Camera Link Deca, PCIe x4", "VR-CL10-E4", Interface::CameraLink, false, false, 1,
     0},
    {0xC0013005, "PoCL Camera Link Base, PCIe x1", "VR-PCLB-E1", Interface::CameraLink, true, true,
     1, 0},
    {0xC0013006, "Dual PoCL Camera Link, PCIe x4", "VR-PCLD-E4", Interface::CameraLink, true, true,
     2, 0},
    {0xC0015001, "Analogue mono, PCI", "VR-AM", Interface::Analogue, false, false, 1, 0},
    {0xC0015002, "Analogue colour, PCI", "VR-AC", Interface::Analogue, false, false, 1, 0},
    {0xC0015003, "Analogue quad, PCIe x1", "VR-AQ-E1", Interface::Analogue, false, false, 2, 0},
    {0xC0015004, "RS-422 32-bit, PCIe x1", "VR-R32-E1", Interface::Rs422, false, false, 1, 0},
    {0xC0015005, "RS-422 64-bit, PCIe x4", "VR-R64-E4", Interface::Rs422, false, false, 1, 0},
    {0xC0016001, "CoaXPress 1 link, PCIe x4", "VRX-CXP1", Interface::CoaXPress, false, false, 1, 1},
    {0xC0016002, "CoaXPress 2 links, PCIe x4", "VRX-CXP2", Interface::CoaXPress, false, false, 1,
     2},
    {0xC0016004, "CoaXPress 4 links, PCIe x8", "VRX-CXP4", Interface::CoaXPress, false, false, 2,
     4},
}};

constexpr const BoardModel *find_board_model(uint32_t value) {
  for (const BoardModel &model : kBoardModels)
    if (model.value == value) return &model;
  return nullptr;
}

inline constexpr auto kBoardNumberValues = value_range<0xC0010001, 0xC0010007>();
inline constexpr uint32_t kChannelValues[] = {ChannelA, ChannelB};
inline constexpr uint32_t kBoardModeValues[] = {BoardModeNormal, BoardModeAcquisitionOnly,
                                                BoardModeCommsOnly};

// ---- Acquisition and capture buffers ------------------------------------------------------

inline constexpr uint32_t ParamAcqMode = 0xC0020100;        // 1 continuous, 2 single frame
inline constexpr uint32_t ParamBufferCount = 0xC0020200;    // capture buffers in the ring
inline constexpr uint32_t ParamCaptureFormat = 0xC0022600;  // 0xC0022601 + k
inline constexpr uint32_t ParamDstPtrType = 0xC0022700;
inline constexpr uint32_t ParamApplySettings = 0xC0022901;  // write only: commit the settings
inline constexpr uint32_t ParamCaptureWidth = 0xC0026700;   // read only: pixels per line
inline constexpr uint32_t ParamCaptureHeight = 0xC0026800;  // read only: lines per buffer
inline constexpr uint32_t ParamAcqEnableMask = 0xC0026A00;  // three bytes, one per channel set

inline constexpr uint32_t AcqModeContinuous = 1;
inline constexpr uint32_t AcqModeSingle = 2;
inline constexpr uint32_t DstPtrVirtual = 0xC0022701;
inline constexpr uint32_t DstPtrPhysical = 0xC0022702;
inline constexpr uint32_t DstPtrUser = 0xC0022703;
inline constexpr uint32_t kMaxBufferCount = 256;

// Capture formats: code = kCaptureFormatBase + k.
inline constexpr uint32_t kCaptureFormatBase = 0xC0022601;
inline constexpr uint32_t kCaptureFormatCount = 32;
constexpr uint32_t capture_format(uint32_t k) { return kCaptureFormatBase + k; }
constexpr bool is_capture_format(uint32_t code) {
  return code >= kCaptureFormatBase && code < kCaptureFormatBase + kCaptureFormatCount;
}

inline constexpr auto kCaptureFormatValues =
    value_range<kCaptureFormatBase, kCaptureFormatBase + kCaptureFormatCount - 1>();

// ---- Camera description
// --------------------------------------------------------------------------

inline constexpr uint32_t ParamCameraType = 0xC0021900;
inline constexpr uint32_t ParamClockPolarity = 0xC0020E00;
inline constexpr uint32_t ParamCameraDepth = 0xC0021100;
inline constexpr uint32_t ParamCameraColour = 0xC0021200;
inline constexpr uint32_t ParamActiveXOffset = 0xC0020C00;
inline constexpr uint32_t ParamActiveYOffset = 0xC0020D00;
inline constexpr uint32_t ParamActiveXLength = 0xC0020A00;
inline constexpr uint32_t ParamActiveYLength = 0xC0020B00;
inline constexpr uint32_t ParamHTapNumber = 0xC0021500;
inline constexpr uint32_t ParamHTapDirection = 0xC0021300;
inline constexpr uint32_t ParamHTapType = 0xC0021400;
inline constexpr uint32_t ParamHTapOrder = 0xC0027C00;
inline constexpr uint32_t ParamVTapNumber = 0xC0021800;
inline constexpr uint32_t ParamVTapDirection = 0xC0021600;
inline constexpr uint32_t ParamVTapType = 0xC0021700;
inline constexpr uint32_t ParamVTapOrder = 0xC0027D00;
inline constexpr uint32_t ParamDataValidEnable = 0xC0027F00;   // 1 on, 2 off
inline constexpr uint32_t ParamCameraInterlaced = 0xC0020F00;  // 0xC0020F01 on, 0xC0020F02 off

inline constexpr uint32_t FlagOn = 1;
inline constexpr uint32_t FlagOff = 2;
inline constexpr uint32_t InterlacedOn = 0xC0020F01;
inline constexpr uint32_t InterlacedOff = 0xC0020F02;
inline constexpr uint32_t ColourMono = 1;
inline constexpr uint32_t ColourRgb = 3;
inline constexpr uint32_t ColourBayerRggb = 0xC0021201;
inline constexpr uint32_t ColourBayerBggr = 0xC0021204;
inline constexpr uint32_t ColourYuv = 0xC0021205;

inline constexpr auto kCameraTypeValues = value_range<0xC0021901, 0xC0021904>();
inline constexpr auto kClockPolarityValues = value_range<0xC0020E01, 0xC0020E02>();
inline constexpr uint32_t kCameraDepthValues[] = {8, 10, 12, 14, 16, 32};
inline constexpr uint32_t kCameraColourValues[] = {ColourMono, ColourRgb,  0xC0021201, 0xC0021202,
                                                   0xC0021203, 0xC0021204, ColourYuv};
inline constexpr uint32_t kHTapNumberValues[] = {1, 2, 3, 4, 8, 10};
inline constexpr auto kHTapDirectionValues = value_range<0xC0021301, 0xC0021304>();
inline constexpr auto kHTapTypeValues = value_range<0xC0021401, 0xC0021404>();
inline constexpr auto kHTapOrderValues = value_range<0xC0027C01, 0xC0027C02>();
inline constexpr uint32_t kVTapNumberValues[] = {1, 2, 4};
inline constexpr auto kVTapDirectionValues = value_range<0xC0021601, 0xC0021604>();
inline constexpr auto kVTapTypeValues = value_range<0xC0021701, 0xC0021702>();
inline constexpr auto kVTapOrderValues = value_range<0xC0027D01, 0xC0027D02>();

// Values the board accepts that the Camera page's lists leave out on purpose.
inline constexpr uint32_t kHTapTypeUnlisted = 0xC0021403;
inline constexpr uint32_t kVTapDirectionConverging = 0xC0021603;

// ---- Acquisition trigger ------------------------------------------------------------------

inline constexpr uint32_t ParamAcqTrigSource = 0xC0020400;
inline constexpr uint32_t ParamAcqTrigMode = 0xC0020500;
inline constexpr uint32_t ParamAcqTrigAlign = 0xC0029000;
inline constexpr uint32_t ParamAcqTrigDelay = 0xC0027900;
inline constexpr uint32_t ParamAcqTrigDelayType = 0xC0027800;
inline constexpr uint32_t ParamTimerPeriod = 0xC0027100;
inline constexpr uint32_t ParamTimerPeriodUnit = 0xC0027000;
inline constexpr uint32_t ParamEventCountSource = 0xC0027A00;
inline constexpr uint32_t ParamEventGate = 0xC0027B00;
inline constexpr uint32_t ParamChainEnable = 0xC0029200;
inline constexpr uint32_t ParamChannelSync = 0xC0029900;

inline constexpr uint32_t TrigSourceInternalTimer = 0xC002041C;
inline constexpr uint32_t TrigModeNone = 0xC0020501;
inline constexpr uint32_t TimerUnitUsecs = 0xC0027001;
inline constexpr uint32_t TimerUnitDisabled = 0xC0027002;
inline constexpr uint32_t TimerUnitLines = 0xC0027003;

// Opto, AuxIn, CtrlIn and CcIo inputs and the internal timer (0xC0020405 to 0xC002040A unused).
inline constexpr uint32_t kAcqTrigSourceValues[] = {0xC0020401, 0xC0020402,
                                                    0xC0020403, 0xC0020404,
                                                    0xC002040B, 0xC002040C,
                                                    0xC002040D, 0xC002040E,
                                                    0xC002040F, 0xC0020410,
                                                    0xC0020411, 0xC0020412,
                                                    0xC0020413, 0xC0020414,
                                                    0xC0020415, 0xC0020416,
                                                    0xC0020417, 0xC0020418,
                                                    0xC0020419, 0xC002041A,
                                                    0xC002041B, TrigSourceInternalTimer};
inline constexpr auto kAcqTrigModeValues = value_range<TrigModeNone, 0xC002050B>();
inline constexpr auto kAcqTrigAlignValues = value_range<0xC0029001, 0xC0029004>();
inline constexpr auto kAcqTrigDelayTypeValues = value_range<0xC0027801, 0xC0027803>();
inline constexpr auto kTimerPeriodUnitValues = value_range<TimerUnitUsecs, TimerUnitLines>();
inline constexpr auto kEventCountSourceValues = value_range<0xC0027A01, 0xC0027A03>();
inline constexpr auto kEventGateValues = value_range<0xC0027B01, 0xC0027B04>();
inline constexpr auto kChannelSyncValues = value_range<0xC0029901, 0xC0029902>();

// Acquisition-trigger modes by behaviour.
constexpr bool trigger_mode_each(uint32_t mode) {
  return mode == 0xC0020504 || mode == 0xC0020505 || mode == 0xC0020508 || mode == 0xC0020509;
}

// ---- Exposure -----------------------------------------------------------------------------

inline constexpr uint32_t ParamExpTrigSource = 0xC0027200;
inline constexpr uint32_t ParamExpTimer1 = 0xC0027400;
inline constexpr uint32_t ParamExpTimer2 = 0xC0027600;
inline constexpr uint32_t ExpTrigSoftware = 0xC0027204;

inline constexpr auto kExpTrigSourceValues = value_range<0xC0027202, 0xC0027209>();

// ---- Region of interest and destination
// -----------------------------------------------------------------------------

inline constexpr uint32_t ParamSrcXOffset = 0xC0025900;
inline constexpr uint32_t ParamSrcYOffset = 0xC0025A00;
inline constexpr uint32_t ParamSrcXLength = 0xC0025B00;
inline constexpr uint32_t ParamSrcYLength = 0xC0025C00;
inline constexpr uint32_t ParamSubsamplePixel = 0xC0020700;
inline constexpr uint32_t ParamSubsampleLine = 0xC0020800;
inline constexpr uint32_t ParamBinPixel = 0xC0021A00;
inline constexpr uint32_t ParamBinLine = 0xC0021B00;
inline constexpr uint32_t ParamDstXOffset = 0xC0025700;
inline constexpr uint32_t ParamDstYOffset = 0xC0025800;
inline constexpr uint32_t ParamDstXLength = 0xC0025D00;  // destination line length in bytes
inline constexpr uint32_t ParamDstYLength = 0xC0025E00;  // destination lines
inline constexpr uint32_t ParamInterlaceMode = 0xC0020600;

inline constexpr auto kSubsampleValues = value_range<0xC0020701, 0xC0020704>();
inline constexpr auto kInterlaceModeValues = value_range<0xC0020601, 0xC002060C>();

// Interlace modes that store one field per buffer (half the lines).
constexpr bool interlace_mode_is_field(uint32_t mode) {
  return mode >= 0xC0020603 && mode <= 0xC0020607;
}

// ---- Serial link to the camera ------------------------------------------------------------------

inline constexpr uint32_t ParamCommsBaud = 0xC0022100;
inline constexpr uint32_t ParamCommsDataBits = 0xC0021C00;
inline constexpr uint32_t ParamCommsFlow = 0xC0021D00;
inline constexpr uint32_t ParamCommsParity = 0xC0022000;
inline constexpr uint32_t ParamCommsStopBits = 0xC0022300;
inline constexpr uint32_t ParamCommsCount1 = 0xC0021E00;  // bytes sent to the camera
inline constexpr uint32_t ParamCommsCount2 = 0xC0021F00;  // bytes received from the camera
inline constexpr uint32_t ParamCommsStatus = 0xC0029C00;  // 0 idle, 1 receive data waiting
inline constexpr uint32_t ParamCommsInterface = 0xC0022200;
inline constexpr uint32_t CommsRs232 = 0xC0022201;
inline constexpr uint32_t CommsLvds = 0xC0022202;

inline constexpr uint32_t kCommsBaudValues[] = {300,   600,   1200,  2400,   4800,  9600,
                                                19200, 38400, 57600, 115200, 230400};
inline constexpr auto kCommsDataBitsValues = value_range<0xC0021C01, 0xC0021C04>();
inline constexpr auto kCommsFlowValues = value_range<0xC0021D01, 0xC0021D03>();
inline constexpr auto kCommsParityValues = value_range<0xC0022001, 0xC0022003>();
inline constexpr auto kCommsStopBitsValues = value_range<0xC0022301, 0xC0022303>();

// ---- CoaXPress links -----------------------------------------------------------------------

inline constexpr uint32_t ParamCxpLinkSpeed = 0xC0091000;
inline constexpr uint32_t ParamCxpLinkCount = 0xC0091200;
inline constexpr uint32_t ParamCxpPower = 0xC0091100;
inline constexpr uint32_t ParamCxpCurrentSpeed = 0xC0090200;  // read only
inline constexpr uint32_t ParamCxpCurrentLinks = 0xC0090400;  // read only
inline constexpr uint32_t ParamCxpDiscovery = 0xC0090100;     // read only: 1 camera found, 0 none
inline constexpr uint32_t ParamCxpPowerState = 0xC0090300;    // read only: CxpPowerState*

inline constexpr uint32_t CxpSpeedAutomatic = 0xC0091001;
inline constexpr uint32_t CxpLinksAutomatic = 0xC0091201;
inline constexpr uint32_t CxpPowerAutomatic = 0xC0091101;
inline constexpr uint32_t CxpPowerOff = 0xC0091102;
inline constexpr uint32_t CxpPowerTripReset = 0xC0091103;
inline constexpr uint32_t CxpPowerForceOn = 0xC0091104;
inline constexpr uint32_t CxpPowerStatePowered = 0xC0090301;      // the camera is powered
inline constexpr uint32_t CxpPowerStateUnavailable = 0xC0090302;  // power switched off
inline constexpr uint32_t CxpPowerStateTripped = 0xC0090303;      // over-current: Trip Reset

inline constexpr auto kCxpLinkSpeedValues = value_range<CxpSpeedAutomatic, 0xC0091006>();
inline constexpr auto kCxpLinkCountValues = value_range<CxpLinksAutomatic, 0xC0091204>();
inline constexpr auto kCxpPowerValues = value_range<CxpPowerAutomatic, CxpPowerForceOn>();

// ---- PoCL and output ports ----------------------------------------------------------------

inline constexpr uint32_t ParamPowerOutput = 0xC0023E00;
inline constexpr uint32_t ParamPowerOutputSet = 0xC0023E01;
inline constexpr uint32_t ParamPoclSenseEnable = 0xC0024700;
inline constexpr uint32_t ParamPoclSense = 0xC0024801;   // 1 while detecting, 2 otherwise
inline constexpr uint32_t ParamPoclStatus = 0xC0024900;  // bit 0: a PoCL camera is attached

inline constexpr uint32_t PortOpSet = 0x1000000;    // OR with line bits: set the lines
inline constexpr uint32_t PortOpClear = 0x2000000;  // OR with line bits: clear the lines
inline constexpr uint32_t PortOpMask = 0xF000000;
inline constexpr uint32_t PowerLine12V = 1;
inline constexpr uint32_t PowerLineGround = 2;

// ---- Interrupts ---------------------------------------------------------------------------

inline constexpr uint32_t ParamIntrptEnable = 0xC0024E00;
inline constexpr uint32_t ParamIntrptDisable = 0xC0024F00;
inline constexpr uint32_t ParamBufferReadyCount = 0xC0028000;
inline constexpr uint32_t ParamDmaTimeout = 0xC0024C00;  // ms; 0 disables the time-out event

inline constexpr uint32_t kInterruptBitsKnown =
    VRX_EVENT_TEST | VRX_EVENT_BUFFER_READY | VRX_EVENT_FIFO_OVERFLOW | VRX_EVENT_FRAME_LOST |
    VRX_EVENT_START_OF_FRAME | VRX_EVENT_END_OF_FRAME | VRX_EVENT_START_OF_LINE |
    VRX_EVENT_END_OF_LINE | VRX_EVENT_ACQ_TRIG_START | VRX_EVENT_ACQ_TRIG_END | VRX_EVENT_TIMEOUT |
    VRX_EVENT_GLOBAL_ENABLE;

// ---- Control ports and self-tests ---------------------------------------------------------

inline constexpr uint32_t PortFrameGrabber = 0xC0080001;
inline constexpr uint32_t PortCamera = 0xC0080002;

inline constexpr uint32_t TestPciWalk = 0xC0050100;
inline constexpr uint32_t TestPciVoltage = 0xC0050200;
inline constexpr uint32_t TestPciWidth = 0xC0050300;
inline constexpr uint32_t TestPciClock = 0xC0050400;
inline constexpr uint32_t TestFlash = 0xC0050600;
inline constexpr uint32_t TestZbt = 0xC0050700;
inline constexpr uint32_t TestOutputWalk = 0xC0050800;
inline constexpr uint32_t TestDataPath = 0xC0050A00;
inline constexpr uint32_t TestCcWalk = 0xC0050B00;
inline constexpr uint32_t TestOptoWalk = 0xC0050C00;
inline constexpr uint32_t TestChain = 0xC0050E00;

inline constexpr std::array<uint32_t, 11> kTestIds{
    TestPciWalk,    TestPciVoltage, TestPciWidth, TestPciClock, TestFlash, TestZbt,
    TestOutputWalk, TestDataPath,   TestCcWalk,   TestOptoWalk, TestChain};

}  // namespace vrx
