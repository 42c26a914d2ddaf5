// RAII stdio streams and the slots that hold streams left open between calls. The slots are
// closed when every image is destroyed (ZEP_image_destroy of all images) and at process exit.
#include "imaging/files/file_stream.h"

#include "imaging/core/library_hooks.h"

#include <array>
#include <mutex>
#include <utility>

namespace vrc::files {

File::File(File &&other) noexcept : m_stream(std::exchange(other.m_stream, nullptr)) {}

File &File::operator=(File &&other) noexcept {
  if (this != &other) {
    close();
    m_stream = std::exchange(other.m_stream, nullptr);
  }
  return *this;
}

File::~File() { close(); }

File File::open(const char *path, const char *mode) {
  if (path == nullptr || path[0] == '\0') return File();
  return File(std::fopen(path, mode));
}

bool File::close() {
  if (m_stream == nullptr) return true;
  return std::fclose(std::exchange(m_stream, nullptr)) == 0;
}

uint64_t File::size() const {
  const long position = std::ftell(m_stream);
  if (position < 0 || std::fseek(m_stream, 0, SEEK_END) != 0) return 0;
  const long end = std::ftell(m_stream);
  std::fseek(m_stream, position, SEEK_SET);
  return end < 0 ? 0 : static_cast<uint64_t>(end);
}

namespace {

struct Slots {
  std::mutex guard;
  std::array<File, static_cast<std::size_t>(OpenSlot::Count)> files;
};

Slots &slots() {
  static Slots instance;
  return instance;
}

void close_all_slots() {
  Slots &all = slots();
  std::lock_guard lock(all.guard);
  for (File &file : all.files) file.close();
}

const bool registered = vrc::core::register_teardown(&close_all_slots);

}  // namespace

void keep_open(OpenSlot slot, File file) {
  Slots &all = slots();
  std::lock_guard lock(all.guard);
  all.files[static_cast<std::size_t>(slot)] = std::move(file);
}

}  // namespace vrc::files
