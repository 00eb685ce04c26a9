// recommended_writer.h: the pages that the owner puts first (format/recommended.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "indexer/config/site_config.h"
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

// A rule and the page of the index that it names, if there is one.
struct Recommendation {
  const RecommendedRule& rule;
  std::optional<uint32_t> page;
};

// Keywords are cut as a query would be. `table` has all pages.
RecommendedSizes WriteRecommended(const std::filesystem::path& path,
                                  const std::vector<Recommendation>& recommendations,
                                  const PageTableWriter& table, const IndexCharset& charset);

}  // namespace vela::indexer
