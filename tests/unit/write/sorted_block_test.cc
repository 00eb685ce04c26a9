#include "indexer/write/sorted_block.h"

#include <gtest/gtest.h>

#include <string>

namespace vela::indexer {
namespace {

using namespace std::literals;

TEST(SortedBlock, Entries) {
  SortedBlock block;
  ASSERT_TRUE(block.Add("run", 9, false));
  ASSERT_TRUE(block.Add("runner", 300, true));
  ASSERT_TRUE(block.Add("runner", 10, false));
  ASSERT_TRUE(block.Add("runtime-of-a-program", 301, false));
  EXPECT_EQ(block.content(),
            // Nothing in common, 3 bytes more, a number of its own: 7 << 5 | 3.
            "\0\xE3run\x09"s +
                // 3 in common, 3 more, a variant of 300: 0x2C and 2 times 128.
                "\3\xF3ner\xAC\2"s +
                // The same text; the word behind 9, the second of the recent ones.
                "\6\x20"s +
                // 3 in common; the word behind 300, again the second; 17 more: 15 and 2.
                "\3\x2F\2time-of-a-program"s);
  block.Clear();
  EXPECT_EQ(block.content(), "");
  // Nothing is left of those before.
  ASSERT_TRUE(block.Add("runtime", 302, false));
  EXPECT_EQ(block.content(), "\0\xE7runtime\xAE\2"s);
}

TEST(SortedBlock, IsFullWhereAnEntryDoesNotFit) {
  SortedBlock block;
  const std::string longest(kLookupTextLimit, 'x');
  ASSERT_TRUE(block.Add(longest, UINT32_MAX - 1, false));
  EXPECT_EQ(block.content().size(), 3 + kLookupTextLimit + 5);
  const size_t rest = kLookupBlockRoom - block.content().size();
  const std::string before(block.content());
  // Three bytes and the text; the number is the one behind.
  EXPECT_FALSE(block.Add(std::string(rest - 2, 'y'), UINT32_MAX, false));
  EXPECT_EQ(block.content(), before);
  EXPECT_TRUE(block.Add(std::string(rest - 3, 'y'), UINT32_MAX, false));
  EXPECT_EQ(block.content().size(), kLookupBlockRoom);
}

}  // namespace
}  // namespace vela::indexer
