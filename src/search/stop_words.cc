#include "search/stop_words.h"

#include <algorithm>
#include <utility>

namespace vela {

namespace {

// Where `list`, words between blanks, holds the word; empty when it does not.
std::string_view FindListed(std::string_view list, std::string_view word) {
  if (word.empty() || word.find(' ') != word.npos) return {};
  for (size_t at = list.find(word); at != list.npos; at = list.find(word, at + 1)) {
    const size_t end = at + word.size();
    const bool begins = at == 0 || list[at - 1] == ' ';
    if (begins && (end == list.size() || list[end] == ' ')) return list.substr(at, word.size());
  }
  return {};
}

bool IsInQuotes(std::string_view text, std::string_view word) {
  for (size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
    const size_t end = at + word.size();
    if (at > 0 && text[at - 1] == '"' && end < text.size() && text[end] == '"') return true;
  }
  return false;
}

}  // namespace

bool DropStopWords(TermList& terms, std::string_view text, const Settings& settings,
                   OwnedArray<DroppedWord>& dropped) {
  dropped.Release();
  if (IsEmpty(settings.StopWords)) return true;
  const auto isStopWord = [&](std::string_view term) {
    return !FindListed(View(settings.StopWords), term).empty() && !IsInQuotes(text, term);
  };
  const auto isSearched = [&](std::string_view term) {
    return !term.empty() && !term.starts_with('-') && !ReadSiteRestriction(term).active &&
           static_cast<int64_t>(term.size()) >= settings.MinWordLen && !isStopWord(term);
  };
  if (std::none_of(terms.terms.begin(), terms.terms.end(), isSearched)) return true;
  const auto count =
      static_cast<size_t>(std::count_if(terms.terms.begin(), terms.terms.end(), isStopWord));
  if (count == 0) return true;
  OwnedArray<std::string_view> kept;
  if (!kept.TryAllocate(terms.terms.size() - count) || !dropped.TryAllocate(count)) return false;
  size_t keptCount = 0;
  size_t droppedCount = 0;
  for (std::string_view term : terms.terms) {
    if (isStopWord(term)) {
      dropped[droppedCount++] = {.word = FindListed(View(settings.StopWords), term),
                                 .place = static_cast<int32_t>(keptCount)};
    } else {
      kept[keptCount++] = term;
    }
  }
  terms.terms = std::move(kept);
  return true;
}

}  // namespace vela
