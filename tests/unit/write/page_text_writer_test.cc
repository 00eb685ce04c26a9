#include "indexer/write/page_text_writer.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(PageTextWriter, LeavesNoTemporaryFileHoweverTheRunEnds) {
  const support::ScratchDirectory scratch;
  PageTextWriter writer(scratch.path());
  EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
  writer.Add({{.number = 7, .variant = 1}, {.number = 300, .variant = 2}});
  ReservedEntries reserved;
  reserved.numbers.limit = 600;
  reserved.finals.resize(301);
  reserved.finals[7] = 300;
  reserved.finals[300] = 7;
  EXPECT_EQ(writer.Finish(scratch.path() / "text", reserved, {}, 3), 6u);
  EXPECT_EQ(ReadFile(scratch.path() / "text"), std::string("\x2C\x01\x01\x07\0\x02", 6));
}

}  // namespace
}  // namespace vela::indexer
