// JPEG sequences: frames joined by numbered restart markers into one file, counted, found and read
// back one by one from the open file, and the refusals of the sequence operations.
#include "files/jpeg_support.h"

#include "imaging/core/jpeg_record.h"

namespace vrc::test {
namespace {

constexpr uint32_t kWidth = 48, kHeight = 16;

// Frame n of a test sequence: the smooth picture with a moving bright square.
Picture frame_picture(uint32_t n) {
  Picture picture = smooth_picture(kWidth, kHeight, 3);
  for (uint32_t y = 4; y < 12; ++y)
    for (uint32_t x = 4 * n; x < 4 * n + 8; ++x)
      for (uint32_t c = 0; c < 3; ++c) picture.samples[(y * kWidth + x) * 3 + c] = 250;
  return picture;
}

class JpegSequence : public testing::Test {
 protected:
  // Builds a sequence of `count` frames, writes it and opens it header-only into m_sequence.
  void make_sequence(uint32_t count) {
    ScopedJpeg built;
    for (uint32_t n = 0; n < count; ++n) {
      ScopedImage source;
      ScopedJpeg frame;
      fill_image(source, frame_picture(n), ZEP_RGB24);
      ASSERT_EQ(compress(source, frame, 16), 0u);
      m_frames.emplace_back(frame.record().data, frame.record().data + frame.record().length);
      m_pictures.push_back(decode(frame));
      ASSERT_EQ(ZEP_JPEG_sequence_build(frame, built), 0u);
    }
    EXPECT_EQ(ZEP_image_get_parameter(built, ZEP_NUM_FRAMES), count);
    ASSERT_EQ(write_jpeg(built, m_folder.file("sequence.jpg")), 0u);
    write_seed("jpeg_file_read_fuzz", "sequence" + std::to_string(count) + ".jpg",
               read_file(m_folder.file("sequence.jpg")));
    ZEP_image_set_infilename(m_sequence, m_folder.file("sequence.jpg").c_str());
    ASSERT_EQ(ZEP_JPEG_file_open(m_sequence), 0u);
    ASSERT_EQ(ZEP_JPEG_sequence_calc_length(m_sequence), 0u);
  }

  ErrorCapture m_errors;
  TempDir m_folder;
  ScopedJpeg m_sequence;
  std::vector<Bytes> m_frames;
  std::vector<Picture> m_pictures;
};

// The file's entropy data is the frames' data, each but the last followed by FF D0, FF D1, ... in
// turn (nine frames wrap from D7 back to D0); the last ends at EOI.
TEST_F(JpegSequence, FramesAreJoinedByNumberedRestartMarkers) {
  make_sequence(9);
  const Bytes file = read_file(m_folder.file("sequence.jpg"));
  Bytes expected;
  for (uint32_t n = 0; n < 9; ++n) {
    expected.insert(expected.end(), m_frames[n].begin(), m_frames[n].end());
    expected.push_back(0xFF);
    expected.push_back(n < 8 ? static_cast<uint8_t>(0xD0 + n % 8) : 0xD9);
  }
  const uint32_t offset = ZEP_JPEG_get_parameter(m_sequence, ZEP_JPEG_DATA_OFFSET);
  EXPECT_EQ(hex(Bytes(file.begin() + offset, file.end())), hex(expected));
  EXPECT_EQ(ZEP_image_get_parameter(m_sequence, ZEP_NUM_FRAMES), 9u);
  EXPECT_EQ(m_errors.count(), 0u);
}

// zep info counts the frames of a sequence file.
TEST_F(JpegSequence, ZepInfoCountsTheFrames) {
  make_sequence(3);
  int status = 0;
  const std::string info = run_command(
      std::string(ZEP_TOOL) + " info " + m_folder.file("sequence.jpg") + " 2>&1", &status);
  EXPECT_EQ(status, 0) << info;
  EXPECT_NE(info.find("size:    48 x 16\n"), std::string::npos) << info;
  EXPECT_NE(info.find("frames:  3\n"), std::string::npos) << info;
}

// Every frame reads back, in any order, with its own data, and decodes as its single picture.
TEST_F(JpegSequence, FramesExtractInAnyOrder) {
  make_sequence(4);
  for (const uint32_t n : {3u, 1u, 4u, 2u, 2u}) {
    SCOPED_TRACE(n);
    ScopedJpeg frame;
    ASSERT_EQ(ZEP_JPEG_sequence_extract_frame(m_sequence, frame, n), 0u);
    EXPECT_EQ(ZEP_image_get_parameter(m_sequence, ZEP_CURRENT_FRAME), n);
    ASSERT_EQ(frame.record().length, m_frames[n - 1].size());
    EXPECT_EQ(Bytes(frame.record().data, frame.record().data + frame.record().length),
              m_frames[n - 1]);
    EXPECT_EQ(frame.image().width, kWidth);
    const Picture decoded = decode(frame);
    EXPECT_EQ(decoded.samples, m_pictures[n - 1].samples);
  }
  EXPECT_EQ(m_errors.count(), 0u);
}

TEST_F(JpegSequence, FramesBeyondTheEndAreRefused) {
  make_sequence(2);
  ScopedJpeg frame;
  EXPECT_EQ(ZEP_JPEG_sequence_extract_frame(m_sequence, frame, 3), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(m_errors.last().function, "ZEP_sequence_JPEG_extract_frame");
  EXPECT_EQ(m_errors.last().message, "frame number > number of frames");
  EXPECT_EQ(ZEP_JPEG_sequence_set_start_frame(m_sequence, 3), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(m_errors.last().message, "starting frame > number of frames");
  ASSERT_EQ(ZEP_JPEG_sequence_set_start_frame(m_sequence, 2), 0u);
  EXPECT_EQ(
      std::ftell(ZEP_JPEG_get_file_ptr(m_sequence)),
      long(ZEP_JPEG_get_parameter(m_sequence, ZEP_JPEG_DATA_OFFSET) + m_frames[0].size() + 2));
  EXPECT_EQ(ZEP_JPEG_file_close(m_sequence), 0u);
  EXPECT_EQ(ZEP_JPEG_get_file_ptr(m_sequence), nullptr);
  EXPECT_EQ(ZEP_JPEG_sequence_calc_length(m_sequence), ZEP_ERR_STATE);
  EXPECT_EQ(m_errors.last().message, "JPEG file not opened");
}

// A single JPEG file is a sequence of one frame: there is no frame marker to reach a second.
TEST_F(JpegSequence, AFileWithoutFrameMarkersHoldsOneFrame) {
  write_file(m_folder.file("single.jpg"), jpeg_file(ZEP_Y8, 16, 8));
  ZEP_image_set_infilename(m_sequence, m_folder.file("single.jpg").c_str());
  ASSERT_EQ(ZEP_JPEG_file_open(m_sequence), 0u);
  ASSERT_EQ(ZEP_JPEG_sequence_calc_length(m_sequence), 0u);
  EXPECT_EQ(ZEP_image_get_parameter(m_sequence, ZEP_NUM_FRAMES), 1u);
  ScopedJpeg frame;
  EXPECT_EQ(ZEP_JPEG_sequence_extract_frame(m_sequence, frame, 2), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(m_errors.last().message, "frame number > number of frames");
  EXPECT_EQ(ZEP_JPEG_sequence_extract_frame(m_sequence, frame, 1), 0u);
  EXPECT_EQ(frame.image().type, ZEP_Y8);
}

TEST_F(JpegSequence, FramesOfAnotherGeometryAreRefused) {
  ScopedImage source;
  ScopedJpeg first, other, built;
  fill_image(source, smooth_picture(32, 16, 1), ZEP_Y8);
  ASSERT_EQ(compress(source, first, 16), 0u);
  fill_image(source, smooth_picture(16, 16, 1), ZEP_Y8);
  ASSERT_EQ(compress(source, other, 16), 0u);
  ASSERT_EQ(ZEP_JPEG_sequence_build(first, built), 0u);
  EXPECT_EQ(ZEP_JPEG_sequence_build(other, built), ZEP_ERR_UNSUPPORTED);
  EXPECT_EQ(m_errors.last().message, "Frame does not match the sequence");
  ScopedJpeg empty;
  EXPECT_EQ(ZEP_JPEG_sequence_build(empty, built), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(m_errors.last().message, "No buffer to read from");
  EXPECT_EQ(ZEP_image_get_parameter(built, ZEP_NUM_FRAMES), 1u);
}

}  // namespace
}  // namespace vrc::test
