// The JFIF marker layer: marker codes, the header written before a JPEG image's entropy data, and
// the one marker parse that reads a header (and, when asked, the data) from a file or from memory.
#pragma once

#include "imaging/core/jpeg_record.h"
#include "vrcw32/zep_core.h"

#include <cstdint>
#include <span>
#include <vector>

namespace vrc::jpeg {

// Marker codes: the byte after the 0xFF prefix (T.81 Table B.1).
namespace marker {
inline constexpr uint8_t kPrefix = 0xFF;
inline constexpr uint8_t kSof0 = 0xC0;
inline constexpr uint8_t kDht = 0xC4;
inline constexpr uint8_t kRst0 = 0xD0;
inline constexpr uint8_t kSoi = 0xD8;
inline constexpr uint8_t kEoi = 0xD9;
inline constexpr uint8_t kSos = 0xDA;
inline constexpr uint8_t kDqt = 0xDB;
inline constexpr uint8_t kDri = 0xDD;
inline constexpr uint8_t kApp0 = 0xE0;
inline constexpr uint8_t kCom = 0xFE;
}  // namespace marker

// True for a byte after 0xFF that ends a frame of a sequence: D0..D7, and F0..F7 alike.
constexpr bool ends_frame(uint8_t code) { return code != 0 && (code & 0xD8) == 0xD0; }

// True for a byte after 0xFF that ends the entropy data of a file: any marker but a restart
// marker (D0..D7) or a stuffed zero.
constexpr bool ends_entropy_data(uint8_t code) {
  return code != 0 && (code & 0xF8) != marker::kRst0;
}

// What a header may leave out or replace: an MJPEG sequence writes its own comment and relies on
// the default Huffman tables.
struct HeaderParts {
  // When not empty, the comment segment's payload instead of the information block and the
  // generator text.
  std::span<const uint8_t> comment;
  bool huffman_tables = true;
};

// The bytes of the file a JPEG image is written as, up to and including its SOS segment.
// Fails (bad parameter, reported under `function_name`) when the image is too large for SOF0.
uint32_t header_bytes(const char *function_name, const ZEP_IMAGE &image,
                      const ZEP_JPEG_RECORD &record, std::vector<uint8_t> &bytes,
                      const HeaderParts &parts = {});

// Appends a comment segment (FF FE, length) holding `payload`.
void comment_segment(std::span<const uint8_t> payload, std::vector<uint8_t> &bytes);

// The whole file: header, entropy data, EOI.
uint32_t file_bytes(const char *function_name, const ZEP_IMAGE &image,
                    const ZEP_JPEG_RECORD &record, std::vector<uint8_t> &bytes);

// Where the parse reads from. `next` gives a byte, or -1 at the end (and after `stop`).
class MarkerInput {
 public:
  virtual ~MarkerInput() = default;
  virtual int next() = 0;
  // Reads exactly bytes.size() bytes; false when the input ends first.
  virtual bool read(std::span<uint8_t> bytes) = 0;
  virtual uint64_t position() const = 0;
  virtual bool seek(uint64_t position) = 0;
  virtual uint64_t size() const = 0;
  // EOI was met: nothing more is read.
  virtual void stop() = 0;
};

enum class ParseMode {
  HeaderOnly,  // stop at the entropy data (the input stays there)
  WithData,    // read the entropy data into the record and go on to the end
};

// Parses the markers of `input` into the JPEG image `handle` (which has a record), reporting a
// failure under `function_name`; `truncated` is the message for an input that ends inside a
// segment. On success the image has ZEP_FLAG_JPEG set.
uint32_t parse_markers(const char *function_name, uint32_t handle, MarkerInput &input,
                       ParseMode mode, const char *truncated);

}  // namespace vrc::jpeg
