#include "indexer/write/page_text_writer.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(PageTextWriter, LeavesNoTemporaryFileHoweverTheRunEnds) {
  const support::ScratchDirectory scratch;
  PageTextWriter writer(scratch.path());
  EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
  const PageToken forms[] = {{.number = 7, .variant = 1}, {.number = 300, .variant = 2}};
  writer.Add({.tokens = std::string_view("\x02\x04", 2), .tokenCount = 2, .forms = forms});
  ReservedEntries reserved;
  reserved.numbers.limit = 600;
  reserved.finals.resize(301);
  reserved.finals[7] = 300;
  reserved.finals[300] = 7;
  EXPECT_EQ(writer.Finish(scratch.path() / "text", reserved, {}, 3), 6u);
  EXPECT_EQ(ReadFile(scratch.path() / "text"), std::string("\x2C\x01\x01\x07\0\x02", 6));
}

TEST(PageTextWriter, StretchesGetTheNumbersOfTheDictionary) {
  const support::ScratchDirectory scratch;
  PageTextWriter writer(scratch.path());
  // Of the first page: a word, a sign, the end of a run, the word again, and another run of it.
  const PageToken forms[] = {{.number = kWordBase + 1, .variant = 3}};
  const PageToken signs[] = {{.number = kFirstSignWord, .variant = 0}};
  writer.Add({.tokens = std::string_view("\x02\x01\0\x02", 4),
              .tokenCount = 4,
              .forms = forms,
              .signs = signs,
              .end = kRunEndWord});
  writer.Add({.tokens = std::string_view("\x02", 1),
              .tokenCount = 1,
              .forms = forms,
              .end = kPageEndWord});
  // A page without text.
  writer.Add({.end = kPageEndWord});
  ReservedEntries reserved;
  reserved.numbers.limit = 2;
  reserved.finals = {kPageEndWord, kRunEndWord, 2};
  // The second word of the site is the dictionary's first, behind three reserved entries.
  EXPECT_EQ(writer.Finish(scratch.path() / "text", reserved, {1, 0}, 2), 16u);
  EXPECT_EQ(ReadFile(scratch.path() / "text"),
            std::string("\x03\x03\x02\0\x01\0\x03\x03\x01\0\x03\x03\0\0\0\0", 16));
}

}  // namespace
}  // namespace vela::indexer
