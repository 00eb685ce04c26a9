#include "output/recommended.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;
using support::Repeat;

// The links of a site whose page `n` is tied to the n-th keyword text.
struct Links {
  LoadedSite site;
  Query query;
  HighlightTerms highlight;
  OutputSections sections;
  support::CapturedResponse captured;
  int32_t shown = 0;
  bool ok = false;

  explicit Links(const IndexBuilder& builder, const std::string& typed, bool xml = false)
      : site(builder), captured(xml) {
    site.settings.ToLowerSearchWords = 1;
    site.settings.AllowExactPhrase = 1;
    EXPECT_TRUE(AllocateSections(sections, 10));
    Set(query.typed, typed);
  }
  // The section of an HTML page, or the bytes written at once.
  std::string Write() {
    EXPECT_TRUE(ParseQuery(query, site.settings));
    EXPECT_TRUE(CollectHighlightTerms(highlight, query.terms, true));
    const RecommendedInput input = {.settings = site.settings,
                                    .query = query,
                                    .encodedQuery = "red+oak",
                                    .files = site.files,
                                    .highlight = highlight};
    ok = WriteRecommended(captured.response, sections, input, shown);
    return captured.response.xml ? captured.Text()
                                 : std::string(SectionText(sections, Section::kRecommended));
  }
};

IndexBuilder Site(const std::vector<std::pair<size_t, std::string>>& ties) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4").Set("Recommended", "1").Set("RecommendedMax", "10");
  builder.Set("MaxKeyWordLineLen", "600");
  builder.Page(NewPage("a.html", "Red A", "about a", "a.gif"))
      .Page(NewPage("b.html#part", "B", "about red"))
      .Page(NewPage("c.pdf", "", ""));
  for (const auto& [page, keywords] : ties) builder.Recommend(page, keywords);
  return builder;
}

// The titles, or addresses, of the links that a query shows.
std::vector<std::string> Shown(const std::vector<std::pair<size_t, std::string>>& ties,
                               const std::string& query, int32_t most = 10, int32_t substring = 0) {
  Links links(Site(ties), query);
  links.site.settings.RecommendedMax = most;
  links.site.settings.SearchAsSubstring = substring;
  const std::string text = links.Write();
  EXPECT_TRUE(links.ok);
  EXPECT_EQ(links.captured.Text(), "");
  std::vector<std::string> shown;
  const std::string before = "<div class=\"recommend_infoline\">";
  for (size_t at = text.find(before); at != text.npos; at = text.find(before, at + 1)) {
    const size_t start = at + before.size();
    shown.push_back(text.substr(start, text.find('<', start) - start));
  }
  EXPECT_EQ(links.shown, static_cast<int32_t>(shown.size()));
  return shown;
}

using Addresses = std::vector<std::string>;

std::string Heading() {
  for (const support::LanguageText& text : support::kLanguageTexts) {
    if (std::string(text.key) != "STR_RECOMMENDED") continue;
    return std::string("<div class=\"recommended\">\n<div class=\"recommended_heading\">") +
           text.text + "</div>\n";
  }
  return "";
}

TEST(RecommendedLinks, PlainLink) {
  Links links(Site({{0, "oak"}}), "oak");
  EXPECT_EQ(links.Write(),
            Heading() +
                "<div class=\"recommend_block\">\n"
                "<div class=\"recommend_title\"><a href=\"a.html\" >Red A</a></div>\n"
                "<div class=\"recommend_description\">about a</div>\n"
                "<div class=\"recommend_infoline\">a.html</div>\n"
                "</div></div>\n");
  EXPECT_TRUE(links.ok);
  EXPECT_EQ(links.captured.Text(), "");
}

TEST(RecommendedLinks, HeadingStandsOnce) {
  Links links(Site({{0, "oak"}, {2, "oak"}}), "oak");
  EXPECT_EQ(links.Write(),
            Heading() +
                "<div class=\"recommend_block\">\n"
                "<div class=\"recommend_title\"><a href=\"a.html\" >Red A</a></div>\n"
                "<div class=\"recommend_description\">about a</div>\n"
                "<div class=\"recommend_infoline\">a.html</div>\n"
                "</div><div class=\"recommend_block\">\n"
                // a page without a title is called by its address
                "<div class=\"recommend_title\"><a href=\"c.pdf\" >c.pdf</a></div>\n"
                "<div class=\"recommend_description\"></div>\n"
                "<div class=\"recommend_infoline\">c.pdf</div>\n"
                "</div></div>\n");
}

TEST(RecommendedLinks, ImageTargetAndHighlighting) {
  Links links(Site({{0, "red"}}), "red");
  links.site.settings.UseVelaImage = 1;
  links.site.settings.UseLinkTarget = 1;
  Set(links.site.settings.LinkTarget, "_top");
  links.site.settings.Highlighting = 1;
  EXPECT_EQ(links.Write(), Heading() +
                               "<div class=\"recommend_block\">\n"
                               "<div class=\"recommend_image\"><a href=\"a.html\" target=\"_top\">"
                               "<img src=\"a.gif\" alt=\"\" class=\"recommend_image\"></a></div>"
                               "<div class=\"recommend_title\"><a href=\"a.html\" target=\"_top\">"
                               "<span class=\"highlight\">Red</span> A</a></div>\n"
                               "<div class=\"recommend_description\">about a</div>\n"
                               "<div class=\"recommend_infoline\">a.html</div>\n"
                               "</div></div>\n");
}

TEST(RecommendedLinks, AddressWithTheQueryKeepsItsFragment) {
  Links links(Site({{1, "red"}}), "red");
  links.site.settings.GotoHighlight = 1;
  // The address shown has lost the fragment.
  EXPECT_EQ(links.Write(), Heading() +
                               "<div class=\"recommend_block\">\n"
                               "<div class=\"recommend_title\">"
                               "<a href=\"b.html?vela_highlight=red+oak#part\" >B</a></div>\n"
                               "<div class=\"recommend_description\">about red</div>\n"
                               "<div class=\"recommend_infoline\">b.html</div>\n"
                               "</div></div>\n");
}

TEST(RecommendedLinks, Xml) {
  Links links(Site({{0, "red"}, {1, "red"}}), "red", true);
  links.site.settings.UseVelaImage = 1;
  links.site.settings.Highlighting = 1;
  EXPECT_EQ(links.Write(),
            "<vela:recommended>\n"
            "<vela:imageURL>a.gif</vela:imageURL>"
            "<title>Red A</title>\n<link>a.html</link>\n<description>about a</description>\n"
            "</vela:recommended>\n"
            "<vela:recommended>\n"
            "<title>B</title>\n<link>b.html#part</link>\n<description>about red</description>\n"
            "</vela:recommended>\n");
  EXPECT_EQ(SectionText(links.sections, Section::kRecommended), "");
}

TEST(RecommendedLinks, NothingMatches) {
  Links links(Site({{0, "red"}}), "oak");
  EXPECT_EQ(links.Write(), "");
  EXPECT_TRUE(links.ok);
  EXPECT_EQ(links.shown, 0);
}

TEST(RecommendedLinks, SamePageTwiceInARowIsShownOnce) {
  EXPECT_EQ(Shown({{0, "red"}, {0, "oak"}}, "red oak"), Addresses{"a.html"});
  EXPECT_EQ(Shown({{0, "red, oak"}}, "red oak"), Addresses{"a.html"});
  EXPECT_EQ(Shown({{0, "red"}, {1, "oak"}, {0, "red"}}, "red oak"),
            (Addresses{"a.html", "b.html#part", "a.html"}));
  // A tie that does not match in between changes nothing.
  EXPECT_EQ(Shown({{0, "red"}, {1, "elm"}, {0, "oak"}}, "red oak"), Addresses{"a.html"});
}

TEST(RecommendedLinks, InFileOrderUpToTheLimit) {
  const std::vector<std::pair<size_t, std::string>> ties = {{1, "oak"}, {0, "oak"}, {2, "oak"}};
  EXPECT_EQ(Shown(ties, "oak", 3), (Addresses{"b.html#part", "a.html", "c.pdf"}));
  EXPECT_EQ(Shown(ties, "oak", 2), (Addresses{"b.html#part", "a.html"}));
  EXPECT_EQ(Shown(ties, "oak", 1), Addresses{"b.html#part"});
  EXPECT_EQ(Shown(ties, "oak", 0), Addresses{});
  EXPECT_EQ(Shown(ties, "oak", -1), Addresses{});
}

TEST(RecommendedLinks, KeywordsTable) {
  const struct {
    const char* what;
    const char* keywords;
    const char* query;
    int32_t substring;
    bool expected;
  } cases[] = {
      {"the word", "news", "news", 0, true},
      {"in another case", "NEWS", "news", 0, true},
      {"the second term", "news", "latest news", 0, true},
      {"another word", "news", "newspaper", 0, false},
      {"the whole query", "latest news", "latest news", 0, true},
      {"not in another order", "latest news", "news latest", 0, false},
      {"a phrase is a term", "latest news", "\"latest news\" today", 0, true},
      {"a term that is a pattern", "news", "ne*", 0, true},
      {"a term that is another pattern", "news", "ne?", 0, false},
      {"a keyword that is a pattern", "prod*", "products", 0, true},
      {"it must fit the whole term", "prod?", "products", 0, false},
      {"it is not tried against the whole query", "lat*ws", "latest news", 0, false},
      {"two patterns", "p*s", "p?*s", 0, true},
      {"one of several keywords", "today, news ,latest", "news", 0, true},
      {"empty keywords are passed over", ",,news,", "news", 0, true},
      {"nothing but commas", ",,", "news", 0, false},
      {"an exclusion is another word", "news", "today -news", 0, false},
      {"part of the keyword in a substring search", "newspaper", "spa", 1, true},
      {"in any case", "NewsPaper", "spa", 1, true},
      {"a term longer than the keyword", "spa", "newspaper", 1, false},
      {"a part without the substring search", "newspaper", "spa", 0, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const Addresses expected = c.expected ? Addresses{"a.html"} : Addresses{};
    EXPECT_EQ(Shown({{0, c.keywords}}, c.query, 10, c.substring), expected);
  }
}

TEST(RecommendedLinks, PatternsRespectCaseWithoutLowerCasing) {
  for (const auto& [typed, expected] : {std::pair{"Ne*", true}, std::pair{"ne*", false}}) {
    Links links(Site({{0, "News"}}), typed);
    links.site.settings.ToLowerSearchWords = 0;
    links.Write();
    EXPECT_EQ(links.shown, expected ? 1 : 0);
  }
}

TEST(RecommendedLinks, PageDataThatCannotBeRead) {
  constexpr char kMessage[] =
      "Error: Corrupted or invalid index files. Please re-index your and try again.";
  for (bool xml : {false, true}) {
    IndexBuilder builder = Site({{0, "red"}, {1, "red"}});
    builder.Cut("vela_pagedata.vdat", 40);  // in the middle of the second page's line
    Links links(builder, "red", xml);
    const std::string text = links.Write();
    EXPECT_FALSE(links.ok);
    EXPECT_EQ(links.shown, 1);
    if (xml) {
      EXPECT_TRUE(text.ends_with("</vela:recommended>\n<vela:error>" + std::string(kMessage) +
                                 "</vela:error>"));
    } else {
      EXPECT_EQ(links.captured.Text(), kMessage);
      EXPECT_TRUE(text.ends_with("<div class=\"recommend_infoline\">a.html</div>\n</div>"));
    }
  }
}

TEST(RecommendedLinks, BehindAPositionThatCannotBeTakenTheFileIsReadOn) {
  Links links(Site({{0, "red"}, {2, "red"}}), "red");
  links.site.files.recommended.dataOffsets[1] = -1;
  const std::string text = links.Write();
  EXPECT_TRUE(links.ok);
  EXPECT_EQ(links.captured.Text(),
            "Error seeking in file. This CGI build does not support files larger than 2GB in "
            "size. Please contact Brantel for help.");
  // The second page follows the first in the file.
  EXPECT_NE(text.find("<div class=\"recommend_infoline\">a.html</div>"), std::string::npos);
  EXPECT_NE(text.find("<div class=\"recommend_infoline\">b.html#part</div>"), std::string::npos);
}

TEST(RecommendedLinks, EachPieceWithoutRoomIsReported) {
  Links links(Site({{0, "oak"}}), "oak");
  links.sections = OutputSections();  // as after a failed allocation
  EXPECT_EQ(links.Write(), "");
  EXPECT_TRUE(links.ok);
  EXPECT_EQ(links.shown, 1);
  // The wrapper and its heading, ten pieces of the block, and the wrapper's end.
  EXPECT_EQ(links.captured.Text(), Repeat("recommended buffer could not be realloc'ed<br>", 13));
}

}  // namespace
}  // namespace vela
