// MRAW handles under several threads: a failing Open never leaves the library lock held, slots
// are handed out once each when threads race for them, and handles used by their own threads
// write and read their files side by side.
#include "files/mraw_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

namespace {

using vrc::test::Bytes;
using vrc::test::ScopedImage;
using vrc::test::TempDir;

constexpr auto kPatience = std::chrono::seconds(20);

// Reports are switched off: the handler would be called from several threads at once.
class Silent {
 public:
  Silent() {
    ZEP_Init();
    ZEP_ErrHandlerInstall(nullptr);
  }
};

TEST(MrawThreads, AFailedOpenLeavesTheLockFreeForOtherThreads) {
  Silent silent;
  TempDir folder;
  vrc::test::write_file(folder.file("foreign.mraw"), std::string(100, 'z'));
  std::vector<uint32_t> kept;
  for (const char *name : {"missing.mraw", "foreign.mraw"}) {
    uint32_t handle = 0;
    EXPECT_EQ(ZEP_MRAW_Open(&handle, folder.file(name).c_str()), ZEP_ERR_OPEN);
    kept.push_back(handle);

    auto other = std::async(std::launch::async, [&] {
      uint32_t created = 0;
      const uint32_t status = ZEP_MRAW_Create(&created, folder.file("other.mraw").c_str());
      const uint32_t image = ZEP_image_create();
      ZEP_image_destroy(image);
      return status == 0 && ZEP_MRAW_Close(created) == 0 && !ZEP_IS_ERROR(image);
    });
    ASSERT_EQ(other.wait_for(kPatience), std::future_status::ready) << "deadlock after " << name;
    EXPECT_TRUE(other.get());
  }
  for (uint32_t handle : kept) {
    ZEP_MRAW_RECORD record{};
    EXPECT_EQ(ZEP_MRAW_GetInfo(handle, &record), 0u);  // the slot stays in use
    EXPECT_EQ(record.in_use, 1u);
    EXPECT_EQ(ZEP_MRAW_Close(handle), 0u);
  }
}

TEST(MrawThreads, RacingCreatesGetEachSlotOnce) {
  Silent silent;
  TempDir folder;
  constexpr int kThreads = 16;
  std::vector<uint32_t> handles(kThreads, 0);
  std::vector<uint32_t> statuses(kThreads, 0);
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      while (!go.load()) std::this_thread::yield();
      statuses[i] = ZEP_MRAW_Create(&handles[i], folder.file(std::to_string(i)).c_str());
    });
  }
  go = true;
  for (std::thread &thread : threads) thread.join();
  std::vector<int> owners(ZEP_MRAW_HANDLES, 0);
  int refused = 0;
  for (int i = 0; i < kThreads; ++i) {
    if (statuses[i] == 0) {
      ++owners[handles[i]];
    } else {
      EXPECT_EQ(statuses[i], ZEP_ERR_NO_HANDLES | 9);
      ++refused;
    }
  }
  EXPECT_EQ(refused, kThreads - 8);
  for (uint32_t handle = 1; handle < ZEP_MRAW_HANDLES; ++handle) {
    EXPECT_EQ(owners[handle], 1) << handle;
    EXPECT_EQ(ZEP_MRAW_Close(handle), 0u);
  }
}

TEST(MrawThreads, EachThreadWritesAndReadsItsOwnFile) {
  Silent silent;
  TempDir folder;
  constexpr int kThreads = 6;
  constexpr uint32_t kFrames = 40;
  std::vector<std::thread> threads;
  std::atomic<int> failures{0};
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      const std::string path = folder.file(std::to_string(i));
      for (int round = 0; round < 3; ++round) {
        const std::vector<Bytes> strips =
            vrc::test::write_sequence(path, ZEP_RGB24, 16 + i, 8, kFrames);
        uint32_t handle = 0;
        if (ZEP_MRAW_Open(&handle, path.c_str()) != 0) {
          ++failures;
          return;
        }
        ScopedImage image;
        for (uint32_t frame = 1; frame <= kFrames; ++frame) {
          if (ZEP_MRAW_ImageRead(handle, image, frame == 1 ? 1 : 0) != 0 ||
              vrc::test::strip_bytes(image) != strips[frame - 1]) {
            ++failures;
          }
        }
        ZEP_MRAW_Close(handle);
      }
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);
}

}  // namespace
