// The stdio stream that every file format reads and writes through, owned RAII-style, and the
// slots that keep a stream open when a file function returns before the file is finished (an
// action other than "data" or "close", or a strip of a larger image).
#pragma once

#include <cstdint>
#include <cstdio>

namespace vrc::files {

class File {
 public:
  File() = default;
  File(const File &) = delete;
  File &operator=(const File &) = delete;
  File(File &&other) noexcept;
  File &operator=(File &&other) noexcept;
  ~File();

  // Opens `path` with the stdio `mode`; an empty File when that fails.
  static File open(const char *path, const char *mode);

  explicit operator bool() const { return m_stream != nullptr; }
  std::FILE *get() const { return m_stream; }

  // Closes the stream; false when closing reported an error (buffered data not written).
  bool close();
  // Bytes in the file; the position is kept.
  uint64_t size() const;

 private:
  explicit File(std::FILE *stream) : m_stream(stream) {}
  std::FILE *m_stream = nullptr;
};

// One slot per operation that may return with its file open. A stream parked in a slot stays
// open until the next parking in that slot or until every image is destroyed.
enum class OpenSlot : int { BmpRead, TiffRead, TiffWrite, EpsRead, EpsWrite, Count };

void keep_open(OpenSlot slot, File file);

}  // namespace vrc::files
