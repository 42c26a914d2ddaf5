// TurboJPEG as the outside codec: our decoder on its baseline streams (grey, 4:2:2, and 2 x 2
// sampled, our 4:1:1 path) gives its own decoder's planes, and our round trip keeps the picture
// as well as its round trip does with the same tables and subsampling.
#include "jpeg/codec_support.h"

#include <turbojpeg.h>

#include <algorithm>
#include <string>

namespace vrc::test {
namespace {

struct TurboStream {
  int subsampling;
  int quality;
  int width, height;
};

// TurboJPEG's stream of the test picture.
Bytes turbo_compress(const TurboStream &c) {
  ScopedImage picture;
  const bool grey = c.subsampling == TJSAMP_GRAY;
  make_test_picture(picture, grey ? ZEP_Y8 : ZEP_RGB24, c.width, c.height);
  const Bytes pixels = picture_bytes(picture);
  tjhandle handle = tjInitCompress();
  unsigned char *out = nullptr;
  unsigned long length = 0;
  EXPECT_EQ(tjCompress2(handle, pixels.data(), c.width, 0, c.height, grey ? TJPF_GRAY : TJPF_RGB,
                        &out, &length, c.subsampling, c.quality, TJFLAG_ACCURATEDCT),
            0);
  Bytes stream(out, out + length);
  tjFree(out);
  tjDestroy(handle);
  return stream;
}

// TurboJPEG's planes of the stream (Y, then U and V at their subsampled sizes).
std::vector<Bytes> turbo_planes(const Bytes &stream, const TurboStream &c) {
  tjhandle handle = tjInitDecompress();
  const int planes = c.subsampling == TJSAMP_GRAY ? 1 : 3;
  std::vector<Bytes> out;
  unsigned char *pointers[3] = {};
  for (int p = 0; p < planes; ++p) {
    out.emplace_back(tjPlaneSizeYUV(p, c.width, 0, c.height, c.subsampling));
    pointers[p] = out.back().data();
  }
  EXPECT_EQ(tjDecompressToYUVPlanes(handle, stream.data(), stream.size(), pointers, c.width,
                                    nullptr, c.height, TJFLAG_ACCURATEDCT),
            0);
  tjDestroy(handle);
  return out;
}

class TurboStreamTest : public ::testing::TestWithParam<TurboStream> {};

// Both decoders use the same integer inverse DCT, so the planes agree exactly; 4:1:1 chroma
// lines each serve two lines of our 4:2:2 output.
TEST_P(TurboStreamTest, OurDecoderGivesTurboJpegsPlanes) {
  const TurboStream &c = GetParam();
  ErrorCapture errors;
  const Bytes stream = turbo_compress(c);
  const uint32_t jpeg = ZEP_JPEG_image_create();
  ASSERT_EQ(ZEP_JPEG_buffer_read(jpeg, stream.data(), static_cast<uint32_t>(stream.size())), 0u);
  ScopedImage decoded;
  ASSERT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0u)
      << (errors.count() ? errors.last().function + ": " + errors.last().message : "");
  EXPECT_EQ(errors.count(), 0u);
  const std::vector<Bytes> planes = turbo_planes(stream, c);
  const ZEP_IMAGE &out = record_of(decoded);
  ASSERT_EQ(out.width, uint32_t(c.width));
  ASSERT_EQ(out.height, uint32_t(c.height));
  const bool grey = c.subsampling == TJSAMP_GRAY;
  const int chroma_rows = c.subsampling == TJSAMP_420 ? 2 : 1;
  const int luma_stride = tjPlaneWidth(0, c.width, c.subsampling);
  const int chroma_stride = grey ? 0 : tjPlaneWidth(1, c.width, c.subsampling);
  for (int y = 0; y < c.height; ++y)
    for (int x = 0; x < c.width; ++x) {
      const uint8_t *line = out.data + std::size_t(y) * out.bytes_per_line;
      if (grey) {
        ASSERT_EQ(line[x], planes[0][y * luma_stride + x]) << x << "," << y;
        continue;
      }
      ASSERT_EQ(line[2 * x], planes[0][y * luma_stride + x]) << "Y " << x << "," << y;
      const uint8_t chroma = planes[x % 2 == 0 ? 1 : 2][(y / chroma_rows) * chroma_stride + x / 2];
      ASSERT_EQ(line[2 * x + 1], chroma) << (x % 2 ? "V " : "U ") << x << "," << y;
    }
  write_entropy_seed("turbo_" + std::to_string(c.subsampling) + "_" + std::to_string(c.width),
                     record_of(jpeg).type, c.width, c.height, false, stream_of(jpeg));
  ZEP_image_destroy(jpeg);
}

INSTANTIATE_TEST_SUITE_P(
    Streams, TurboStreamTest,
    ::testing::Values(TurboStream{TJSAMP_GRAY, 50, 64, 48}, TurboStream{TJSAMP_GRAY, 90, 17, 9},
                      TurboStream{TJSAMP_422, 50, 64, 48}, TurboStream{TJSAMP_422, 75, 20, 12},
                      TurboStream{TJSAMP_422, 95, 1921, 1081}, TurboStream{TJSAMP_420, 50, 64, 48},
                      TurboStream{TJSAMP_420, 85, 33, 17}));

// With the same tables (quality 50 / quality scale 16) and 4:2:2, our RGB round trip is within a
// dB of TurboJPEG's (its colour conversion and chroma differ from ours in rounding only).
TEST(TurboJpegComparison, RoundTripFidelityMatches) {
  ErrorCapture errors;
  const int width = 128, height = 64;
  ScopedImage source, decoded;
  make_test_picture(source, ZEP_RGB24, width, height);
  const Bytes rgb = picture_bytes(source);
  const uint32_t jpeg = compressed(source, 16);
  ZEP_image_set_parameter(decoded, ZEP_IMAGE_TYPE, ZEP_RGB24);
  ASSERT_EQ(ZEP_JPEG_decompress(jpeg, decoded), 0u);
  const double ours = psnr(rgb, picture_bytes(decoded));

  tjhandle compressor = tjInitCompress(), decompressor = tjInitDecompress();
  unsigned char *out = nullptr;
  unsigned long length = 0;
  tjCompress2(compressor, rgb.data(), width, 0, height, TJPF_RGB, &out, &length, TJSAMP_422, 50,
              TJFLAG_ACCURATEDCT);
  Bytes theirs_rgb(rgb.size());
  tjDecompress2(decompressor, out, length, theirs_rgb.data(), width, 0, height, TJPF_RGB,
                TJFLAG_ACCURATEDCT | TJFLAG_FASTUPSAMPLE);
  tjFree(out);
  tjDestroy(compressor);
  tjDestroy(decompressor);
  const double theirs = psnr(rgb, theirs_rgb);
  EXPECT_GT(ours, theirs - 1.0) << "ours " << ours << " dB, TurboJPEG " << theirs << " dB";
  ZEP_image_destroy(jpeg);
}

}  // namespace
}  // namespace vrc::test
