#include "search/stop_words.h"

#include <algorithm>
#include <utility>

namespace vela {

namespace {

// Whether `list`, words between blanks, holds the word.
bool ListsWord(std::string_view list, std::string_view word) {
  if (word.empty() || word.find(' ') != word.npos) return false;
  for (size_t at = list.find(word); at != list.npos; at = list.find(word, at + 1)) {
    const size_t end = at + word.size();
    const bool begins = at == 0 || list[at - 1] == ' ';
    if (begins && (end == list.size() || list[end] == ' ')) return true;
  }
  return false;
}

bool IsInQuotes(std::string_view text, std::string_view word) {
  for (size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
    const size_t end = at + word.size();
    if (at > 0 && text[at - 1] == '"' && end < text.size() && text[end] == '"') return true;
  }
  return false;
}

}  // namespace

bool DropStopWords(TermList& terms, std::string_view text, const Settings& settings) {
  if (IsEmpty(settings.StopWords)) return true;
  const auto isStopWord = [&](std::string_view term) {
    return ListsWord(View(settings.StopWords), term) && !IsInQuotes(text, term);
  };
  const auto isSearched = [&](std::string_view term) {
    return !term.empty() && !term.starts_with('-') && !ReadSiteRestriction(term).active &&
           static_cast<int64_t>(term.size()) >= settings.MinWordLen && !isStopWord(term);
  };
  if (std::none_of(terms.terms.begin(), terms.terms.end(), isSearched)) return true;
  OwnedArray<std::string_view> kept;
  const auto count = std::count_if(terms.terms.begin(), terms.terms.end(),
                                   [&](std::string_view term) { return !isStopWord(term); });
  if (!kept.TryAllocate(static_cast<size_t>(count))) return false;
  std::remove_copy_if(terms.terms.begin(), terms.terms.end(), kept.begin(), isStopWord);
  terms.terms = std::move(kept);
  return true;
}

}  // namespace vela
