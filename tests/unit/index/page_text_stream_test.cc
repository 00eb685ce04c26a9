// The page text as a stream that is read 128 bytes at a time: what a read consumes, and when the
// end-of-file flag is raised.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "index/page_text.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::LittleEndian;

PageTextReader ReaderOf(const std::string& file, int32_t tokenSize) {
  PageTextReader reader;
  reader.file = file;
  reader.tokenSize = tokenSize;
  SeekPageText(reader, 0);
  return reader;
}

TEST(PageTextStream, ExampleToken) {
  const std::string file = "\x05\x01\x00\x07"s;
  PageTextReader reader = ReaderOf(file, 4);
  PageTextToken token;
  EXPECT_EQ(ReadPageTextToken(reader, token), 4);
  EXPECT_EQ(token.word, 261u);
  EXPECT_EQ(token.variant, 7);
  EXPECT_EQ(reader.position, 4u);
}

TEST(PageTextStream, WidthsTable) {
  // The largest word number of every width, between two others.
  const struct {
    int32_t width;
    uint32_t largest;
  } cases[] = {{1, 0}, {2, 0xFF}, {3, 0xFFFF}, {4, 0xFFFFFF}, {5, 0xFFFFFFFF}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.width);
    const auto bytes = static_cast<size_t>(c.width);
    const std::string file = LittleEndian(c.largest / 3, bytes - 1) + "\x01"s +
                             LittleEndian(c.largest, bytes - 1) + "\xFF"s +
                             LittleEndian(c.largest / 2, bytes - 1) + "\x00"s;
    PageTextReader reader = ReaderOf(file, c.width);
    PageTextToken token;
    EXPECT_EQ(ReadPageTextToken(reader, token), c.width);
    EXPECT_EQ(token.word, c.largest / 3);
    EXPECT_EQ(token.variant, 1);
    EXPECT_EQ(ReadPageTextToken(reader, token), c.width);
    EXPECT_EQ(token.word, c.largest);
    EXPECT_EQ(token.variant, 0xFF);
    EXPECT_EQ(ReadPageTextToken(reader, token), c.width);
    EXPECT_EQ(token.word, c.largest / 2);
    EXPECT_EQ(token.variant, 0);
    EXPECT_EQ(ReadPageTextToken(reader, token), 0);
  }
}

TEST(PageTextStream, TokensAcrossTheBuffersEdge) {
  // 300 tokens pass several buffers of 128 bytes; of the widths, 1, 2 and 4 divide it.
  for (int32_t width : {1, 2, 3, 4, 5}) {
    SCOPED_TRACE(width);
    std::string file;
    for (uint32_t i = 0; i < 300; ++i) {
      file += LittleEndian(width == 1 ? 0 : i % 251 + 2, static_cast<size_t>(width) - 1);
      file += static_cast<char>(i % 7);
    }
    PageTextReader reader = ReaderOf(file, width);
    PageTextToken token;
    for (uint32_t i = 0; i < 300; ++i) {
      ASSERT_EQ(reader.position, uint64_t{i} * static_cast<uint64_t>(width));
      ASSERT_EQ(ReadPageTextToken(reader, token), width);
      ASSERT_EQ(token.word, width == 1 ? 0 : i % 251 + 2);
      ASSERT_EQ(token.variant, i % 7);
    }
    EXPECT_EQ(ReadPageTextToken(reader, token), 0);
    EXPECT_EQ(token.word, 0u);
  }
}

TEST(PageTextStream, EndFlagAfterEachToken) {
  // The flag after the reads of 1, 2, ... tokens: '.' not raised, 'E' raised; a read that gives no
  // token is the last one.
  const struct {
    const char* what;
    int32_t width;
    size_t fileSize;
    std::string flags;
  } cases[] = {
      {"an empty file", 4, 0, "E"},
      {"one token", 4, 4, "EE"},
      {"half a token", 4, 2, "E"},
      {"127 bytes come up short at once", 1, 127, std::string(128, 'E')},
      {"128 bytes are a whole read", 1, 128, std::string(128, '.') + "E"},
      {"129 bytes", 1, 129, std::string(128, '.') + "EE"},
      {"128 bytes in tokens of 4", 4, 128, std::string(32, '.') + "E"},
      {"132 bytes in tokens of 4", 4, 132, std::string(32, '.') + "EE"},
      // The second read asks for 126 bytes behind the two left over.
      {"254 bytes in tokens of 3", 3, 254, std::string(84, '.') + "E"},
      {"253 bytes in tokens of 3", 3, 253, std::string(42, '.') + std::string(43, 'E')},
      {"252 bytes in tokens of 3", 3, 252, std::string(42, '.') + std::string(43, 'E')},
      {"256 bytes in tokens of 4", 4, 256, std::string(64, '.') + "E"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string file(c.fileSize, '\x02');
    PageTextReader reader = ReaderOf(file, c.width);
    EXPECT_FALSE(reader.atEnd);
    std::string flags;
    PageTextToken token;
    int32_t consumed = 0;
    do {
      consumed = ReadPageTextToken(reader, token);
      flags += reader.atEnd ? 'E' : '.';
    } while (consumed != 0);
    EXPECT_EQ(flags, c.flags);
  }
}

TEST(PageTextStream, SeekClearsTheEndFlag) {
  const std::string file(200, '\x02');
  PageTextReader reader = ReaderOf(file, 4);
  PageTextToken token;
  SeekPageText(reader, 100);
  EXPECT_EQ(ReadPageTextToken(reader, token), 4);
  EXPECT_TRUE(reader.atEnd);
  SeekPageText(reader, 0);
  EXPECT_FALSE(reader.atEnd);
  EXPECT_EQ(ReadPageTextToken(reader, token), 4);
  EXPECT_FALSE(reader.atEnd);
  SeekPageText(reader, 72);  // 128 bytes are left
  EXPECT_EQ(ReadPageTextToken(reader, token), 4);
  EXPECT_FALSE(reader.atEnd);
  SeekPageText(reader, 73);
  EXPECT_EQ(ReadPageTextToken(reader, token), 4);
  EXPECT_TRUE(reader.atEnd);
}

TEST(PageTextStream, SeekBeyondTheEndRaisesTheFlagOnTheFirstRead) {
  const std::string file(8, '\x02');
  for (uint64_t position : {uint64_t{8}, uint64_t{9}, uint64_t{1} << 40}) {
    SCOPED_TRACE(position);
    PageTextReader reader = ReaderOf(file, 4);
    SeekPageText(reader, position);
    EXPECT_FALSE(reader.atEnd);
    PageTextToken token = {7, 7};
    EXPECT_EQ(ReadPageTextToken(reader, token), 0);
    EXPECT_EQ(token.word, 0u);
    EXPECT_TRUE(reader.atEnd);
  }
}

TEST(PageTextStream, TrailingBytesAreNeverAToken) {
  for (int32_t width : {2, 3, 4, 5}) {
    for (size_t left = 1; left < static_cast<size_t>(width); ++left) {
      SCOPED_TRACE(std::to_string(width) + " " + std::to_string(left));
      const std::string file(3 * static_cast<size_t>(width) + left, '\x03');
      PageTextReader reader = ReaderOf(file, width);
      PageTextToken token;
      for (int i = 0; i < 3; ++i) EXPECT_EQ(ReadPageTextToken(reader, token), width);
      for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ReadPageTextToken(reader, token), 0);
        EXPECT_EQ(token.word, 0u);
      }
    }
  }
}

TEST(PageTextStream, SeekIntoTheMiddleOfAToken) {
  const std::string file = "\x01\x02\x03\x04\x05\x06\x07\x08"s;
  PageTextReader reader = ReaderOf(file, 4);
  SeekPageText(reader, 3);
  PageTextToken token;
  EXPECT_EQ(ReadPageTextToken(reader, token), 4);
  EXPECT_EQ(token.word, 0x060504u);
  EXPECT_EQ(token.variant, 7);
  EXPECT_EQ(ReadPageTextToken(reader, token), 0);
}

TEST(PageTextStream, NothingFromBeforeASeekIsReturned) {
  // Two bytes are left over in the buffer when the position changes.
  std::string file(128, '\x11');
  file += std::string(64, '\x22');
  PageTextReader reader = ReaderOf(file, 3);
  PageTextToken token;
  for (int i = 0; i < 42; ++i) EXPECT_EQ(ReadPageTextToken(reader, token), 3);
  SeekPageText(reader, 128);
  EXPECT_EQ(ReadPageTextToken(reader, token), 3);
  EXPECT_EQ(token.word, 0x2222u);
  EXPECT_EQ(token.variant, 0x22);
}

TEST(PageTextStream, NoTokenWithoutAWidth) {
  const std::string file(16, '\x02');
  for (int32_t width : {0, -1, INT32_MIN}) {
    SCOPED_TRACE(width);
    PageTextReader reader = ReaderOf(file, width);
    PageTextToken token = {7, 7};
    EXPECT_EQ(ReadPageTextToken(reader, token), 0);
    EXPECT_EQ(token.word, 0u);
  }
}

}  // namespace
}  // namespace vela
