// recommended_writer.h: the pages that the owner puts first (format/recommended.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "indexer/collect/recommended_pages.h"
#include "indexer/report/reason.h"
#include "indexer/words/index_charset.h"
#include "indexer/write/page_table_writer.h"

namespace vela::indexer {

struct RecommendedSizes {
  uint64_t entries = 0;  // NumRecommended
  uint64_t fileBytes = 0;
  size_t longestLine = 0;       // bytes, its line feed included
  std::vector<Finding> unused;  // rules that could not be used
};

// Keywords are cut as a query would be (see CutsSigns). `table` has all pages, and gets a line for
// what is no page of the index or is shown with the owner's words.
RecommendedSizes WriteRecommended(const std::filesystem::path& path,
                                  const std::vector<Recommendation>& recommendations,
                                  PageTableWriter& table, const IndexCharset& charset,
                                  bool cutsSigns);

}  // namespace vela::indexer
