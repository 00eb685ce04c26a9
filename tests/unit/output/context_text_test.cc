#include "output/context_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "search/query.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;
using support::PageTextToken;

// Words 2 to 4 take no blank before them, 5 and 6 one before and none behind, 7 none at all.
IndexBuilder Punctuated() {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4")
      .Set("DictReservedLimit", "7")
      .Set("DictReservedSuffixes", "4")
      .Set("DictReservedPrefixes", "6")
      .Set("DictReservedNoSpaces", "7")
      .Set("ToLowerSearchWords", "1")
      .Set("DisplayContext", "1")
      .Set("ContextSize", "10")
      .Set("MaxContextKeywords", "3")
      .Page(NewPage("a.html", "A"));
  for (const char* word : {"r0", "r1", ".", ",", ")", "(", "[", "-", "a", "b", "c"}) {
    builder.Word(word);
  }
  return builder;
}

// Tokens named by their words, between blanks; "0" and "1" are the markers.
std::vector<PageTextToken> Tokens(const IndexBuilder& builder, const std::string& text) {
  std::vector<PageTextToken> tokens;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find(' ', at), text.size());
    const std::string word = text.substr(at, end - at);
    const bool isMarker = word == "0" || word == "1";
    tokens.push_back(
        {isMarker ? static_cast<uint32_t>(word[0] - '0') : builder.WordNumber(word), 0});
    at = end + 1;
  }
  return tokens;
}

// The context of one result. The stream goes on far behind the text, as that of a large site does.
struct Context {
  LoadedSite site;
  TermList terms;
  HighlightTerms highlight;
  bool marksWords = false;
  OutputSections sections;
  support::CapturedResponse captured;
  ResultEntry entry;

  Context(IndexBuilder builder, const std::string& tokens, bool xml = false)
      : site(builder.Tokens(Tokens(builder, tokens)).Tokens(std::vector<PageTextToken>(40))),
        captured(xml) {
    EXPECT_TRUE(AllocateSections(sections, 10));
    entry.termsMatched = 1;
  }
  void Mark(const std::string& query) {
    marksWords = true;
    bool hasPhrase = false;
    ASSERT_TRUE(SplitQuery(query, terms, hasPhrase));
    ASSERT_TRUE(CollectHighlightTerms(highlight, terms, true));
  }
  std::string Write(const std::string& title = "") {
    PageTextReader text;
    text.file = site.files.pageText.bytes();
    text.tokenSize = site.settings.DictIDLen;
    const SnippetSource source = {.settings = site.settings,
                                  .dictionary = site.dictionary,
                                  .terms = highlight,
                                  .marksWords = marksWords,
                                  .text = text};
    if (captured.response.xml) {
      WriteContextXml(captured.response, source, entry, title);
      return captured.Text();
    }
    AppendContextHtml(sections, source, entry, title);
    return std::string(sections.results.view());
  }
};

std::string Html(const std::string& pieces) {
  return "<div class=\"context\">\n" + pieces + "</div>\n";
}

std::string OnePiece(const std::string& text) {
  return Html(" <b>...</b> " + text + " <b>...</b>");
}

TEST(ContextText, SpacingTable) {
  const struct {
    const char* what;
    const char* tokens;
    const char* expected;
  } cases[] = {
      {"words", "a b c 0", " a b c"},
      {"a comma hangs on the word before it", "a , b 0", " a, b"},
      {"a bracket on the one behind it", "a ( b ) c 0", " a (b) c"},
      {"a hyphen on both", "a - b c 0", " a-b c"},
      {"punctuation in a row", "a ) . , b 0", " a)., b"},
      {"a bracket at the start", "( a 0", " (a"},
      {"a comma at the start", ", a 0", ", a"},
      {"a hyphen at the start", "- a b 0", "-a b"},
      {"a second bracket uses the blank up", "a ( [ b 0", " a ([ b"},
      {"a second hyphen uses nothing up", "a - - b 0", " a--b"},
      {"a comma behind a hyphen", "a - , b 0", " a-, b"},
      {"a bracket behind a hyphen", "a - ( b 0", " a-( b"},
      {"punctuation at the end", "a ( 0", " a ("},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Context(Punctuated(), c.tokens).Write(), OnePiece(c.expected));
  }
}

TEST(ContextText, BetweenPiecesOfScriptsWithoutBlanksStandsNothing) {
  IndexBuilder builder = Punctuated().Set("UseUTF8", "1");
  for (const char* word : {"\u6697", "\u53F7", "\u0E17\u0E35\u0E48"}) builder.Word(word);
  const struct {
    const char* what;
    const char* tokens;
    const char* expected;
  } cases[] = {
      {"two pieces", "\u6697 \u53F7 0", " \u6697\u53F7"},
      {"a piece with marks", "\u0E17\u0E35\u0E48 \u53F7 0", " \u0E17\u0E35\u0E48\u53F7"},
      {"words beside pieces", "a \u6697 \u53F7 b c 0", " a \u6697\u53F7 b c"},
      {"an entry without blanks", "\u6697 - \u53F7 0", " \u6697-\u53F7"},
      {"a comma", "\u6697 , \u53F7 0", " \u6697, \u53F7"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    IndexBuilder cutting = builder;
    EXPECT_EQ(Context(cutting.Set("CutRuns", "1"), c.tokens).Write(), OnePiece(c.expected));
  }
  EXPECT_EQ(Context(builder, "\u6697 \u53F7 0").Write(), OnePiece(" \u6697 \u53F7"));
}

TEST(ContextText, PiecesAreMarkedAsOne) {
  IndexBuilder builder = Punctuated().Set("UseUTF8", "1").Set("CutRuns", "1");
  for (const char* word : {"\u6697", "\u53F7", "\u5316"}) builder.Word(word);
  Context context(builder, "\u6697 \u53F7 \u5316 a 0");
  context.Mark("\"\u6697 \u53F7\"");
  EXPECT_EQ(context.Write(), OnePiece(" <span class=\"highlight\">\u6697\u53F7</span>\u5316 a"));
}

TEST(ContextText, Xml) {
  EXPECT_EQ(Context(Punctuated(), "a , b 0", true).Write(),
            "<vela:context> ...  a, b ...</vela:context>\n");
}

TEST(ContextText, SeveralPieces) {
  const struct {
    bool xml;
    const char* expected;
  } cases[] = {
      {false, "<div class=\"context\">\n <b>...</b>  a b <b>...</b>  b c <b>...</b></div>\n"},
      {true, "<vela:context> ...  a b ...  b c ...</vela:context>\n"},
  };
  for (const auto& c : cases) {
    Context context(Punctuated().Set("ContextSize", "4"), "a b a a a b c 0", c.xml);
    context.entry.termsMatched = 2;
    context.entry.secondPosition = 24;  // the pieces are of two words, the second begins at token 5
    EXPECT_EQ(context.Write(), c.expected);
  }
}

TEST(ContextText, NothingToShow) {
  Context none(Punctuated(), "a b 0");
  none.entry.termsMatched = 0;
  EXPECT_EQ(none.Write(), Html(""));
  Context noneInXml(Punctuated().Set("MaxContextKeywords", "0"), "a b 0", true);
  EXPECT_EQ(noneInXml.Write(), "<vela:context></vela:context>\n");
}

TEST(ContextText, PieceWithoutWordsIsWritten) {
  EXPECT_EQ(Context(Punctuated(), "0 a").Write("A"), OnePiece(""));
}

TEST(ContextText, TitleTable) {
  const struct {
    const char* what;
    const char* title;
    bool isShown;
  } cases[] = {
      {"says the same", "a, b", false}, {"blanks at the ends do not count", "  a, b ", false},
      {"case does", "A, b", true},      {"a longer title", "a, b c", true},
      {"no title", "", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Context(Punctuated(), "a , b 0").Write(c.title),
              c.isShown ? OnePiece(" a, b") : Html(""));
    Context marked(Punctuated(), "a , b 0");  // the marks are no part of the text compared
    marked.Mark("b");
    const std::string text = marked.Write(c.title);
    EXPECT_EQ(text != Html(""), c.isShown) << text;
  }
}

TEST(ContextText, OnlyTheFirstPieceIsComparedWithTheTitle) {
  const IndexBuilder builder = Punctuated().Set("ContextSize", "4");
  Context first(builder, "a b a a a b c 0");
  first.entry.termsMatched = 2;
  first.entry.secondPosition = 24;
  EXPECT_EQ(first.Write("a b"), Html(""));
  Context second(builder, "a b a a a b c 0");
  second.entry.termsMatched = 2;
  second.entry.secondPosition = 24;
  EXPECT_EQ(second.Write("b c"), Html(" <b>...</b>  a b <b>...</b>  b c <b>...</b>"));
}

TEST(ContextText, MarksTable) {
  const struct {
    const char* what;
    const char* query;
    const char* expected;  // "[" and "]" stand for the marks
  } cases[] = {
      {"a word", "b", " [a], [b] (c)"},
      {"a pattern", "?", " [a][,] [b] [(][c][)]"},
      {"a phrase is one run", "\"a b\"", " [a, b] (c)"},
      {"a phrase with a bracket inside", "\"b c\"", " [a], [b (c])"},
      {"a phrase that does not follow", "\"b a\"", " [a], b (c)"},
      {"no term but the match itself", "c*b", " [a], b (c)"},
      {"a phrase of one word in quotes", "\"c\"", " [a], b ([c])"},
  };
  const struct {
    bool xml;
    const char* open;
    const char* close;
  } forms[] = {{false, "<span class=\"highlight\">", "</span>"},
               {true, "<vela:highlight>", "</vela:highlight>"}};
  for (const auto& c : cases) {
    for (const auto& form : forms) {
      SCOPED_TRACE(c.what);
      Context context(Punctuated().Set("XMLHighlight", "1"), "a , b ( c ) 0", form.xml);
      context.Mark(c.query);
      std::string marked;
      for (char letter : std::string(c.expected)) {
        if (letter == '[') {
          marked += form.open;
        } else if (letter == ']') {
          marked += form.close;
        } else {
          marked += letter;
        }
      }
      EXPECT_EQ(context.Write(), form.xml ? "<vela:context> ... " + marked + " ...</vela:context>\n"
                                          : OnePiece(marked));
    }
  }
}

TEST(ContextText, XmlWithoutItsSettingHasNoMarks) {
  Context context(Punctuated(), "a b 0", true);
  context.Mark("a b");
  EXPECT_EQ(context.Write(), "<vela:context> ...  a b ...</vela:context>\n");
}

TEST(ContextText, PassageHoldsAtMost2048Bytes) {
  const struct {
    const char* what;
    size_t length;  // of the first word, behind its blank
    const char* expected;
  } cases[] = {
      {"full", 2043, " b c"},
      {"one over", 2044, " b"},
      {"nothing shorter is shown behind", 2046, ""},
      {"full with one word", 2047, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string word(c.length, 'x');
    EXPECT_EQ(Context(Punctuated().Word(word), word + " b c 0").Write(),
              OnePiece(" " + word + c.expected));
  }
  const std::string tooLong(2048, 'x');
  EXPECT_EQ(Context(Punctuated().Word(tooLong), tooLong + " b 0").Write("A"), OnePiece(""));
}

TEST(ContextText, PassageCountsMarks) {
  const std::string open = "<span class=\"highlight\">";
  const std::string close = "</span>";
  const struct {
    const char* what;
    size_t length;  // of the first word; its blank and marks take 32 bytes
    bool showsB;    // with its blank and marks 33 bytes
    bool showsC;    // 2 bytes
  } cases[] = {
      {"full", 1981, true, true},
      {"one over", 1982, true, false},
      {"without the last word", 1983, true, false},
      {"nothing shorter is shown behind", 1984, false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string word(c.length, 'x');
    Context context(Punctuated().Word(word), word + " b c 0");
    context.Mark("b");
    EXPECT_EQ(context.Write(),
              OnePiece(" " + open + word + close + (c.showsB ? " " + open + "b" + close : "") +
                       (c.showsC ? " c" : "")));
  }
}

TEST(ContextText, TokensOfAnotherIndexAreReportedAheadOfThePiece) {
  const std::string message =
      "Critical error with pagetext file. Check that your files are from the same indexing "
      "session.";
  // There are 11 words, 0 to 10.
  IndexBuilder builder = Punctuated();
  builder.Tokens({{8, 0}, {11, 0}, {9, 0}, {11, 0}, {10, 0}});
  EXPECT_EQ(Context(builder, "0").Write(),
            Html(message + message + " <b>...</b>  a b c <b>...</b>"));
  EXPECT_EQ(Context(builder, "0", true).Write(),
            "<vela:context>" + message + message + " ...  a b c ...</vela:context>\n");
}

TEST(ContextText, SpellingOfTheOccurrenceIsShown) {
  IndexBuilder builder = Punctuated();
  builder.Word("mill").Variant("Mill").Variant("MILLS").Tokens(
      {{11, 0}, {11, 1}, {11, 2}, {11, 3}});
  EXPECT_EQ(Context(builder, "0").Write(), OnePiece(" mill Mill MILLS mill"));
}

}  // namespace
}  // namespace vela
