// page_collection.h: everything that grows while pages are read, and how a page joins it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "indexer/collect/equal_pages.h"
#include "indexer/collect/page_entry.h"
#include "indexer/collect/page_tokens.h"
#include "indexer/collect/postings.h"
#include "indexer/collect/sign_entries.h"
#include "indexer/collect/site_rules.h"
#include "indexer/collect/suggestion_list.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"
#include "indexer/report/left_out.h"
#include "indexer/site/canonical_addresses.h"
#include "indexer/words/index_charset.h"
#include "indexer/words/word_forms.h"

namespace vela::indexer {

// What is the same for all pages. The referenced objects outlive the collection.
struct CollectionInput {
  const std::string& base;  // the site's address, ending in "/"
  const SiteConfig& config;
  const IndexCharset& charset;
  size_t memory = 0;  // bytes that collected words may take before they go to disk
};

struct PageCollection {
  // `folder` is where temporary files may lie.
  PageCollection(const CollectionInput& collectionInput, const std::filesystem::path& folder);

  CollectionInput input;
  CanonicalAddresses addresses;
  EqualPages equal;
  WordForms forms;
  Vocabulary vocabulary;
  SignEntries signs;
  PostingRuns postings;
  std::vector<PageLengths> pages;
  SuggestionList suggestions;
  SiteRules rules;
  LeftOut metaValues;            // of the fields
  std::vector<bool> usedFields;  // beside the fields: some page has an element for it
  PageTokens tokens;             // of the page that joined last
  uint64_t tokenCount = 0;       // of all pages
  uint64_t sourceBytes = 0;      // of the pages' files
};

// What the page table and the recommended pages need of the page that joined.
struct JoinedPage {
  PageEntry entry;
  std::vector<std::string> addresses;  // under which it is known, the stored one first
};

// Joins one page to the collection; its tokens are then in `collection.tokens`. kCopy, kEqual,
// kAddressTooLong: it is left out. Throws IndexError when the index is full or a temporary file
// cannot be written.
[[nodiscard]] Reason AddPage(const Page& page, PageCollection& collection, JoinedPage& joined);

// The fields that no page has an element for.
std::vector<Finding> UnusedFields(const PageCollection& collection);

}  // namespace vela::indexer
