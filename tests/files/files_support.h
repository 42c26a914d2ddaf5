// Test support for the file formats: a temporary folder, whole-file bytes, outside programs
// (Pillow through /usr/bin/python3, libtiff tools, Ghostscript), images filled with a known
// pattern, and the seed folders of the fuzz targets.
#pragma once

#include "support/error_capture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace vrc::test {

using Bytes = std::vector<uint8_t>;

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir &) = delete;
  TempDir &operator=(const TempDir &) = delete;
  std::string file(const std::string &name) const { return (m_path / name).string(); }

 private:
  std::filesystem::path m_path;
};

Bytes read_file(const std::string &path);
void write_file(const std::string &path, const Bytes &bytes);
void write_file(const std::string &path, const std::string &text);

// Runs a shell command and returns what it printed on standard output; `status` gets its exit
// status.
std::string run_command(const std::string &command, int *status = nullptr);
bool program_available(const std::string &name);

// A Python snippet run by the Pillow interpreter; its standard output.
std::string run_pillow(const std::string &script, int *status = nullptr);

// The pattern byte at byte `column` of line `line`.
inline uint8_t pattern_byte(uint32_t column, uint32_t line) {
  return static_cast<uint8_t>(column * 37 + line * 101 + 11);
}

// Makes `handle` a width x height image of `type` in one strip and fills every pixel byte (not
// the line padding) with the pattern.
void make_pattern_image(uint32_t handle, uint32_t width, uint32_t height, uint16_t type);

// The `count` bytes at the start of line `line` of the image's strip.
Bytes line_bytes(uint32_t handle, uint32_t line, uint32_t count);

// The R, G, B bytes of every pixel of line `line` of an RGB24, BGR24 or BGRX32 image, or of a
// paletted image through its colour map.
Bytes line_rgb(uint32_t handle, uint32_t line);
// The same bytes with each pixel's first and third byte swapped.
Bytes swap_red_blue(Bytes pixels);

// Lower-case hex of the bytes.
std::string hex(const Bytes &bytes);

uint32_t get(uint32_t image, uint16_t id);

// Name `path` as the image's output or input file and call the format's writer or reader.
uint32_t write_bmp(uint32_t image, const std::string &path);
uint32_t read_bmp(uint32_t image, const std::string &path, uint16_t action = ZEP_ACTION_DATA);
uint32_t write_tiff(uint32_t image, const std::string &path, uint16_t action = ZEP_ACTION_DATA);
uint32_t read_tiff(uint32_t image, const std::string &path, uint16_t action = ZEP_ACTION_DATA);
uint32_t write_eps(uint32_t image, const std::string &path, uint16_t action = ZEP_ACTION_DATA);
uint32_t read_eps(uint32_t image, const std::string &path, uint16_t action = ZEP_ACTION_DATA);

// A good file damaged one way, named for its defect, with the failure its reader reports.
struct BadFile {
  const char *name;
  std::function<void(Bytes &)> damage;
  uint32_t code;
  const char *message;
};

inline void PrintTo(const BadFile &bad, std::ostream *out) { *out << bad.name; }
inline std::string bad_file_name(const testing::TestParamInfo<BadFile> &info) { return info.param.name; }

// Writes `good` damaged by `bad` into `folder` and as a seed of the fuzz target `target`, both
// named for the defect with `extension`; returns the path in `folder`.
std::string write_damaged(const TempDir &folder, Bytes good, const BadFile &bad, const std::string &target,
                          const std::string &extension);

// The bytes of a width x height pattern image of `type` written by `write` (a path is passed).
Bytes pattern_file(uint16_t type, uint32_t width, uint32_t height,
                   const std::function<uint32_t(uint32_t, const std::string &)> &write);

// A file format under test: how to write and read it, its reader's reported name, the fuzz
// target its damaged samples seed, and its file-name extension.
struct FileFormat {
  uint32_t (*write)(uint32_t image, const std::string &path);
  uint32_t (*read)(uint32_t image, const std::string &path);
  const char *read_function;
  const char *fuzz_target;
  const char *extension;
};

extern const FileFormat kBmpFormat;
extern const FileFormat kTiffFormat;

// Writes a width x height RGB24 pattern image in `format`, damages it by `bad` (also storing it
// as a seed of the format's fuzz target), reads it into a new image and expects the code of `bad`
// and, last reported, the format's reader with the message of `bad`.
void expect_read_failure(const FileFormat &format, uint32_t width, uint32_t height, const BadFile &bad);

// Stores `bytes` as seed `name` of the fuzz target `target`.
void write_seed(const std::string &target, const std::string &name, const Bytes &bytes);

}  // namespace vrc::test
