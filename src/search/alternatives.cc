#include "search/alternatives.h"

#include "format/word_weight.h"
#include "text/wildcard.h"

namespace vela {

namespace {

// Whether the term is a word by itself.
bool IsPlainWord(std::string_view term, const Settings& settings) {
  return !term.empty() && !term.starts_with('-') && term.find(' ') == term.npos &&
         !HasWildcard(term) && !ReadSiteRestriction(term).active &&
         static_cast<int64_t>(term.size()) >= settings.MinWordLen;
}

QueryText LookedUpForm(std::string_view word, const Settings& settings, Stemmer& stemmer) {
  QueryText form;
  Set(form, word);
  if (StemsWords(settings)) StemText(form, stemmer, IsUtf8(settings));
  return form;
}

// Calls `visit(first term, end, key)` for each word, and each two to kSynonymWordsLimit words side
// by side.
template <typename Visit>
void ForEachKey(const TermList& terms, const Settings& settings, Stemmer& stemmer, Visit visit) {
  for (int32_t first = 0; first < terms.size(); ++first) {
    QueryText key;
    const auto limit = static_cast<int32_t>(kSynonymWordsLimit);
    for (int32_t end = first; end < terms.size() && end - first < limit; ++end) {
      if (!IsPlainWord(terms[end], settings)) break;
      if (end > first) Append(key, " ");
      Append(key, View(LookedUpForm(terms[end], settings, stemmer)));
      visit(first, end + 1, View(key));
    }
  }
}

}  // namespace

bool CollectAlternatives(Alternatives& alternatives, const TermList& terms,
                         const Settings& settings, const SynonymFile& file, Stemmer& stemmer) {
  if (!file.isOpen()) return true;
  size_t room = 0;
  ForEachKey(terms, settings, stemmer, [&](int32_t first, int32_t end, std::string_view key) {
    const SynonymRange range = file.Find(key);
    room += static_cast<size_t>(end - first) * (range.end - range.first);
  });
  if (room == 0) return true;
  if (!alternatives.list.TryAllocate(room)) return false;
  ForEachKey(terms, settings, stemmer, [&](int32_t first, int32_t end, std::string_view key) {
    const SynonymRange range = file.Find(key);
    for (uint32_t i = range.first; i < range.end; ++i) {
      const Synonym synonym = file.At(i);
      if (synonym.text.empty()) continue;
      for (int32_t term = first; term < end; ++term) {
        alternatives.list[static_cast<size_t>(alternatives.count++)] = {term, synonym};
      }
    }
  });
  std::stable_sort(alternatives.list.begin(), alternatives.list.begin() + alternatives.count,
                   [](const Alternative& a, const Alternative& b) { return a.term < b.term; });
  return true;
}

bool MarkAlternatives(HighlightTerms& highlight, const Alternatives& alternatives,
                      const Settings& settings) {
  if (alternatives.count == 0) return true;
  const auto count = static_cast<size_t>(highlight.count);
  if (!highlight.terms.TryResize(count + static_cast<size_t>(alternatives.count))) return false;
  for (int32_t i = 0; i < alternatives.count; ++i) {
    const std::string_view text = alternatives.list[static_cast<size_t>(i)].synonym.text;
    const bool isPhrase = text.find(' ') != text.npos;
    if (isPhrase && !AllowsPhrases(settings)) continue;
    highlight.terms[static_cast<size_t>(highlight.count++)] = {text, false, isPhrase};
  }
  return true;
}

uint32_t ScaledScore(uint32_t score, uint32_t weight, const Settings& settings) {
  if (weight >= kWholeSynonymWeight) return score;
  const auto scale = [weight](uint32_t whole) {
    return std::max(1U, whole * weight / kWholeSynonymWeight);
  };
  return settings.Ranking == 1 ? WeightByte(scale(WeightOf(score)), false) : scale(score);
}

WordList PagesOf(const Synonym& synonym, const TermSearchInput& input) {
  if (synonym.records.size() > 0 || synonym.text.find(' ') != synonym.text.npos) {
    return synonym.records;
  }
  WordList list;
  const QueryText form = LookedUpForm(synonym.text, input.settings, input.stemmer);
  const int32_t number = input.dictionary.FindExact(View(form), FirstSearchedWord(input.settings));
  if (number < 0) return list;
  const int64_t offset = input.dictionary.EntryAt(number).offset;
  if (offset == kNoWordList ||
      FindWordList(input.wordMap, offset, list).status != TermStatus::kOk) {
    return {};
  }
  return list;
}

bool MarkFoundPages(std::string_view word, const TermSearchInput& input,
                    OwnedArray<uint64_t>& found) {
  const auto pages = static_cast<size_t>(std::max(input.settings.NumPages, 0));
  if (!found.TryAllocate((pages + 63) / 64)) return false;
  const int32_t number = input.dictionary.FindExact(word, FirstSearchedWord(input.settings));
  if (number < 0) return true;
  const int64_t offset = input.dictionary.EntryAt(number).offset;
  WordList list;
  if (offset == kNoWordList ||
      FindWordList(input.wordMap, offset, list).status != TermStatus::kOk) {
    return true;
  }
  for (int32_t i = 0; i < list.size(); ++i) {
    const uint32_t page = RecordAt(list, i).page;
    if (page < pages) found[page / 64] |= uint64_t{1} << (page % 64);
  }
  return true;
}

}  // namespace vela
