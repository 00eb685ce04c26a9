#include "indexer/write/page_text_writer.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(PageTextWriter, LeavesNoTemporaryFileHoweverTheRunEnds) {
  const support::ScratchDirectory scratch;
  PageTextWriter writer(scratch.path());
  EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
  writer.AddPage({{.number = 7, .variant = 1}, {.number = 300, .variant = 2}});
  EXPECT_EQ(writer.Finish(scratch.path() / "text", {}, 3), 6u);
  EXPECT_EQ(ReadFile(scratch.path() / "text"), std::string("\x07\0\x01\x2C\x01\x02", 6));
}

}  // namespace
}  // namespace vela::indexer
