#include "indexer/page_workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <random>
#include <stdexcept>
#include <thread>

namespace vela::indexer {
namespace {

struct Result {
  std::vector<size_t> items;
  std::vector<Reason> reasons;
  std::vector<std::string> texts;
  size_t makers = 0;
};

// Work of so many items, each of which takes another while.
Result RunOf(PageWork work) {
  Result result;
  const auto newMaker = [&]() -> MakeBlock {
    ++result.makers;
    return [](size_t item, PageBlock& block) {
      std::this_thread::sleep_for(std::chrono::microseconds(item * 7919 % 300));
      block.facts.path = "page " + std::to_string(item);
      block.description.assign(item % 5 == 0 ? 5000 : 10, 'x');
      return item % 3 == 0 ? Reason::kNoText : Reason::kNone;
    };
  };
  ForEachBlock(work, newMaker, [&](size_t item, Reason reason, const PageBlock& block) {
    result.items.push_back(item);
    result.reasons.push_back(reason);
    result.texts.push_back(block.facts.path);
  });
  return result;
}

TEST(PageWorkers, BlocksComeInTheirOrder) {
  for (const unsigned jobs : {1U, 2U, 5U}) {
    // Room for hardly more than one block, for some, and for all.
    for (const size_t bytes : {size_t{1}, size_t{20000}, size_t{1} << 30}) {
      SCOPED_TRACE(std::to_string(jobs) + " jobs, " + std::to_string(bytes) + " bytes");
      const Result result = RunOf({.items = 500, .jobs = jobs, .waitingBytes = bytes});
      EXPECT_EQ(result.makers, jobs);
      ASSERT_EQ(result.items.size(), 500u);
      for (size_t i = 0; i < 500; ++i) {
        ASSERT_EQ(result.items[i], i);
        ASSERT_EQ(result.reasons[i], i % 3 == 0 ? Reason::kNoText : Reason::kNone);
        ASSERT_EQ(result.texts[i], "page " + std::to_string(i));
      }
    }
  }
}

// Blocks are joined several at once; what is left in the end may be any number of them.
TEST(PageWorkers, TheLastBlocksComeHoweverManyTheyAre) {
  for (const unsigned jobs : {2U, 3U}) {
    for (size_t items = 1; items <= 40; ++items) {
      for (const size_t bytes : {size_t{1}, size_t{1} << 30}) {
        SCOPED_TRACE(std::to_string(jobs) + " jobs, " + std::to_string(items) + " items");
        const Result result = RunOf({.items = items, .jobs = jobs, .waitingBytes = bytes});
        ASSERT_EQ(result.items.size(), items);
        for (size_t i = 0; i < items; ++i) ASSERT_EQ(result.items[i], i);
      }
    }
  }
}

TEST(PageWorkers, NoItemsAreNoWork) {
  EXPECT_TRUE(RunOf({.items = 0, .jobs = 3, .waitingBytes = 1}).items.empty());
}

TEST(PageWorkers, AFailureComesWhenItIsItsTurn) {
  for (const unsigned jobs : {1U, 3U}) {
    SCOPED_TRACE(jobs);
    size_t used = 0;
    const auto newMaker = []() -> MakeBlock {
      return [](size_t item, PageBlock&) -> Reason {
        if (item >= 20) throw std::runtime_error("item " + std::to_string(item));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return Reason::kNone;
      };
    };
    try {
      ForEachBlock({.items = 100, .jobs = jobs, .waitingBytes = size_t{1} << 30}, newMaker,
                   [&](size_t, Reason, const PageBlock&) { ++used; });
      ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "item 20");
    }
    EXPECT_EQ(used, 20u);
  }
}

TEST(PageWorkers, WhoeverGivesUpWaitsForNoMoreThanOnePageOfEach) {
  std::atomic<size_t> made = 0;
  const auto newMaker = [&]() -> MakeBlock {
    return [&](size_t, PageBlock&) {
      ++made;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      return Reason::kNone;
    };
  };
  EXPECT_THROW(ForEachBlock({.items = 100000, .jobs = 3, .waitingBytes = size_t{1} << 30}, newMaker,
                            [](size_t item, Reason, const PageBlock&) {
                              if (item == 5) throw std::runtime_error("enough");
                            }),
               std::runtime_error);
  EXPECT_LT(made, 200u);
}

}  // namespace
}  // namespace vela::indexer
