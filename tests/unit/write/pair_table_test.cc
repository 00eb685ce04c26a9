#include "indexer/write/pair_table.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include "format/index_directory.h"
#include "indexer/write/pair_rows.h"
#include "support/loaded_site.h"
#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

constexpr TextShape kShape = {.tokenBytes = 4, .lastSign = 3};
constexpr uint32_t kPagesOfText = 3;
constexpr uint32_t kWords = 100000;  // of each page

// Word `i` of a page; the pages say different things.
uint32_t WordOf(uint32_t page, uint32_t i) { return 10 + i * (page + 1); }

void WritePageText(const support::ScratchDirectory& scratch, const std::string& text) {
  std::ofstream(scratch.path() / kPageTextFileName, std::ios::binary) << text;
}

std::vector<WordPairs> RecordsOf(PairTable& table) {
  std::vector<WordPairs> records;
  table.ForEach([&](const WordPairs& record) { records.push_back(record); });
  return records;
}

TEST(PairTable, GivesTheRecordsOfEveryTextInTheirOrder) {
  support::ScratchDirectory scratch;
  std::string text;
  std::vector<WordPairs> expected;
  std::vector<size_t> firsts = {0};
  PairRows rows;
  for (uint32_t page = 0; page < kPagesOfText; ++page) {
    for (uint32_t i = 0; i < kWords; ++i) {
      text += support::LittleEndian(WordOf(page, i), 4);
      if (i > 0) rows.Add(WordOf(page, i - 1), WordOf(page, i));
    }
    text += support::LittleEndian(0, 4);
    const std::span<const WordPairs> ofPage = rows.Finish();
    expected.insert(expected.end(), ofPage.begin(), ofPage.end());
    firsts.push_back(expected.size());
  }
  WritePageText(scratch, text);
  PairTable table(scratch.path(), kShape, UINT32_MAX);
  ASSERT_EQ(table.texts().size(), kPagesOfText + 1);
  for (uint32_t page = 0; page <= kPagesOfText; ++page) {
    EXPECT_EQ(StartOf(table.texts()[page]), uint64_t{page} * (kWords + 1) * 4);
    EXPECT_EQ(FirstPairsOf(table.texts()[page]), firsts[page]);
  }
  const std::vector<WordPairs> records = RecordsOf(table);
  ASSERT_EQ(records.size(), expected.size());
  EXPECT_EQ(memcmp(records.data(), expected.data(), records.size() * sizeof(WordPairs)), 0);
  EXPECT_GT(records.size(), 4096u) << "too few to be read in several portions";
}

TEST(PairTable, OfNoPageTextNothingIsTold) {
  support::ScratchDirectory scratch;
  PairTable missing(scratch.path(), kShape, UINT32_MAX);
  EXPECT_TRUE(missing.texts().empty());
  EXPECT_TRUE(RecordsOf(missing).empty());
  WritePageText(scratch, "");
  PairTable none(scratch.path(), {.tokenBytes = 9, .lastSign = 3}, UINT32_MAX);
  EXPECT_TRUE(none.texts().empty());
}

}  // namespace
}  // namespace vela::indexer
