#include "search/driver.h"

#include "output/ending.h"
#include "output/result_block.h"
#include "output/results_page.h"
#include "request/search_context.h"
#include "search/filters.h"
#include "search/lookup.h"
#include "search/matches.h"
#include "search/ranking.h"
#include "text/wildcard.h"

namespace vela {

namespace {

// What one search gathers on its way.
struct SearchState {
  Matches matches;
  PageFilters filters;
  MatchBudget budget;
  SkippedTerms skipped;
  OwnedArray<QueryText> substringTerms;  // the terms with their asterisks
  int32_t skippedCount = 0;              // terms passed over, which AND mode does not ask for
  int32_t excludedCount = 0;             // exclusions and site restrictions
  bool siteOnly = false;                 // every page is a candidate
  ResultList results;
};

int EndWithError(SearchContext& ctx, std::string_view message) {
  WriteError(ctx.response, message, ErrorEnd::kLineFeed);
  return EndRequest(ctx);
}

int EndWithInvalidCategory(SearchContext& ctx) {
  ctx.exitStatus = 1;
  return EndWithError(ctx, "Error: Category number is invalid. Incorrect settings file used?");
}

bool AllocateState(SearchState& state, const SearchContext& ctx) {
  const auto termCount = static_cast<size_t>(ctx.query.terms.size());
  return AllocateMatches(state.matches, ctx.settings.NumPages) &&
         state.skipped.terms.TryAllocate(termCount) &&
         PrepareFilters(state.filters, ctx.settings, ctx.search, ctx.index.pages,
                        ctx.index.pageData.bytes());
}

// Puts the asterisks of a substring search around every term.
bool RewriteTerms(SearchState& state, Query& query) {
  const auto count = static_cast<size_t>(query.terms.size());
  if (!state.substringTerms.TryAllocate(count)) return false;
  for (size_t i = 0; i < count; ++i) {
    state.substringTerms[i] = SubstringTerm(query.terms.terms[i]);
    query.terms.terms[i] = View(state.substringTerms[i]);
  }
  return true;
}

void ReportSkipped(SearchState& state, std::string_view term) {
  state.skipped.terms[static_cast<size_t>(state.skipped.count++)] = term;
}

// Looks one term up and adds what it matches. 0 when the request has ended.
int SearchTerm(SearchContext& ctx, SearchState& state, int32_t index) {
  const std::string_view term = ctx.query.terms[index];
  const bool isShort = static_cast<int64_t>(term.size()) < ctx.settings.MinWordLen;
  if (isShort) ReportSkipped(state, term);
  if (isShort || term.empty()) {
    ++state.skippedCount;
    return 1;
  }
  LookupTerm lookup;
  lookup.word = term;
  lookup.isExclusion = term.starts_with('-');
  if (lookup.isExclusion) lookup.word.remove_prefix(1);
  std::string_view restriction;
  const bool isRestriction = IsSiteRestriction(lookup.word, restriction);
  if (lookup.isExclusion || isRestriction) ++state.excludedCount;
  if (isRestriction) {
    state.filters.hasSiteRestriction = true;
    state.filters.siteRestriction = restriction;
    state.siteOnly = ctx.query.terms.size() == 1;
    return 1;
  }
  lookup.isWildcard = HasWildcard(lookup.word);
  const TermPlace place = {index, state.skippedCount, state.excludedCount, lookup.isExclusion};
  const auto add = [&](const WordMapRecord& record) {
    return AddMatch(state.matches, ctx.index.pages, record, place, ctx.search.sort,
                    ctx.settings.MaxContextKeywords);
  };
  LookupResult result;
  switch (LookUpTerm(lookup, ctx.dictionary, ctx.index.wordMap.bytes(), ctx.settings, ctx.response,
                     state.budget, state.matches.limitReached, result, add)) {
    case LookupStatus::kOk:
      break;
    case LookupStatus::kSeekFailed:
      return EndRequest(ctx);
    case LookupStatus::kMissingData:
      return EndWithError(ctx, "Error in wordmap file: expected data not found.");
    case LookupStatus::kInvalidPage:
      return EndWithError(ctx, "Error in wordmap: page number is invalid.");
  }
  if (result.hasNoList) ReportSkipped(state, term);
  return 1;
}

int SearchTerms(SearchContext& ctx, SearchState& state) {
  const int32_t termCount = ctx.query.terms.size();
  state.budget = MakeMatchBudget(ctx.settings.MaxMatches, termCount);
  state.siteOnly = ctx.search.metaOnly;
  for (int32_t i = 0; i < termCount && !state.siteOnly; ++i) {
    if (SearchTerm(ctx, state, i) == 0) return 0;
  }
  return 1;
}

int Rank(SearchContext& ctx, SearchState& state) {
  const int32_t effectiveTerms =
      ctx.query.terms.size() - state.skippedCount - state.excludedCount;
  switch (RankMatches(state.matches, state.filters, ctx.settings, ctx.search, ctx.index.pages,
                      effectiveTerms, state.siteOnly, state.results)) {
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
  const LinkParameters links = MakeLinkParameters(ctx.settings, ctx.search, View(ctx.query.text),
                                                  state.filters.dates);
  const ResultsPage page = {ctx.settings,  ctx.search,    ctx.query,    links,
                            state.matches, state.filters, state.skipped};
  WriteResultsHead(ctx.response, ctx.output, page);
  switch (WriteResultBlocks(ctx.response, ctx.output,
                            {ctx.settings, ctx.search, ctx.query, links, ctx.index},
                            state.results)) {
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

}  // namespace

int RunSearch(SearchContext& ctx) {
  SearchState state;
  WriteHeading(ctx.response, ctx.output, ctx.settings, ctx.search, ctx.query);
  if (!AllocateState(state, ctx) ||
      (ctx.settings.SearchAsSubstring == 1 && !RewriteTerms(state, ctx.query))) {
    return EndWithError(ctx, "Out of memory");
  }
  if (SearchTerms(ctx, state) == 0) return 0;
  ctx.index.wordMap.Close();
  if (Rank(ctx, state) == 0 || Render(ctx, state) == 0) return 0;
  WriteSearchTime(ctx.response, ctx.output, ctx.settings, CurrentTime() - ctx.startTime);
  return EndRequest(ctx);
}

}  // namespace vela
