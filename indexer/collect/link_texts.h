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

#include "indexer/collect/number_table.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"
#include "indexer/site/canonical_addresses.h"
#include "indexer/words/index_charset.h"
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

// Makes the words of one page's links after the other; each thread has its own. What a text was cut
// into is kept for the pages that follow, which mostly lead to the same places by the same texts.
class LinkWordCutter {
 public:
  // `base` is the site's address, ending in "/"; the others as for WordForms and CutChunk. `base`
  // and `charset` outlive the cutter.
  LinkWordCutter(const std::string& base, const IndexCharset& charset, int32_t stemming,
                 RunCut runs);

  // The words of the page's links to others of the site, in order, each once for an address. After
  // std::bad_alloc the cutter can be used on.
  std::vector<LinkWord> WordsOf(const Page& page);

 private:
  // A text of links, and fingerprints of its words.
  struct KnownText {
    std::string text;
    std::vector<uint64_t> words;
  };
  const std::vector<uint64_t>& WordsOfText(const std::string& text);

  const std::string& base_;
  WordForms forms_;
  RunCut runs_;
  ChunkTokens chunk_;
  std::vector<KnownText> known_;  // by the hash of the text; the one that came last has the place
};

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
  // At most so many words of addresses are counted at a time, 40 bytes each with their places in
  // the table; where there are more, those that the fewest pages have are forgotten.
  static constexpr size_t kMostCounted = size_t{1} << 20;
  explicit LinkTexts(size_t mostCounted = kMostCounted) : mostCounted_(mostCounted) {}

  // Takes what LinkWordCutter made of one more page.
  void Add(std::span<const LinkWord> words);

  size_t memory() const { return counted_.capacity() * sizeof(Counted) + table_.memory(); }

  // What was counted of the pages of the index, by word and page; it is forgotten here. Once, when
  // all pages have joined.
  std::vector<LinkCount> Finish(const CanonicalAddresses& addresses, const Vocabulary& vocabulary);

 private:
  struct Counted {
    LinkWord word;
    uint32_t pages = 0;
  };
  void MakeRoom();

  size_t mostCounted_;
  uint32_t least_ = 1;  // words of fewer pages are forgotten when room is made
  size_t met_ = 0;      // those that were left when room was made last, and all that came since
  std::vector<Counted> counted_;
  NumberTable table_;             // of `counted_`
  std::vector<uint64_t> hashes_;  // of the words that come, kept for its memory
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
