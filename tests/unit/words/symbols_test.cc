#include "indexer/words/symbols.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(Symbols, AreSafeInHtml) {
  EXPECT_EQ(HtmlText(U'<'), "&#60;");
  EXPECT_EQ(HtmlText(U'&'), "&#38;");
  EXPECT_EQ(HtmlText(U','), ",");
  EXPECT_EQ(HtmlText(0x2014), "\u2014");
}

TEST(Symbols, Classifies) {
  EXPECT_EQ(ClassifyCharacter(U'a'), CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(U'7'), CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(0x00E9), CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(0x56F3), CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(0x1F600), CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(0x00B6), CharacterKind::kDropped);  // paragraph sign
  EXPECT_EQ(ClassifyCharacter(0xFFFD), CharacterKind::kDropped);
  for (char32_t c = 0x21; c < 0x7F; ++c) {
    const bool letter =
        (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9');
    EXPECT_EQ(ClassifyCharacter(c), letter ? CharacterKind::kWord : CharacterKind::kSymbol);
  }
}

TEST(Symbols, DecodesAnyBytes) {
  size_t length = 0;
  EXPECT_EQ(DecodeCharacter("a", 0, length), U'a');
  EXPECT_EQ(length, 1u);
  EXPECT_EQ(DecodeCharacter("x\u20AC", 1, length), 0x20ACu);
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(DecodeCharacter("\xE2\x82", 0, length), 0xFFFDu);
  EXPECT_EQ(length, 1u);
  EXPECT_EQ(DecodeCharacter("\x80", 0, length), 0xFFFDu);
  EXPECT_EQ(length, 1u);
}

}  // namespace
}  // namespace vela::indexer
