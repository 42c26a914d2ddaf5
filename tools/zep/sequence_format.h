// zep seq: the sequence file formats behind one small interface. Each format is one row of the
// table in sequence_formats.cpp and one adapter over the library's handle calls; the commands
// see only these classes.
#pragma once

#include "vrcw32/zep.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zep_tool {

// What a reader tells of the frame it read last.
struct FrameInfo {
  uint32_t number = 0;     // from 1
  int64_t time_stamp = 0;  // seconds since 1970, as stored
  uint64_t bytes = 0;      // frame data stored in the file
};

class SequenceReader {
 public:
  virtual ~SequenceReader() = default;
  virtual uint32_t frame_count() const = 0;
  // An image whose parameters describe the frames (type, width, height, depth).
  virtual uint32_t geometry() const = 0;
  // Reads frame `number` (1..frame_count) into `image` as one strip; false when the library
  // refused (it has reported why).
  virtual bool read(uint32_t number, uint32_t image) = 0;
  virtual FrameInfo last_frame() const = 0;
};

// Options of a file being written.
struct WriteOptions {
  std::optional<uint16_t> quality;  // compressed formats only
};

class SequenceWriter {
 public:
  virtual ~SequenceWriter() = default;
  // Appends `image` (one strip of all lines) as the next frame.
  virtual bool write(uint32_t image) = 0;
  // Closes the file; `frames_in_file` is what it then holds.
  virtual bool finish(uint32_t &frames_in_file) = 0;
  // The pixel format the frames of `image` read back as.
  virtual uint32_t stored_type(uint32_t image) const {
    return ZEP_image_get_parameter(image, ZEP_IMAGE_TYPE);
  }
};

struct SequenceFormat {
  const char *name;       // as the user reads it: "MRAW"
  const char *extension;  // of files written: "mraw"
  bool takes_quality;     // whether --quality applies
  // Why a finished file may hold fewer frames than were written; null when it never does.
  const char *shortfall_reason;
  // Whether the file's first bytes are this format's.
  bool (*recognise)(const std::string &path);
  // Null when the library refused (it has reported why).
  std::unique_ptr<SequenceReader> (*open)(const std::string &path);
  std::unique_ptr<SequenceWriter> (*create)(const std::string &path, const WriteOptions &options);
};

// The format of the file at `path` by its content, or null.
const SequenceFormat *sequence_format_of_file(const std::string &path);
// The format that `path`'s extension names, or null.
const SequenceFormat *sequence_format_of_name(std::string_view path);
// "MRAW", "MRAW or MJPEG", ... for messages; with extensions: "MRAW .mraw", ...
std::string sequence_format_names(bool with_extensions);

// The table's rows, one per format.
const SequenceFormat &mraw_sequence_format();
const SequenceFormat &mjpeg_sequence_format();

}  // namespace zep_tool
