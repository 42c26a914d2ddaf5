// The parameter table. Enumerated parameters take their accepted values from the same tables the
// pages show; the two values the pages leave out on purpose are accepted as extras.
#include "platform/board/sim/parameter_table.h"

#include <algorithm>
#include <array>

namespace vrxsim {
namespace {

using namespace vrx;

constexpr Access RW = Access::ReadWrite;
constexpr Access WO = Access::WriteOnly;

constexpr ParameterDefinition choice(uint32_t id, const char* key, std::span<const Choice> table,
                               uint32_t default_value, bool idle_only = false,
                               uint32_t extra = 0) {
  return {id, key, table, extra, extra, default_value, RW, idle_only, true};
}
constexpr ParameterDefinition range(uint32_t id, const char* key, uint32_t minimum, uint32_t maximum,
                              uint32_t default_value, bool idle_only = false) {
  return {id, key, {}, minimum, maximum, default_value, RW, idle_only, true};
}

constexpr Choice kOnOff[] = {{FlagOn, "On"}, {FlagOff, "Off"}, kChoiceEnd};
constexpr Choice kInterlaced[] = {{InterlacedOn, "On"}, {InterlacedOff, "Off"}, kChoiceEnd};
constexpr Choice kAcqModes[] = {{AcqModeContinuous, "Continuous"}, {AcqModeSingle, "Single"},
                                kChoiceEnd};
constexpr Choice kDstPtrTypes[] = {{DstPtrVirtual, "Virtual"}, {DstPtrPhysical, "Physical"},
                                   {DstPtrUser, "User"}, kChoiceEnd};
constexpr Choice kSense[] = {{1, "Detecting"}, {2, "Idle"}, kChoiceEnd};
constexpr Choice kAllCaptureFormats[] = {
    {capture_format(0), "0"},   {capture_format(1), "1"},   {capture_format(2), "2"},
    {capture_format(3), "3"},   {capture_format(4), "4"},   {capture_format(5), "5"},
    {capture_format(6), "6"},   {capture_format(7), "7"},   {capture_format(8), "8"},
    {capture_format(9), "9"},   {capture_format(10), "10"}, {capture_format(11), "11"},
    {capture_format(12), "12"}, {capture_format(13), "13"}, {capture_format(14), "14"},
    {capture_format(15), "15"}, {capture_format(16), "16"}, {capture_format(17), "17"},
    {capture_format(18), "18"}, {capture_format(19), "19"}, {capture_format(20), "20"},
    {capture_format(21), "21"}, {capture_format(22), "22"}, {capture_format(23), "23"},
    {capture_format(24), "24"}, {capture_format(25), "25"}, {capture_format(26), "26"},
    {capture_format(27), "27"}, {capture_format(28), "28"}, {capture_format(29), "29"},
    {capture_format(30), "30"}, {capture_format(31), "31"}, kChoiceEnd};

constexpr ParameterDefinition kDefinitions[] = {
    // Camera description
    choice(ParamCameraType, "CameraType", kCameraTypeChoices, 0xC0021903, true),
    choice(ParamClockPolarity, "ClockPolarity", kClockPolarityChoices, 0xC0020E01),
    choice(ParamCameraDepth, "CameraDepth", kCameraDepthChoices, 8, true),
    choice(ParamCameraColour, "CameraColour", kCameraColourChoices, ColourMono, true),
    range(ParamActiveXOffset, "ActiveXOffset", 0, 16383, 0, true),
    range(ParamActiveYOffset, "ActiveYOffset", 0, 16383, 0, true),
    range(ParamActiveXLength, "ActiveXLength", 1, 16384, 640, true),
    range(ParamActiveYLength, "ActiveYLength", 1, 16384, 480, true),
    choice(ParamHTapNumber, "HTapNumber", kHTapNumberChoices, 1),
    choice(ParamHTapDirection, "HTapDirection", kHTapDirectionChoices, 0xC0021301),
    choice(ParamHTapType, "HTapType", kHTapTypeChoices, 0xC0021401, false, kHTapTypeUnlisted),
    choice(ParamHTapOrder, "HTapOrder", kHTapOrderChoices, 0xC0027C01),
    choice(ParamVTapNumber, "VTapNumber", kVTapNumberChoices, 1),
    choice(ParamVTapDirection, "VTapDirection", kVTapDirectionChoices, 0xC0021601, false,
           kVTapDirectionConverging),
    choice(ParamVTapType, "VTapType", kVTapTypeChoices, 0xC0021701),
    choice(ParamVTapOrder, "VTapOrder", kVTapOrderChoices, 0xC0027D01),
    choice(ParamDataValidEnable, "DataValidEnable", kOnOff, FlagOff),
    choice(ParamCameraInterlaced, "CameraInterlaced", kInterlaced, InterlacedOff, true),
    // Acquisition trigger
    choice(ParamAcqTrigSource, "AcqTrigSource", kAcqTrigSourceChoices, 0xC0020413),
    choice(ParamAcqTrigMode, "AcqTrigMode", kAcqTrigModeChoices, TrigModeNone),
    choice(ParamAcqTrigAlign, "AcqTrigAlign", kAcqTrigAlignChoices, 0xC0029002),
    range(ParamAcqTrigDelay, "AcqTrigDelay", 0, 1000000, 1),
    choice(ParamAcqTrigDelayType, "AcqTrigDelayType", kAcqTrigDelayTypeChoices, 0xC0027801),
    range(ParamTimerPeriod, "TimerPeriod", 1, 10000000, 1000),
    choice(ParamTimerPeriodUnit, "TimerPeriodUnit", kTimerPeriodUnitChoices, TimerUnitDisabled),
    choice(ParamEventCountSource, "EventCountSource", kEventCountSourceChoices, 0xC0027A01),
    choice(ParamEventGate, "EventGate", kEventGateChoices, 0xC0027B02),
    choice(ParamChainEnable, "ChainEnable", kOnOff, FlagOff),
    choice(ParamChannelSync, "ChannelSync", kChannelSyncChoices, 0xC0029901),
    // Exposure
    choice(ParamExpTrigSource, "ExpTrigSource", kExpTrigSourceChoices, 0xC0027203),
    range(ParamExpTimer1, "ExpTimer1", 1, 0xFFFFFFFF, 1000),
    range(ParamExpTimer2, "ExpTimer2", 1, 0xFFFFFFFF, 1000),
    // Region of interest and destination
    range(ParamSrcXOffset, "SrcXOffset", 0, 16383, 0, true),
    range(ParamSrcYOffset, "SrcYOffset", 0, 16383, 0, true),
    range(ParamSrcXLength, "SrcXLength", 1, 16384, 640, true),
    range(ParamSrcYLength, "SrcYLength", 1, 16384, 480, true),
    choice(ParamSubsamplePixel, "SubsamplePixel", kSubsampleChoices, 0xC0020701, true),
    choice(ParamSubsampleLine, "SubsampleLine", kSubsampleChoices, 0xC0020701, true),
    range(ParamBinPixel, "BinPixel", 1, 16, 1, true),
    range(ParamBinLine, "BinLine", 1, 16, 1, true),
    range(ParamDstXOffset, "DstXOffset", 0, 16383, 0, true),
    range(ParamDstYOffset, "DstYOffset", 0, 16383, 0, true),
    range(ParamDstXLength, "DstXLength", 1, 0x40000, 640, true),
    range(ParamDstYLength, "DstYLength", 1, 16384, 480, true),
    choice(ParamInterlaceMode, "InterlaceMode", kInterlaceModeChoices, 0xC0020601, true),
    // Capture
    choice(ParamAcqMode, "AcqMode", kAcqModes, AcqModeContinuous, true),
    range(ParamBufferCount, "BufferCount", 1, kMaxBufferCount, 4, true),
    choice(ParamCaptureFormat, "CaptureFormat", kAllCaptureFormats, capture_format(0), true),
    choice(ParamDstPtrType, "DstPtrType", kDstPtrTypes, DstPtrVirtual, true),
    range(ParamAcqEnableMask, "AcqEnableMask", 0, 0xFFFFFF, 0xFFFFFF),
    // Interrupts
    range(ParamBufferReadyCount, "BufferReadyCount", 1, 1024, 1),
    range(ParamDmaTimeout, "DmaTimeout", 0, 600000, 1000),
    // Serial link
    choice(ParamCommsBaud, "CommsBaud", kCommsBaudChoices, 9600),
    choice(ParamCommsDataBits, "CommsDataBits", kCommsDataBitsChoices, 0xC0021C04),
    choice(ParamCommsFlow, "CommsFlow", kCommsFlowChoices, 0xC0021D01),
    choice(ParamCommsParity, "CommsParity", kCommsParityChoices, 0xC0022001),
    choice(ParamCommsStopBits, "CommsStopBits", kCommsStopBitsChoices, 0xC0022301),
    // CoaXPress
    choice(ParamCxpLinkSpeed, "CxpLinkSpeed", kCxpLinkSpeedChoices, CxpSpeedAutomatic),
    choice(ParamCxpLinkCount, "CxpLinkCount", kCxpLinkCountChoices, CxpLinksAutomatic),
    choice(ParamCxpPower, "CxpPower", kCxpPowerChoices, CxpPowerAutomatic),
    // PoCL
    ParameterDefinition{ParamPoclSenseEnable, "PoclSenseEnable", {}, 0, 1, 0, RW, false, false},
    ParameterDefinition{ParamPoclSense, "PoclSense", kSense, 0, 0, 2, RW, false, false},
    // Commit of the settings: accepted, nothing stored
    ParameterDefinition{ParamApplySettings, "ApplySettings", {}, 0, 0xFFFFFFFF, 0, WO, false, false},
};

}  // namespace

std::span<const ParameterDefinition> parameter_definitions() { return kDefinitions; }

const ParameterDefinition* find_parameter(uint32_t id) {
  auto it = std::find_if(std::begin(kDefinitions), std::end(kDefinitions), [id](const ParameterDefinition& s) { return s.id == id; });
  return it == std::end(kDefinitions) ? nullptr : &*it;
}

const ParameterDefinition* find_parameter_by_key(std::string_view key) {
  auto it = std::find_if(std::begin(kDefinitions), std::end(kDefinitions),
                         [key](const ParameterDefinition& s) { return key == s.key; });
  return it == std::end(kDefinitions) ? nullptr : &*it;
}

uint32_t validate_value(const ParameterDefinition& definition, uint32_t value) {
  if (definition.choices.empty())
    return value >= definition.minimum && value <= definition.maximum ? VRX_OK : VRX_ERR_BAD_VALUE;
  if (definition.minimum != 0 && value == definition.minimum) return VRX_OK;
  for (const Choice& row : rows_of(definition.choices))
    if (row.value == value) return VRX_OK;
  return VRX_ERR_BAD_VALUE;
}

}  // namespace vrxsim
