#include "index/word_map.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::LittleEndian;

std::string Record(uint8_t score, uint8_t proximity, uint32_t page, uint64_t position) {
  return LittleEndian(score, 1) + LittleEndian(proximity, 1) + LittleEndian(page, 3) +
         LittleEndian(position, 5);
}

TEST(WordMap, ReadsTheListAtItsOffset) {
  const std::string file = "junk" + LittleEndian(2, 4) + Record(200, 0x06, 3, 40) +
                           Record(255, 0xFF, 16777215, 1099511627775) + "junk";
  WordList list;
  ASSERT_EQ(ReadWordList(file, 4, list), WordListStatus::kOk);
  ASSERT_EQ(list.size(), 2);
  EXPECT_EQ(RecordAt(list, 0).score, 200);
  EXPECT_EQ(RecordAt(list, 0).proximity, 0x06);
  EXPECT_EQ(RecordAt(list, 0).page, 3u);
  EXPECT_EQ(RecordAt(list, 0).position, 40u);
  EXPECT_EQ(RecordAt(list, 1).score, 255);
  EXPECT_EQ(RecordAt(list, 1).proximity, 0xFF);
  EXPECT_EQ(RecordAt(list, 1).page, 16777215u);
  EXPECT_EQ(RecordAt(list, 1).position, 1099511627775u);
}

TEST(WordMap, PageBytes02_00_01ArePage65538) {
  const std::string record = "\x00\x00\x02\x00\x01\x00\x00\x00\x00\x00"s;
  EXPECT_EQ(RecordAt({record}, 0).page, 65538u);
}

TEST(WordMap, PositionBytes10_00_00_00_01AreBeyondFourGigabytes) {
  const std::string record = "\x00\x00\x00\x00\x00\x10\x00\x00\x00\x01"s;
  EXPECT_EQ(RecordAt({record}, 0).position, 4294967312u);
}

TEST(WordMap, ListsTable) {
  const std::string one = Record(1, 2, 3, 4);
  const struct {
    const char* what;
    std::string file;
    int64_t offset;
    WordListStatus status;
    int32_t records;
  } cases[] = {
      {"a count of 0 yields no records", LittleEndian(0, 4), 0, WordListStatus::kOk, 0},
      {"a negative count means none", LittleEndian(0xFFFFFFFF, 4) + one, 0, WordListStatus::kOk, 0},
      {"the most negative count", LittleEndian(0x80000000, 4) + one, 0, WordListStatus::kOk, 0},
      {"one record that ends the file", LittleEndian(1, 4) + one, 0, WordListStatus::kOk, 1},
      {"one byte is missing", LittleEndian(1, 4) + one.substr(1), 0, WordListStatus::kMissingData,
       0},
      {"one record more than the file has", LittleEndian(2, 4) + one, 0,
       WordListStatus::kMissingData, 0},
      {"the largest count", LittleEndian(0x7FFFFFFF, 4) + one, 0, WordListStatus::kMissingData, 0},
      {"a count whose bytes pass 32 bits", LittleEndian(429496730, 4) + one, 0,
       WordListStatus::kMissingData, 0},
      {"the count is cut", LittleEndian(0, 3), 0, WordListStatus::kMissingData, 0},
      {"at the end of the file", LittleEndian(0, 4), 4, WordListStatus::kMissingData, 0},
      {"behind the end of the file", LittleEndian(0, 4), 1000, WordListStatus::kMissingData, 0},
      {"as far behind as there is", LittleEndian(0, 4), INT64_MAX, WordListStatus::kMissingData, 0},
      {"an empty file", "", 0, WordListStatus::kMissingData, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    WordList list;
    EXPECT_EQ(ReadWordList(c.file, c.offset, list), c.status);
    EXPECT_EQ(list.size(), c.records);
  }
}

TEST(WordMap, NegativeOffsetIsAFailedSeek) {
  for (int64_t offset : {int64_t{-2}, INT64_MIN}) {
    WordList list;
    EXPECT_EQ(ReadWordList(LittleEndian(0, 4), offset, list), WordListStatus::kSeekFailed);
    EXPECT_EQ(list.size(), 0);
  }
}

}  // namespace
}  // namespace vela
