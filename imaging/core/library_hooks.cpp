// Teardown hooks of the other subsystems and the JPEG codec's decompressor.
#include "imaging/core/library_hooks.h"

#include <vector>

namespace {

using Hook = void (*)();

std::vector<Hook> &teardown_hooks() {
  static std::vector<Hook> hooks;
  return hooks;
}

vrc::core::JpegDecompressor g_jpeg_decompressor = nullptr;

}  // namespace

namespace vrc::core {

bool register_teardown(void (*release)()) {
  teardown_hooks().push_back(release);
  return true;
}

bool register_jpeg_decompressor(JpegDecompressor decompress) {
  g_jpeg_decompressor = decompress;
  return true;
}

JpegDecompressor jpeg_decompressor() { return g_jpeg_decompressor; }

void run_teardown_hooks() {
  for (Hook release : teardown_hooks()) release();
}

}  // namespace vrc::core
