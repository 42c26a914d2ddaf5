// Writing uncompressed big-endian TIFF files with one image in one strip.
//
// The header, the directory and the extra data (colour map or BitsPerSample array, then the two
// resolutions of 300/1) are laid out in memory first, every offset known up front, and written in
// one go; the pixel data follows. QUIRK: some values are kept as this format has always written
// them: StripByteCounts of a Y16 image counts one byte per pixel although two are written,
// resolutions carry no unit, and Y1, paletted and CMYK32 images get a header but no pixel bytes.
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/tiff/tiff_layout.h"
#include "vrcw32/zep_files.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace vrc::files::tiff {
namespace {

constexpr char kWriteName[] = "ZEP_write_TIFF_file";

// How one pixel format is described in the directory.
struct FormatEntry {
  uint16_t type;
  uint16_t photometric;
  uint16_t samples;    // SamplesPerPixel
  bool bits_as_array;  // BitsPerSample written as an array of 8s, one per sample
};

constexpr FormatEntry kFormats[] = {
    {ZEP_Y1, kBlackIsZero, 1, false},  {ZEP_Y8, kBlackIsZero, 1, false},
    {ZEP_Y16, kBlackIsZero, 1, false}, {ZEP_PALETTED, kPalette, 1, false},
    {ZEP_RGB24, kRgb, 3, true},        {ZEP_BGR24, kRgb, 3, true},
    {ZEP_BGRX32, kRgb, 3, true},       {ZEP_YUV422, kRgb, 3, true},
    {ZEP_CMYK32, kSeparated, 4, true},
};

std::optional<FormatEntry> find_format(uint16_t type) {
  for (const FormatEntry &entry : kFormats) {
    if (entry.type == type) return entry;
  }
  return std::nullopt;
}

// Appends directory entries and raw big-endian values to a byte block.
class Block {
 public:
  void put16(uint16_t value) {
    const std::size_t at = grow(2);
    ZEP_mput_ui16m(&m_bytes[at], value);
  }
  void put32(uint32_t value) {
    const std::size_t at = grow(4);
    ZEP_mput_ui32m(&m_bytes[at], value);
  }
  // A single SHORT value is the 16-bit value followed by 16 zero bits; any other value word is a
  // 32-bit value or offset.
  void entry(uint16_t tag, uint16_t type, uint32_t count, uint32_t value) {
    put16(tag);
    put16(type);
    put32(count);
    if (type == kTypeShort && count == 1) {
      put16(static_cast<uint16_t>(value));
      put16(0);
    } else {
      put32(value);
    }
  }
  const std::vector<uint8_t> &bytes() const { return m_bytes; }

 private:
  std::size_t grow(std::size_t bytes) {
    m_bytes.resize(m_bytes.size() + bytes);
    return m_bytes.size() - bytes;
  }
  std::vector<uint8_t> m_bytes;
};

std::vector<uint8_t> build_header(const ZEP_IMAGE &image, const FormatEntry &format) {
  const bool paletted = format.type == ZEP_PALETTED;
  const bool grey = !paletted && !format.bits_as_array;
  const uint16_t entries = grey ? 13 : 14;
  const uint32_t directory_end = 10 + kEntryBytes * entries + 4;
  uint32_t extra_bytes = 0;
  if (paletted) extra_bytes = 3 * kColorMapEntries * 2;
  if (format.bits_as_array) extra_bytes = 2u * format.samples;
  const uint32_t x_resolution = directory_end + extra_bytes;
  const uint32_t y_resolution = x_resolution + 8;
  const uint32_t pixel_data = y_resolution + 8;

  uint32_t bits = 8;
  if (format.type == ZEP_Y1) bits = 1;
  if (format.type == ZEP_Y16) bits = image.data_width;
  const uint32_t line_count =
      format.type == ZEP_Y1 ? (image.width + 7) / 8 : image.width * format.samples;

  Block block;
  block.put16('M' << 8 | 'M');
  block.put16(kMagic);
  block.put32(8);
  block.put16(entries);
  block.entry(kNewSubfileType, kTypeLong, 1, 0);
  block.entry(kImageWidth, kTypeShort, 1, image.width);
  block.entry(kImageLength, kTypeShort, 1, image.height);
  if (format.bits_as_array) {
    block.entry(kBitsPerSample, kTypeShort, format.samples, directory_end);
  } else {
    block.entry(kBitsPerSample, kTypeShort, 1, bits);
  }
  block.entry(kCompression, kTypeShort, 1, 1);
  block.entry(kPhotometric, kTypeShort, 1, format.photometric);
  block.entry(kStripOffsets, kTypeLong, 1, pixel_data);
  block.entry(kSamplesPerPixel, kTypeShort, 1, format.samples);
  block.entry(kRowsPerStrip, kTypeLong, 1, image.height);
  block.entry(kStripByteCounts, kTypeLong, 1, image.height * line_count);
  block.entry(kXResolution, kTypeRational, 1, x_resolution);
  block.entry(kYResolution, kTypeRational, 1, y_resolution);
  if (paletted) {
    block.entry(kResolutionUnit, kTypeShort, 1, 1);
    block.entry(kColorMap, kTypeShort, 3 * kColorMapEntries, directory_end);
  } else if (format.bits_as_array) {
    block.entry(kPlanarConfiguration, kTypeShort, 1, 1);
    block.entry(kResolutionUnit, kTypeShort, 1, 1);
  } else {
    block.entry(kResolutionUnit, kTypeShort, 1, 1);
  }
  block.put32(0);  // no next directory

  if (paletted) {
    // Red run, green run, blue run; each 8-bit component c is stored as the 16-bit value c x 257.
    for (uint32_t component = 0; component < 3; ++component) {
      for (uint32_t entry = 0; entry < kColorMapEntries; ++entry) {
        const uint8_t value = image.cmap != nullptr ? image.cmap[4 * entry + component] : 0;
        block.put16(static_cast<uint16_t>(value << 8 | value));
      }
    }
  }
  if (format.bits_as_array) {
    for (uint32_t sample = 0; sample < format.samples; ++sample) block.put16(8);
  }
  for (int resolution = 0; resolution < 2; ++resolution) {
    block.put32(300);
    block.put32(1);
  }
  return block.bytes();
}

uint8_t clamp_to_byte(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

// Two R, G, B pixels per Y0, U, Y1, V quadruple, in 1/1024 units.
void yuv422_to_rgb(std::span<const uint8_t> yuv, std::span<uint8_t> rgb, uint32_t width) {
  for (uint32_t x = 0; x < width; ++x) {
    const int32_t y = yuv[2 * x] * 1024;
    const int32_t u = yuv[4 * (x / 2) + 1] - 128;
    const int32_t v = yuv[4 * (x / 2) + 3] - 128;
    rgb[3 * x + 0] = clamp_to_byte((y + 1436 * v) >> 10);
    rgb[3 * x + 1] = clamp_to_byte((y - 731 * v - 352 * u) >> 10);
    rgb[3 * x + 2] = clamp_to_byte((y + 1815 * u) >> 10);
  }
}

// The bytes written for one image line in the file's layout; empty for formats whose pixels are
// not written.
void build_line(const ZEP_IMAGE &image, uint32_t line, std::vector<uint8_t> &source,
                std::vector<uint8_t> &out) {
  const uint64_t start = uint64_t{line} * image.bytes_per_line;
  const uint64_t width = image.width;
  auto load = [&](uint64_t bytes) {
    source.resize(static_cast<std::size_t>(bytes));
    copy_bounded(strip_range(image, start, bytes), source);
  };
  switch (image.type) {
    case ZEP_Y8:
    case ZEP_RGB24:
      load(image.bytes_per_line - image.skip_bytes);
      out = source;
      break;
    case ZEP_BGR24:
    case ZEP_BGRX32: {
      const uint32_t step = image.type == ZEP_BGR24 ? 3 : 4;
      load(width * step);
      out.resize(static_cast<std::size_t>(width * 3));
      repack_pixels(source, step, kReversedOrder, out, width);
      break;
    }
    case ZEP_Y16:
      load(width * 2);
      out.resize(source.size());
      for (uint64_t x = 0; x < width; ++x) {
        ZEP_mput_ui16m(&out[2 * x], ZEP_mget_ui16i(&source[2 * x]));
      }
      break;
    case ZEP_YUV422:
      load((width + 1) / 2 * 4);
      out.resize(static_cast<std::size_t>(width * 3));
      yuv422_to_rgb(source, out, image.width);
      break;
    default: out.clear(); break;
  }
}

void write_strip(const ZEP_IMAGE &image, std::FILE *file) {
  std::vector<uint8_t> source;
  std::vector<uint8_t> out;
  for (uint32_t line = 0; line < image.lines_this_strip; ++line) {
    build_line(image, line, source, out);
    write_bytes(file, out);
  }
}

uint32_t write_tiff(uint32_t handle, uint16_t action) {
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = check_image_to_write(kWriteName, handle, image); status != ZEP_OK)
    return status;
  const std::optional<FormatEntry> format = find_format(image->type);
  if (!format)
    return core::report(kWriteName, ZEP_ERR_UNSUPPORTED | image->type, message::kUnsupportedFormat);
  if (image->type == ZEP_PALETTED && image->cmap_colours != kColorMapEntries) {
    return core::report(kWriteName, ZEP_ERR_UNSUPPORTED | (image->cmap_colours & 0xFFFF),
                        "Unsupported palette/colourmap size");
  }
  File file = File::open(image->outfilename, "wb");
  if (!file) return core::report(kWriteName, ZEP_ERR_OPEN, message::kCreateFailed);
  std::setvbuf(file.get(), nullptr, _IOFBF, kWriteBufferBytes);
  const std::vector<uint8_t> header = build_header(*image, *format);
  write_bytes(file.get(), header);

  if (action != ZEP_ACTION_DATA)
    return finish_without_data(kWriteName, file, OpenSlot::TiffWrite, action);
  if (image->lines_this_strip < image->height) {
    write_strip(*image, file.get());
    keep_open(OpenSlot::TiffWrite, std::move(file));
    return ZEP_OK;
  }
  image->lines_this_strip = image->height;
  write_strip(*image, file.get());
  return close_file(kWriteName, file);
}

}  // namespace
}  // namespace vrc::files::tiff

extern "C" uint32_t ZEP_write_TIFF_file(uint32_t handle, uint16_t action) {
  return vrc::core::api_guard(vrc::files::tiff::kWriteName,
                              [&] { return vrc::files::tiff::write_tiff(handle, action); });
}
