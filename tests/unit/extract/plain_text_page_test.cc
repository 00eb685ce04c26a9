#include "indexer/extract/plain_text_page.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(PlainTextPage, TakesItsTitleFromWhatBeginsTheText) {
  const struct {
    const char* what;
    std::string text;
    const char* title;
  } kCases[] = {
      {"the first line", "\n  Notes \r\nmore", "Notes"},
      {"a heading", "# Opening hours #\ntext", "Opening hours"},
      {"back ticks", "# The `--commit` option", "The --commit option"},
      {"front matter", "---\ndate: 2026-01-01\ntitle: \"Opening: hours\"\n---\n# Other",
       "Opening: hours"},
      {"front matter behind a mark", "\xEF\xBB\xBF---\ntitle: Hours\n...\ntext", "Hours"},
      {"front matter without a title", "---\ntags: [a]\nnav:\n  title: no\n---\n\n# Hours",
       "Hours"},
      {"a rule that nothing closes", "---\n\nHours\n", "Hours"},
      {"a rule of other signs", "***\n=====\nHours\n=====\n", "Hours"},
      {"a licence in a comment", "<!--\nCopyright\n-->\n\n# Hours", "Hours"},
      {"a comment without an end", "<!-- license", ""},
      {"a tag", "<p align=center>", ""},
      {"a badge", "[![build](x.svg)](y)", ""},
      {"an option", "--commit::\n  Do it.", ""},
      {"the head of a letter", "From: A B <a@x.example>\nSubject: x", ""},
      {"a sentence that begins so", "From here on, all is well", "From here on, all is well"},
      {"a paragraph", std::string(121, 'x'), ""},
      {"other scripts", "Обзор\n", "Обзор"},
      {"signs alone", "-- --\n", ""},
      {"nothing", "", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    ParsePlainTextPage(c.text, page);
    EXPECT_EQ(page.title, c.title);
  }
}

}  // namespace
}  // namespace vela::indexer
