// Byte-order helpers, the library lock, allocation counters, the token reader and the
// command-line splitter.
#include "support/error_capture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

std::FILE *stream_over(std::vector<uint8_t> bytes) {
  std::FILE *f = std::tmpfile();
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::rewind(f);
  return f;
}

std::vector<uint8_t> stream_contents(std::FILE *f) {
  std::rewind(f);
  std::vector<uint8_t> bytes;
  for (int c; (c = std::fgetc(f)) != EOF;) bytes.push_back(static_cast<uint8_t>(c));
  return bytes;
}

}  // namespace

TEST(ByteOrder, StreamReadersTakeTheirOrder) {
  std::FILE *f = stream_over({0x12, 0x34, 0x12, 0x34, 0x01, 0x02, 0x03, 0x04, 0x01, 0x02, 0x03, 0x04});
  EXPECT_EQ(ZEP_fget_ui16m(f), 0x1234);
  EXPECT_EQ(ZEP_fget_ui16i(f), 0x3412);
  EXPECT_EQ(ZEP_fget_ui32m(f), 0x01020304u);
  EXPECT_EQ(ZEP_fget_ui32i(f), 0x04030201u);
  std::fclose(f);
}

TEST(ByteOrder, StreamWritersPutTheirOrder) {
  std::FILE *f = std::tmpfile();
  EXPECT_EQ(ZEP_fput_ui8(f, 0xAB), 0xAB);
  EXPECT_EQ(ZEP_fput_ui16i(f, 0x1234), 0x12);
  EXPECT_EQ(ZEP_fput_ui16m(f, 0x1234), 0x34);
  EXPECT_EQ(ZEP_fput_ui32i(f, 0x01020304), 0x01);
  EXPECT_EQ(ZEP_fput_ui32m(f, 0x01020304), 0x04);
  EXPECT_EQ(stream_contents(f), (std::vector<uint8_t>{0xAB, 0x34, 0x12, 0x12, 0x34, 4, 3, 2, 1, 1, 2, 3, 4}));
  std::fclose(f);
}

TEST(ByteOrder, MemoryHelpersWriteOnlyTheirBytesAtAnyAlignment) {
  uint8_t buffer[8] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
  ZEP_mput_ui32m(buffer + 1, 0x01020304);
  EXPECT_EQ(std::vector<uint8_t>(buffer, buffer + 6), (std::vector<uint8_t>{0xEE, 1, 2, 3, 4, 0xEE}));
  EXPECT_EQ(ZEP_mget_ui32m(buffer + 1), 0x01020304u);
  EXPECT_EQ(ZEP_mget_ui32i(buffer + 1), 0x04030201u);
  ZEP_mput_ui32i(buffer + 1, 0x01020304);
  EXPECT_EQ(std::vector<uint8_t>(buffer, buffer + 6), (std::vector<uint8_t>{0xEE, 4, 3, 2, 1, 0xEE}));
  ZEP_mput_ui16m(buffer + 3, 0xA1B2);
  EXPECT_EQ(ZEP_mget_ui16m(buffer + 3), 0xA1B2);
  EXPECT_EQ(ZEP_mget_ui16i(buffer + 3), 0xB2A1);
  ZEP_mput_ui16i(buffer + 5, 0xA1B2);
  EXPECT_EQ(buffer[5], 0xB2);
  EXPECT_EQ(buffer[6], 0xA1);
  ZEP_mput_ui8(buffer + 7, 9);
  EXPECT_EQ(buffer[7], 9);
}

TEST(Lock, IsRecursiveAndExcludesOtherThreads) {
  EXPECT_EQ(ZEP_CriticalSectionInit(), 0u);
  EXPECT_EQ(ZEP_CriticalSectionBegin(), 0u);
  EXPECT_EQ(ZEP_CriticalSectionBegin(), 0u);
  EXPECT_EQ(ZEP_image_destroy(ZEP_ALL_IMAGES), 0u);  // takes the lock again inside
  int counter = 0;
  std::thread other([&] {
    ZEP_CriticalSectionBegin();
    counter += 1;
    ZEP_CriticalSectionEnd();
  });
  EXPECT_EQ(ZEP_CriticalSectionEnd(), 0u);
  counter += 10;  // still held once: the other thread cannot have run its increment
  EXPECT_EQ(counter, 10);
  EXPECT_EQ(ZEP_CriticalSectionEnd(), 0u);
  other.join();
  EXPECT_EQ(counter, 11);
}

TEST(Lock, AFailedReleaseIsShownWithTheCodeInTheCaptionAndTheNameAsTheBody) {
  vrc::test::MessageBoxCapture box;
  EXPECT_EQ(ZEP_CriticalSectionEnd(), 0u);  // not held by this thread: the platform refuses
  EXPECT_EQ(box.count(), 1);
  EXPECT_EQ(box.caption(), "Failed with ExceptionCode 0x00000001 in ZEP_CriticalSectionEnd. Aborting!");
  EXPECT_EQ(box.text(), "ZEP_CriticalSectionEnd");
  EXPECT_EQ(ZEP_CriticalSectionBegin(), 0u);  // the lock still works afterwards
  EXPECT_EQ(ZEP_CriticalSectionEnd(), 0u);
  EXPECT_EQ(box.count(), 1);
}

TEST(Allocation, CountersAddOnlySuccessfulAllocations) {
  uint32_t before = ZEP_DebugMallocPrint();
  void *block = ZEP_DebugMalloc(100);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(ZEP_DebugMallocPrint(), before + 100);
  ZEP_DebugFree(block);
  EXPECT_EQ(ZEP_DebugMallocPrint(), before + 100);  // frees count separately
}

TEST(Sscanf, ReadsTheLeadingNumberAndStopsAtTheNextBlank) {
  char text[] = "  42 x";
  uint16_t value = 0;
  char *next = ZEP_sscanf(text, &value);
  EXPECT_EQ(value, 42);
  EXPECT_EQ(next, text + 4);
  char at_blank[] = " 7\n";
  EXPECT_EQ(ZEP_sscanf(at_blank, &value), at_blank + 2);
  EXPECT_EQ(value, 7);
  char unterminated[] = "123";
  EXPECT_EQ(ZEP_sscanf(unterminated, &value), unterminated + 3);  // stops at the text's end
  EXPECT_EQ(value, 123);
  vrc::test::ErrorCapture errors;
  EXPECT_EQ(ZEP_sscanf(nullptr, &value), nullptr);
  ASSERT_EQ(errors.count(), 1u);
  EXPECT_EQ(errors.last().function, "ZEP_sscanf");
  EXPECT_EQ(errors.last().code, ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Text is NULL");
}

TEST(ParseCommand, SplitsOptionsAndArgumentsAndEmptiesTheProgramName) {
  ZEP_CMD_LINE line;
  std::memset(&line, 'z', sizeof line);
  const char *words[] = {"prog", "-a", "file", "-b"};
  ASSERT_EQ(ZEP_Util_ParseCommand(&line, 4, const_cast<char **>(words)), 0u);
  EXPECT_EQ(line.argc, 4u);
  EXPECT_EQ(line.n_options, 2u);
  EXPECT_EQ(line.n_arguments, 1u);
  EXPECT_STREQ(line.program, "");
  EXPECT_STREQ(line.option[0], "-a");
  EXPECT_STREQ(line.option[1], "-b");
  EXPECT_STREQ(line.option[2], "");
  EXPECT_STREQ(line.argument[0], "file");
  EXPECT_STREQ(line.argument[2], "");
}

TEST(ParseCommand, SurplusWordsAreIgnoredAndLongWordsCut) {
  std::vector<std::string> words = {"prog"};
  for (int i = 0; i < 6; ++i) words.push_back("-o" + std::to_string(i));
  for (int i = 0; i < 40; ++i) words.push_back("arg" + std::to_string(i));
  words.push_back(std::string(500, 'L'));
  std::vector<char *> argv;
  for (auto &w : words) argv.push_back(w.data());
  ZEP_CMD_LINE line{};
  ASSERT_EQ(ZEP_Util_ParseCommand(&line, static_cast<int>(argv.size()), argv.data()), 0u);
  EXPECT_EQ(line.n_options, 3u);
  EXPECT_EQ(line.n_arguments, 32u);
  EXPECT_STREQ(line.option[2], "-o2");
  EXPECT_STREQ(line.argument[31], "arg31");
  const char *long_word[] = {"p", words.back().c_str()};
  ZEP_Util_ParseCommand(&line, 2, const_cast<char **>(long_word));
  EXPECT_EQ(std::string(line.argument[0]), std::string(127, 'L'));

  vrc::test::ErrorCapture errors;
  EXPECT_EQ(ZEP_Util_ParseCommand(nullptr, 2, argv.data()), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Record is NULL");
  EXPECT_EQ(ZEP_Util_ParseCommand(&line, 2, nullptr), ZEP_ERR_BAD_PARAM);
  EXPECT_EQ(errors.last().message, "Argument list is NULL");
  EXPECT_EQ(errors.last().function, "ZEP_Util_ParseCommand");
}
