// crawl_scope.h: what a crawl may ask for: by host, by pattern, by name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "indexer/crawl/web_address.h"
#include "indexer/source/file_endings.h"

namespace vela::indexer {

class CrawlScope {
 public:
  struct Rules {
    std::string base;                  // the site's address
    std::vector<std::string> start;    // addresses whose hosts are named by that
    std::vector<std::string> hosts;    // "example.org", "example.org:8080", "*.example.org"
    std::vector<std::string> include;  // made by AddressPattern; empty: all
    std::vector<std::string> exclude;  // the same; empty: none
    FileEndings endings;               // of names of pages
  };

  // Throws IndexError (usage) for a start address or a host that is none.
  explicit CrawlScope(Rules rules);

  // Whether the crawl may ask this server at all.
  bool HoldsServer(const WebAddress& address) const;
  // Whether the owner named that very server, and not only by a pattern.
  bool IsNamed(std::string_view authority) const;
  // Whether a link to it is worth to be followed.
  bool Holds(const WebAddress& address) const;

  // Hosts and patterns as one text, by which a store tells whether they have changed.
  std::string Text() const;

 private:
  Rules rules_;
  std::vector<std::string> named_;     // authorities
  std::vector<std::string> patterns_;  // ".example.org" for "*.example.org"
};

}  // namespace vela::indexer
