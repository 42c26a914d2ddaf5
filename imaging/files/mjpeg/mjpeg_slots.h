// The MJPEG handle table: eight slots, each the public handle record plus what only the library
// keeps (whether the file is read or written, where the stream stands among the records).
#pragma once

#include "vrcw32/zep_mjpeg.h"

#include <cstdint>

namespace vrc::files::mjpeg {

namespace message {
inline constexpr char kNoHandles[] = "Run out of MJPEG handles";
inline constexpr char kCreateFailed[] = "Failed to create file";
inline constexpr char kBufferFailed[] = "Failed to allocate JPEG memory buffer";
inline constexpr char kBufferTooSmall[] = "Internal: ZEP_MJPEG_DATA_BUFFER_SIZE not large enough.";
inline constexpr char kExpectingFf[] = "Expecting 0xFF marker";
inline constexpr char kExpectingEoi[] = "Expecting EOI marker";
// Malformed files and calls that do not fit the handle.
inline constexpr char kNoComment[] = "MJPEG frame comment not found";
inline constexpr char kCommentLength[] = "MJPEG frame comment length is not 298";
inline constexpr char kNoScan[] = "MJPEG frame SOS marker not found";
inline constexpr char kDataLength[] = "MJPEG frame data length runs past the end of the file";
inline constexpr char kTruncated[] = "Unexpected end of file";
inline constexpr char kNoFrames[] = "MJPEG file holds no frames";
inline constexpr char kRecordLength[] = "MJPEG record length runs outside the file";
inline constexpr char kOutsideFile[] = "Frame position outside the file";
inline constexpr char kOpenForWriting[] = "MJPEG file is open for writing";
inline constexpr char kOpenForReading[] = "MJPEG file is open for reading";
inline constexpr char kGeometry[] = "Frame geometry differs from the first frame";
inline constexpr char kWriteFailed[] = "Failed to write MJPEG frame";
}  // namespace message

enum class Mode { Writing, Reading };

struct Slot {
  ZEP_MJPEG_RECORD record;
  Mode mode;
  uint64_t file_bytes;  // length of a file being read
  uint32_t next_frame;  // number of the record the stream stands at; 0 when not known
  bool after_read;      // the stream stands right after the record last read
  bool holds_frame;     // buffer 0 holds the data of record.frame_number
  // Geometry of the first frame written; later frames must match it.
  uint32_t width;
  uint32_t height;
  uint16_t type;
};

// Under the library lock, takes the lowest free slot, clears it, marks it in use, stores `path`
// (cut to the name field) and the handle in `handle_out`. Reports null arguments, and "Run out
// of MJPEG handles" when no slot is free.
uint32_t allocate_slot(const char *function_name, uint32_t *handle_out, const char *path, Mode mode,
                       Slot *&slot);

// The slot of a handle in use, or null for 0, 9 and above, or a free slot.
Slot *slot_in_use(uint32_t handle);

// Allocates both buffers of `size` bytes; reports under `function_name` when that fails.
uint32_t allocate_buffers(const char *function_name, ZEP_MJPEG_RECORD &record, uint32_t size);

// Frees the buffers, closes the stream, destroys the handle's JPEG image and frees the slot;
// false when closing the stream failed.
bool release_slot(Slot &slot);

}  // namespace vrc::files::mjpeg
