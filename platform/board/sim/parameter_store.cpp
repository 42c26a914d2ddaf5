// Parameter values and their consistency rules.
#include "platform/board/sim/parameter_store.h"

#include <algorithm>

#include "platform/board/sim/parameter_table.h"
#include "platform/board/sim/pixel_codec.h"

namespace vrxsim {
namespace {

using namespace vrx;

uint32_t subsample_factor(uint32_t code) {
  switch (code) {
    case 0xC0020702: return 2;
    case 0xC0020703: return 4;
    case 0xC0020704: return 8;
    default: return 1;
  }
}

bool is_one_of(uint32_t id, std::initializer_list<uint32_t> ids) {
  return std::find(ids.begin(), ids.end(), id) != ids.end();
}

uint32_t even(uint32_t n) { return (n + 1) & ~1u; }

}  // namespace

uint32_t natural_capture_format(uint32_t depth, uint32_t colour) {
  const bool bayer = colour >= ColourBayerRggb && colour <= ColourBayerBggr;
  if (colour == ColourYuv) return capture_format(29);
  if (colour == ColourRgb) return capture_format(depth > 8 ? 8 : 16);
  switch (depth) {
    case 8: return capture_format(bayer ? 21 : 0);
    case 10: return capture_format(bayer ? 22 : 18);
    case 12: return capture_format(bayer ? 23 : 19);
    case 14: return capture_format(bayer ? 24 : 20);
    case 16: return capture_format(bayer ? 25 : 1);
    default: return capture_format(2);
  }
}

ParameterStore::ParameterStore() {
  for (const ParameterDefinition& definition : parameter_definitions()) m_values[definition.id] = definition.default_value;
}

uint32_t ParameterStore::get(uint32_t id, uint32_t& value) const {
  const ParameterDefinition* definition = find_parameter(id);
  if (!definition) return VRX_ERR_BAD_PARAMETER;
  if (definition->access == Access::WriteOnly) return VRX_ERR_WRITE_ONLY;
  value = m_values.at(id);
  return VRX_OK;
}

uint32_t ParameterStore::set(uint32_t id, uint32_t value) {
  const ParameterDefinition* definition = find_parameter(id);
  if (!definition) return VRX_ERR_BAD_PARAMETER;
  if (definition->access == Access::ReadOnly) return VRX_ERR_READ_ONLY;
  if (uint32_t status = validate_value(*definition, value)) return status;
  if (definition->access == Access::WriteOnly) return VRX_OK;
  const uint32_t previous = m_values[id];
  m_values[id] = value;
  if (previous == value) return VRX_OK;
  if (is_one_of(id, {ParamCameraDepth, ParamCameraColour})) follow_depth_and_colour();
  if (is_one_of(id, {ParamActiveXLength, ParamSrcXOffset, ParamSrcXLength, ParamSubsamplePixel,
                     ParamBinPixel, ParamCaptureFormat, ParamDstXOffset, ParamCameraDepth,
                     ParamCameraColour}))
    follow_width();
  if (is_one_of(id, {ParamActiveYLength, ParamSrcYOffset, ParamSrcYLength, ParamSubsampleLine,
                     ParamBinLine, ParamCameraInterlaced, ParamInterlaceMode, ParamDstYOffset}))
    follow_height();
  return VRX_OK;
}

void ParameterStore::force(uint32_t id, uint32_t value) { m_values[id] = value; }

uint32_t ParameterStore::value(uint32_t id) const {
  auto it = m_values.find(id);
  return it == m_values.end() ? 0 : it->second;
}

uint32_t ParameterStore::derived_width() const {
  const uint32_t active = value(ParamActiveXLength);
  const uint32_t offset = std::min(value(ParamSrcXOffset), active - 1);
  const uint32_t source = std::min(value(ParamSrcXLength), active - offset);
  return std::max<uint32_t>(1, source / subsample_factor(value(ParamSubsamplePixel)) /
                                   std::max<uint32_t>(1, value(ParamBinPixel)));
}

uint32_t ParameterStore::derived_height() const {
  const uint32_t active = value(ParamActiveYLength);
  const uint32_t offset = std::min(value(ParamSrcYOffset), active - 1);
  uint32_t lines = std::min(value(ParamSrcYLength), active - offset) /
                   subsample_factor(value(ParamSubsampleLine)) /
                   std::max<uint32_t>(1, value(ParamBinLine));
  if (value(ParamCameraInterlaced) == InterlacedOn && interlace_mode_is_field(value(ParamInterlaceMode)))
    lines /= 2;
  return std::max<uint32_t>(1, lines);
}

void ParameterStore::follow_depth_and_colour() {
  m_values[ParamCaptureFormat] =
      natural_capture_format(value(ParamCameraDepth), value(ParamCameraColour));
}

void ParameterStore::follow_width() {
  m_values[ParamDstXLength] =
      even(line_bytes(value(ParamCaptureFormat), value(ParamDstXOffset) + derived_width()));
}

void ParameterStore::follow_height() {
  m_values[ParamDstYLength] = value(ParamDstYOffset) + derived_height();
}

CaptureGeometry ParameterStore::geometry() const {
  CaptureGeometry g;
  g.format = value(ParamCaptureFormat);
  g.bayer_type = value(ParamCameraColour);
  g.bytes_per_line = value(ParamDstXLength);
  g.buffer_lines = value(ParamDstYLength);
  g.y_offset = std::min(value(ParamDstYOffset), g.buffer_lines);
  const uint32_t x_offset = value(ParamDstXOffset);
  g.x_offset_bytes = std::min(line_bytes(g.format, x_offset), g.bytes_per_line);
  // As many pixels as fit in the destination line after the offset.
  uint32_t width = derived_width();
  while (width > 0 && line_bytes(g.format, x_offset + width) > g.bytes_per_line) --width;
  g.width = width;
  g.height = std::min(derived_height(), g.buffer_lines - g.y_offset);
  return g;
}

}  // namespace vrxsim
