// Pieces every file format shares: the messages of the file functions, the checks made before
// reading or writing pixels, the end of a call after the header, and bounded access to the bytes
// of an image's current strip (nothing is ever read or written outside the strip buffer).
#pragma once

#include "imaging/files/file_stream.h"
#include "vrcw32/zep_core.h"

#include <array>
#include <cstdint>
#include <span>

namespace vrc::files {

namespace message {
inline constexpr char kOpenFailed[] = "Failed to open file";
inline constexpr char kCreateFailed[] = "Failed to create file";
inline constexpr char kCloseFailed[] = "Failed to close file";
inline constexpr char kSeekFailed[] = "fseek failed";
inline constexpr char kCorruptImage[] = "Corrupt image";
inline constexpr char kCheckFailed[] = "ZEP_image_check failed";
inline constexpr char kUnsupportedFormat[] = "Unsupported image format";
// A header whose dimensions need far more bytes than the file holds.
inline constexpr char kDataPastEnd[] = "Image data runs past end of file";
}  // namespace message

// Stdio buffer given to files being written, in bytes.
inline constexpr std::size_t kWriteBufferBytes = 16384;

// Runs ZEP_image_check on `handle`; a failure (also an unknown handle) is reported as
// "Corrupt image" under `function_name`.
uint32_t check_image(const char *function_name, uint32_t handle);

// check_image on an image about to be written; on success `image` is the record.
uint32_t check_image_to_write(const char *function_name, uint32_t handle, ZEP_IMAGE *&image);

// The record of an image about to be read into; an unknown handle is reported.
uint32_t find_image_to_read(const char *function_name, uint32_t handle, ZEP_IMAGE *&image);

// Runs ZEP_image_check after a header was read; a failure is reported as "ZEP_image_check failed".
uint32_t check_read_header(const char *function_name, uint32_t handle);

// Closes `file`, reporting "Failed to close file" when that fails.
uint32_t close_file(const char *function_name, File &file);

// Ends a call that does not transfer pixels: action 4 closes the file, any other action leaves it
// open in `slot`.
uint32_t finish_without_data(const char *function_name, File &file, OpenSlot slot, uint16_t action);

// Pixel bytes a header may describe beyond what its file holds. A truncated file is read as far
// as it goes (the rest of the strip stays zero), but a header whose strip the file cannot begin
// to back is refused before anything that large is allocated.
inline constexpr uint64_t kMaxUnbackedBytes = uint64_t{16} << 20;

// Fails with "Image data runs past end of file" when `needed` bytes exceed both `available` and
// kMaxUnbackedBytes.
uint32_t check_fits_in_file(const char *function_name, uint64_t needed, uint64_t available);

// A strip allocated for a file's pixels may exceed the bytes read for it by this factor at most
// (a 4-bit palette pixel becomes one byte) before the file is taken to describe far more pixels
// than it holds.
inline constexpr uint64_t kMaxStripExpansion = 2;

// check_fits_in_file for a header just read into `image`: both the `read_bytes` the reader will
// take from the file and the strip it will allocate (lines_this_strip x bytes_per_line) must be
// backed by the file, the strip within kMaxStripExpansion times the file's size.
uint32_t check_strip_fits_in_file(const char *function_name, const ZEP_IMAGE &image,
                                  uint64_t read_bytes, uint64_t available);

// Frees the image's data and allocates one zero-filled strip of lines_this_strip lines.
uint32_t allocate_strip(uint32_t handle);

// The start of a reader's pixel transfer: check_strip_fits_in_file for the `needed` pixel bytes
// of a file of `available` bytes, then allocate_strip.
uint32_t allocate_backed_strip(const char *function_name, uint32_t handle, uint64_t needed,
                               uint64_t available);

// The bytes [offset, offset + count) of the image's current strip, cut to the strip buffer.
std::span<uint8_t> strip_range(const ZEP_IMAGE &image, uint64_t offset, uint64_t count);

// Line `line` of the current strip (bytes_per_line bytes), cut to the strip buffer.
inline std::span<uint8_t> strip_line(const ZEP_IMAGE &image, uint64_t line) {
  return strip_range(image, line * image.bytes_per_line, image.bytes_per_line);
}

// Byte positions, inside one source pixel, of the three bytes written per destination pixel.
using ByteOrder = std::array<uint8_t, 3>;
inline constexpr ByteOrder kSameOrder = {0, 1, 2};
inline constexpr ByteOrder kReversedOrder = {2, 1, 0};

// Writes `pixels` 3-byte pixels into `target`, byte k of pixel x taken from
// source[x * source_step + order[k]]; bytes missing from either span are skipped or zero.
void repack_pixels(std::span<const uint8_t> source, uint32_t source_step, ByteOrder order,
                   std::span<uint8_t> target, uint64_t pixels);

// Writes `bytes` to `file` (nothing for an empty span, whose data may be null).
void write_bytes(std::FILE *file, std::span<const uint8_t> bytes);

// Copies as much of `source` as fits into `target` and zero-fills the rest of `target`.
void copy_bounded(std::span<const uint8_t> source, std::span<uint8_t> target);

}  // namespace vrc::files
