// link_texts.h: by which words other pages lead to a page.
//
// What many pages call a page, it is likely about: of all pages with "tuple" the one that they lead
// to by that word tells what a tuple is. Counted are pages, not links.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "indexer/collect/vocabulary.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"
#include "indexer/site/canonical_addresses.h"
#include "indexer/words/word_cut.h"
#include "indexer/words/word_forms.h"

namespace vela::indexer {

// A word by which a page leads to an address of the site; fingerprints of both, which need nothing
// of other pages.
struct LinkWord {
  uint64_t address = 0;  // AddressPrint
  uint64_t word = 0;     // of the dictionary's form
  auto operator<=>(const LinkWord&) const = default;
};

// The words of the page's links to others of the site, in order, each once for an address. `base`
// is the site's address, ending in "/".
std::vector<LinkWord> LinkWordsOf(const Page& page, const std::string& base, WordForms& forms,
                                  RunCut runs);

// So many pages lead to `page` by `word`.
struct LinkCount {
  uint32_t word = 0;  // its number in the vocabulary
  uint32_t page = 0;
  uint32_t pages = 0;
};

// Whether the owner wants them counted; only weights use them (word_weight.h).
bool CountsLinkTexts(const SiteConfig& config);

class LinkTexts {
 public:
  // At most so many words of addresses are counted at a time, 24 bytes each; where there are more,
  // those that the fewest pages have are forgotten.
  static constexpr size_t kMostCounted = size_t{1} << 20;
  explicit LinkTexts(size_t mostCounted = kMostCounted) : mostCounted_(mostCounted) {}

  // Takes what LinkWordsOf made of one more page.
  void Add(std::span<const LinkWord> words);

  size_t memory() const { return counted_.capacity() * sizeof(Counted); }

  // What was counted of the pages of the index, by word and page; it is forgotten here. Once, when
  // all pages have joined.
  std::vector<LinkCount> Finish(const CanonicalAddresses& addresses, const Vocabulary& vocabulary);

 private:
  struct Counted {
    LinkWord word;
    uint32_t pages = 0;
  };
  void AddUp();
  void MakeRoom();

  size_t mostCounted_;
  uint32_t least_ = 1;  // words of fewer pages are forgotten when room is made
  std::vector<Counted> counted_;
};

// Reads the counts beside the postings, which come by ascending word and page.
class LinkCountReader {
 public:
  // `counts`, which must outlive this, as LinkTexts gave them.
  explicit LinkCountReader(std::span<const LinkCount> counts) : counts_(counts) {}

  // The postings of the next word begin. Returns how many pages lead to the page of the index to
  // which most do by that word.
  uint32_t BeginWord(uint32_t word);
  // How many lead to this page by the word.
  uint32_t PagesTo(uint32_t page);

 private:
  std::span<const LinkCount> counts_;  // those not passed yet
  uint32_t word_ = 0;
};

}  // namespace vela::indexer
