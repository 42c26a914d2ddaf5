// Sequence-file benchmark: writes and reads N frames of 1920 x 1080 x 2 bytes (YUV 4:2:2) through
// MRAW, and the same bytes with plain fwrite / fread, in the same run, and prints the
// throughput of each and the ratio MRAW / plain (1.0 = as fast as plain stdio), with the same
// ratio of processor time, which a busy machine disturbs less than the clock.
//
//   sequence_bench [--frames N] [--rounds R] [--dir FOLDER]
//
// N defaults to 300 (1.2 GB a file); choose it so that two files fit in the page cache, or the
// figures measure the disk. Each round writes and reads both files afresh and deletes them; the
// best round of each counts. Files go to a folder of their own under FOLDER (default: the
// temporary folder), removed at the end.
#include "vrcw32/zep.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kWidth = 1920;
constexpr uint32_t kHeight = 1080;
constexpr uint32_t kFrameBytes = kWidth * kHeight * 2;

using Clock = std::chrono::steady_clock;

struct Settings {
  uint32_t frames = 300;
  uint32_t rounds = 3;
  std::filesystem::path folder = std::filesystem::temp_directory_path();
};

// A folder of the run's own, removed with everything in it at the end.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::filesystem::path &parent)
      : m_path(parent / ("sequence_bench-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(m_path);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;
  std::string file(const char *name) const { return (m_path / name).string(); }

 private:
  std::filesystem::path m_path;
};

// Wall-clock and processor seconds (user + system) of one piece of work.
struct Cost {
  double wall = 1e30;
  double cpu = 1e30;
};

double cpu_seconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval &t) { return t.tv_sec + t.tv_usec / 1e6; };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Runs `work` and keeps the lower of each figure in `best`.
void measure(Cost &best, const std::function<bool()> &work) {
  const Clock::time_point start = Clock::now();
  const double cpu_start = cpu_seconds();
  if (!work()) {
    std::fprintf(stderr, "sequence_bench: a write or read failed\n");
    std::exit(1);
  }
  best.cpu = std::min(best.cpu, cpu_seconds() - cpu_start);
  best.wall = std::min(best.wall, std::chrono::duration<double>(Clock::now() - start).count());
}

bool plain_write(const std::string &path, const std::vector<uint8_t> &frame, uint32_t frames) {
  std::FILE *file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  bool written = true;
  for (uint32_t i = 0; i < frames && written; ++i)
    written = std::fwrite(frame.data(), 1, frame.size(), file) == frame.size();
  return std::fclose(file) == 0 && written;
}

bool plain_read(const std::string &path, std::vector<uint8_t> &frame, uint32_t frames) {
  std::FILE *file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  bool read = true;
  for (uint32_t i = 0; i < frames && read; ++i)
    read = std::fread(frame.data(), 1, frame.size(), file) == frame.size();
  std::fclose(file);
  return read;
}

bool mraw_write(const std::string &path, uint32_t image, uint32_t frames) {
  uint32_t handle = 0;
  if (ZEP_MRAW_Create(&handle, path.c_str()) != 0) return false;
  bool written = true;
  for (uint32_t i = 0; i < frames && written; ++i)
    written = ZEP_MRAW_ImageWrite(handle, image) == 0;
  return ZEP_MRAW_Close(handle) == 0 && written;
}

bool mraw_read(const std::string &path, uint32_t image, uint32_t frames) {
  uint32_t handle = 0;
  if (ZEP_MRAW_Open(&handle, path.c_str()) != 0) return false;
  bool read = ZEP_MRAW_ImageRead(handle, image, 1) == 0;
  for (uint32_t i = 1; i < frames && read; ++i) read = ZEP_MRAW_ImageRead(handle, image, 0) == 0;
  ZEP_MRAW_Close(handle);
  return read;
}

Settings parse(int argc, char **argv) {
  Settings settings;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string option = argv[i];
    if (option == "--frames") settings.frames = std::max(1, std::atoi(argv[i + 1]));
    if (option == "--rounds") settings.rounds = std::max(1, std::atoi(argv[i + 1]));
    if (option == "--dir") settings.folder = argv[i + 1];
  }
  return settings;
}

struct Best {
  Cost plain_write, mraw_write, plain_read, mraw_read;
};

void print_row(const char *what, const Cost &mraw, const Cost &plain, double megabytes) {
  std::printf("%-6s %10.0f MB/s %10.0f MB/s %8.3f %10.3f\n", what, megabytes / mraw.wall,
              megabytes / plain.wall, plain.wall / mraw.wall, plain.cpu / mraw.cpu);
}

}  // namespace

int main(int argc, char **argv) {
  const Settings settings = parse(argc, argv);
  ZEP_Init();
  const ScratchFolder folder(settings.folder);
  const std::string plain_path = folder.file("plain.raw");
  const std::string mraw_path = folder.file("frames.mraw");

  const uint32_t image = ZEP_image_create();
  ZEP_ImageMake(image, kWidth, kHeight, ZEP_YUV422, 0);
  auto *pixels = static_cast<uint8_t *>(ZEP_image_get_ptr(image, ZEP_DATA_PTR));
  for (uint32_t i = 0; i < kFrameBytes; ++i) pixels[i] = static_cast<uint8_t>(i * 131 + 7);
  std::vector<uint8_t> frame(pixels, pixels + kFrameBytes);
  const uint32_t read_image = ZEP_image_create();

  Best best;
  for (uint32_t round = 0; round < settings.rounds; ++round) {
    const uint32_t n = settings.frames;
    // Alternate rounds start with the other side, so that neither always meets the page cache
    // as the other left it.
    const bool plain_first = round % 2 == 0;
    for (int side = 0; side < 2; ++side) {
      if ((side == 0) == plain_first) {
        measure(best.plain_write, [&] { return plain_write(plain_path, frame, n); });
      } else {
        measure(best.mraw_write, [&] { return mraw_write(mraw_path, image, n); });
      }
    }
    for (int side = 0; side < 2; ++side) {
      if ((side == 0) == plain_first) {
        measure(best.plain_read, [&] { return plain_read(plain_path, frame, n); });
      } else {
        measure(best.mraw_read, [&] { return mraw_read(mraw_path, read_image, n); });
      }
    }
    std::filesystem::remove(plain_path);
    std::filesystem::remove(mraw_path);
  }

  const double megabytes = double{kFrameBytes} * settings.frames / 1e6;
  std::printf("%u frames of %u x %u x 2 bytes (%.0f MB), best of %u rounds, in %s\n",
              settings.frames, kWidth, kHeight, megabytes, settings.rounds,
              settings.folder.c_str());
  std::printf("%-6s %15s %15s %8s %10s\n", "", "MRAW", "fwrite/fread", "ratio", "cpu ratio");
  print_row("write", best.mraw_write, best.plain_write, megabytes);
  print_row("read", best.mraw_read, best.plain_read, megabytes);
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  return 0;
}
