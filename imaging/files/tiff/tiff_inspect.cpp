// What a TIFF file holds beyond the uncompressed, interleaved, unsigned subset the reader takes:
// BigTIFF, compression by scheme, tiles, planar samples, float or signed samples, other colour
// spaces and depths, orientation, and pixel data the file does not hold; and the corrections
// that put a read right: byte-swapped 16-bit samples, WhiteIsZero, the colour map's high bytes.
#include "imaging/files/file_inspect.h"
#include "imaging/files/tiff/tiff_layout.h"

#include <algorithm>
#include <vector>

namespace vrc::files {
namespace {

using namespace tiff;

constexpr uint16_t kBigTiffMagic = 43;

// Tags the reader skips that change what the pixels mean (TIFF 6.0 sections 8, 15, 19).
constexpr uint16_t kOrientation = 274;
constexpr uint16_t kTileWidth = 322;
constexpr uint16_t kTileOffsets = 324;
constexpr uint16_t kSampleFormat = 339;

constexpr uint32_t kNone = 0xFFFFFFFF;

// Compression values (TIFF 6.0 section 8 and the registered extensions).
const char *compression_name(uint32_t compression) {
  switch (compression) {
    case 2: return "CCITT RLE";
    case 3: return "CCITT Group 3";
    case 4: return "CCITT Group 4";
    case 5: return "LZW";
    case 6: return "old-style JPEG";
    case 7: return "JPEG";
    case 8:
    case 32946: return "Deflate";
    case 32773: return "PackBits";
    case 34676: return "SGILOG";
    case 34712: return "JPEG 2000";
    case 34925: return "LZMA";
    case 50000: return "Zstandard";
    case 50001: return "WebP";
    default: return nullptr;
  }
}

const char *photometric_name(uint32_t photometric) {
  switch (photometric) {
    case 4: return "transparency-mask";
    case kSeparated: return "CMYK";
    case 6: return "YCbCr";
    case 8:
    case 9:
    case 10: return "CIE L*a*b*";
    case 32844:
    case 32845: return "LogLuv";
    default: return nullptr;
  }
}

struct Field {
  uint16_t type = 0;
  uint32_t count = 0;
  long value_position = 0;  // the entry's value word
};

class TiffFile {
 public:
  TiffFile(std::FILE *file, uint16_t order) : m_file(file), m_order(order) {}

  // Value `index` of `field`, inline or at its offset, as SHORT or LONG by the field's type.
  uint32_t value(const Field &field, uint32_t index = 0) {
    const uint32_t size = field.type == kTypeShort ? 2 : 4;
    long position = field.value_position;
    if (uint64_t{field.count} * size > 4) {
      std::fseek(m_file, field.value_position, SEEK_SET);
      position = static_cast<long>(read_ui32(m_file, m_order));
    }
    std::fseek(m_file, position + static_cast<long>(index * size), SEEK_SET);
    return size == 2 ? read_ui16(m_file, m_order) : read_ui32(m_file, m_order);
  }
  // Value `index` of a SHORT array at `offset`, in the file's byte order or, with `big_endian`,
  // most significant byte first as the reader reads a colour map.
  uint16_t short_at(uint64_t offset, uint32_t index, bool big_endian) {
    std::fseek(m_file, static_cast<long>(offset + 2 * uint64_t{index}), SEEK_SET);
    return read_ui16(m_file, big_endian ? kOrderMotorola : m_order);
  }

 private:
  std::FILE *m_file;
  uint16_t m_order;
};

struct Header {
  uint16_t order = 0;
  std::vector<std::pair<uint16_t, Field>> fields;
  bool more_images = false;
  const Field *find(uint16_t tag) const {
    for (const auto &[field_tag, field] : fields)
      if (field_tag == tag) return &field;
    return nullptr;
  }
};

// Reads the first directory; false when it lies outside the file.
bool read_directory(std::FILE *file, uint64_t file_bytes, Header &header) {
  const uint32_t offset = read_ui32(file, header.order);
  if (offset < 8 || offset + uint64_t{2} > file_bytes) return false;
  std::fseek(file, offset, SEEK_SET);
  const uint16_t count = read_ui16(file, header.order);
  const uint64_t present = (file_bytes - offset - 2) / kEntryBytes;
  const uint64_t entries = std::min<uint64_t>(count, present);
  for (uint64_t index = 0; index < entries; ++index) {
    const uint64_t position = offset + 2 + index * kEntryBytes;
    std::fseek(file, static_cast<long>(position), SEEK_SET);
    const uint16_t tag = read_ui16(file, header.order);
    Field field;
    field.type = read_ui16(file, header.order);
    field.count = read_ui32(file, header.order);
    field.value_position = static_cast<long>(position + 8);
    header.fields.emplace_back(tag, field);
  }
  if (entries == count) {
    std::fseek(file, static_cast<long>(offset + 2 + uint64_t{count} * kEntryBytes), SEEK_SET);
    header.more_images = read_ui32(file, header.order) != 0 && !std::feof(file);
  }
  return true;
}

class Inspector {
 public:
  Inspector(std::FILE *file, const Header &header, Inspection &inspection)
      : m_file(file), m_tiff(file, header.order), m_header(header), m_inspection(inspection) {}

  uint32_t get(uint16_t tag, uint32_t absent, uint32_t index = 0) {
    const Field *field = m_header.find(tag);
    return field != nullptr && field->count > index ? m_tiff.value(*field, index) : absent;
  }
  void check_layout();
  // The file line's bytes, or 0 for a refused sample layout.
  uint64_t check_samples(uint32_t width);
  void check_colour_map(uint32_t bits);
  void check_strips(uint64_t line_bytes, uint32_t height);

 private:
  std::FILE *m_file;
  TiffFile m_tiff;
  const Header &m_header;
  Inspection &m_inspection;
};

void Inspector::check_layout() {
  const uint32_t compression = get(kCompression, 1);
  if (compression != 1) {
    if (const char *name = compression_name(compression))
      m_inspection.refuse("%s-compressed TIFF is not supported (only uncompressed)", name);
    else
      m_inspection.refuse("TIFF compression %u is not supported (only uncompressed)", compression);
  }
  if (m_header.find(kTileWidth) != nullptr || m_header.find(kTileOffsets) != nullptr)
    m_inspection.refuse("tiled TIFF is not supported (only strips)");
  if (get(kPlanarConfiguration, 1) == 2 && get(kSamplesPerPixel, 1) > 1)
    m_inspection.refuse(
        "planar TIFF (PlanarConfiguration 2) is not supported (only interleaved "
        "samples)");
  const uint32_t sample_format = get(kSampleFormat, 1);
  if (sample_format == 3)
    m_inspection.refuse("floating-point TIFF samples are not supported (only unsigned integers)");
  else if (sample_format == 2)
    m_inspection.refuse("signed TIFF samples are not supported (only unsigned integers)");
  else if (sample_format != 1)
    m_inspection.refuse("TIFF SampleFormat %u is not supported (only unsigned integers)",
                        sample_format);
  const uint32_t orientation = get(kOrientation, 1);
  if (orientation != 1)
    m_inspection.refuse(
        "TIFF Orientation %u is not supported (only 1, rows from the top, "
        "left to right)",
        orientation);
}

uint64_t Inspector::check_samples(uint32_t width) {
  const uint32_t photometric = get(kPhotometric, kNone);
  const uint32_t samples = get(kSamplesPerPixel, 1);
  const uint32_t bits = get(kBitsPerSample, 1);
  // More samples than RGBA are refused below; only those need to agree in depth.
  for (uint32_t sample = 1; sample < std::min(samples, 4u); ++sample) {
    if (get(kBitsPerSample, bits, sample) != bits) {
      m_inspection.refuse("TIFF samples of different depths are not supported");
      return 0;
    }
  }
  if (photometric == kNone) {
    m_inspection.refuse("TIFF without PhotometricInterpretation is not supported");
  } else if (const char *name = photometric_name(photometric)) {
    m_inspection.refuse("%s TIFF is not supported (only grey, RGB and palette)", name);
  } else if (photometric > kPalette) {
    m_inspection.refuse(
        "TIFF PhotometricInterpretation %u is not supported (only grey, RGB "
        "and palette)",
        photometric);
  } else if (photometric == kRgb) {
    if (samples != 3 && samples != 4)
      m_inspection.refuse("RGB TIFF with %u samples per pixel is not supported (only 3 or 4)",
                          samples);
    else if (bits != 8)
      m_inspection.refuse("%u-bit RGB TIFF is not supported (only 8 bits per sample)", bits);
    else if (samples == 4 && uint64_t{width} * 4 > 0xFFFF)
      m_inspection.refuse("4-sample TIFF wider than 16383 pixels is not supported");
    else if (samples == 4)
      m_inspection.warn("the fourth sample of each pixel (alpha) is not kept");
    return uint64_t{width} * samples;
  } else if (samples != 1) {
    m_inspection.refuse("%s TIFF with %u samples per pixel is not supported (only 1)",
                        photometric == kPalette ? "palette" : "grey", samples);
  } else if (photometric == kPalette) {
    if (bits != 8 && bits != 4)
      m_inspection.refuse("%u-bit palette TIFF is not supported (only 4 and 8 bits)", bits);
    else if (m_header.find(kColorMap) == nullptr)
      m_inspection.refuse("palette TIFF without a colour map");
    else
      check_colour_map(bits);
    return bits == 8 ? width : (uint64_t{width} + 1) / 2;
  } else if (bits != 1 && bits != 8 && bits != 16) {
    m_inspection.refuse("%u-bit grey TIFF is not supported (only 1, 8 and 16 bits)", bits);
  } else {
    if (bits == 16 && m_header.order == kOrderIntel) {
      m_inspection.fix(ZEP_FIX_SWAP_16_BIT);
      m_inspection.warn("little-endian 16-bit samples: bytes swapped after reading");
    }
    if (photometric == kWhiteIsZero && bits != 1) {
      m_inspection.fix(ZEP_FIX_INVERT_GREY);
      m_inspection.warn("WhiteIsZero grey: values inverted after reading");
    }
    return bits == 1 ? (uint64_t{width} + 7) / 8 : uint64_t{width} * (bits / 8);
  }
  return 0;
}

// The component of a 16-bit colour-map value is its high byte; the reader keeps the low byte of
// the value read most significant byte first.
void Inspector::check_colour_map(uint32_t bits) {
  const Field &field = *m_header.find(kColorMap);
  const uint32_t length = field.count / 3;
  const uint32_t entries = std::min<uint32_t>({length, kColorMapEntries, 1u << bits});
  std::fseek(m_file, field.value_position, SEEK_SET);
  const uint32_t offset = read_ui32(m_file, m_header.order);
  bool differs = false;
  for (uint32_t entry = 0; entry < entries; ++entry) {
    uint8_t rgb[3];
    for (uint32_t component = 0; component < 3; ++component) {
      const uint32_t index = component * length + entry;
      const uint16_t value = m_tiff.short_at(offset, index, false);
      rgb[component] = static_cast<uint8_t>(value >> 8);
      differs |= rgb[component] != static_cast<uint8_t>(m_tiff.short_at(offset, index, true));
    }
    m_inspection.set_colour(entry, rgb[0], rgb[1], rgb[2]);
  }
  if (!differs) return;
  m_inspection.fix(ZEP_FIX_COLOUR_MAP);
  m_inspection.warn("colour map: the high byte of each 16-bit value taken after reading");
}

void Inspector::check_strips(uint64_t line_bytes, uint32_t height) {
  const uint64_t file_bytes = stream_size(m_file);
  uint32_t rows = get(kRowsPerStrip, height);
  if (rows == 0 || rows > height) rows = height;
  const Field *offsets = m_header.find(kStripOffsets);
  const uint64_t strips = (uint64_t{height} + rows - 1) / rows;
  const uint64_t listed = offsets != nullptr ? std::min<uint64_t>(offsets->count, strips) : 0;
  uint64_t present = 0;
  for (uint64_t strip = 0; strip < listed && strip < file_bytes; ++strip) {
    const uint64_t lines = std::min<uint64_t>(rows, height - strip * rows);
    const uint64_t start = m_tiff.value(*offsets, static_cast<uint32_t>(strip));
    const uint64_t available = file_bytes > start ? file_bytes - start : 0;
    present += std::min(lines * line_bytes, available);
  }
  m_inspection.warn_missing_pixels(present, uint64_t{height} * line_bytes);
}

}  // namespace

bool inspect_tiff(std::FILE *file, Inspection &inspection) {
  const int mark = std::fgetc(file);
  if (mark != kOrderMotorola && mark != kOrderIntel) return false;
  Header header;
  header.order = static_cast<uint16_t>(mark);
  if (std::fgetc(file) != mark) return false;
  const uint16_t magic = read_ui16(file, header.order);
  if (magic == kBigTiffMagic) {
    inspection.refuse("BigTIFF is not supported (only classic TIFF)");
    return true;
  }
  if (magic != kMagic) return false;
  if (!read_directory(file, stream_size(file), header)) {
    inspection.refuse("the TIFF directory lies past the end of the file");
    return true;
  }
  Inspector inspector(file, header, inspection);
  inspector.check_layout();
  const uint32_t width = inspector.get(kImageWidth, 0);
  const uint32_t height = inspector.get(kImageLength, 0);
  const uint64_t line_bytes = inspector.check_samples(width);
  if (inspection.refused()) return true;
  inspection.check_has_pixels(width, height);
  if (inspection.refused()) return true;
  inspector.check_strips(line_bytes, height);
  if (header.more_images)
    inspection.warn("the file holds more than one image; only the first is read");
  return true;
}

}  // namespace vrc::files
