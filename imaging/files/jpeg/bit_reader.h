// The decoder's bit reader: a 64-bit buffer refilled eight bytes at a time where no 0xFF is near,
// else a byte at a time with the 0x00 after a 0xFF skipped (T.81 F.1.2.3). A marker ends the
// data: from there on, as past the end of the data, 0xFF bytes are fed. The decoder asks, when it
// finishes, whether it took fill bits, and when a code fails, whether the code reached into the
// fill: an EOI marker met that way is the unexpected EOI it reports.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vrc::jpeg {

class BitReader {
 public:
  BitReader(const uint8_t *data, std::size_t length) : m_next(data), m_end(data + length) {}

  // Keeps at least 32 bits in the buffer (call before reading up to 32 bits).
  void need32() {
    if (m_bits < 32) refill();
  }

  // The next `count` bits (1..32) without taking them.
  uint32_t peek(int count) const { return static_cast<uint32_t>(m_buffer >> (64 - count)); }
  void skip(int count) {
    m_buffer <<= count;
    m_bits -= count;
  }
  uint32_t take(int count) {
    const uint32_t bits = peek(count);
    skip(count);
    return bits;
  }

  // True when bits beyond the data have been taken.
  bool overran() const { return m_bits < m_fill; }
  // True when fewer than `count` bits of the data are left, so that reading `count` bits reaches
  // beyond it.
  bool short_of(int count) const { return m_bits - m_fill < count; }
  // True when the data ended at an EOI marker.
  bool ended_at_eoi() const { return m_marker == kEoi; }

 private:
  static constexpr uint8_t kEoi = 0xD9;

  static bool has_ff_byte(uint64_t word) {
    const uint64_t inverted = ~word;
    return ((inverted - 0x0101010101010101ull) & ~inverted & 0x8080808080808080ull) != 0;
  }

  void refill() {
    if (!m_stopped && m_end - m_next >= 8) {
      uint64_t word;
      std::memcpy(&word, m_next, 8);
      word = __builtin_bswap64(word);
      if (!has_ff_byte(word)) {
        const int bytes = (64 - m_bits) / 8;
        const uint64_t taken = bytes == 8 ? word : word >> (64 - 8 * bytes);
        m_buffer |= taken << (64 - m_bits - 8 * bytes);
        m_bits += 8 * bytes;
        m_next += bytes;
        return;
      }
    }
    while (m_bits <= 56) {
      m_buffer |= uint64_t{next_byte()} << (56 - m_bits);
      m_bits += 8;
    }
  }

  uint8_t next_byte() {
    if (m_stopped || m_next >= m_end) return fill_byte();
    const uint8_t byte = *m_next++;
    if (byte != 0xFF) return byte;
    if (m_next < m_end && *m_next == 0x00) {
      ++m_next;
      return byte;
    }
    // A marker (fill bytes 0xFF may precede its code) ends the data.
    while (m_next < m_end && *m_next == 0xFF) ++m_next;
    m_marker = m_next < m_end ? *m_next : 0;
    m_stopped = true;
    return fill_byte();
  }

  uint8_t fill_byte() {
    m_fill += 8;
    return 0xFF;
  }

  const uint8_t *m_next;
  const uint8_t *m_end;
  uint64_t m_buffer = 0;  // bits left-aligned
  int m_bits = 0;         // valid bits in m_buffer
  int64_t m_fill = 0;     // fill bits fed since the data ended (all at the buffer's tail)
  bool m_stopped = false;
  uint8_t m_marker = 0;
};

}  // namespace vrc::jpeg
