// Hooks through which other subsystems take part in the release of process-wide state, so that
// the core does not depend on them.
#pragma once

#include <cstdint>

namespace vrc::core {

// Registers a function that ZEP_image_destroy(0x10001) calls after all images are gone, to
// release process-wide state (conversion tables, files left open between calls). Call from a
// static initialiser: `const bool registered = register_teardown(&fn);`.
bool register_teardown(void (*release)());

// Called by the core only.
void run_teardown_hooks();

// The JPEG codec registers its decompressor here; ZEP_image_copy of an image holding JPEG data
// calls it. Without a codec such a copy fails with 0x10070000.
using JpegDecompressor = uint32_t (*)(uint32_t jpeg_image, uint32_t destination);
bool register_jpeg_decompressor(JpegDecompressor decompress);
JpegDecompressor jpeg_decompressor();

}  // namespace vrc::core
