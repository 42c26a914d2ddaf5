// Sequence-file benchmark.
//
// MRAW: writes and reads N frames of 1920 x 1080 x 2 bytes (YUV 4:2:2), and the same bytes with
// plain fwrite / fread, in the same run, and prints the throughput of each and the ratio
// MRAW / plain (1.0 = as fast as plain stdio), with the same ratio of processor time, which a
// busy machine disturbs less than the clock.
//
// MJPEG: frames per second written (compress and write) and read (read and decode) at
// 1920 x 1080 4:2:2, the file part alone beside it, and the time to reach a frame near the end of
// a 1,000-frame file by skipping with the stored record lengths and by scanning for the markers.
//
//   sequence_bench [--frames N] [--rounds R] [--dir FOLDER] [--mjpeg-frames M]
//
// N defaults to 300 (1.2 GB a file); choose it so that two files fit in the page cache, or the
// figures measure the disk. Each round writes and reads both files afresh and deletes them; the
// best round of each counts. M (default 40) is the number of MJPEG frames coded per round. Files
// go to a folder of their own under FOLDER (default: the temporary folder), removed at the end.
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
  uint32_t mjpeg_frames = 40;
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

// ---- MJPEG ----

constexpr uint32_t kSkipFileFrames = 1000;
constexpr int32_t kFrameNearTheEnd = 990;

// A 4:2:2 picture with smooth gradients and some texture, the kind of content the codec is for.
void fill_picture(uint32_t image, uint32_t frame) {
  auto *pixels = static_cast<uint8_t *>(ZEP_image_get_ptr(image, ZEP_DATA_PTR));
  for (uint32_t y = 0; y < kHeight; ++y) {
    uint8_t *line = pixels + std::size_t{y} * kWidth * 2;
    for (uint32_t x = 0; x < kWidth; ++x) {
      line[2 * x] = static_cast<uint8_t>((x + y + frame * 3) / 12 + ((x * y) >> 9 & 15));
      line[2 * x + 1] = static_cast<uint8_t>(128 + (x >> 4) - (y >> 4));
    }
  }
}

// Makes `image` describe a decoded 4:2:2 frame, which ZEP_JPEG_decompress fills.
void describe_frame(uint32_t image) {
  ZEP_image_set_parameter(image, ZEP_IMAGE_TYPE, ZEP_YUV422);
  ZEP_image_set_parameter(image, ZEP_IMAGE_WIDTH, kWidth);
  ZEP_image_set_parameter(image, ZEP_IMAGE_HEIGHT, kHeight);
  ZEP_image_set_parameter(image, ZEP_LINES_THIS_STRIP, kHeight);
}

// Compresses and writes `frames` frames (the pictures in `sources`, in turn); with a non-zero
// `coded`, writes that JPEG image every time instead (the file part alone).
bool mjpeg_write(const std::string &path, const std::vector<uint32_t> &sources, uint32_t coded,
                 uint32_t frames) {
  uint32_t handle = 0;
  if (ZEP_MJPEG_Create(&handle, path.c_str(), 0, 0) != 0) return false;
  const uint32_t jpeg = coded != 0 ? coded : ZEP_JPEG_image_create();
  bool written = true;
  for (uint32_t i = 0; i < frames && written; ++i) {
    written = (coded != 0 || ZEP_JPEG_compress(sources[i % sources.size()], jpeg) == 0) &&
              ZEP_MJPEG_ImageWrite(handle, jpeg) == 0;
  }
  if (coded == 0) ZEP_image_destroy(jpeg);
  return ZEP_MJPEG_Close(handle) == 0 && written;
}

// Reads every frame of the file; with `decode`, decodes each into `image`.
bool mjpeg_read(const std::string &path, uint32_t image, bool decode, uint32_t frames) {
  uint32_t handle = 0;
  if (ZEP_MJPEG_Open(&handle, path.c_str()) != 0) return false;
  const uint32_t jpeg = ZEP_JPEG_image_create();
  bool read = true;
  for (uint32_t i = 0; i < frames && read; ++i) {
    read = ZEP_MJPEG_ImageRead(handle, jpeg, 0) == 0;
    if (read && decode) {
      describe_frame(image);
      read = ZEP_JPEG_decompress(jpeg, image) == 0;
    }
  }
  ZEP_image_destroy(jpeg);
  ZEP_MJPEG_Close(handle);
  return read;
}

// Opens the file and reads the frame near its end: by numbered read, which skips by the stored
// lengths, or by scanning over the records before it and reading the next one.
bool reach_near_end(const std::string &path, bool scan) {
  uint32_t handle = 0;
  if (ZEP_MJPEG_Open(&handle, path.c_str()) != 0) return false;
  const uint32_t jpeg = ZEP_JPEG_image_create();
  bool reached = false;
  if (scan) {
    reached = ZEP_MJPEG_ScanForwards(handle, kFrameNearTheEnd - 1) == 0 &&
              ZEP_MJPEG_ImageRead(handle, jpeg, 0) == 0;
  } else {
    reached = ZEP_MJPEG_ImageRead(handle, jpeg, kFrameNearTheEnd) == 0;
  }
  ZEP_MJPEG_RECORD record{};
  ZEP_MJPEG_GetInfo(handle, &record);
  ZEP_image_destroy(jpeg);
  ZEP_MJPEG_Close(handle);
  return reached && record.frame_number == kFrameNearTheEnd;
}

struct MjpegBest {
  Cost write, read, file_write, file_read, open, skip, scan;
  uint64_t frame_bytes = 0;
};

void run_mjpeg(const Settings &settings, const ScratchFolder &folder) {
  const std::string path = folder.file("frames.mjpg");
  const std::string long_path = folder.file("long.mjpg");
  std::vector<uint32_t> sources;
  for (uint32_t i = 0; i < 4; ++i) {
    sources.push_back(ZEP_image_create());
    ZEP_ImageMake(sources.back(), kWidth, kHeight, ZEP_YUV422, 0);
    fill_picture(sources.back(), i);
  }
  const uint32_t coded = ZEP_JPEG_image_create();
  ZEP_JPEG_compress(sources[0], coded);
  const uint32_t decoded = ZEP_image_create();
  const uint32_t n = settings.mjpeg_frames;
  MjpegBest best;
  best.frame_bytes = ZEP_image_get_parameter(coded, ZEP_JPEG_LENGTH);
  for (uint32_t round = 0; round < settings.rounds; ++round) {
    measure(best.write, [&] { return mjpeg_write(path, sources, 0, n); });
    measure(best.read, [&] { return mjpeg_read(path, decoded, true, n - 1); });
    measure(best.file_write, [&] { return mjpeg_write(path, sources, coded, n); });
    measure(best.file_read, [&] { return mjpeg_read(path, decoded, false, n - 1); });
  }
  if (!mjpeg_write(long_path, sources, coded, kSkipFileFrames + 1)) std::exit(1);
  for (uint32_t round = 0; round < settings.rounds; ++round) {
    measure(best.open, [&] {
      uint32_t handle = 0;
      return ZEP_MJPEG_Open(&handle, long_path.c_str()) == 0 && ZEP_MJPEG_Close(handle) == 0;
    });
    measure(best.skip, [&] { return reach_near_end(long_path, false); });
    measure(best.scan, [&] { return reach_near_end(long_path, true); });
  }
  std::filesystem::remove(path);
  std::filesystem::remove(long_path);

  const double kb = best.frame_bytes / 1e3;
  std::printf("\nMJPEG, %u x %u 4:2:2, %.0f kB a coded frame, %u frames, best of %u rounds\n",
              kWidth, kHeight, kb, n, settings.rounds);
  std::printf("  write (compress + write) %8.1f frames/s   file part alone %8.0f frames/s\n",
              n / best.write.wall, n / best.file_write.wall);
  std::printf("  read (read + decode)     %8.1f frames/s   file part alone %8.0f frames/s\n",
              (n - 1) / best.read.wall, (n - 1) / best.file_read.wall);
  std::printf("  frame %d of a %u-frame file (%.0f MB), from Open (%.1f ms of it):\n",
              kFrameNearTheEnd, kSkipFileFrames, kb * kSkipFileFrames / 1e3, best.open.wall * 1e3);
  std::printf("    skipping by stored lengths %9.2f ms\n", best.skip.wall * 1e3);
  std::printf("    scanning for markers       %9.2f ms   (%.0f x the skip)\n", best.scan.wall * 1e3,
              best.scan.wall / best.skip.wall);
}

Settings parse(int argc, char **argv) {
  Settings settings;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string option = argv[i];
    if (option == "--frames") settings.frames = std::max(1, std::atoi(argv[i + 1]));
    if (option == "--rounds") settings.rounds = std::max(1, std::atoi(argv[i + 1]));
    if (option == "--dir") settings.folder = argv[i + 1];
    if (option == "--mjpeg-frames") settings.mjpeg_frames = std::max(2, std::atoi(argv[i + 1]));
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
  run_mjpeg(settings, folder);
  ZEP_image_destroy(ZEP_ALL_IMAGES);
  return 0;
}
