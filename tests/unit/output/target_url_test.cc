#include "output/target_url.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::Repeat;

struct TargetCase {
  const char* what;
  int32_t gotoHighlight;
  int32_t pdfHighlight;
  int32_t substring;
  const char* url;
  const char* expected;
};

Settings SettingsOf(const TargetCase& c) {
  Settings settings;
  settings.GotoHighlight = c.gotoHighlight;
  settings.PdfHighlight = c.pdfHighlight;
  settings.SearchAsSubstring = c.substring;
  return settings;
}

TEST(ResultTarget, Table) {
  const TargetCase cases[] = {
      {"the address itself", 0, 0, 0, "a.html#top", "a.html#top"},
      {"with the query", 1, 0, 0, "a.html", "a.html?vela_highlight=red+oak"},
      {"behind another parameter", 1, 0, 0, "a.html?p=1", "a.html?p=1&amp;vela_highlight=red+oak"},
      {"behind a fragment", 1, 0, 0, "a.html#top", "a.html#top?vela_highlight=red+oak"},
      {"of a substring search", 1, 0, 1, "a.html", "a.html?vela_highlightsub=red+oak"},
      {"a PDF file", 0, 1, 0, "a.pdf", "a.pdf#search=%22red oak%22"},
      {"in any case, anywhere in the address", 0, 1, 0, "a.PDF?x", "a.PDF?x#search=%22red oak%22"},
      {"never with the parameter", 1, 1, 0, "a.pdf", "a.pdf#search=%22red oak%22"},
      {"PDF files alone", 0, 1, 0, "a.html", "a.html"},
      {"only when wanted", 0, 0, 0, "a.pdf", "a.pdf"},
      {"other files beside PDF", 1, 1, 0, "a.html", "a.html?vela_highlight=red+oak"},
      {"only 1 switches on", 2, 2, 2, "a.pdf", "a.pdf"},
  };
  for (const TargetCase& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(View(ResultTarget(SettingsOf(c), c.url, "red+oak", "red oak")), c.expected);
  }
}

TEST(RecommendedTarget, Table) {
  const TargetCase cases[] = {
      {"the address itself", 0, 0, 0, "a.html#top", "a.html#top"},
      {"the fragment stays at the end", 1, 0, 0, "page.html#top",
       "page.html?vela_highlight=red+oak#top"},
      {"of a substring search", 1, 0, 1, "a.html", "a.html?vela_highlightsub=red+oak"},
      {"a question mark inside the fragment", 1, 0, 0, "a.html#b?c",
       "a.html&amp;vela_highlight=red+oak#b?c"},
      {"a PDF file", 0, 1, 0, "a.pdf", "a.pdf#search=%22red oak%22"},
      {"a PDF file keeps its fragment", 0, 1, 0, "a.pdf#p", "a.pdf#p#search=%22red oak%22"},
  };
  for (const TargetCase& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(View(RecommendedTarget(SettingsOf(c), c.url, "red+oak", "red oak")), c.expected);
  }
}

TEST(ResultTarget, QueryInAPdfLinkCannotEndTheAttribute) {
  Settings settings;
  settings.PdfHighlight = 1;
  EXPECT_EQ(View(ResultTarget(settings, "a.pdf", "", "\"big cat\" <b>&'\\\x01%\u00E9")),
            "a.pdf#search=%22big cat %3Cb%3E%26%27\\%01%\u00E9%22");
}

TEST(ResultTarget, CutAt2083Bytes) {
  Settings settings;
  settings.GotoHighlight = 1;
  const std::string url(2060, 'u');
  // 2060 + "?" + 15 leave room for 7 more.
  EXPECT_EQ(View(ResultTarget(settings, url, "abcdefgh", "")), url + "?vela_highlight=abcdefg");
}

TEST(ConfiguredLinkAttribute, OnlyWhenInUse) {
  Settings settings;
  Set(settings.LinkTarget, "_blank");
  EXPECT_EQ(View(ConfiguredLinkAttribute(settings)), "");
  settings.UseLinkTarget = 1;
  EXPECT_EQ(View(ConfiguredLinkAttribute(settings)), "target=\"_blank\"");
  Set(settings.LinkTarget, Repeat("t", 2047));
  EXPECT_EQ(View(ConfiguredLinkAttribute(settings)), "target=\"" + Repeat("t", 2047) + "\"");
}

}  // namespace
}  // namespace vela
