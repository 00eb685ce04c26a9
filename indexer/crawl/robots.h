// robots.h: which addresses of a server its robots.txt allows, as RFC 9309 has it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// By which name servers and pages speak to this crawler: in robots.txt, X-Robots-Tag, meta
// elements.
inline constexpr std::string_view kCrawlerName = "velabot";

// What is read of a robots.txt; the rest of a longer one does not count.
inline constexpr size_t kRobotsBytesLimit = size_t{500} << 10;

struct RobotsRule {
  std::string pattern;  // of path and query, in the form of PageAddress; "*" is any run
  bool allows = false;
  bool isAnchored = false;  // it has to reach to the end of the address
};

struct RobotsRules {
  std::vector<RobotsRule> rules;      // of this crawler; the longest first, of two as long the
                                      // one that allows
  double delay = 0;                   // seconds between two requests; 0: none is asked for
  std::vector<std::string> sitemaps;  // as they are written, whoever is meant
  bool refusesAll = false;            // the server could not say what it allows
};

// Reads the rules of the groups for this crawler, or of those for all when it has none of its own.
// Any text is valid: lines that mean nothing are passed over.
RobotsRules ParseRobots(std::string_view text);

// Whether the address with that path and query ("/a?b") may be asked for. The longest pattern that
// fits decides. robots.txt itself always may.
bool Allows(const RobotsRules& robots, std::string_view pathAndQuery);

// What a server asks of this crawler for one page, beside robots.txt.
struct PageRobots {
  bool noIndex = false;
  bool noFollow = false;
};

// Reads the fields X-Robots-Tag of an answer, one a line; a name before a colon says for whom the
// words behind it are.
PageRobots ReadRobotsTag(std::string_view fields);

}  // namespace vela::indexer
