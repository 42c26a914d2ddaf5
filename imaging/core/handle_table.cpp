// The handle table: 65536 record pointers, slot 0 unused. A two-level occupancy bitmap finds the
// lowest free slot in a few word operations: bit h of the lower level says slot h is occupied,
// bit w of the upper level says lower word w is full.
#include "imaging/core/handle_table.h"

#include <array>
#include <atomic>
#include <bit>

namespace {

constexpr uint32_t kWordBits = 64;
constexpr uint32_t kLowerWords = ZEP_MAX_HANDLES / kWordBits;  // 1024
constexpr uint32_t kUpperWords = kLowerWords / kWordBits;      // 16
constexpr uint64_t kFull = ~uint64_t{0};

std::array<std::atomic<ZEP_IMAGE *>, ZEP_MAX_HANDLES> g_slots{};

struct Occupancy {
  std::array<uint64_t, kLowerWords> lower{};
  std::array<uint64_t, kUpperWords> upper{};

  Occupancy() { mark(0, true); }  // slot 0 is never issued

  void mark(uint32_t slot, bool occupied) {
    uint32_t word = slot / kWordBits;
    uint64_t bit = uint64_t{1} << (slot % kWordBits);
    lower[word] = occupied ? (lower[word] | bit) : (lower[word] & ~bit);
    uint64_t full_bit = uint64_t{1} << (word % kWordBits);
    uint64_t &summary = upper[word / kWordBits];
    summary = lower[word] == kFull ? (summary | full_bit) : (summary & ~full_bit);
  }

  // Lowest free slot, or 0 when every slot is taken.
  uint32_t lowest_free() const {
    for (uint32_t top = 0; top < kUpperWords; ++top) {
      if (upper[top] == kFull) continue;
      uint32_t word = top * kWordBits + static_cast<uint32_t>(std::countr_one(upper[top]));
      return word * kWordBits + static_cast<uint32_t>(std::countr_one(lower[word]));
    }
    return 0;
  }

  bool any_image() const {
    for (uint32_t word = 0; word < kLowerWords; ++word) {
      if (lower[word] != (word == 0 ? uint64_t{1} : uint64_t{0})) return true;
    }
    return false;
  }
};

Occupancy &occupancy() {
  static Occupancy table;
  return table;
}

}  // namespace

namespace vrc::core {

ZEP_IMAGE *image_record(uint32_t handle) {
  if (handle == 0 || handle >= ZEP_MAX_HANDLES) return nullptr;
  return g_slots[handle].load(std::memory_order_acquire);
}

uint32_t table_lowest_free() { return occupancy().lowest_free(); }

void table_store(uint32_t handle, ZEP_IMAGE *record) {
  g_slots[handle].store(record, std::memory_order_release);
  occupancy().mark(handle, record != nullptr);
}

bool table_any_occupied() { return occupancy().any_image(); }

}  // namespace vrc::core
