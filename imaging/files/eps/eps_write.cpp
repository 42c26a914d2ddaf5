// Writing Y1, Y8, paletted and RGB24 images as EPS pages. Paletted images use an indexed colour
// space (a LanguageLevel 2 image dictionary); the others use the "image" / "colorimage"
// operators with a hexadecimal string procedure. QUIRK: the RGB24 header carries an
// "Extensions: CMYK" comment.
#include "imaging/core/report.h"
#include "imaging/files/eps/eps_layout.h"
#include "imaging/files/file_common.h"
#include "vrcw32/zep_files.h"

#include <string>

namespace vrc::files::eps {
namespace {

constexpr char kWriteName[] = "ZEP_write_EPS_file";

bool is_writable(uint16_t type) {
  return type == ZEP_Y1 || type == ZEP_Y8 || type == ZEP_PALETTED || type == ZEP_RGB24;
}

void write_header(std::FILE *out, const ZEP_IMAGE &image, const PageGeometry &page) {
  std::fprintf(out, "%%!PS-Adobe-3.0 EPSF-3.0\n");
  std::fprintf(out, "%%%%BoundingBox: %ld %ld %ld %ld\n", static_cast<long>(page.x0),
               static_cast<long>(page.y0), static_cast<long>(page.x1), static_cast<long>(page.y1));
  std::fprintf(out, "%%%%Creator: %.*s\n", ZEP_NAME_LENGTH - 1, image.name);
  if (image.type == ZEP_RGB24) std::fprintf(out, "%%%%Extensions: CMYK\n");
  if (image.type == ZEP_PALETTED) std::fprintf(out, "%%%%LanguageLevel: 2\n");
  std::fprintf(out, "%%%%EndComments\n");
  std::fprintf(out, "%%%%EndProlog\n");
  std::fprintf(out, "%ld %ld translate\n", static_cast<long>(page.x0), static_cast<long>(page.y0));
  std::fprintf(out, "0 rotate\n");
}

void write_scale(std::FILE *out, const PageGeometry &page) {
  std::fprintf(out, "%ld %ld scale\n", static_cast<long>(page.scale_x),
               static_cast<long>(page.scale_y));
}

// The indexed colour space and the image dictionary of a paletted image.
void write_paletted_prolog(std::FILE *out, const ZEP_IMAGE &image, const PageGeometry &page) {
  const long width = image.width;
  const long height = image.height;
  write_scale(out, page);
  std::fprintf(out, "[/Indexed /DeviceRGB %d\n <", static_cast<int>(image.cmap_colours - 1));
  const uint32_t entries = image.cmap_colours < 256 ? image.cmap_colours : 256;
  for (uint32_t entry = 0; entry < entries && image.cmap != nullptr; ++entry) {
    const uint8_t *rgb = image.cmap + 4 * entry;
    std::fprintf(out, "%02x%02x%02x", rgb[0], rgb[1], rgb[2]);
    std::fputs(entry % 11 == 10 ? "\n  " : " ", out);
  }
  std::fprintf(out, ">\n] setcolorspace\n");
  std::fprintf(out, "<<\n  /ImageType 1\n  /Width %d\n  /Height %d\n  /BitsPerComponent %d\n",
               static_cast<int>(image.width), static_cast<int>(image.height),
               static_cast<int>(image.depth));
  std::fprintf(out, "  /Decode [0 1 0 1 0 1]\n");
  if (page.landscape) {
    std::fprintf(out, "  /ImageMatrix[0 %ld %ld 0 0 0]\t%% Landscape Orientation\n", width, height);
  } else {
    std::fprintf(out, "  /ImageMatrix[%ld 0 0 -%ld 0 %ld]\t%% Portrait Orientation\n", width,
                 height, height);
  }
  std::fprintf(out, "  /DataSource currentfile\n  /ASCIIHexDecode filter\n>>\nimage\n");
}

// The string procedure and image operator of a Y1, Y8 or RGB24 image.
void write_direct_prolog(std::FILE *out, const ZEP_IMAGE &image, const PageGeometry &page) {
  const long width = image.width;
  const long height = image.height;
  std::fprintf(out, "/picstr %ld string def\n", width);
  write_scale(out, page);
  std::fprintf(out, "%ld %ld %d\n", width, height, image.type == ZEP_Y1 ? 1 : 8);
  if (page.landscape) {
    std::fprintf(out, "[0 %ld %ld 0 0 0]\t%% Landscape Orientation\n", width, height);
  } else {
    std::fprintf(out, "[%ld 0 0 -%ld 0 %ld]\t%% Portrait Orientation\n", width, height, height);
  }
  std::fprintf(out, "{currentfile\n picstr readhexstring pop}\n");
  std::fprintf(out, image.type == ZEP_RGB24 ? "false 3\ncolorimage\n" : "image\n");
}

// Every line of the strip as hex digits, 39 bytes to a row, each line ending in a newline.
void write_hex_data(std::FILE *out, const ZEP_IMAGE &image) {
  static constexpr char kDigits[] = "0123456789abcdef";
  const uint64_t count = line_bytes(image.type, image.width);
  const bool odd = line_is_odd(image.type, image.width);
  std::string text;
  uint64_t memory_offset = 0;
  for (uint32_t line = 0; line < image.lines_this_strip; ++line) {
    const std::span<const uint8_t> bytes = strip_range(image, memory_offset, count);
    text.clear();
    for (uint64_t i = 0; i < count; ++i) {
      const uint8_t value = i < bytes.size() ? bytes[i] : 0;
      text += kDigits[value >> 4];
      text += kDigits[value & 0x0F];
      if (i % kHexBytesPerRow == kHexBytesPerRow - 1) text += '\n';
    }
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), out);
    memory_offset += count + (odd ? 1 : 0);
  }
  std::fprintf(out, "showpage\n%%%%EOF\n");
}

uint32_t write_eps(uint32_t handle, uint16_t action) {
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = check_image_to_write(kWriteName, handle, image); status != ZEP_OK)
    return status;
  if (!is_writable(image->type)) {
    return core::report(kWriteName, ZEP_ERR_UNSUPPORTED | image->type, message::kUnsupportedFormat);
  }
  if (image->lines_this_strip == 0) return ZEP_OK;
  const std::optional<PageGeometry> page = page_geometry(image->width, image->height);
  if (!page) return core::report(kWriteName, ZEP_ERR_CORRUPT, message::kCorruptImage);
  File file = File::open(image->outfilename, "w");
  if (!file) return core::report(kWriteName, ZEP_ERR_OPEN, message::kCreateFailed);
  std::setvbuf(file.get(), nullptr, _IOFBF, kWriteBufferBytes);

  write_header(file.get(), *image, *page);
  if (image->type == ZEP_PALETTED) {
    write_paletted_prolog(file.get(), *image, *page);
  } else {
    write_direct_prolog(file.get(), *image, *page);
  }
  if (action != ZEP_ACTION_DATA)
    return finish_without_data(kWriteName, file, OpenSlot::EpsWrite, action);
  write_hex_data(file.get(), *image);
  return close_file(kWriteName, file);
}

}  // namespace
}  // namespace vrc::files::eps

extern "C" uint32_t ZEP_write_EPS_file(uint32_t handle, uint16_t action) {
  return vrc::core::api_guard(vrc::files::eps::kWriteName,
                              [&] { return vrc::files::eps::write_eps(handle, action); });
}
