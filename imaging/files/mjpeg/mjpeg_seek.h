// Moving a reading MJPEG stream over whole records: by the record lengths stored in the comments,
// or by searching the comment markers where a length is not known.
#pragma once

#include "imaging/files/mjpeg/mjpeg_slots.h"

#include <cstdint>
#include <cstdio>
#include <optional>

namespace vrc::files::mjpeg {

// Offset of the first FF FE at or after `from` (before `end`), or nothing.
std::optional<uint64_t> find_marker_forwards(std::FILE *file, uint64_t from, uint64_t end);

// Each moves the slot's stream over `count` records, to the start of a record (or, forwards past
// the last record, to the end of the file), keeping the slot's frame bookkeeping. A failure is
// reported under `function_name` and leaves the stream where it stood.
uint32_t skip_forwards(const char *function_name, Slot &slot, uint32_t count);
uint32_t skip_backwards(const char *function_name, Slot &slot, uint32_t count);
uint32_t scan_forwards(const char *function_name, Slot &slot, uint32_t count);
uint32_t scan_backwards(const char *function_name, Slot &slot, uint32_t count);

}  // namespace vrc::files::mjpeg
