#include "indexer/collect/postings.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

std::vector<std::tuple<uint32_t, uint32_t, uint32_t>> Collect(size_t memory, uint32_t pages,
                                                              size_t& runs) {
  const support::ScratchDirectory scratch;
  PostingRuns postings(scratch.path(), memory);
  std::mt19937 random(5);
  for (uint32_t page = 0; page < pages; ++page) {
    for (uint32_t word = 0; word < 300; ++word) {
      // Different words on every page, in no order.
      const uint32_t number = (word * 7919 + page) % 5003;
      Posting posting;
      posting.word = number;
      posting.page = page;
      posting.token = static_cast<uint32_t>(random());
      postings.Add(posting);
    }
  }
  std::vector<std::tuple<uint32_t, uint32_t, uint32_t>> all;
  runs = postings.runCount();
  postings.ForEachSorted([&](const Posting& p) { all.emplace_back(p.word, p.page, p.token); });
  return all;
}

TEST(Postings, ComeBackByWordAndPage) {
  size_t runs = 0;
  const auto all = Collect(size_t{1} << 30, 200, runs);
  EXPECT_EQ(runs, 0u);
  ASSERT_EQ(all.size(), 60000u);
  EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
}

TEST(Postings, AreTheSameFromDisk) {
  size_t without = 0;
  size_t with = 0;
  const auto expected = Collect(size_t{1} << 30, 200, without);
  const auto merged = Collect(1, 200, with);  // as little memory as it takes
  EXPECT_GT(with, 10u);
  EXPECT_EQ(merged, expected);
}

TEST(Postings, NoneIsNone) {
  const support::ScratchDirectory scratch;
  PostingRuns postings(scratch.path(), 1000);
  postings.ForEachSorted([](const Posting&) { FAIL(); });
}

TEST(Postings, LeaveNoFileBehind) {
  const support::ScratchDirectory scratch;
  PostingRuns postings(scratch.path(), 1);
  for (uint32_t page = 0; page < 10000; ++page) postings.Add({0, page, 0, 1, 1, 0, 1});
  EXPECT_GT(postings.runCount(), 0u);
  EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

}  // namespace
}  // namespace vela::indexer
