// owned_array_test.cc: the owner of memory, and its failures on demand.

#include "text/owned_array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "support/failing_allocation.h"

namespace vela {
namespace {

class OwnedArrayTest : public testing::Test {
 protected:
  void TearDown() override { g_failAllocationNumber = 0; }
};

TEST_F(OwnedArrayTest, StartsEmpty) {
  const OwnedArray<int32_t> array;
  EXPECT_TRUE(array.empty());
  EXPECT_EQ(array.size(), 0u);
  EXPECT_EQ(array.data(), nullptr);
}

TEST_F(OwnedArrayTest, ElementsAreZeroed) {
  OwnedArray<int32_t> array;
  ASSERT_TRUE(array.TryAllocate(1000));
  EXPECT_EQ(array.size(), 1000u);
  EXPECT_TRUE(std::all_of(array.begin(), array.end(), [](int32_t v) { return v == 0; }));
  array[5] = 7;
  ASSERT_TRUE(array.TryAllocate(10));
  EXPECT_EQ(array.size(), 10u);
  EXPECT_EQ(array[5], 0);
}

TEST_F(OwnedArrayTest, NoElementsAreASuccess) {
  OwnedArray<char> array;
  ASSERT_TRUE(array.TryAllocate(3));
  EXPECT_TRUE(array.TryAllocate(0));
  EXPECT_TRUE(array.empty());
}

TEST_F(OwnedArrayTest, AProductTooLargeFails) {
  OwnedArray<int64_t> array;
  ASSERT_TRUE(array.TryAllocate(4));
  volatile size_t tooMany = SIZE_MAX / 8 + 1;
  EXPECT_FALSE(array.TryAllocate(tooMany));
  EXPECT_TRUE(array.empty());
}

TEST_F(OwnedArrayTest, TheNthAllocationFailsAndOnlyThat) {
  OwnedArray<char> array;
  g_failAllocationNumber = 2;
  EXPECT_TRUE(array.TryAllocate(5));
  EXPECT_FALSE(array.TryAllocate(6));
  EXPECT_TRUE(array.empty());
  EXPECT_EQ(g_failAllocationNumber, 0);
  EXPECT_TRUE(array.TryAllocate(7));
  EXPECT_EQ(array.size(), 7u);
}

TEST_F(OwnedArrayTest, ResizeKeepsWhatFits) {
  OwnedArray<int32_t> array;
  ASSERT_TRUE(array.TryResize(2));
  array[0] = 10;
  array[1] = 11;
  ASSERT_TRUE(array.TryResize(100));
  EXPECT_EQ(array.size(), 100u);
  EXPECT_EQ(array[0], 10);
  EXPECT_EQ(array[1], 11);
  ASSERT_TRUE(array.TryResize(1));
  EXPECT_EQ(array.size(), 1u);
  EXPECT_EQ(array[0], 10);
}

TEST_F(OwnedArrayTest, AFailedResizeLeavesTheBlock) {
  OwnedArray<int32_t> array;
  ASSERT_TRUE(array.TryAllocate(2));
  array[1] = 11;
  g_failAllocationNumber = 1;
  EXPECT_FALSE(array.TryResize(4));
  EXPECT_EQ(array.size(), 2u);
  EXPECT_EQ(array[1], 11);
  volatile size_t tooMany = SIZE_MAX / 4 + 1;
  EXPECT_FALSE(array.TryResize(tooMany));
  EXPECT_EQ(array.size(), 2u);
  EXPECT_EQ(array[1], 11);
}

TEST_F(OwnedArrayTest, MovingHandsTheBlockOver) {
  OwnedArray<int32_t> first;
  ASSERT_TRUE(first.TryAllocate(3));
  first[2] = 9;
  const int32_t* block = first.data();
  OwnedArray<int32_t> second = std::move(first);
  EXPECT_EQ(second.data(), block);
  EXPECT_EQ(second.size(), 3u);
  OwnedArray<int32_t> third;
  ASSERT_TRUE(third.TryAllocate(1));
  third = std::move(second);
  EXPECT_EQ(third.data(), block);
  EXPECT_EQ(third[2], 9);
  third.Release();
  EXPECT_TRUE(third.empty());
  EXPECT_EQ(third.data(), nullptr);
  third.Release();  // a second one is harmless
  EXPECT_TRUE(third.empty());
}

}  // namespace
}  // namespace vela
