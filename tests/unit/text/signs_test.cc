#include "text/signs.h"

#include <gtest/gtest.h>

namespace vela {
namespace {

TEST(Signs, KindsOfCharacters) {
  const struct {
    const char* what;
    char32_t character;
    CharacterKind kind;
  } kCases[] = {
      {"a letter", U'a', CharacterKind::kWord},
      {"a digit", U'0', CharacterKind::kWord},
      {"a letter with a mark", 0xE9, CharacterKind::kWord},
      {"the last of all", 0x10FFFF, CharacterKind::kWord},
      {"a circled digit", 0x2460, CharacterKind::kWord},
      {"a blank", U' ', CharacterKind::kBlank},
      {"a tab", U'\t', CharacterKind::kBlank},
      {"the first beyond ASCII", 0x80, CharacterKind::kBlank},
      {"no-break space", 0xA0, CharacterKind::kBlank},
      {"ideographic space", 0x3000, CharacterKind::kBlank},
      {"a comma", U',', CharacterKind::kSymbol},
      {"a quotation mark", U'"', CharacterKind::kSymbol},
      {"a curly quote", 0x201C, CharacterKind::kSymbol},
      {"an ellipsis", 0x2026, CharacterKind::kSymbol},
      {"the first of a range", 0x2012, CharacterKind::kSymbol},
      {"the last of a range", 0x2015, CharacterKind::kSymbol},
      {"behind a range", 0x2016, CharacterKind::kDropped},
      {"a paragraph sign", 0xB6, CharacterKind::kDropped},
      {"what stands for broken bytes", 0xFFFD, CharacterKind::kDropped},
      {"an emoji", 0x1F600, CharacterKind::kPicture},
      {"a mathematical sign", 0x2208, CharacterKind::kPicture},
      {"soft hyphen", 0xAD, CharacterKind::kInvisible},
      {"no-break hyphen", 0x2011, CharacterKind::kHyphen},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(KindOf(c.character), c.kind);
  }
}

TEST(Signs, RangesAscendAndDoNotTouchTheirLike) {
  char32_t next = 0x80;
  CharacterKind before = CharacterKind::kWord;
  for (const SignRange& range : SignRanges()) {
    EXPECT_GE(range.first, next);
    EXPECT_NE(range.kind, CharacterKind::kWord);
    EXPECT_TRUE(range.first > next || range.kind != before);
    next = range.first + range.more + 1;
    before = range.kind;
  }
  EXPECT_LE(next, char32_t{0x110000});
}

}  // namespace
}  // namespace vela
