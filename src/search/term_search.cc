#include "search/term_search.h"

#include <algorithm>

#include "search/alternatives.h"
#include "search/highlight_terms.h"
#include "search/run_phrase.h"
#include "search/run_terms.h"
#include "text/lower.h"
#include "text/run_cut.h"
#include "text/wildcard.h"

namespace vela {

namespace {

// Whether the term, its "-" and asterisks included, is too short for the index.
bool IsShort(std::string_view shown, const Settings& settings) {
  return static_cast<int64_t>(shown.size()) < settings.MinWordLen;
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

// Finds, for a run that stands on no page, those that have all of its pieces, and as many of these
// side by side as any page has.
TermStatus FindPieces(Phrase& phrase, const TermSearchInput& input, PageTextReader& text,
                      PhraseBudget& budget, RunMatches& run, bool& limitReached) {
  const WordList list = phrase.words[0].list;
  const auto candidates = static_cast<size_t>(list.size());
  if (run.pages.size() < candidates && !run.pages.TryAllocate(candidates)) {
    return TermStatus::kNoMemory;
  }
  run.count = 0;
  uint32_t most = 0;
  for (int32_t i = 0; i < list.size() && !limitReached; ++i) {
    WordMapRecord found;
    uint32_t neighbours = 0;
    switch (TestNeighbours(phrase, RecordAt(list, i), input.settings, text, budget, found,
                           neighbours)) {
      case CandidateResult::kRejected:
        break;
      case CandidateResult::kStop:
        limitReached = true;
        break;
      case CandidateResult::kFound:
        if (neighbours > most) run.count = 0;
        most = std::max(most, neighbours);
        if (neighbours == most) run.Add(found, 1);
        break;
    }
  }
  return TermStatus::kOk;
}

// Adds the pages on which the words of the phrase stand one after another.
TermResult SearchPhrase(TermSearch& search, const TermSearchInput& input, SearchedTerm& term,
                        const TermPlace& place, Matches& matches) {
  const Settings& settings = input.settings;
  QueryText words = term.word;
  if (StemsWords(settings)) {
    words = StemPhrase(View(term.word), input.stemmer, IsUtf8(settings));
  }
  Phrase phrase;
  const TermResult prepared = PreparePhrase(phrase, View(words), input.dictionary, input.wordMap);
  if (prepared.status != TermStatus::kOk) return prepared;
  if (phrase.words.empty()) return {};
  const PhraseWord& first = phrase.words[0];
  const bool isReserved = first.number < FirstSearchedWord(settings);
  if (isReserved || (matches.limitReached && !place.isExclusion)) return {};
  if (input.dictionary.EntryAt(first.number).offset == kNoWordList) return {};
  if (!TakeFromBudget(search.matchBudget, 1, place.isExclusion, matches.limitReached)) return {};
  term.records += first.list.size();
  phrase.isRun = CutsRuns(settings) && HasRunPiece(View(words));
  // What its words say, and not what the first of them says.
  if (settings.Ranking == 1) term.mass = MassOfWords(phrase, settings.NumPages);
  const bool weighsRun = phrase.isRun && settings.Ranking == 1;
  RunMatches run;
  if (weighsRun && !run.pages.TryAllocate(static_cast<size_t>(first.list.size()))) {
    return {TermStatus::kNoMemory};
  }
  TermRecords records(matches, input.pages, place, input.sort, settings.MaxContextKeywords);
  const auto add = [&records](const WordMapRecord& record) { return records.Add(record); };
  size_t foundCount = 0;
  const auto addRun = [&] {
    if (!weighsRun) return true;
    return AddRunMatches(run, settings.NumPages, add);
  };
  const TextPairs pairs(input.lookup, input.pageText, settings);
  PageTextReader text;
  text.file = input.pageText;
  text.tokenSize = settings.DictIDLen;
  text.stretches = input.pageTextStretches;
  for (int32_t i = 0; i < first.list.size(); ++i) {
    WordMapRecord found;
    switch (TestCandidate(phrase, RecordAt(first.list, i), settings, pairs, text,
                          search.phraseBudget, found)) {
      case CandidateResult::kRejected:
        break;
      case CandidateResult::kStop:
        if (!addRun()) return {TermStatus::kInvalidPage};
        matches.limitReached = true;
        return {};
      case CandidateResult::kFound:
        ++foundCount;
        if (weighsRun) {
          run.Add(found, 1 + CountPhrase(phrase, settings, text));
        } else if (!add(found)) {
          return {TermStatus::kInvalidPage};
        }
        break;
    }
  }
  const bool looksForPieces = foundCount == 0 && phrase.isRun && !place.isExclusion &&
                              phrase.words.size() > 1 && IsTypedAsOneWord(input.query, term.shown);
  if (looksForPieces) {
    bool stops = false;
    const TermStatus status = FindPieces(phrase, input, text, search.phraseBudget, run, stops);
    if (status != TermStatus::kOk) return {status};
    for (size_t i = 0; i < run.count && !weighsRun; ++i) {
      if (!add(run.pages[i].record)) return {TermStatus::kInvalidPage};
    }
    if (!addRun()) return {TermStatus::kInvalidPage};
    matches.limitReached = matches.limitReached || stops;
    return {};
  }
  return addRun() ? TermResult{} : TermResult{TermStatus::kInvalidPage};
}

void Skip(TermSearch& search, std::string_view shown) {
  search.skipped.terms[static_cast<size_t>(search.skipped.count++)] = shown;
}

TermResult SearchWord(TermSearch& search, const TermSearchInput& input, SearchedTerm& term,
                      const TermPlace& place, Matches& matches) {
  const Settings& settings = input.settings;
  const bool groupsWords = View(term.word).find(' ') != std::string_view::npos;
  if (StemsWords(settings) && !groupsWords) {
    StemText(term.word, input.stemmer, IsUtf8(settings));
  }
  const LookupTerm lookup = {.word = View(term.word), .isExclusion = place.isExclusion};
  const LookupInput lookupInput = {.settings = settings,
                                   .dictionary = input.dictionary,
                                   .wordMap = input.wordMap,
                                   .budget = search.matchBudget,
                                   .limitReached = matches.limitReached};
  TermRecords records(matches, input.pages, place, input.sort, settings.MaxContextKeywords);
  const auto add = [&records](const WordMapRecord& record) { return records.Add(record); };
  LookupCounts counts;
  const TermResult result = HasWildcard(lookup.word)
                                ? LookUpPattern(lookup, lookupInput, counts, add)
                                : LookUpWord(lookup, lookupInput, counts, add);
  term.records += counts.records;
  if (counts.hasNoList) Skip(search, term.shown);
  if (result.status != TermStatus::kOk || input.alternatives == nullptr) return result;
  if (place.isExclusion || matches.limitReached) return result;
  return AddAlternatives(*input.alternatives, place.listIndex, View(term.word), input, term.records,
                         add);
}

// A page then has a term once whatever number of its words it holds: with two places that count,
// the words of a pattern behind a term that was passed over count for the next term, too. And it is
// counted down once by all exclusions together.
void CountOnce(TermPlace& place) {
  place.countsFoundOnly = true;
  place.index -= place.skipped + place.excluded;
  place.skipped = 0;
  place.excluded = 0;
}

TermResult SearchTerm(TermSearch& search, const TermSearchInput& input, int32_t index,
                      Matches& matches) {
  SearchedTerm& term = search.terms[static_cast<size_t>(index)];
  const bool isShort = IsShort(term.shown, input.settings);
  if (isShort) Skip(search, term.shown);
  if (isShort || term.shown.empty()) {
    ++search.skippedCount;
    return {};
  }
  const bool isExclusion = term.shown.starts_with('-');
  const bool isRestriction = ReadSiteRestriction(View(term.word)).active;
  if (isExclusion || isRestriction) ++search.excludedCount;
  if (isRestriction) return {};
  TermPlace place = {.index = index,
                     .skipped = search.skippedCount,
                     .excluded = search.excludedCount,
                     .isExclusion = isExclusion,
                     .hasSeveralWords = HasWildcard(View(term.word)),
                     .listIndex = index};
  if (input.settings.AmendedAnswers == 1) CountOnce(place);
  const bool isPhrase = IsPhrase(View(term.word), input.settings);
  return isPhrase ? SearchPhrase(search, input, term, place, matches)
                  : SearchWord(search, input, term, place, matches);
}

}  // namespace

bool StartTermSearch(TermSearch& search, const TermList& terms, const Settings& settings) {
  const auto count = static_cast<size_t>(terms.size());
  if (!search.terms.TryAllocate(count) || !search.skipped.terms.TryAllocate(count)) return false;
  for (size_t i = 0; i < count; ++i) {
    SearchedTerm& term = search.terms[i];
    term.shown = terms.terms[i];
    Set(term.word, term.shown.starts_with('-') ? term.shown.substr(1) : term.shown);
    const SiteRestriction site = ReadSiteRestriction(View(term.word));
    if (site.active && !IsShort(term.shown, settings)) search.site = site;
  }
  search.matchBudget = MakeMatchBudget(settings.MaxMatches, terms.size());
  return true;
}

bool IsOnlySiteRestriction(const TermSearch& search) {
  return search.site.active && search.terms.size() == 1;
}

TermResult SearchTerms(TermSearch& search, const TermSearchInput& input, Matches& matches) {
  const auto count = static_cast<int32_t>(search.terms.size());
  for (int32_t i = 0; i < count; ++i) {
    const TermResult result = SearchTerm(search, input, i, matches);
    if (result.status != TermStatus::kOk) return result;
  }
  // Not earlier: it would end the search for the terms that follow.
  if (input.settings.AmendedAnswers == 1 && search.matchBudget.isTermCut) {
    matches.limitReached = true;
  }
  return {};
}

void StemText(QueryText& word, Stemmer& stemmer, bool utf8) {
  LowerText(word.bytes, View(word).size(), utf8);
  stemmer.StemWord(word);
}

}  // namespace vela
