// sections.h: the named pieces of the page, gathered while the request runs and poured into the
// template at its end.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "output/grow_text.h"

namespace vela {

enum class Section : uint8_t {
  kFormStart,
  kFormEnd,
  kSearchBox,
  kSearchButton,
  kResultsPerPage,
  kMatchOptions,
  kCategories,
  kCustomMetaOptions,
  kHeading,
  kSummary,
  kSuggestion,
  kPagesCount,
  kSorting,
  kSearchTime,
  kRecommended,
  kPageNumbers,
  kCatSummary,
  kJavaScripts,  // nothing fills it; templates may carry its marker
  kDateRange,
};
inline constexpr size_t kSectionCount = 19;

// The template marker of each section, in section order.
inline constexpr std::array<std::string_view, kSectionCount> kSectionMarkers = {
    "<!--VELA_SHOW_FORMSTART-->",      "<!--VELA_SHOW_FORMEND-->",
    "<!--VELA_SHOW_SEARCHBOX-->",      "<!--VELA_SHOW_SEARCHBUTTON-->",
    "<!--VELA_SHOW_RESULTSPERPAGE-->", "<!--VELA_SHOW_MATCHOPTIONS-->",
    "<!--VELA_SHOW_CATEGORIES-->",     "<!--VELA_SHOW_CUSTOMMETAOPTIONS-->",
    "<!--VELA_SHOW_HEADING-->",        "<!--VELA_SHOW_SUMMARY-->",
    "<!--VELA_SHOW_SUGGESTION-->",     "<!--VELA_SHOW_PAGESCOUNT-->",
    "<!--VELA_SHOW_SORTING-->",        "<!--VELA_SHOW_SEARCHTIME-->",
    "<!--VELA_SHOW_RECOMMENDED-->",    "<!--VELA_SHOW_PAGENUMBERS-->",
    "<!--VELA_SHOW_CATSUMMARY-->",     "<!--VELA_SHOW_JAVASCRIPTS-->",
    "<!--VELA_SHOW_DATERANGE-->",
};

struct OutputSections {
  std::array<GrowText, kSectionCount> texts;
  GrowText results;  // the blocks of the results, in the order of the page
};

// Makes every section and the results empty texts; the results get room for `perPage` blocks. False
// as soon as memory is out: what is missing then takes no text, and the request goes on.
bool AllocateSections(OutputSections& sections, int32_t perPage);

// Formats and appends to one section, or to the results. Nothing is escaped: an argument is safe
// for HTML already, as the texts of the index and of the settings file are by rule, or stands in
// its escaped or encoded form (markup.h), as whatever came with the request does. The formatted
// length, -1 when the text was dropped for want of memory.
[[gnu::format(printf, 3, 4)]] int32_t AppendSection(OutputSections& sections, Section section,
                                                    const char* format, ...);
[[gnu::format(printf, 2, 3)]] int32_t AppendResults(OutputSections& sections, const char* format,
                                                    ...);

// The same with the text as it stands, which is no format.
int32_t AppendSectionRaw(OutputSections& sections, Section section, std::string_view text);
int32_t AppendResultsRaw(OutputSections& sections, std::string_view text);

// Empties one section; its room stays.
void ClearSection(OutputSections& sections, Section section);

std::string_view SectionText(const OutputSections& sections, Section section);

}  // namespace vela
