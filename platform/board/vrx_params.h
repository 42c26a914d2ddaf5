// Board parameter ids, enumerated values and the (value, text) tables that the panel's pages
// show and that the simulated board validates against: the one place where they are written.
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

// One combo-box row: the SDK value and the text shown. Tables end with kChoiceEnd.
struct Choice {
  uint32_t value;
  const char* text;
};
inline constexpr Choice kChoiceEnd{0xFFFFFFFFu, ""};

// Rows of a table up to (not including) its end marker.
constexpr std::span<const Choice> rows_of(std::span<const Choice> table) {
  std::size_t n = 0;
  while (n < table.size() && table[n].text[0] != '\0') ++n;
  return table.first(n);
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
  const char* name;        // Board Type combo text
  const char* short_name;  // title text, and the "Model" property
  Interface interface;
  bool base_only;          // Camera Link Base configuration only
  bool pocl;               // can sense and power a PoCL camera
  uint8_t channels;        // 1 or 2
  uint8_t cxp_links;       // CoaXPress links, 0 for other interfaces
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
    {0xC0012003, "Dual Camera Link Base, PCI-X", "VR-CLD-X", Interface::CameraLink, true, false, 2, 0},
    {0xC0012004, "64-bit LVDS, PCI-X", "VR-L64-X", Interface::Lvds, false, false, 1, 0},
    {0xC0013001, "Camera Link Base, PCIe x1", "VR-CLB-E1", Interface::CameraLink, true, false, 1, 0},
    {0xC0013002, "Camera Link Full, PCIe x4", "VR-CLF-E4", Interface::CameraLink, false, false, 1, 0},
    {0xC0013003, "Dual Camera Link Base, PCIe x4", "VR-CLD-E4", Interface::CameraLink, true, false, 2, 0},
    {0xC0013004, "Camera Link Deca, PCIe x4", "VR-CL10-E4", Interface::CameraLink, false, false, 1, 0},
    {0xC0013005, "PoCL Camera Link Base, PCIe x1", "VR-PCLB-E1", Interface::CameraLink, true, true, 1, 0},
    {0xC0013006, "Dual PoCL Camera Link, PCIe x4", "VR-PCLD-E4", Interface::CameraLink, true, true, 2, 0},
    {0xC0015001, "Analogue mono, PCI", "VR-AM", Interface::Analogue, false, false, 1, 0},
    {0xC0015002, "Analogue colour, PCI", "VR-AC", Interface::Analogue, false, false, 1, 0},
    {0xC0015003, "Analogue quad, PCIe x1", "VR-AQ-E1", Interface::Analogue, false, false, 2, 0},
    {0xC0015004, "RS-422 32-bit, PCIe x1", "VR-R32-E1", Interface::Rs422, false, false, 1, 0},
    {0xC0015005, "RS-422 64-bit, PCIe x4", "VR-R64-E4", Interface::Rs422, false, false, 1, 0},
    {0xC0016001, "CoaXPress 1 link, PCIe x4", "VRX-CXP1", Interface::CoaXPress, false, false, 1, 1},
    {0xC0016002, "CoaXPress 2 links, PCIe x4", "VRX-CXP2", Interface::CoaXPress, false, false, 1, 2},
    {0xC0016004, "CoaXPress 4 links, PCIe x8", "VRX-CXP4", Interface::CoaXPress, false, false, 2, 4},
}};

// The "Model" property values of the CoaXPress boards.
inline constexpr std::array<std::string_view, 3> kCoaXPressModelNames{"VRX-CXP1", "VRX-CXP2",
                                                                      "VRX-CXP4"};

constexpr const BoardModel* find_board_model(uint32_t value) {
  for (const BoardModel& model : kBoardModels)
    if (model.value == value) return &model;
  return nullptr;
}

// Board Type combo: "Any" and then every model, in model order.
inline constexpr auto kBoardTypeChoices = [] {
  std::array<Choice, kBoardModels.size() + 2> table{};
  table[0] = {BoardTypeAny, "Any"};
  for (std::size_t i = 0; i < kBoardModels.size(); ++i)
    table[i + 1] = {kBoardModels[i].value, kBoardModels[i].name};
  table[kBoardModels.size() + 1] = kChoiceEnd;
  return table;
}();

// Short model name by Board Type selection index; "Unrecognised" outside the table.
constexpr const char* short_model_name(int index) {
  if (index == 0) return "Vireo";
  if (index >= 1 && index <= static_cast<int>(kBoardModels.size()))
    return kBoardModels[static_cast<std::size_t>(index - 1)].short_name;
  return "Unrecognised";
}

inline constexpr Choice kBoardNumberChoices[] = {
    {0xC0010001, "1"}, {0xC0010002, "2"}, {0xC0010003, "3"}, {0xC0010004, "4"},
    {0xC0010005, "5"}, {0xC0010006, "6"}, {0xC0010007, "7"}, kChoiceEnd};
inline constexpr Choice kChannelChoices[] = {{ChannelA, "A"}, {ChannelB, "B"}, kChoiceEnd};
inline constexpr Choice kBoardModeChoices[] = {{BoardModeNormal, "Normal"},
                                               {BoardModeAcquisitionOnly, "Acquisition Only"},
                                               {BoardModeCommsOnly, "Comms Only"},
                                               kChoiceEnd};

// ---- Acquisition and capture buffers ------------------------------------------------------

inline constexpr uint32_t ParamAcqMode = 0xC0020100;         // 1 continuous, 2 single frame
inline constexpr uint32_t ParamBufferCount = 0xC0020200;     // capture buffers in the ring
inline constexpr uint32_t ParamCaptureFormat = 0xC0022600;   // 0xC0022601 + k
inline constexpr uint32_t ParamDstPtrType = 0xC0022700;
inline constexpr uint32_t ParamApplySettings = 0xC0022901;   // write only: commit the settings
inline constexpr uint32_t ParamCaptureWidth = 0xC0026700;    // read only: pixels per line
inline constexpr uint32_t ParamCaptureHeight = 0xC0026800;   // read only: lines per buffer
inline constexpr uint32_t ParamAcqEnableMask = 0xC0026A00;   // three bytes, one per channel set

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

// Capture format combo rows, in the order the Display page offers them (k = 3 is not offered).
inline constexpr Choice kCaptureFormatChoices[] = {
    {capture_format(0), "8 bit mono"},       {capture_format(18), "10 bit mono"},
    {capture_format(19), "12 bit mono"},     {capture_format(30), "12 bit monoB"},
    {capture_format(26), "12 bit mono x2"},  {capture_format(20), "14 bit mono"},
    {capture_format(1), "16 bit mono"},      {capture_format(2), "32 bit mono"},
    {capture_format(21), "8 bit Bayer"},     {capture_format(22), "10 bit Bayer"},
    {capture_format(23), "12 bit Bayer"},    {capture_format(24), "14 bit Bayer"},
    {capture_format(25), "16 bit Bayer"},    {capture_format(29), "YUV 4:2:2"},
    {capture_format(4), "15 bit RGB"},       {capture_format(9), "15 bit BGR"},
    {capture_format(5), "16 bit RGB"},       {capture_format(10), "16 bit BGR"},
    {capture_format(16), "24 bit RGB"},      {capture_format(17), "24 bit BGR"},
    {capture_format(31), "8 bit RGB planar"}, {capture_format(6), "32 bit XBGR"},
    {capture_format(7), "32 bit BGRX"},      {capture_format(11), "32 bit XRGB"},
    {capture_format(12), "32 bit RGBX"},     {capture_format(14), "32 bit RGB"},
    {capture_format(15), "32 bit BGR"},      {capture_format(27), "36 bit RGB"},
    {capture_format(28), "36 bit BGR"},      {capture_format(8), "48 bit RGB"},
    {capture_format(13), "48 bit BGR"},      kChoiceEnd};

// Display interpolation combo (VDL_PARAM_INTERPOLATION); the texts are padded to one width.
inline constexpr Choice kInterpolationChoices[] = {
    {0, "Pixel duplication"}, {1, "Simple averaging "}, {2, "Median filter    "}, kChoiceEnd};

// ---- Camera page --------------------------------------------------------------------------

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
    {ColourMono, "Mono"},       {0xC0021201, "Bayer RGGB"}, {0xC0021202, "Bayer GRBG"},
    {0xC0021203, "Bayer GBRG"}, {0xC0021204, "Bayer BGGR"}, {ColourYuv, "YUV"},
    {ColourRgb, "RGB"},         kChoiceEnd};
inline constexpr Choice kHTapNumberChoices[] = {{1, "1"}, {2, "2"}, {3, "3"},  {4, "4"},
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

// Values the board accepts beyond the lists above.
inline constexpr uint32_t kHTapTypeUnlisted = 0xC0021403;
inline constexpr uint32_t kVTapDirectionConverging = 0xC0021603;

// ---- Acquisition trigger page -------------------------------------------------------------

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

inline constexpr Choice kAcqTrigSourceChoices[] = {
    {0xC0020413, "Opto 1"},           {0xC0020414, "Opto 2"},          {0xC0020401, "Opto A1"},
    {0xC0020402, "Opto A2"},          {0xC0020403, "Opto B1"},         {0xC0020404, "Opto B2"},
    {0xC0020415, "AuxIn 1"},          {0xC0020416, "AuxIn 2"},         {0xC002040F, "AuxIn A1"},
    {0xC0020410, "AuxIn A2"},         {0xC0020411, "AuxIn B1"},        {0xC0020412, "AuxIn B2"},
    {0xC0020417, "CtrlIn 1 (Frame)"}, {0xC0020418, "CtrlIn 2 (Line)"}, {0xC0020419, "CtrlIn 3 (Data)"},
    {0xC002041A, "CcIo 1"},           {0xC002041B, "CcIo 2"},          {0xC002040B, "CcIo A1"},
    {0xC002040C, "CcIo A2"},          {0xC002040D, "CcIo B1"},         {0xC002040E, "CcIo B2"},
    {TrigSourceInternalTimer, "Internal Timer"}, kChoiceEnd};
inline constexpr Choice kAcqTrigModeChoices[] = {
    {TrigModeNone, "No acquisition trigger"}, {0xC0020502, "First Positive Edge"},
    {0xC0020503, "First Negative Edge"},      {0xC0020504, "Each Positive Edge"},
    {0xC0020505, "Each Negative Edge"},       {0xC0020506, "First Positive Level"},
    {0xC0020507, "First Negative Level"},     {0xC0020508, "Each Positive Level"},
    {0xC0020509, "Each Negative Level"},      {0xC002050A, "Gated Positive Level"},
    {0xC002050B, "Gated Negative Level"},     kChoiceEnd};
inline constexpr Choice kAcqTrigAlignChoices[] = {{0xC0029001, "None"}, {0xC0029002, "Clock"},
                                                  {0xC0029003, "Line"}, {0xC0029004, "Frame"},
                                                  kChoiceEnd};
inline constexpr Choice kAcqTrigDelayTypeChoices[] = {
    {0xC0027801, "No delay"}, {0xC0027802, "Lines"}, {0xC0027803, "usecs"}, kChoiceEnd};
inline constexpr Choice kTimerPeriodUnitChoices[] = {{TimerUnitUsecs, "Time (usecs)"},
                                                     {TimerUnitDisabled, "Disabled"},
                                                     {TimerUnitLines, "Lines"},
                                                     kChoiceEnd};
inline constexpr Choice kEventCountSourceChoices[] = {
    {0xC0027A03, "Time (usecs)"}, {0xC0027A01, "Lines"}, {0xC0027A02, "Frames"}, kChoiceEnd};
inline constexpr Choice kEventGateChoices[] = {{0xC0027B04, "Lines"},
                                               {0xC0027B02, "Frames"},
                                               {0xC0027B01, "Acquisition Trigger"},
                                               {0xC0027B03, "Acquisition"},
                                               kChoiceEnd};
inline constexpr Choice kChannelSyncChoices[] = {
    {0xC0029901, "No Syncing"}, {0xC0029902, "Channels Synced"}, kChoiceEnd};

// Acquisition-trigger modes by behaviour.
constexpr bool trigger_mode_each(uint32_t mode) {
  return mode == 0xC0020504 || mode == 0xC0020505 || mode == 0xC0020508 || mode == 0xC0020509;
}

// ---- Exposure page ------------------------------------------------------------------------

inline constexpr uint32_t ParamExpTrigSource = 0xC0027200;
inline constexpr uint32_t ParamExpTimer1 = 0xC0027400;
inline constexpr uint32_t ParamExpTimer2 = 0xC0027600;
inline constexpr uint32_t ExpTrigSoftware = 0xC0027204;

inline constexpr Choice kExpTrigSourceChoices[] = {
    {0xC0027203, "No Trigger"},           {0xC0027202, "Acquisition Trigger"},
    {ExpTrigSoftware, "Software Trigger"}, {0xC0027209, "Internal Timer"},
    {0xC0027205, "AuxIn 1 Rising Edge"},  {0xC0027206, "AuxIn 1 Falling Edge"},
    {0xC0027207, "AuxIn 2 Rising Edge"},  {0xC0027208, "AuxIn 2 Falling Edge"},
    kChoiceEnd};

// ---- ROI page -----------------------------------------------------------------------------

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

inline constexpr Choice kSubsampleChoices[] = {{0xC0020701, "x 1"}, {0xC0020702, "x 2"},
                                               {0xC0020703, "x 4"}, {0xC0020704, "x 8"},
                                               kChoiceEnd};
inline constexpr Choice kInterlaceModeChoices[] = {
    {0xC0020601, "Interleave 1 and 2"},   {0xC0020602, "Interleave 2 and 1"},
    {0xC0020608, "Line double 1 then 2"}, {0xC0020609, "Line double 2 then 1"},
    {0xC002060A, "Line double next"},     {0xC002060B, "Line double 1 only"},
    {0xC002060C, "Line double 2 only"},   {0xC0020603, "Field 1 then 2"},
    {0xC0020604, "Field 2 then 1"},       {0xC0020607, "Field next"},
    {0xC0020605, "Field 1 only"},         {0xC0020606, "Field 2 only"},
    kChoiceEnd};

// Interlace modes that store one field per buffer (half the lines).
constexpr bool interlace_mode_is_field(uint32_t mode) {
  return mode >= 0xC0020603 && mode <= 0xC0020607;
}

// ---- Communications page ------------------------------------------------------------------

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

inline constexpr Choice kCommsBaudChoices[] = {
    {300, "300"},     {600, "600"},       {1200, "1200"},     {2400, "2400"},
    {4800, "4800"},   {9600, "9600"},     {19200, "19200"},   {38400, "38400"},
    {57600, "57600"}, {115200, "115200"}, {230400, "230400"}, kChoiceEnd};
inline constexpr Choice kCommsDataBitsChoices[] = {
    {0xC0021C01, "5"}, {0xC0021C02, "6"}, {0xC0021C03, "7"}, {0xC0021C04, "8"}, kChoiceEnd};
inline constexpr Choice kCommsFlowChoices[] = {{0xC0021D01, "None"},
                                               {0xC0021D02, "Hardware (rts/cts)"},
                                               {0xC0021D03, "Software (xon/xoff)"},
                                               kChoiceEnd};
inline constexpr Choice kCommsParityChoices[] = {
    {0xC0022001, "None"}, {0xC0022002, "Even"}, {0xC0022003, "Odd"}, kChoiceEnd};
inline constexpr Choice kCommsStopBitsChoices[] = {
    {0xC0022301, "1"}, {0xC0022302, "1.5"}, {0xC0022303, "2"}, kChoiceEnd};
// Line ending the Comms page appends when it sends: a page setting, not a board parameter.
inline constexpr Choice kCommsLineEndingChoices[] = {
    {0, "CRLF"}, {1, "CR"}, {2, "LF"}, {3, "None"}, kChoiceEnd};

// ---- CoaXPress page -----------------------------------------------------------------------

inline constexpr uint32_t ParamCxpLinkSpeed = 0xC0091000;
inline constexpr uint32_t ParamCxpLinkCount = 0xC0091200;
inline constexpr uint32_t ParamCxpPower = 0xC0091100;
inline constexpr uint32_t ParamCxpCurrentSpeed = 0xC0090200;  // read only
inline constexpr uint32_t ParamCxpCurrentLinks = 0xC0090400;  // read only
inline constexpr uint32_t ParamCxpDiscovery = 0xC0090100;     // read only: 1 camera found, 0 none

inline constexpr uint32_t CxpSpeedAutomatic = 0xC0091001;
inline constexpr uint32_t CxpLinksAutomatic = 0xC0091201;
inline constexpr uint32_t CxpPowerAutomatic = 0xC0091101;
inline constexpr uint32_t CxpPowerOff = 0xC0091102;
inline constexpr uint32_t CxpPowerTripReset = 0xC0091103;
inline constexpr uint32_t CxpPowerForceOn = 0xC0091104;

inline constexpr Choice kCxpLinkSpeedChoices[] = {
    {CxpSpeedAutomatic, "Automatic"}, {0xC0091002, "1.25 Gbps"}, {0xC0091003, "2.5 Gbps"},
    {0xC0091004, "3.125 Gbps"},       {0xC0091005, "5 Gbps"},    {0xC0091006, "6.25 Gbps"},
    kChoiceEnd};
inline constexpr Choice kCxpLinkCountChoices[] = {{CxpLinksAutomatic, "Automatic"},
                                                  {0xC0091202, "1 Link"},
                                                  {0xC0091203, "2 Links"},
                                                  {0xC0091204, "4 Links"},
                                                  kChoiceEnd};
inline constexpr Choice kCxpPowerChoices[] = {{CxpPowerAutomatic, "Automatic"},
                                              {CxpPowerOff, "Power Off"},
                                              {CxpPowerTripReset, "Trip Reset"},
                                              {CxpPowerForceOn, "Force On"},
                                              kChoiceEnd};

// ---- PoCL and output ports ----------------------------------------------------------------

inline constexpr uint32_t ParamPowerOutput = 0xC0023E00;
inline constexpr uint32_t ParamPowerOutputSet = 0xC0023E01;
inline constexpr uint32_t ParamPoclSenseEnable = 0xC0024700;
inline constexpr uint32_t ParamPoclSense = 0xC0024801;  // 1 while detecting, 2 otherwise
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
    VRX_EVENT_END_OF_LINE | VRX_EVENT_ACQ_TRIG_START | VRX_EVENT_ACQ_TRIG_END |
    VRX_EVENT_TIMEOUT | VRX_EVENT_GLOBAL_ENABLE;

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
    TestPciWalk, TestPciVoltage, TestPciWidth, TestPciClock, TestFlash, TestZbt,
    TestOutputWalk, TestDataPath, TestCcWalk, TestOptoWalk, TestChain};

}  // namespace vrx
