// Test support for the file formats.
#include "files/files_support.h"

#include <array>
#include <utility>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

namespace vrc::test {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "zep-files-XXXXXX").string();
  m_path = ::mkdtemp(pattern.data());
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

Bytes read_file(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void write_file(const std::string &path, const Bytes &bytes) {
  std::ofstream out(path, std::ios::binary);
  out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void write_file(const std::string &path, const std::string &text) { write_file(path, Bytes(text.begin(), text.end())); }

std::string run_command(const std::string &command, int *status) {
  std::string output;
  FILE *pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) {
    if (status != nullptr) *status = -1;
    return output;
  }
  std::array<char, 4096> chunk{};
  while (std::size_t got = std::fread(chunk.data(), 1, chunk.size(), pipe)) output.append(chunk.data(), got);
  const int result = ::pclose(pipe);
  if (status != nullptr) *status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
  return output;
}

bool program_available(const std::string &name) {
  int status = 0;
  run_command("command -v " + name + " >/dev/null 2>&1", &status);
  return status == 0;
}

std::string run_pillow(const std::string &script, int *status) {
  TempDir folder;
  const std::string path = folder.file("oracle.py");
  write_file(path, "from PIL import Image\n" + script);
  return run_command("/usr/bin/python3 " + path + " 2>&1", status);
}

void make_pattern_image(uint32_t handle, uint32_t width, uint32_t height, uint16_t type) {
  ZEP_ImageMake(handle, width, height, type, 0);
  auto *data = static_cast<uint8_t *>(ZEP_image_get_ptr(handle, ZEP_DATA_PTR));
  const uint32_t line = ZEP_image_get_parameter(handle, ZEP_BYTES_PER_LINE);
  const uint32_t pixel_bytes = line - ZEP_image_calc_skip_bytes(width, ZEP_image_get_parameter(handle, ZEP_IMAGE_DEPTH),
                                                            ZEP_image_get_parameter(handle, ZEP_LINE_ALIGN));
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < pixel_bytes; ++x) data[y * line + x] = pattern_byte(x, y);
  }
}

Bytes line_bytes(uint32_t handle, uint32_t line, uint32_t count) {
  const auto *data = static_cast<const uint8_t *>(ZEP_image_get_ptr(handle, ZEP_DATA_PTR));
  const uint32_t start = line * ZEP_image_get_parameter(handle, ZEP_BYTES_PER_LINE);
  return Bytes(data + start, data + start + count);
}

Bytes line_rgb(uint32_t handle, uint32_t line) {
  const uint32_t type = ZEP_image_get_parameter(handle, ZEP_IMAGE_TYPE);
  const uint32_t width = ZEP_image_get_parameter(handle, ZEP_IMAGE_WIDTH);
  Bytes rgb;
  if (type == ZEP_PALETTED) {
    for (uint8_t index : line_bytes(handle, line, width)) {
      const uint32_t colour = ZEP_cmap_get_RGB_colour(handle, index);
      rgb.insert(rgb.end(), {uint8_t(colour >> 16), uint8_t(colour >> 8), uint8_t(colour)});
    }
    return rgb;
  }
  const uint32_t step = type == ZEP_BGRX32 ? 4 : 3;
  const Bytes memory = line_bytes(handle, line, width * step);
  for (uint32_t x = 0; x < width; ++x) rgb.insert(rgb.end(), memory.begin() + x * step, memory.begin() + x * step + 3);
  return type == ZEP_RGB24 ? rgb : swap_red_blue(rgb);
}

Bytes swap_red_blue(Bytes pixels) {
  for (std::size_t x = 0; x + 2 < pixels.size(); x += 3) std::swap(pixels[x], pixels[x + 2]);
  return pixels;
}

std::string hex(const Bytes &bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

uint32_t get(uint32_t image, uint16_t id) { return ZEP_image_get_parameter(image, id); }

uint32_t write_bmp(uint32_t image, const std::string &path) {
  ZEP_image_set_outfilename(image, path.c_str());
  return ZEP_write_BMP_file(image);
}

uint32_t read_bmp(uint32_t image, const std::string &path, uint16_t action) {
  ZEP_image_set_infilename(image, path.c_str());
  return ZEP_read_BMP_file(image, action);
}

uint32_t write_tiff(uint32_t image, const std::string &path, uint16_t action) {
  ZEP_image_set_outfilename(image, path.c_str());
  return ZEP_write_TIFF_file(image, action);
}

uint32_t read_tiff(uint32_t image, const std::string &path, uint16_t action) {
  ZEP_image_set_infilename(image, path.c_str());
  return ZEP_read_TIFF_file(image, action);
}

uint32_t write_eps(uint32_t image, const std::string &path, uint16_t action) {
  ZEP_image_set_outfilename(image, path.c_str());
  return ZEP_write_EPS_file(image, action);
}

uint32_t read_eps(uint32_t image, const std::string &path, uint16_t action) {
  ZEP_image_set_infilename(image, path.c_str());
  return ZEP_read_EPS_file(image, action);
}

std::string write_damaged(const TempDir &folder, Bytes good, const BadFile &bad, const std::string &target,
                          const std::string &extension) {
  bad.damage(good);
  const std::string name = bad.name + extension;
  write_seed(target, name, good);
  write_file(folder.file(name), good);
  return folder.file(name);
}

Bytes pattern_file(uint16_t type, uint32_t width, uint32_t height,
                   const std::function<uint32_t(uint32_t, const std::string &)> &write) {
  TempDir folder;
  ScopedImage image;
  make_pattern_image(image, width, height, type);
  EXPECT_EQ(write(image, folder.file("good")), 0u);
  return read_file(folder.file("good"));
}

const FileFormat kBmpFormat{
    [](uint32_t image, const std::string &path) { return write_bmp(image, path); },
    [](uint32_t image, const std::string &path) { return read_bmp(image, path); },
    "ZEP_read_BMP_file", "bmp_read_fuzz", ".bmp"};

const FileFormat kTiffFormat{
    [](uint32_t image, const std::string &path) { return write_tiff(image, path); },
    [](uint32_t image, const std::string &path) { return read_tiff(image, path); },
    "ZEP_read_TIFF_file", "tiff_read_fuzz", ".tif"};

void expect_read_failure(const FileFormat &format, uint32_t width, uint32_t height, const BadFile &bad) {
  const Bytes good = pattern_file(ZEP_RGB24, width, height, format.write);
  ErrorCapture errors;
  TempDir folder;
  ScopedImage image;
  EXPECT_EQ(format.read(image, write_damaged(folder, good, bad, format.fuzz_target, format.extension)), bad.code);
  ASSERT_GE(errors.count(), 1u);  // a failed check has reported itself first
  EXPECT_EQ(errors.last().function, format.read_function);
  EXPECT_EQ(errors.last().message, bad.message);
}

void write_seed(const std::string &target, const std::string &name, const Bytes &bytes) {
  const std::filesystem::path folder = std::filesystem::path(VRC_SEED_DIR) / target;
  std::filesystem::create_directories(folder);
  write_file((folder / name).string(), bytes);
}

}  // namespace vrc::test
