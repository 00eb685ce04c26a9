#include "inspector/check/setting_ranges.h"

#include <gtest/gtest.h>

#include "indexer/config/setting_keys.h"

namespace vela::inspector {
namespace {

// What the owner may set is never told to be wrong.
TEST(SettingRanges, HoldAllThatTheIndexerTakes) {
  for (const auto& keys : {indexer::NumberKeys(), indexer::ExtensionKeys()}) {
    for (const indexer::NumberKey& key : keys) {
      SCOPED_TRACE(key.key);
      const SettingRange* range = FindSettingRange(key.key);
      ASSERT_NE(range, nullptr);
      EXPECT_LE(range->least, key.least);
      EXPECT_GE(range->most, key.most);
    }
  }
}

TEST(SettingRanges, KnowNoOtherKey) {
  EXPECT_EQ(FindSettingRange("Charset"), nullptr);
  EXPECT_EQ(FindSettingRange(""), nullptr);
}

}  // namespace
}  // namespace vela::inspector
