// content_choice.h: what of a page its owner takes for its content.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/extract/selector_set.h"

namespace vela::indexer {

// What the configuration says for some pages (ContentRule), ready for use.
struct ContentChoice {
  SelectorSet selectors;
  bool hasOnly = false;  // some of them choose
  bool indexesNavigation = false;
  bool prefersMain = false;
  bool namesPictures = false;  // what pages say of pictures is kept for these
  uint32_t rule = 0;           // see ContentUse
};

// Where the configuration says nothing.
const ContentChoice& PlainContentChoice();

// Those of a whole configuration.
class ContentChoices {
 public:
  // `base`: the site's address, ending in "/".
  ContentChoices(const SiteConfig& config, std::string base);

  // Of the page at that address: the first rule that fits it, else that of the site. Any number of
  // threads may ask at once.
  const ContentChoice& Of(const std::string& address) const;

 private:
  struct Rule {
    std::vector<std::string> pages;
    ContentChoice choice;
  };

  std::string base_;
  ContentChoice site_;
  std::vector<Rule> rules_;
};

}  // namespace vela::indexer
