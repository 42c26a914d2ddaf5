// The encoder's bit writer: codes are gathered in a 64-bit buffer and written out eight bytes at
// a time, with a 0x00 stuffed after every 0xFF byte (T.81 F.1.2.3).
#pragma once

#include <cstdint>
#include <cstring>

namespace vrc::jpeg {

class BitWriter {
 public:
  explicit BitWriter(uint8_t *out) : m_out(out), m_start(out) {}

  // Appends the low `length` bits of `bits` (length 1..32), most significant first.
  void put(uint32_t bits, int length) {
    if (length < m_free) {
      m_buffer = (m_buffer << length) | bits;
      m_free -= length;
      return;
    }
    const int spill = length - m_free;
    m_buffer = (m_buffer << m_free) | (uint64_t{bits} >> spill);
    write_word(m_buffer);
    // Bits above `spill` have been written; they leave the buffer before it is written again.
    m_buffer = bits;
    m_free = 64 - spill;
  }

  // Pads the last byte with 1 bits and writes what is left; returns the bytes written in all.
  std::size_t finish() {
    const int pending = 64 - m_free;
    const int pad = (8 - pending % 8) % 8;
    if (pad != 0) put((1u << pad) - 1, pad);
    const int bytes = (64 - m_free) / 8;
    for (int i = bytes - 1; i >= 0; --i) write_byte(static_cast<uint8_t>(m_buffer >> (8 * i)));
    m_free = 64;
    return static_cast<std::size_t>(m_out - m_start);
  }

 private:
  static bool has_ff_byte(uint64_t word) {
    const uint64_t inverted = ~word;
    return ((inverted - 0x0101010101010101ull) & ~inverted & 0x8080808080808080ull) != 0;
  }

  void write_byte(uint8_t byte) {
    *m_out++ = byte;
    if (byte == 0xFF) *m_out++ = 0x00;
  }

  void write_word(uint64_t word) {
    if (!has_ff_byte(word)) {
      const uint64_t big_endian = __builtin_bswap64(word);
      std::memcpy(m_out, &big_endian, 8);
      m_out += 8;
      return;
    }
    for (int i = 7; i >= 0; --i) write_byte(static_cast<uint8_t>(word >> (8 * i)));
  }

  uint64_t m_buffer = 0;
  int m_free = 64;  // bits still free in m_buffer
  uint8_t *m_out;
  uint8_t *m_start;
};

}  // namespace vrc::jpeg
