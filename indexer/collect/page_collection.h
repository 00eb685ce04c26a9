// page_collection.h: everything that grows while pages are read, and how a page joins it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "indexer/collect/chunked_list.h"
#include "indexer/collect/content_counts.h"
#include "indexer/collect/equal_pages.h"
#include "indexer/collect/file_dates.h"
#include "indexer/collect/link_texts.h"
#include "indexer/collect/page_block.h"
#include "indexer/collect/page_entry.h"
#include "indexer/collect/page_tokens.h"
#include "indexer/collect/picture_texts.h"
#include "indexer/collect/postings.h"
#include "indexer/collect/sign_entries.h"
#include "indexer/collect/similar_pages.h"
#include "indexer/collect/site_rules.h"
#include "indexer/collect/site_sections.h"
#include "indexer/collect/suggestion_list.h"
#include "indexer/collect/vocabulary.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"
#include "indexer/report/left_out.h"
#include "indexer/site/canonical_addresses.h"
#include "indexer/source/item_list.h"
#include "indexer/words/index_charset.h"
#include "indexer/words/word_forms.h"

namespace vela::indexer {

// What is the same for all pages. The referenced objects outlive the collection.
struct CollectionInput {
  const std::string& base;  // the site's address, ending in "/"
  const SiteConfig& config;
  const IndexCharset& charset;
  size_t memory = 0;  // bytes that all of it may take, nearly; what can goes to disk before that
  TextSink sink;      // takes the text of the pages that join
};

// Of a site whose pictures are pages: what its pages say of them, and what cuts it.
struct SitePictures {
  explicit SitePictures(const CollectionInput& input);

  PictureTexts texts;
  PageCutter cutter;
};

// A page that is left out for another one.
struct CopyLeftOut {
  std::string address;
  std::string categories;  // that its address would put it in; see category_set.h
};

struct PageCollection {
  // `folder` is where temporary files may lie.
  PageCollection(const CollectionInput& collectionInput, const std::filesystem::path& folder);

  CollectionInput input;
  CanonicalAddresses addresses;
  LinkTexts linkTexts;
  std::optional<SitePictures> pictures;  // none where they are no pages
  EqualPages equal;
  SimilarPages similar;
  WordForms forms;
  Vocabulary vocabulary;
  SignEntries signs;
  PostingRuns postings;
  ChunkedList<PageLengths> pages;
  SuggestionList suggestions;
  SiteSections sections;
  SiteRules rules;
  FileDates fileDates;
  ContentCounts content;
  LeftOut metaValues;               // of the fields
  std::vector<bool> usedFields;     // beside the fields: some page has an element for it
  std::vector<CopyLeftOut> copies;  // those that rules put into a category
  PageTokens tokens;                // what is kept of the page that joined last
  uint64_t tokenCount = 0;          // of all pages
  uint64_t sourceBytes = 0;         // of the pages' files
};

// Tells what of the items are pictures, where these are pages. Before the first page.
void AddPictures(const ItemList& items, PageCollection& collection);

// Joins the block of one page to the collection: its text has then gone to the sink, what the
// page table keeps of it is in `entry`. kCopy, kEqual, kSimilar, kAddressTooLong, kNoText: it is
// left out. A picture comes behind the pages that show it.
// Throws IndexError when the index is full or a temporary file cannot be written.
[[nodiscard]] Reason AddPage(const PageBlock& page, PageCollection& collection, PageEntry& entry);

// Joins a section of the page that joined as `page`, the last one of its own kind: a page by
// itself, at a place of the other's address. Nothing leaves it out. Throws as AddPage does.
void AddSectionPage(const PageBlock& section, const PageEntry& page, PageCollection& collection,
                    PageEntry& entry);

// Lets go of what only further pages would need. Once, when all have joined.
void EndJoining(PageCollection& collection);

// A page of the index, and categories that it is in beside those of its own addresses.
struct MoreCategories {
  uint32_t page = 0;
  std::string categories;
};

// The categories that pages get from copies which were left out for them: an owner may know a page
// by any of its addresses. Once, when all pages have joined. Boosts are not handed on: a rule that
// puts printer's copies back means the copies.
std::vector<MoreCategories> CategoriesOfCopies(PageCollection& collection);

// The fields that no page has an element for.
std::vector<Finding> UnusedFields(const PageCollection& collection);

}  // namespace vela::indexer
