#include "indexer/documents/rich_text_page.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

Reason Read(const std::string& bytes, PageContent& page) {
  ReadingBudget budget = StartReading({}, bytes.size());
  return ReadRichTextPage(bytes, budget, page);
}

TEST(RichTextPage, TakesTheText) {
  const struct {
    const char* what;
    std::string inside;  // of the outermost group
    std::string runs;    // "2 Heading|text"
  } cases[] = {
      {"paragraphs are parted", "One.\\par Two.\\par", "One. Two."},
      {"line ends of the file are none", "wo\nrd\r\n s", "word s"},
      {"signs", "a\\tab b\\emdash c\\~d\\_e\\{f\\}\\\\", "a b\u2014c d-e{f}\\"},
      {"a byte of the document's character set", "caf\\'e9", "caf\u00E9"},
      {"of another one", "\\ansicpg1251 \\'ec\\'e8\\'f0", "\u043C\u0438\u0440"},
      {"of the font's, in two bytes",
       "{\\fonttbl{\\f0\\fcharset0 A;}{\\f1\\fcharset128 B;}}\\f1 \\'93\\'fa\\f0  a", "\u65E5 a"},
      {"a character by its number", "\\u8364 ?\\u-10179?\\u-8704?", "\u20AC\U0001F600"},
      {"what stands for it is passed over as said", "\\uc2\\u8364 EU a{\\uc0\\u8364 b}",
       "\u20AC a\u20ACb"},
      {"half of a character is none", "a\\u-10179?b", "ab"},
      {"headings by their styles",
       "{\\stylesheet{\\s0 Normal;}{\\s3 heading 2;}{\\s4\\outlinelevel0 Mine;}}"
       "\\pard\\s3 A\\par\\pard\\s4 B\\par\\pard\\s0 c\\par",
       "2 A|1 B|c"},
      {"by their own level", "\\pard\\outlinelevel2 A\\par\\pard b", "3 A|b"},
      {"tables", "a\\cell b\\cell\\row c", "a b  c"},
      {"hidden text, instructions, headers and pictures are none",
       "a{\\v x}{\\field{\\*\\fldinst HYPERLINK y}{\\fldrslt b}}{\\header z}{\\pict 0102}c", "abc"},
      {"destinations that may be passed over are", "a{\\*\\unknown x}b", "ab"},
      {"bytes of any kind", std::string("a\\bin4 }{\\xb", 12), "ab"},
      {"a note", "a{\\footnote b}", "a b"},
      {"more ends than beginnings", "a}b", "a"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    ASSERT_EQ(Read("{\\rtf1\\ansi " + c.inside + "}", page), Reason::kNone);
    std::string all;
    for (const TextRun& run : page.body) {
      all += all.empty() ? "" : "|";
      if (run.headingLevel != 0) all += std::to_string(run.headingLevel) + " ";
      std::string text = run.text;
      while (text.ends_with(' ')) text.pop_back();
      all += text;
    }
    EXPECT_EQ(all, c.runs);
  }
}

TEST(RichTextPage, TakesTheProperties) {
  PageContent page;
  ASSERT_EQ(Read("{\\rtf1{\\info{\\title A {\\b bold} title}{\\author Ann}{\\subject S}"
                 "{\\keywords k, l}{\\doccomm About}{\\creatim\\yr2020\\mo1\\dy2\\hr3}"
                 "{\\revtim\\yr2021\\mo12\\dy31}}x{\\title no}}",
                 page),
            Reason::kNone);
  EXPECT_EQ(page.title, "A bold title");
  EXPECT_EQ(page.description, "About");
  EXPECT_EQ(page.metas, (std::vector<MetaElement>{{"author", "Ann"},
                                                  {"subject", "S"},
                                                  {"keywords", "k, l"},
                                                  {"dcterms.date", "2020-01-02"},
                                                  {"dcterms.modified", "2021-12-31"}}));
}

TEST(RichTextPage, EndsOnAnything) {
  PageContent page;
  EXPECT_EQ(Read("", page), Reason::kDamaged);
  EXPECT_EQ(Read("{\\html", page), Reason::kDamaged);
  EXPECT_EQ(Read("{\\rtf1 cut sho", page), Reason::kNone);
  EXPECT_EQ(page.body.size(), 1u);
  EXPECT_EQ(Read("{\\rtf1 " + std::string(100'000, '{'), page), Reason::kMarkupTooLarge);
  EXPECT_EQ(Read("{\\rtf1\\bin2147483647 x", page), Reason::kNone);
  EXPECT_EQ(Read("{\\rtf1\\u99999999999999\\", page), Reason::kNone);
}

}  // namespace
}  // namespace vela::indexer
