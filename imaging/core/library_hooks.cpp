// Start-up and teardown hooks of the other subsystems, and the shared scratch buffers.
#include "imaging/core/library_hooks.h"

#include "vrcw32/zep_core.h"

#include <array>
#include <cstdlib>
#include <vector>

namespace {

using Hook = void (*)();

std::vector<Hook> &startup_hooks() {
  static std::vector<Hook> hooks;
  return hooks;
}

std::vector<Hook> &teardown_hooks() {
  static std::vector<Hook> hooks;
  return hooks;
}

struct ScratchBuffer {
  uint8_t *data = nullptr;
  std::size_t bytes = 0;
};

std::array<ScratchBuffer, static_cast<std::size_t>(vrc::core::Scratch::Count)> g_scratch;

vrc::core::JpegDecompressor g_jpeg_decompressor = nullptr;

}  // namespace

namespace vrc::core {

bool register_startup(void (*start)()) {
  startup_hooks().push_back(start);
  return true;
}

bool register_teardown(void (*release)()) {
  teardown_hooks().push_back(release);
  return true;
}

bool register_jpeg_decompressor(JpegDecompressor decompress) {
  g_jpeg_decompressor = decompress;
  return true;
}

JpegDecompressor jpeg_decompressor() { return g_jpeg_decompressor; }

void run_startup_hooks() {
  for (Hook start : startup_hooks()) start();
}

void run_teardown_hooks() {
  for (Hook release : teardown_hooks()) release();
}

uint8_t *scratch_buffer(Scratch slot, std::size_t bytes) {
  ScratchBuffer &buffer = g_scratch[static_cast<std::size_t>(slot)];
  if (buffer.bytes < bytes || buffer.data == nullptr) {
    void *grown = std::realloc(buffer.data, bytes == 0 ? 1 : bytes);
    if (grown == nullptr) return nullptr;
    buffer.data = static_cast<uint8_t *>(grown);
    buffer.bytes = bytes;
  }
  return buffer.data;
}

void free_scratch_buffers() {
  for (ScratchBuffer &buffer : g_scratch) {
    std::free(buffer.data);
    buffer = {};
  }
}

}  // namespace vrc::core
