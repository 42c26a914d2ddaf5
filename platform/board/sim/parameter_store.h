// The values of one open channel's stored parameters, validated on write, with the dependent
// values kept consistent: the destination buffer follows the source region, subsampling, binning,
// interlacing and capture format; the capture format follows the camera's depth and colours.
#pragma once

#include <cstdint>
#include <map>

namespace vrxsim {

// Where and how a frame lands in a capture buffer.
struct CaptureGeometry {
  uint32_t width = 0;           // pixels captured per line
  uint32_t height = 0;          // lines captured
  uint32_t bytes_per_line = 0;  // destination line length (stride)
  uint32_t buffer_lines = 0;    // destination lines
  uint32_t x_offset_bytes = 0;  // where a captured line starts within its destination line
  uint32_t y_offset = 0;        // first destination line written
  uint32_t format = 0;          // capture format code
  uint32_t bayer_type = 0;      // camera colour type
};

class ParameterStore {
 public:
  ParameterStore();

  // VRX_OK, VRX_ERR_BAD_PARAMETER (not a stored parameter), VRX_ERR_WRITE_ONLY.
  uint32_t get(uint32_t id, uint32_t& value) const;
  // VRX_OK, VRX_ERR_BAD_PARAMETER, VRX_ERR_BAD_VALUE, VRX_ERR_READ_ONLY.
  uint32_t set(uint32_t id, uint32_t value);
  // Stores without validation or consistency rules.
  void force(uint32_t id, uint32_t value);
  // The stored value of a known parameter (0 for an unknown id).
  uint32_t value(uint32_t id) const;

  CaptureGeometry geometry() const;

 private:
  uint32_t derived_width() const;
  uint32_t derived_height() const;
  void follow_depth_and_colour();
  void follow_width();
  void follow_height();

  std::map<uint32_t, uint32_t> m_values;
};

// The format a camera of this depth and colour type naturally delivers.
uint32_t natural_capture_format(uint32_t depth, uint32_t colour);

}  // namespace vrxsim
