#include "index/page_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace vela {
namespace {

using namespace std::string_literals;

TEST(PageText, PlaceholderIsNeverSeen) {
  // The seventh byte, the "s", is not among the six that are looked at.
  EXPECT_FALSE(IsPageTextPlaceholder("T\0h\0i\0s\0 \0f\0i\0l\0e\0"s));
  EXPECT_FALSE(IsPageTextPlaceholder("T\0h\0i\0"s));
  EXPECT_FALSE(IsPageTextPlaceholder("T"));
  EXPECT_FALSE(IsPageTextPlaceholder(""));
}

TEST(PageText, TokenOfFourBytes) {
  const std::string file = "\x05\x01\x00\x07"s;
  PageTextReader reader;
  reader.file = file;
  reader.tokenSize = 4;
  SeekPageText(reader, 0);
  PageTextToken token;
  EXPECT_EQ(ReadPageTextToken(reader, token), 4);
  EXPECT_EQ(token.word, 261u);
  EXPECT_EQ(token.variant, 7);
  EXPECT_EQ(ReadPageTextToken(reader, token), 0);
  EXPECT_EQ(token.word, 0u);
}

TEST(PageText, TokenSizes) {
  const std::string file = "\xF1\xF2\xF3\xF4\xF5"s;
  const struct {
    int32_t size;
    uint32_t word;
    uint8_t variant;
  } cases[] = {
      {1, 0, 0xF1}, {2, 0xF1, 0xF2}, {3, 0xF2F1, 0xF3}, {4, 0xF3F2F1, 0xF4}, {5, 0xF4F3F2F1, 0xF5}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    PageTextReader reader;
    reader.file = file;
    reader.tokenSize = c.size;
    SeekPageText(reader, 0);
    PageTextToken token;
    EXPECT_EQ(ReadPageTextToken(reader, token), c.size);
    EXPECT_EQ(token.word, c.word);
    EXPECT_EQ(token.variant, c.variant);
  }
}

TEST(PageText, SkippingStopsWhereReadingFindsTheWord) {
  // Around the number of tokens that are compared at once, with every width.
  for (int32_t size = 1; size <= 5; ++size) {
    for (size_t tokens = 0; tokens < 80; ++tokens) {
      for (const size_t place : {size_t{0}, tokens / 3, tokens - 1, tokens}) {
        for (const char wanted : {'\x07', '\0'}) {
          std::string file;
          for (size_t i = 0; i < tokens; ++i) {
            std::string token(static_cast<size_t>(size), '\0');
            token.front() = i == place ? wanted : '\x09';
            token.back() = '\x07';  // a variant is no word
            file += token;
          }
          file += "\x07";
          PageTextReader reader;
          reader.file = file;
          reader.tokenSize = size;
          SeekPageText(reader, 0);
          SkipToWord(reader, 7);
          PageTextToken token;
          uint64_t at = 0;
          do {
            at = reader.position;
          } while (ReadPageTextToken(reader, token) != 0 && token.word != 7 && token.word != 0);
          // With one byte a token is all variant, and every one ends a page.
          const size_t expected = size == 1 ? 0 : std::min(place, tokens);
          EXPECT_EQ(at, expected * static_cast<size_t>(size)) << size << " " << tokens;
        }
      }
    }
  }
}

TEST(PageText, SkippingToAPairStopsWhereTheSecondWordMayFollow) {
  // 7 is the first word, 8 the second, 2 and 3 are signs, 1 ends a stretch, 0 the page.
  const struct {
    const char* what;
    char next;
    bool stops;
  } cases[] = {{"the second word", 8, true},   {"a sign", 2, true},
               {"the last sign", 3, true},     {"another word", 9, false},
               {"no sign any more", 4, false}, {"the end of a stretch", 1, false},
               {"the first again", 7, false}};
  for (const auto& c : cases) {
    for (int32_t size = 2; size <= 5; ++size) {
      for (size_t place = 0; place < 70; ++place) {
        std::string file;
        for (size_t i = 0; i < 100; ++i) {
          std::string token(static_cast<size_t>(size), '\0');
          token.front() = i == place ? '\x07' : i == place + 1 ? c.next : i == 80 ? '\0' : '\x09';
          file += token;
        }
        PageTextReader reader;
        reader.file = file;
        reader.tokenSize = size;
        SeekPageText(reader, 0);
        SkipToPair(reader, 7, 8, 3);
        EXPECT_EQ(reader.position, (c.stops ? place : 80) * static_cast<size_t>(size)) << c.what;
      }
    }
  }
}

TEST(PageText, TrailingBytesAreNoToken) {
  // 43 tokens of 3 bytes pass the 128 bytes read at a time; two bytes are left over.
  std::string file;
  for (int i = 0; i < 43; ++i) {
    file += static_cast<char>(i + 1);
    file += "\0\x09"s;
  }
  file += "\x50\x50";
  PageTextReader reader;
  reader.file = file;
  reader.tokenSize = 3;
  SeekPageText(reader, 0);
  PageTextToken token;
  for (uint32_t i = 0; i < 43; ++i) {
    ASSERT_EQ(ReadPageTextToken(reader, token), 3);
    EXPECT_EQ(token.word, i + 1);
  }
  EXPECT_EQ(ReadPageTextToken(reader, token), 0);
  EXPECT_EQ(ReadPageTextToken(reader, token), 0);
}

TEST(PageText, NothingFromBeforeASeekIsReturned) {
  const std::string file = "\x01\x00\x02\x00\x03\x00\x04\x00"s;
  PageTextReader reader;
  reader.file = file;
  reader.tokenSize = 2;
  SeekPageText(reader, 0);
  PageTextToken token;
  EXPECT_EQ(ReadPageTextToken(reader, token), 2);
  EXPECT_EQ(token.word, 1u);
  SeekPageText(reader, 6);
  EXPECT_EQ(ReadPageTextToken(reader, token), 2);
  EXPECT_EQ(token.word, 4u);
  EXPECT_EQ(ReadPageTextToken(reader, token), 0);
  SeekPageText(reader, 2);
  EXPECT_EQ(ReadPageTextToken(reader, token), 2);
  EXPECT_EQ(token.word, 2u);
  for (uint64_t behind : {uint64_t{8}, uint64_t{1000}, UINT64_MAX}) {
    SeekPageText(reader, behind);
    EXPECT_EQ(ReadPageTextToken(reader, token), 0);
    EXPECT_EQ(token.word, 0u);
  }
}

}  // namespace
}  // namespace vela
