// crawler.h: from first addresses to a store of pages: what the servers allow, and no more of their
// time than they and the owner want to give.
//
// Addresses are asked for level by level: all that are one link away, then all that are two links
// away, each level in byte order. So a limit cuts the same pages off in every crawl of a site.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "indexer/crawl/crawl_scope.h"
#include "indexer/crawl/fetcher.h"
#include "indexer/report/progress.h"
#include "indexer/report/reason.h"
#include "indexer/source/file_endings.h"
#include "indexer/source/page_store.h"

namespace vela::indexer {

struct CrawlPlan {
  CrawlScope scope;
  std::vector<std::string> pages;     // to ask for first
  std::vector<std::string> sitemaps;  // whose pages are asked for as well
  bool followsLinks = true;
  bool findsSitemaps = true;  // those that robots.txt names, and /sitemap.xml
  FileEndings endings;        // of names, where a server does not say what it sends

  // Limits of a pass but for the last one, which is of this run: the next one goes on.
  uint64_t depthLimit = 0;  // links from the first pages
  uint64_t pagesLimit = 0;  // addresses asked for
  uint64_t bytesLimit = 0;  // of all answers
  uint64_t pageBytesLimit = 0;
  std::chrono::milliseconds timeLimit{0};  // 0: none

  // For each server.
  std::chrono::milliseconds delay{0};  // between the starts of two requests, at least
  uint64_t connections = 1;            // at once, where no delay is asked for by the server
  uint64_t retries = 0;                // of what may be a passing fault
  std::map<std::string, std::string> passwords;  // "user:password" by WebAddress::authority
  FetchWishes fetch;
};

// Fills `store`. Returns what the owner should know: limits that were reached, damaged sitemaps.
// Throws IndexError: when `stop` is set (interrupted) or the store cannot be written; the next run
// goes on from there.
std::vector<Finding> Crawl(const CrawlPlan& plan, PageStore& store, Progress& progress,
                           const volatile std::sig_atomic_t& stop);

}  // namespace vela::indexer
