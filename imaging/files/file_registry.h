// The file-format registry: one row per file-format code with its name, file-name extensions,
// detector, reader, writer and the pixel types it stores. Detection, ZEP_image_read,
// ZEP_image_write, the format information of the C API (and so zep) and the tests' format lists
// are driven by it; adding a file format is adding a row and its functions.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

namespace vrc::files {

// A reader or writer of whole files, with the `action` of the file functions.
using FileFunction = uint32_t (*)(uint32_t handle, uint16_t action);

// True when the stream, positioned at its first byte, starts with the format's signature.
using Detector = bool (*)(std::FILE *file);

struct FileFormatRow {
  uint16_t code;                           // ZEP_FILE_*
  const char *name;                        // "TIFF", as tools show it
  const char *extensions;                  // lower case, blank-separated, usual one first
  Detector detect;                         // null: never recognised by content
  FileFunction read;                       // null: no reader
  FileFunction write;                      // null: no writer
  std::span<const uint16_t> stored_types;  // pixel types whose pixels the writer stores as
                                           // they are (writers refuse others themselves)
};

// Every row. Detection tries the detectors in this order; the signatures exclude one another by
// their first byte ('B', 'M' or 'I', '%', 0xFF), so the order never changes what is recognised.
std::span<const FileFormatRow> file_format_rows();

// The row of `code`, or null.
const FileFormatRow *file_format_row(uint32_t code);

// Whether the writer of `code` stores pixels of `type` as they are.
bool stores_type(uint32_t code, uint32_t type);

}  // namespace vrc::files
