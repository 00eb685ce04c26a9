#include "indexer/collect/sign_entries.h"

#include <gtest/gtest.h>

#include <set>

#include "format/page_text.h"
#include "indexer/words/symbols.h"

namespace vela::indexer {
namespace {

// The gap that "a" leaves before the next word: `text` holds signs and blanks.
SignGap GapOf(std::u32string_view text) {
  SignGap gap;
  gap.Clear(false);
  for (const char32_t c : text) {
    if (c == U' ') {
      gap.AddBlank();
    } else {
      gap.AddSign(Utf8Text(c));
    }
  }
  return gap;
}

// The number of the gap, which a word ends.
uint32_t Find(SignEntries& signs, const SignGap& gap) {
  return signs.Add(FormOf(gap, false), gap.text, 1);
}

TEST(SignEntries, AGapHasTheClassOfItsBlanks) {
  const struct {
    const char32_t* gap;
    const char* text;
    char kind;  // s(uffix), p(refix), b(etween)
  } kCases[] = {
      {U", ", ",", 's'},
      {U" - ", "&#32;-", 's'},
      {U" (", "(", 'p'},
      {U"/", "/", 'b'},
      {U"): \u2013 ", "):&#32;\u2013", 's'},
      {U" \u2013 (", "\u2013&#32;(", 'p'},
      {U", <", ",&#32;&#60;", 'b'},
      {U"--------------", "------------", 'b'},
      {U"(~, ;.), ", "(~,&#32;;.),", 's'},
  };
  SignEntries signs;
  std::vector<uint32_t> numbers;
  for (const auto& c : kCases) numbers.push_back(Find(signs, GapOf(c.gap)));
  const ReservedEntries entries = signs.Finish();
  std::set<uint32_t> seen = {kPageEndWord, kRunEndWord};
  for (size_t i = 0; i < std::size(kCases); ++i) {
    SCOPED_TRACE(kCases[i].text);
    EXPECT_EQ(Find(signs, GapOf(kCases[i].gap)), numbers[i]);
    const uint32_t number = entries.finals[numbers[i]];
    EXPECT_TRUE(seen.insert(number).second);
    EXPECT_EQ(entries.texts[number], kCases[i].text);
    char kind = 'b';
    if (number <= entries.numbers.prefixes) kind = 'p';
    if (number <= entries.numbers.suffixes) kind = 's';
    EXPECT_EQ(kind, kCases[i].kind);
  }
  EXPECT_EQ(seen.size(), entries.texts.size());
  EXPECT_EQ(entries.numbers.limit, entries.texts.size() - 1);
  EXPECT_EQ(entries.numbers.noSpaces, entries.numbers.limit);
}

TEST(SignEntries, RareRunsKeepTheirFirstSign) {
  SignEntries signs;
  const std::u32string_view kSigns = U"!%()*+./:;=?@[]";
  const uint32_t rare = Find(signs, GapOf(U"<,,"));
  for (const char32_t a : kSigns) {
    for (const char32_t b : kSigns) {
      for (const char32_t c : kSigns) {
        const char32_t text[] = {a, b, c, 0};
        for (int i = 0; i < 2; ++i) Find(signs, GapOf(text));
      }
    }
  }
  const ReservedEntries entries = signs.Finish();
  EXPECT_LT(entries.texts.size(), 1100u);
  EXPECT_EQ(entries.texts[entries.finals[rare]], "&#60;");
  EXPECT_EQ(entries.finals.size(), 2 + 1 + 15 * 15 * 15u);
}

TEST(SignEntries, ASiteWithoutSigns) {
  const ReservedEntries entries = SignEntries().Finish();
  EXPECT_EQ(entries.texts.size(), 2u);
  EXPECT_EQ(entries.numbers.suffixes, kRunEndWord);
  EXPECT_EQ(entries.numbers.limit, kRunEndWord);
}

}  // namespace
}  // namespace vela::indexer
