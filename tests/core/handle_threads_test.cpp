// The handle table under several threads: creating, destroying and bulk flag setting at once,
// starting from an uninitialised library so that the lazy start-up races too.
#include "vrcw32/zep.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr uint32_t kOwners = 4;
constexpr uint32_t kRounds = 1000;
constexpr uint32_t kHeld = 12;  // images an owner holds at once

// Creates and destroys images, marking each with a value of its own: had two threads been given
// the same handle, one would read the other's mark.
void own_images(uint32_t owner, std::atomic<uint32_t> &faults) {
  std::vector<uint32_t> held;
  for (uint32_t round = 0; round < kRounds; ++round) {
    for (uint32_t i = 0; i < kHeld; ++i) {
      uint32_t handle = ZEP_image_create();
      if (ZEP_IS_ERROR(handle) || handle == 0) {
        ++faults;
        continue;
      }
      ZEP_image_set_parameter(handle, ZEP_IMAGE_WIDTH, owner << 16 | handle);
      held.push_back(handle);
    }
    for (uint32_t handle : held) {
      if (ZEP_image_get_parameter(handle, ZEP_IMAGE_WIDTH) != (owner << 16 | handle)) ++faults;
    }
    // Release every other image first, so that holes open below images still held.
    for (std::size_t i = round % 2; i < held.size(); i += 2) ZEP_image_destroy(held[i]);
    for (std::size_t i = 1 - round % 2; i < held.size(); i += 2) ZEP_image_destroy(held[i]);
    held.clear();
  }
}

}  // namespace

TEST(HandleTableThreads, ConcurrentCreateDestroyAndBulkFlagsKeepHandlesApart) {
  std::atomic<uint32_t> faults{0};
  std::atomic<bool> owners_done{false};
  std::vector<std::thread> threads;
  for (uint32_t owner = 1; owner <= kOwners; ++owner) threads.emplace_back(own_images, owner, std::ref(faults));
  std::thread bulk([&] {
    for (uint32_t on = 1; !owners_done.load(); on ^= 1) {
      ZEP_image_set_flags(ZEP_ALL_IMAGES, ZEP_FLAG_FIELDS, on);
      uint32_t left = ZEP_image_destroy(ZEP_ANY_IMAGES_LEFT);
      if (left != 0 && left != ZEP_ERR_INTERNAL) ++faults;
    }
  });
  for (std::thread &owner : threads) owner.join();
  owners_done = true;
  bulk.join();

  EXPECT_EQ(faults.load(), 0u);
  EXPECT_EQ(ZEP_image_destroy(ZEP_ANY_IMAGES_LEFT), 0u);
  EXPECT_EQ(ZEP_image_get_parameter(0, ZEP_LIBRARY_ID), ZEP_LIBRARY_ID_VALUE);
  uint32_t first = ZEP_image_create();
  EXPECT_EQ(first, 1u);
  ZEP_image_destroy(first);
}
