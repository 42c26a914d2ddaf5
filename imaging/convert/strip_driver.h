// The strip protocol shared by every conversion member: a member is described by a table entry
// (names, output type, accepted sources, extra checks, the per-strip worker) and one driver runs
// the protocol with the member's process-wide state. Workers get the strip to convert and walk
// its lines with `for_each_row`, which keeps every row inside the source and destination strips.
#pragma once

#include "vrcw32/zep_convert.h"

#include <cstdint>
#include <functional>
#include <span>

namespace vrc::convert {

// Process-wide progress of one member.
struct StripState {
  bool busy = false;
  uint32_t lines_done = 0;  // source lines converted so far
};

// One strip handed to a worker: the source strip already cut to the lines to convert.
struct StripJob {
  uint32_t src_handle;
  uint32_t dst_handle;
  ZEP_IMAGE &src;
  ZEP_IMAGE &dst;
  uint32_t first_line;  // image line of the strip's first line
  const char *worker_name;
};

using Worker = uint32_t (*)(const StripJob &job);
// Extra source test; returns 0 or a code it has reported under `member_name`.
using SourceCheck = uint32_t (*)(const char *member_name, const ZEP_IMAGE &src);
// Output type chosen from the source (members whose output depends on it).
using OutputTypeOf = uint16_t (*)(uint32_t src_handle);

struct Member {
  const char *name;
  const char *worker_name;
  uint16_t output_type;
  std::span<const uint16_t> accepted;
  Worker worker;
  const char *corrupt_text = "Corrupt image";
  SourceCheck early_check = nullptr;  // right after the source's check (YUV members)
  SourceCheck late_check = nullptr;   // after the accepted-source test
  OutputTypeOf output_type_of = nullptr;
};

// Runs the strip protocol of `member` for (src, dst, mode).
uint32_t run_member(const Member &member, StripState &state, uint32_t src, uint32_t dst,
                    uint16_t mode);

// Frees the destination's data and allocates one strip for it; checks that the source has data.
uint32_t prepare_strip(const StripJob &job);

// Line geometry of a worker: where each row starts and how many bytes it reads and writes.
struct RowLayout {
  uint32_t src_stride;     // bytes from one source row to the next
  uint32_t src_row_bytes;  // bytes a row reads
  uint32_t dst_stride;
  uint32_t dst_row_bytes;  // bytes a row writes
};

// A layout that follows both images' bytes_per_line.
RowLayout padded_layout(const StripJob &job, uint32_t src_bytes_per_pixel,
                        uint32_t dst_bytes_per_pixel);

// Calls `row(src_row, dst_row, line_index)` for each line of the strip. A row that would reach
// past the end of a strip (strides that drift from bytes_per_line) reads zeros beyond the source
// and writes only the part of the destination inside it. Destination bytes that no row reaches
// are zeros.
void for_each_row(const StripJob &job, const RowLayout &layout,
                  const std::function<void(const uint8_t *, uint8_t *, uint32_t)> &row);

// Source check of members that read paletted sources: the map must exist.
uint32_t paletted_needs_map(const char *member_name, const ZEP_IMAGE &src);

// The 256-entry map of `image` as bytes, empty without one.
std::span<const uint8_t> colour_map_of(const ZEP_IMAGE &image);

bool type_in(uint16_t type, std::span<const uint16_t> types);

}  // namespace vrc::convert
