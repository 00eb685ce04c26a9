#include "search/lookup.h"

#include <algorithm>
#include <cmath>

#include "text/numbers.h"
#include "text/wildcard.h"

namespace vela {

MatchBudget MakeMatchBudget(int32_t maxMatches, int32_t termCount) {
  MatchBudget budget;
  budget.total = maxMatches;
  budget.perTerm = maxMatches;
  if (termCount > 0) {
    budget.perTerm = static_cast<int32_t>(std::ceil(static_cast<double>(maxMatches) / termCount));
  }
  return budget;
}

TermResult FindWordList(std::string_view wordMap, int64_t offset, WordList& list) {
  switch (ReadWordList(wordMap, offset, list)) {
    case WordListStatus::kOk:
      break;
    case WordListStatus::kSeekFailed:
      return {TermStatus::kSeekFailed, static_cast<uint64_t>(offset)};
    case WordListStatus::kMissingData:
      return {TermStatus::kMissingData};
  }
  return {};
}

int32_t FirstSearchedWord(const Settings& settings) {
  return std::max(0, SaturateToInt32(int64_t{settings.DictReservedLimit} + 1));
}

bool MatchesWord(const Dictionary& dictionary, int32_t number, std::string_view pattern,
                 bool foldCase) {
  if (MatchesWildcard(dictionary.WordAt(number), pattern, foldCase)) return true;
  if (!dictionary.HasVariants(number)) return false;
  VariantReader variants(dictionary, dictionary.EntryAt(number));
  std::string_view variant;
  while (variants.Next(variant)) {
    if (MatchesWildcard(variant, pattern, foldCase)) return true;
  }
  return false;
}

bool CollectCandidates(const Dictionary& dictionary, std::string_view pattern,
                       WordSet& candidates) {
  constexpr std::string_view kWildcards = "*?";
  const std::string_view beginning = pattern.substr(0, pattern.find_first_of(kWildcards));
  if (dictionary.CollectByBeginning(beginning, candidates)) return true;
  std::string_view longest;
  while (!pattern.empty()) {
    const std::string_view piece = pattern.substr(0, pattern.find_first_of(kWildcards));
    if (piece.size() > longest.size()) longest = piece;
    pattern.remove_prefix(std::min(piece.size() + 1, pattern.size()));
  }
  return !longest.empty() && dictionary.CollectByPiece(longest, candidates);
}

bool TakeFromBudget(MatchBudget& budget, int32_t matchedByTerm, bool isExclusion,
                    bool& limitReached) {
  budget.used = WrapAdd32(budget.used, 1);
  if (isExclusion) return true;
  if (budget.used > budget.total) {
    limitReached = true;
    return false;
  }
  if (matchedByTerm <= budget.perTerm) return true;
  budget.isTermCut = true;
  return false;
}

}  // namespace vela
