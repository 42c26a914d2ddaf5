// Inspection of a file's header before it is read: each format's inspector finds what the file
// holds that its reader would not read as the file means it, and either names a correction to
// make after the read or refuses with the feature's name. Tools use it through ZEP_file_inspect
// and ZEP_file_fix_up; the readers themselves keep their behaviour.
#pragma once

#include "vrcw32/zep_files.h"

#include <cstdint>
#include <cstdio>

namespace vrc::files {

class Inspection {
 public:
  explicit Inspection(ZEP_FILE_INSPECTION &out) : m_out(out) {}

  // The first refusal is kept: it names the cause a user meets first.
  [[gnu::format(printf, 2, 3)]] void refuse(const char *format, ...);
  // One warning line, dropped when the record is full.
  [[gnu::format(printf, 2, 3)]] void warn(const char *format, ...);
  void fix(uint32_t fix_up) { m_out.fix_ups |= fix_up; }
  // Entry `index` of the corrected colour map (ZEP_FIX_COLOUR_MAP).
  void set_colour(uint32_t index, uint8_t red, uint8_t green, uint8_t blue);
  bool refused() const { return m_out.refused != 0; }

  // Warns when the pixels lie past the end of the file: `needed` bytes from `offset`, in a file
  // of `file_bytes`.
  void check_pixels_present(uint64_t offset, uint64_t needed, uint64_t file_bytes);
  // Warns when only `present` of the `needed` pixel bytes are in the file.
  void warn_missing_pixels(uint64_t present, uint64_t needed);
  // Refuses an image without pixels.
  void check_has_pixels(uint64_t width, uint64_t height);

 private:
  ZEP_FILE_INSPECTION &m_out;
};

// The bytes of an open file; its position is kept.
uint64_t stream_size(std::FILE *file);

// Each format's inspector: true when the stream, at its first byte, holds that format or a
// variant of it the reader does not take (BigTIFF for TIFF).
bool inspect_bmp(std::FILE *file, Inspection &inspection);
bool inspect_tiff(std::FILE *file, Inspection &inspection);
bool inspect_eps(std::FILE *file, Inspection &inspection);

}  // namespace vrc::files
