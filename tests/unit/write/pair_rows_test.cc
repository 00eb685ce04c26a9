#include "indexer/write/pair_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vela::indexer {
namespace {

// Whether the records of a text say that it may hold the pair.
bool MayHold(const std::vector<WordPairs>& records, uint32_t first, uint32_t second) {
  const WordPairMark mark = WordPairMarkOf(first, second, static_cast<uint32_t>(records.size()));
  const size_t record = mark.slot / kWordPairSlots;
  EXPECT_LT(record, records.size());
  if (mark.slot % kWordPairSlots == 0) return AddsUp(mark, records[record], {});
  EXPECT_LT(record + 1, records.size());
  return AddsUp(mark, records[record], records[record + 1]);
}

std::vector<WordPairs> RecordsOf(PairRows& rows, uint32_t pairs) {
  for (uint32_t i = 0; i < pairs; ++i) rows.Add(1 + i, 7 + i * 3);
  for (uint32_t i = 0; i < pairs; i += 2) rows.Add(1 + i, 7 + i * 3);  // once more
  const std::span<const WordPairs> records = rows.Finish();
  return {records.begin(), records.end()};
}

TEST(PairRows, HoldWhatIsInTheTextAndLittleElse) {
  PairRows rows;
  for (const uint32_t pairs : {1U, 2U, 31U, 32U, 33U, 100U, 700U, 5000U, 60000U, 3U}) {
    SCOPED_TRACE(pairs);
    const std::vector<WordPairs> records = RecordsOf(rows, pairs);
    // With one slot in four to spare, and what fills the last record.
    EXPECT_LE(records.size(), (pairs + pairs / 4) / kWordPairSlots + 2);
    uint32_t wrong = 0;
    for (uint32_t i = 0; i < pairs; ++i) {
      ASSERT_TRUE(MayHold(records, 1 + i, 7 + i * 3)) << i;
      if (MayHold(records, 1 + i, 8 + i * 3)) ++wrong;
    }
    EXPECT_LE(wrong, 12 + pairs / 25);  // one in 32 is to be expected
  }
}

TEST(PairRows, ATextIsNotMixedWithTheOneBefore) {
  PairRows used;
  RecordsOf(used, 40000);
  EXPECT_TRUE(used.Finish().empty());
  PairRows fresh;
  const std::vector<WordPairs> first = RecordsOf(used, 200);
  const std::vector<WordPairs> second = RecordsOf(fresh, 200);
  ASSERT_EQ(first.size(), second.size());
  for (size_t i = 0; i < first.size(); ++i) {
    EXPECT_TRUE(std::ranges::equal(first[i].columns, second[i].columns)) << i;
  }
}

}  // namespace
}  // namespace vela::indexer
