// lookup.h: from one term of the query to the word-map records of every dictionary word it matches.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/dictionary.h"
#include "index/word_map.h"
#include "settings/settings.h"

namespace vela {

// How many dictionary words the terms may match before the lookup stops.
struct MatchBudget {
  int32_t total = 0;       // MaxMatches
  int32_t perTerm = 0;     // the even share of one term, rounded up
  int32_t used = 0;        // words matched so far, by all terms
  bool isTermCut = false;  // some term matches more than its share
};

MatchBudget MakeMatchBudget(int32_t maxMatches, int32_t termCount);

enum class TermStatus : uint8_t {
  kOk,
  kNoMemory,
  kSeekFailed,   // a word list at a position that no file has
  kMissingData,  // a word list that passes the end of the word map
  kInvalidPage,  // a record of a page that is not in the index
};

// How the search for a term has gone.
struct TermResult {
  TermStatus status = TermStatus::kOk;
  uint64_t offset = 0;  // kSeekFailed: the position
};

// Finds the word list at `offset` of the word map; never kNoMemory or kInvalidPage.
[[nodiscard]] TermResult FindWordList(std::string_view wordMap, int64_t offset, WordList& list);

// One term as it is looked up: without its "-", with its asterisks.
struct LookupTerm {
  std::string_view word;
  bool isExclusion = false;  // exempt from the budgets
};

// What a term is looked up in, and what all terms draw on.
struct LookupInput {
  const Settings& settings;
  const Dictionary& dictionary;
  std::string_view wordMap;  // the bytes of the file
  MatchBudget& budget;
  bool& limitReached;  // set when the budget of all terms is used up; then only exclusions go on
};

struct LookupCounts {
  int64_t records = 0;     // word-map records read for the term
  bool hasNoList = false;  // an exact word that is in the dictionary but on no page
};

// The first word number behind the reserved ones.
int32_t FirstSearchedWord(const Settings& settings);

// Whether the pattern fits the dictionary word or one of its stored variants.
bool MatchesWord(const Dictionary& dictionary, int32_t number, std::string_view pattern,
                 bool foldCase);

// Collects the words that may fit the pattern. False when any may.
bool CollectCandidates(const Dictionary& dictionary, std::string_view pattern, WordSet& candidates);

// Counts one more matched word. False when a budget is used up and the scan must end.
bool TakeFromBudget(MatchBudget& budget, int32_t matchedByTerm, bool isExclusion,
                    bool& limitReached);

// Calls `add(record)` for every record of the word list at `offset` and counts them. `add` gives
// false for a record of a page that is not in the index.
template <typename Add>
[[nodiscard]] TermResult AddWordList(std::string_view wordMap, int64_t offset, LookupCounts& counts,
                                     const Add& add) {
  WordList list;
  const TermResult found = FindWordList(wordMap, offset, list);
  if (found.status != TermStatus::kOk) return found;
  counts.records += list.size();
  for (int32_t i = 0; i < list.size(); ++i) {
    if (!add(RecordAt(list, i))) return {TermStatus::kInvalidPage};
  }
  return {};
}

// Adds the records of the first dictionary word, behind the reserved ones, that equals the term.
template <typename Add>
[[nodiscard]] TermResult LookUpWord(const LookupTerm& term, const LookupInput& input,
                                    LookupCounts& counts, const Add& add) {
  if (input.limitReached && !term.isExclusion) return {};
  const int32_t number = input.dictionary.FindExact(term.word, FirstSearchedWord(input.settings));
  if (number < 0) return {};
  const int64_t offset = input.dictionary.EntryAt(number).offset;
  counts.hasNoList = offset == kNoWordList;
  if (counts.hasNoList || !TakeFromBudget(input.budget, 1, term.isExclusion, input.limitReached)) {
    return {};
  }
  return AddWordList(input.wordMap, offset, counts, add);
}

// Adds the records of every dictionary word behind the reserved ones that fits the pattern, in the
// order of the dictionary, until a budget is used up.
template <typename Add>
[[nodiscard]] TermResult LookUpPattern(const LookupTerm& term, const LookupInput& input,
                                       LookupCounts& counts, const Add& add) {
  const bool foldCase = LowersQueries(input.settings);
  const int32_t end = input.dictionary.size();
  WordSet candidates;
  const bool isNarrowed = CollectCandidates(input.dictionary, term.word, candidates);
  int32_t matched = 0;
  for (int32_t number = FirstSearchedWord(input.settings); number < end; ++number) {
    if (isNarrowed) number = NextInSet(candidates, number, end);
    if (number == end || (input.limitReached && !term.isExclusion)) break;
    if (!MatchesWord(input.dictionary, number, term.word, foldCase)) continue;
    const int64_t offset = input.dictionary.EntryAt(number).offset;
    if (offset == kNoWordList) continue;
    ++matched;
    if (!TakeFromBudget(input.budget, matched, term.isExclusion, input.limitReached)) break;
    const TermResult added = AddWordList(input.wordMap, offset, counts, add);
    if (added.status != TermStatus::kOk) return added;
  }
  return {};
}

}  // namespace vela
