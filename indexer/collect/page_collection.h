// page_collection.h: everything that grows while the site's files are read, and how a file joins
// it.
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "indexer/collect/page_tokens.h"
#include "indexer/collect/postings.h"
#include "indexer/collect/suggestion_list.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/config/options.h"
#include "indexer/report/left_out.h"
#include "indexer/source/folder_walk.h"
#include "indexer/words/index_charset.h"
#include "indexer/words/word_forms.h"
#include "indexer/write/page_table_writer.h"
#include "indexer/write/page_text_writer.h"
#include "indexer/write/recommended_writer.h"
#include "indexer/write/word_map_writer.h"

namespace vela::indexer {

// What is the same for all pages. The referenced objects outlive the collection.
struct SiteInput {
  const std::filesystem::path& site;
  const std::string& base;  // the site's address, ending in "/"
  const Options& options;
  const IndexCharset& charset;
};

struct PageCollection {
  // `folder` is where the index is written.
  PageCollection(const SiteInput& siteInput, const std::filesystem::path& folder);

  SiteInput input;
  WordForms forms;
  Vocabulary vocabulary;
  PostingRuns postings;
  PageTextWriter pageText;
  PageTableWriter pageTable;
  std::vector<PageFacts> pages;
  PageOffsets recommended;  // the pages that the owner recommends
  SuggestionList suggestions;
  std::unordered_set<std::string> siteAddresses;        // of all files of the walk
  std::unordered_set<std::string> usedAddresses;        // canonical ones that are none of those
  std::unordered_map<std::string, std::string> copies;  // left out, and of which file of the site
  PageWords words;
  LeftOut metaValues;            // values of meta fields that were left out
  std::string usedCategories;    // the sets of all pages in one; empty before the first page
  std::vector<bool> usedBoosts;  // beside the configured ones: whether one of the pages fits it
  uint64_t sourceBytes = 0;      // of the pages' files
};

// Reads one file into the collection. Returns the reason when it is left out. Throws IndexError
// when the index is full or cannot be written.
Reason AddFile(const SiteFile& file, PageCollection& collection);

// What to tell the owner when all files are read: the categories and boosts that fit no page.
std::vector<Finding> UnusedRules(const PageCollection& collection);

}  // namespace vela::indexer
