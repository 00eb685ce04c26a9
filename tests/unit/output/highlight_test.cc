#include "output/highlight.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "search/query.h"
#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::Repeat;

using Tokens = std::vector<std::pair<std::string, TokenKind>>;

constexpr TokenKind kWord = TokenKind::kWord;
constexpr TokenKind kSingle = TokenKind::kSingle;

Tokens TokensOf(std::string_view text, std::string_view joinChars) {
  Tokens tokens;
  Tokenizer tokenizer{text};
  std::string_view token;
  for (;;) {
    const TokenKind kind = NextToken(tokenizer, joinChars, token);
    if (kind == TokenKind::kNone) return tokens;
    tokens.emplace_back(token, kind);
  }
}

TEST(NextToken, PiecesOfScriptsWithoutBlanksAreWords) {
  Tokenizer tokenizer{"GNUの本、x", true};
  std::string_view token;
  std::string words;
  while (NextToken(tokenizer, "", token) != TokenKind::kNone) words.append(token).append("|");
  EXPECT_EQ(words, "GNU|の|本|、x|");
}

TEST(NextToken, Table) {
  const struct {
    const char* what;
    const char* text;
    const char* joinChars;
    Tokens expected;
  } cases[] = {
      {"nothing is left of nothing", "", "", {}},
      {"one word", "cat", "", {{"cat", kWord}}},
      {"blanks are tokens",
       "a  b",
       "",
       {{"a", kWord}, {" ", kSingle}, {" ", kSingle}, {"b", kWord}}},
      {"punctuation, too", "cat,", "", {{"cat", kWord}, {",", kSingle}}},
      {"a tab breaks nothing", "a\tb", "", {{"a\tb", kWord}}},
      {"bytes above ASCII belong to words",
       "caf\u00E9!",
       "",
       {{"caf\u00E9", kWord}, {"!", kSingle}}},
      {"a hyphen breaks", "e-mail", "", {{"e", kWord}, {"-", kSingle}, {"mail", kWord}}},
      {"unless it joins", "e-mail", "-", {{"e-mail", kWord}}},
      {"it joins to a digit", "a-1", "-", {{"a-1", kWord}}},
      {"not to a blank",
       "e- mail",
       "-",
       {{"e", kWord}, {"-", kSingle}, {" ", kSingle}, {"mail", kWord}}},
      {"it joins to the end", "mail-", "-", {{"mail-", kWord}}},
      {"and to its like", "e-'mail", "-'", {{"e-'mail", kWord}}},
      {"not to other punctuation", "e-!", "-", {{"e", kWord}, {"-", kSingle}, {"!", kSingle}}},
      {"not to a letter above ASCII",
       "e-\u00E9",
       "-",
       {{"e", kWord}, {"-", kSingle}, {"\u00E9", kWord}}},
      {"a reference is one token", "&#38;", "", {{"&#38;", kSingle}}},
      {"it ends a word", "a&#38;b", "", {{"a", kWord}, {"&#38;", kSingle}, {"b", kWord}}},
      {"of at most 7 characters", "&#8217;", "", {{"&#8217;", kSingle}}},
      {"one over is punctuation",
       "&#08217;",
       "",
       {{"&", kSingle}, {"#", kSingle}, {"08217", kWord}, {";", kSingle}}},
      {"without an end it is none", "&#38", "", {{"&", kSingle}, {"#", kSingle}, {"38", kWord}}},
      {"a named reference is none", "&amp;", "", {{"&", kSingle}, {"amp", kWord}, {";", kSingle}}},
      {"a reference wins over joining",
       "a&#38;b",
       "&#;",
       {{"a", kWord}, {"&#38;", kSingle}, {"b", kWord}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(TokensOf(c.text, c.joinChars), c.expected);
  }
}

TEST(NextToken, FourHundredCharactersWithoutABreakEndTheWalk) {
  const std::string word(400, 'a');
  EXPECT_EQ(TokensOf(std::string(399, 'a') + " b", ""),
            (Tokens{{std::string(399, 'a'), kWord}, {" ", kSingle}, {"b", kWord}}));
  EXPECT_EQ(TokensOf(word, ""), (Tokens{{word, kWord}}));
  EXPECT_EQ(TokensOf(word + " b", ""), (Tokens{{word, kWord}}));
  EXPECT_EQ(TokensOf(word + "a b", ""), (Tokens{{word, kWord}}));
  // The count begins with every token.
  EXPECT_EQ(TokensOf("b " + word, ""), (Tokens{{"b", kWord}, {" ", kSingle}, {word, kWord}}));
}

TEST(NextToken, EveryByteIsReturnedOnce) {
  const std::string text = "The e-mail, of &#38; \"cats\" - and so'n on&#1234567;--";
  for (const char* joinChars : {"", "-", "-'&#;", ","}) {
    SCOPED_TRACE(joinChars);
    std::string joined;
    for (const auto& token : TokensOf(text, joinChars)) joined += token.first;
    EXPECT_EQ(joined, text);
  }
}

struct Rules {
  const char* joinChars = "";
  bool foldCase = true;
  bool utf8 = false;
  bool cutsRuns = false;
};

// The text with the words of the query marked; "[" and "]" stand for the marks.
std::string Marked(std::string_view text, std::string_view query, const Rules& rules = {}) {
  TermList terms;
  bool hasPhrase = false;
  EXPECT_TRUE(SplitQuery(query, terms, hasPhrase));
  HighlightTerms highlight;
  EXPECT_TRUE(CollectHighlightTerms(highlight, terms, true));
  OwnedArray<char> marked;
  size_t length = 0;
  EXPECT_TRUE(HighlightText(text, highlight,
                            {{rules.foldCase, rules.utf8}, rules.joinChars, rules.cutsRuns}, marked,
                            length));
  EXPECT_EQ(marked[length], '\0');
  std::string out(marked.data(), length);
  for (const auto& [tag, mark] :
       {std::pair{"<span class=\"highlight\">", "["}, std::pair{"</span>", "]"}}) {
    for (size_t at = out.find(tag); at != out.npos; at = out.find(tag)) {
      out.replace(at, std::string_view(tag).size(), mark);
    }
  }
  return out;
}

TEST(HighlightText, TheTags) {
  TermList terms;
  bool hasPhrase = false;
  ASSERT_TRUE(SplitQuery("cat", terms, hasPhrase));
  HighlightTerms highlight;
  ASSERT_TRUE(CollectHighlightTerms(highlight, terms, true));
  OwnedArray<char> marked;
  size_t length = 0;
  ASSERT_TRUE(HighlightText("The cat sat.", highlight, {{true, false}, ""}, marked, length));
  EXPECT_STREQ(marked.data(), "The <span class=\"highlight\">cat</span> sat.");
  EXPECT_EQ(length, 43U);
}

TEST(HighlightText, WordsTable) {
  const struct {
    const char* what;
    const char* text;
    const char* query;
    const char* expected;
  } cases[] = {
      {"a word in a sentence", "The cat sat.", "cat", "The [cat] sat."},
      {"every time it stands there", "cat, Cat; CAT", "cat", "[cat], [Cat]; [CAT]"},
      {"not inside another word", "cats scat", "cat", "cats scat"},
      {"no term", "The cat", "", "The cat"},
      {"several terms", "a cat and a dog", "dog cat", "a [cat] and a [dog]"},
      {"a pattern", "cat cart scat", "ca*", "[cat] [cart] scat"},
      {"a substring marks whole words", "cart scat", "*ca*", "[cart] [scat]"},
      {"a pattern that fits all leaves blanks", "a b", "*", "[a] [b]"},
      {"but marks punctuation", "a, b", "?", "[a][,] [b]"},
      {"an exclusion marks nothing", "cat dog", "cat -dog", "[cat] dog"},
      {"markup in the text passes unchanged", "<b>cat</b>", "cat", "<b>[cat]</b>"},
      {"references pass unchanged", "a &#38; cat", "cat 38", "a &#38; [cat]"},
      {"a text that holds the inner marks", "[;!]cat[!;]", "dog", "[cat]"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Marked(c.text, c.query), c.expected);
  }
}

TEST(HighlightText, PhrasesTable) {
  const struct {
    const char* what;
    const char* text;
    const char* query;
    const char* expected;
  } cases[] = {
      {"one run", "a big cat", "\"big cat\"", "a [big cat]"},
      {"a phrase that does not follow", "a big dog", "\"big cat\"", "a big dog"},
      {"punctuation is carried along", "Big, &#38; (cat)", "\"big cat\"", "[Big, &#38; (cat])"},
      {"a phrase that breaks off is tried again", "big big cat", "\"big cat\"", "big [big cat]"},
      {"also within what it had taken", "a b a b c", "\"a b c\"", "a b [a b c]"},
      {"a phrase cut off by the end", "the big", "\"big cat\"", "the big"},
      {"at the end behind punctuation", "the big, ", "\"big cat\"", "the big, "},
      {"its own words are not marked alone", "cat big", "\"big cat\"", "cat big"},
      {"the first term that matches", "big cat", "\"big cat\" big", "[big cat]"},
      {"a word ahead of the phrase", "big cat", "big \"big cat\"", "[big] cat"},
      {"the words it gave back can match", "big dog", "\"big cat\" dog", "big [dog]"},
      {"two phrases in a row", "big cat big cat", "\"big cat\"", "[big cat] [big cat]"},
      {"patterns in phrases are plain words", "big cat", "\"big c*\"", "big cat"},
      {"a phrase may begin with a mark", "* b", "\"* b\"", "[* b]"},
      {"from the first mark on", "a **! b", "\"* b\"", "a [**! b]"},
      {"again behind the phrase", "* b * b", "\"* b\"", "[* b] [* b]"},
      {"again behind a word", "* c * b", "\"* b\"", "* c [* b]"},
      {"and behind one that broke off", "* b * b c", "\"* b c\"", "* b [* b c]"},
      {"another mark in the same run", "*? b", "\"* c\" \"? b\"", "*[? b]"},
      {"a reference is another mark", "&&#38; b", "\"& b\"", "[&&#38; b]"},
      {"three words", "one two three four", "\"two three four\"", "one [two three four]"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Marked(c.text, c.query), c.expected);
  }
}

TEST(HighlightText, PiecesOfScriptsWithoutBlanks) {
  const Rules rules = {.utf8 = true, .cutsRuns = true};
  EXPECT_EQ(Marked("第4章 暗号化と暗号", "\"暗 号\"", rules), "第4章 [暗号]化と[暗号]");
  EXPECT_EQ(Marked("Debian パッケージ", "\"debian パ ッ\"", rules), "[Debian パッ]ケージ");
  EXPECT_EQ(Marked("日本語", "本", rules), "日[本]語");
  EXPECT_EQ(Marked("暗号化", "\"暗 号\"", {.utf8 = true}), "暗号化");
}

TEST(HighlightText, CaseAndCharacterSet) {
  EXPECT_EQ(Marked("Cat cat", "cat", {"", false, false}), "Cat [cat]");
  EXPECT_EQ(Marked("Cat cat", "C?t", {"", false, false}), "[Cat] cat");
  EXPECT_EQ(Marked("\u00C9COLE", "\u00E9cole", {"", true, true}), "[\u00C9COLE]");
  EXPECT_EQ(Marked("\u00C9COLE", "\u00E9cole", {"", false, true}), "\u00C9COLE");
}

TEST(HighlightText, JoinCharactersBecomeReferences) {
  EXPECT_EQ(Marked("my e-mail", "e-mail", {"-"}), "my [e&#45;mail]");
  EXPECT_EQ(Marked("my e&#45;mail", "e-mail", {"-"}), "my [e&#45;mail]");
  EXPECT_EQ(Marked("my e&#x2d;mail", "e-mail", {"-"}), "my [e&#45;mail]");
  EXPECT_EQ(Marked("it&#39;s it's", "it's", {"'"}), "[it&#39;s] [it&#39;s]");
  EXPECT_EQ(Marked("a - b", "dog", {"-"}), "a &#45; b");
}

TEST(HighlightText, LongWordEndsTheText) {
  const std::string word(400, 'a');
  EXPECT_EQ(Marked("cat " + word + "b cat", "cat"), "[cat] " + word);
  EXPECT_EQ(Marked("cat " + word, "cat"), "[cat] " + word);
  EXPECT_EQ(Marked(word + " cat", word), "[" + word + "]");
  // Inside a phrase that breaks off, too: nothing is written twice.
  EXPECT_EQ(Marked("big " + word + "b cat", "\"big cat\""), "big " + word);
}

TEST(HighlightText, TextOfMarkedCharactersFindsItsRoom) {
  // One character a word takes the most room: 32 bytes, and 36 for a join character.
  const std::string text = Repeat("a ", 2000);
  EXPECT_EQ(Marked(text, "a"), Repeat("[a] ", 2000));
  EXPECT_EQ(Marked(Repeat("-,", 2000), "?", {"-"}), Repeat("[&#45;][,]", 2000));
  EXPECT_EQ(Marked("a", "a"), "[a]");
}

TEST(HighlightText, OutOfMemoryAtEveryAllocation) {
  TermList terms;
  bool hasPhrase = false;
  ASSERT_TRUE(SplitQuery("cat \"big dog\"", terms, hasPhrase));
  HighlightTerms highlight;
  ASSERT_TRUE(CollectHighlightTerms(highlight, terms, true));
  // The number of blocks is the same whatever the length of the text.
  for (size_t words : {size_t{1}, size_t{1000}}) {
    const std::string text = Repeat("cat big dog ", words);
    int32_t failures = 0;
    for (;; ++failures) {
      OwnedArray<char> marked;
      size_t length = 0;
      g_failAllocationNumber = failures + 1;
      const bool done = HighlightText(text, highlight, {{true, false}, ""}, marked, length);
      g_failAllocationNumber = 0;
      if (done) break;
    }
    EXPECT_EQ(failures, 4);
  }
}

}  // namespace
}  // namespace vela
