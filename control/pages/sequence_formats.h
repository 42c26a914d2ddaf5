// What the Display page needs to know to save and load a sequence: how each capture format
// travels as an image of the imaging library, the file types of the save and load dialogs, the
// numbered file names, and the board-settings arithmetic of the display buffers (subsampling,
// binning, the capture formats a camera can fill).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vrc::pages {

// One capture format as saved and loaded. Several colour formats deliberately travel as 16-bit
// grey, two or three samples wide.
struct SequenceFormat {
  uint16_t save_type;        // pixel format the saved image has
  uint32_t bytes_per_pixel;  // used for the line-padding computation
  uint32_t width_times;      // the saved width is width x width_times / width_divided
  uint32_t width_divided;
  uint16_t load_type;  // pixel format a loaded JPEG is converted to; 0 when there is none
};

// The row of capture format code 0xC0022601 + k, or null for any other code.
const SequenceFormat *sequence_format(uint32_t capture_format);
uint32_t saved_width(const SequenceFormat &format, uint32_t width);
// The line alignment to give the saved image, or 0 to keep the image's default: when the
// pixels take fewer bytes than the line, 2^n with n one more than the halvings that bring half
// the difference below 2.
uint32_t saved_line_align(uint32_t line_length, uint32_t pixel_bytes);

struct SequenceFileType {
  const char *extension;  // without the dot
  uint16_t zep_format;    // ZEP_FILE_*
};
// By the 1-based filter index of the save or the load dialog.
SequenceFileType save_file_type(int filter_index);
SequenceFileType load_file_type(int filter_index);

// The file name of frame `frame` of first..last: the chosen name up to its extension, the
// number of the frame counted from 001 when first and last differ, and "." with `extension`
// when the chosen name had an extension.
std::string sequence_file_name(std::string_view chosen, uint32_t first, uint32_t last,
                               uint32_t frame, std::string_view extension);

// A size under a subsampling code (0xC0020701 .. 0xC0020704); nothing for any other code.
std::optional<uint32_t> subsampled_size(uint32_t size, uint32_t code);
// The capture format the Display page keeps for a camera of this depth and colour type.
uint32_t coerced_capture_format(uint32_t depth, uint32_t colour_type, uint32_t format);

}  // namespace vrc::pages
