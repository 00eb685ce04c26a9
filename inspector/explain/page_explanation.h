// page_explanation.h: why a search finds a page where it does, or does not find it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inspector/explain/explained_search.h"
#include "inspector/findings/json_text.h"

namespace vela::inspector {

// What keeps a page out of the results, in the order in which it does.
enum class NotFound : uint8_t {
  kNothing,  // it is found
  kNothingAsked,
  kExcluded,     // it has a word that the query excludes
  kNoTerm,       // it has no term of the query
  kSite,         // its address is not of the site asked for
  kNotAllTerms,  // all terms are asked for
  kCategory,
  kDate,
  kCountedDown,  // exclusions have counted the pages found down to nothing
  kBeyondLimit,  // MaxResultsPerQuery pages or more are before it
};

// What one term of the query does to the page.
struct TermGain {
  enum class Kind : uint8_t { kWord, kPhrase, kPattern, kExclusion, kSite, kShort };
  std::string shown;  // as the query lists it
  std::string word;   // as it is looked up
  Kind kind = Kind::kWord;
  int64_t records = 0;  // pages that have it, one that has several words of it several times
  bool has = false;     // the page does
  uint32_t before = 0;  // the page's sum without the term ...
  uint32_t after = 0;   // ... and with it
  std::vector<std::string> why;  // the words of the index by which the page has it
};

struct PageExplanation {
  uint32_t page = 0;
  NotFound notFound = NotFound::kNothing;
  size_t rank = 0;     // from 1; 0 where it is not found
  uint32_t score = 0;  // as the search program shows it
  std::vector<TermGain> terms;
  PageState state;          // after all terms
  uint32_t wordsScore = 0;  // with Ranking: of the score, what the words give ...
  uint64_t titleScore = 0;  // ... and what the title does
  uint32_t key = 0;         // without Ranking: the sum with what the number of terms adds
  int32_t date = 0;
  uint8_t boost = 0;  // in tenths
};

// `page` is one of the index.
PageExplanation ExplainPage(ExplainedSearch& search, uint32_t page);

// The code of why a page is not found: "no_term" and the like.
std::string_view NotFoundCode(NotFound why);

std::string ExplanationText(const ExplainedSearch& search, const PageExplanation& explanation);
void WriteExplanation(const ExplainedSearch& search, const PageExplanation& explanation,
                      JsonText& json);

// What puts the one page before the other.
std::string OrderText(const ExplainedSearch& search, const PageExplanation& before,
                      const PageExplanation& after);

}  // namespace vela::inspector
