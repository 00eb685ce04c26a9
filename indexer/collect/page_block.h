// page_block.h: everything that the index needs of one page, in one piece that knows nothing of
// other pages: made by any thread, kept or sent as bytes (block_bytes.h), joined later.
#pragma once

#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

#include "indexer/collect/equal_pages.h"
#include "indexer/collect/link_texts.h"
#include "indexer/collect/page_cutter.h"
#include "indexer/collect/page_words.h"
#include "indexer/collect/picture_texts.h"
#include "indexer/collect/site_sections.h"
#include "indexer/collect/suggestion_list.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"
#include "indexer/report/reason.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// An address under which a page may be indexed, and the words of it.
struct AddressBlock {
  std::string address;
  PageWords words;
};

struct PageBlock {
  PageFacts facts;          // title and image as they stand in the page data
  std::string description;  // the same
  float linkShare = 0;
  std::string markupFault;  // see PageContent
  ContentUse use;
  PagePrints prints;
  std::string metaValues;               // see meta_values.h
  std::vector<Finding> metaFaults;      // of the values
  std::vector<bool> usedFields;         // beside the fields of the configuration
  PageWords words;                      // of body, title, description
  std::vector<AddressBlock> addresses;  // its own, and the other one if it names one
  std::vector<PageSection> sections;
  std::vector<LinkWord> linkWords;        // empty where CountsLinkTexts says no
  std::vector<PictureText> pictureTexts;  // empty where pictures are no pages
  bool isSilent = false;  // a picture that says nothing of itself: a page where others do
  PageSuggestions suggestions;
  std::string anchor;             // of a section: by which the page's address leads to it
  std::vector<PageBlock> pieces;  // sections that are pages of their own; a section has none
};

// Bytes that the block takes, nearly.
size_t MemoryOf(const PageBlock& block);

// What blocks are made by. The referenced objects outlive the maker.
struct BlockInput {
  const std::string& base;  // the site's address, ending in "/"
  const SiteConfig& config;
  const IndexCharset& charset;
  const volatile std::sig_atomic_t* stop = nullptr;  // not owned; null: nobody can stop it
  size_t memory = CutRules().memory;                 // see there
};

// By which rules the texts of an index are cut.
CutRules CutRulesOf(const SiteConfig& config, const IndexCharset& charset);

// Makes one block after the other; several makers share nothing.
class BlockMaker {
 public:
  explicit BlockMaker(const BlockInput& input);

  // Takes off the page what the site's pages share (SiteConfig::habits); a name taken off its title
  // is still found, as a word of its address is. kNone; or kStopped, and the block is of no use.
  // Throws std::bad_alloc, after which the maker
  // can be used on.
  [[nodiscard]] Reason Make(const Page& page, PageBlock& block);

 private:
  Reason MakeOf(const Page& page, const std::string& takenOff, PageBlock& block);
  Reason MakeWhole(const Page& page, const std::string& takenOff, PageBlock& block);

  BlockInput input_;
  bool hasSections_;
  CutRules rules_;
  LinkWordCutter links_;
  PageCutter cutter_;
};

}  // namespace vela::indexer
