// Unsigned 8-, 16- and 32-bit values in a fixed byte order, to and from streams and memory.
// i = least significant byte first (Intel order), m = most significant byte first (Motorola).
#include "vrcw32/zep_core.h"

#include <cstdio>

namespace {

uint32_t stream_byte(FILE *f) { return static_cast<uint32_t>(std::fgetc(f)) & 0xFFu; }

}  // namespace

extern "C" {

uint16_t ZEP_fget_ui16i(FILE *f) {
  uint32_t low = stream_byte(f);
  uint32_t high = stream_byte(f);
  return static_cast<uint16_t>(low | (high << 8));
}

uint16_t ZEP_fget_ui16m(FILE *f) {
  uint32_t high = stream_byte(f);
  uint32_t low = stream_byte(f);
  return static_cast<uint16_t>(low | (high << 8));
}

uint32_t ZEP_fget_ui32i(FILE *f) {
  uint32_t low = ZEP_fget_ui16i(f);
  uint32_t high = ZEP_fget_ui16i(f);
  return low | (high << 16);
}

uint32_t ZEP_fget_ui32m(FILE *f) {
  uint32_t high = ZEP_fget_ui16m(f);
  uint32_t low = ZEP_fget_ui16m(f);
  return low | (high << 16);
}

int ZEP_fput_ui8(FILE *f, uint8_t value) { return std::fputc(value, f); }

int ZEP_fput_ui16i(FILE *f, uint16_t value) {
  std::fputc(value & 0xFF, f);
  return std::fputc(value >> 8, f);
}

int ZEP_fput_ui16m(FILE *f, uint16_t value) {
  std::fputc(value >> 8, f);
  return std::fputc(value & 0xFF, f);
}

int ZEP_fput_ui32i(FILE *f, uint32_t value) {
  ZEP_fput_ui16i(f, static_cast<uint16_t>(value & 0xFFFF));
  return ZEP_fput_ui16i(f, static_cast<uint16_t>(value >> 16));
}

int ZEP_fput_ui32m(FILE *f, uint32_t value) {
  ZEP_fput_ui16m(f, static_cast<uint16_t>(value >> 16));
  return ZEP_fput_ui16m(f, static_cast<uint16_t>(value & 0xFFFF));
}

uint16_t ZEP_mget_ui16i(const uint8_t *p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }

uint16_t ZEP_mget_ui16m(const uint8_t *p) { return static_cast<uint16_t>((p[0] << 8) | p[1]); }

uint32_t ZEP_mget_ui32i(const uint8_t *p) {
  return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) |
         (static_cast<uint32_t>(p[2]) << 16) | (static_cast<uint32_t>(p[3]) << 24);
}

uint32_t ZEP_mget_ui32m(const uint8_t *p) {
  return (static_cast<uint32_t>(p[0]) << 24) | (static_cast<uint32_t>(p[1]) << 16) |
         (static_cast<uint32_t>(p[2]) << 8) | static_cast<uint32_t>(p[3]);
}

void ZEP_mput_ui8(uint8_t *p, uint8_t value) { p[0] = value; }

void ZEP_mput_ui16i(uint8_t *p, uint16_t value) {
  p[0] = static_cast<uint8_t>(value);
  p[1] = static_cast<uint8_t>(value >> 8);
}

void ZEP_mput_ui16m(uint8_t *p, uint16_t value) {
  p[0] = static_cast<uint8_t>(value >> 8);
  p[1] = static_cast<uint8_t>(value);
}

void ZEP_mput_ui32i(uint8_t *p, uint32_t value) {
  ZEP_mput_ui16i(p, static_cast<uint16_t>(value));
  ZEP_mput_ui16i(p + 2, static_cast<uint16_t>(value >> 16));
}

void ZEP_mput_ui32m(uint8_t *p, uint32_t value) {
  ZEP_mput_ui16m(p, static_cast<uint16_t>(value >> 16));
  ZEP_mput_ui16m(p + 2, static_cast<uint16_t>(value));
}

}  // extern "C"
