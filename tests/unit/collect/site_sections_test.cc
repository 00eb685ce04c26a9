#include "indexer/collect/site_sections.h"

#include <gtest/gtest.h>

#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

// The sections of a page with that body, as "token:anchor>heading", the end as its token.
std::string SectionsIn(std::vector<TextRun> body, const std::string& title,
                       const IndexCharset& charset = IndexCharset()) {
  PageContent content;
  content.body = std::move(body);
  PageCutter cutter(charset, -1, {});
  const PageTexts page = {.content = content, .title = title};
  PageWords words;
  EXPECT_TRUE(cutter.Cut(page, words, nullptr));
  const support::ScratchDirectory scratch;
  SiteSections sections(scratch.path());
  AddSections(SectionsOf(page, words, cutter.sections(), charset), 1000, words.bodyTokens,
              sections);
  size_t count = 0;
  std::string text;
  sections.ForEach(
      [&](const SiteSection& section, std::string_view anchor, std::string_view heading) {
        ++count;
        text += (text.empty() ? "" : " | ") + std::to_string(section.token);
        if (anchor.empty()) return;
        text.append(":").append(anchor).append(">").append(heading);
      });
  EXPECT_EQ(count, sections.size());
  return text;
}

std::string Words(size_t count) {
  std::string text;
  for (size_t i = 0; i < count; ++i) text += "word ";
  return text;
}

TEST(SiteSections, BeginWithTheirHeadings) {
  EXPECT_EQ(SectionsIn({{Words(10), 0},
                        {"3.1. Use it\u00B6", 2, "use"},
                        {Words(280), 0},
                        {"Not led to", 2, ""},
                        {"f(x)", 0, "f"},
                        {Words(20), 0}},
                       "Manual"),
            // 10 words; 2 of the heading; 280; 3; f ( x ) and 20.
            "1010:use>Use it | 1297:f>f(x) | 1321");
}

TEST(SiteSections, NoneOfAShortPage) {
  EXPECT_EQ(SectionsIn({{"Use", 2, "use"}, {Words(200), 0}}, "Manual"), "");
}

TEST(SiteSections, NotTheHeadingOfThePage) {
  EXPECT_EQ(SectionsIn({{"Manual", 1, "manual"}, {Words(300), 0}}, "Other"), "");
  EXPECT_EQ(SectionsIn({{"The manual", 2, "manual"}, {Words(300), 0}}, "The Manual - Site"), "");
}

TEST(SiteSections, HeadingsAreSafeAndShort) {
  const std::string text = SectionsIn({{"<b> & \"it\"", 2, "\"><i>"}, {Words(300), 0}}, "Manual");
  EXPECT_EQ(text, "1000:\"><i>>&#60;b&#62; &#38; &#34;it&#34; | 1305");
  const std::string longer = SectionsIn({{Words(40), 2, "x"}, {Words(300), 0}}, "Manual");
  EXPECT_LE(longer.find(" | ") - longer.find('>') - 1, 90u);
}

}  // namespace
}  // namespace vela::indexer
