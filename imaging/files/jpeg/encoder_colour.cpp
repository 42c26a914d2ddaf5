// The encoder's input rows.
#include "imaging/files/jpeg/encoder_colour.h"

namespace vrc::jpeg {

void bgr_to_planes(const uint8_t *pixels, int pixel_bytes, uint32_t pairs, const PlaneRows &out) {
  for (uint32_t i = 0; i < pairs; ++i) {
    const uint8_t *p0 = pixels + 2 * i * pixel_bytes;
    const uint8_t *p1 = p0 + pixel_bytes;
    const int b0 = p0[0], g0 = p0[1], r0 = p0[2];
    const int b1 = p1[0], g1 = p1[1], r1 = p1[2];
    out.y[2 * i] = static_cast<uint8_t>((306 * r0 + 601 * g0 + 117 * b0) >> 10);
    out.y[2 * i + 1] = static_cast<uint8_t>((306 * r1 + 601 * g1 + 117 * b1) >> 10);
    const int r = r0 + r1, g = g0 + g1, b = b0 + b1;
    out.u[i] = static_cast<uint8_t>(((512 * b - 339 * g - 173 * r) >> 11) + 128);
    out.v[i] = static_cast<uint8_t>(((512 * r - 429 * g - 83 * b) >> 11) + 128);
  }
}

void yuv422_to_planes(const uint8_t *pairs_in, uint32_t pairs, const PlaneRows &out) {
  for (uint32_t i = 0; i < pairs; ++i) {
    const uint8_t *pair = pairs_in + 4 * i;
    out.y[2 * i] = pair[0];
    out.u[i] = pair[1];
    out.y[2 * i + 1] = pair[2];
    out.v[i] = pair[3];
  }
}

}  // namespace vrc::jpeg
