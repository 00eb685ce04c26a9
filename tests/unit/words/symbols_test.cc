#include "indexer/words/symbols.h"

#include <gtest/gtest.h>

#include <set>

#include "format/page_text.h"

namespace vela::indexer {
namespace {

uint8_t SymbolOf(char32_t c) {
  const CharacterClass kind = ClassifyCharacter(c);
  EXPECT_EQ(kind.kind, CharacterKind::kSymbol);
  return kind.symbol;
}

TEST(Symbols, EveryFormHasItsRange) {
  const ReservedNumbers numbers = ReservedLimits();
  const std::vector<std::string> texts = ReservedTexts();
  ASSERT_EQ(texts.size(), numbers.limit + 1);
  std::set<uint32_t> seen = {kPageEndWord, kRunEndWord};
  for (char32_t c = 0; c < 0x10000; ++c) {
    const CharacterClass kind = ClassifyCharacter(c);
    if (kind.kind != CharacterKind::kSymbol) continue;
    const uint32_t suffix = ReservedNumber(kind.symbol, SymbolForm::kSuffix);
    const uint32_t alone = ReservedNumber(kind.symbol, SymbolForm::kAlone);
    const uint32_t prefix = ReservedNumber(kind.symbol, SymbolForm::kPrefix);
    const uint32_t between = ReservedNumber(kind.symbol, SymbolForm::kBetween);
    EXPECT_TRUE(suffix >= 2 && suffix <= numbers.suffixes);
    EXPECT_TRUE(alone >= 2 && alone <= numbers.suffixes);
    EXPECT_TRUE(prefix > numbers.suffixes && prefix <= numbers.prefixes);
    EXPECT_TRUE(between > numbers.prefixes && between <= numbers.noSpaces);
    EXPECT_EQ(texts[alone], "&#32;" + texts[suffix]);
    EXPECT_EQ(texts[prefix], texts[suffix]);
    EXPECT_EQ(texts[between], texts[suffix]);
    for (const uint32_t number : {suffix, alone, prefix, between}) {
      EXPECT_TRUE(seen.insert(number).second) << number;
    }
  }
  EXPECT_EQ(seen.size(), texts.size());  // every number is used once
  EXPECT_EQ(numbers.limit, numbers.noSpaces);
}

TEST(Symbols, TextsAreSafeInHtmlAndHoldNoBlank) {
  for (const std::string& text : ReservedTexts()) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find_first_of(" \t\r\n<>\"'"), std::string::npos);
    for (size_t at = text.find('&'); at != std::string::npos; at = text.find('&', at + 1)) {
      EXPECT_EQ(text[at + 1], '#');
      EXPECT_NE(text.find(';', at), std::string::npos);
    }
  }
  EXPECT_EQ(ReservedTexts()[ReservedNumber(SymbolOf(U'<'), SymbolForm::kSuffix)], "&#60;");
  EXPECT_EQ(ReservedTexts()[ReservedNumber(SymbolOf(U'&'), SymbolForm::kAlone)], "&#32;&#38;");
  EXPECT_EQ(ReservedTexts()[ReservedNumber(SymbolOf(0x2014), SymbolForm::kBetween)], "\u2014");
}

TEST(Symbols, Classifies) {
  EXPECT_EQ(ClassifyCharacter(U'a').kind, CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(U'7').kind, CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(0x00E9).kind, CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(0x56F3).kind, CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(0x1F600).kind, CharacterKind::kWord);
  EXPECT_EQ(ClassifyCharacter(0x00B6).kind, CharacterKind::kDropped);  // paragraph sign
  EXPECT_EQ(ClassifyCharacter(0xFFFD).kind, CharacterKind::kDropped);
  for (char32_t c = 0x21; c < 0x7F; ++c) {
    const bool letter =
        (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9');
    EXPECT_EQ(ClassifyCharacter(c).kind, letter ? CharacterKind::kWord : CharacterKind::kSymbol);
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
