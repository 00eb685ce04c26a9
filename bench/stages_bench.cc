// Splits one search by stage, inside one process, each stage repeated on a warm cache.
//
//   stages_bench INDEX_DIRECTORY QUERY [REPEATS]
//
// Prints the median time of each stage in microseconds, the bytes each reads, for the dictionary
// the rate and for phrases how many places of the page text were looked at.

#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "request/driver.h"
#include "request/search_context.h"
#include "search/ranking.h"
#include "search/term_search.h"
#include "settings/settings_file.h"

namespace {

double MedianMicroseconds(int repeats, const std::function<void()>& run) {
  std::vector<double> times;
  for (int i = 0; i < repeats; ++i) {
    const auto start = std::chrono::steady_clock::now();
    run();
    const auto end = std::chrono::steady_clock::now();
    times.push_back(std::chrono::duration<double, std::micro>(end - start).count());
  }
  std::nth_element(times.begin(), times.begin() + repeats / 2, times.end());
  return times[static_cast<size_t>(repeats) / 2];
}

std::string g_queryString;

const char* Environment(const char* name) {
  const std::string_view key = name;
  if (key == "REQUEST_METHOD") return "GET";
  if (key == "QUERY_STRING") return g_queryString.c_str();
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    fprintf(stderr, "usage: stages_bench INDEX_DIRECTORY QUERY [REPEATS]\n");
    return 2;
  }
  const int repeats = argc > 3 ? atoi(argv[3]) : 51;
  vela::IndexDirectory directory;
  vela::OpenIndexDirectory(directory, argv[1]);
  auto settings = std::make_unique<vela::Settings>();
  if (vela::ReadSettingsFile(*settings, directory) != vela::SettingsStatus::kOk) return 1;
  const int nowhere = open("/dev/null", O_WRONLY);

  const double settingsTime = MedianMicroseconds(repeats, [&] {
    auto fresh = std::make_unique<vela::Settings>();
    if (vela::ReadSettingsFile(*fresh, directory) != vela::SettingsStatus::kOk) abort();
  });
  const vela::LookupFile noLookup;
  size_t dictionaryBytes = 0;
  const double dictionaryTime = MedianMicroseconds(repeats, [&] {
    vela::Dictionary dictionary;
    if (dictionary.Load(directory, *settings, noLookup).status != vela::DictionaryStatus::kOk)
      abort();
  });
  {
    vela::FileImage file;
    if (file.Open(directory, vela::kDictionaryFileName, false))
      dictionaryBytes = file.bytes().size();
  }
  size_t pageInfoBytes = 0;
  const double pageInfoTime = MedianMicroseconds(repeats, [&] {
    vela::PageTable pages;
    if (vela::LoadPageInfo(pages, directory, *settings, noLookup) != vela::LoadStatus::kOk) abort();
    pageInfoBytes = pages.image.size();
  });
  vela::IndexFiles files;
  vela::Dictionary dictionary;
  if (vela::OpenIndexFiles(files, directory, *settings).status != vela::LoadStatus::kOk ||
      dictionary.Load(directory, *settings, files.lookup).status != vela::DictionaryStatus::kOk) {
    return 1;
  }
  std::string typed = argv[2];
  std::replace(typed.begin(), typed.end(), '+', ' ');
  for (size_t at; (at = typed.find("%22")) != typed.npos;) typed.replace(at, 3, "\"");
  vela::SearchRequest request;
  vela::Stemmer stemmer;
  int64_t records = 0;
  int32_t results = 0;
  int32_t seeks = 0;
  const double searchTime = MedianMicroseconds(repeats, [&] {
    auto query = std::make_unique<vela::Query>();
    vela::Set(query->typed, typed);
    vela::Matches matches;
    vela::TermSearch terms;
    vela::PageFilters filters;
    vela::ResultList list;
    if (!vela::ParseQuery(*query, *settings) ||
        !vela::AllocateMatches(matches, settings->NumPages) ||
        !vela::AddSubstringAsterisks(query->terms, *settings) ||
        !vela::StartTermSearch(terms, query->terms, *settings) ||
        !vela::PrepareFilters(filters, {.settings = *settings,
                                        .request = request,
                                        .pages = files.pages,
                                        .pageData = files.pageData.bytes(),
                                        .site = terms.site})) {
      abort();
    }
    terms.phraseBudget = {settings->MaxContextSeeks, 0, vela::CurrentTime() + 30,
                          vela::CurrentTime};
    const vela::TermSearchInput input = {.settings = *settings,
                                         .dictionary = dictionary,
                                         .pages = files.pages,
                                         .wordMap = files.wordMap.bytes(),
                                         .pageText = files.pageText.bytes(),
                                         .lookup = files.lookup,
                                         .sort = request.sort,
                                         .stemmer = stemmer};
    const vela::RankInput rankInput = {.settings = *settings,
                                       .request = request,
                                       .pages = files.pages,
                                       .effectiveTerms = query->terms.size()};
    if (vela::SearchTerms(terms, input, matches).status != vela::TermStatus::kOk ||
        vela::RankMatches(matches, filters, rankInput, list) != vela::RankStatus::kOk) {
      abort();
    }
    vela::SortResults(list, files.pages, request.sort, false, INT32_MAX);
    records = 0;
    for (const vela::SearchedTerm& term : terms.terms) records += term.records;
    results = matches.resultCount;
    seeks = terms.phraseBudget.seeksDone;
  });
  g_queryString = std::string("vela_query=") + argv[2];
  const double wholeTime = MedianMicroseconds(repeats, [&] {
    auto ctx = std::make_unique<vela::SearchContext>();
    ctx->response.descriptor = nowhere;
    const char* arguments[] = {"search.cgi", "/I", argv[1]};
    vela::RunRequest(*ctx, arguments, {Environment, -1});
  });

  printf("settings    %9.0f us\n", settingsTime);
  printf("dictionary  %9.0f us  %zu bytes  %.0f MB/s\n", dictionaryTime, dictionaryBytes,
         static_cast<double>(dictionaryBytes) / dictionaryTime);
  printf("page info   %9.0f us  %zu bytes\n", pageInfoTime, pageInfoBytes);
  printf("search      %9.0f us  %lld bytes of page lists, %d results\n", searchTime,
         static_cast<long long>(records * 10), results);
  if (seeks != 0) {
    printf("phrases     %9d seeks of at most %d\n", seeks, settings->MaxContextSeeks);
  }
  printf("output, and the rest %4.0f us\n",
         wholeTime - settingsTime - dictionaryTime - pageInfoTime - searchTime);
  printf("whole request %7.0f us\n", wholeTime);
  return 0;
}
