// Marking a text must cost no more than in proportion to its length. The marking is compiled once
// more here, with a count of the characters that it looks at.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "output/highlight.h"
#include "search/query.h"
#include "support/loaded_site.h"
#include "text/ascii.h"
#include "text/edit.h"
#include "text/join_chars.h"

namespace vela {
namespace {

int64_t g_charactersSeen = 0;

bool CountedIsPunctuation(char c) {
  ++g_charactersSeen;
  return IsPunctuation(c);
}

}  // namespace
}  // namespace vela

// Every character but a blank is asked whether it is punctuation, each time it is looked at.
#define IsPunctuation CountedIsPunctuation
#define HighlightText CountedHighlightText
#define NextToken CountedNextToken
namespace vela {
bool CountedHighlightText(std::string_view text, const HighlightTerms& terms,
                          const HighlightRules& rules, OwnedArray<char>& marked, size_t& length);
TokenKind CountedNextToken(Tokenizer& tokenizer, std::string_view joinChars,
                           std::string_view& token);
}  // namespace vela
#include "output/highlight.cc"  // NOLINT(bugprone-suspicious-include)
#undef IsPunctuation
#undef HighlightText
#undef NextToken

namespace vela {
namespace {

using support::Repeat;

int64_t CharactersSeen(std::string_view text, std::string_view query) {
  TermList terms;
  bool hasPhrase = false;
  EXPECT_TRUE(SplitQuery(query, terms, hasPhrase));
  HighlightTerms highlight;
  EXPECT_TRUE(CollectHighlightTerms(highlight, terms, true));
  OwnedArray<char> marked;
  size_t length = 0;
  g_charactersSeen = 0;
  EXPECT_TRUE(CountedHighlightText(text, highlight, {{true, false}, "-'"}, marked, length));
  return g_charactersSeen;
}

TEST(HighlightWork, GrowsInProportionToTheText) {
  const struct {
    const char* what;
    const char* piece;
    const char* query;
    int64_t looksPerCharacter;  // at most
  } cases[] = {
      {"words", "the cat sat on the mat ", "cat mat", 2},
      {"no match at all", "the cat sat on the mat ", "zebra", 2},
      {"one word after another", "a ", "a", 2},
      {"punctuation only", "!,", "cat", 2},
      {"join characters only", "e-'", "e-mail", 2},
      {"references", "&#38;&#38;", "cat", 2},
      {"pieces of references", "&#&#", "cat", 2},
      {"a phrase found everywhere", "big cat ", "\"big cat\"", 4},
      {"a phrase that breaks off everywhere", "big dog ", "\"big cat\"", 4},
      {"a phrase that breaks off at each word", "a ", "\"a a a a b\"", 12},
      {"a phrase across punctuation", "big!!!!!!!!dog ", "\"big cat\"", 4},
      {"marks that begin no phrase", "*", "\"* b\"", 4},
      {"several kinds of them", "*?#", "\"* b\" \"? b\" \"# b\"", 6},
      {"phrases that break off behind a word", "**** a ", "\"* a b\"", 8},
      {"several phrases", "a b c ", "\"a b d\" \"b c d\" \"c a d\"", 14},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    for (size_t times : {size_t{10}, size_t{100}, size_t{1000}}) {
      const std::string text = Repeat(c.piece, times);
      EXPECT_LE(CharactersSeen(text, c.query),
                c.looksPerCharacter * static_cast<int64_t>(text.size()));
    }
  }
}

TEST(HighlightWork, LongRunsOfMarks) {
  const std::string text = Repeat("*", 1000) + "a" + Repeat("*", 1000) + "c";
  EXPECT_LE(CharactersSeen(text, "\"* a b\""), 8 * static_cast<int64_t>(text.size()));
}

TEST(HighlightWork, NothingBehindAnEndlessWordIsLookedAt) {
  const std::string start = "cat " + std::string(400, 'a');
  const int64_t seen = CharactersSeen(start, "cat");
  EXPECT_EQ(CharactersSeen(start + Repeat("a b", 1000), "cat"), seen);
}

}  // namespace
}  // namespace vela
