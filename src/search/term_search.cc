#include "search/term_search.h"

#include "search/highlight_terms.h"
#include "text/lower.h"
#include "text/wildcard.h"

namespace vela {

namespace {

TermStatus FromLookup(LookupStatus status) {
  switch (status) {
    case LookupStatus::kOk:
      break;
    case LookupStatus::kSeekFailed:
      return TermStatus::kSeekFailed;
    case LookupStatus::kMissingData:
      return TermStatus::kMissingData;
    case LookupStatus::kInvalidPage:
      return TermStatus::kInvalidPage;
    case LookupStatus::kNoMemory:
      return TermStatus::kNoMemory;
  }
  return TermStatus::kOk;
}

// The words of a phrase, stemmed one by one.
QueryText StemPhrase(std::string_view words, Stemmer& stemmer, bool utf8) {
  QueryText stemmed;
  std::string_view word;
  while (NextPhraseWord(words, word)) {
    QueryText one;
    Set(one, word);
    StemText(one, stemmer, utf8);
    if (!IsEmpty(stemmed)) Append(stemmed, " ");
    Append(stemmed, View(one));
  }
  return stemmed;
}

// Adds the pages on which the words of the phrase stand one after another.
TermStatus SearchPhrase(TermSearch& search, const TermSearchInput& input, SearchedTerm& term,
                        const TermPlace& place, Matches& matches) {
  const Settings& settings = input.settings;
  QueryText words = term.word;
  if (StemsWords(settings)) {
    words = StemPhrase(View(term.word), input.stemmer, IsUtf8(settings));
  }
  Phrase phrase;
  const LookupStatus prepared =
      PreparePhrase(phrase, View(words), input.dictionary, input.wordMap, input.response);
  if (prepared != LookupStatus::kOk) return FromLookup(prepared);
  if (phrase.words.empty()) return TermStatus::kOk;
  const PhraseWord& first = phrase.words[0];
  const bool isReserved = first.number < FirstSearchedWord(settings);
  if (isReserved || (matches.limitReached && !place.isExclusion)) return TermStatus::kOk;
  if (input.dictionary.EntryAt(first.number).offset == kNoWordList) return TermStatus::kOk;
  if (!TakeFromBudget(search.matchBudget, 1, place.isExclusion, matches.limitReached)) {
    return TermStatus::kOk;
  }
  term.records += first.list.size();
  PageTextReader text;
  text.file = input.pageText;
  text.tokenSize = settings.DictIDLen;
  for (int32_t i = 0; i < first.list.size(); ++i) {
    WordMapRecord found;
    switch (TestCandidate(phrase, RecordAt(first.list, i), settings, text, search.phraseBudget,
                          found)) {
      case CandidateResult::kRejected:
        break;
      case CandidateResult::kStop:
        matches.limitReached = true;
        return TermStatus::kOk;
      case CandidateResult::kFound:
        if (!AddMatch(matches, input.pages, found, place, input.sort,
                      settings.MaxContextKeywords)) {
          return TermStatus::kInvalidPage;
        }
        break;
    }
  }
  return TermStatus::kOk;
}

TermStatus SearchWord(TermSearch& search, const TermSearchInput& input, SearchedTerm& term,
                      const TermPlace& place, Matches& matches) {
  const Settings& settings = input.settings;
  const bool groupsWords = View(term.word).find(' ') != std::string_view::npos;
  if (StemsWords(settings) && !groupsWords) {
    StemText(term.word, input.stemmer, IsUtf8(settings));
  }
  const LookupTerm lookup = {View(term.word), HasWildcard(View(term.word)), place.isExclusion};
  LookupResult result;
  const LookupStatus status = LookUpTerm(lookup, input.dictionary, input.wordMap, settings,
                                         input.response, search.matchBudget, matches.limitReached,
                                         result, [&](const WordMapRecord& record) {
                                           return AddMatch(matches, input.pages, record, place,
                                                           input.sort, settings.MaxContextKeywords);
                                         });
  term.records += result.records;
  if (result.hasNoList) {
    search.skipped.terms[static_cast<size_t>(search.skipped.count++)] = View(term.shown);
  }
  return FromLookup(status);
}

TermStatus SearchTerm(TermSearch& search, const TermSearchInput& input, int32_t index,
                      Matches& matches) {
  SearchedTerm& term = search.terms[static_cast<size_t>(index)];
  const std::string_view shown = View(term.shown);
  const bool isShort = static_cast<int64_t>(shown.size()) < input.settings.MinWordLen;
  if (isShort) search.skipped.terms[static_cast<size_t>(search.skipped.count++)] = shown;
  if (isShort || shown.empty()) {
    ++search.skippedCount;
    return TermStatus::kOk;
  }
  const bool isExclusion = shown.starts_with('-');
  std::string_view restriction;
  const bool isRestriction = IsSiteRestriction(View(term.word), restriction);
  if (isExclusion || isRestriction) ++search.excludedCount;
  if (isRestriction) {
    search.hasSiteRestriction = true;
    search.siteRestriction = restriction;
    search.siteOnly = search.terms.size() == 1;
    return TermStatus::kOk;
  }
  const TermPlace place = {index, search.skippedCount, search.excludedCount, isExclusion};
  const bool isPhrase = IsPhrase(View(term.word), input.settings);
  return isPhrase ? SearchPhrase(search, input, term, place, matches)
                  : SearchWord(search, input, term, place, matches);
}

}  // namespace

bool StartTermSearch(TermSearch& search, Query& query, const Settings& settings) {
  const auto count = static_cast<size_t>(query.terms.size());
  if (!search.terms.TryAllocate(count) || !search.skipped.terms.TryAllocate(count)) return false;
  for (size_t i = 0; i < count; ++i) {
    SearchedTerm& term = search.terms[i];
    std::string_view& listed = query.terms.terms[i];
    if (SearchesSubstrings(settings)) {
      term.shown = SubstringTerm(listed, settings);
    } else {
      Set(term.shown, listed);
    }
    listed = View(term.shown);
    Set(term.word, listed.starts_with('-') ? listed.substr(1) : listed);
  }
  search.matchBudget = MakeMatchBudget(settings.MaxMatches, query.terms.size());
  return true;
}

TermStatus SearchTerms(TermSearch& search, const TermSearchInput& input, Matches& matches) {
  const auto count = static_cast<int32_t>(search.terms.size());
  for (int32_t i = 0; i < count && !search.siteOnly; ++i) {
    const TermStatus status = SearchTerm(search, input, i, matches);
    if (status != TermStatus::kOk) return status;
  }
  return TermStatus::kOk;
}

void StemText(QueryText& word, Stemmer& stemmer, bool utf8) {
  LowerText(word.bytes, View(word).size(), utf8);
  stemmer.StemWord(word);
}

}  // namespace vela
