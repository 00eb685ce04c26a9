// broken_link.h: a link of the site that leads nowhere.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vela::indexer {

struct BrokenLink {
  std::string path;      // of the page that has it, as messages call it
  std::string address;   // where it leads to, with its fragment
  std::string text;      // one line; may be empty
  bool noPlace = false;  // the page is there and has no such place
};

struct BrokenLinks {
  bool wereSought = false;
  uint64_t checked = 0;           // links between pages of the site
  std::vector<BrokenLink> found;  // by page, in the order of the site
};

}  // namespace vela::indexer
