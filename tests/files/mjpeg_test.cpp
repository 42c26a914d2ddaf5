// MJPEG sequence files: the comment and both record layouts byte for byte, round trips of many
// frames, the positioning rules of reading, skips by stored length and by scanning, handle
// limits, malformed files (each also a fuzz seed), and refused calls that leave a file already
// written whole.
#include "files/mjpeg_support.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>

namespace {

using vrc::test::Bytes;
using vrc::test::ErrorCapture;
using vrc::test::jpeg_data;
using vrc::test::make_jpeg_frame;
using vrc::test::mjpeg_info;
using vrc::test::ScopedImage;
using vrc::test::ScopedJpeg;
using vrc::test::ScopedMjpeg;
using vrc::test::TempDir;
using vrc::test::write_mjpeg;

constexpr char kFuzzTarget[] = "mjpeg_read_fuzz";
constexpr uint32_t kLaterExtra = ZEP_MJPEG_LATER_RECORD_EXTRA;

uint32_t u32_at(const Bytes &bytes, std::size_t offset) {
  return ZEP_mget_ui32m(bytes.data() + offset);
}

Bytes slice(const Bytes &bytes, std::size_t from, std::size_t count) {
  return Bytes(bytes.begin() + from, bytes.begin() + from + count);
}

// Offsets of the records of a well-formed file, found by their stored lengths.
std::vector<std::size_t> record_starts(const Bytes &file, const std::vector<Bytes> &data) {
  std::vector<std::size_t> starts{0};
  const std::size_t first = file.size() - [&] {
    std::size_t later = 0;
    for (std::size_t i = 1; i + 1 < data.size(); ++i) later += data[i].size() + kLaterExtra;
    return later;
  }();
  for (std::size_t at = first, i = 1; i + 1 < data.size(); at += data[i].size() + kLaterExtra, ++i)
    starts.push_back(at);
  return starts;
}

// ---- Layout ------------------------------------------------------------------------------

class MjpegLayout : public testing::Test {
 protected:
  // Writes three 4:2:2 frames with a fixed time stamp and user texts; returns the file.
  Bytes write_three() {
    ScopedMjpeg mjpeg;
    EXPECT_EQ(ZEP_MJPEG_Create(&mjpeg.handle, path.c_str(), 0x11223344, 0), 0u);
    ZEP_MJPEG_RECORD record = mjpeg_info(mjpeg.handle);
    record.user_time = 1;
    record.time_stamp = 0x0102030405060708;
    record.further_values[0] = 0xA1;
    record.further_values[1] = 0xA2;
    record.further_values[2] = 0xA3;
    record.further_value_last = 0xA4;
    std::memset(record.user_text1, 'x', sizeof record.user_text1);
    std::memset(record.user_text2, 'y', sizeof record.user_text2);
    EXPECT_EQ(ZEP_MJPEG_SetInfo(mjpeg.handle, &record), 0u);
    for (uint32_t frame = 1; frame <= 3; ++frame) {
      ScopedJpeg jpeg;
      make_jpeg_frame(jpeg, ZEP_YUV422, 32, 16, frame);
      EXPECT_EQ(ZEP_MJPEG_ImageWrite(mjpeg.handle, jpeg), 0u);
      data.push_back(jpeg_data(jpeg));
    }
    EXPECT_EQ(ZEP_MJPEG_Close(mjpeg.handle), 0u);
    mjpeg.handle = 0;
    return vrc::test::read_file(path);
  }

  void expect_comment(const Bytes &file, std::size_t at, uint32_t frame, uint32_t next,
                      uint32_t previous) {
    SCOPED_TRACE("comment of frame " + std::to_string(frame));
    EXPECT_EQ(u32_at(file, at + 0), frame);
    EXPECT_EQ(u32_at(file, at + 4), data[frame - 1].size());
    EXPECT_EQ(u32_at(file, at + 8), 0x05060708u);
    EXPECT_EQ(u32_at(file, at + 12), 0x11223344u);
    EXPECT_EQ(u32_at(file, at + 16), next);
    EXPECT_EQ(u32_at(file, at + 20), 0xA1u);
    EXPECT_EQ(u32_at(file, at + 24), 0xA2u);
    EXPECT_EQ(u32_at(file, at + 28), previous);
    EXPECT_EQ(u32_at(file, at + 32), 0xA3u);
    EXPECT_EQ(u32_at(file, at + 36), 0xA4u);
    EXPECT_EQ(slice(file, at + 40, 128), Bytes(128, 'x'));
    EXPECT_EQ(slice(file, at + 168, 128), Bytes(128, 'y'));
  }

  ErrorCapture errors;
  TempDir folder;
  const std::string path = folder.file("layout.mjpg");
  std::vector<Bytes> data;
};

TEST_F(MjpegLayout, FirstRecordIsAJfifHeaderWithoutHuffmanTables) {
  const Bytes file = write_three();
  const Bytes start = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10, 'J',  'F',  'I',  'F',  0x00, 0x01,
                       0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFE, 0x01, 0x2A};
  EXPECT_EQ(slice(file, 0, 24), start);
  const uint32_t first_length = u32_at(file, 24 + 28);  // as the previous-frame field of frame 1
  expect_comment(file, 24, 1, 0, 0);
  // DQT: two tables of 65 bytes.
  EXPECT_EQ(slice(file, 320, 5), (Bytes{0xFF, 0xDB, 0x00, 0x84, 0x00}));
  EXPECT_EQ(file[320 + 4 + 65], 0x01);
  // SOF0 for 32 x 16, three components: Y 2 x 1, U and V 1 x 1.
  const std::size_t sof = 320 + 4 + 130;
  EXPECT_EQ(slice(file, sof, 19), (Bytes{0xFF, 0xC0, 0x00, 0x11, 0x08, 0x00, 0x10, 0x00, 0x20, 0x03,
                                         0x01, 0x21, 0x00, 0x02, 0x11, 0x01, 0x03, 0x11, 0x01}));
  const std::size_t sos = sof + 19;
  EXPECT_EQ(slice(file, sos, 14), (Bytes{0xFF, 0xDA, 0x00, 0x0C, 0x03, 0x01, 0x00, 0x02, 0x11, 0x03,
                                         0x11, 0x00, 0x3F, 0x00}));
  EXPECT_EQ(slice(file, sos + 14, data[0].size()), data[0]);
  const std::size_t record_end = sos + 14 + data[0].size() + 2;
  EXPECT_EQ(slice(file, record_end - 2, 2), (Bytes{0xFF, 0xD9}));
  EXPECT_EQ(first_length, 0u);  // nothing came before frame 1
}

TEST_F(MjpegLayout, LaterRecordIsCommentBareSosDataAndEoi) {
  const Bytes file = write_three();
  // Three frames written and closed: two records, the third frame was still held.
  const std::size_t second = file.size() - (data[1].size() + kLaterExtra);
  EXPECT_EQ(slice(file, second - 2, 2), (Bytes{0xFF, 0xD9}));
  EXPECT_EQ(slice(file, second, 4), (Bytes{0xFF, 0xFE, 0x01, 0x2A}));
  expect_comment(file, second + 4, 2, static_cast<uint32_t>(data[1].size() + kLaterExtra),
                 static_cast<uint32_t>(second));
  EXPECT_EQ(slice(file, second + 300, 2), (Bytes{0xFF, 0xDA}));
  EXPECT_EQ(slice(file, second + 302, data[1].size()), data[1]);
  EXPECT_EQ(slice(file, file.size() - 2, 2), (Bytes{0xFF, 0xD9}));
  EXPECT_EQ(errors.count(), 0u);
}

TEST_F(MjpegLayout, DebugDumpWritesTheCurrentRecordOnlyInDebugMode) {
  for (const uint32_t mode : {0u, ZEP_MJPEG_MODE_DEBUG}) {
    const std::string dump = folder.file("dump" + std::to_string(mode) + ".txt");
    ScopedMjpeg mjpeg;
    ASSERT_EQ(ZEP_MJPEG_Create(&mjpeg.handle, path.c_str(), 0, mode), 0u);
    ScopedJpeg jpeg;
    make_jpeg_frame(jpeg, ZEP_Y8, 16, 8, 1);
    ASSERT_EQ(ZEP_MJPEG_ImageWrite(mjpeg.handle, jpeg), 0u);
    const ZEP_MJPEG_RECORD record = mjpeg_info(mjpeg.handle);
    ASSERT_EQ(ZEP_MJPEG_DEBUG_DumpData(&record, dump.c_str()), 0u);
    if (mode == 0) {
      EXPECT_FALSE(std::filesystem::exists(dump));
      continue;
    }
    const Bytes text = vrc::test::read_file(dump);
    const std::string expected_start =
        "Frame 1 JPEG Data\nNum bytes JPEG data = " + std::to_string(record.buffer_bytes[0]) +
        "\n------------------\nffd8ffe00010";
    EXPECT_EQ(std::string(text.begin(), text.begin() + expected_start.size()), expected_start);
    EXPECT_EQ(text.size(), expected_start.size() - 12 + 2 * record.buffer_bytes[0] + 1);
  }
}

// ---- Round trips and positioning -----------------------------------------------------------

struct Geometry {
  uint16_t type;
  uint32_t width;
  uint32_t height;
};

class MjpegRoundTrip : public testing::TestWithParam<Geometry> {
 protected:
  ErrorCapture errors;
  TempDir folder;
};

TEST_P(MjpegRoundTrip, EveryFrameButTheHeldOneReadsBackAndDecodes) {
  const Geometry geometry = GetParam();
  const std::string path = folder.file("frames.mjpg");
  constexpr uint32_t kFrames = 40;
  const std::vector<Bytes> data =
      write_mjpeg(path, geometry.type, geometry.width, geometry.height, kFrames, 7);
  ScopedMjpeg mjpeg;
  ASSERT_EQ(ZEP_MJPEG_Open(&mjpeg.handle, path.c_str()), 0u);
  const ZEP_MJPEG_RECORD record = mjpeg_info(mjpeg.handle);
  EXPECT_EQ(record.frame_count, kFrames - 1);
  EXPECT_EQ(record.is_colour, geometry.type != ZEP_Y8 ? 1u : 0u);
  EXPECT_EQ(record.user_value, 7u);
  for (uint32_t frame = 1; frame < kFrames; ++frame) {
    ScopedJpeg jpeg;
    ASSERT_EQ(ZEP_MJPEG_ImageRead(mjpeg.handle, jpeg, 0), 0u) << "frame " << frame;
    EXPECT_EQ(mjpeg_info(mjpeg.handle).frame_number, frame);
    ASSERT_EQ(jpeg_data(jpeg), data[frame - 1]) << "frame " << frame;
    EXPECT_EQ(ZEP_image_get_parameter(jpeg, ZEP_IMAGE_WIDTH), geometry.width);
    EXPECT_EQ(ZEP_image_get_parameter(jpeg, ZEP_IMAGE_HEIGHT), geometry.height);
    if (frame % 13 != 1) continue;
    // Decoded, the frame is the picture that was compressed.
    ScopedJpeg original;
    make_jpeg_frame(original, geometry.type, geometry.width, geometry.height, frame);
    const vrc::test::Picture read = vrc::test::decode(jpeg);
    EXPECT_EQ(read.samples, vrc::test::decode(original).samples) << "frame " << frame;
  }
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Formats, MjpegRoundTrip,
                         testing::Values(Geometry{ZEP_Y8, 24, 16}, Geometry{ZEP_YUV422, 48, 24},
                                         Geometry{ZEP_YUV422, 20, 12}));

// A nine-frame file (eight records) opened for reading.
class MjpegReading : public testing::Test {
 protected:
  void SetUp() override {
    data = write_mjpeg(path, ZEP_YUV422, 32, 8, 9);
    ASSERT_EQ(ZEP_MJPEG_Open(&mjpeg.handle, path.c_str()), 0u);
  }
  // Reads `frame` and returns the frame number it gave, checking its data; 0 on failure.
  uint32_t read(int32_t frame) {
    ScopedJpeg jpeg;
    if (ZEP_MJPEG_ImageRead(mjpeg.handle, jpeg, frame) != 0) return 0;
    const uint32_t number = mjpeg_info(mjpeg.handle).frame_number;
    EXPECT_EQ(jpeg_data(jpeg), data.at(number - 1)) << "frame " << number;
    return number;
  }

  ErrorCapture errors;
  TempDir folder;
  const std::string path = folder.file("nine.mjpg");
  std::vector<Bytes> data;
  ScopedMjpeg mjpeg;
};

struct ReadStep {
  int32_t frame;
  uint32_t expected;
};

TEST_F(MjpegReading, PositioningRules) {
  const std::vector<std::vector<ReadStep>> walks = {
      {{0, 1}, {0, 2}, {0, 3}},                     // from Open: the next frames
      {{5, 5}, {0, 6}, {3, 3}, {7, 7}, {1, 1}},     // numbered, both ways
      {{-1, 8}, {0, 8}, {6, 6}, {2, 2}},            // the last, again, then back
      {{100, 8}, {-7, 1}, {8, 8}, {4, 4}, {4, 4}},  // beyond the count, below -1, the current
      {{8, 8}, {1, 1}, {2, 2}, {-2, 1}, {0, 2}},
  };
  for (std::size_t walk = 0; walk < walks.size(); ++walk) {
    ASSERT_EQ(read(1), 1u);
    ASSERT_EQ(ZEP_MJPEG_ScanBackwards(mjpeg.handle, 1), 0u);  // back to the start of frame 1
    for (const ReadStep &step : walks[walk])
      EXPECT_EQ(read(step.frame), step.expected) << "walk " << walk << ", frame " << step.frame;
  }
  EXPECT_EQ(errors.count(), 0u);
}

struct MoveCase {
  const char *name;
  uint32_t (*move)(uint32_t, uint32_t);
  uint32_t read_first;  // frame read before moving
  uint32_t count;
  uint32_t expected;  // frame read next (0: the move fails)
};

class MjpegMoves : public MjpegReading, public testing::WithParamInterface<MoveCase> {};

TEST_P(MjpegMoves, MoveThenReadTheNextFrame) {
  const MoveCase &move = GetParam();
  ASSERT_EQ(read(static_cast<int32_t>(move.read_first)), move.read_first);
  const uint32_t status = move.move(mjpeg.handle, move.count);
  if (move.expected == 0) {
    EXPECT_EQ(status, ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(read(0), move.read_first + 1);  // the stream stayed where it was
    return;
  }
  ASSERT_EQ(status, 0u);
  EXPECT_EQ(read(0), move.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Records, MjpegMoves,
    testing::Values(MoveCase{"SkipForwardsByLength", &ZEP_MJPEG_SkipForwards, 2, 3, 6},
                    MoveCase{"SkipForwardsToLast", &ZEP_MJPEG_SkipForwards, 3, 4, 8},
                    MoveCase{"SkipForwardsPastEnd", &ZEP_MJPEG_SkipForwards, 3, 9, 0},
                    MoveCase{"SkipBackwardsOne", &ZEP_MJPEG_SkipBackwards, 5, 1, 5},
                    MoveCase{"SkipBackwardsByLengths", &ZEP_MJPEG_SkipBackwards, 7, 5, 3},
                    MoveCase{"SkipBackwardsToFirst", &ZEP_MJPEG_SkipBackwards, 4, 4, 1},
                    MoveCase{"SkipBackwardsPastStart", &ZEP_MJPEG_SkipBackwards, 4, 5, 0},
                    MoveCase{"ScanForwards", &ZEP_MJPEG_ScanForwards, 1, 4, 6},
                    MoveCase{"ScanForwardsFromFirst", &ZEP_MJPEG_ScanForwards, 1, 1, 3},
                    MoveCase{"ScanBackwards", &ZEP_MJPEG_ScanBackwards, 6, 3, 4},
                    MoveCase{"ScanBackwardsToFirst", &ZEP_MJPEG_ScanBackwards, 3, 3, 1}),
    [](const testing::TestParamInfo<MoveCase> &param_info) { return std::string(param_info.param.name); });

TEST_F(MjpegReading, UnknownLengthsAreScannedOver) {
  // Clear every stored length: skipping falls back to scanning and lands on the same frames.
  Bytes file = vrc::test::read_file(path);
  for (const std::size_t start : record_starts(file, data)) {
    const std::size_t comment = start == 0 ? 24 : 4;
    std::memset(file.data() + start + comment + 16, 0, 4);
    std::memset(file.data() + start + comment + 28, 0, 4);
  }
  const std::string cleared = folder.file("cleared.mjpg");
  vrc::test::write_file(cleared, file);
  ZEP_MJPEG_Close(mjpeg.handle);
  ASSERT_EQ(ZEP_MJPEG_Open(&mjpeg.handle, cleared.c_str()), 0u);
  EXPECT_EQ(read(7), 7u);
  EXPECT_EQ(read(3), 3u);
  ASSERT_EQ(ZEP_MJPEG_SkipForwards(mjpeg.handle, 2), 0u);
  EXPECT_EQ(read(0), 6u);
  ASSERT_EQ(ZEP_MJPEG_SkipBackwards(mjpeg.handle, 4), 0u);
  EXPECT_EQ(read(0), 3u);
  EXPECT_EQ(errors.count(), 0u);
}

TEST_F(MjpegReading, CallsOnAReaderOrWriterThatDoNotFitAreRefused) {
  ScopedJpeg jpeg;
  make_jpeg_frame(jpeg, ZEP_YUV422, 32, 8, 1);
  EXPECT_EQ(ZEP_MJPEG_ImageWrite(mjpeg.handle, jpeg), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().message, "MJPEG file is open for reading");
  ScopedImage plain;
  EXPECT_TRUE(ZEP_IS_ERROR(ZEP_MJPEG_ImageRead(mjpeg.handle, plain, 2)));
  EXPECT_EQ(read(0), 1u);  // the refused read did not move the stream
  ScopedMjpeg writer;
  ASSERT_EQ(ZEP_MJPEG_Create(&writer.handle, folder.file("w.mjpg").c_str(), 0, 0), 0u);
  EXPECT_EQ(ZEP_MJPEG_ImageRead(writer.handle, jpeg, 1), ZEP_ERR_STATE);
  EXPECT_EQ(ZEP_MJPEG_SkipForwards(writer.handle, 1), ZEP_ERR_STATE);
  EXPECT_EQ(errors.last().message, "MJPEG file is open for writing");
}

TEST_F(MjpegReading, CopyParamsCarriesUserValueTimeAndTexts) {
  ZEP_MJPEG_RECORD record = mjpeg_info(mjpeg.handle);
  std::memset(record.user_text1, 'a', sizeof record.user_text1);
  record.time_stamp = 1234;
  ASSERT_EQ(ZEP_MJPEG_SetInfo(mjpeg.handle, &record), 0u);
  ScopedMjpeg writer;
  ASSERT_EQ(ZEP_MJPEG_Create(&writer.handle, folder.file("copy.mjpg").c_str(), 99, 0), 0u);
  ASSERT_EQ(ZEP_MJPEG_CopyParams(mjpeg.handle, writer.handle), 0u);
  const ZEP_MJPEG_RECORD copied = mjpeg_info(writer.handle);
  EXPECT_EQ(copied.user_value, 0u);
  EXPECT_EQ(copied.time_stamp, 1234);
  EXPECT_EQ(copied.user_text1[127], 'a');
  EXPECT_EQ(copied.frame_number, 0u);
  EXPECT_EQ(ZEP_MJPEG_CopyParams(mjpeg.handle, 9), ZEP_ERR_BAD_PARAM);
}

// ---- Handles -------------------------------------------------------------------------------

TEST(MjpegHandles, EightAtMostAndNoneOutsideTheTable) {
  ErrorCapture errors;
  TempDir folder;
  std::vector<uint32_t> handles;
  for (int i = 0; i < 8; ++i) {
    uint32_t handle = 0;
    ASSERT_EQ(ZEP_MJPEG_Create(&handle, folder.file(std::to_string(i) + ".mjpg").c_str(), 0, 0),
              0u);
    EXPECT_EQ(handle, static_cast<uint32_t>(i + 1));
    handles.push_back(handle);
  }
  uint32_t ninth = 0;
  EXPECT_EQ(ZEP_MJPEG_Create(&ninth, folder.file("9.mjpg").c_str(), 0, 0), ZEP_ERR_NO_HANDLES | 9);
  EXPECT_EQ(errors.last().message, "Run out of MJPEG handles");
  EXPECT_EQ(errors.last().function, "ZEP_MJPEG_Create");
  for (const uint32_t handle : handles) EXPECT_EQ(ZEP_MJPEG_Close(handle), 0u);

  errors.clear();
  ZEP_MJPEG_RECORD record{};
  ScopedJpeg jpeg;
  for (const uint32_t bad : {0u, 9u, 3u /* not in use */}) {
    EXPECT_EQ(ZEP_MJPEG_ImageWrite(bad, jpeg), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(ZEP_MJPEG_ImageRead(bad, jpeg, 1), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(ZEP_MJPEG_SkipForwards(bad, 1), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(ZEP_MJPEG_SkipBackwards(bad, 1), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(ZEP_MJPEG_ScanForwards(bad, 1), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(ZEP_MJPEG_ScanBackwards(bad, 1), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(ZEP_MJPEG_GetInfo(bad, &record), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(ZEP_MJPEG_SetInfo(bad, &record), ZEP_ERR_BAD_PARAM);
    EXPECT_EQ(ZEP_MJPEG_Close(bad), ZEP_ERR_BAD_PARAM);
  }
  EXPECT_EQ(errors.count(), 0u);
  EXPECT_EQ(ZEP_MJPEG_Create(&ninth, "/nonexistent/folder/x.mjpg", 0, 0), ZEP_ERR_OPEN);
  EXPECT_EQ(errors.last().message, "Failed to create file");
}

// ---- Writing failures ----------------------------------------------------------------------

TEST(MjpegWriting, FailingCallsLeaveTheWrittenFileWhole) {
  ErrorCapture errors;
  TempDir folder;
  const std::string path = folder.file("kept.mjpg");
  ScopedMjpeg mjpeg;
  ASSERT_EQ(ZEP_MJPEG_Create(&mjpeg.handle, path.c_str(), 0, 0), 0u);
  std::vector<Bytes> data;
  for (uint32_t frame = 1; frame <= 3; ++frame) {
    ScopedJpeg jpeg;
    make_jpeg_frame(jpeg, ZEP_Y8, 16, 8, frame);
    ASSERT_EQ(ZEP_MJPEG_ImageWrite(mjpeg.handle, jpeg), 0u);
    data.push_back(jpeg_data(jpeg));
  }
  const Bytes written = vrc::test::read_file(path);

  ScopedJpeg other_size;
  make_jpeg_frame(other_size, ZEP_Y8, 24, 8, 4);
  EXPECT_EQ(ZEP_MJPEG_ImageWrite(mjpeg.handle, other_size), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Frame geometry differs from the first frame");
  ScopedJpeg too_large;
  make_jpeg_frame(too_large, ZEP_Y8, 16, 8, 4);
  ASSERT_EQ(ZEP_JPEG_malloc_N_bytes_data(too_large, 16 * 8 + 10000 - 1023), 0u);
  EXPECT_EQ(ZEP_MJPEG_ImageWrite(mjpeg.handle, too_large), ZEP_ERR_INTERNAL | (9105 & 0xFFFF));
  EXPECT_EQ(errors.last().message, "Internal: ZEP_MJPEG_DATA_BUFFER_SIZE not large enough.");
  ScopedImage not_jpeg;
  EXPECT_TRUE(ZEP_IS_ERROR(ZEP_MJPEG_ImageWrite(mjpeg.handle, not_jpeg)));
  EXPECT_EQ(vrc::test::read_file(path), written);

  // Writing goes on from where it stood.
  ScopedJpeg fourth;
  make_jpeg_frame(fourth, ZEP_Y8, 16, 8, 4);
  ASSERT_EQ(ZEP_MJPEG_ImageWrite(mjpeg.handle, fourth), 0u);
  ASSERT_EQ(ZEP_MJPEG_Close(mjpeg.handle), 0u);
  mjpeg.handle = 0;
  ASSERT_EQ(ZEP_MJPEG_Open(&mjpeg.handle, path.c_str()), 0u);
  EXPECT_EQ(mjpeg_info(mjpeg.handle).frame_count, 3u);
  ScopedJpeg third;
  ASSERT_EQ(ZEP_MJPEG_ImageRead(mjpeg.handle, third, 3), 0u);
  EXPECT_EQ(jpeg_data(third), data[2]);
}

// ---- Malformed files -----------------------------------------------------------------------

struct BadMjpeg {
  const char *name;
  std::function<void(Bytes &, const std::vector<std::size_t> &)> damage;
  bool opens;             // Open succeeds (the damage shows on a later read)
  int32_t frame_to_read;  // read after Open
  uint32_t code;
  const char *message;
};

class MjpegMalformed : public testing::TestWithParam<BadMjpeg> {};

TEST_P(MjpegMalformed, ReportsAndStaysHealthy) {
  const BadMjpeg &bad = GetParam();
  ErrorCapture errors;
  TempDir folder;
  const std::string good = folder.file("good.mjpg");
  const std::vector<Bytes> data = write_mjpeg(good, ZEP_YUV422, 32, 8, 5);
  Bytes file = vrc::test::read_file(good);
  bad.damage(file, record_starts(file, data));
  const std::string path = folder.file(std::string(bad.name) + ".mjpg");
  vrc::test::write_file(path, file);
  vrc::test::write_seed(kFuzzTarget, std::string(bad.name) + ".mjpg", file);

  ScopedMjpeg mjpeg;
  const uint32_t status = ZEP_MJPEG_Open(&mjpeg.handle, path.c_str());
  if (bad.opens) {
    ASSERT_EQ(status, 0u);
    ScopedJpeg jpeg;
    EXPECT_EQ(ZEP_MJPEG_ImageRead(mjpeg.handle, jpeg, bad.frame_to_read), bad.code);
    EXPECT_EQ(ZEP_MJPEG_ImageRead(mjpeg.handle, jpeg, 1), 0u);  // still usable
    EXPECT_EQ(jpeg_data(jpeg), data[0]);
  } else {
    EXPECT_EQ(status, bad.code);
    EXPECT_EQ(mjpeg.handle, 0u);
  }
  ASSERT_GT(errors.count(), 0u);
  EXPECT_EQ(errors.all().front().message, bad.message);
}

void put_u32(Bytes &file, std::size_t offset, uint32_t value) {
  ZEP_mput_ui32m(file.data() + offset, value);
}

INSTANTIATE_TEST_SUITE_P(
    Files, MjpegMalformed,
    testing::Values(
        BadMjpeg{"comment_length_not_298", [](Bytes &f, const auto &s) { f[s[2] + 3] = 0x2B; },
                 true, 3, ZEP_ERR_UNEXPECTED | 0x12B, "MJPEG frame comment length is not 298"},
        BadMjpeg{"data_length_beyond_file",
                 [](Bytes &f, const auto &s) { put_u32(f, s[3] + 8, 0x7FFFFFF0); }, false, 0,
                 ZEP_ERR_UNEXPECTED, "MJPEG frame data length runs past the end of the file"},
        BadMjpeg{"middle_data_length_beyond_file",
                 [](Bytes &f, const auto &s) { put_u32(f, s[1] + 8, 0x00FFFFF0); }, true, 2,
                 ZEP_ERR_UNEXPECTED, "MJPEG frame data length runs past the end of the file"},
        BadMjpeg{"eoi_missing", [](Bytes &f, const auto &s) { f[s[2] - 1] = 0xD8; }, true, 2,
                 ZEP_ERR_UNEXPECTED | 0xD8, "Expecting EOI marker"},
        BadMjpeg{"ff_missing", [](Bytes &f, const auto &s) { f[s[2] - 2] = 0x12; }, true, 2,
                 ZEP_ERR_UNEXPECTED | 0x12, "Expecting 0xFF marker"},
        BadMjpeg{"stored_length_past_end",
                 [](Bytes &f, const auto &s) { put_u32(f, s[2] + 20, 0x7FFFFFF0); }, true, 4,
                 ZEP_ERR_UNEXPECTED, "MJPEG record length runs outside the file"},
        BadMjpeg{"truncated_last_record", [](Bytes &f, const auto &) { f.erase(f.end() - 40, f.end()); },
                 false, 0, ZEP_ERR_UNEXPECTED,
                 "MJPEG frame data length runs past the end of the file"},
        BadMjpeg{"no_records", [](Bytes &f, const auto &s) { f.resize(s[0] + 20); }, false, 0,
                 ZEP_ERR_UNEXPECTED, "MJPEG file holds no frames"},
        BadMjpeg{"not_jpeg", [](Bytes &f, const auto &) { f[0] = 'M'; }, false, 0,
                 ZEP_ERR_UNEXPECTED, "Expecting PREFIX marker"}),
    [](const testing::TestParamInfo<BadMjpeg> &param_info) { return std::string(param_info.param.name); });

TEST(MjpegGarbage, BytesBetweenRecordsAreSteppedOver) {
  ErrorCapture errors;
  TempDir folder;
  const std::string good = folder.file("good.mjpg");
  const std::vector<Bytes> data = write_mjpeg(good, ZEP_YUV422, 32, 8, 6);
  Bytes file = vrc::test::read_file(good);
  const std::vector<std::size_t> starts = record_starts(file, data);
  const Bytes garbage = {0x00, 0xFF, 0x12, 0x34, 0xFF, 0x00, 0xAB};
  file.insert(file.begin() + static_cast<std::ptrdiff_t>(starts[3]), garbage.begin(),
              garbage.end());
  file.insert(file.begin() + static_cast<std::ptrdiff_t>(starts[1]), garbage.begin(),
              garbage.end());
  const std::string path = folder.file("garbage.mjpg");
  vrc::test::write_file(path, file);
  vrc::test::write_seed(kFuzzTarget, "garbage_between_records.mjpg", file);
  ScopedMjpeg mjpeg;
  ASSERT_EQ(ZEP_MJPEG_Open(&mjpeg.handle, path.c_str()), 0u);
  EXPECT_EQ(mjpeg_info(mjpeg.handle).frame_count, 5u);
  for (uint32_t frame = 1; frame <= 5; ++frame) {
    ScopedJpeg jpeg;
    ASSERT_EQ(ZEP_MJPEG_ImageRead(mjpeg.handle, jpeg, 0), 0u);
    EXPECT_EQ(jpeg_data(jpeg), data[frame - 1]);
  }
  ScopedJpeg jpeg;
  ASSERT_EQ(ZEP_MJPEG_ImageRead(mjpeg.handle, jpeg, 3), 0u);
  EXPECT_EQ(jpeg_data(jpeg), data[2]);
  EXPECT_EQ(errors.count(), 0u);
}

TEST(MjpegGarbage, MarkerLikeTableBytesInTheFirstRecordAreSteppedOver) {
  ErrorCapture errors;
  TempDir folder;
  const std::string path = folder.file("tables.mjpg");
  const std::vector<Bytes> data = write_mjpeg(path, ZEP_Y8, 16, 8, 3);
  Bytes file = vrc::test::read_file(path);
  file[330] = 0xFF;  // two quantisation table entries that read as an SOS marker
  file[331] = 0xDA;
  vrc::test::write_file(path, file);
  ScopedMjpeg mjpeg;
  ASSERT_EQ(ZEP_MJPEG_Open(&mjpeg.handle, path.c_str()), 0u);
  ScopedJpeg jpeg;
  ASSERT_EQ(ZEP_MJPEG_ImageRead(mjpeg.handle, jpeg, 1), 0u);
  EXPECT_EQ(jpeg_data(jpeg), data[0]);
  EXPECT_EQ(errors.count(), 0u);
}

// Well-formed seeds for the fuzz target.
TEST(MjpegSeeds, WellFormedFiles) {
  ErrorCapture errors;
  TempDir folder;
  const struct {
    const char *name;
    uint16_t type;
    uint32_t frames;
  } seeds[] = {{"y8_three_records.mjpg", ZEP_Y8, 4}, {"yuv422_two_records.mjpg", ZEP_YUV422, 3}};
  for (const auto &seed : seeds) {
    const std::string path = folder.file(seed.name);
    write_mjpeg(path, seed.type, 16, 8, seed.frames);
    vrc::test::write_seed(kFuzzTarget, seed.name, vrc::test::read_file(path));
  }
  EXPECT_EQ(errors.count(), 0u);
}

}  // namespace
