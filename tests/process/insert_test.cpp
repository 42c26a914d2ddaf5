// Inserting an image into another over every pixel format, the position checks in their order,
// and the pixel size taken from the padded line length.
#include "process_support.h"

namespace vrc::test {
namespace {

class InsertFormat : public testing::TestWithParam<Format> {
 protected:
  ErrorCapture m_errors;
};

// A 3 x 2 image pasted into a 10 x 8 image at the corners and inside: its lines land at the
// 1-based position and every other byte of the target stays as it was.
TEST_P(InsertFormat, PastesAtTheOneBasedPosition) {
  constexpr uint32_t kWidth = 10, kHeight = 8, kInsertWidth = 3, kInsertHeight = 2;
  const uint32_t pixel = GetParam().pixel_bytes;
  for (const auto &[x, y] : std::vector<std::pair<uint32_t, uint32_t>>{{1, 1}, {8, 7}, {4, 3}}) {
    SCOPED_TRACE(testing::Message() << "at " << x << "," << y);
    ScopedImage target, insert;
    fill_strip(target, GetParam().type, kWidth, kHeight, 2, kHeight, 0);
    fill_strip(insert, GetParam().type, kInsertWidth, kInsertHeight, 2, kInsertHeight, 0, 1);
    std::vector<Bytes> expected;
    for (uint32_t line = 0; line < kHeight; ++line) {
      Bytes bytes = strip_line(target, line);
      if (line + 1 >= y && line + 1 < y + kInsertHeight) {
        const Bytes pasted = strip_line(insert, line + 1 - y);
        std::copy_n(pasted.begin(), kInsertWidth * pixel, bytes.begin() + (x - 1) * pixel);
      }
      expected.push_back(bytes);
    }
    ASSERT_EQ(ZEP_IP_image_insert(target, insert, x, y), 0u);
    for (uint32_t line = 0; line < kHeight; ++line)
      EXPECT_EQ(strip_line(target, line), expected[line]) << "line " << line;
  }
  EXPECT_EQ(m_errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Formats, InsertFormat, testing::ValuesIn(kCopiedFormats), format_name);

struct Placement {
  const char *name;
  uint32_t insert_width, x, y;
  const char *message;  // null: accepted
};

inline void PrintTo(const Placement &placement, std::ostream *out) { *out << placement.name; }

class InsertPlacement : public testing::TestWithParam<Placement> {
 protected:
  ErrorCapture m_errors;
};

// The checks of a 2-line insert into a 10 x 8 Y8 image, in their order: left, right, top, bottom.
TEST_P(InsertPlacement, IsCheckedInOrder) {
  const Placement &placement = GetParam();
  ScopedImage target, insert;
  fill_strip(target, ZEP_Y8, 10, 8, 2, 8, 0);
  fill_strip(insert, ZEP_Y8, placement.insert_width, 2, 2, 2, 0, 1);
  const uint32_t status = ZEP_IP_image_insert(target, insert, placement.x, placement.y);
  if (placement.message == nullptr) {
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(m_errors.count(), 0u);
    return;
  }
  EXPECT_EQ(status, ZEP_ERR_UNSUPPORTED);
  ASSERT_EQ(m_errors.count(), 1u);
  EXPECT_EQ(m_errors.last().function, "ZEP_IP_image_insert");
  EXPECT_EQ(m_errors.last().message, placement.message);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, InsertPlacement,
    testing::Values(Placement{"LeftEdge", 2, 1, 1, nullptr},
                    Placement{"ZeroColumn", 2, 0, 0, "Trying to insert image too far left"},
                    Placement{"RightEdge", 2, 9, 1, nullptr},
                    Placement{"PastRightEdge", 2, 10, 0, "Trying to insert image too far right"},
                    Placement{"WiderThanTarget", 12, 1, 1, "Trying to insert image too far right"},
                    Placement{"ZeroLine", 2, 1, 0, "Trying to insert image too high"},
                    Placement{"BottomEdge", 2, 1, 7, nullptr},
                    Placement{"PastBottomEdge", 2, 1, 8, "Trying to insert image too low"}),
    [](const testing::TestParamInfo<Placement> &param_info) { return param_info.param.name; });

TEST(InsertRules, ImagesMustBeSoundAndOfOneFormat) {
  ErrorCapture errors;
  ScopedImage target, insert;
  fill_strip(target, ZEP_RGB24, 10, 8, 2, 8, 0);
  fill_strip(insert, ZEP_BGR24, 2, 2, 2, 2, 0);
  EXPECT_EQ(ZEP_IP_image_insert(target, insert, 1, 1), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(errors.last().message, "Pixel Formats are different");

  ZEP_image_set_parameter(insert, ZEP_IMAGE_DEPTH, 8);
  EXPECT_EQ(ZEP_IP_image_insert(target, insert, 1, 1), 0x10050003u);
  EXPECT_EQ(errors.last().message, "hInsertImage is corrupt");
  ZEP_image_set_parameter(target, ZEP_IMAGE_DEPTH, 8);
  EXPECT_EQ(ZEP_IP_image_insert(target, insert, 1, 1), 0x10050003u);
  EXPECT_EQ(errors.last().message, "hInImage is corrupt");
  EXPECT_EQ(errors.last().function, "ZEP_IP_image_insert");
}

// Pixel bytes are the target's padded line length over its width: an RGB24 target of width 3
// with 4-byte alignment has 12-byte lines, so a pixel counts 4 bytes, the insert's padding byte
// comes along and column 2 starts at byte 4.
TEST(InsertRules, PixelBytesComeFromThePaddedLine) {
  ErrorCapture errors;
  ScopedImage target, insert;
  fill_strip(target, ZEP_RGB24, 3, 2, 4, 2, 0);
  fill_strip(insert, ZEP_RGB24, 1, 1, 4, 1, 0, 1);
  Bytes expected = strip_line(target, 1);
  const Bytes pasted = strip_line(insert, 0);
  std::copy_n(pasted.begin(), 4, expected.begin() + 4);
  ASSERT_EQ(ZEP_IP_image_insert(target, insert, 2, 2), 0u);
  EXPECT_EQ(strip_line(target, 1), expected);
}

}  // namespace
}  // namespace vrc::test
