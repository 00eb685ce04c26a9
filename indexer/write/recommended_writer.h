// recommended_writer.h: the pages that the owner puts first (format/recommended.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "indexer/collect/recommended_pages.h"
#include "indexer/config/site_config.h"
#include "indexer/report/reason.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

struct RecommendedSizes {
  uint64_t entries = 0;  // NumRecommended
  uint64_t fileBytes = 0;
  size_t longestLine = 0;       // bytes, its line feed included
  std::vector<Finding> unused;  // rules that could not be used
};

// Keywords are cut as a query would be.
RecommendedSizes WriteRecommended(const std::filesystem::path& path,
                                  const std::vector<RecommendedRule>& rules,
                                  const RecommendedPages& pages, const IndexCharset& charset);

}  // namespace vela::indexer
