// zep: pieces shared by the commands of the command-line tool.
#pragma once

#include "vrcw32/zep.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zep_tool {

// Exit statuses.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;
inline constexpr int kUsage = 2;

// Pixel-format and file-format names as the user types and reads them.
const char *type_name(uint32_t type);
std::optional<uint16_t> type_from_name(std::string_view name);
const char *format_name(uint32_t format);
// A format the library writes, by its name or one of its extensions, in any letter case.
std::optional<uint16_t> output_format_from_name(std::string_view name);
// The format the library writes that a file name's extension suggests.
std::optional<uint16_t> output_format_from_extension(std::string_view path);

// The file formats the library knows, in its order.
std::vector<const ZEP_FILE_FORMAT_INFO *> file_formats();
bool is_readable(const ZEP_FILE_FORMAT_INFO &format);
bool is_writable(const ZEP_FILE_FORMAT_INFO &format);
bool is_detected(const ZEP_FILE_FORMAT_INFO &format);

// The names of the formats `keep` accepts, as "BMP, TIFF or EPS" or "bmp|tiff|eps".
enum class Case { Upper, Lower };
std::string format_list(bool (*keep)(const ZEP_FILE_FORMAT_INFO &), Case letters,
                        const char *separator, const char *last_separator);

// Starts the library with an error handler that keeps the last report instead of printing it.
void start_library();

// Prints one failure as "zep: WHAT: WHY": WHAT formatted from `format` (what the tool tried),
// WHY the library's report of the failure when it made one since the last failure printed.
[[gnu::format(printf, 1, 2)]] void fail(const char *format, ...);

// Fits a path into an image's 127-character name field; false (with a message) when too long.
bool path_fits(const char *path);

// An image handle destroyed at the end of the scope.
class Image {
 public:
  Image() : m_handle(ZEP_image_create()) {}
  // Takes over an image made otherwise, such as by ZEP_JPEG_image_create.
  explicit Image(uint32_t handle) : m_handle(handle) {}
  ~Image() {
    if (!ZEP_IS_ERROR(m_handle)) ZEP_image_destroy(m_handle);
  }
  Image(const Image &) = delete;
  Image &operator=(const Image &) = delete;
  uint32_t handle() const { return m_handle; }
  bool created() const { return !ZEP_IS_ERROR(m_handle); }

 private:
  uint32_t m_handle;
};

// Reads the whole of `path` into `image` as one strip (a JPEG file decoded to Y8 or RGB24); the
// library's status.
uint32_t read_whole_image(uint32_t image, const char *path);
// Writes `image` to `path` in `format`, a JPEG file at the quality scale `quality` (the library's
// default without one); the library's status.
uint32_t write_image(uint32_t image, const char *path, uint16_t format,
                     std::optional<uint16_t> quality = std::nullopt);
// Whether `format` can store pixels of `type` as they are.
bool format_accepts(uint16_t format, uint32_t type);

// Inspects `path` before it is read: false, with the cause printed, when zep refuses the file.
bool inspect_input(const char *path, ZEP_FILE_INSPECTION &inspection);
// Prints the inspection's warnings as "zep: warning: PATH: ...".
void print_warnings(const char *path, const ZEP_FILE_INSPECTION &inspection);
// read_whole_image, then the inspection's warnings printed and its corrections made.
uint32_t read_checked_image(uint32_t image, const char *path,
                            const ZEP_FILE_INSPECTION &inspection);

// The pixel format to convert `image` to for `format` when the format cannot hold its own:
// Y8 for Y16 and grey-mapped paletted images, otherwise RGB24; none when the format holds
// neither.
std::optional<uint16_t> route_type(uint16_t format, uint32_t image);
// The type to ask ZEP_image_convert for to turn `image` into `type`. A paletted image with a
// grey colour map is first made Y8 in place (so nothing is left to convert when Y8 is wanted);
// a coloured one asks for the paletted-to-direct conversion when RGB24 is wanted.
uint16_t conversion_request(uint32_t image, uint16_t type);
// JPEG files (jpeg_commands.cpp): decoding one into `image`, compressing `image` into one, and
// printing what one holds.
uint32_t read_jpeg(uint32_t image, const char *path);
// Gives `image` the size of the JPEG image `jpeg` and the pixel format it decodes to (Y8 for grey,
// RGB24 for colour), without data.
void describe_decoded(uint32_t jpeg, uint32_t image);
// Decodes the JPEG image `jpeg` into `image` (Y8 or RGB24).
uint32_t decode_jpeg(uint32_t jpeg, uint32_t image);
// Compresses `image` into the JPEG image `jpeg`, at the quality scale `quality` when given.
uint32_t compress_jpeg(uint32_t image, uint32_t jpeg, std::optional<uint16_t> quality);
uint32_t write_jpeg(uint32_t image, const char *path, std::optional<uint16_t> quality);
int describe_jpeg(const char *path);

int run_demo(int argc, char **argv);
// Writes the demo's numbered sequence seq001.tif ... into `folder`.
bool write_demo_sequence(const std::string &folder);
int run_info(int argc, char **argv);
int run_convert(int argc, char **argv);
int run_seq(int argc, char **argv);

}  // namespace zep_tool
