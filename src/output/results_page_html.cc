#include "output/results_page_html.h"

#include <algorithm>

#include "output/markup.h"
#include "output/powered_by.h"
#include "search/plain_query.h"
#include "text/edit.h"
#include "text/numbers.h"

namespace vela {

namespace {

constexpr int32_t kFewResults = 3;      // fewer lead to the offer of a broader search
constexpr int64_t kPagesEachSide = 10;  // page links before and behind the current page
constexpr size_t kEscapedTermSize = 5 * kQuerySize;

bool SearchesSomeCategories(const Settings& settings, const SearchRequest& request) {
  return UsesCategories(settings) && !SearchesAllCategories(request);
}

int64_t PageCount(const ResultsPage& page) {
  const int64_t perPage = EffectivePerPage(page.request);
  return (int64_t{page.matches.resultCount} + perPage - 1) / perPage;
}

void AppendSkippedTerms(OutputSections& sections, const ResultsPage& page) {
  if (page.skipped.count == 0) return;
  const LanguageStrings& language = page.settings.language;
  AppendSection(sections, Section::kSummary, "%s ", Text(language, Str::kSkippedFollowingWords));
  for (int32_t i = 0; i < page.skipped.count; ++i) {
    AppendSection(
        sections, Section::kSummary, "%s\"%s\"", i > 0 ? ", " : "",
        EscapedRequestText<kEscapedTermSize>(page.skipped.terms[static_cast<size_t>(i)]).bytes);
  }
  AppendSectionRaw(sections, Section::kSummary, "<br /><br />");
  if (page.query.hasPhrase && AllowsPhrases(page.settings)) {
    AppendSection(sections, Section::kSummary, "%s<br /><br />",
                  Text(language, Str::kSkippedPhrase));
  }
}

void AppendCountPhrase(OutputSections& sections, const ResultsPage& page, int32_t count,
                       Str label) {
  const LanguageStrings& language = page.settings.language;
  const char* labelText = Text(language, label);
  if (count == 0) {
    AppendSection(sections, Section::kSummary, "%s %s ", Text(language, Str::kNoResults),
                  labelText);
    return;
  }
  if (count == 1) {
    AppendSection(sections, Section::kSummary, "%d %s %s ", 1, Text(language, Str::kResult),
                  labelText);
    return;
  }
  if (page.matches.limitReached) {
    AppendSection(sections, Section::kSummary, "%s ", Text(language, Str::kMoreThan));
  }
  AppendSection(sections, Section::kSummary, "%d %s %s ", count, Text(language, Str::kResults),
                labelText);
}

void AppendSummary(OutputSections& sections, const ResultsPage& page) {
  const LanguageStrings& language = page.settings.language;
  const Matches& matches = page.matches;
  AppendSectionRaw(sections, Section::kSummary, "<div class=\"summary\">\n");
  AppendSkippedTerms(sections, page);
  if (matches.limitReached) {
    // Kept: one text serves for every kind of limit (golden search/match_limit).
    AppendSection(sections, Section::kSummary, "%s<br /><br />",
                  Text(language, Str::kPhraseContainsCommonWords));
  }
  if (matches.resultCount == 0) {
    AppendSectionRaw(sections, Section::kSummary, Text(language, Str::kSummaryNoResultsFound));
    if (page.settings.PlainQueries == 1 && HasOnlyExclusions(page.query.terms)) {
      AppendSection(sections, Section::kSummary, " %s", Text(language, Str::kOnlyExclusions));
    }
  } else if (page.query.terms.size() > 1) {
    AppendCountPhrase(sections, page, matches.fullMatchCount, Str::kSummaryFoundContainingAllTerms);
    const int32_t others = matches.resultCount - matches.fullMatchCount;
    if (page.request.andMode != 1 && others > 0) {
      AppendCountPhrase(sections, page, others, Str::kSummaryFoundContainingSomeTerms);
    }
  } else {
    AppendCountPhrase(sections, page, matches.resultCount, Str::kSummaryFound);
  }
  AppendSectionRaw(sections, Section::kSummary, "<br />\n</div>\n");
}

// Offers a search that finds more: any of the terms, or all categories.
void AppendBroaderSearch(OutputSections& sections, const ResultsPage& page) {
  if (page.matches.resultCount >= kFewResults) return;
  const SearchRequest& request = page.request;
  const LinkParameters& links = page.links;
  LinkText link;
  Str offer = Str::kAnyOfTerms;
  if (request.andMode == 1 && page.query.terms.size() > 1) {
    link = MakeLinkf(page.settings,
                     "vela_query=%s%s&amp;vela_per_page=%d%s%s&amp;vela_xml=%d&amp;vela_and=0"
                     "&amp;vela_sort=%d",
                     links.query.bytes, links.categories.bytes, request.perPage, links.dates.bytes,
                     links.metaFields.bytes, 0, request.sort);
  } else if (SearchesSomeCategories(page.settings, request)) {
    offer = Str::kAllCats;
    link = MakeLinkf(page.settings,
                     "vela_query=%s%s&amp;vela_per_page=%d&amp;vela_cat=-1%s&amp;vela_xml=%d"
                     "&amp;vela_and=%d&amp;vela_sort=%d",
                     links.query.bytes, links.dates.bytes, request.perPage, links.metaFields.bytes,
                     0, request.andMode, request.sort);
  } else {
    return;
  }
  const LanguageStrings& language = page.settings.language;
  AppendSection(sections, Section::kSuggestion,
                "<div class=\"suggestion\"><br />%s <a href=\"%s\">%s</a>.</div>",
                Text(language, Str::kPossiblyGetMoreResults), link.bytes, Text(language, offer));
}

void AppendCategorySummary(OutputSections& sections, const ResultsPage& page) {
  if (!ShowsCategorySummary(page)) return;
  const SearchRequest& request = page.request;
  const LinkParameters& links = page.links;
  const auto& counts = page.filters.categoryCounts;
  AppendSection(sections, Section::kCatSummary, "<div class=\"cat_summary\"><br />%s<ul>",
                Text(page.settings.language, Str::kCatSummary));
  for (size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0) continue;
    const auto category = static_cast<int32_t>(i);
    const LinkText link = MakeLinkf(
        page.settings,
        "vela_query=%s%s&amp;vela_cat=%d%s&amp;vela_per_page=%d&amp;vela_xml=%d&amp;vela_and=%d"
        "&amp;vela_sort=%d",
        links.query.bytes, links.dates.bytes, category, links.metaFields.bytes, request.perPage, 0,
        request.andMode, request.sort);
    AppendSection(sections, Section::kCatSummary, "<li><a href=\"%s\">%s</a>", link.bytes,
                  page.settings.categoryNames.At(category));
    AppendSection(sections, Section::kCatSummary, " (%d)</li>", WrapToInt32(counts[i]));
  }
  AppendSectionRaw(sections, Section::kCatSummary, "</ul></div>");
}

LinkText SuggestionLink(const ResultsPage& page, const char* suggestion) {
  const SearchRequest& request = page.request;
  FixedText<sizeof Suggestions::texts[0].bytes> encoded;
  if (page.suggestions.asTyped) {
    UrlEncode(suggestion, encoded.bytes, sizeof encoded.bytes);
  } else {
    Set(encoded, suggestion);
    ReplaceCharacters(encoded.bytes, View(encoded).size(), " ", "+");
  }
  return MakeLinkf(
      page.settings, "vela_query=%s%s&amp;vela_per_page=%d%s%s&amp;vela_and=%d&amp;vela_sort=%d",
      encoded.bytes, page.links.categories.bytes, request.perPage, page.links.dates.bytes,
      page.links.metaFields.bytes, page.query.terms.size() > 1 ? 0 : request.andMode, request.sort);
}

// As it stands on the page: words are written as they are, what may hold signs is escaped.
FixedText<kEscapedTermSize> ShownSuggestion(const ResultsPage& page, const char* suggestion) {
  if (page.suggestions.asTyped) return EscapedRequestText<kEscapedTermSize>(suggestion);
  FixedText<kEscapedTermSize> shown;
  Set(shown, suggestion);
  return shown;
}

void AppendSuggestions(OutputSections& sections, const ResultsPage& page) {
  if (page.suggestions.count == 0) return;
  const LanguageStrings& language = page.settings.language;
  for (int32_t i = 0; i < page.suggestions.count; ++i) {
    const char* text = page.suggestions.texts[i].bytes;
    AppendSection(sections, Section::kSuggestion, "%s%s <a href=\"%s\">%s</a>",
                  i == 0 ? "<div class=\"suggestion\"><br />" : " ",
                  Text(language, i == 0 ? Str::kDidYouMean : Str::kOr),
                  SuggestionLink(page, text).bytes, ShownSuggestion(page, text).bytes);
  }
  AppendSectionRaw(sections, Section::kSuggestion, "?</div>");
}

// Says whose results these are, with a link to the search for what was typed.
void AppendCorrection(OutputSections& sections, const ResultsPage& page) {
  if (!page.correction.isShown) return;
  const LanguageStrings& language = page.settings.language;
  const SearchRequest& request = page.request;
  FixedText<sizeof page.links.query.bytes> typed;
  UrlEncode(View(page.correction.typed), typed.bytes, sizeof typed.bytes);
  const LinkText link =
      MakeLinkf(page.settings,
                "vela_query=%s%s&amp;vela_per_page=%d%s%s&amp;vela_and=%d&amp;vela_sort=%d&amp;"
                "vela_literal=1",
                typed.bytes, page.links.categories.bytes, request.perPage, page.links.dates.bytes,
                page.links.metaFields.bytes, request.andMode, request.sort);
  AppendSection(sections, Section::kSuggestion,
                "<div class=\"suggestion\"><br />%s <b>%s</b>. %s <a href=\"%s\">%s</a></div>",
                Text(language, Str::kCorrectedTo),
                EscapedRequestText<kEscapedTermSize>(View(page.correction.query)).bytes,
                Text(language, Str::kSearchAsTyped), link.bytes,
                EscapedRequestText<kEscapedTermSize>(View(page.correction.typed)).bytes);
}

void AppendPageCount(OutputSections& sections, const ResultsPage& page) {
  const int64_t pageCount = PageCount(page);
  if (pageCount <= 1) return;
  AppendSection(sections, Section::kPagesCount,
                "<div class=\"result_pagescount\"><br />%d %s</div>\n", SaturateToInt32(pageCount),
                Text(page.settings.language, Str::kPagesOfResults));
}

// A link to the same page of the same search in another order.
LinkText SortLink(const ResultsPage& page, int32_t sort) {
  const SearchRequest& request = page.request;
  return MakeLinkf(page.settings,
                   "vela_query=%s%s&amp;vela_page=%d&amp;vela_per_page=%d%s%s&amp;vela_and=%d"
                   "&amp;vela_xml=%d&amp;vela_sort=%d",
                   page.links.query.bytes, page.links.categories.bytes, request.page,
                   request.perPage, page.links.dates.bytes, page.links.metaFields.bytes,
                   request.andMode, 0, sort);
}

void AppendSorting(OutputSections& sections, const ResultsPage& page) {
  if (page.matches.resultCount <= 1 || page.settings.UseDateTime != 1) return;
  const LanguageStrings& language = page.settings.language;
  const int32_t sort = page.request.sort;
  AppendSectionRaw(sections, Section::kSorting, "<div class=\"sorting\">");
  if (sort <= kSortByRelevance) {
    AppendSection(sections, Section::kSorting, "<b>%s</b> / <a href=\"%s\">%s</a>",
                  Text(language, Str::kSortedByRelevance), SortLink(page, kSortNewestFirst).bytes,
                  Text(language, Str::kSortByDate));
  } else {
    AppendSection(sections, Section::kSorting, "<a href=\"%s\">%s</a> / ",
                  SortLink(page, kSortByRelevance).bytes, Text(language, Str::kSortByRelevance));
    // Kept: from oldest first the link goes on to 3 (golden search/sort_oldest_first).
    AppendSection(
        sections, Section::kSorting, "<a href=\"%s\">%s</a>",
        SortLink(page, WrapAdd32(sort, 1)).bytes,
        Text(language, sort == kSortNewestFirst ? Str::kSortedByDate : Str::kSortedByDateAsc));
  }
  AppendSectionRaw(sections, Section::kSorting, "</div>\n");
}

LinkText PageLink(const ResultsPage& page, int32_t number) {
  const SearchRequest& request = page.request;
  return MakeLinkf(page.settings,
                   "vela_query=%s%s&amp;vela_page=%d&amp;vela_per_page=%d%s%s&amp;vela_and=%d"
                   "&amp;vela_sort=%d&amp;vela_xml=%d",
                   page.links.query.bytes, page.links.categories.bytes, number, request.perPage,
                   page.links.dates.bytes, page.links.metaFields.bytes, request.andMode,
                   request.sort, 0);
}

// How many pages the most results that are ever shown fill; with AmendedAnswers the last may be
// filled in part.
int64_t PagesWithinLimit(const ResultsPage& page) {
  const int64_t perPage = EffectivePerPage(page.request);
  const int64_t rest = page.settings.AmendedAnswers == 1 ? perPage - 1 : 0;
  return (page.settings.MaxResultsPerQuery + rest) / perPage;
}

void AppendPageLinks(OutputSections& sections, const ResultsPage& page) {
  const int64_t pageCount = PageCount(page);
  if (pageCount <= 1) return;
  const LanguageStrings& language = page.settings.language;
  const int32_t current = page.request.page;
  const int64_t first = std::max<int64_t>(1, current - kPagesEachSide);
  const int64_t last = std::min({current + kPagesEachSide, pageCount, PagesWithinLimit(page)});
  AppendSection(sections, Section::kPageNumbers, "<div class=\"result_pages\">%s ",
                Text(language, Str::kResultPages));
  if (current > 1) {
    AppendSection(sections, Section::kPageNumbers, "<a href=\"%s\">&lt;&lt; %s</a> ",
                  PageLink(page, current - 1).bytes, Text(language, Str::kResultPagesPrevious));
  }
  for (int64_t number = first; number <= last; ++number) {
    const auto shown = static_cast<int32_t>(number);
    if (shown == current) {
      AppendSection(sections, Section::kPageNumbers, "%d ", shown);
    } else {
      AppendSection(sections, Section::kPageNumbers, "<a href=\"%s\">%d</a> ",
                    PageLink(page, shown).bytes, shown);
    }
  }
  if (current != last) {
    AppendSection(sections, Section::kPageNumbers, "<a href=\"%s\">%s &gt;&gt;</a> ",
                  PageLink(page, WrapAdd32(current, 1)).bytes,
                  Text(language, Str::kResultPagesNext));
  }
  AppendSectionRaw(sections, Section::kPageNumbers, "</div>");
}

}  // namespace

void AppendHeadingHtml(OutputSections& sections, const Settings& settings,
                       const SearchRequest& request, const Query& query) {
  const LanguageStrings& language = settings.language;
  AppendSectionRaw(sections, Section::kHeading, "<div class=\"searchheading\">");
  AppendSection(sections, Section::kHeading, "%s %s", Text(language, Str::kResultsFor),
                query.display.bytes);
  if (SearchesSomeCategories(settings, request)) {
    AppendSection(sections, Section::kHeading, " %s ", Text(language, Str::kResultsInCategory));
    bool isFirst = true;
    ForEachSelectedCategory(settings, request, [&](const char* name) {
      AppendSection(sections, Section::kHeading, "%s\"%s\"", isFirst ? "" : ", ", name);
      isFirst = false;
    });
  } else if (UsesCategories(settings)) {
    AppendSection(sections, Section::kHeading, " %s", Text(language, Str::kResultsInAllCategories));
  }
  AppendSectionRaw(sections, Section::kHeading, "<br /><br /></div>\n");
  AppendResultsRaw(sections, "<div class=\"results\">\n");
}

void AppendResultsHeadHtml(OutputSections& sections, const ResultsPage& page) {
  AppendSummary(sections, page);
  AppendBroaderSearch(sections, page);
  AppendCategorySummary(sections, page);
  AppendCorrection(sections, page);
  AppendSuggestions(sections, page);
  AppendPageCount(sections, page);
  AppendSorting(sections, page);
}

void AppendResultsFootHtml(OutputSections& sections, const ResultsPage& page) {
  AppendPageLinks(sections, page);
  AppendPoweredBy(sections, page.settings);
  AppendResultsRaw(sections, "</div>\n");
}

void AppendSearchTimeHtml(OutputSections& sections, const Settings& settings, double seconds) {
  AppendSection(
      sections, Section::kSearchTime, "<div class=\"searchtime\"><br /><br />%s %.3f %s</div>\n",
      Text(settings.language, Str::kSearchTook), seconds, Text(settings.language, Str::kSeconds));
}

}  // namespace vela
