// JPEG sequences: one JPEG header whose entropy data holds several frames, each ended by a
// restart marker (FF D0..FF D7, numbered in turn) and the last by EOI. Frames are counted, found
// and read in the file a header-only read left open; a sequence is built in memory by appending
// the data of JPEG images, and written as one file.
#include "imaging/core/handle_table.h"
#include "imaging/core/report.h"
#include "imaging/files/jpeg/jpeg_markers.h"
#include "imaging/files/jpeg/jpeg_state.h"
#include "vrcw32/zep_jpeg_files.h"

#include <cstring>
#include <vector>

namespace vrc::jpeg {
namespace {

constexpr char kSetStartName[] = "ZEP_JPEG_sequence_set_start_frame";
constexpr uint8_t kRestartMarkers = 8;

// A sequence image with its file open; reports what is missing under `function_name`.
JpegImage open_sequence(uint32_t handle, const char *function_name) {
  JpegImage sequence = jpeg_image_of(handle, function_name);
  if (sequence.record != nullptr && sequence.record->file == nullptr) {
    sequence.status = core::report(function_name, ZEP_ERR_STATE, "JPEG file not opened");
    sequence.record = nullptr;
  }
  return sequence;
}

// Reads on from the file's position to just past the next marker whose code satisfies `ends`;
// false at the end of the file.
template <typename Ends>
bool skip_past_marker(std::FILE *file, Ends ends) {
  int byte = std::fgetc(file);
  while (byte != EOF) {
    if (byte != marker::kPrefix) {
      byte = std::fgetc(file);
      continue;
    }
    byte = std::fgetc(file);
    if (byte == EOF) return false;
    if (byte != 0 && ends(static_cast<uint8_t>(byte))) return true;
    if (byte == marker::kPrefix) continue;  // this 0xFF may prefix the marker
    byte = std::fgetc(file);
  }
  return false;
}

bool seek_to(std::FILE *file, uint64_t offset) {
  return std::fseek(file, static_cast<long>(offset), SEEK_SET) == 0;
}

uint32_t calc_length(uint32_t handle) {
  constexpr char kName[] = "ZEP_JPEG_sequence_calc_length";
  const JpegImage sequence = open_sequence(handle, kName);
  if (sequence.record == nullptr) return sequence.status;
  std::FILE *file = sequence.record->file;
  const long kept = std::ftell(file);
  seek_to(file, sequence.record->data_offset);
  // Every marker is read as a possible frame end; the first that is none ends the count.
  uint32_t frames = 1;
  uint8_t code = 0;
  while (skip_past_marker(file,
                          [&code](uint8_t found) {
                            code = found;
                            return true;
                          }) &&
         ends_frame(code)) {
    ++frames;
  }
  sequence.image->num_frames = frames;
  std::fseek(file, kept, SEEK_SET);
  return 0;
}

uint32_t set_start_frame(uint32_t handle, uint32_t frame) {
  const JpegImage sequence = open_sequence(handle, kSetStartName);
  if (sequence.record == nullptr) return sequence.status;
  if (frame > sequence.image->num_frames)
    return core::report(kSetStartName, ZEP_ERR_BAD_PARAM, "starting frame > number of frames");
  std::FILE *file = sequence.record->file;
  seek_to(file, sequence.record->data_offset);
  sequence.image->current_frame = 1;
  while (sequence.image->current_frame < frame) {
    if (!skip_past_marker(file, ends_frame))
      return core::report(kSetStartName, ZEP_ERR_UNEXPECTED, "Unexpected end of file");
    ++sequence.image->current_frame;
  }
  return 0;
}

uint32_t extract_frame(uint32_t handle, uint32_t frame_handle, uint32_t frame) {
  constexpr char kName[] = "ZEP_sequence_JPEG_extract_frame";
  const JpegImage sequence = open_sequence(handle, kName);
  if (sequence.record == nullptr) return sequence.status;
  if (frame > sequence.image->num_frames)
    return core::report(kName, ZEP_ERR_BAD_PARAM, "frame number > number of frames");
  const JpegImage target = jpeg_image_of(frame_handle, kName);
  if (target.record == nullptr) return target.status;
  uint32_t status = set_start_frame(handle, frame);
  if (status != 0) return status;
  std::FILE *file = sequence.record->file;
  const long start = std::ftell(file);
  // The frame's data ends before the marker that ends it (a restart marker or EOI).
  const bool marked = skip_past_marker(file, [](uint8_t) { return true; });
  const long end = std::ftell(file) - (marked ? 2 : 0);
  const auto length = static_cast<uint32_t>(end > start ? end - start : 0);
  status = ZEP_image_copy_parameters(handle, frame_handle);
  if (status != 0) return status;
  status = ZEP_JPEG_malloc_N_bytes_data(frame_handle, length);
  if (status != 0) return status;
  seek_to(file, static_cast<uint64_t>(start));
  if (std::fread(target.record->data, 1, length, file) != length)
    return core::report(kName, ZEP_ERR_UNEXPECTED, "Unexpected end of file");
  if (marked) std::fseek(file, 2, SEEK_CUR);
  target.image->num_frames = 1;
  target.image->current_frame = 1;
  sequence.image->current_frame = frame == 0 ? 1 : frame;
  return 0;
}

// The sequence's data followed by a restart marker and the new frame's data.
uint32_t append_frame(const char *function_name, uint32_t handle, const JpegImage &sequence,
                      const ZEP_JPEG_RECORD &frame) {
  const uint32_t frames = sequence.image->num_frames;
  std::vector<uint8_t> joined(sequence.record->data,
                              sequence.record->data + sequence.record->length);
  joined.push_back(marker::kPrefix);
  joined.push_back(static_cast<uint8_t>(marker::kRst0 + (frames - 1) % kRestartMarkers));
  joined.insert(joined.end(), frame.data, frame.data + frame.length);
  if (joined.size() > UINT32_MAX)
    return core::report(function_name, ZEP_ERR_BAD_PARAM, "Sequence too long");
  const auto length = static_cast<uint32_t>(joined.size());
  const uint32_t status = ZEP_JPEG_malloc_N_bytes_data(handle, length);
  if (status != 0) return status;
  std::memcpy(sequence.record->data, joined.data(), length);
  sequence.image->num_frames = frames + 1;
  return 0;
}

uint32_t sequence_build(uint32_t source, uint32_t destination) {
  constexpr char kName[] = "ZEP_JPEG_sequence_build";
  const JpegImage frame = jpeg_image_of(source, kName);
  if (frame.record == nullptr) return frame.status;
  const JpegImage sequence = jpeg_image_of(destination, kName);
  if (sequence.record == nullptr) return sequence.status;
  if (frame.record->data == nullptr || frame.record->length == 0)
    return core::report(kName, ZEP_ERR_BAD_PARAM, "No buffer to read from");
  if (frame.record == sequence.record)
    return core::report(kName, ZEP_ERR_BAD_PARAM, "A sequence cannot take itself as a frame");
  if (sequence.record->data != nullptr && sequence.image->num_frames >= 1 &&
      sequence.record->length > 0) {
    if (frame.image->type != sequence.image->type || frame.image->width != sequence.image->width ||
        frame.image->height != sequence.image->height)
      return core::report(kName, ZEP_ERR_UNSUPPORTED, "Frame does not match the sequence");
    return append_frame(kName, destination, sequence, *frame.record);
  }
  uint32_t status = ZEP_image_copy_parameters(source, destination);
  if (status != 0) return status;
  status = ZEP_JPEG_malloc_N_bytes_data(destination, frame.record->length);
  if (status != 0) return status;
  std::memcpy(sequence.record->data, frame.record->data, frame.record->length);
  sequence.image->num_frames = 1;
  sequence.image->current_frame = 1;
  return 0;
}

}  // namespace
}  // namespace vrc::jpeg

using vrc::core::api_guard;
using namespace vrc::jpeg;

extern "C" {

uint32_t ZEP_JPEG_sequence_calc_length(uint32_t jpeg_image) {
  return api_guard("ZEP_JPEG_sequence_calc_length", [&] { return calc_length(jpeg_image); });
}

uint32_t ZEP_JPEG_sequence_set_start_frame(uint32_t jpeg_image, uint32_t frame) {
  return api_guard(kSetStartName, [&] { return set_start_frame(jpeg_image, frame); });
}

uint32_t ZEP_JPEG_sequence_extract_frame(uint32_t sequence, uint32_t frame_image, uint32_t frame) {
  return api_guard("ZEP_sequence_JPEG_extract_frame",
                   [&] { return extract_frame(sequence, frame_image, frame); });
}

uint32_t ZEP_JPEG_sequence_build(uint32_t source, uint32_t destination) {
  return api_guard("ZEP_JPEG_sequence_build", [&] { return sequence_build(source, destination); });
}

}  // extern "C"
