// Hooks through which other subsystems take part in the library's start-up and in the release of
// process-wide state, so that the core does not depend on them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vrc::core {

// Registers a function that ZEP_Init calls once, outside the lock, after the core is ready
// (building codec tables, initialising sequence-file handle tables). Call from a static
// initialiser: `static const bool registered = register_startup(&fn);`.
bool register_startup(void (*start)());

// Registers a function that ZEP_image_destroy(0x10001) calls after all images are gone, to
// release process-wide tables (conversion tables and the like).
bool register_teardown(void (*release)());

// Shared scratch buffers of the conversion and processing code, cached between calls.
enum class Scratch : int { Slot0, Slot1, Slot2, Slot3, Slot4, Slot5, Slot6, Slot7, Slot8, Count };

// A buffer of at least `bytes` bytes for `slot`, grown as needed; null when allocation fails.
// Contents are kept while the buffer does not grow. Caller holds the library lock while using it.
uint8_t *scratch_buffer(Scratch slot, std::size_t bytes);

// Frees every scratch buffer (ZEP_image_destroy of 0x10001, or of 0x10002 with no image left).
void free_scratch_buffers();

}  // namespace vrc::core

namespace vrc::core {

// Called by the core only.
void run_startup_hooks();
void run_teardown_hooks();

}  // namespace vrc::core

namespace vrc::core {

// The JPEG codec registers its decompressor here; ZEP_image_copy of an image holding JPEG data
// calls it. Without a codec such a copy fails with 0x10070000.
using JpegDecompressor = uint32_t (*)(uint32_t jpeg_image, uint32_t destination);
bool register_jpeg_decompressor(JpegDecompressor decompress);
JpegDecompressor jpeg_decompressor();

}  // namespace vrc::core
