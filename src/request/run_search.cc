#include "request/run_search.h"

#include "output/ending.h"
#include "output/recommended.h"
#include "output/result_block.h"
#include "output/results_page.h"
#include "output/search_log.h"
#include "request/search_context.h"
#include "search/filters.h"
#include "search/highlight_terms.h"
#include "search/matches.h"
#include "search/ranking.h"
#include "search/suggestions.h"
#include "search/term_search.h"

namespace vela {

namespace {

// What one search gathers on its way.
struct SearchState {
  TermSearch terms;
  HighlightTerms highlight;
  Matches matches;
  PageFilters filters;
  ResultList results;
  LinkParameters links;
  int32_t recommendedShown = 0;
};

int EndWithError(SearchContext& ctx, std::string_view message) {
  WriteError(ctx.response, message, ErrorEnd::kLineFeed);
  return EndRequest(ctx);
}

int EndWithInvalidCategory(SearchContext& ctx) {
  ctx.exitStatus = 1;
  return EndWithError(ctx, "Error: Category number is invalid. Incorrect settings file used?");
}

int CreateStemmer(SearchContext& ctx) {
  if (!StemsWords(ctx.settings)) return 1;
  switch (ctx.stemmer.Create(ctx.settings.StemmingAlgo, StemsUtf8(ctx.settings))) {
    case StemmerStatus::kOk:
      return 1;
    case StemmerStatus::kInvalidAlgorithm:
      return EndWithError(ctx, "Invalid stemming algorithm specified in settings file.<br />\n");
    case StemmerStatus::kUnavailable:
      break;
  }
  return EndWithError(ctx, "Failed to initialize stemmer.<br />\n");
}

int PrepareSearch(SearchContext& ctx, SearchState& state) {
  const Settings& settings = ctx.settings;
  if (!AllocateMatches(state.matches, settings.NumPages) ||
      !StartTermSearch(state.terms, ctx.query, settings) ||
      (settings.Highlighting == 1 &&
       !CollectHighlightTerms(state.highlight, ctx.query.terms, AllowsPhrases(settings))) ||
      !PrepareFilters(state.filters, settings, ctx.search, ctx.index.pages,
                      ctx.index.pageData.bytes())) {
    return EndWithError(ctx, "Out of memory");
  }
  state.terms.siteOnly = ctx.search.metaOnly;
  state.terms.phraseBudget = {settings.MaxContextSeeks, 0, ctx.startTime + settings.MaxSearchTime,
                              CurrentTime};
  state.links = MakeLinkParameters(settings, ctx.search, View(ctx.query.text), state.filters.dates);
  return 1;
}

int ShowRecommended(SearchContext& ctx, SearchState& state) {
  if (ctx.settings.Recommended != 1) return 1;
  const RecommendedInput input = {ctx.settings, ctx.query, View(state.links.query), ctx.index,
                                  state.highlight};
  if (!WriteRecommended(ctx.response, ctx.output, input, state.recommendedShown)) {
    return EndRequest(ctx);
  }
  return 1;
}

int LookUpTerms(SearchContext& ctx, SearchState& state) {
  const TermSearchInput input = {ctx.settings,
                                 ctx.dictionary,
                                 ctx.index.pages,
                                 ctx.index.wordMap.bytes(),
                                 ctx.index.pageText.bytes(),
                                 ctx.search.sort,
                                 ctx.response,
                                 ctx.stemmer};
  switch (SearchTerms(state.terms, input, state.matches)) {
    case TermStatus::kOk:
      break;
    case TermStatus::kNoMemory:
      return EndWithError(ctx, "Out of memory");
    case TermStatus::kSeekFailed:
      return EndRequest(ctx);
    case TermStatus::kMissingData:
      return EndWithError(ctx, "Error in wordmap file: expected data not found.");
    case TermStatus::kInvalidPage:
      return EndWithError(ctx, "Error in wordmap: page number is invalid.");
  }
  state.filters.hasSiteRestriction = state.terms.hasSiteRestriction;
  state.filters.siteRestriction = state.terms.siteRestriction;
  return 1;
}

int Rank(SearchContext& ctx, SearchState& state) {
  const int32_t effectiveTerms =
      ctx.query.terms.size() - state.terms.skippedCount - state.terms.excludedCount;
  switch (RankMatches(state.matches, state.filters, ctx.settings, ctx.search, ctx.index.pages,
                      effectiveTerms, state.terms.siteOnly, state.results)) {
    case RankStatus::kOk:
      break;
    case RankStatus::kNoMemory:
      return EndWithError(ctx, "Error: Out of memory");
    case RankStatus::kInvalidCategory:
      return EndWithInvalidCategory(ctx);
  }
  if (state.matches.resultCount > 1) {
    SortResults(state.results, ctx.index.pages, ctx.search.sort, ctx.settings.UseDateTime == 1);
  }
  return 1;
}

int Render(SearchContext& ctx, SearchState& state) {
  const Suggestions suggestions =
      MakeSuggestions(state.terms, ctx.index.spelling, ctx.dictionary, ctx.settings, ctx.stemmer);
  const ResultsPage page = {ctx.settings,  ctx.search,    ctx.query,           state.links,
                            state.matches, state.filters, state.terms.skipped, suggestions};
  WriteResultsHead(ctx.response, ctx.output, page);
  const bool showsContext = ctx.settings.DisplayContext == 1 && !state.terms.siteOnly;
  const ResultBlocks blocks = {ctx.settings, ctx.search,     ctx.query,       state.links,
                               ctx.index,    ctx.dictionary, state.highlight, showsContext};
  switch (WriteResultBlocks(ctx.response, ctx.output, blocks, state.results)) {
    case BlockStatus::kOk:
      break;
    case BlockStatus::kCorruptPageData:
      return EndWithError(
          ctx, "Error: Corrupted or invalid index files. Please re-index and try again.");
    case BlockStatus::kInvalidCategory:
      return EndWithInvalidCategory(ctx);
  }
  WriteResultsFoot(ctx.response, ctx.output, page);
  return 1;
}

void FinishSearch(SearchContext& ctx, const SearchState& state) {
  SearchLogEntry entry;
  entry.endTime = CurrentTime();
  entry.seconds = entry.endTime - ctx.startTime;
  WriteSearchTime(ctx.response, ctx.output, ctx.settings, entry.seconds);
  if (ctx.settings.Logging != 1) return;
  entry.remoteAddress = View(ctx.request.RemoteAddr);
  entry.query = View(ctx.request.Query);
  entry.matches = state.matches.resultCount;
  entry.page = ctx.request.PageDefaulted ? 0 : ctx.search.page;
  entry.recommended = state.recommendedShown;
  WriteSearchLog(ctx.response, ctx.directory, ctx.settings, ctx.search, entry);
}

}  // namespace

int RunSearch(SearchContext& ctx) {
  if (CreateStemmer(ctx) == 0) return 0;
  SearchState state;
  WriteHeading(ctx.response, ctx.output, ctx.settings, ctx.search, ctx.query);
  if (PrepareSearch(ctx, state) == 0 || ShowRecommended(ctx, state) == 0 ||
      LookUpTerms(ctx, state) == 0) {
    return 0;
  }
  ctx.index.wordMap.Close();
  if (Rank(ctx, state) == 0 || Render(ctx, state) == 0) return 0;
  FinishSearch(ctx, state);
  return EndRequest(ctx);
}

}  // namespace vela
