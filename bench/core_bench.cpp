// Handle-table benchmark: creates and destroys all 65535 handles in several patterns and prints
// the time per operation, so that the cost of the 65535th create can be compared with the first.
#include "vrcw32/zep.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

namespace {

constexpr uint32_t kHandles = ZEP_MAX_HANDLES - 1;

void fill_table() {
  for (uint32_t i = 0; i < kHandles; ++i) ZEP_image_create();
}

// Fill the table, then free and re-create in ascending order.
void BM_FillThenDestroyAll(benchmark::State &state) {
  ZEP_ErrHandlerInstall(nullptr);
  for (auto _ : state) {
    fill_table();
    ZEP_image_destroy(ZEP_ALL_IMAGES);
  }
  state.SetItemsProcessed(state.iterations() * kHandles);
}

// With the table nearly full, free and take the last slot over and over.
void BM_CreateWhenNearlyFull(benchmark::State &state) {
  ZEP_ErrHandlerInstall(nullptr);
  fill_table();
  for (auto _ : state) {
    ZEP_image_destroy(kHandles);
    benchmark::DoNotOptimize(ZEP_image_create());
  }
  ZEP_image_destroy(ZEP_ALL_IMAGES);
}

// With the table empty, create and destroy the first slot.
void BM_CreateWhenEmpty(benchmark::State &state) {
  ZEP_ErrHandlerInstall(nullptr);
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  for (auto _ : state) {
    uint32_t handle = ZEP_image_create();
    ZEP_image_destroy(handle);
  }
}

// Random holes punched into a full table, then filled again lowest first.
void BM_RefillRandomHoles(benchmark::State &state) {
  ZEP_ErrHandlerInstall(nullptr);
  fill_table();
  std::mt19937 random(7);
  std::vector<uint32_t> holes(4096);
  for (auto _ : state) {
    state.PauseTiming();
    for (uint32_t &hole : holes) {
      hole = 1 + random() % kHandles;
      ZEP_image_destroy(hole);
    }
    state.ResumeTiming();
    while (!ZEP_IS_ERROR(ZEP_image_create())) {
    }
  }
  ZEP_image_destroy(ZEP_ALL_IMAGES);
}

BENCHMARK(BM_FillThenDestroyAll)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateWhenEmpty);
BENCHMARK(BM_CreateWhenNearlyFull);
BENCHMARK(BM_RefillRandomHoles)->Unit(benchmark::kMillisecond);

// The first and the 65535th create timed directly, and their ratio.
void print_first_and_last_create() {
  using Clock = std::chrono::steady_clock;
  constexpr int kRounds = 2000;
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  auto time_create_destroy = [] {
    auto start = Clock::now();
    for (int i = 0; i < kRounds; ++i) ZEP_image_destroy(ZEP_image_create());
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / kRounds;
  };
  double first = time_create_destroy();
  for (uint32_t i = 0; i < kHandles - 1; ++i) ZEP_image_create();
  double last = time_create_destroy();
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  std::printf("create+destroy of handle 1: %.0f ns, of handle 65535: %.0f ns, ratio %.2f\n", first,
              last, last / first);
}

}  // namespace

int main(int argc, char **argv) {
  ZEP_Init();
  ZEP_ErrHandlerInstall(nullptr);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  print_first_and_last_create();
  benchmark::Shutdown();
  return 0;
}
