#include "text/slips.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

WordLetters LettersOf(std::string_view word, bool utf8 = true) {
  WordLetters letters;
  EXPECT_TRUE(ReadLetters(word, utf8, letters)) << word;
  return letters;
}

uint32_t CountBetween(std::string_view typed, std::string_view word) {
  const WordLetters letters = LettersOf(typed);
  return SlipCounter(letters).CountTo(LettersOf(word));
}

int32_t CostOf(std::string_view typed, std::string_view meant) {
  return SlipCost(LettersOf(typed), LettersOf(meant));
}

TEST(Slips, LettersTable) {
  const struct {
    const char* what;
    std::string word;
    bool utf8;
    bool isRead;
    size_t count;
  } cases[] = {
      {"none", "", true, true, 0},
      {"letters of one byte", "cafe", true, true, 4},
      {"characters", "caf\u00E9", true, true, 4},
      {"bytes of a single-byte set", "caf\xE9", false, true, 4},
      {"as many as there is room for", std::string(32, 'a'), true, true, 32},
      {"one more", std::string(33, 'a'), true, false, 0},
      {"a stray continuation byte", "a\x80", true, false, 0},
      {"a character cut short", "a\xC3", true, false, 0},
      {"a character cut by a letter", "\xE2\x82z", true, false, 0},
      {"a longer form than is needed", "\xC1\xA1", true, false, 0},
      {"half a pair", "\xED\xA0\x80", true, false, 0},
      {"beyond the last character", "\xF4\x90\x80\x80", true, false, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    WordLetters letters;
    EXPECT_EQ(ReadLetters(c.word, c.utf8, letters), c.isRead);
    EXPECT_EQ(letters.count, c.count);
  }
}

TEST(Slips, CountTable) {
  const struct {
    const char* what;
    const char* typed;
    const char* word;
    uint32_t count;
  } cases[] = {
      {"the word itself", "function", "function", 0},
      {"neighbours swapped", "fucntion", "function", 1},
      {"the first two swapped", "ufnction", "function", 1},
      {"a letter left out", "dictonary", "dictionary", 1},
      {"the last left out", "functio", "function", 1},
      {"one put in", "funnction", "function", 1},
      {"one in the place of another", "fanction", "function", 1},
      {"two slips", "paramter", "parameters", 2},
      {"a swap and a letter left out", "fucntio", "function", 2},
      {"letters swapped around another", "abc", "cba", 2},
      {"nothing is changed twice: a swap with a letter put between", "ca", "abc", 3},
      {"characters count once", "caf\u00E9", "cafe", 1},
      {"nothing typed", "", "abc", 3},
      {"nothing meant", "abc", "", 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(CountBetween(c.typed, c.word), c.count);
    EXPECT_EQ(CountBetween(c.word, c.typed), c.count);
  }
}

TEST(Slips, CountsInTheLongestWords) {
  const std::string same(kWordLettersLimit, 'a');
  EXPECT_EQ(CountBetween(same, same), 0u);
  EXPECT_EQ(CountBetween(same, "b" + same.substr(2) + "c"), 2u);
}

// What no slip within the number can have done is known from the letters alone.
TEST(Slips, ASlipChangesTwoLettersOfTheSetAtMost) {
  const char* const pairs[][2] = {{"fucntion", "function"},  {"funtion", "function"},
                                  {"fanction", "function"},  {"caf\u00E9", "cafe"},
                                  {"funcction", "function"}, {"x", "function"}};
  for (const auto& pair : pairs) {
    SCOPED_TRACE(pair[0]);
    const uint32_t differing = LetterSetOf(LettersOf(pair[0])) ^ LetterSetOf(LettersOf(pair[1]));
    EXPECT_LE(static_cast<uint32_t>(__builtin_popcount(differing)),
              2 * CountBetween(pair[0], pair[1]));
  }
  EXPECT_EQ(LetterSetOf(LettersOf("abca")), 7u);
  EXPECT_NE(LetterSetOf(LettersOf("\u00E9")), 0u);
}

TEST(Slips, LikelySlipsCostLess) {
  EXPECT_EQ(CostOf("function", "function"), 0);
  const int32_t random = CostOf("fumction", "fuqction");
  EXPECT_LT(CostOf("fucntion", "function"), random);   // swapped
  EXPECT_LT(CostOf("functtion", "function"), random);  // doubled
  EXPECT_LT(CostOf("adress", "address"), random);      // one of two left out
  EXPECT_LT(CostOf("funtion", "function"), random);    // left out
  EXPECT_LT(CostOf("fumction", "function"), random);   // m lies beside n
  EXPECT_LT(CostOf("funcsion", "funcaion"), random);   // a and s, in the row of the home keys
  EXPECT_LT(CostOf("grammer", "grammar"), random);     // a vowel for another
  EXPECT_LT(CostOf("functrion", "function"), CostOf("functzion", "function"));  // r touched with t
  // What changes the first letter costs more, but a swap of the first two is one as others are.
  EXPECT_GT(CostOf("gunction", "function"), CostOf("fumction", "function"));
  EXPECT_GT(CostOf("unction", "function"), CostOf("funtion", "function"));
  EXPECT_LT(CostOf("ufnction", "function"), CostOf("unction", "function"));
  // Two slips cost what both do.
  EXPECT_EQ(CostOf("fucntino", "function"), 2 * CostOf("fucntion", "function"));
  EXPECT_EQ(CostOf("", "ab") - CostOf("", "a"), CostOf("ac", "abc"));
}

TEST(Slips, KeysBesideEachOther) {
  const int32_t beside = CostOf("xqx", "xwx");
  // Rows stand half a key apart: s lies below w and e and above z and x.
  for (const char* keys : {"sw", "sa", "sd", "sz", "sx", "ws", "zs", "pl"}) {
    SCOPED_TRACE(keys);
    EXPECT_EQ(CostOf(std::string{'x', keys[0], 'x'}, std::string{'x', keys[1], 'x'}), beside);
  }
  for (const char* keys : {"sq", "sc", "sf", "sr", "qz", "pm", "lm"}) {
    SCOPED_TRACE(keys);
    EXPECT_GT(CostOf(std::string{'x', keys[0], 'x'}, std::string{'x', keys[1], 'x'}), beside);
  }
}

}  // namespace
}  // namespace vela
