#include "output/results_page_xml.h"

#include "output/markup.h"
#include "text/numbers.h"

namespace vela {

namespace {

void WriteCounts(Response& response, const ResultsPage& page) {
  int64_t start = 1;
  if (page.request.page >= 2 && page.matches.resultCount != 0) {
    start = int64_t{EffectivePerPage(page.request)} * (page.request.page - 1) + 1;
  }
  WriteOut(response, "<opensearch:totalResults>%d</opensearch:totalResults>\n",
           page.matches.resultCount);
  WriteOut(response, "<opensearch:startIndex>%d</opensearch:startIndex>\n", SaturateToInt32(start));
  WriteOut(response, "<opensearch:itemsPerPage>%d</opensearch:itemsPerPage>\n",
           page.request.perPage);
}

void WriteCategorySummary(Response& response, const ResultsPage& page) {
  if (!ShowsCategorySummary(page)) return;
  const auto& counts = page.filters.categoryCounts;
  for (size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0 || counts[i] == static_cast<uint32_t>(page.matches.resultCount)) continue;
    WriteRaw(response, "<vela:categorySummary>\n");
    WriteOut(response, "<vela:categoryName>%s</vela:categoryName>\n",
             page.settings.categoryNames.At(static_cast<int32_t>(i)));
    WriteOut(response, "<vela:categoryCount>%d</vela:categoryCount>\n", WrapToInt32(counts[i]));
    WriteRaw(response, "</vela:categorySummary>\n");
  }
}

void WriteSuggestions(Response& response, const ResultsPage& page) {
  for (int32_t i = 0; i < page.suggestions.count; ++i) {
    const char* text = page.suggestions.texts[i].bytes;
    if (page.suggestions.asTyped) {
      WriteOut(response, "<vela:spelling>%s</vela:spelling>\n",
               EscapedRequestText<sizeof Suggestions::texts[0].bytes>(text).bytes);
    } else {
      WriteOut(response, "<vela:spelling>%s</vela:spelling>\n", text);
    }
  }
}

void WriteCorrection(Response& response, const ResultsPage& page) {
  if (!page.correction.isShown) return;
  WriteOut(response, "<vela:corrected>%s</vela:corrected>\n",
           EscapedRequestText<kDisplayQuerySize>(View(page.correction.query)).bytes);
}

}  // namespace

void WriteHeadingXml(Response& response, const Settings& settings, const SearchRequest& request,
                     const Query& query) {
  WriteOut(response, "<vela:searchquery>%s</vela:searchquery>\n", query.display.bytes);
  if (!UsesCategories(settings)) return;
  if (SearchesAllCategories(request)) {
    WriteRaw(response, "<vela:searchcategory>All</vela:searchcategory>\n");
    return;
  }
  ForEachSelectedCategory(settings, request, [&](const char* name) {
    WriteOut(response, "<vela:searchcategory>%s</vela:searchcategory>\n", name);
  });
}

void WriteResultsHeadXml(Response& response, const ResultsPage& page) {
  WriteCounts(response, page);
  WriteCategorySummary(response, page);
  WriteCorrection(response, page);
  WriteSuggestions(response, page);
}

void WriteSearchTimeXml(Response& response, double seconds) {
  WriteOut(response, "<vela:searchtime>%.3f</vela:searchtime>\n", seconds);
}

}  // namespace vela
