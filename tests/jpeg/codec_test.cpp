// The codec through its public functions: round trips over every source format and sizes that
// need padding, the destinations a colour picture decodes to, the refusals of compress and
// decompress, and malformed entropy data with its exact messages and codes.
#include "jpeg/codec_support.h"
#include "jpeg/stream_builder.h"

#include <string>

namespace vrc::test {
namespace {

// --- Round trips ---------------------------------------------------------------------------

struct RoundTrip {
  uint16_t source_type;
  uint16_t decoded_type;  // the destination's type before decoding (0: left to the codec)
  uint32_t width, height;
  double min_psnr;
};

// Quality scale 16 (the Annex K tables). Grey and YUV sources are compared with what the codec
// saw: the loss is the quantisation alone, above 34 dB for grey and 32 dB for YUV 4:2:2 on this
// picture. RGB sources are compared in RGB after a trip through 4:2:2 chroma and two integer
// colour conversions, which costs more on the picture's coloured edges: 26 dB (TurboJPEG, with
// the same tables and subsampling, gets the same within a dB: see TurboJpegComparison).
class RoundTripTest : public ::testing::TestWithParam<RoundTrip> {};

TEST_P(RoundTripTest, DecodesCloseToTheSourceAtItsOwnSize) {
  const RoundTrip &c = GetParam();
  ErrorCapture errors;
  ScopedImage source, decoded;
  make_test_picture(source, c.source_type, c.width, c.height);
  ScopedImage jpeg_holder;
  const uint32_t jpeg = compressed(source);
  ASSERT_EQ(ZEP_image_get_flags(jpeg, ZEP_FLAG_JPEG), 1u);
  EXPECT_EQ(record_of(jpeg).width, c.width);
  EXPECT_EQ(record_of(jpeg).height, c.height);
  EXPECT_EQ(record_of(jpeg).type, c.source_type == ZEP_Y8 ? ZEP_Y8 : ZEP_YUV422);
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_TYPE, c.decoded_type);
  ASSERT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0u);
  EXPECT_EQ(errors.count(), 0u);
  const ZEP_IMAGE &out = record_of(decoded);
  EXPECT_EQ(out.width, c.width);
  EXPECT_EQ(out.height, c.height);
  EXPECT_EQ(out.lines_this_strip, c.height);
  EXPECT_EQ(ZEP_image_get_flags(decoded, ZEP_FLAG_JPEG), 0u);
  ScopedImage expected;
  make_test_picture(expected, out.type, c.width, c.height);
  EXPECT_GE(psnr(picture_bytes(expected), picture_bytes(decoded)), c.min_psnr);
  ZEP_image_destroy(jpeg);
}

INSTANTIATE_TEST_SUITE_P(
    SourcesAndSizes, RoundTripTest,
    ::testing::Values(
        RoundTrip{ZEP_Y8, 0, 64, 48, 34}, RoundTrip{ZEP_Y8, 0, 24, 8, 34},
        RoundTrip{ZEP_Y8, 0, 1, 1, 34}, RoundTrip{ZEP_Y8, 0, 17, 9, 34},
        RoundTrip{ZEP_Y8, 0, 1921, 1081, 34}, RoundTrip{ZEP_YUV422, 0, 64, 48, 32},
        RoundTrip{ZEP_YUV422, 0, 24, 8, 34}, RoundTrip{ZEP_YUV422, 0, 20, 12, 34},
        RoundTrip{ZEP_YUV422, 0, 1921, 1081, 32}, RoundTrip{ZEP_RGB24, ZEP_RGB24, 64, 48, 26},
        RoundTrip{ZEP_RGB24, ZEP_RGB24, 20, 12, 26}, RoundTrip{ZEP_RGB24, ZEP_RGB24, 1, 1, 26},
        RoundTrip{ZEP_RGB24, ZEP_RGB24, 17, 9, 26}, RoundTrip{ZEP_BGR24, ZEP_BGR24, 64, 48, 26},
        RoundTrip{ZEP_BGR24, ZEP_BGR24, 17, 9, 26}, RoundTrip{ZEP_BGRX32, ZEP_BGRX32, 64, 48, 26},
        RoundTrip{ZEP_BGRX32, ZEP_BGRX32, 1921, 1081, 26},
        RoundTrip{ZEP_RGBX32, ZEP_RGB24, 48, 16, 26}, RoundTrip{ZEP_XBGR32, ZEP_BGR24, 33, 17, 26},
        RoundTrip{ZEP_RGB24, ZEP_YUV422, 64, 48, 32}));

// A flat picture comes back flat, to within the DC quantisation step (16 / 8 = 2 levels at the
// standard tables, so one level either way), and exactly at quality scale 128 (DC step 2 / 8).
TEST(Codec, FlatGreyComesBackFlat) {
  ErrorCapture errors;
  for (const uint8_t level : {0, 1, 77, 128, 200, 255}) {
    ScopedImage source, decoded;
    const uint32_t width = 40, height = 24;
    fill_picture(source, ZEP_Y8, width, height, Bytes(width * height, level));
    for (const uint16_t quality : {16, 128}) {
      const uint32_t jpeg = compressed(source, quality);
      ASSERT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0u);
      const Bytes pixels = picture_bytes(decoded);
      const int tolerance = quality == 16 ? 1 : 0;
      for (const uint8_t pixel : pixels) {
        ASSERT_EQ(pixel, pixels[0]);
        ASSERT_LE(std::abs(pixel - int(level)), tolerance) << int(level) << " q " << quality;
      }
      ZEP_image_destroy(jpeg);
    }
  }
}

// Larger quality scales give finer tables: longer streams and higher fidelity.
TEST(Codec, QualityScaleTradesSizeForFidelity) {
  ErrorCapture errors;
  ScopedImage source;
  make_test_picture(source, ZEP_Y8, 128, 64);
  uint32_t previous_length = 0;
  double previous_psnr = 0;
  for (const uint16_t quality : {4, 16, 64, 200}) {
    const uint32_t jpeg = compressed(source, quality);
    ScopedImage decoded;
    ASSERT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0u);
    const uint32_t length = ZEP_image_get_parameter(jpeg, ZEP_JPEG_LENGTH);
    const double quality_db = psnr(picture_bytes(source), picture_bytes(decoded));
    EXPECT_GT(length, previous_length) << quality;
    EXPECT_GT(quality_db, previous_psnr) << quality;
    previous_length = length;
    previous_psnr = quality_db;
    ZEP_image_destroy(jpeg);
  }
}

// After ZEP_JPEG_ConvertToMonoYUV the chrominance table is zero, so the decoded chroma is flat
// 128 while luminance is kept.
TEST(Codec, MonoConversionDropsTheChroma) {
  ErrorCapture errors;
  ScopedImage source, decoded;
  make_test_picture(source, ZEP_YUV422, 32, 16);
  const uint32_t jpeg = compressed(source);
  ASSERT_EQ(ZEP_JPEG_ConvertToMonoYUV(jpeg), 0u);
  ASSERT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0u);
  const Bytes yuv = picture_bytes(decoded);
  for (std::size_t i = 1; i < yuv.size(); i += 2) ASSERT_EQ(yuv[i], 128) << i;
  ZEP_image_destroy(jpeg);
}

// ZEP_image_copy of a JPEG image decodes it into a destination that has a JPEG record.
TEST(Codec, ImageCopyDecodes) {
  ErrorCapture errors;
  ScopedImage source;
  make_test_picture(source, ZEP_YUV422, 20, 12);
  const uint32_t jpeg = compressed(source);
  const uint32_t copy = ZEP_JPEG_image_create();
  ASSERT_EQ(ZEP_image_copy(jpeg, copy), 0u);
  EXPECT_EQ(record_of(copy).type, ZEP_YUV422);
  EXPECT_EQ(record_of(copy).width, 20u);
  EXPECT_GE(psnr(picture_bytes(source), picture_bytes(copy)), 34);
  ZEP_image_destroy(copy);
  ZEP_image_destroy(jpeg);
}

// --- Refusals ------------------------------------------------------------------------------

struct Refusal {
  const char *name;
  uint32_t (*call)(uint32_t plain, uint32_t jpeg);
  const char *function;
  uint32_t code;
  const char *message;
  std::size_t reports = 1;  // a failed check has reported before the caller's "Corrupt image"
};

uint32_t compress_into_plain(uint32_t plain, uint32_t) { return ZEP_JPEG_compress(plain, plain); }
uint32_t decompress_plain(uint32_t plain, uint32_t) { return ZEP_JPEG_decompress(plain, plain); }
uint32_t quality_zero(uint32_t, uint32_t jpeg) { return ZEP_JPEG_set_Quality_factor(jpeg, 0); }
uint32_t quality_401(uint32_t, uint32_t jpeg) { return ZEP_JPEG_set_Quality_factor(jpeg, 401); }
uint32_t factor_1(uint32_t, uint32_t jpeg) { return ZEP_JPEG_set_Quantization_factor(jpeg, 1); }
uint32_t factor_801(uint32_t, uint32_t jpeg) { return ZEP_JPEG_set_Quantization_factor(jpeg, 801); }
uint32_t mono_plain(uint32_t plain, uint32_t) { return ZEP_JPEG_ConvertToMonoYUV(plain); }
uint32_t compress_strip(uint32_t plain, uint32_t jpeg) {
  ZEP_image_set_parameter(plain, ZEP_LINES_THIS_STRIP, 4);
  return ZEP_JPEG_compress(plain, jpeg);
}
uint32_t compress_rgb16(uint32_t plain, uint32_t jpeg) {
  ZEP_image_set_parameter(plain, ZEP_IMAGE_TYPE, ZEP_RGB16);
  return ZEP_JPEG_compress(plain, jpeg);
}
uint32_t compress_without_pixels(uint32_t plain, uint32_t jpeg) {
  ZEP_image_free_data(plain);
  return ZEP_JPEG_compress(plain, jpeg);
}
uint32_t compress_corrupt(uint32_t plain, uint32_t jpeg) {
  ZEP_image_set_parameter(plain, ZEP_IMAGE_DEPTH, 12);
  return ZEP_JPEG_compress(plain, jpeg);
}
uint32_t decompress_rgb24_type(uint32_t plain, uint32_t jpeg) {
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_TYPE, ZEP_RGB24);
  return ZEP_JPEG_decompress(jpeg, plain);
}
uint32_t decompress_no_data(uint32_t plain, uint32_t jpeg) {
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_TYPE, ZEP_YUV422);
  ZEP_image_set_parameter(plain, ZEP_IMAGE_TYPE, ZEP_RGB24);
  return ZEP_JPEG_decompress(jpeg, plain);
}
uint32_t decompress_colour_to_rgb16(uint32_t plain, uint32_t jpeg) {
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_TYPE, ZEP_YUV422);
  ZEP_image_set_parameter(plain, ZEP_IMAGE_TYPE, ZEP_RGB16);
  return ZEP_JPEG_decompress(jpeg, plain);
}
uint32_t decompress_411_strips(uint32_t plain, uint32_t jpeg) {
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_TYPE, ZEP_DATA16_C);
  ZEP_image_set_parameter(jpeg, ZEP_IMAGE_HEIGHT, 64);
  ZEP_image_set_parameter(jpeg, ZEP_LINES_THIS_STRIP, 24);
  return ZEP_JPEG_decompress(jpeg, plain);
}

class RefusalTest : public ::testing::TestWithParam<Refusal> {};

TEST_P(RefusalTest, ReportsOnceWithItsMessage) {
  const Refusal &c = GetParam();
  ErrorCapture errors;
  ScopedImage plain;
  make_test_picture(plain, ZEP_Y8, 16, 8);
  const uint32_t jpeg = ZEP_JPEG_image_create();
  errors.clear();
  EXPECT_EQ(c.call(plain, jpeg), c.code);
  ASSERT_EQ(errors.count(), c.reports);
  EXPECT_EQ(errors.last().function, c.function);
  EXPECT_EQ(errors.last().code, c.code);
  EXPECT_EQ(errors.last().message, c.message);
  ZEP_image_destroy(jpeg);
}

INSTANTIATE_TEST_SUITE_P(
    Refusals, RefusalTest,
    ::testing::Values(
        Refusal{"compress_into_plain", compress_into_plain, "ZEP_JPEG_compress", 0x10040000,
                "Not a JPEG image"},
        Refusal{"decompress_plain", decompress_plain, "ZEP_JPEG_decompress", 0x10040000,
                "Not a JPEG image"},
        Refusal{"mono_plain", mono_plain, "ZEP_JPEG_ConvertToMonoYUV", 0x10040000,
                "Not a JPEG image"},
        Refusal{"quality_zero", quality_zero, "ZEP_JPEG_set_Quality_factor", 0x10030000,
                "Q factor of range"},
        Refusal{"quality_401", quality_401, "ZEP_JPEG_set_Quality_factor", 0x10030000,
                "Q factor of range"},
        Refusal{"factor_1", factor_1, "ZEP_JPEG_set_Quantization_factor", 0x10030000,
                "Q factor of range"},
        Refusal{"factor_801", factor_801, "ZEP_JPEG_set_Quantization_factor", 0x10030000,
                "Q factor of range"},
        Refusal{"compress_strip", compress_strip, "ZEP_JPEG_compress", 0x10070004,
                "This function only supports a complete image"},
        Refusal{"compress_rgb16", compress_rgb16, "ZEP_JPEG_compress", 0x10070006,
                "Unsupported image format"},
        Refusal{"compress_without_pixels", compress_without_pixels, "ZEP_JPEG_compress", 0x10050000,
                "Image has no data"},
        Refusal{"compress_corrupt", compress_corrupt, "ZEP_JPEG_compress", 0x10050002,
                "Corrupt image", 2},
        Refusal{"decompress_rgb24_type", decompress_rgb24_type, "ZEP_JPEG_decompress", 0x10070007,
                "Unsupported image format"},
        Refusal{"decompress_no_data", decompress_no_data, "ZEP_JPEG_decompress_1_strip", 0x100C0002,
                "Buffer failed to fill at start"},
        Refusal{"decompress_colour_to_rgb16", decompress_colour_to_rgb16,
                "ZEP_JPEG_decompress_1_strip", 0x10070006, "Unsupported image type/pixel format"},
        Refusal{"decompress_411_strips", decompress_411_strips, "ZEP_JPEG_decompress_1_strip",
                0x10070018, "For YUV 4:1:1 JPEG decoding, strip must be multiple of 16 lines"}),
    [](const auto &param_info) { return std::string(param_info.param.name); });

// --- Malformed entropy data ----------------------------------------------------------------

struct Malformed {
  const char *name;
  uint16_t type;
  Bytes stream;
  uint32_t code;
  const char *message;
};

// Streams written symbol by symbol with the default tables (T.81 Tables K.3 to K.6).
constexpr uint8_t kEob = 0x00, kZrl = 0xF0;
Bytes stream(std::initializer_list<Code> codes) {
  StreamBuilder builder;
  for (const Code &code : codes) builder.put(code);
  return builder.bytes();
}
const Code kFlatLuma[] = {dc_luma(0), ac_luma(kEob)};

Bytes too_many_zero_runs() {
  return stream({dc_luma(0), ac_luma(kZrl), ac_luma(kZrl), ac_luma(kZrl), ac_luma(kZrl)});
}

// 62 coefficients, then a run of one zero that would place a coefficient at position 64.
Bytes run_past_the_end() {
  StreamBuilder builder;
  builder.put(dc_luma(0));
  for (int k = 1; k <= 62; ++k) builder.put(ac_luma(0x01, "1"));
  builder.put(ac_luma(0x11, "1"));
  return builder.bytes();
}

Bytes flat_y1_y2_then(std::initializer_list<Code> rest) {
  StreamBuilder builder;
  for (int block = 0; block < 2; ++block)
    for (const Code &code : kFlatLuma) builder.put(code);
  for (const Code &code : rest) builder.put(code);
  return builder.bytes();
}

// Every stream below is decoded as a 16 x 8 picture (one MCU of 4:2:2, half one of 4:1:1).
class MalformedTest : public ::testing::TestWithParam<Malformed> {};

TEST_P(MalformedTest, FailsWithItsMessage) {
  const Malformed &c = GetParam();
  ErrorCapture errors;
  const uint32_t jpeg = jpeg_with_stream(c.type, 16, 8, c.stream);
  ScopedImage decoded;
  errors.clear();
  EXPECT_EQ(ZEP_JPEG_decompress(jpeg, decoded), c.code);
  ASSERT_EQ(errors.count(), 1u);
  EXPECT_EQ(errors.last().function, "ZEP_JPEG_decompress_1_strip");
  EXPECT_EQ(errors.last().code, c.code);
  EXPECT_EQ(errors.last().message, c.message);
  write_entropy_seed(c.name, c.type, 16, 8, false, c.stream);
  ZEP_image_destroy(jpeg);
}

INSTANTIATE_TEST_SUITE_P(
    Streams, MalformedTest,
    ::testing::Values(
        // Sixteen 1 bits (a stuffed 0xFF byte and more) match no luminance DC code.
        Malformed{"grey_dc_no_code",
                  ZEP_Y8,
                  {0xFF, 0x00, 0xFF, 0x00},
                  0x100C0003,
                  "corrupt DC Huffman sequence"},
        Malformed{"colour_dc_no_code",
                  ZEP_YUV422,
                  {0xFF, 0x00, 0xFF, 0x00},
                  0x100C0003,
                  "Y1: corrupt DC Huffman sequence"},
        Malformed{"grey_ac_no_code", ZEP_Y8, stream({dc_luma(0), raw("1111111111111111")}),
                  0x100C0004, "corrupt AC Huffman sequence"},
        Malformed{"colour_y2_dc_no_code", ZEP_YUV422,
                  stream({dc_luma(0), ac_luma(kEob), raw("111111111111")}), 0x100C0003,
                  "Y2: corrupt DC Huffman sequence"},
        Malformed{"colour_u_ac_no_code", ZEP_YUV422,
                  flat_y1_y2_then({dc_chroma(0), raw("1111111111111111")}), 0x100C0004,
                  "U: corrupt AC Huffman sequence"},
        Malformed{"colour_v_too_many", ZEP_YUV422,
                  flat_y1_y2_then({dc_chroma(0), ac_chroma(kEob), dc_chroma(0), ac_chroma(kZrl),
                                   ac_chroma(kZrl), ac_chroma(kZrl), ac_chroma(kZrl)}),
                  0x100C0005, "V: corrupt AC Huffman sequence (> 63 coeffs read)"},
        Malformed{"grey_too_many_zero_runs", ZEP_Y8, too_many_zero_runs(), 0x100C0005,
                  "corrupt AC Huffman sequence (> 63 coeffs read)"},
        Malformed{"grey_run_past_the_end", ZEP_Y8, run_past_the_end(), 0x100C0005,
                  "corrupt AC Huffman sequence (> 63 coeffs read)"},
        Malformed{"yuv411_y3_dc_no_code", ZEP_DATA16_C, flat_y1_y2_then({raw("111111111111")}),
                  0x100C0003, "Y3: corrupt DC Huffman sequence"},
        Malformed{"yuv411_v_ac_no_code", ZEP_DATA16_C,
                  [] {
                    StreamBuilder builder;
                    for (int block = 0; block < 4; ++block)
                      for (const Code &code : kFlatLuma) builder.put(code);
                    for (const Code &code :
                         {dc_chroma(0), ac_chroma(kEob), dc_chroma(0), raw("1111111111111111")})
                      builder.put(code);
                    return builder.bytes();
                  }(),
                  0x100C0004, "V: corrupt AC Huffman sequence"},
        // The data ends after Y1 and Y2 at an EOI marker: U needs bits beyond it.
        Malformed{"colour_eoi_inside", ZEP_YUV422,
                  [] {
                    Bytes b = flat_y1_y2_then({});
                    b.insert(b.end(), {0xFF, 0xD9});
                    return b;
                  }(),
                  0x100C0001, "Unexpected EOI - processing byte 2"},
        // The same data without the marker: past the end 1 bits are fed, which match no code.
        Malformed{"colour_truncated", ZEP_YUV422, flat_y1_y2_then({}), 0x100C0003,
                  "U: corrupt DC Huffman sequence"}),
    [](const auto &param_info) { return std::string(param_info.param.name); });

// Data that could not hold the picture's blocks (two bits each at the least) is refused before
// the picture is allocated.
TEST(Codec, DataTooShortForThePictureIsRefused) {
  ErrorCapture errors;
  const uint32_t jpeg = jpeg_with_stream(ZEP_YUV422, 8000, 8000, {0x28, 0xA0, 0x28, 0xA0});
  ScopedImage decoded;
  errors.clear();
  EXPECT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0x100C0006u);
  ASSERT_EQ(errors.count(), 1u);
  EXPECT_EQ(errors.last().message, "Unexpected end of JPEG stream");
  EXPECT_EQ(record_of(decoded).data, nullptr);
  ZEP_image_destroy(jpeg);
}

// A complete stream followed by EOI decodes: bits are taken past the data only when needed.
TEST(Codec, EoiAfterCompleteDataIsNoError) {
  ErrorCapture errors;
  ScopedImage source, decoded;
  make_test_picture(source, ZEP_YUV422, 32, 16);
  const uint32_t jpeg = compressed(source);
  Bytes stream = stream_of(jpeg);
  stream.insert(stream.end(), {0xFF, 0xD9});
  const uint32_t with_eoi = jpeg_with_stream(ZEP_YUV422, 32, 16, stream);
  ASSERT_EQ(ZEP_JPEG_decompress(with_eoi, decoded), 0u);
  EXPECT_EQ(errors.count(), 0u);
  write_entropy_seed("colour_32x16_eoi", ZEP_YUV422, 32, 16, false, stream);
  ZEP_image_destroy(with_eoi);
  ZEP_image_destroy(jpeg);
}

// --- Fingerprints --------------------------------------------------------------------------

uint64_t fnv1a(const Bytes &bytes) {
  uint64_t hash = 0xcbf29ce484222325ull;
  for (const uint8_t b : bytes) hash = (hash ^ b) * 0x100000001b3ull;
  return hash;
}

struct Fingerprint {
  uint16_t source_type;
  uint16_t decoded_type;
  uint64_t stream;
  uint64_t pixels;
};

// The stream and the decoded pixels of fixed pictures, fingerprinted. The suite runs once with
// the vector stages and once with VRC_FORCE_SCALAR=1: both runs must give these same bytes.
class FingerprintTest : public ::testing::TestWithParam<Fingerprint> {};

TEST_P(FingerprintTest, EveryPathGivesTheSameBytes) {
  const Fingerprint &c = GetParam();
  ErrorCapture errors;
  ScopedImage source, decoded;
  make_test_picture(source, c.source_type, 203, 121);
  const uint32_t jpeg = compressed(source);
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_TYPE, c.decoded_type);
  ASSERT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0u);
  EXPECT_EQ(fnv1a(stream_of(jpeg)), c.stream) << std::hex << fnv1a(stream_of(jpeg));
  EXPECT_EQ(fnv1a(picture_bytes(decoded)), c.pixels) << std::hex << fnv1a(picture_bytes(decoded));
  write_entropy_seed("fingerprint_" + std::to_string(c.source_type), record_of(jpeg).type, 203, 121,
                     c.decoded_type == ZEP_RGB24, stream_of(jpeg));
  ZEP_image_destroy(jpeg);
}

INSTANTIATE_TEST_SUITE_P(
    Pictures, FingerprintTest,
    ::testing::Values(Fingerprint{ZEP_Y8, 0, 0x76678a181c358e21, 0xe3dfe52b8b8edd46},
                      Fingerprint{ZEP_YUV422, 0, 0x933efa6f0a73bea1, 0xc087d201afd332a5},
                      Fingerprint{ZEP_BGR24, ZEP_RGB24, 0xae1acf3ce29fbf97, 0xcaa86877604cd666},
                      Fingerprint{ZEP_BGRX32, ZEP_BGRX32, 0xae1acf3ce29fbf97, 0xc0427825870731b6}));

}  // namespace
}  // namespace vrc::test
