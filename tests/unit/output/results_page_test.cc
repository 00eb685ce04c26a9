#include "output/results_page.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;
using support::DefineCategories;

// A results page about to be written: the query's link form is "q", its categories "[c]", dates
// "[d]" and meta fields "[m]".
struct Page {
  Settings settings;
  SearchRequest request;
  Query query;
  LinkParameters links;
  Matches matches;
  PageFilters filters;
  SkippedTerms skipped;
  Suggestions suggestions;
  ShownCorrection correction;
  OutputSections sections;
  CapturedResponse captured;

  explicit Page(const std::string& typed = "oak", bool xml = false) : captured(xml) {
    support::SetLanguageTexts(settings);
    settings.AllowExactPhrase = 1;
    settings.VelaInfo = 0;
    Set(settings.LinkBackURL, "s.cgi");
    Set(query.typed, typed);
    EXPECT_TRUE(ParseQuery(query, settings));
    Set(query.display, "&#60;" + typed);
    Set(links.query, "q");
    Set(links.categories, "[c]");
    Set(links.dates, "[d]");
    Set(links.metaFields, "[m]");
    EXPECT_TRUE(AllocateSections(sections, 10));
  }
  ResultsPage All() const {
    return {.settings = settings,
            .request = request,
            .query = query,
            .links = links,
            .matches = matches,
            .filters = filters,
            .skipped = skipped,
            .suggestions = suggestions,
            .correction = correction};
  }
  void Head() { WriteResultsHead(captured.response, sections, All()); }
  void Foot() { WriteResultsFoot(captured.response, sections, All()); }
  void Heading() { WriteHeading(captured.response, sections, settings, request, query); }
  void Skip(const std::vector<std::string_view>& terms) {
    ASSERT_TRUE(skipped.terms.TryAllocate(terms.size()));
    for (std::string_view term : terms) {
      skipped.terms[static_cast<size_t>(skipped.count++)] = term;
    }
  }
  void CountCategories(const std::vector<uint32_t>& counts) {
    filters.countsCategories = true;
    ASSERT_TRUE(filters.categoryCounts.TryAllocate(counts.size()));
    for (size_t i = 0; i < counts.size(); ++i) filters.categoryCounts[i] = counts[i];
  }
  std::string_view operator[](Section section) const { return SectionText(sections, section); }
};

TEST(Heading, Table) {
  const struct {
    const char* what;
    int32_t useCats;
    std::vector<int32_t> selected;
    const char* expected;
  } cases[] = {
      {"without categories", 0, {1}, "Results for &#60;oak"},
      {"all", 1, {-1}, "Results for &#60;oak on all shelves"},
      {"no selection", 1, {}, "Results for &#60;oak on all shelves"},
      {"one", 1, {1}, "Results for &#60;oak on shelf \"books\""},
      {"two", 1, {1, 0}, "Results for &#60;oak on shelf \"books\", \"maps\""},
      {"a number that is no category", 1, {7, 0}, "Results for &#60;oak on shelf \"maps\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Page page;
    DefineCategories(page.settings, {"maps", "books"});
    page.settings.UseCats = c.useCats;
    page.request.categories = c.selected;
    page.Heading();
    EXPECT_EQ(page[Section::kHeading],
              "<div class=\"searchheading\">" + std::string(c.expected) + "<br /><br /></div>\n");
    EXPECT_EQ(page.sections.results.view(), "<div class=\"results\">\n");
    EXPECT_EQ(page.captured.Text(), "");
  }
}

TEST(Heading, InXml) {
  const struct {
    const char* what;
    int32_t useCats;
    std::vector<int32_t> selected;
    const char* expected;
  } cases[] = {
      {"without categories", 0, {}, ""},
      {"all", 1, {-1}, "<vela:searchcategory>All</vela:searchcategory>\n"},
      {"two",
       1,
       {1, 0},
       "<vela:searchcategory>books</vela:searchcategory>\n"
       "<vela:searchcategory>maps</vela:searchcategory>\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Page page("oak", true);
    DefineCategories(page.settings, {"maps", "books"});
    page.settings.UseCats = c.useCats;
    page.request.categories = c.selected;
    page.Heading();
    EXPECT_EQ(page.captured.Text(),
              "<vela:searchquery>&#60;oak</vela:searchquery>\n" + std::string(c.expected));
    EXPECT_EQ(page[Section::kHeading], "");
    EXPECT_EQ(page.sections.results.view(), "");
  }
}

TEST(Summary, PhrasesTable) {
  const struct {
    const char* what;
    const char* query;
    int32_t andMode;
    int32_t total, full;
    bool limitReached;
    const char* expected;
  } cases[] = {
      {"nothing", "oak", 0, 0, 0, false, "Found nothing."},
      {"nothing, with a limit", "oak", 0, 0, 0, true, "Stopped early.<br /><br />Found nothing."},
      {"one result", "oak", 0, 1, 1, false, "1 page found. "},
      {"two results", "oak", 0, 2, 2, false, "2 pages found. "},
      {"one result does not know of more", "oak", 0, 1, 1, true,
       "Stopped early.<br /><br />1 page found. "},
      {"a search stopped by its limit", "oak", 0, 25, 25, true,
       "Stopped early.<br /><br />Over 25 pages found. "},
      {"one term in AND mode", "oak", 1, 2, 2, false, "2 pages found. "},
      {"any of two, all pages with both", "red oak", 0, 3, 3, false, "3 pages with all words. "},
      {"any of two, one page with both", "red oak", 0, 3, 1, false,
       "1 page with all words. 2 pages with some words. "},
      {"any of two, no page with both", "red oak", 0, 3, 0, false,
       "No pages with all words. 3 pages with some words. "},
      {"any of two, one page with one", "red oak", 0, 3, 2, false,
       "2 pages with all words. 1 page with some words. "},
      {"any of two, with a limit", "red oak", 0, 5, 2, true,
       "Stopped early.<br /><br />Over 2 pages with all words. Over 3 pages with some words. "},
      {"both of two", "red oak", 1, 3, 3, false, "3 pages with all words. "},
      {"both of two, though some lack one", "red oak", 1, 3, 2, false, "2 pages with all words. "},
      {"another flag is any", "red oak", 2, 3, 2, false,
       "2 pages with all words. 1 page with some words. "},
      {"exclusions count as terms", "oak -red", 0, 2, 2, false, "2 pages with all words. "},
      {"a phrase is one term", "\"red oak\"", 0, 2, 2, false, "2 pages found. "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Page page(c.query);
    page.request.andMode = c.andMode;
    page.matches.resultCount = c.total;
    page.matches.fullMatchCount = c.full;
    page.matches.limitReached = c.limitReached;
    page.Head();
    EXPECT_EQ(page[Section::kSummary],
              "<div class=\"summary\">\n" + std::string(c.expected) + "<br />\n</div>\n");
  }
}

TEST(Summary, SkippedTermsAreNamedFirst) {
  Page page("\"red oak\" a <");
  page.matches.limitReached = true;
  page.Skip({"a", "<", "-b"});
  page.Head();
  EXPECT_EQ(page[Section::kSummary],
            "<div class=\"summary\">\nSkipped: \"a\", \"&#60;\", \"-b\"<br /><br />"
            "Phrase cut.<br /><br />Stopped early.<br /><br />Found nothing.<br />\n</div>\n");
}

TEST(Summary, SkippedTermsWithoutAPhrase) {
  Page page("a b");
  page.Skip({"a"});
  page.Head();
  EXPECT_EQ(page[Section::kSummary],
            "<div class=\"summary\">\nSkipped: \"a\"<br /><br />Found "
            "nothing.<br />\n</div>\n");
  Page grouped("\"red oak\" a");
  grouped.settings.AllowExactPhrase = 2;  // quotes only group
  grouped.Skip({"a"});
  grouped.Head();
  EXPECT_EQ(grouped[Section::kSummary],
            "<div class=\"summary\">\nSkipped: \"a\"<br /><br />Found "
            "nothing.<br />\n</div>\n");
}

TEST(OneResult, HasNoPagesCountAndNoSortingLinks) {
  Page page;
  page.settings.UseDateTime = 1;
  page.matches.resultCount = 1;
  page.matches.fullMatchCount = 1;
  page.Head();
  page.Foot();
  EXPECT_EQ(page[Section::kPagesCount], "");
  EXPECT_EQ(page[Section::kSorting], "");
  EXPECT_EQ(page[Section::kPageNumbers], "");
  EXPECT_EQ(page[Section::kSummary], "<div class=\"summary\">\n1 page found. <br />\n</div>\n");
  EXPECT_EQ(page.sections.results.view(), "</div>\n");
}

TEST(BroaderSearch, TwoResultsOfTwoTermsOfferAnyOfThem) {
  Page page("red oak");
  page.request.andMode = 1;
  page.request.perPage = 20;
  page.request.sort = 2;
  page.matches.resultCount = 2;
  page.matches.fullMatchCount = 2;
  page.Head();
  EXPECT_EQ(page[Section::kSuggestion],
            "<div class=\"suggestion\"><br />More with <a href=\"s.cgi?vela_query=q[c]&amp;"
            "vela_per_page=20[d][m]&amp;vela_xml=0&amp;vela_and=0&amp;vela_sort=2\">any word</a>."
            "</div>");
}

TEST(BroaderSearch, OfferedOrNot) {
  const std::vector<int32_t> some = {1};
  const std::vector<int32_t> all = {-1};
  const struct {
    const char* what;
    const char* query;
    int32_t andMode;
    int32_t total;
    int32_t useCats;
    std::vector<int32_t> selected;
    const char* offer;
  } cases[] = {
      {"three results", "red oak", 1, 3, 0, {}, ""},
      {"no result", "red oak", 1, 0, 0, {}, ">any word<"},
      {"one term", "oak", 1, 2, 0, {}, ""},
      {"any of the terms was asked for", "red oak", 0, 2, 0, {}, ""},
      {"another flag is any", "red oak", 2, 2, 0, {}, ""},
      {"a category", "oak", 0, 2, 1, some, ">every shelf<"},
      {"all terms come before the category", "red oak", 1, 2, 1, some, ">any word<"},
      {"all categories", "oak", 0, 2, 1, all, ""},
      {"categories not in use", "oak", 0, 2, 0, some, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Page page(c.query);
    DefineCategories(page.settings, {"maps", "books"});
    page.settings.UseCats = c.useCats;
    page.request.andMode = c.andMode;
    page.request.categories = c.selected;
    page.matches.resultCount = c.total;
    page.Head();
    if (*c.offer == '\0') {
      EXPECT_EQ(page[Section::kSuggestion], "");
    } else {
      EXPECT_NE(page[Section::kSuggestion].find(c.offer), std::string_view::npos);
    }
  }
}

TEST(BroaderSearch, AllCategories) {
  Page page;
  DefineCategories(page.settings, {"maps", "books"});
  const int32_t selected[] = {1};
  page.request.categories = selected;
  page.request.andMode = 2;
  page.matches.resultCount = 1;
  page.Head();
  EXPECT_EQ(page[Section::kSuggestion],
            "<div class=\"suggestion\"><br />More with <a href=\"s.cgi?vela_query=q[d]&amp;"
            "vela_per_page=10&amp;vela_cat=-1[m]&amp;vela_xml=0&amp;vela_and=2&amp;vela_sort=0\">"
            "every shelf</a>.</div>");
}

TEST(CategorySummary, ListsCategoriesWithPages) {
  Page page;
  DefineCategories(page.settings, {"maps", "books", "toys"});
  page.matches.resultCount = 5;
  page.request.andMode = 1;
  page.request.sort = 1;
  page.CountCategories({5, 0, 2});
  page.Head();
  EXPECT_EQ(page[Section::kCatSummary],
            "<div class=\"cat_summary\"><br />By shelf:<ul>"
            "<li><a href=\"s.cgi?vela_query=q[d]&amp;vela_cat=0[m]&amp;vela_per_page=10&amp;"
            "vela_xml=0&amp;vela_and=1&amp;vela_sort=1\">maps</a> (5)</li>"
            "<li><a href=\"s.cgi?vela_query=q[d]&amp;vela_cat=2[m]&amp;vela_per_page=10&amp;"
            "vela_xml=0&amp;vela_and=1&amp;vela_sort=1\">toys</a> (2)</li></ul></div>");
}

TEST(CategorySummary, NotWithoutResultsOrCounts) {
  Page page;
  DefineCategories(page.settings, {"maps"});
  page.CountCategories({5});
  page.Head();
  EXPECT_EQ(page[Section::kCatSummary], "");
  Page uncounted;
  DefineCategories(uncounted.settings, {"maps"});
  uncounted.matches.resultCount = 5;
  uncounted.Head();
  EXPECT_EQ(uncounted[Section::kCatSummary], "");
}

TEST(CategorySummary, XmlLeavesOutWhatHoldsEverything) {
  Page page("oak", true);
  DefineCategories(page.settings, {"maps", "books", "toys"});
  page.matches.resultCount = 5;
  page.CountCategories({5, 0, 2});
  page.Head();
  EXPECT_EQ(page.captured.Text(),
            "<opensearch:totalResults>5</opensearch:totalResults>\n"
            "<opensearch:startIndex>1</opensearch:startIndex>\n"
            "<opensearch:itemsPerPage>10</opensearch:itemsPerPage>\n"
            "<vela:categorySummary>\n<vela:categoryName>toys</vela:categoryName>\n"
            "<vela:categoryCount>2</vela:categoryCount>\n</vela:categorySummary>\n");
}

TEST(XmlCounts, StartIndexTable) {
  const struct {
    int32_t page, perPage, total;
    const char* start;
  } cases[] = {{1, 10, 25, "1"}, {2, 10, 25, "11"}, {3, 10, 25, "21"}, {3, 10, 0, "1"},
               {0, 10, 25, "1"}, {-5, 10, 25, "1"}, {9, 10, 25, "81"}, {2, 20, 25, "21"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.start);
    Page page("oak", true);
    page.request.page = c.page;
    page.request.perPage = c.perPage;
    page.matches.resultCount = c.total;
    page.Head();
    page.Foot();
    EXPECT_EQ(page.captured.Text(), "<opensearch:totalResults>" + std::to_string(c.total) +
                                        "</opensearch:totalResults>\n<opensearch:startIndex>" +
                                        c.start +
                                        "</opensearch:startIndex>\n<opensearch:itemsPerPage>" +
                                        std::to_string(c.perPage) + "</opensearch:itemsPerPage>\n");
  }
}

TEST(PagesCount, Table) {
  const struct {
    int32_t total, perPage;
    const char* count;
  } cases[] = {{10, 10, ""}, {11, 10, "2"}, {20, 10, "2"}, {25, 10, "3"},
               {0, 10, ""},  {7, 1, "7"},   {11, 0, "2"},  {2147483647, 1, "2147483647"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.total);
    Page page;
    page.request.perPage = c.perPage;
    page.matches.resultCount = c.total;
    page.Head();
    const std::string count = c.count;
    EXPECT_EQ(page[Section::kPagesCount],
              count.empty()
                  ? ""
                  : "<div class=\"result_pagescount\"><br />" + count + " sheets.</div>\n");
  }
}

std::string SortAddress(const char* sort) {
  return std::string(
             "s.cgi?vela_query=q[c]&amp;vela_page=3&amp;vela_per_page=10[d][m]&amp;"
             "vela_and=1&amp;vela_xml=0&amp;vela_sort=") +
         sort;
}

TEST(SortingLinks, Table) {
  const struct {
    const char* what;
    int32_t sort;
    std::string expected;
  } cases[] = {
      {"by relevance", 0, "<b>By rank</b> / <a href=\"" + SortAddress("1") + "\">Sort by date</a>"},
      {"below that", -3, "<b>By rank</b> / <a href=\"" + SortAddress("1") + "\">Sort by date</a>"},
      {"newest first", 1,
       "<a href=\"" + SortAddress("0") + "\">Sort by rank</a> / <a href=\"" + SortAddress("2") +
           "\">By newest</a>"},
      // Kept: the link goes on to 3.
      {"oldest first", 2,
       "<a href=\"" + SortAddress("0") + "\">Sort by rank</a> / <a href=\"" + SortAddress("3") +
           "\">By oldest</a>"},
      {"beyond", 3,
       "<a href=\"" + SortAddress("0") + "\">Sort by rank</a> / <a href=\"" + SortAddress("4") +
           "\">By oldest</a>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Page page("red oak");
    page.settings.UseDateTime = 1;
    page.request.sort = c.sort;
    page.request.page = 3;
    page.request.andMode = 1;
    page.matches.resultCount = 25;
    page.Head();
    EXPECT_EQ(page[Section::kSorting], "<div class=\"sorting\">" + c.expected + "</div>\n");
  }
}

TEST(SortingLinks, NotWithoutDates) {
  for (int32_t useDateTime : {0, 2}) {
    Page page;
    page.settings.UseDateTime = useDateTime;
    page.matches.resultCount = 25;
    page.Head();
    EXPECT_EQ(page[Section::kSorting], "");
  }
}

std::string PageAddress(int number, int perPage = 10) {
  return "<a href=\"s.cgi?vela_query=q[c]&amp;vela_page=" + std::to_string(number) +
         "&amp;vela_per_page=" + std::to_string(perPage) +
         "[d][m]&amp;vela_and=0&amp;vela_sort=0&amp;vela_xml=0\">";
}

std::string PageLinks(int current, int first, int last, bool next, int perPage = 10) {
  std::string links = "<div class=\"result_pages\">Sheets: ";
  if (current > 1) links += PageAddress(current - 1, perPage) + "&lt;&lt; Back</a> ";
  for (int number = first; number <= last; ++number) {
    links += number == current ? std::to_string(number) + " "
                               : PageAddress(number, perPage) + std::to_string(number) + "</a> ";
  }
  if (next) links += PageAddress(current + 1, perPage) + "On &gt;&gt;</a> ";
  return links + "</div>";
}

TEST(PageNavigation, Page15Of40ShowsPages5To25) {
  Page page;
  page.request.page = 15;
  page.matches.resultCount = 400;
  page.Foot();
  EXPECT_EQ(page[Section::kPageNumbers], PageLinks(15, 5, 25, true));
}

TEST(PageNavigation, Table) {
  const struct {
    const char* what;
    int32_t page, total, limit;
    int first, last;
    bool next;
  } cases[] = {
      {"two pages, the first", 1, 11, 1000, 1, 2, true},
      {"two pages, the second", 2, 11, 1000, 1, 2, false},
      {"the first of many", 1, 500, 1000, 1, 11, true},
      {"the eleventh of many", 11, 500, 1000, 1, 21, true},
      {"the twelfth of many", 12, 500, 1000, 2, 22, true},
      {"near the end", 35, 400, 1000, 25, 40, true},
      {"the last", 40, 400, 1000, 30, 40, false},
      {"the limit ends the range", 3, 400, 50, 1, 5, true},
      {"the last within the limit", 5, 400, 50, 1, 5, false},
      {"the limit is divided without a rest", 5, 400, 59, 1, 5, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Page page;
    page.request.page = c.page;
    page.matches.resultCount = c.total;
    page.settings.MaxResultsPerQuery = c.limit;
    page.Foot();
    EXPECT_EQ(page[Section::kPageNumbers], PageLinks(c.page, c.first, c.last, c.next));
  }
}

TEST(PageNavigation, NotForOnePage) {
  Page page;
  page.matches.resultCount = 10;
  page.Foot();
  EXPECT_EQ(page[Section::kPageNumbers], "");
}

TEST(PageNavigation, PerPageBelowOneCountsAsTen) {
  Page page;
  page.request.perPage = 0;
  page.matches.resultCount = 25;
  page.Foot();
  EXPECT_EQ(page[Section::kPageNumbers], PageLinks(1, 1, 3, true, 0));
}

TEST(PageNavigation, StrangePageNumbersEnd) {
  for (int32_t number : {0, -1, INT32_MIN, INT32_MAX}) {
    Page page;
    page.request.page = number;
    page.matches.resultCount = 25;
    page.Foot();
    EXPECT_TRUE(page[Section::kPageNumbers].ends_with("</div>"));
  }
}

TEST(PageNavigation, PoweredByFollows) {
  Page page;
  page.settings.VelaInfo = 1;
  page.matches.resultCount = 11;
  page.Foot();
  EXPECT_EQ(page[Section::kPageNumbers],
            PageLinks(1, 1, 2, true) +
                "\n<center><p><small>Run by <a href=\"https://vela-search.example/\" "
                "target=\"_blank\"><b>Vela Search Engine</b></a></small></p></center>\n");
}

TEST(SearchTime, Table) {
  const struct {
    int32_t timing;
    bool xml;
    double seconds;
    const char* section;
    const char* written;
  } cases[] = {
      {1, false, 0.0426, "<div class=\"searchtime\"><br /><br />Took 0.043 s.</div>\n", ""},
      {1, false, 12.5, "<div class=\"searchtime\"><br /><br />Took 12.500 s.</div>\n", ""},
      {1, true, 0.0426, "", "<vela:searchtime>0.043</vela:searchtime>\n"},
      {0, false, 0.0426, "", ""},
      {0, true, 0.0426, "", ""},
      {2, false, 0.0426, "", ""},
  };
  for (const auto& c : cases) {
    Page page("oak", c.xml);
    page.settings.Timing = c.timing;
    WriteSearchTime(page.captured.response, page.sections, page.settings, c.seconds);
    EXPECT_EQ(page[Section::kSearchTime], c.section);
    EXPECT_EQ(page.captured.Text(), c.written);
  }
}

TEST(SpellingSuggestion, LinksTable) {
  const struct {
    const char* what;
    const char* query;
    std::vector<const char*> suggestions;
    std::string expected;
  } cases[] = {
      {"none", "oak", {}, ""},
      {"one term",
       "okk",
       {"oak"},
       "<div class=\"suggestion\"><br />Perhaps <a href=\"s.cgi?vela_query=oak[c]&amp;"
       "vela_per_page=10[d][m]&amp;vela_and=1&amp;vela_sort=2\">oak</a>?</div>"},
      {"alternatives",
       "okk",
       {"oak", "oka"},
       "<div class=\"suggestion\"><br />Perhaps <a href=\"s.cgi?vela_query=oak[c]&amp;"
       "vela_per_page=10[d][m]&amp;vela_and=1&amp;vela_sort=2\">oak</a> or "
       "<a href=\"s.cgi?vela_query=oka[c]&amp;"
       "vela_per_page=10[d][m]&amp;vela_and=1&amp;vela_sort=2\">oka</a>?</div>"},
      {"several terms search for any",
       "red okk",
       {"red oak"},
       "<div class=\"suggestion\"><br />Perhaps <a href=\"s.cgi?vela_query=red+oak[c]&amp;"
       "vela_per_page=10[d][m]&amp;vela_and=0&amp;vela_sort=2\">red oak</a>?</div>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Page page(c.query);
    page.request.andMode = 1;
    page.request.sort = 2;
    page.matches.resultCount = 5;
    for (const char* text : c.suggestions) {
      Set(page.suggestions.texts[page.suggestions.count++], text);
    }
    page.Head();
    EXPECT_EQ(page[Section::kSuggestion], c.expected);
  }
}

}  // namespace
}  // namespace vela
