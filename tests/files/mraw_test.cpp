// MRAW sequence files: both headers byte for byte, round trips of every pixel format, the
// positioning rules of reading, handle limits, malformed files (each also a fuzz seed), and
// refused calls that leave a file already written whole.
#include "files/mraw_support.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <cstring>
#include <ctime>
#include <functional>

namespace {

using vrc::test::BadFile;
using vrc::test::Bytes;
using vrc::test::ErrorCapture;
using vrc::test::mraw_info;
using vrc::test::OpenedSequence;
using vrc::test::ScopedImage;
using vrc::test::ScopedMraw;
using vrc::test::TempDir;
using vrc::test::write_sequence;

constexpr char kFuzzTarget[] = "mraw_read_fuzz";

Bytes from_hex(const std::string &hex) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
  return bytes;
}

Bytes slice(const Bytes &bytes, std::size_t from, std::size_t count) {
  return Bytes(bytes.begin() + from, bytes.begin() + from + count);
}

// ---- Layout ------------------------------------------------------------------------------

class MrawLayout : public testing::Test {
 protected:
  ErrorCapture errors;
  TempDir folder;
};

TEST_F(MrawLayout, PerFileHeaderIsStoredFieldByField) {
  ScopedImage image;
  ZEP_ImageMake(image, 5, 3, ZEP_RGB24, 0);  // 15 bytes a line, one skip byte
  ZEP_image_set_parameter(image, ZEP_DATA_WIDTH, 8);
  ZEP_image_set_parameter(image, ZEP_FIELD_MODE, 0x10002);
  ZEP_image_set_flags(image, ZEP_FLAG_FIELDS | ZEP_FLAG_USE_LUT, 1);
  ScopedMraw mraw;
  const std::string path = folder.file("layout.mraw");
  ASSERT_EQ(ZEP_MRAW_Create(&mraw.handle, path.c_str()), 0u);
  ASSERT_EQ(ZEP_MRAW_ImageWrite(mraw.handle, image), 0u);
  ASSERT_EQ(ZEP_MRAW_Close(mraw.handle), 0u);
  mraw.handle = 0;

  const Bytes file = vrc::test::read_file(path);
  ASSERT_EQ(file.size(), 64u + 320u + 48u);
  const std::string id = "MRAW vrcw32 image sequence ";
  Bytes expected(id.begin(), id.end());
  const Bytes fields = from_hex(
      "0040"
      "0007"
      "0008"
      "00000005"
      "00000003"
      "00000018"
      "00000002"
      "00000001"
      "00000030"
      "00000010"
      "0002"
      "00");
  expected.insert(expected.end(), fields.begin(), fields.end());
  EXPECT_EQ(slice(file, 0, 64), expected);
}

TEST_F(MrawLayout, PerImageHeaderCarriesNumberTimeStrideAndUserFields) {
  ScopedImage image;
  ZEP_ImageMake(image, 4, 2, ZEP_Y8, 0);
  vrc::test::fill_frame(image, 1);
  ScopedMraw mraw;
  const std::string path = folder.file("user.mraw");
  ASSERT_EQ(ZEP_MRAW_Create(&mraw.handle, path.c_str()), 0u);
  ZEP_MRAW_RECORD record = mraw_info(mraw.handle);
  record.user_time = 1;
  record.time_stamp = 0x123456789LL;  // after 2106: the upper half is not stored
  record.user_value[0] = 10;
  record.user_value[1] = 11;
  record.user_value[2] = 0xFFFFFFFF;
  for (uint32_t i = 0; i < 128; ++i) {
    record.user_block1[i] = static_cast<uint8_t>(i);
    record.user_block2[i] = static_cast<uint8_t>(255 - i);
  }
  ASSERT_EQ(ZEP_MRAW_SetInfo(mraw.handle, &record), 0u);
  ASSERT_EQ(ZEP_MRAW_ImageWrite(mraw.handle, image), 0u);
  ASSERT_EQ(ZEP_MRAW_ImageWrite(mraw.handle, image), 0u);
  ASSERT_EQ(ZEP_MRAW_Close(mraw.handle), 0u);
  mraw.handle = 0;

  const Bytes file = vrc::test::read_file(path);
  const uint32_t stride = 320 + 8;
  ASSERT_EQ(file.size(), 64u + 2 * stride);
  for (uint32_t frame = 1; frame <= 2; ++frame) {
    const Bytes header = slice(file, 64 + (frame - 1) * stride, 320);
    Bytes expected = from_hex(
        "0140"
        "0000000" +
        std::to_string(frame) +
        "23456789"
        "00000148"
        "0000000a"
        "0000000b"
        "ffffffff");
    for (uint32_t i = 0; i < 128; ++i) expected.push_back(static_cast<uint8_t>(i));
    for (uint32_t i = 0; i < 128; ++i) expected.push_back(static_cast<uint8_t>(255 - i));
    expected.resize(320, 0);
    EXPECT_EQ(header, expected) << "frame " << frame;
    EXPECT_EQ(slice(file, 64 + (frame - 1) * stride + 320, 8), vrc::test::strip_bytes(image));
  }

  ASSERT_EQ(ZEP_MRAW_Open(&mraw.handle, path.c_str()), 0u);
  const ZEP_MRAW_RECORD read = mraw_info(mraw.handle);
  EXPECT_EQ(read.time_stamp, 0x23456789LL);
  EXPECT_EQ(read.user_value[2], 0xFFFFFFFFu);
  EXPECT_EQ(std::memcmp(read.user_block2, record.user_block2, 128), 0);
  EXPECT_EQ(read.frame_stride, stride);
  EXPECT_EQ(read.header_per_file_length, 64u);
  EXPECT_EQ(read.header_per_image_length, 320u);
}

TEST(MrawTime, WritesStampTheCurrentTimeUnlessTheCallerSetsIt) {
  const int64_t before = std::time(nullptr);
  const OpenedSequence sequence(ZEP_Y8, 2, 2, 2);
  const int64_t after = std::time(nullptr);
  const int64_t stamp = mraw_info(sequence.handle()).time_stamp;
  EXPECT_GE(stamp, before & 0xFFFFFFFF);
  EXPECT_LE(stamp, after & 0xFFFFFFFF);
}

// ---- Round trips -------------------------------------------------------------------------

class MrawRoundTrip : public testing::TestWithParam<uint16_t> {
 protected:
  ErrorCapture errors;
  TempDir folder;
};

TEST_P(MrawRoundTrip, EveryFrameReadsBackAsWritten) {
  const uint16_t type = GetParam();
  const uint32_t width = 7, height = 5, frames = 12;
  const std::string path = folder.file("round.mraw");
  const std::vector<Bytes> strips = write_sequence(path, type, width, height, frames);
  ScopedImage written;
  ZEP_ImageMake(written, width, height, type, 0);

  ScopedMraw mraw;
  ASSERT_EQ(ZEP_MRAW_Open(&mraw.handle, path.c_str()), 0u) << errors.last().message;
  const ZEP_MRAW_RECORD info = mraw_info(mraw.handle);
  EXPECT_EQ(info.frame_count, frames);
  EXPECT_EQ(info.frame_number, 1u);
  EXPECT_EQ(info.width, width);
  EXPECT_EQ(info.height, height);
  EXPECT_EQ(info.is_colour, ZEP_image_is_colour(written));
  ScopedImage image;
  for (uint32_t frame = 1; frame <= frames; ++frame) {
    ASSERT_EQ(ZEP_MRAW_ImageRead(mraw.handle, image, frame == 1 ? 1 : 0), 0u);
    EXPECT_EQ(mraw_info(mraw.handle).frame_number, frame);
    EXPECT_EQ(vrc::test::strip_bytes(image), strips[frame - 1]) << "frame " << frame;
  }
  for (uint16_t id : {ZEP_IMAGE_TYPE, ZEP_IMAGE_WIDTH, ZEP_IMAGE_HEIGHT, ZEP_IMAGE_DEPTH,
                      ZEP_DATA_WIDTH, ZEP_BYTES_PER_LINE, ZEP_LINES_THIS_STRIP, ZEP_LINE_ALIGN}) {
    EXPECT_EQ(ZEP_image_get_parameter(image, id), ZEP_image_get_parameter(written, id)) << id;
  }
  EXPECT_EQ(errors.count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(EveryPixelFormat, MrawRoundTrip,
                         testing::Values(ZEP_Y1, ZEP_Y8, ZEP_PALETTED, ZEP_RGB8, ZEP_RGB15,
                                         ZEP_RGB16, ZEP_RGB24, ZEP_BGR24, ZEP_RGBX32, ZEP_BGRX32,
                                         ZEP_XBGR32, ZEP_YUV422, ZEP_CMYK32, ZEP_Y16, ZEP_XRGB32,
                                         ZEP_DATA32_8, ZEP_DATA64, ZEP_DATA32, ZEP_DCT32_A,
                                         ZEP_DCT32_B, ZEP_DATA16_A, ZEP_DATA16_B, ZEP_DATA16_C,
                                         ZEP_HSI));

// Makes a width x height image of `type` whose strip is the caller's `buffer`, locked.
void attach_locked(uint32_t image, uint32_t width, uint32_t height, uint16_t type,
                   std::vector<uint8_t> &buffer) {
  ZEP_ImageMake(image, width, height, type, 0);
  ZEP_image_free_data(image);
  ZEP_image_set_ptr(image, ZEP_DATA_PTR, buffer.data());
  ZEP_image_set_flags(image, ZEP_FLAG_LOCKED, 1);
}

TEST(MrawRoundTrip, ALockedCallerBufferReceivesTheFrameAndASmallOneIsLeftAlone) {
  const OpenedSequence sequence(ZEP_Y16, 6, 4, 2);
  const uint32_t mraw = sequence.handle();
  const std::vector<Bytes> &strips = sequence.strips;

  ScopedImage image;
  std::vector<uint8_t> buffer(48, 0xEE);
  attach_locked(image, 6, 4, ZEP_Y16, buffer);
  ASSERT_EQ(ZEP_MRAW_ImageRead(mraw, image, 2), 0u);
  EXPECT_EQ(ZEP_image_get_ptr(image, ZEP_DATA_PTR), buffer.data());
  EXPECT_EQ(ZEP_image_get_flags(image, ZEP_FLAG_LOCKED), 1u);
  EXPECT_EQ(buffer, strips[1]);

  ScopedImage small;
  std::vector<uint8_t> small_buffer(4, 0xEE);
  attach_locked(small, 2, 2, ZEP_Y8, small_buffer);
  ASSERT_EQ(ZEP_MRAW_ImageRead(mraw, small, 1), 0u);
  EXPECT_EQ(small_buffer, Bytes(4, 0xEE));
  EXPECT_NE(ZEP_image_get_ptr(small, ZEP_DATA_PTR), small_buffer.data());
  EXPECT_EQ(vrc::test::strip_bytes(small), strips[0]);
  ZEP_image_set_ptr(image, ZEP_DATA_PTR, nullptr);  // destroy frees even locked data
}

// ---- Positioning -------------------------------------------------------------------------

// One step of a walk through a five-frame file after Open: a read of `frame` or a skip of
// `count`, and the frame number the record then holds.
struct Step {
  enum Kind { kRead, kSkip } kind;
  int32_t value;
  uint32_t frame_after;
};

struct Walk {
  const char *name;
  std::vector<Step> steps;
};

void PrintTo(const Walk &walk, std::ostream *out) { *out << walk.name; }

class MrawPositioning : public testing::TestWithParam<Walk> {};

TEST_P(MrawPositioning, ReadsTheFrameTheRulesName) {
  const OpenedSequence sequence(ZEP_RGB16, 3, 2, 5);
  const ScopedMraw &mraw = sequence.mraw;
  const std::vector<Bytes> &strips = sequence.strips;
  ScopedImage image;
  for (const Step &step : GetParam().steps) {
    if (step.kind == Step::kSkip) {
      ASSERT_EQ(ZEP_MRAW_SkipFrames(mraw.handle, step.value), 0u);
    } else {
      ASSERT_EQ(ZEP_MRAW_ImageRead(mraw.handle, image, step.value), 0u) << step.value;
      EXPECT_EQ(vrc::test::strip_bytes(image), strips[step.frame_after - 1]) << step.value;
    }
    EXPECT_EQ(mraw_info(mraw.handle).frame_number, step.frame_after) << step.value;
  }
}

constexpr Step::Kind R = Step::kRead;
constexpr Step::Kind S = Step::kSkip;

INSTANTIATE_TEST_SUITE_P(
    Rules, MrawPositioning,
    testing::Values(Walk{"next_walks_forward_then_stays_on_the_last",
                         {{R, 0, 2}, {R, 0, 3}, {R, 0, 4}, {R, 0, 5}, {R, 0, 5}, {R, 0, 5}}},
                    Walk{"negative_gives_the_last", {{R, -1, 5}, {R, -100, 5}}},
                    Walk{"frame_count_and_beyond_give_the_last",
                         {{R, 5, 5}, {R, 6, 5}, {R, 1000, 5}}},
                    Walk{"numbered_forwards_and_backwards",
                         {{R, 3, 3}, {R, 4, 4}, {R, 2, 2}, {R, 1, 1}, {R, 4, 4}, {R, 0, 5}}},
                    Walk{"numbered_after_the_last", {{R, -1, 5}, {R, 2, 2}, {R, 0, 3}}},
                    Walk{"skips_move_the_next_read",
                         {{S, 2, 1}, {R, 0, 4}, {S, -3, 4}, {R, 0, 2}, {S, 1, 2}, {R, 0, 4}}},
                    Walk{"next_after_the_last_is_the_last_even_after_a_skip_back",
                         {{R, 0, 2}, {R, 0, 3}, {R, 0, 4}, {R, 0, 5}, {S, -2, 5}, {R, 0, 5}}}),
    [](const testing::TestParamInfo<Walk> &walk) { return std::string(walk.param.name); });

TEST(MrawPositioningEdges, AOneFrameFileIsBothFirstAndLast) {
  const OpenedSequence sequence(ZEP_Y8, 4, 4, 1);
  const ScopedMraw &mraw = sequence.mraw;
  const std::vector<Bytes> &strips = sequence.strips;
  EXPECT_EQ(mraw_info(mraw.handle).frame_count, 1u);
  EXPECT_EQ(mraw_info(mraw.handle).frame_number, 1u);
  ScopedImage image;
  for (int32_t frame : {0, 1, -1, 0, 2}) {
    ASSERT_EQ(ZEP_MRAW_ImageRead(mraw.handle, image, frame), 0u) << frame;
    EXPECT_EQ(vrc::test::strip_bytes(image), strips[0]);
  }
}

TEST(MrawPositioningEdges, SkipsOutsideTheFileAreRefusedAndChangeNothing) {
  const OpenedSequence sequence(ZEP_Y8, 4, 4, 3);
  const ScopedMraw &mraw = sequence.mraw;
  const std::vector<Bytes> &strips = sequence.strips;
  const ErrorCapture &errors = sequence.errors;
  EXPECT_EQ(ZEP_MRAW_SkipFrames(mraw.handle, -2), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Frame position outside the file");
  EXPECT_EQ(ZEP_MRAW_SkipFrames(mraw.handle, 3), ZEP_ERR_BAD_PARAM);
  ASSERT_EQ(ZEP_MRAW_SkipFrames(mraw.handle, 2), 0u);  // to the end of the file
  ScopedImage image;
  EXPECT_EQ(ZEP_MRAW_ImageRead(mraw.handle, image, 0), ZEP_ERR_BAD_PARAM);  // nothing follows
  EXPECT_EQ(mraw_info(mraw.handle).frame_number, 1u);
  ASSERT_EQ(ZEP_MRAW_SkipFrames(mraw.handle, -1), 0u);
  ASSERT_EQ(ZEP_MRAW_ImageRead(mraw.handle, image, 0), 0u);
  EXPECT_EQ(vrc::test::strip_bytes(image), strips[2]);
}

// ---- Handles -----------------------------------------------------------------------------

TEST(MrawHandles, EightHandlesThenTheNinthIsRefused) {
  ErrorCapture errors;
  TempDir folder;
  ScopedMraw handles[8];
  for (uint32_t i = 0; i < 8; ++i) {
    ASSERT_EQ(ZEP_MRAW_Create(&handles[i].handle, folder.file(std::to_string(i)).c_str()), 0u);
    EXPECT_EQ(handles[i].handle, i + 1);
    EXPECT_EQ(mraw_info(handles[i].handle).self,
              mraw_info(handles[i].handle).self->self);  // the address of the table's record
  }
  uint32_t ninth = 0;
  EXPECT_EQ(ZEP_MRAW_Create(&ninth, folder.file("9").c_str()), ZEP_ERR_NO_HANDLES | 9);
  EXPECT_EQ(errors.last().function, "ZEP_MRAW_Create");
  EXPECT_EQ(errors.last().message, "Run out of MRAW handles");
  EXPECT_EQ(ZEP_MRAW_Open(&ninth, folder.file("0").c_str()), ZEP_ERR_NO_HANDLES | 9);

  ASSERT_EQ(ZEP_MRAW_Close(handles[2].handle), 0u);
  handles[2].handle = 0;
  ASSERT_EQ(ZEP_MRAW_Create(&handles[2].handle, folder.file("again").c_str()), 0u);
  EXPECT_EQ(handles[2].handle, 3u);
}

TEST(MrawHandles, HandlesZeroNineAndFreeSlotsAreBadParametersWithoutAReport) {
  ErrorCapture errors;
  ScopedImage image;
  ZEP_MRAW_RECORD record{};
  for (uint32_t handle : {0u, 9u, 10u, 0xFFFFFFFFu, 5u}) {
    EXPECT_EQ(ZEP_MRAW_ImageWrite(handle, image), ZEP_ERR_BAD_PARAM) << handle;
    EXPECT_EQ(ZEP_MRAW_ImageRead(handle, image, 0), ZEP_ERR_BAD_PARAM) << handle;
    EXPECT_EQ(ZEP_MRAW_SkipFrames(handle, 1), ZEP_ERR_BAD_PARAM) << handle;
    EXPECT_EQ(ZEP_MRAW_GetInfo(handle, &record), ZEP_ERR_BAD_PARAM) << handle;
    EXPECT_EQ(ZEP_MRAW_SetInfo(handle, &record), ZEP_ERR_BAD_PARAM) << handle;
    EXPECT_EQ(ZEP_MRAW_Close(handle), ZEP_ERR_BAD_PARAM) << handle;
  }
  EXPECT_EQ(errors.count(), 0u);
}

TEST(MrawHandles, SetInfoKeepsTheSlotsOwnFieldsAndInitLibraryClearsTheTable) {
  ErrorCapture errors;
  TempDir folder;
  ScopedMraw mraw;
  ASSERT_EQ(ZEP_MRAW_Create(&mraw.handle, folder.file("a").c_str()), 0u);
  const ZEP_MRAW_RECORD before = mraw_info(mraw.handle);
  ZEP_MRAW_RECORD changed = before;
  changed.handle = 7;
  changed.self = nullptr;
  changed.file = nullptr;
  changed.in_use = 0;
  changed.user_value[1] = 99;
  std::memset(changed.file_name, 'x', sizeof changed.file_name);
  ASSERT_EQ(ZEP_MRAW_SetInfo(mraw.handle, &changed), 0u);
  const ZEP_MRAW_RECORD after = mraw_info(mraw.handle);
  EXPECT_EQ(after.handle, before.handle);
  EXPECT_EQ(after.self, before.self);
  EXPECT_EQ(after.file, before.file);
  EXPECT_EQ(after.in_use, 1u);
  EXPECT_EQ(after.user_value[1], 99u);
  EXPECT_EQ(std::strlen(after.file_name), sizeof after.file_name - 1);

  uint32_t second = 0;
  ASSERT_EQ(ZEP_MRAW_Create(&second, folder.file("b").c_str()), 0u);
  ASSERT_EQ(ZEP_MRAW_InitLibrary(), 0u);
  ZEP_MRAW_RECORD record{};
  EXPECT_EQ(ZEP_MRAW_GetInfo(mraw.handle, &record), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(ZEP_MRAW_GetInfo(second, &record), ZEP_ERR_BAD_PARAM);

  // The library's start-up clears the table too.
  ASSERT_EQ(ZEP_MRAW_Create(&second, folder.file("c").c_str()), 0u);
  EXPECT_EQ(second, 1u);
  ZEP_Init();
  EXPECT_EQ(ZEP_MRAW_GetInfo(second, &record), ZEP_ERR_BAD_PARAM);
  mraw.handle = 0;
}

// ---- Opening failures --------------------------------------------------------------------

TEST(MrawOpenFailures, AMissingOrForeignFileKeepsItsSlotUntilClosed) {
  ErrorCapture errors;
  TempDir folder;
  vrc::test::write_file(folder.file("foreign.mraw"), std::string("MRAW but not ours at all, no"));
  const struct {
    std::string path;
    const char *message;
  } cases[] = {
      {folder.file("missing.mraw"), "Failed to open MRAW file"},
      {folder.file("foreign.mraw"), "The file is not recognised as a valid ZEP MRAW file."}};
  for (const auto &c : cases) {
    uint32_t handle = 0;
    EXPECT_EQ(ZEP_MRAW_Open(&handle, c.path.c_str()), ZEP_ERR_OPEN);
    EXPECT_EQ(errors.last().function, "ZEP_MRAW_Open");
    EXPECT_EQ(errors.last().message, c.message);
    ASSERT_EQ(handle, 1u);
    EXPECT_EQ(mraw_info(handle).in_use, 1u);
    ScopedImage image;
    EXPECT_EQ(ZEP_MRAW_ImageRead(handle, image, 0), ZEP_ERR_STATE);
    uint32_t next = 0;
    ASSERT_EQ(ZEP_MRAW_Create(&next, folder.file("next").c_str()), 0u);
    EXPECT_EQ(next, 2u);
    EXPECT_EQ(ZEP_MRAW_Close(next), 0u);
    EXPECT_EQ(ZEP_MRAW_Close(handle), 0u);
  }
}

TEST(MrawOpenFailures, CreateInAMissingFolderFreesItsSlot) {
  ErrorCapture errors;
  uint32_t handle = 0;
  EXPECT_EQ(ZEP_MRAW_Create(&handle, "/nonexistent/folder/x.mraw"), ZEP_ERR_OPEN);
  EXPECT_EQ(errors.last().message, "Failed to create file");
  ZEP_MRAW_RECORD record{};
  EXPECT_EQ(ZEP_MRAW_GetInfo(handle, &record), ZEP_ERR_BAD_PARAM);
}

// A good three-frame 4 x 2 Y8 file (stride 328) damaged one way.
class MrawMalformed : public testing::TestWithParam<BadFile> {};

void put16(Bytes &file, std::size_t at, uint16_t value) { ZEP_mput_ui16m(&file[at], value); }
void put32(Bytes &file, std::size_t at, uint32_t value) { ZEP_mput_ui32m(&file[at], value); }

TEST_P(MrawMalformed, OpenReportsTheDefect) {
  const BadFile &bad = GetParam();
  ErrorCapture errors;
  TempDir folder;
  write_sequence(folder.file("good.mraw"), ZEP_Y8, 4, 2, 3);
  const Bytes good = vrc::test::read_file(folder.file("good.mraw"));
  const std::string path = vrc::test::write_damaged(folder, good, bad, kFuzzTarget, ".mraw");
  uint32_t handle = 0;
  EXPECT_EQ(ZEP_MRAW_Open(&handle, path.c_str()), bad.code);
  ASSERT_GE(errors.count(), 1u);
  EXPECT_EQ(errors.last().message, bad.message);
  ZEP_MRAW_Close(handle);  // frees a slot that a failing Open keeps
  uint32_t next = 0;
  EXPECT_EQ(ZEP_MRAW_Create(&next, folder.file("next.mraw").c_str()), 0u);
  EXPECT_EQ(next, 1u);
  ZEP_MRAW_Close(next);
}

constexpr uint32_t kStride = 328;
constexpr uint32_t kFrame2 = 64 + kStride;
constexpr uint32_t kFrame3 = 64 + 2 * kStride;

INSTANTIATE_TEST_SUITE_P(
    Defects, MrawMalformed,
    testing::Values(BadFile{"wrong_identification", [](Bytes &f) { f[12] = 'X'; }, ZEP_ERR_OPEN,
                            "The file is not recognised as a valid ZEP MRAW file."},
                    BadFile{"truncated_identification", [](Bytes &f) { f.resize(20); },
                            ZEP_ERR_OPEN, "The file is not recognised as a valid ZEP MRAW file."},
                    BadFile{"truncated_per_file_header", [](Bytes &f) { f.resize(40); },
                            ZEP_ERR_UNEXPECTED, "MRAW per-file header is truncated"},
                    BadFile{"per_file_length_short", [](Bytes &f) { put16(f, 27, 40); },
                            ZEP_ERR_UNEXPECTED, "MRAW per-file header length is invalid"},
                    BadFile{"per_file_length_past_buffer", [](Bytes &f) { put16(f, 27, 600); },
                            ZEP_ERR_UNEXPECTED, "MRAW per-file header length is invalid"},
                    BadFile{"depth_not_of_the_type", [](Bytes &f) { put32(f, 41, 16); }, 0x10050002,
                            "Invalid ZEP image"},
                    BadFile{"image_too_large",
                            [](Bytes &f) {
                              put32(f, 33, 100000);
                              put32(f, 37, 100000);
                            },
                            0x10050011, "Invalid ZEP image"},
                    BadFile{"no_frames", [](Bytes &f) { f.resize(64); }, ZEP_ERR_UNEXPECTED,
                            "MRAW per-image header is truncated"},
                    BadFile{"truncated_frame", [](Bytes &f) { f.resize(f.size() - 3); },
                            ZEP_ERR_UNEXPECTED, "MRAW file length is not a whole number of frames"},
                    BadFile{"truncated_per_image_header", [](Bytes &f) { f.resize(64 + 100); },
                            ZEP_ERR_UNEXPECTED, "MRAW per-image header is truncated"},
                    BadFile{"per_image_length_past_end",
                            [](Bytes &f) {
                              f.resize(64 + kStride);
                              put16(f, 64, 500);
                            },
                            ZEP_ERR_UNEXPECTED, "MRAW per-image header is truncated"},
                    BadFile{"per_image_length_past_buffer", [](Bytes &f) { put16(f, 64, 600); },
                            ZEP_ERR_UNEXPECTED, "MRAW per-image header length is invalid"},
                    BadFile{"per_image_length_short", [](Bytes &f) { put16(f, 64, 100); },
                            ZEP_ERR_UNEXPECTED, "MRAW per-image header length is invalid"},
                    BadFile{"stride_disagrees_with_image", [](Bytes &f) { put32(f, 64 + 10, 400); },
                            ZEP_ERR_UNEXPECTED, "MRAW frame stride does not match the image"},
                    BadFile{"huge_image_small_file",
                            [](Bytes &f) {
                              put32(f, 33, 60000);
                              put32(f, 37, 60000);
                            },
                            ZEP_ERR_UNEXPECTED, "MRAW frame stride does not match the image"},
                    BadFile{"last_stride_disagrees", [](Bytes &f) { put32(f, kFrame3 + 10, 400); },
                            ZEP_ERR_UNEXPECTED, "MRAW frame stride does not match the image"},
                    BadFile{"frame_count_disagrees", [](Bytes &f) { put32(f, kFrame3 + 2, 7); },
                            ZEP_ERR_UNEXPECTED,
                            "MRAW frame number does not match its place in the file"},
                    BadFile{"extra_bytes_after_the_last_frame", [](Bytes &f) { f.push_back(0); },
                            ZEP_ERR_UNEXPECTED,
                            "MRAW file length is not a whole number of frames"}),
    vrc::test::bad_file_name);

TEST(MrawMalformedFrames, AMisnumberedMiddleFrameFailsAloneAndTheReadStaysWhereItWas) {
  ErrorCapture errors;
  TempDir folder;
  const std::vector<Bytes> strips = write_sequence(folder.file("good.mraw"), ZEP_Y8, 4, 2, 3);
  Bytes file = vrc::test::read_file(folder.file("good.mraw"));
  put32(file, kFrame2 + 2, 9);
  const std::string path = folder.file("misnumbered.mraw");
  vrc::test::write_file(path, file);
  vrc::test::write_seed(kFuzzTarget, "misnumbered_middle_frame.mraw", file);

  ScopedMraw mraw;
  ASSERT_EQ(ZEP_MRAW_Open(&mraw.handle, path.c_str()), 0u);
  ScopedImage image;
  EXPECT_EQ(ZEP_MRAW_ImageRead(mraw.handle, image, 0), ZEP_ERR_UNEXPECTED);
  EXPECT_EQ(errors.last().function, "ZEP_MRAW_ImageRead");
  EXPECT_EQ(errors.last().message, "MRAW frame number does not match its place in the file");
  EXPECT_EQ(mraw_info(mraw.handle).frame_number, 1u);
  ASSERT_EQ(ZEP_MRAW_SkipFrames(mraw.handle, 1), 0u);  // still before frame 2: now past it
  ASSERT_EQ(ZEP_MRAW_ImageRead(mraw.handle, image, 0), 0u);
  EXPECT_EQ(vrc::test::strip_bytes(image), strips[2]);
}

// Well-formed seeds for the fuzz target: one, three and five frames in three pixel formats.
TEST(MrawFuzzSeeds, WrittenForTheReader) {
  ErrorCapture errors;
  TempDir folder;
  const struct {
    const char *name;
    uint16_t type;
    uint32_t width, height, frames;
  } seeds[] = {{"y8_three_frames.mraw", ZEP_Y8, 4, 2, 3},
               {"rgb24_one_frame.mraw", ZEP_RGB24, 5, 3, 1},
               {"y16_five_frames.mraw", ZEP_Y16, 3, 3, 5}};
  for (const auto &seed : seeds) {
    const std::string path = folder.file(seed.name);
    write_sequence(path, seed.type, seed.width, seed.height, seed.frames);
    vrc::test::write_seed(kFuzzTarget, seed.name, vrc::test::read_file(path));
  }
  EXPECT_EQ(errors.count(), 0u);
}

// ---- Refused calls leave the file whole --------------------------------------------------

struct Refusal {
  const char *name;
  std::function<uint32_t(uint32_t handle)> call;
  uint32_t code;
  const char *message;
};

void PrintTo(const Refusal &refusal, std::ostream *out) { *out << refusal.name; }

class MrawWriterRefusals : public testing::TestWithParam<Refusal> {};

TEST_P(MrawWriterRefusals, FileKeepsItsFramesAndWritingGoesOn) {
  const Refusal &refusal = GetParam();
  ErrorCapture errors;
  TempDir folder;
  const std::string path = folder.file("kept.mraw");
  ScopedImage image;
  ZEP_ImageMake(image, 6, 3, ZEP_RGB24, 0);
  std::vector<Bytes> strips;
  ScopedMraw mraw;
  ASSERT_EQ(ZEP_MRAW_Create(&mraw.handle, path.c_str()), 0u);
  for (uint32_t frame = 1; frame <= 2; ++frame) {
    vrc::test::fill_frame(image, frame);
    strips.push_back(vrc::test::strip_bytes(image));
    ASSERT_EQ(ZEP_MRAW_ImageWrite(mraw.handle, image), 0u);
  }
  EXPECT_EQ(refusal.call(mraw.handle), refusal.code);
  EXPECT_EQ(errors.last().message, refusal.message);
  EXPECT_EQ(mraw_info(mraw.handle).frame_count, 2u);
  vrc::test::fill_frame(image, 3);
  strips.push_back(vrc::test::strip_bytes(image));
  ASSERT_EQ(ZEP_MRAW_ImageWrite(mraw.handle, image), 0u);
  ASSERT_EQ(ZEP_MRAW_Close(mraw.handle), 0u);

  ASSERT_EQ(ZEP_MRAW_Open(&mraw.handle, path.c_str()), 0u);
  EXPECT_EQ(mraw_info(mraw.handle).frame_count, 3u);
  ScopedImage read;
  for (int32_t frame = 1; frame <= 3; ++frame) {
    ASSERT_EQ(ZEP_MRAW_ImageRead(mraw.handle, read, frame), 0u);
    EXPECT_EQ(vrc::test::strip_bytes(read), strips[frame - 1]);
  }
}

uint32_t write_made(uint32_t handle, uint32_t width, uint32_t height, uint16_t type) {
  ScopedImage other;
  ZEP_ImageMake(other, width, height, type, 0);
  return ZEP_MRAW_ImageWrite(handle, other);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, MrawWriterRefusals,
    testing::Values(
        Refusal{"invalid_image",
                [](uint32_t handle) {
                  ScopedImage bad;
                  ZEP_image_set_parameter(bad, ZEP_IMAGE_TYPE, 200);
                  return ZEP_MRAW_ImageWrite(handle, bad);
                },
                0x10050010, "Invalid ZEP image"},
        Refusal{"other_width", [](uint32_t h) { return write_made(h, 7, 3, ZEP_RGB24); },
                ZEP_ERR_BAD_PARAM, "Frame geometry differs from the first frame"},
        Refusal{"other_type_same_bytes", [](uint32_t h) { return write_made(h, 9, 3, ZEP_RGB16); },
                ZEP_ERR_BAD_PARAM, "Frame geometry differs from the first frame"},
        Refusal{"part_strip",
                [](uint32_t handle) {
                  ScopedImage part;
                  ZEP_ImageMake(part, 6, 3, ZEP_RGB24, 0);
                  ZEP_image_set_parameter(part, ZEP_LINES_THIS_STRIP, 1);
                  return ZEP_MRAW_ImageWrite(handle, part);
                },
                ZEP_ERR_BAD_PARAM, "Image must hold all its lines in one strip"},
        Refusal{"no_data",
                [](uint32_t handle) {
                  ScopedImage empty;
                  ZEP_ImageMake(empty, 6, 3, ZEP_RGB24, 0);
                  ZEP_image_free_data(empty);
                  return ZEP_MRAW_ImageWrite(handle, empty);
                },
                ZEP_ERR_BAD_PARAM, "Image must hold all its lines in one strip"},
        Refusal{"read_from_a_writer",
                [](uint32_t handle) {
                  ScopedImage frame;
                  return ZEP_MRAW_ImageRead(handle, frame, -1);
                },
                ZEP_ERR_STATE, "MRAW file is open for writing"},
        Refusal{"skip_in_a_writer", [](uint32_t h) { return ZEP_MRAW_SkipFrames(h, -1); },
                ZEP_ERR_STATE, "MRAW file is open for writing"}),
    [](const testing::TestParamInfo<Refusal> &refusal) { return std::string(refusal.param.name); });

TEST(MrawReaderRefusals, WritingToAReaderIsRefused) {
  const OpenedSequence sequence(ZEP_Y8, 2, 2, 2);
  const Bytes before = vrc::test::read_file(sequence.path);
  ScopedImage image;
  ZEP_ImageMake(image, 2, 2, ZEP_Y8, 0);
  EXPECT_EQ(ZEP_MRAW_ImageWrite(sequence.handle(), image), ZEP_ERR_STATE);
  EXPECT_EQ(sequence.errors.last().message, "MRAW file is open for reading");
  EXPECT_EQ(vrc::test::read_file(sequence.path), before);
}

// Under a file-size limit that stops the third 4096-byte frame half-way, writes until a write
// fails; true when exactly two frames were written and the file opens with them.
bool frames_survive_a_size_limit(const std::string &path) {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlim_t bytes = 64 + 2 * (320 + 4096) + 1000;
  const rlimit limit{bytes, bytes};
  setrlimit(RLIMIT_FSIZE, &limit);
  ZEP_ErrHandlerInstall(nullptr);
  uint32_t handle = 0;
  ZEP_MRAW_Create(&handle, path.c_str());
  ScopedImage image;
  ZEP_ImageMake(image, 64, 64, ZEP_Y8, 0);
  uint32_t written = 0;
  while (written < 10 && !ZEP_IS_ERROR(ZEP_MRAW_ImageWrite(handle, image))) ++written;
  ZEP_MRAW_Close(handle);
  uint32_t reader = 0;
  return written == 2 && ZEP_MRAW_Open(&reader, path.c_str()) == 0 &&
         mraw_info(reader).frame_count == 2;
}

// A write stopped half-way is cut off again. Run in a child process, which the limit applies to.
TEST(MrawWriteFailure, AFrameThatCannotBeWrittenIsCutOff) {
  TempDir folder;
  const std::string path = folder.file("limited.mraw");
  EXPECT_EXIT(std::exit(frames_survive_a_size_limit(path) ? 0 : 1), testing::ExitedWithCode(0), "");
}

}  // namespace
