// The MRAW handle table: eight slots, each the public handle record plus what only the library
// keeps (whether the file is read or written, the image Open created, where the frames lie).
#pragma once

#include "vrcw32/zep_mraw.h"

#include <cstdint>

namespace vrc::files::mraw {

// "Failed to create file" and "Failed to close file" are the file functions' own
// (files::message).
namespace message {
inline constexpr char kNoHandles[] = "Run out of MRAW handles";
inline constexpr char kOpenFailed[] = "Failed to open MRAW file";
inline constexpr char kNotMraw[] = "The file is not recognised as a valid ZEP MRAW file.";
inline constexpr char kInvalidImage[] = "Invalid ZEP image";
// Malformed files.
inline constexpr char kPerFileTruncated[] = "MRAW per-file header is truncated";
inline constexpr char kPerFileLength[] = "MRAW per-file header length is invalid";
inline constexpr char kPerImageTruncated[] = "MRAW per-image header is truncated";
inline constexpr char kPerImageLength[] = "MRAW per-image header length is invalid";
inline constexpr char kStride[] = "MRAW frame stride does not match the image";
inline constexpr char kFileLength[] = "MRAW file length is not a whole number of frames";
inline constexpr char kFrameNumber[] = "MRAW frame number does not match its place in the file";
inline constexpr char kFrameTruncated[] = "MRAW frame data is truncated";
// Calls that do not fit the handle or the file.
inline constexpr char kOpenForWriting[] = "MRAW file is open for writing";
inline constexpr char kOpenForReading[] = "MRAW file is open for reading";
inline constexpr char kOutsideFile[] = "Frame position outside the file";
inline constexpr char kGeometry[] = "Frame geometry differs from the first frame";
inline constexpr char kNotOneStrip[] = "Image must hold all its lines in one strip";
inline constexpr char kWriteFailed[] = "Failed to write MRAW frame";
}  // namespace message

enum class Mode { Writing, Reading };

struct Slot {
  ZEP_MRAW_RECORD record;
  Mode mode;
  uint32_t own_image;   // the image Open created; Close destroys it (0 for a writer)
  uint64_t data_start;  // file offset of frame 1's record
  uint64_t file_bytes;  // length of a file being read
};

// Under the library lock, takes the lowest free slot, clears it, marks it in use, stores `path`
// (cut to the name field) and the handle in `handle_out`. Reports null arguments, and "Run out
// of MRAW handles" when no slot is free.
uint32_t allocate_slot(const char *function_name, uint32_t *handle_out, const char *path, Mode mode,
                       Slot *&slot);

// The slot of a handle in use, or null for 0, 9 and above, or a free slot.
Slot *slot_in_use(uint32_t handle);

// Closes the slot's stream, destroys the image Open created and frees the slot; false (slot
// kept) when closing the stream fails.
bool release_slot(Slot &slot);

}  // namespace vrc::files::mraw
