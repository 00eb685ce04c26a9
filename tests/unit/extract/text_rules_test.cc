#include "indexer/extract/text_rules.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(TextRules, StylesThatHide) {
  const struct {
    const char* what;
    std::string_view style;
    bool expected;
  } kCases[] = {
      {"display", "display:none", true},
      {"blanks and capitals", " Display : None ", true},
      {"visibility", "color:red; visibility:hidden;", true},
      {"another property whose name ends so", "backface-visibility:hidden", false},
      {"another value that begins so", "display:none-of-it", false},
      {"the last one counts", "display:none;display:block", false},
      {"unless one is important", "display:none !important;display:block", true},
      {"another property between", "visibility:visible;display:none", true},
      {"in a text", "background:url('a;display:none')", false},
      {"in brackets", "background:url(a;display:none)", false},
      {"in a comment", "/* display:none; */color:red", false},
      {"a comment inside", "display:/* now */none", true},
      {"unfinished", "display:none;a:'", true},
      {"an unfinished comment", "display:none/*", true},
      {"no declaration", "display", false},
      {"nothing", "", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(HidesByStyle(c.style), c.expected);
  }
}

TEST(TextRules, WordsOfAList) {
  EXPECT_TRUE(HoldsWord("noindex", "noindex"));
  EXPECT_TRUE(HoldsWord(" a,noindex;b", "noindex"));
  EXPECT_FALSE(HoldsWord("noindexing", "noindex"));
  EXPECT_FALSE(HoldsWord("", "noindex"));
  EXPECT_FALSE(HoldsWord(" ,", "noindex"));
}

TEST(TextRules, AFrameInAFrameIsNoHeader) {
  ElementRole header;
  header.isFrame = header.isHeader = true;
  ElementRole aside;
  aside.isFrame = true;
  const TextState inHeader = StateInside({}, header);
  EXPECT_TRUE(inHeader.isInHeader);
  EXPECT_EQ(inHeader.style.share, TextShare::kFrame);
  EXPECT_FALSE(StateInside(inHeader, aside).isInHeader);
  EXPECT_FALSE(StateInside(StateInside({}, aside), header).isInHeader);
}

}  // namespace
}  // namespace vela::indexer
