// site_name.h: what the titles of a site end or begin in, as in "Knots | Ashdale Library".
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

// `title` without the names that it ends or begins in, one after the other, each with the sign
// (" | ", " - " and others) that parts it from the rest. A title that is nothing else stays.
std::string WithoutSiteName(std::string_view title, const std::vector<std::string>& names);

// The titles of some pages, and what they have in common.
class SiteTitles {
 public:
  void Add(const std::string& title) { titles_.push_back(title); }

  // The name that 60 % of the titles, and five of them, end in or else begin with; then, of what is
  // left of them, the next; three at most. Without the sign, in the order in which they are taken
  // off.
  std::vector<std::string> Names() const;
  // The title that more than half of the pages have, and five of them; empty for none.
  std::string SharedTitle() const;

 private:
  std::vector<std::string> titles_;
};

}  // namespace vela::indexer
