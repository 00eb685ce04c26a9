// lookup.h: from one term of the query to the word-map records of every dictionary word it matches.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/dictionary.h"
#include "index/word_map.h"
#include "output/response.h"
#include "settings/settings.h"

namespace vela {

// How many dictionary words the terms may match before the lookup stops.
struct MatchBudget {
  int32_t total = 0;    // MaxMatches
  int32_t perTerm = 0;  // the even share of one term, rounded up
  int32_t used = 0;     // words matched so far, by all terms
};

MatchBudget MakeMatchBudget(int32_t maxMatches, int32_t termCount);

enum class LookupStatus { kOk, kSeekFailed, kMissingData, kInvalidPage, kNoMemory };

// One term as it is looked up: without its "-", with its asterisks.
struct LookupTerm {
  std::string_view word;
  bool isWildcard = false;
  bool isExclusion = false;  // exempt from the budgets
};

struct LookupResult {
  int64_t records = 0;     // word-map records read for the term
  int32_t firstWord = -1;  // the first dictionary word matched
  bool hasNoList = false;  // an exact word that is in the dictionary but on no page
};

// The first word number behind the reserved ones.
int32_t FirstSearchedWord(const Settings& settings);

// Whether the pattern fits the dictionary word or one of its stored variants.
bool MatchesWord(const Dictionary& dictionary, int32_t number, std::string_view pattern,
                 bool foldCase);

// Goes through the dictionary in order, from the first word behind the reserved ones, and calls
// `add(record)` for every record of every word that the term matches. `add` gives false for a
// record that names no page. `limitReached` is set, and stops the scan of any term but an
// exclusion, when the budget of all terms is used up. A failed seek has written its message.
template <typename Add>
[[nodiscard]] LookupStatus LookUpTerm(const LookupTerm& term, const Dictionary& dictionary,
                                      std::string_view wordMap, const Settings& settings,
                                      Response& response, MatchBudget& budget, bool& limitReached,
                                      LookupResult& result, Add add);

// Reads the list at `offset` and calls `add` for each record; counts them in `result`.
template <typename Add>
[[nodiscard]] LookupStatus AddWordList(int64_t offset, std::string_view wordMap, Response& response,
                                       LookupResult& result, Add add) {
  WordList list;
  switch (ReadWordList(response, wordMap, offset, list)) {
    case WordListStatus::kSeekFailed:
      return LookupStatus::kSeekFailed;
    case WordListStatus::kMissingData:
      return LookupStatus::kMissingData;
    case WordListStatus::kOk:
      break;
  }
  result.records += list.size();
  for (int32_t i = 0; i < list.size(); ++i) {
    if (!add(RecordAt(list, i))) return LookupStatus::kInvalidPage;
  }
  return LookupStatus::kOk;
}

// Counts one more matched word. False when a budget is used up and the scan must end.
bool TakeFromBudget(MatchBudget& budget, int32_t matchedByTerm, bool isExclusion,
                    bool& limitReached);

template <typename Add>
LookupStatus LookUpTerm(const LookupTerm& term, const Dictionary& dictionary,
                        std::string_view wordMap, const Settings& settings, Response& response,
                        MatchBudget& budget, bool& limitReached, LookupResult& result, Add add) {
  int32_t matchedByTerm = 0;
  int32_t number = FirstSearchedWord(settings);
  for (; number < dictionary.size() && (!limitReached || term.isExclusion); ++number) {
    if (term.isWildcard) {
      if (!MatchesWord(dictionary, number, term.word, LowersQueries(settings))) continue;
    } else {
      number = dictionary.FindExact(term.word, number);
      if (number < 0) break;
    }
    const int64_t offset = dictionary.EntryAt(number).offset;
    if (offset == kNoWordList) {
      if (term.isWildcard) continue;
      result.hasNoList = true;
      break;
    }
    ++matchedByTerm;
    if (!TakeFromBudget(budget, matchedByTerm, term.isExclusion, limitReached)) break;
    if (result.firstWord < 0) result.firstWord = number;
    const LookupStatus status = AddWordList(offset, wordMap, response, result, add);
    if (status != LookupStatus::kOk) return status;
    if (!term.isWildcard) break;
  }
  return LookupStatus::kOk;
}

}  // namespace vela
