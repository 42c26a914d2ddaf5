// TIFF 6.0 pieces shared by the writer, the reader and format detection: tags, field types and
// the byte-order readers. The writer produces one big-endian ("MM") image with one strip; the
// reader takes uncompressed single images in either byte order.
#pragma once

#include <cstdint>
#include <cstdio>

namespace vrc::files::tiff {

inline constexpr uint16_t kMagic = 42;
inline constexpr uint32_t kEntryBytes = 12;  // tag, type, count, value word

// Field types (TIFF 6.0 section 2).
inline constexpr uint16_t kTypeShort = 3;
inline constexpr uint16_t kTypeLong = 4;
inline constexpr uint16_t kTypeRational = 5;
inline constexpr uint16_t kLastFieldType = 11;  // DOUBLE: types 1..11 are defined

// Tags (TIFF 6.0 section 8 and appendix A).
inline constexpr uint16_t kNewSubfileType = 254;
inline constexpr uint16_t kImageWidth = 256;
inline constexpr uint16_t kImageLength = 257;
inline constexpr uint16_t kBitsPerSample = 258;
inline constexpr uint16_t kCompression = 259;
inline constexpr uint16_t kPhotometric = 262;
inline constexpr uint16_t kStripOffsets = 273;
inline constexpr uint16_t kSamplesPerPixel = 277;
inline constexpr uint16_t kRowsPerStrip = 278;
inline constexpr uint16_t kStripByteCounts = 279;
inline constexpr uint16_t kXResolution = 282;
inline constexpr uint16_t kYResolution = 283;
inline constexpr uint16_t kPlanarConfiguration = 284;
inline constexpr uint16_t kResolutionUnit = 296;
inline constexpr uint16_t kColorMap = 320;

// PhotometricInterpretation values.
inline constexpr uint32_t kWhiteIsZero = 0;
inline constexpr uint32_t kBlackIsZero = 1;
inline constexpr uint32_t kRgb = 2;
inline constexpr uint32_t kPalette = 3;
inline constexpr uint32_t kSeparated = 5;  // CMYK

inline constexpr uint32_t kColorMapEntries = 256;  // entries of each colour run written

// Byte-order marks: 'M' files are read most significant byte first, 'I' files least first.
inline constexpr uint16_t kOrderMotorola = 'M';
inline constexpr uint16_t kOrderIntel = 'I';

// 16- and 32-bit values in the file's byte order (`order` 'M' or anything else for 'I').
uint16_t read_ui16(std::FILE *file, uint16_t order);
uint32_t read_ui32(std::FILE *file, uint16_t order);

// An entry's value word: a 16-bit value and 16 skipped bits for SHORT, else a 32-bit value.
uint32_t read_data(std::FILE *file, uint16_t order, uint16_t type);

}  // namespace vrc::files::tiff
