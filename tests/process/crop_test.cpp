// Region crop over every pixel format: whole images in one call, strip-by-strip crops, clipping,
// the whole-line copies of the 16- and 32-bit rows, and the refusals.
#include "process_support.h"

#include <algorithm>

namespace vrc::test {
namespace {

struct RegionCase {
  int16_t x, y, width, height;
  uint32_t line_align;
};

// The crop's result as this test expects it: a width x height input in the test pattern; each
// output line copies the region's pixels (16- and 32-bit formats: the whole padded output line)
// from the input laid out as one block, bytes past its end reading as zero.
class ExpectedCrop {
 public:
  ExpectedCrop(const Format &format, uint32_t width, uint32_t height, const RegionCase &region)
      : m_format(format), m_region(region) {
    ScopedImage probe;
    fill_strip(probe, format.type, width, height, region.line_align, height, 0);
    m_input_line = record_of(probe).bytes_per_line;
    m_input.assign(record_of(probe).data, record_of(probe).data + record_of(probe).strip_bytes);
    m_width = std::min<uint32_t>(region.width, width - region.x);
    m_height = std::min<uint32_t>(region.height, height - region.y);
  }

  uint32_t width() const { return m_width; }
  uint32_t height() const { return m_height; }

  Bytes line(uint32_t line, uint32_t output_line_bytes) const {
    const bool whole_line = m_format.pixel_bytes == 2 || m_format.pixel_bytes == 4;
    const uint32_t count = whole_line ? output_line_bytes : m_width * m_format.pixel_bytes;
    const std::size_t start = (static_cast<std::size_t>(m_region.y) + line) * m_input_line +
                              static_cast<std::size_t>(m_region.x) * m_format.pixel_bytes;
    Bytes bytes(output_line_bytes, 0);
    for (uint32_t i = 0; i < count && start + i < m_input.size(); ++i)
      bytes[i] = m_input[start + i];
    return bytes;
  }

 private:
  Format m_format;
  RegionCase m_region;
  Bytes m_input;
  uint32_t m_input_line = 0;
  uint32_t m_width = 0;
  uint32_t m_height = 0;
};

class CropFormat : public testing::TestWithParam<Format> {
 protected:
  ErrorCapture m_errors;
};

// Region (2, 3, 4, 5) of a 10 x 10 image; a padded narrow region; a region whose whole-line copy
// runs past the input's last byte; regions clipped at the right and bottom edges.
TEST_P(CropFormat, WholeImageCropsInOneCall) {
  constexpr uint32_t kWidth = 10, kHeight = 10;
  const RegionCase cases[] = {
      {2, 3, 4, 5, 2}, {6, 1, 3, 5, 8}, {9, 8, 1, 2, 8}, {7, 6, 10, 10, 4}, {0, 0, 10, 10, 2}};
  for (const RegionCase &c : cases) {
    SCOPED_TRACE(testing::Message()
                 << "region " << c.x << "," << c.y << "," << c.width << "," << c.height);
    ScopedImage in, out;
    fill_strip(in, GetParam().type, kWidth, kHeight, c.line_align, kHeight, 0);
    int16_t region[] = {c.x, c.y, c.width, c.height};
    ASSERT_EQ(ZEP_IP_crop(in, out, region, ZEP_MODE_NEXT_STRIP), 0u);
    const ExpectedCrop expected(GetParam(), kWidth, kHeight, c);
    const ZEP_IMAGE &result = record_of(out);
    EXPECT_EQ(result.type, GetParam().type);
    EXPECT_EQ(result.width, expected.width());
    EXPECT_EQ(result.height, expected.height());
    ASSERT_EQ(result.lines_this_strip, expected.height());
    for (uint32_t line = 0; line < expected.height(); ++line)
      EXPECT_EQ(strip_line(out, line), expected.line(line, result.bytes_per_line))
          << "line " << line;
    EXPECT_EQ(record_of(in).lines_this_strip, kHeight);
  }
  EXPECT_EQ(m_errors.count(), 0u);
}

// The input arrives in strips of 1, 4, 5, 13 and 20 lines (more than the image holds); every call
// gives the output the region's lines of that strip, and the last one tells the input how many of
// its lines are the image's.
TEST_P(CropFormat, StripsGiveTheRegionLinesTheyHold) {
  constexpr uint32_t kWidth = 10, kHeight = 13;
  const RegionCase regions[] = {{1, 2, 5, 7, 2}, {0, 10, 10, 10, 2}, {4, 0, 6, 1, 4}};
  for (const uint32_t strip_lines : {1u, 4u, 5u, 13u, 20u}) {
    for (const RegionCase &c : regions) {
      SCOPED_TRACE(testing::Message() << "strips of " << strip_lines << ", region y " << c.y);
      const ExpectedCrop expected(GetParam(), kWidth, kHeight, c);
      ScopedImage in, out;
      int16_t region[] = {c.x, c.y, c.width, c.height};
      std::vector<Bytes> lines;
      uint32_t strips = 0;
      for (uint32_t passed = 0; passed < kHeight; passed += strip_lines, ++strips) {
        fill_strip(in, GetParam().type, kWidth, kHeight, c.line_align, strip_lines, passed);
        ASSERT_EQ(ZEP_IP_crop(in, out, region, ZEP_MODE_NEXT_STRIP), 0u);
        const uint32_t first = std::max<uint32_t>(passed, c.y);
        const uint32_t end = std::min<uint32_t>(passed + strip_lines, c.y + expected.height());
        ASSERT_EQ(record_of(out).lines_this_strip, end > first ? end - first : 0);
        for (uint32_t line = 0; line < record_of(out).lines_this_strip; ++line)
          lines.push_back(strip_line(out, line));
        if (passed + strip_lines >= kHeight) {
          EXPECT_EQ(record_of(in).lines_this_strip, kHeight - passed);
        }
      }
      EXPECT_EQ(strips, (kHeight + strip_lines - 1) / strip_lines);
      ASSERT_EQ(lines.size(), expected.height());
      for (uint32_t line = 0; line < expected.height(); ++line)
        EXPECT_EQ(lines[line], expected.line(line, record_of(out).bytes_per_line))
            << "line " << line;
    }
  }
  EXPECT_EQ(m_errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Formats, CropFormat, testing::ValuesIn(kCopiedFormats), format_name);

class CropRules : public testing::Test {
 protected:
  // A reset needs a sound input: the checks come before the mode.
  void SetUp() override {
    ScopedImage any;
    fill_strip(any, ZEP_Y8, 10, 10, 2, 10, 0);
    ZEP_IP_crop(any, m_out, m_region, ZEP_MODE_RESET);
  }
  ErrorCapture m_errors;
  ScopedImage m_in, m_out;
  int16_t m_region[4] = {2, 3, 4, 5};
};

TEST_F(CropRules, FormatsOutsideTheListAreRefusedWithTheirCode) {
  for (const uint16_t type : {ZEP_RGB8, ZEP_HSI, ZEP_DATA32}) {
    fill_strip(m_in, type, 10, 10, 2, 10, 0);
    EXPECT_EQ(ZEP_IP_crop(m_in, m_out, m_region, ZEP_MODE_NEXT_STRIP), ZEP_ERR_UNSUPPORTED | type);
    EXPECT_EQ(m_errors.last().function, "ZEP_IP_crop");
    EXPECT_EQ(m_errors.last().message, "Unsupported image format");
  }
}

TEST_F(CropRules, CorruptInputIsReportedWithTheCheckCode) {
  fill_strip(m_in, ZEP_Y8, 10, 10, 2, 10, 0);
  ZEP_image_set_parameter(m_in, ZEP_IMAGE_DEPTH, 24);
  EXPECT_EQ(ZEP_IP_crop(m_in, m_out, m_region, ZEP_MODE_NEXT_STRIP), 0x10050002u);
  EXPECT_EQ(m_errors.last().function, "ZEP_IP_crop");
  EXPECT_EQ(m_errors.last().message, "Corrupt image");
  EXPECT_EQ(ZEP_IP_crop(0xFFFF, m_out, m_region, ZEP_MODE_NEXT_STRIP), ZEP_ERR_CORRUPT);
}

TEST_F(CropRules, AnInputWithoutLinesOnlyPassesItsParameters) {
  fill_strip(m_in, ZEP_RGB24, 10, 10, 2, 10, 0);
  ZEP_image_set_parameter(m_in, ZEP_LINES_THIS_STRIP, 0);
  EXPECT_EQ(ZEP_IP_crop(m_in, m_out, m_region, ZEP_MODE_NEXT_STRIP), 0u);
  EXPECT_EQ(record_of(m_out).width, 10u);
  EXPECT_EQ(record_of(m_out).type, ZEP_RGB24);
  EXPECT_EQ(record_of(m_out).data, nullptr);
}

// XRGB32 passes the format check, but the strip worker has no rule for it: the worker reports, the
// output is left without a strip and the crop still succeeds.
TEST_F(CropRules, Xrgb32FailsInTheStripWorkerOnly) {
  fill_strip(m_in, ZEP_XRGB32, 10, 10, 2, 10, 0);
  EXPECT_EQ(ZEP_IP_crop(m_in, m_out, m_region, ZEP_MODE_NEXT_STRIP), 0u);
  EXPECT_EQ(m_errors.last().function, "ZEP_IP_crop_1_strip");
  EXPECT_EQ(m_errors.last().code, 0x10070001u);
  EXPECT_EQ(m_errors.last().message, "Unsupported image type");
  EXPECT_EQ(record_of(m_out).data, nullptr);
  EXPECT_EQ(record_of(m_out).width, 4u);
}

TEST_F(CropRules, RegionsOutsideTheImageAreRefused) {
  fill_strip(m_in, ZEP_Y8, 10, 10, 2, 10, 0);
  const std::vector<std::vector<int16_t>> outside = {
      {10, 0, 2, 2}, {0, 10, 2, 2}, {-1, 0, 2, 2}, {0, 0, 0, 2}};
  for (std::vector<int16_t> region : outside) {
    EXPECT_EQ(ZEP_IP_crop(m_in, m_out, region.data(), ZEP_MODE_NEXT_STRIP), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(m_errors.last().message, "Region lies outside the image");
  }
}

// A crop abandoned after its first strip keeps the process-wide state busy: the next crop skips
// its set-up (the fresh output gets no parameters, so its strip cannot be made) until a reset.
TEST_F(CropRules, AnAbandonedCropNeedsAReset) {
  fill_strip(m_in, ZEP_Y8, 10, 10, 2, 4, 0);
  ASSERT_EQ(ZEP_IP_crop(m_in, m_out, m_region, ZEP_MODE_NEXT_STRIP), 0u);
  ScopedImage whole, fresh;
  fill_strip(whole, ZEP_Y8, 10, 10, 2, 10, 0);
  m_errors.clear();
  EXPECT_EQ(ZEP_IP_crop(whole, fresh, m_region, ZEP_MODE_NEXT_STRIP), 0u);
  EXPECT_EQ(record_of(fresh).type, 0u);
  EXPECT_EQ(record_of(fresh).data, nullptr);
  EXPECT_GT(m_errors.count(), 0u);

  EXPECT_EQ(ZEP_IP_crop(whole, fresh, m_region, 7), 0u);
  EXPECT_EQ(record_of(fresh).type, 0u);
  // That crop took `whole` as the last strip after the 4 lines passed, and told it so.
  EXPECT_EQ(record_of(whole).lines_this_strip, 6u);
  EXPECT_EQ(ZEP_IP_crop(whole, fresh, m_region, ZEP_MODE_RESET), 0u);
  fill_strip(whole, ZEP_Y8, 10, 10, 2, 10, 0);
  EXPECT_EQ(ZEP_IP_crop(whole, fresh, m_region, ZEP_MODE_NEXT_STRIP), 0u);
  EXPECT_EQ(record_of(fresh).width, 4u);
  EXPECT_EQ(strip_line(fresh, 0),
            Bytes({test_byte(3, 2), test_byte(3, 3), test_byte(3, 4), test_byte(3, 5)}));
}

// The output's strips are the crop's own, even when the input holds a caller's locked buffer.
TEST_F(CropRules, TheOutputOfALockedInputOwnsItsStrips) {
  fill_strip(m_in, ZEP_BGRX32, 10, 10, 2, 4, 0);
  ZEP_image_set_flags(m_in, ZEP_FLAG_LOCKED, 1);
  int16_t region[] = {0, 0, 10, 10};
  for (uint32_t passed = 0; passed < 10; passed += 4) {
    ZEP_image_set_flags(m_in, ZEP_FLAG_LOCKED, 0);
    fill_strip(m_in, ZEP_BGRX32, 10, 10, 2, 4, passed);
    ZEP_image_set_flags(m_in, ZEP_FLAG_LOCKED, 1);
    ASSERT_EQ(ZEP_IP_crop(m_in, m_out, region, ZEP_MODE_NEXT_STRIP), 0u);
    EXPECT_EQ(ZEP_image_get_flags(m_out, ZEP_FLAG_LOCKED), 0u);
    EXPECT_EQ(strip_line(m_out, 0), strip_line(m_in, 0));
  }
  ZEP_image_set_flags(m_in, ZEP_FLAG_LOCKED, 0);
}

}  // namespace
}  // namespace vrc::test
