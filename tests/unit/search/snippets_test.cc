#include "search/snippets.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "search/query.h"
#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;
using support::PageTextToken;

constexpr uint64_t kTokenSize = 4;

TEST(StartSnippets, Table) {
  const struct {
    const char* what;
    int32_t contextSize;
    uint32_t termsMatched;
    int32_t maxContextKeywords;
    int32_t tokenSize;
    int32_t pieces;
    int32_t wordsPerPiece;
    int64_t backOff;
  } cases[] = {
      {"20 words for two terms", 20, 2, 3, 4, 2, 10, 20},
      {"the words are rounded up, half of them down", 20, 3, 5, 4, 3, 7, 12},
      {"no more pieces than the setting allows", 5, 9, 3, 4, 3, 2, 4},
      {"one word a piece", 1, 2, 3, 4, 2, 1, 0},
      {"the size of a token counts", 20, 2, 3, 5, 2, 10, 25},
      {"no words at all", 0, 2, 3, 4, 2, 0, 0},
      {"no term matched", 20, 0, 3, 4, 0, 0, 0},
      {"no pieces allowed", 20, 2, 0, 4, 0, 0, 0},
      {"the most there can be", INT32_MAX, 2, 3, 5, 2, 1 << 30, int64_t{5} << 29},
      {"more terms than a number holds", 20, UINT32_MAX, INT32_MAX, 4, INT32_MAX, 1, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    settings.ContextSize = c.contextSize;
    settings.MaxContextKeywords = c.maxContextKeywords;
    settings.DictIDLen = c.tokenSize;
    ResultEntry entry;
    entry.termsMatched = c.termsMatched;
    const SnippetWalk walk = StartSnippets(settings, entry);
    EXPECT_EQ(walk.pieces, c.pieces);
    EXPECT_EQ(walk.wordsPerPiece, c.wordsPerPiece);
    EXPECT_EQ(walk.backOff, c.backOff);
  }
}

// Words "a" to "j" and a comma. A text is given by letters; "0" and "1" are the markers, "#" a
// number one beyond the words and "?" one beyond that.
IndexBuilder Letters(const std::string& text, size_t pagesBehind = 40) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4").Set("DictReservedLimit", "2").Set("ToLowerSearchWords", "1");
  builder.Set("DisplayContext", "1").Set("MaxContextKeywords", "5").Page(NewPage("a.html"));
  builder.Word("r0").Word("r1").Word(",");
  for (char letter = 'a'; letter <= 'j'; ++letter) builder.Word({&letter, 1});
  std::vector<PageTextToken> tokens;
  for (char c : text) {
    uint32_t word = c == ',' ? 2 : static_cast<uint32_t>(3 + c - 'a');
    if (c == '0' || c == '1') word = static_cast<uint32_t>(c - '0');
    if (c == '#') word = 13;
    if (c == '?') word = 14;
    tokens.push_back({word, 0});
  }
  tokens.resize(tokens.size() + pagesBehind);
  return builder.Tokens(tokens);
}

struct Walk {
  LoadedSite site;
  TermList terms;
  HighlightTerms highlight;
  bool marksWords = false;
  ResultEntry entry;
  SnippetStatus last = SnippetStatus::kDone;

  // The tokens at which the matches stand.
  Walk(const IndexBuilder& builder, int32_t contextSize, const std::vector<uint64_t>& matches)
      : site(builder) {
    site.settings.ContextSize = contextSize;
    entry.termsMatched = static_cast<uint32_t>(matches.size());
    uint64_t* const positions[] = {&entry.firstPosition, &entry.secondPosition,
                                   &entry.thirdPosition};
    for (size_t i = 0; i < matches.size() && i < 3; ++i) *positions[i] = kTokenSize * matches[i];
  }
  void Mark(const std::string& query) {
    marksWords = true;
    bool hasPhrase = false;
    ASSERT_TRUE(SplitQuery(query, terms, hasPhrase));
    ASSERT_TRUE(CollectHighlightTerms(highlight, terms, true));
  }
  // Every piece: its words, "<>" "<" or ">" behind those marked, "!" for each token left out.
  std::vector<std::string> Pieces() {
    PageTextReader text;
    text.file = site.files.pageText.bytes();
    text.tokenSize = site.settings.DictIDLen;
    const SnippetSource source = {.settings = site.settings,
                                  .dictionary = site.dictionary,
                                  .terms = highlight,
                                  .marksWords = marksWords,
                                  .text = text};
    SnippetWalk walk = StartSnippets(site.settings, entry);
    SnippetPiece piece;
    std::vector<std::string> pieces;
    while ((last = NextPiece(walk, source, entry, piece)) == SnippetStatus::kPiece) {
      std::string words(static_cast<size_t>(piece.damagedTokens), '!');
      for (int32_t i = 0; i < piece.count; ++i) {
        const SnippetSlot& slot = piece.slots[static_cast<size_t>(i)];
        words += site.dictionary.WordAt(slot.word);
        constexpr const char* kMarks[] = {"", "<>", "<", ">"};
        words += kMarks[static_cast<size_t>(slot.mark)];
      }
      pieces.push_back(words);
    }
    return pieces;
  }
};

using Pieces = std::vector<std::string>;

TEST(NextPiece, OnePieceTable) {
  const struct {
    const char* what;
    const char* text;
    int32_t words;
    uint64_t match;
    const char* expected;
  } cases[] = {
      {"half of the words stand ahead of the match", "abcdefghij0", 4, 5, "defg"},
      {"of an odd number the smaller half", "abcdefghij0", 5, 5, "defgh"},
      {"one word is the match", "abcdefghij0", 1, 5, "f"},
      {"the first page's match near the start has nothing ahead", "abcdef0", 4, 1, "bcde"},
      {"exactly as far as the half, too", "abcdef0", 4, 2, "cdef"},
      {"one farther", "abcdef0", 4, 3, "bcde"},
      {"a match at the start of a later page", "abc0defgh0", 4, 4, "defg"},
      {"one word behind the start of its page", "abc0defgh0", 4, 5, "defg"},
      {"the end of its page", "abcdef0ghij0", 6, 4, "bcdef"},
      {"the end of a run of text ahead", "abc1defgh0", 4, 4, "defg"},
      {"the end of a run of text behind", "abcde1fgh0", 6, 4, "bcde"},
      {"pages of one word", "a0b0c0d0e0", 6, 6, "d"},
      {"a marker at the match itself empties the piece", "abcd0efgh0", 4, 4, "efgh"},
      {"punctuation is a word, too", "ab,cd,ef0", 4, 4, ",cd,"},
      {"tokens of another index are left out", "ab#cd#ef0", 4, 4, "!!cdef"},
      {"numbers far beyond end the page", "abc?defgh0", 4, 4, "defg"},
      {"also behind the match", "abcd?efgh0", 4, 3, "bcd"},
      {"no words wanted", "abcdef0", 0, 3, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Walk(Letters(c.text), c.words, {c.match}).Pieces(), Pieces{c.expected});
  }
}

TEST(NextPiece, SeveralPiecesTable) {
  const struct {
    const char* what;
    const char* text;
    int32_t words;  // of all pieces together
    std::vector<uint64_t> matches;
    Pieces expected;
  } cases[] = {
      {"far apart", "abcdefghij0", 4, {2, 7}, {"bc", "gh"}},
      {"the second begins where the first ended", "abcdefghij0", 8, {3, 4}, {"bcde", "fghi"}},
      {"also when it begins inside by one", "abcdefghij0", 8, {3, 6}, {"bcde", "fghi"}},
      {"but not when it begins behind", "abcdefghij0", 8, {3, 7}, {"bcde", "fghi"}},
      {"one ahead of the first may repeat it", "abcdefghij0", 8, {5, 3}, {"defg", "bcde"}},
      {"the same place twice may, too", "abcdefghij0", 8, {4, 4}, {"cdef", "cdef"}},
      {"ahead of the one before, behind the first",
       "abcdefghij0",
       12,
       {3, 7, 4},
       {"bcde", "fghi", "j"}},
      {"the third place serves the fourth piece",
       "abcdefghij0",
       8,
       {2, 4, 7, 9},
       {"bc", "de", "gh", "ij"}},
      {"the end of the page stops all", "abcd0efghij0", 8, {3, 7}, {"bcd"}},
      {"a page without room ahead stops all", "abcd0efghij0", 16, {1, 9}, {"bcd"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Walk(Letters(c.text), c.words, c.matches).Pieces(), c.expected);
  }
}

TEST(NextPiece, FurtherPiecesOnlyWhileTheStreamIsNotAtItsEnd) {
  // The stream is read 128 bytes at a time: 32 tokens from the start of the first piece on.
  const struct {
    size_t behind;
    Pieces expected;
  } cases[] = {{21, {"ab"}}, {22, {"ab", "gh"}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.behind);
    EXPECT_EQ(Walk(Letters("abcdefghij", c.behind), 4, {0, 7}).Pieces(), c.expected);
  }
}

TEST(NextPiece, PositionBeyondTheData) {
  for (uint64_t match : {uint64_t{51}, uint64_t{100000}, uint64_t{1} << 36}) {
    EXPECT_EQ(Walk(Letters("abcdefghij0"), 4, {match, 3}).Pieces(), Pieces{""});
  }
}

TEST(NextPiece, NoPieces) {
  EXPECT_EQ(Walk(Letters("abc0"), 4, {}).Pieces(), Pieces{});
  Walk none(Letters("abc0"), 4, {1});
  none.site.settings.MaxContextKeywords = -1;
  EXPECT_EQ(none.Pieces(), Pieces{});
}

TEST(NextPiece, MarksTable) {
  const struct {
    const char* what;
    const char* query;
    const char* expected;
  } cases[] = {
      {"the match in any case", "x", "b,cd<>,ef"},
      {"a term", "e", "b,cd<>,e<>f"},
      {"in any case of letters", "E", "b,cd<>,e<>f"},
      {"a pattern", "?", "b<>,<>c<>d<>,<>e<>f<>"},
      {"a phrase", "\"c d\"", "b,c<d>,ef"},
      {"a phrase across punctuation", "\"b c\"", "b<,c>d<>,ef"},
      {"a phrase around the match", "\"c d e\"", "b,c<d<>,e>f"},
      {"a phrase cut off by the piece", "\"e f g\"", "b,cd<>,ef"},
      {"a phrase that breaks off", "\"b d\"", "b,cd<>,ef"},
      {"the first term that matches", "\"e f\" f", "b,cd<>,e<f>"},
      {"a word ahead of its phrase", "e \"e f\"", "b,cd<>,e<>f"},
      {"an exclusion marks nothing", "d -e", "b,cd<>,ef"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Walk walk(Letters("ab,cd,efg0"), 7, {4});
    walk.Mark(c.query);
    EXPECT_EQ(walk.Pieces(), Pieces{c.expected});
  }
}

TEST(NextPiece, NothingIsMarkedUnlessTheRequestMarksWords) {
  Walk walk(Letters("abcdef0"), 4, {3});
  walk.Mark("d");
  walk.marksWords = false;
  EXPECT_EQ(walk.Pieces(), Pieces{"bcde"});
}

TEST(NextPiece, OutOfMemory) {
  Walk walk(Letters("abcdef0"), 4, {3});
  g_failAllocationNumber = 1;
  EXPECT_EQ(walk.Pieces(), Pieces{});
  g_failAllocationNumber = 0;
  EXPECT_EQ(walk.last, SnippetStatus::kNoMemory);
}

TEST(NextPiece, HugePieceOfASmallText) {
  EXPECT_EQ(Walk(Letters("abcdefghij"), INT32_MAX, {0}).Pieces(), Pieces{"abcdefghij"});
}

}  // namespace
}  // namespace vela
