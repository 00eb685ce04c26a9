#include "indexer/site/print_table.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(PrintTable, FindsEverythingAgainAsItGrows) {
  PrintTable<uint32_t> table;
  EXPECT_EQ(table.Find(1), nullptr);
  constexpr uint32_t kCount = 100000;
  // Prints that differ in their low bits alone, and in their high bits alone.
  const auto printOf = [](uint64_t i) { return i % 2 == 0 ? (i + 2) << 40 : i + 2; };
  for (uint32_t i = 0; i < kCount; ++i) {
    const auto [value, isNew] = table.TryAdd(printOf(i), i);
    ASSERT_TRUE(isNew) << i;
    ASSERT_EQ(*value, i);
  }
  EXPECT_EQ(table.size(), kCount);
  for (uint32_t i = 0; i < kCount; ++i) {
    const uint32_t* value = table.Find(printOf(i));
    ASSERT_NE(value, nullptr) << i;
    ASSERT_EQ(*value, i);
  }
  EXPECT_EQ(table.Find(3ULL << 40), nullptr);
  // 12 bytes each, and at most half of the places free.
  EXPECT_LT(table.memory(), kCount * 24);
}

TEST(PrintTable, TheFirstValueStaysUntilItIsChanged) {
  PrintTable<uint32_t> table;
  EXPECT_TRUE(table.TryAdd(5, 1).second);
  const auto [value, isNew] = table.TryAdd(5, 2);
  EXPECT_FALSE(isNew);
  EXPECT_EQ(*value, 1u);
  *value = 3;
  EXPECT_EQ(*table.Find(5), 3u);
}

}  // namespace
}  // namespace vela::indexer
