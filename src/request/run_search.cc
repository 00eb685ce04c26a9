#include "request/run_search.h"

#include <algorithm>
#include <utility>

#include "output/messages.h"
#include "output/recommended.h"
#include "output/result_block.h"
#include "output/results_page.h"
#include "output/search_log.h"
#include "request/search_context.h"
#include "search/alternatives.h"
#include "search/corrections.h"
#include "search/filters.h"
#include "search/highlight_terms.h"
#include "search/matches.h"
#include "search/passages.h"
#include "search/ranking.h"
#include "search/run_terms.h"
#include "search/stop_words.h"
#include "search/suggestions.h"
#include "search/term_search.h"
#include "settings/file_pieces.h"

namespace vela {

namespace {

// What one search gathers on its way.
struct SearchState {
  TermSearch terms;
  Alternatives alternatives;
  HighlightTerms highlight;
  Matches matches;
  PageFilters filters;
  ResultList results;
  LinkParameters links;
  Suggestions suggestions;
  ShownCorrection correction;
  bool everyPage = false;  // no word is searched for: every page is a candidate
  int32_t recommendedShown = 0;
};

int EndWith(SearchContext& ctx, Message message) {
  WriteMessage(ctx.response, message);
  return EndRequest(ctx);
}

int EndWithInvalidCategory(SearchContext& ctx) {
  ctx.exitStatus = 1;
  return EndWith(ctx, Message::kInvalidCategory);
}

int CreateStemmer(SearchContext& ctx) {
  if (!StemsWords(ctx.settings)) return 1;
  switch (ctx.stemmer.Create(ctx.settings.StemmingAlgo, StemsUtf8(ctx.settings))) {
    case StemmerStatus::kOk:
      return 1;
    case StemmerStatus::kInvalidAlgorithm:
      return EndWith(ctx, Message::kInvalidStemmer);
    case StemmerStatus::kUnavailable:
      break;
  }
  return EndWith(ctx, Message::kNoStemmer);
}

int PrepareSearch(SearchContext& ctx, SearchState& state) {
  const Settings& settings = ctx.settings;
  if (!AllocateMatches(state.matches, settings.NumPages) ||
      !DropStopWords(ctx.query.terms, View(ctx.query.text), settings, ctx.query.dropped) ||
      (settings.Ranking == 1 && !AllocateWeights(state.matches, ctx.query.terms.size())) ||
      !CutRunsOfTerms(ctx.query.terms, settings) ||
      !AddSubstringAsterisks(ctx.query.terms, settings) ||
      !StartTermSearch(state.terms, ctx.query.terms, settings) ||
      (ctx.search.marksWords &&
       !CollectHighlightTerms(state.highlight, ctx.query.terms, SearchesPhrases(settings))) ||
      !CollectAlternatives(state.alternatives, ctx.query.terms, settings, ctx.index.synonyms,
                           ctx.stemmer) ||
      (ctx.search.marksWords && !MarkAlternatives(state.highlight, state.alternatives, settings)) ||
      !PrepareFilters(state.filters, {.settings = settings,
                                      .request = ctx.search,
                                      .pages = ctx.index.pages,
                                      .pageData = ctx.index.pageData.bytes(),
                                      .site = state.terms.site})) {
    return EndWith(ctx, Message::kOutOfMemoryForSearch);
  }
  state.everyPage = ctx.search.metaOnly || IsOnlySiteRestriction(state.terms);
  state.terms.dropped = {ctx.query.dropped.data(), ctx.query.dropped.size()};
  state.terms.phraseBudget = {.maxSeeks = settings.MaxContextSeeks,
                              .deadline = ctx.startTime + settings.MaxSearchTime,
                              .now = CurrentTime};
  state.links = MakeLinkParameters(settings, ctx.search, View(ctx.query.text), state.filters.dates);
  return 1;
}

int ShowRecommended(SearchContext& ctx, SearchState& state) {
  if (ctx.settings.Recommended != 1) return 1;
  const RecommendedInput input = {.settings = ctx.settings,
                                  .query = ctx.query,
                                  .encodedQuery = View(state.links.query),
                                  .files = ctx.index,
                                  .highlight = state.highlight};
  if (!WriteRecommended(ctx.response, ctx.output, input, state.recommendedShown)) {
    return EndRequest(ctx);
  }
  return 1;
}

int LookUpTerms(SearchContext& ctx, SearchState& state) {
  FileStretches stretches(ctx.directory, kPageTextFileName);
  const TermSearchInput input = {.settings = ctx.settings,
                                 .dictionary = ctx.dictionary,
                                 .pages = ctx.index.pages,
                                 .wordMap = ctx.index.wordMap.bytes(),
                                 .pageText = ctx.index.pageText.bytes(),
                                 .lookup = ctx.index.lookup,
                                 .sort = ctx.search.sort,
                                 .stemmer = ctx.stemmer,
                                 .alternatives = &state.alternatives,
                                 .pageTextStretches = &stretches,
                                 .query = View(ctx.query.text)};
  const TermResult result = SearchTerms(state.terms, input, state.matches);
  if (result.status == TermStatus::kOk) return 1;
  WriteTermFailure(ctx.response, result);
  return EndRequest(ctx);
}

int Rank(SearchContext& ctx, SearchState& state) {
  const int32_t effectiveTerms =
      ctx.query.terms.size() - state.terms.skippedCount - state.terms.excludedCount;
  QueryWeights weights;
  const bool weighs = !state.matches.weights.empty();
  if (weighs) weights = WeighQuery(state.terms, effectiveTerms, ctx.settings.NumPages);
  const int64_t shown = int64_t{std::max(ctx.search.page, 1)} * EffectivePerPage(ctx.search);
  const RankInput input = {.settings = ctx.settings,
                           .request = ctx.search,
                           .pages = ctx.index.pages,
                           .weights = weighs ? &weights : nullptr,
                           .effectiveTerms = effectiveTerms,
                           .everyPage = state.everyPage,
                           .shown = shown};
  switch (RankMatches(state.matches, state.filters, input, state.results)) {
    case RankStatus::kOk:
      break;
    case RankStatus::kNoMemory:
      return EndWith(ctx, Message::kOutOfMemory);
    case RankStatus::kInvalidCategory:
      return EndWithInvalidCategory(ctx);
  }
  if (state.matches.resultCount > 1) {
    SortResults(state.results, ctx.index.pages, ctx.search.sort, ctx.settings.UseDateTime == 1,
                shown);
  }
  return 1;
}

// Puts the one correction of the query that is certain in its place and searches again, unless that
// finds nothing either.
int SearchCorrected(SearchContext& ctx, SearchState& state, std::string_view corrected) {
  Query typed = std::move(ctx.query);
  ctx.query = Query();
  // The page goes on naming what was typed.
  ctx.query.typedDisplay = typed.typedDisplay;
  ctx.query.display = typed.display;
  Set(ctx.query.typed, corrected);
  if (!ParseQuery(ctx.query, ctx.settings)) return EndWith(ctx, Message::kOutOfMemoryForSearch);
  ctx.query.typed = typed.typed;
  ctx.query.isParsed = true;
  SearchState again;
  if (PrepareSearch(ctx, again) == 0 || LookUpTerms(ctx, again) == 0 || Rank(ctx, again) == 0) {
    return 0;
  }
  if (again.matches.resultCount == 0) {
    ctx.query = std::move(typed);
    return 1;
  }
  again.correction = {.isShown = true, .typed = typed.text, .query = ctx.query.text};
  again.recommendedShown = state.recommendedShown;
  state = std::move(again);
  return state.recommendedShown != 0 ? 1 : ShowRecommended(ctx, state);
}

// Offers other spellings, or shows the results of one.
int CorrectQuery(SearchContext& ctx, SearchState& state) {
  if (!CorrectsByLetters(ctx.settings)) {
    state.suggestions =
        MakeSuggestions(state.terms, ctx.index.spelling, ctx.dictionary, ctx.settings, ctx.stemmer);
    return 1;
  }
  if (!HasRareTerm(state.terms, ctx.settings)) return 1;
  const CorrectionInput input = {.settings = ctx.settings,
                                 .directory = ctx.directory,
                                 .dictionary = ctx.dictionary,
                                 .wordMap = ctx.index.wordMap.bytes(),
                                 .matches = state.matches,
                                 .stemmer = ctx.stemmer};
  const Corrections corrections = MakeCorrections(state.terms, input);
  if (corrections.isCertain && state.matches.resultCount == 0 && ShowsCorrected(ctx.settings) &&
      !ctx.search.isLiteral) {
    if (SearchCorrected(ctx, state, View(corrections.offers.texts[0])) == 0) return 0;
    if (state.correction.isShown) return 1;
  }
  state.suggestions = corrections.offers;
  return 1;
}

int Render(SearchContext& ctx, SearchState& state) {
  const ResultsPage page = {.settings = ctx.settings,
                            .request = ctx.search,
                            .query = ctx.query,
                            .links = state.links,
                            .matches = state.matches,
                            .filters = state.filters,
                            .skipped = state.terms.skipped,
                            .suggestions = state.suggestions,
                            .correction = state.correction};
  WriteResultsHead(ctx.response, ctx.output, page);
  const bool showsContext = ctx.settings.DisplayContext == 1 && !state.everyPage;
  const bool plansPassages = ctx.settings.Passages == 1 && showsContext;
  PassageWords passageWords;
  if (plansPassages) {
    passageWords.Collect({state.terms.terms.data(), state.terms.terms.size()}, ctx.dictionary,
                         ctx.settings);
  }
  const ResultBlocks blocks = {.settings = ctx.settings,
                               .request = ctx.search,
                               .query = ctx.query,
                               .links = state.links,
                               .files = ctx.index,
                               .dictionary = ctx.dictionary,
                               .highlight = state.highlight,
                               .matches = state.matches,
                               .showsContext = showsContext,
                               .passageWords = plansPassages ? &passageWords : nullptr};
  switch (WriteResultBlocks(ctx.response, ctx.output, blocks, state.results)) {
    case BlockStatus::kOk:
      break;
    case BlockStatus::kCorruptPageData:
      return EndWith(ctx, Message::kCorruptIndex);
    case BlockStatus::kInvalidCategory:
      return EndWithInvalidCategory(ctx);
  }
  WriteResultsFoot(ctx.response, ctx.output, page);
  return 1;
}

void FinishSearch(SearchContext& ctx, const SearchState& state) {
  const double endTime = CurrentTime();
  const double seconds = endTime - ctx.startTime;
  WriteSearchTime(ctx.response, ctx.output, ctx.settings, seconds);
  if (ctx.settings.Logging != 1) return;
  const SearchLogEntry entry = {.endTime = endTime,
                                .seconds = seconds,
                                .remoteAddress = View(ctx.request.remoteAddr),
                                .query = View(ctx.request.query),
                                .matches = state.matches.resultCount,
                                .page = ctx.request.pageDefaulted ? 0 : ctx.search.page,
                                .recommended = state.recommendedShown};
  WriteSearchLog(ctx.response, ctx.directory, ctx.settings, ctx.search, entry);
}

}  // namespace

int RunSearch(SearchContext& ctx) {
  if (CreateStemmer(ctx) == 0) return 0;
  SearchState state;
  WriteHeading(ctx.response, ctx.output, ctx.settings, ctx.search, ctx.query);
  if (PrepareSearch(ctx, state) == 0 || ShowRecommended(ctx, state) == 0 ||
      LookUpTerms(ctx, state) == 0 || Rank(ctx, state) == 0 || CorrectQuery(ctx, state) == 0) {
    return 0;
  }
  ctx.index.wordMap.Close();
  if (Render(ctx, state) == 0) return 0;
  FinishSearch(ctx, state);
  return EndRequest(ctx);
}

}  // namespace vela
