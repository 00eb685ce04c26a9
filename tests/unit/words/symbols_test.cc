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
  EXPECT_EQ(ClassifyCharacter(0x1F600), CharacterKind::kSymbol);  // emoji
  EXPECT_EQ(ClassifyCharacter(0x2103), CharacterKind::kWord);     // degree Celsius
  EXPECT_EQ(ClassifyCharacter(0x2460), CharacterKind::kWord);     // circled digit one
  EXPECT_EQ(ClassifyCharacter(0x06FD), CharacterKind::kWord);     // a word of Sindhi
  EXPECT_EQ(ClassifyCharacter(0x00B6), CharacterKind::kDropped);  // paragraph sign
  EXPECT_EQ(ClassifyCharacter(0xFFFD), CharacterKind::kDropped);
  for (char32_t c = 0x21; c < 0x7F; ++c) {
    const bool letter =
        (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9');
    EXPECT_EQ(ClassifyCharacter(c), letter ? CharacterKind::kWord : CharacterKind::kSymbol);
  }
}

TEST(Symbols, PictographsAreWhatQueriesKeep) {
  EXPECT_TRUE(IsPictograph(0x1F600));
  EXPECT_TRUE(IsPictograph(0xFE0F));
  EXPECT_FALSE(IsPictograph(0x2B07));  // queries are cut at it
  EXPECT_FALSE(IsPictograph(0x2460));
  EXPECT_FALSE(IsPictograph(U'+'));
  for (const char32_t c : QuerySymbols()) EXPECT_FALSE(IsPictograph(c)) << Utf8Text(c);
}

TEST(Symbols, SeveralCharactersMakeAPicture) {
  EXPECT_TRUE(GoesWithSign("\U0001F44B", 0x1F3FD));  // a waving hand and a skin tone
  EXPECT_TRUE(GoesWithSign("\u27A1", 0xFE0F));
  EXPECT_TRUE(GoesWithSign("\U0001F468\u200D", 0x1F469));
  EXPECT_FALSE(GoesWithSign("\U0001F468", 0x1F469));
  EXPECT_TRUE(GoesWithSign("\U0001F1E9", 0x1F1EA));
  EXPECT_FALSE(GoesWithSign("\U0001F1E9\U0001F1EA", 0x1F1EB));
  EXPECT_FALSE(GoesWithSign("<", 0xFE0F));  // shown as a reference
  EXPECT_FALSE(GoesWithSign("\U0001F468\u200D", U'a'));
  std::string endless = "\U0001F468";
  while (GoesWithSign(endless, 0xFE0F)) endless += "\uFE0F";
  EXPECT_LT(endless.size(), 100u);
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
