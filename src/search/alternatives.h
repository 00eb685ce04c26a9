// alternatives.h: the other words by which the terms of a query find pages (format/synonyms.h).
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "index/synonyms.h"
#include "search/highlight_terms.h"
#include "search/lookup.h"
#include "search/query.h"
#include "search/term_search.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/stemmer.h"

namespace vela {

struct Alternative {
  int32_t term = 0;  // in the term list
  Synonym synonym;
};

struct Alternatives {
  OwnedArray<Alternative> list;  // by term
  int32_t count = 0;
};

// Finds the alternatives of each term that is a word by itself, and of terms that stand side by
// side and make one word written apart, which then are alternatives of each of them. Phrases,
// patterns, exclusions and restrictions of the addresses have none. The file must outlive what is
// collected. False when memory is out.
[[nodiscard]] bool CollectAlternatives(Alternatives& alternatives, const TermList& terms,
                                       const Settings& settings, const SynonymFile& file,
                                       Stemmer& stemmer);

// Adds them to what is marked. False when memory is out.
[[nodiscard]] bool MarkAlternatives(HighlightTerms& highlight, const Alternatives& alternatives,
                                    const Settings& settings);

// What is left of the score of a record, or of the weight that stands in its place with Ranking, by
// a synonym's weight: 1 at least. The title of a page says what is meant only to a whole synonym.
uint32_t ScaledScore(uint32_t score, uint32_t weight, const Settings& settings);

// The pages of an alternative; empty for a word that is on none.
WordList PagesOf(const Synonym& synonym, const TermSearchInput& input);

// The pages that a term, `word` as it is looked up, finds already. False when memory is out.
[[nodiscard]] bool MarkFoundPages(std::string_view word, const TermSearchInput& input,
                                  OwnedArray<uint64_t>& found);

// Calls `add(record)` for pages that the alternatives of term number `term` find and the term
// itself does not, once for each page, and counts them. `add` gives false for a page that is not in
// the index.
template <typename Add>
[[nodiscard]] TermResult AddAlternatives(const Alternatives& alternatives, int32_t term,
                                         std::string_view word, const TermSearchInput& input,
                                         int64_t& records, const Add& add) {
  const Alternative* end = alternatives.list.begin() + alternatives.count;
  const Alternative* first =
      std::find_if(alternatives.list.begin(), end,
                   [term](const Alternative& alternative) { return alternative.term == term; });
  if (first == end) return {};
  OwnedArray<uint64_t> found;
  if (!MarkFoundPages(word, input, found)) return {TermStatus::kNoMemory};
  for (; first != end && first->term == term; ++first) {
    const WordList list = PagesOf(first->synonym, input);
    for (int32_t i = 0; i < list.size(); ++i) {
      WordMapRecord record = RecordAt(list, i);
      // A page that the index does not have is left out: the file may be of another one.
      if (record.page >= static_cast<uint32_t>(std::max(input.settings.NumPages, 0))) continue;
      uint64_t& bits = found[record.page / 64];
      const uint64_t bit = uint64_t{1} << (record.page % 64);
      if ((bits & bit) != 0) continue;
      bits |= bit;
      record.score = ScaledScore(record.score, first->synonym.weight, input.settings);
      if (!add(record)) return {TermStatus::kInvalidPage};
      ++records;
    }
  }
  return {};
}

}  // namespace vela
