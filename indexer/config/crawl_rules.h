// crawl_rules.h: what a site owner may say about a crawl, apart from where it begins (options.h).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vela::indexer {

constexpr uint64_t kCrawlDepthLimit = 1000;
constexpr uint64_t kCrawlPagesLimit = 10000000;
constexpr uint64_t kCrawlMegabytesLimit = uint64_t{1} << 24;
constexpr double kCrawlMinutesLimit = 60.0 * 24 * 31;
constexpr uint64_t kCrawlConnectionsLimit = 16;
constexpr uint64_t kCrawlTimeoutLimit = 600;  // seconds
constexpr uint64_t kCrawlRetriesLimit = 10;
constexpr double kCrawlDelayLimit = 3600;  // seconds

struct CrawlRules {
  std::vector<std::string> hosts;    // beside those of the first addresses
  std::vector<std::string> include;  // made by AddressPattern; empty: all
  std::vector<std::string> exclude;  // the same; empty: none
  bool usesSitemaps = true;          // those that robots.txt names, and /sitemap.xml
  uint64_t depth = 30;               // links from the first addresses
  uint64_t pages = 100000;           // addresses asked for
  uint64_t megabytes = 10000;        // of all answers
  double minutes = 0;                // of one run; 0: no limit
  uint64_t connections = 2;          // at once to one server
  double delay = 0.1;                // seconds between the starts of two requests to one server
  uint64_t timeout = 30;             // seconds
  uint64_t retries = 3;
  std::string authFile;  // names and passwords for servers; empty: none
  std::string caFile;    // certificates to trust in the place of the system's; empty: those
  std::string contact;   // stands in the User-Agent; empty: nothing
};

}  // namespace vela::indexer
