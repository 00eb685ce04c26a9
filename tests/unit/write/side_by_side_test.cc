#include "indexer/write/side_by_side.h"

#include <gtest/gtest.h>

#include <string>

#include "indexer/write/out_file.h"
#include "support/loaded_site.h"
#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

constexpr TextShape kShape = {.tokenBytes = 4, .lastSign = 2};  // 2 is a sign

// Tokens of words by their numbers; 0 ends a page, 1 a stretch of text.
std::string Text(const std::vector<uint32_t>& words) {
  std::string text;
  for (const uint32_t word : words) {
    text += support::LittleEndian(word, 3) + support::LittleEndian(word > 2 ? 1 : 0, 1);
  }
  return text;
}

std::vector<std::vector<RowPlace>> Find(const std::vector<uint32_t>& words, const TextShape& shape,
                                        const std::vector<WordRow>& rows) {
  const support::ScratchDirectory scratch;
  OutFile out(scratch.path() / "text");
  out.Write(Text(words));
  out.Finish();
  InFile in(scratch.path() / "text");
  return FindRows(in, shape, rows);
}

// "0@4 2@24 ": pages and positions of one row.
std::string Places(const std::vector<uint32_t>& words, const WordRow& row) {
  std::string text;
  const auto places = Find(words, kShape, {row});
  for (const RowPlace& place : places.at(0)) {
    text += std::to_string(place.page) + "@" + std::to_string(place.position) + " ";
  }
  return text;
}

TEST(SideBySide, RowsTable) {
  const struct {
    const char* what;
    std::vector<uint32_t> words;
    WordRow row;
    const char* expected;
  } cases[] = {
      {"side by side", {7, 5, 6, 0}, {5, 6}, "0@4 "},
      {"the first place of each page", {5, 6, 5, 6, 0, 7, 0, 5, 6, 0}, {5, 6}, "0@0 2@28 "},
      {"in the other order", {6, 5, 0}, {5, 6}, ""},
      {"a sign between", {5, 2, 6, 0}, {5, 6}, ""},
      {"the end of a stretch between", {5, 1, 6, 0}, {5, 6}, ""},
      {"the end of a page between", {5, 0, 6, 0}, {5, 6}, ""},
      {"a word twice", {5, 5, 5, 0}, {5, 5}, "0@0 "},
      {"three words", {5, 6, 5, 6, 7, 0}, {5, 6, 7}, "0@8 "},
      {"four words", {4, 5, 6, 7, 0}, {4, 5, 6, 7}, "0@0 "},
      {"four words cut short by a sign", {4, 2, 5, 6, 7, 0}, {4, 5, 6, 7}, ""},
      {"no page end behind the last page", {0, 5, 6}, {5, 6}, "1@4 "},
      {"no text", {}, {5, 6}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Places(c.words, c.row), c.expected);
  }
}

// Longer than what is read of a file at a time.
TEST(SideBySide, RowsAcrossPortions) {
  constexpr size_t kWords = 200000;
  std::vector<uint32_t> words(kWords, 7);
  words[65535] = words[131071] = 5;
  words[65536] = words[131072] = 6;
  words[100000] = 0;
  EXPECT_EQ(Places(words, {5, 6}), "0@262140 1@524284 ");
}

TEST(SideBySide, SeveralRowsWithTheSameEnd) {
  const auto places = Find({4, 5, 6, 0, 5, 6, 0}, kShape, {{5, 6}, {4, 5, 6}, {5, 6}});
  ASSERT_EQ(places.size(), 3u);
  EXPECT_EQ(places[0].size(), 2u);
  EXPECT_EQ(places[1].size(), 1u);
  EXPECT_EQ(places[2].size(), 2u);
  EXPECT_TRUE(Find({5, 6}, kShape, {}).empty());
  EXPECT_TRUE(Find({5, 6}, {.tokenBytes = 1, .lastSign = 2}, {{5, 6}})[0].empty());
}

}  // namespace
}  // namespace vela::indexer
