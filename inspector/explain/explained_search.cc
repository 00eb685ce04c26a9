#include "inspector/explain/explained_search.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <stdexcept>

#include "search/corrections.h"
#include "search/run_terms.h"
#include "search/stop_words.h"
#include "search/suggestions.h"
#include "search/typed_text.h"
#include "settings/settings_file.h"

namespace vela::inspector {

namespace {

// Seconds since 1970.
double Now() {
  const std::chrono::duration<double> time = std::chrono::system_clock::now().time_since_epoch();
  return time.count();
}

[[noreturn]] void FailUnusable() {
  throw std::runtime_error(
      "The search program cannot answer from this index. Run vela_inspect with the directory alone "
      "to see why.");
}

void Require(bool hasMemory) {
  if (!hasMemory) throw std::bad_alloc();
}

}  // namespace

std::unique_ptr<SearchedIndex> OpenSearchedIndex(std::string_view path) {
  auto index = std::make_unique<SearchedIndex>();
  OpenIndexDirectory(index->directory, path);
  const Settings& settings = index->settings;
  if (ReadSettingsFile(index->settings, index->directory) != SettingsStatus::kOk ||
      OpenIndexFiles(index->files, index->directory, settings).status != LoadStatus::kOk ||
      index->dictionary.Load(index->directory, settings, index->files.lookup).status !=
          DictionaryStatus::kOk) {
    FailUnusable();
  }
  if (StemsWords(settings) &&
      index->stemmer.Create(settings.StemmingAlgo, StemsUtf8(settings)) != StemmerStatus::kOk) {
    FailUnusable();
  }
  return index;
}

ExplainedSearch::ExplainedSearch(SearchedIndex& index, const Question& question) : index_(index) {
  const Settings& settings = index.settings;
  request_.andMode = question.allTerms || settings.DefaultToAnd == 1 ? 1 : 0;
  request_.sort = question.sort.value_or(settings.DefaultSort);
  if (UsesCategories(settings)) request_.categories = question.categories;
  Set(request_.dateFrom, question.from);
  Set(request_.dateTo, question.to);
  Set(query_.typed, question.query);
  if (settings.AmendedAnswers == 1) ReplaceUnshowable(query_.typed, IsUtf8(settings));
  Require(ParseQuery(query_, settings));
  Require(DropStopWords(query_.terms, View(query_.text), settings, query_.dropped));
  Require(CutRunsOfTerms(query_.terms, settings));
  Require(AddSubstringAsterisks(query_.terms, settings));
  Require(CollectAlternatives(alternatives_, query_.terms, settings, index.files.synonyms,
                              index.stemmer));
  Search(query_.terms.terms.size(), run_);
  Rank(run_);
}

void ExplainedSearch::Search(size_t count, SearchRun& run) {
  const Settings& settings = index_.settings;
  const int32_t all = query_.terms.size();
  TermList terms;  // their bytes are those of the query
  Require(terms.terms.TryAllocate(count));
  std::copy_n(query_.terms.terms.begin(), count, terms.terms.begin());
  Require(AllocateMatches(run.matches, settings.NumPages));
  if (settings.Ranking == 1) Require(AllocateWeights(run.matches, all));
  Require(StartTermSearch(run.terms, terms, settings));
  run.terms.dropped = {query_.dropped.data(), query_.dropped.size()};
  run.terms.matchBudget = MakeMatchBudget(settings.MaxMatches, all);
  run.terms.phraseBudget = {.maxSeeks = settings.MaxContextSeeks,
                            .deadline = Now() + settings.MaxSearchTime,
                            .now = &Now};
  Require(PrepareFilters(run.filters, {.settings = settings,
                                       .request = request_,
                                       .pages = index_.files.pages,
                                       .pageData = index_.files.pageData.bytes(),
                                       .site = run.terms.site}));
  run.everyPage = IsOnlySiteRestriction(run.terms);
  const TermResult result = SearchTerms(run.terms, Input(), run.matches);
  Require(result.status != TermStatus::kNoMemory);
  if (result.status != TermStatus::kOk) FailUnusable();
}

TermSearchInput ExplainedSearch::Input() {
  return {.settings = index_.settings,
          .dictionary = index_.dictionary,
          .pages = index_.files.pages,
          .wordMap = index_.files.wordMap.bytes(),
          .pageText = index_.files.pageText.bytes(),
          .lookup = index_.files.lookup,
          .sort = request_.sort,
          .stemmer = index_.stemmer,
          .alternatives = &alternatives_,
          .query = View(query_.text)};
}

WordList ExplainedSearch::PagesOf(const Alternative& alternative) {
  return vela::PagesOf(alternative.synonym, Input());
}

void ExplainedSearch::Rank(SearchRun& run) const {
  const Settings& settings = index_.settings;
  run.effectiveTerms = query_.terms.size() - run.terms.skippedCount - run.terms.excludedCount;
  const bool weighs = !run.matches.weights.empty();
  if (weighs) run.weights = WeighQuery(run.terms, run.effectiveTerms, settings.NumPages);
  const RankInput input = {.settings = settings,
                           .request = request_,
                           .pages = index_.files.pages,
                           .weights = weighs ? &run.weights : nullptr,
                           .effectiveTerms = run.effectiveTerms,
                           .everyPage = run.everyPage};
  switch (RankMatches(run.matches, run.filters, input, run.results)) {
    case RankStatus::kOk:
      break;
    case RankStatus::kNoMemory:
      throw std::bad_alloc();
    case RankStatus::kInvalidCategory:
      throw std::runtime_error("There is no such category. They count from 0.");
  }
  SortResults(run.results, index_.files.pages, request_.sort, settings.UseDateTime == 1,
              run.results.size());
}

size_t ExplainedSearch::RankOf(uint32_t page) const {
  const auto& entries = run_.results.entries;
  const auto* found = std::find_if(entries.begin(), entries.end(),
                                   [page](const RankedPage& each) { return each.page == page; });
  return found == entries.end() ? 0 : static_cast<size_t>(found - entries.begin()) + 1;
}

std::vector<PageState> ExplainedSearch::TraceOf(uint32_t page) {
  std::vector<PageState> trace;
  for (size_t count = 1; count <= query_.terms.terms.size(); ++count) {
    SearchRun run;
    Search(count, run);
    PageState& state = trace.emplace_back();
    state.match = run.matches.pages[page];
    if (!run.matches.weights.empty()) state.weight = run.matches.weights.At(page);
  }
  return trace;
}

std::optional<std::string> ExplainedSearch::Corrected() {
  const Settings& settings = index_.settings;
  if (run_.matches.resultCount != 0 || !CorrectsByLetters(settings) || !ShowsCorrected(settings) ||
      !HasRareTerm(run_.terms, settings)) {
    return {};
  }
  const CorrectionInput input = {.settings = settings,
                                 .directory = index_.directory,
                                 .dictionary = index_.dictionary,
                                 .wordMap = index_.files.wordMap.bytes(),
                                 .matches = run_.matches,
                                 .stemmer = index_.stemmer};
  const Corrections corrections = MakeCorrections(run_.terms, input);
  if (!corrections.isCertain) return {};
  return std::string(View(corrections.offers.texts[0]));
}

}  // namespace vela::inspector
