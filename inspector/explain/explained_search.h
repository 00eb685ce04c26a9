// explained_search.h: a search as the search program runs it, with what it does on its way: what
// each term gives a page, and what becomes of it.
//
// The stages of src/search do all of it, in the order of request/run_search.cc. To see what a term
// does, the search is run again with the terms up to it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "index/dictionary.h"
#include "index/index_files.h"
#include "search/alternatives.h"
#include "search/filters.h"
#include "search/matches.h"
#include "search/query.h"
#include "search/ranking.h"
#include "search/search_request.h"
#include "search/term_search.h"
#include "search/weighed_score.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/stemmer.h"

namespace vela::inspector {

// What is searched, opened as a request opens it.
struct SearchedIndex {
  IndexDirectory directory;
  Settings settings;
  IndexFiles files;
  Dictionary dictionary;
  Stemmer stemmer;
};

// Throws std::runtime_error where the search program cannot answer from it either.
std::unique_ptr<SearchedIndex> OpenSearchedIndex(std::string_view path);

// What is asked, as a request says it.
struct Question {
  std::string query;
  bool allTerms = false;  // also where the settings ask for it
  std::vector<int32_t> categories = {};
  std::string from = {};
  std::string to = {};
  std::optional<int32_t> sort = {};  // a SortOrder; none: that of the settings
};

// A page after so many terms.
struct PageState {
  PageMatch match;
  PageWeight weight;
};

// One run of the stages.
struct SearchRun {
  TermSearch terms;
  Matches matches;
  PageFilters filters;
  ResultList results;  // all of them, in order
  QueryWeights weights;
  int32_t effectiveTerms = 0;
  bool everyPage = false;
};

class ExplainedSearch {
 public:
  // Searches. Both outlive this. Throws std::runtime_error where the index is damaged.
  ExplainedSearch(SearchedIndex& index, const Question& question);

  const SearchedIndex& index() const { return index_; }
  const SearchRequest& request() const { return request_; }
  const Query& query() const { return query_; }
  const SearchRun& run() const { return run_; }
  // Words that find pages in the place of terms, and the pages of one of them.
  std::span<const Alternative> alternatives() const {
    return {alternatives_.list.data(), static_cast<size_t>(alternatives_.count)};
  }
  WordList PagesOf(const Alternative& alternative);
  // Whether the words of the query weigh (Ranking).
  bool Weighs() const { return index_.settings.Ranking == 1 && !run_.everyPage; }

  // The place of the page among the results, from 1; 0 when it is in none.
  size_t RankOf(uint32_t page) const;

  // The state of the page after each of the terms, and before the filters.
  std::vector<PageState> TraceOf(uint32_t page);

  // The query that is searched in the place of this one, which finds nothing; none mostly.
  std::optional<std::string> Corrected();

 private:
  // Searches for the first `count` terms.
  void Search(size_t count, SearchRun& run);
  void Rank(SearchRun& run) const;
  TermSearchInput Input();

  SearchedIndex& index_;
  SearchRequest request_;
  Query query_;
  Alternatives alternatives_;
  SearchRun run_;
};

}  // namespace vela::inspector
