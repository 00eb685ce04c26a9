#include "indexer/extract/pdf_page.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

std::string Output(const std::string& head, const std::string& text) {
  return "<!DOCTYPE html><html>\n<head>\n" + head + "</head>\n<body>\n<pre>\n" + text +
         "</pre>\n</body>\n</html>\n";
}

Reason Parse(const std::string& output, PageContent& page) {
  ReadingBudget budget = StartReading({}, output.size());
  return ParsePdfText(output, budget, page);
}

// "page=1:first line|rest".
std::string RunsOf(const PageContent& page) {
  std::string all;
  for (const TextRun& run : page.body) {
    all += all.empty() ? "" : "|";
    all += run.anchor.empty() ? "" : run.anchor + ":";
    all += run.text.substr(0, run.text.find_last_not_of(' ') + 1);
  }
  return all;
}

TEST(PdfPage, TakesWhatTheHeadSays) {
  PageContent page;
  ASSERT_EQ(Reason::kNone,
            Parse(Output("<title>A &lt;pre&gt; title</title>\n"
                         "<meta name=\"Subject\" content=\"About\"/>\n"
                         "<meta name=\"Keywords\" content=\"a, b\"/>\n"
                         "<meta name=\"Author\" content=\"Ann\"/>\n"
                         "<meta name=\"Producer\" content=\"p\"/>\n"
                         "<meta name=\"CreationDate\" content=\"2020-01-02T03:04:05Z\"/>\n"
                         "<meta name=\"ModDate\" content=\"\"/>\n",
                         "text\n\f"),
                  page));
  EXPECT_EQ(page.title, "A <pre> title");
  EXPECT_EQ(page.description, "About");
  EXPECT_EQ(page.metas, (std::vector<MetaElement>{{"author", "Ann"},
                                                  {"subject", "About"},
                                                  {"keywords", "a, b"},
                                                  {"dcterms.date", "2020-01-02T03:04:05Z"}}));
  EXPECT_EQ(RunsOf(page), "page=1:text");
}

TEST(PdfPage, TitlesComeFromWhatThereIs) {
  const struct {
    const char* head;
    const char* text;
    const char* title;
  } cases[] = {
      {"<title>report_final.DOC</title>", "Report\nx\f", "Report"},
      {"<title>Microsoft Word - a</title>", "\n\n  Report  \nx\f", "Report"},
      {"<title>untitled</title>", "\fOn the second page\f", "On the second page"},
      {"", "12. 3.\nx\f", ""},  // says nothing
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.head);
    PageContent page;
    ASSERT_EQ(Reason::kNone, Parse(Output(c.head, c.text), page));
    EXPECT_EQ(page.title, c.title);
  }
}

TEST(PdfPage, APageIsASection) {
  PageContent page;
  ASSERT_EQ(Reason::kNone, Parse(Output("", "One\nfirst\n\n\f\n \n\fThree\n\fFour\nlast\f"), page));
  EXPECT_EQ(RunsOf(page), "page=1:One|first|page=3:Three|page=4:Four|last");
}

TEST(PdfPage, LinesAtTheEdgesOfPagesStandOnce) {
  std::string text;
  for (int i = 1; i <= 6; ++i) {
    const std::string number = std::to_string(i);
    text += "The manual\nChapter " + std::string(i < 4 ? "one" : "two") + "\ncontent of " +
            std::string(1, static_cast<char>('a' + i)) + "\nThe manual\nmore\nPage " + number +
            " of 6\n\f";
  }
  PageContent page;
  ASSERT_EQ(Reason::kNone, Parse(Output("", text), page));
  EXPECT_EQ(RunsOf(page),
            "page=1:The manual|Chapter one content of b The manual more Page 1 of 6|"
            "page=2:Chapter one|content of c The manual|"
            "page=3:Chapter one|content of d The manual|"
            "page=4:Chapter two|content of e The manual|"
            "page=5:Chapter two|content of f The manual|"
            "page=6:Chapter two|content of g The manual");
}

TEST(PdfPage, EndsWithItsBudget) {
  for (const char each : {'\f', '\n'}) {
    std::string text;
    for (int i = 0; i < 10'000; ++i) text.append({'x', each});
    const std::string output = Output("", text);
    PageContent page;
    ReadingBudget budget = StartReading({.bytes = 100'000, .factor = 1}, 0);
    EXPECT_EQ(ParsePdfText(output, budget, page), Reason::kMarkupTooLarge);
  }
}

TEST(PdfPage, AnotherOutputIsNone) {
  PageContent page;
  EXPECT_NE(Reason::kNone, Parse("", page));
  EXPECT_NE(Reason::kNone, Parse("text", page));
  const std::string whole = Output("", "text\f");
  EXPECT_NE(Reason::kNone, Parse(whole.substr(0, whole.size() - 1), page));
  EXPECT_EQ(Reason::kNone, Parse(Output("", ""), page));
  EXPECT_TRUE(page.body.empty());
}

}  // namespace
}  // namespace vela::indexer
