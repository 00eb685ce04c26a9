#include "indexer/extract/html_tokens.h"

#include <gtest/gtest.h>

#include <span>

#include "indexer/words/lower_copy.h"

namespace vela::indexer {
namespace {

// The tokens in one line: texts as they are, "<name/>" with the attributes asked for, "</name>",
// "<!>" for a comment, "<!doctype>". Behind the start tag of an element with raw text, that.
std::string Tokens(std::string_view html, bool inForeign = false) {
  ReadingBudget budget;
  HtmlTokens tokens(html, budget);
  std::string told;
  for (;;) {
    switch (tokens.Next(inForeign)) {
      case TokenKind::kEnd:
        return told;
      case TokenKind::kText:
        told += tokens.text();
        break;
      case TokenKind::kComment:
        told += "<!>";
        break;
      case TokenKind::kDoctype:
        told += "<!doctype>";
        break;
      case TokenKind::kEndTag:
        told += "</" + LowerAsciiCopy(tokens.tag().name) + ">";
        break;
      case TokenKind::kStartTag:
        told += "<" + LowerAsciiCopy(tokens.tag().name);
        for (const Attribute attribute : {Attribute::kHidden, Attribute::kHref, Attribute::kAlt}) {
          if (HasAttribute(tokens.tag(), attribute)) {
            told += "|" + AttributeValue(tokens.tag(), attribute);
          }
        }
        told += tokens.tag().closesItself ? "/>" : ">";
        if (Has(tokens.tag().element, kRawText))
          told.append("[").append(tokens.TakeRawText()) += "]";
        break;
    }
  }
}

TEST(HtmlTokens, TellsWhatCommentsSay) {
  const struct {
    const char* html;
    const char* expected;
  } kCases[] = {
      {"<!-- a - b -- c -->", " a - b -- c "},
      {"<!--a--!>", "a"},
      {"<!---->", ""},
      {"<!-->a", ""},
      {"<!--->a", ""},
      {"<!--a>b", "a>b"},  // to the end of the page
      {"<!a>", ""},
      {"<?a>", ""},
      {"</ a>", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.html);
    ReadingBudget budget;
    const std::string page = std::string("<!--before-->") + c.html;
    HtmlTokens tokens(page, budget);
    ASSERT_EQ(tokens.Next(false), TokenKind::kComment);
    EXPECT_EQ(tokens.comment(), "before");
    ASSERT_EQ(tokens.Next(false), TokenKind::kComment);
    EXPECT_EQ(tokens.comment(), c.expected);
  }
}

TEST(HtmlTokens, KnowsItsAttributesInAnyCase) {
  EXPECT_EQ(FindAttribute("alt"), Attribute::kAlt);
  EXPECT_EQ(FindAttribute("Data-Vela-Body"), Attribute::kDataVelaBody);
  EXPECT_EQ(FindAttribute("DATA-VELA-WEIGHT"), Attribute::kDataVelaWeight);
  EXPECT_EQ(FindAttribute("xml:lang"), Attribute::kXmlLang);
  EXPECT_EQ(FindAttribute(""), Attribute::kCount);
  EXPECT_EQ(FindAttribute("alu"), Attribute::kCount);
  EXPECT_EQ(FindAttribute("data-vela-weights"), Attribute::kCount);
  EXPECT_EQ(FindAttribute(std::string(1000, 'a')), Attribute::kCount);
}

struct TokenCase {
  const char* what;
  std::string_view html, expected;
};

void Check(std::span<const TokenCase> cases, bool inForeign = false) {
  for (const TokenCase& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Tokens(c.html, inForeign), c.expected);
  }
}

TEST(HtmlTokens, TextAndTags) {
  constexpr TokenCase kCases[] = {
      {"text", "a &lt; b", "a < b"},
      {"tags in either case", "<P>a</P >", "<p>a</p>"},
      {"what begins no tag", "1 < 2 <3 <", "1 < 2 <3 <"},
      {"no name in an end tag", "a</>b</1>c</", "ab<!>c</"},
      {"a tag without an end is none", "a<b href", "a"},
      {"nor one whose quotes do not end", "a<b href='c>d", "a"},
      {"it closes itself", "<br/><br /><br / >", "<br/><br/><br>"},
      {"names hold nearly all", "<a<b>c", "<a<b>c"},
      {"nothing", "", ""},
  };
  Check(kCases);
}

TEST(HtmlTokens, Attributes) {
  constexpr TokenCase kCases[] = {
      {"every kind of quotes", "<a href=\"1\" alt='2' hidden=3>", "<a|3|1|2>"},
      {"no value", "<a hidden alt>", "<a||>"},
      {"blanks around the equals sign", "<a href = 1 alt\n=\n'2'>", "<a|1|2>"},
      {"no blanks between", "<a href='1'alt='2'/hidden>", "<a||1|2>"},
      {"the first counts", "<a href=1 HREF=2>", "<a|1>"},
      {"a slash is part of a value", "<a href=/b/>", "<a|/b/>"},
      {"quotes inside a value", "<a href=b\"c'd>", "<a|b\"c'd>"},
      {"a value left out", "<a href=>", "<a|>"},
      {"an equals sign begins a name", "<a =href=1 alt=2>", "<a|2>"},
      {"a bracket in quotes", "<a href='>'>b", "<a|>>b"},
      {"references", "<a href='?a&amp;b&copy=1' alt=&quot;>", "<a|?a&b&copy=1|\">"},
      {"none in end tags", "</a href='>'>b", "</a>b"},
  };
  Check(kCases);
}

TEST(HtmlTokens, Comments) {
  constexpr TokenCase kCases[] = {
      {"plain", "a<!-- <b> -->c", "a<!>c"},
      {"short ones", "<!-->a<!--->b<!---->c", "<!>a<!>b<!>c"},
      {"an exclamation mark at the end", "<!--a--!>b", "<!>b"},
      {"but not so short", "<!---!>a-->b", "<!>b"},
      {"one in another", "<!--<!--a-->b-->", "<!>b-->"},
      {"single hyphens", "<!-- a->b - ->c-->d", "<!>d"},
      {"without an end", "a<!-- b", "a<!>"},
      {"what only looks like one", "<?xml a?>b<!a>c</ d>e", "<!>b<!>c<!>e"},
      {"document types", "<!DOCTYPE html \"a\">b<!doctype>", "<!doctype>b<!doctype>"},
      {"character data outside of drawings", "<![CDATA[a>b]]>", "<!>b]]>"},
  };
  Check(kCases);
  constexpr TokenCase kForeign[] = {
      {"character data", "a<![CDATA[<b>&amp;]]>c", "a<b>&amp;c"},
      {"without an end", "<![CDATA[a]]", "a]]"},
      {"empty", "<![CDATA[]]>a", "a"},
      {"in capitals only", "<![cdata[a]]>", "<!>"},
  };
  Check(kForeign, true);
}

TEST(HtmlTokens, RawText) {
  constexpr TokenCase kCases[] = {
      {"up to its end tag", "<style>a<b></style>c", "<style>[a<b>]c"},
      {"in either case, with attributes", "<style>a</STYLE b='>'>c", "<style>[a]c"},
      {"not that of another", "<style></stylex></p></style>c", "<style>[</stylex></p>]c"},
      {"without an end", "<title>a<b", "<title>[a<b]"},
      {"an end tag without an end", "<title>a</title b", "<title>[a]"},
      {"a script", "<script>if(a<b)</b></script>c", "<script>[if(a<b)</b>]c"},
      {"a comment in a script does not hide its end", "<script><!-- </script>a",
       "<script>[<!-- ]a"},
      {"nor does a short one", "<script><!--><script></script>a", "<script>[<!--><script>]a"},
      {"a script within the comment does", "<script><!--<script></script></script>--></script>a",
       "<script>[<!--<script></script>]--></script>a"},
      {"until the comment ends", "<script><!--<script>--></script>a", "<script>[<!--<script>-->]a"},
      {"only a whole tag begins it", "<script><!--<scripts></script>a", "<script>[<!--<scripts>]a"},
  };
  for (const TokenCase& c : kCases) {
    SCOPED_TRACE(c.what);
    std::string told = Tokens(c.html);
    // What stands behind the end tag is ordinary again.
    EXPECT_EQ(told.substr(0, c.expected.size()), c.expected.substr(0, told.size()));
  }
}

TEST(HtmlTokens, TextComesInPiecesOfThePage) {
  ReadingBudget budget;
  constexpr std::string_view kHtml = "one&amp;two";
  HtmlTokens tokens(kHtml, budget);
  ASSERT_EQ(tokens.Next(false), TokenKind::kText);
  EXPECT_EQ(tokens.text(), "one");
  EXPECT_EQ(tokens.text().data(), kHtml.data());
  ASSERT_EQ(tokens.Next(false), TokenKind::kText);
  EXPECT_EQ(tokens.text(), "&");
  ASSERT_EQ(tokens.Next(false), TokenKind::kText);
  EXPECT_EQ(tokens.text(), "two");
  EXPECT_EQ(tokens.Next(false), TokenKind::kEnd);
}

TEST(HtmlTokens, FindsElementsInEitherCase) {
  EXPECT_EQ(FindElement("a"), Element::kA);
  EXPECT_EQ(FindElement("TextArea"), Element::kTextarea);
  EXPECT_EQ(FindElement("annotation-xml"), Element::kAnnotationXml);
  EXPECT_EQ(FindElement("xmp"), Element::kXmp);
  for (const char* other : {"", "aa", "zebra", "h7", "1", "\xC3\xA9"}) {
    EXPECT_EQ(FindElement(other), Element::kOther) << other;
  }
}

}  // namespace
}  // namespace vela::indexer
