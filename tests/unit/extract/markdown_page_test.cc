#include "indexer/extract/markdown_page.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

PageContent Read(const std::string& text) {
  PageContent page;
  ReadingBudget budget = StartReading({}, text.size());
  EXPECT_EQ(ParseMarkdownPage(text, budget, page), Reason::kNone);
  return page;
}

std::string RunsOf(const PageContent& page) {
  std::string all;
  for (const TextRun& run : page.body) {
    all += all.empty() ? "" : "|";
    if (run.headingLevel != 0) all += std::to_string(run.headingLevel) + " ";
    const size_t begin = run.text.find_first_not_of(' ');
    all += run.text.substr(begin, run.text.find_last_not_of(' ') + 1 - begin);
  }
  return all;
}

TEST(MarkdownPage, TakesTextWithoutItsMarkup) {
  const struct {
    const char* what;
    const char* text;
    const char* runs;
  } cases[] = {
      {"headings", "# One\ntext\n\nTwo\n---\nmore", "1 One|text|2 Two|more"},
      {"emphasis, links and code", "a *b* **c** [d](http://x.example/e) `f`", "a b c d f"},
      {"pictures by their texts", "![a cat](cat.png)", "a cat"},
      {"references and HTML", "caf&eacute; <b>x</b><!-- no -->", "caf\u00E9 x"},
      {"scripts are no text", "a\n\n<script>\nb\n</script>\n\nc", "a  c"},
      {"tables", "| a | b |\n|---|---|\n| c | d |", "a  b   c  d"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::string runs = RunsOf(Read(c.text));
    std::string expected = c.runs;
    const auto collapse = [](std::string& text) {
      std::string out;
      for (const char sign : text) {
        if (sign != ' ' || !out.ends_with(' ')) out += sign;
      }
      text = out;
    };
    collapse(runs);
    collapse(expected);
    EXPECT_EQ(runs, expected);
  }
}

TEST(MarkdownPage, TakesTheFrontMatter) {
  const PageContent page = Read(
      "\xEF\xBB\xBF---\ntitle: \"Opening: hours\"\ndescription: When\ntags: [a, b]\n"
      "author: Ann\ndate: 2026-01-02\nnav:\n  title: no\n---\n# Other\ntext");
  EXPECT_EQ(page.title, "Opening: hours");
  EXPECT_EQ(page.description, "When");
  EXPECT_EQ(page.metas, (std::vector<MetaElement>{
                            {"keywords", "a, b"}, {"author", "Ann"}, {"date", "2026-01-02"}}));
  EXPECT_EQ(RunsOf(page), "1 Other|text");
  EXPECT_EQ(Read("+++\ntitle = 'T'\n+++\nx").title, "T");
}

TEST(MarkdownPage, WithoutItsEndItIsNone) {
  const PageContent page = Read("---\ntitle: no\n\ntext");
  EXPECT_NE(page.title, "no");
  EXPECT_NE(RunsOf(page).find("title: no"), std::string::npos);
}

TEST(MarkdownPage, TitlesComeFromWhatThereIs) {
  EXPECT_EQ(Read("# Heading\ntext").title, "");  // that of its headings, as of any page
  EXPECT_EQ(Read("**First line**\n\ntext").title, "First line");
}

TEST(MarkdownPage, EndsWithItsBudget) {
  PageContent page;
  const std::string text(100'000, '&');
  ReadingBudget budget = StartReading({.bytes = 1000, .factor = 1}, text.size());
  EXPECT_EQ(ParseMarkdownPage(text, budget, page), Reason::kMarkupTooLarge);
}

}  // namespace
}  // namespace vela::indexer
