// The parameter table. Enumerated parameters take their accepted values from the board's value
// sets in vrx_params.h.
#include "platform/board/sim/parameter_table.h"

#include <algorithm>
#include <array>

namespace vrxsim {
namespace {

using namespace vrx;

constexpr Access RW = Access::ReadWrite;
constexpr Access WO = Access::WriteOnly;

constexpr ParameterDefinition choice(uint32_t id, const char *key, std::span<const uint32_t> values,
                                     uint32_t default_value, bool idle_only = false) {
  return {id, key, values, 0, 0, default_value, RW, idle_only, true};
}
constexpr ParameterDefinition range(uint32_t id, const char *key, uint32_t minimum,
                                    uint32_t maximum, uint32_t default_value,
                                    bool idle_only = false) {
  return {id, key, {}, minimum, maximum, default_value, RW, idle_only, true};
}

constexpr uint32_t kOnOff[] = {FlagOn, FlagOff};
constexpr uint32_t kInterlaced[] = {InterlacedOn, InterlacedOff};
constexpr uint32_t kAcqModes[] = {AcqModeContinuous, AcqModeSingle};
constexpr uint32_t kDstPtrTypes[] = {DstPtrVirtual, DstPtrPhysical, DstPtrUser};
constexpr uint32_t kSense[] = {1, 2};  // detecting, idle

constexpr ParameterDefinition kDefinitions[] = {
    // Camera description
    choice(ParamCameraType, "CameraType", kCameraTypeValues, 0xC0021903, true),
    choice(ParamClockPolarity, "ClockPolarity", kClockPolarityValues, 0xC0020E01),
    choice(ParamCameraDepth, "CameraDepth", kCameraDepthValues, 8, true),
    choice(ParamCameraColour, "CameraColour", kCameraColourValues, ColourMono, true),
    range(ParamActiveXOffset, "ActiveXOffset", 0, 16383, 0, true),
    range(ParamActiveYOffset, "ActiveYOffset", 0, 16383, 0, true),
    range(ParamActiveXLength, "ActiveXLength", 1, 16384, 640, true),
    range(ParamActiveYLength, "ActiveYLength", 1, 16384, 480, true),
    choice(ParamHTapNumber, "HTapNumber", kHTapNumberValues, 1),
    choice(ParamHTapDirection, "HTapDirection", kHTapDirectionValues, 0xC0021301),
    choice(ParamHTapType, "HTapType", kHTapTypeValues, 0xC0021401),
    choice(ParamHTapOrder, "HTapOrder", kHTapOrderValues, 0xC0027C01),
    choice(ParamVTapNumber, "VTapNumber", kVTapNumberValues, 1),
    choice(ParamVTapDirection, "VTapDirection", kVTapDirectionValues, 0xC0021601),
    choice(ParamVTapType, "VTapType", kVTapTypeValues, 0xC0021701),
    choice(ParamVTapOrder, "VTapOrder", kVTapOrderValues, 0xC0027D01),
    choice(ParamDataValidEnable, "DataValidEnable", kOnOff, FlagOff),
    choice(ParamCameraInterlaced, "CameraInterlaced", kInterlaced, InterlacedOff, true),
    // Acquisition trigger
    choice(ParamAcqTrigSource, "AcqTrigSource", kAcqTrigSourceValues, 0xC0020413),
    choice(ParamAcqTrigMode, "AcqTrigMode", kAcqTrigModeValues, TrigModeNone),
    choice(ParamAcqTrigAlign, "AcqTrigAlign", kAcqTrigAlignValues, 0xC0029002),
    range(ParamAcqTrigDelay, "AcqTrigDelay", 0, 1000000, 1),
    choice(ParamAcqTrigDelayType, "AcqTrigDelayType", kAcqTrigDelayTypeValues, 0xC0027801),
    range(ParamTimerPeriod, "TimerPeriod", 1, 10000000, 1000),
    choice(ParamTimerPeriodUnit, "TimerPeriodUnit", kTimerPeriodUnitValues, TimerUnitDisabled),
    choice(ParamEventCountSource, "EventCountSource", kEventCountSourceValues, 0xC0027A01),
    choice(ParamEventGate, "EventGate", kEventGateValues, 0xC0027B02),
    choice(ParamChainEnable, "ChainEnable", kOnOff, FlagOff),
    choice(ParamChannelSync, "ChannelSync", kChannelSyncValues, 0xC0029901),
    // Exposure
    choice(ParamExpTrigSource, "ExpTrigSource", kExpTrigSourceValues, 0xC0027203),
    range(ParamExpTimer1, "ExpTimer1", 1, 0xFFFFFFFF, 1000),
    range(ParamExpTimer2, "ExpTimer2", 1, 0xFFFFFFFF, 1000),
    // Region of interest and destination
    range(ParamSrcXOffset, "SrcXOffset", 0, 16383, 0, true),
    range(ParamSrcYOffset, "SrcYOffset", 0, 16383, 0, true),
    range(ParamSrcXLength, "SrcXLength", 1, 16384, 640, true),
    range(ParamSrcYLength, "SrcYLength", 1, 16384, 480, true),
    choice(ParamSubsamplePixel, "SubsamplePixel", kSubsampleValues, 0xC0020701, true),
    choice(ParamSubsampleLine, "SubsampleLine", kSubsampleValues, 0xC0020701, true),
    range(ParamBinPixel, "BinPixel", 1, 16, 1, true),
    range(ParamBinLine, "BinLine", 1, 16, 1, true),
    range(ParamDstXOffset, "DstXOffset", 0, 16383, 0, true),
    range(ParamDstYOffset, "DstYOffset", 0, 16383, 0, true),
    range(ParamDstXLength, "DstXLength", 1, 0x40000, 640, true),
    range(ParamDstYLength, "DstYLength", 1, 16384, 480, true),
    choice(ParamInterlaceMode, "InterlaceMode", kInterlaceModeValues, 0xC0020601, true),
    // Capture
    choice(ParamAcqMode, "AcqMode", kAcqModes, AcqModeContinuous, true),
    range(ParamBufferCount, "BufferCount", 1, kMaxBufferCount, 4, true),
    choice(ParamCaptureFormat, "CaptureFormat", kCaptureFormatValues, capture_format(0), true),
    choice(ParamDstPtrType, "DstPtrType", kDstPtrTypes, DstPtrVirtual, true),
    range(ParamAcqEnableMask, "AcqEnableMask", 0, 0xFFFFFF, 0xFFFFFF),
    // Interrupts
    range(ParamBufferReadyCount, "BufferReadyCount", 1, 1024, 1),
    range(ParamDmaTimeout, "DmaTimeout", 0, 600000, 1000),
    // Serial link
    choice(ParamCommsBaud, "CommsBaud", kCommsBaudValues, 9600),
    choice(ParamCommsDataBits, "CommsDataBits", kCommsDataBitsValues, 0xC0021C04),
    choice(ParamCommsFlow, "CommsFlow", kCommsFlowValues, 0xC0021D01),
    choice(ParamCommsParity, "CommsParity", kCommsParityValues, 0xC0022001),
    choice(ParamCommsStopBits, "CommsStopBits", kCommsStopBitsValues, 0xC0022301),
    // CoaXPress
    choice(ParamCxpLinkSpeed, "CxpLinkSpeed", kCxpLinkSpeedValues, CxpSpeedAutomatic),
    choice(ParamCxpLinkCount, "CxpLinkCount", kCxpLinkCountValues, CxpLinksAutomatic),
    choice(ParamCxpPower, "CxpPower", kCxpPowerValues, CxpPowerAutomatic),
    // PoCL
    ParameterDefinition{ParamPoclSenseEnable, "PoclSenseEnable", {}, 0, 1, 0, RW, false, false},
    ParameterDefinition{ParamPoclSense, "PoclSense", kSense, 0, 0, 2, RW, false, false},
    // Commit of the settings: accepted, nothing stored
    ParameterDefinition{
        ParamApplySettings, "ApplySettings", {}, 0, 0xFFFFFFFF, 0, WO, false, false},
};

}  // namespace

std::span<const ParameterDefinition> parameter_definitions() { return kDefinitions; }

const ParameterDefinition *find_parameter(uint32_t id) {
  auto it = std::find_if(std::begin(kDefinitions), std::end(kDefinitions),
                         [id](const ParameterDefinition &s) { return s.id == id; });
  return it == std::end(kDefinitions) ? nullptr : &*it;
}

const ParameterDefinition *find_parameter_by_key(std::string_view key) {
  auto it = std::find_if(std::begin(kDefinitions), std::end(kDefinitions),
                         [key](const ParameterDefinition &s) { return key == s.key; });
  return it == std::end(kDefinitions) ? nullptr : &*it;
}

uint32_t validate_value(const ParameterDefinition &definition, uint32_t value) {
  if (definition.values.empty())
    return value >= definition.minimum && value <= definition.maximum ? VRX_OK : VRX_ERR_BAD_VALUE;
  return accepts(definition.values, value) ? VRX_OK : VRX_ERR_BAD_VALUE;
}

}  // namespace vrxsim
