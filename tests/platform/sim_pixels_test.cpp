// Pixels of the simulated board: every capture format through encode and decode, the test
// pattern's frame number, and the buffer, display and conversion libraries.
#include <algorithm>
#include <cstring>

#include "platform/board/sim/pixel_codec.h"
#include "platform/board/sim/test_pattern.h"
#include "sim_support.h"

namespace vrxsim_test {
namespace {

using namespace vrx;
using vrxsim::Rgb16;

// Largest channel difference allowed after a round trip, by format family.
int tolerance(uint32_t format) {
  const uint32_t k = format - kCaptureFormatBase;
  if (k == 4 || k == 5 || k == 9 || k == 10) return 0x0900;  // 5 and 6 bits a channel
  if (k == 29) return 0x1400;                                // YUV: chroma shared by pairs
  return 0x0101;
}

bool is_grey(uint32_t format) {
  const uint32_t k = format - kCaptureFormatBase;
  return k <= 3 || (k >= 18 && k <= 26) || k == 30;
}

class EveryFormat : public ::testing::TestWithParam<uint32_t> {};

TEST_P(EveryFormat, RoundTripsALineWithinItsPrecision) {
  const uint32_t format = GetParam();
  std::vector<Rgb16> line(10);
  for (std::size_t x = 0; x < line.size(); ++x) {
    uint16_t v = static_cast<uint16_t>(x * 7000);
    // Neighbouring pixels share chroma in YUV, so give each pair one colour there.
    uint16_t pair = static_cast<uint16_t>((x / 2) * 14000);
    line[x] = is_grey(format) ? Rgb16{v, v, v}
              : format == capture_format(29)
                  ? Rgb16{pair, 40000, static_cast<uint16_t>(65535u - pair)}
                  : Rgb16{v, 40000, static_cast<uint16_t>(65535 - v)};
  }
  std::vector<uint8_t> bytes(vrxsim::line_bytes(format, 10));
  ASSERT_GT(bytes.size(), 0u);
  vrxsim::encode_line(format, line, bytes, {});
  std::vector<Rgb16> back(10);
  vrxsim::decode_line(format, bytes, back, {});
  for (std::size_t x = 0; x < line.size(); ++x) {
    if (vrxsim::is_bayer(format)) break;  // a mosaic keeps one channel per site
    EXPECT_NEAR(back[x].r, line[x].r, tolerance(format)) << "x " << x;
    EXPECT_NEAR(back[x].g, line[x].g, tolerance(format)) << "x " << x;
    EXPECT_NEAR(back[x].b, line[x].b, tolerance(format)) << "x " << x;
  }
}

INSTANTIATE_TEST_SUITE_P(CaptureFormats, EveryFormat,
                         ::testing::Range(kCaptureFormatBase, kCaptureFormatBase + 32),
                         [](const auto &param_info) {
                           return std::string("k").append(
                               std::to_string(param_info.param - kCaptureFormatBase));
                         });

TEST(CaptureFormats, LineLengths) {
  EXPECT_EQ(vrxsim::line_bytes(capture_format(0), 641), 641u);
  EXPECT_EQ(vrxsim::line_bytes(capture_format(26), 641), 962u);   // two pixels in three bytes
  EXPECT_EQ(vrxsim::line_bytes(capture_format(29), 641), 1284u);  // YUV pairs
  EXPECT_EQ(vrxsim::line_bytes(capture_format(8), 10), 60u);
  EXPECT_EQ(vrxsim::line_bytes(capture_format(31), 10), 30u);
  EXPECT_EQ(vrxsim::line_bytes(0xC0022600, 10), 0u);
}

TEST(CaptureFormats, BayerMosaicPutsEachChannelOnItsSite) {
  const std::vector<Rgb16> red(4, Rgb16{65535, 0, 0});
  std::vector<uint8_t> even(4), odd(4);
  vrxsim::encode_line(capture_format(21), red, even, {0, ColourBayerRggb});
  vrxsim::encode_line(capture_format(21), red, odd, {1, ColourBayerRggb});
  EXPECT_EQ(even, (std::vector<uint8_t>{255, 0, 255, 0}));  // R G R G
  EXPECT_EQ(odd, (std::vector<uint8_t>{0, 0, 0, 0}));       // G B G B
  std::vector<uint8_t> picture(8);
  std::copy(even.begin(), even.end(), picture.begin());
  std::copy(odd.begin(), odd.end(), picture.begin() + 4);
  std::vector<Rgb16> colour =
      vrxsim::decode_picture(capture_format(21), picture.data(), 4, 4, 2, ColourBayerRggb, true);
  EXPECT_EQ(colour[0].r, 65535);
  EXPECT_EQ(colour[0].g, 0);
}

TEST(TestPattern, DrawsTheFrameNumberAndMoves) {
  vrxsim::PatternGeometry g{120, 60, 120, capture_format(0), ColourMono, 256};
  std::vector<uint8_t> first(120 * 60), second(120 * 60);
  vrxsim::draw_test_pattern(g, 7, first);
  vrxsim::draw_test_pattern(g, 8, second);
  EXPECT_NE(first, second);
  // The digit box is black with white strokes; "7" has its top bar lit in glyph row 0.
  const uint32_t scale = vrxsim::digit_scale(60);
  EXPECT_EQ(first[0], 0);
  EXPECT_EQ(first[std::size_t{scale} * 120 + scale], 255);  // first cell of the top bar of 7
  // Below the digits every line is the same ramp.
  const std::size_t below = std::size_t{scale} * 9 * 120;
  EXPECT_TRUE(
      std::equal(first.begin() + below, first.begin() + below + 120, first.begin() + below + 120));
  // Gain scales the brightness.
  g.gain = 128;
  std::vector<uint8_t> dim(120 * 60);
  vrxsim::draw_test_pattern(g, 7, dim);
  EXPECT_LT(*std::max_element(dim.begin() + below, dim.end()),
            *std::max_element(first.begin() + below, first.end()));
}

// Buffers of the buffer library.
uint32_t make_buffer(uint32_t width, uint32_t height, uint32_t format) {
  uint32_t buffer = 0;
  EXPECT_EQ(VBL_BufferCreate(&buffer, VBL_BUFFER_TYPE_VIRTUAL), VRX_OK);
  EXPECT_EQ(VBL_BufferParameterSet(buffer, VBL_WIDTH, width), VRX_OK);
  EXPECT_EQ(VBL_BufferParameterSet(buffer, VBL_HEIGHT, height), VRX_OK);
  EXPECT_EQ(VBL_BufferParameterSet(buffer, VBL_FORMAT, format), VRX_OK);
  EXPECT_EQ(VBL_BufferInit(buffer), VRX_OK);
  return buffer;
}

uint8_t *data_of(uint32_t buffer) {
  void *address = nullptr;
  EXPECT_EQ(VBL_BufferParameterGet(buffer, VBL_ADDRESS, &address), VRX_OK);
  return static_cast<uint8_t *>(address);
}

TEST(BufferLibrary, ConvertsBetweenCaptureFormats) {
  uint32_t mono = make_buffer(4, 2, capture_format(0));
  uint32_t rgb = make_buffer(4, 2, capture_format(17));  // 24 bit BGR: bytes B, G, R
  uint32_t line_length = 0;
  ASSERT_EQ(VBL_BufferParameterGet(rgb, VBL_LINE_LENGTH, &line_length), VRX_OK);
  EXPECT_EQ(line_length, 12u);
  std::fill_n(data_of(mono), 8, uint8_t{200});
  ASSERT_EQ(VIL_Convert(mono, rgb), VRX_OK);
  EXPECT_TRUE(std::all_of(data_of(rgb), data_of(rgb) + 24, [](uint8_t b) { return b == 200; }));

  uint32_t uninitialised = 0;
  ASSERT_EQ(VBL_BufferCreate(&uninitialised, VBL_BUFFER_TYPE_CONTIGUOUS), VRX_OK);
  EXPECT_NE(VIL_Convert(mono, uninitialised), VRX_OK);
  EXPECT_EQ(VIL_Convert(mono, 0x7FFFFFFF), VIL_NOT_IMPLEMENTED);
  // Refused values leave the buffer as it was, so it still converts.
  EXPECT_EQ(VBL_BufferParameterSet(mono, VBL_FORMAT, 0xC0022600), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(VBL_BufferParameterSet(mono, VBL_WIDTH, 0), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(VBL_BufferParameterSet(mono, VBL_HEIGHT, 70000), VRX_ERR_BAD_VALUE);
  EXPECT_EQ(VBL_BufferParameterSet(mono, VBL_LINE_LENGTH, 0x200000), VRX_ERR_BAD_VALUE);
  for (uint32_t item : {VBL_WIDTH, VBL_HEIGHT, VBL_LINE_LENGTH}) {
    uint32_t value = 0;
    EXPECT_EQ(VBL_BufferParameterGet(mono, item, &value), VRX_OK);
    EXPECT_EQ(value, item == VBL_HEIGHT ? 2u : 4u);
  }
  EXPECT_EQ(VIL_Convert(mono, rgb), VRX_OK);
  EXPECT_EQ(VBL_BufferCreate(&uninitialised, 2), VRX_ERR_BAD_VALUE);
  for (uint32_t *b : {&mono, &rgb}) EXPECT_EQ(VBL_BufferDestroy(b), VRX_OK);
  EXPECT_EQ(VBL_BufferDestroy(&mono), VRX_ERR_BAD_HANDLE);  // handle already cleared to 0
}

struct Painted {
  std::vector<uint8_t> bgrx;
  uint32_t width = 0, height = 0;
  static void sink(void *context, const uint8_t *bgrx, uint32_t width, uint32_t height,
                   uint32_t stride) {
    auto *self = static_cast<Painted *>(context);
    self->bgrx.assign(bgrx, bgrx + std::size_t{stride} * height);
    self->width = width;
    self->height = height;
  }
};

TEST(DisplayLibrary, PaintsBuffersIntoItsSink) {
  Painted painted;
  uint32_t display = 0;
  ASSERT_EQ(VDL_DisplayCreate(&display, &Painted::sink, &painted), VRX_OK);
  ASSERT_EQ(VDL_DisplayParameterSet(display, VDL_PARAM_FORMAT, capture_format(16)), VRX_OK);
  for (uint32_t method : {0u, 1u, 2u})  // pixel duplication, averaging, median
    EXPECT_EQ(VDL_DisplayParameterSet(display, VDL_PARAM_INTERPOLATION, method), VRX_OK);
  EXPECT_EQ(VDL_DisplayParameterSet(display, VDL_PARAM_INTERPOLATION, 3), VRX_ERR_BAD_VALUE);
  uint32_t buffer = 0;
  ASSERT_EQ(VDL_BufferCreate(display, &buffer, VBL_BUFFER_TYPE_VIRTUAL), VRX_OK);
  uint32_t format = 0;
  ASSERT_EQ(VBL_BufferParameterGet(buffer, VBL_FORMAT, &format), VRX_OK);
  EXPECT_EQ(format, capture_format(16));  // 24 bit RGB: bytes R, G, B
  VBL_BufferParameterSet(buffer, VBL_WIDTH, 2);
  VBL_BufferParameterSet(buffer, VBL_HEIGHT, 1);
  ASSERT_EQ(VBL_BufferInit(buffer), VRX_OK);
  const uint8_t pixels[6] = {10, 20, 30, 40, 50, 60};
  std::memcpy(data_of(buffer), pixels, 6);
  ASSERT_EQ(VDL_BufferPaint(display, buffer), VRX_OK);
  EXPECT_EQ(painted.width, 2u);
  EXPECT_EQ(painted.bgrx, (std::vector<uint8_t>{30, 20, 10, 255, 60, 50, 40, 255}));
  EXPECT_EQ(VDL_BufferDestroy(&buffer), VRX_OK);
  EXPECT_EQ(VDL_DisplayDestroy(&display), VRX_OK);
  EXPECT_EQ(VDL_BufferPaint(display, buffer), VRX_ERR_BAD_HANDLE);
}

// Every capture format through the whole path at an odd width: capture, paint, convert.
class CaptureEveryFormat : public SimBoard, public ::testing::WithParamInterface<uint32_t> {};

TEST_P(CaptureEveryFormat, CapturesPaintsAndConverts) {
  open();
  set(ParamSrcXLength, 33);
  set(ParamSrcYLength, 9);
  ASSERT_EQ(set(ParamCaptureFormat, GetParam()), VRX_OK);
  set(ParamAcqMode, AcqModeSingle);
  EventRecorder &recorder = m_events;
  ASSERT_EQ(start(recorder), VRX_OK);
  ASSERT_TRUE(recorder.wait_for(VRX_EVENT_BUFFER_READY, 1));
  VRX_BUFFER_RECORD record{};
  ASSERT_EQ(acquire(VRX_ACQ_BUFFER_GET, &record), VRX_OK);
  EXPECT_GE(get(ParamDstXLength), vrxsim::line_bytes(GetParam(), 33));

  Painted painted;
  uint32_t display = 0;
  ASSERT_EQ(VDL_DisplayCreate(&display, &Painted::sink, &painted), VRX_OK);
  ASSERT_EQ(VDL_BufferPaint(display, record.buffer), VRX_OK);
  EXPECT_EQ(painted.width, 33u);
  // The frame number's box in the top-left corner is black.
  EXPECT_LT(painted.bgrx[0] + painted.bgrx[1] + painted.bgrx[2], 3 * 40);
  uint32_t rgb = make_buffer(33, 9, capture_format(17));
  EXPECT_EQ(VIL_Convert(record.buffer, rgb), VRX_OK);
  // Capture buffers belong to the board.
  EXPECT_EQ(VBL_BufferDestroy(&record.buffer), VRX_ERR_BAD_HANDLE);
  EXPECT_EQ(VBL_BufferParameterSet(record.buffer, VBL_WIDTH, 4), VRX_ERR_READ_ONLY);
  VBL_BufferDestroy(&rgb);
  VDL_DisplayDestroy(&display);
  acquire(VRX_ACQ_BUFFER_RELEASE);
}

INSTANTIATE_TEST_SUITE_P(CaptureFormats, CaptureEveryFormat,
                         ::testing::Range(kCaptureFormatBase, kCaptureFormatBase + 32),
                         [](const auto &param_info) {
                           return std::string("k").append(
                               std::to_string(param_info.param - kCaptureFormatBase));
                         });

}  // namespace
}  // namespace vrxsim_test
