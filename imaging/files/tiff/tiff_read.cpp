// Reading uncompressed single-image TIFF files in either byte order: grey (1, 8 and 9..16 bits),
// RGB (24 and 32 bits), and 4- or 8-bit palette images, in any number of strips.
//
// QUIRK: two behaviours are kept as this reader has always had them: 16-bit samples and the colour
// map are read most significant byte first whatever the file's byte order, and a failure while the
// pixels are read is silent (the call still succeeds, with the lines read so far).
#include "imaging/core/report.h"
#include "imaging/files/file_common.h"
#include "imaging/files/tiff/tiff_layout.h"
#include "vrcw32/zep_files.h"

#include <algorithm>
#include <vector>

namespace vrc::files::tiff {
namespace {

constexpr char kReadName[] = "ZEP_read_TIFF_file";
constexpr uint32_t kNoPhotometric = 0xFFFFFFFF;

// What the directory says about the image.
struct Directory {
  uint32_t bits = 1;
  uint32_t samples = 1;
  uint32_t photometric = kNoPhotometric;
  uint32_t rows_per_strip = 0;
  uint32_t strip_count = 0;  // StripOffsets count
  uint16_t strip_type = kTypeLong;
  uint32_t strip_offsets = 0;  // the single offset, or the file position of the offsets
  bool has_colour_map = false;
  uint32_t palette_length = 0;
  uint32_t colour_map_offset = 0;
};

class Reader {
 public:
  Reader(ZEP_IMAGE &image, std::FILE *file, uint16_t order, uint64_t file_size)
      : m_image(image), m_file(file), m_order(order), m_file_size(file_size) {}

  uint32_t read_directory(uint32_t directory_offset);
  uint32_t decide_format(uint32_t handle);
  uint64_t file_line_bytes() const { return m_line_bytes; }
  // Reads every line of the image into its strip; false when a strip cannot be read.
  bool read_pixels();

 private:
  uint32_t read_entry(uint16_t tag, uint16_t type, uint32_t count, long value_position);
  uint32_t sum_bits_per_sample(uint32_t count);
  void read_palette();
  bool seek(uint64_t position) {
    return position <= m_file_size &&
           std::fseek(m_file, static_cast<long>(position), SEEK_SET) == 0;
  }
  bool strip_offset(uint32_t strip, uint32_t &offset);
  void store_line(std::span<const uint8_t> file_line, uint64_t &memory_offset);

  ZEP_IMAGE &m_image;
  std::FILE *m_file;
  uint16_t m_order;
  uint64_t m_file_size;
  Directory m_directory;
  uint64_t m_line_bytes = 0;  // bytes of one line in the file
};

uint32_t fail(const char *message, uint32_t code = ZEP_ERR_UNEXPECTED) {
  return core::report(kReadName, code, message);
}

uint32_t Reader::read_directory(uint32_t directory_offset) {
  if (!seek(directory_offset)) return fail("unsupported TIFF format", ZEP_ERR_UNSUPPORTED);
  const uint16_t entries = read_ui16(m_file, m_order);
  if (entries == 0 || std::feof(m_file))
    return fail("unsupported TIFF format", ZEP_ERR_UNSUPPORTED);
  // Entries that would lie past the end of the file do not exist.
  const uint64_t first_entry = uint64_t{directory_offset} + 2;
  const uint64_t present =
      m_file_size > first_entry ? (m_file_size - first_entry) / kEntryBytes : 0;
  const uint64_t count = std::min<uint64_t>(entries, present);
  for (uint64_t index = 0; index < count; ++index) {
    const uint64_t entry_position = first_entry + index * kEntryBytes;
    seek(entry_position);
    const uint16_t tag = read_ui16(m_file, m_order);
    const uint16_t type = read_ui16(m_file, m_order);
    const uint32_t value_count = read_ui32(m_file, m_order);
    const uint32_t status =
        read_entry(tag, type, value_count, static_cast<long>(entry_position + 8));
    if (status != ZEP_OK) return status;
  }
  return ZEP_OK;
}

uint32_t Reader::sum_bits_per_sample(uint32_t count) {
  const uint32_t offset = read_ui32(m_file, m_order);
  const uint64_t present = m_file_size > offset ? (m_file_size - offset) / 2 : 0;
  uint32_t sum = 0;
  if (seek(offset)) {
    for (uint64_t sample = 0; sample < std::min<uint64_t>(count, present); ++sample) {
      sum += read_ui16(m_file, m_order);
    }
  }
  return sum;
}

uint32_t Reader::read_entry(uint16_t tag, uint16_t type, uint32_t count, long value_position) {
  switch (tag) {
    case kNewSubfileType: {
      if (count != 1) return fail("Expecting 1 entry in NewSubFileType");
      const uint32_t kind = read_data(m_file, m_order, type);
      if (kind != 0 && kind != 2)
        return fail("Expecting single full resolution image", ZEP_ERR_UNSUPPORTED);
      return ZEP_OK;
    }
    case kImageWidth:
      if (count != 1) return fail("Expecting 1 entry in ImageWidth");
      m_image.width = read_data(m_file, m_order, type);
      return ZEP_OK;
    case kImageLength:
      if (count != 1) return fail("expecting 1 entry in ImageLength");
      m_image.height = read_data(m_file, m_order, type);
      return ZEP_OK;
    case kBitsPerSample:
      if (count < 3) {
        m_directory.bits = read_data(m_file, m_order, type);
        return ZEP_OK;
      }
      m_directory.bits = sum_bits_per_sample(count);
      return m_directory.bits == 24 || m_directory.bits == 32
                 ? ZEP_OK
                 : fail("unsupported image", ZEP_ERR_UNSUPPORTED);
    case kCompression:
      if (count != 1) return fail("expecting 1 entry in Compression");
      if (read_data(m_file, m_order, type) != 1) {
        return fail("compressed TIFF images not supported", ZEP_ERR_UNSUPPORTED);
      }
      return ZEP_OK;
    case kPhotometric:
      if (count != 1) return fail("expecting 1 entry in PhotometricInterp");
      m_directory.photometric = read_data(m_file, m_order, type);
      if (m_directory.photometric > kPalette)
        return fail("unsupported image type", ZEP_ERR_UNSUPPORTED);
      return ZEP_OK;
    case kStripOffsets: {
      m_directory.strip_count = count;
      m_directory.strip_type = type;
      const uint64_t value_size = type == kTypeShort ? 2 : 4;
      if (count == 1) {
        m_directory.strip_offsets = read_data(m_file, m_order, type);
      } else if (uint64_t{count} * value_size <= 4) {
        m_directory.strip_offsets = static_cast<uint32_t>(value_position);
      } else {
        m_directory.strip_offsets = read_ui32(m_file, m_order);
      }
      return ZEP_OK;
    }
    case kSamplesPerPixel:
      if (count != 1) return fail("expecting 1 entry in SamplesPerPixeltr");
      m_directory.samples = read_data(m_file, m_order, type);
      return ZEP_OK;
    case kRowsPerStrip:
      if (count != 1) return fail("expecting 1 entry in RowsPerStrip");
      m_directory.rows_per_strip = read_data(m_file, m_order, type);
      return ZEP_OK;
    case kColorMap:
      m_directory.has_colour_map = true;
      m_directory.palette_length = count / 3;
      m_directory.colour_map_offset = read_ui32(m_file, m_order);
      return ZEP_OK;
    default: return ZEP_OK;
  }
}

// Three runs (red, green, blue) of 16-bit values, always most significant byte first; the low 8
// bits of each value are the component.
void Reader::read_palette() {
  const uint32_t length = m_directory.palette_length;
  const uint32_t entries = std::min(length, kColorMapEntries);
  std::vector<uint8_t> run(2 * std::size_t{entries});
  for (uint32_t component = 0; component < 3; ++component) {
    std::fill(run.begin(), run.end(), uint8_t{0});
    if (!run.empty() && seek(m_directory.colour_map_offset + uint64_t{component} * length * 2)) {
      static_cast<void>(std::fread(run.data(), 1, run.size(), m_file));
    }
    for (uint32_t entry = 0; entry < entries && m_image.cmap != nullptr; ++entry) {
      m_image.cmap[4 * entry + component] = static_cast<uint8_t>(ZEP_mget_ui16m(&run[2 * entry]));
    }
  }
}

uint32_t Reader::decide_format(uint32_t handle) {
  const Directory &d = m_directory;
  const uint64_t width = m_image.width;
  const bool grey = d.photometric == kWhiteIsZero || d.photometric == kBlackIsZero;
  if (d.photometric == kPalette && d.samples == 1 && (d.bits == 8 || d.bits == 4) &&
      d.has_colour_map) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_PALETTED);
    read_palette();
    m_image.cmap_colours = kColorMapEntries;
    m_line_bytes = d.bits == 8 ? width : (width + 1) / 2;
  } else if (d.photometric == kRgb && d.samples == 3 && d.bits == 24) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_RGB24);
    m_line_bytes = 3 * width;
  } else if (d.photometric == kRgb && d.samples == 4 && d.bits == 32) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_RGBX32);
    m_line_bytes = static_cast<uint16_t>(width * 4);  // 16-bit arithmetic, as always computed
  } else if (grey && d.samples == 1 && d.bits == 8) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_Y8);
    m_line_bytes = width;
  } else if (grey && d.samples == 1 && d.bits >= 9 && d.bits <= 16) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_Y16);
    m_image.data_width = static_cast<uint16_t>(d.bits);
    m_image.depth = 16;
    m_line_bytes = 2 * width;
  } else if (grey && d.samples == 1 && d.bits == 1) {
    ZEP_image_set_parameter(handle, ZEP_IMAGE_TYPE, ZEP_Y1);
    m_line_bytes = (width + 7) / 8;
  } else {
    return fail("unsupported TIFF format", ZEP_ERR_UNSUPPORTED);
  }
  return ZEP_OK;
}

bool Reader::strip_offset(uint32_t strip, uint32_t &offset) {
  if (strip >= m_directory.strip_count) return false;
  if (m_directory.strip_count == 1) {
    offset = m_directory.strip_offsets;
    return true;
  }
  const bool short_values = m_directory.strip_type == kTypeShort;
  if (!seek(m_directory.strip_offsets + uint64_t{strip} * (short_values ? 2 : 4))) return false;
  offset = short_values ? read_ui16(m_file, m_order) : read_ui32(m_file, m_order);
  return !std::feof(m_file);
}

// Stores one file line at `memory_offset` of the strip and advances past the line's padding.
void Reader::store_line(std::span<const uint8_t> file_line, uint64_t &memory_offset) {
  const uint64_t width = m_image.width;
  if (m_image.type == ZEP_PALETTED && m_directory.bits == 4) {
    std::span<uint8_t> target = strip_range(m_image, memory_offset, width);
    for (std::size_t x = 0; x < target.size(); ++x) {
      const uint8_t pair = file_line[x / 2];
      target[x] = x % 2 == 0 ? pair >> 4 : pair & 0x0F;  // high nibble first
    }
    memory_offset += width;
  } else if (m_image.type == ZEP_Y16) {
    std::span<uint8_t> target = strip_range(m_image, memory_offset, 2 * width);
    for (std::size_t x = 0; x + 1 < target.size(); x += 2) {
      ZEP_mput_ui16i(&target[x], ZEP_mget_ui16m(&file_line[x]));
    }
    memory_offset += 2 * width;
  } else {
    copy_bounded(file_line, strip_range(m_image, memory_offset, file_line.size()));
    memory_offset += file_line.size();
  }
  memory_offset += m_image.skip_bytes;
}

bool Reader::read_pixels() {
  if (m_line_bytes == 0) return true;  // empty lines: nothing to read, however many there are
  const uint32_t height = m_image.height;
  uint32_t rows = m_directory.rows_per_strip;
  if (rows == 0 || rows == 0xFFFFFFFF) rows = height;
  std::vector<uint8_t> file_line(static_cast<std::size_t>(m_line_bytes));
  uint64_t memory_offset = 0;
  for (uint32_t line = 0; line < height; ++line) {
    if (line % rows == 0) {
      uint32_t offset = 0;
      if (!strip_offset(line / rows, offset) || !seek(offset)) return false;
    }
    if (std::fread(file_line.data(), 1, file_line.size(), m_file) != file_line.size()) return false;
    store_line(file_line, memory_offset);
  }
  return true;
}

uint32_t read_tiff(uint32_t handle, uint16_t action) {
  ZEP_IMAGE *image = nullptr;
  if (const uint32_t status = find_image_to_read(kReadName, handle, image); status != ZEP_OK)
    return status;
  File file = File::open(image->infilename, "rb");
  if (!file) return core::report(kReadName, ZEP_ERR_OPEN, message::kOpenFailed);
  std::FILE *stream = file.get();
  const int mark = std::fgetc(stream);
  if (mark != 'M' && mark != 'I') return fail("Expecting 'MM' or 'II'");
  const auto order = static_cast<uint16_t>(mark);
  static_cast<void>(std::fgetc(stream));  // the second byte-order character is not looked at
  if (read_ui16(stream, order) != kMagic) return fail("Expecting 42");

  Reader reader(*image, stream, order, file.size());
  const uint32_t directory_offset = read_ui32(stream, order);
  if (const uint32_t status = reader.read_directory(directory_offset); status != ZEP_OK)
    return status;
  if (const uint32_t status = reader.decide_format(handle); status != ZEP_OK) return status;
  if (const uint32_t status = check_read_header(kReadName, handle); status != ZEP_OK) return status;
  image->lines_this_strip = image->height;
  if (action != ZEP_ACTION_DATA)
    return finish_without_data(kReadName, file, OpenSlot::TiffRead, action);

  const uint64_t needed = uint64_t{image->height} * reader.file_line_bytes();
  if (const uint32_t status = allocate_backed_strip(kReadName, handle, needed, file.size());
      ZEP_IS_ERROR(status))
    return status;
  if (!reader.read_pixels()) {
    ZEP_ErrProcess(ZEP_LIBRARY_NUMBER, kReadName, ZEP_OK, "");
    return ZEP_OK;
  }
  return close_file(kReadName, file);
}

}  // namespace
}  // namespace vrc::files::tiff

extern "C" uint32_t ZEP_read_TIFF_file(uint32_t handle, uint16_t action) {
  return vrc::core::api_guard(vrc::files::tiff::kReadName,
                              [&] { return vrc::files::tiff::read_tiff(handle, action); });
}
