// recommended_writer.h: vela_recommended.vdat, read by src/index/recommended.h: one line a tie, the
// keywords, a blank, and the position of the page's line in the page data.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/report/reason.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

constexpr size_t kMostKeywordBytes = 500;

// Where the page data has the pages that rules name, by their addresses.
constexpr uint64_t kNotRead = ~uint64_t{0};
using PageOffsets = std::unordered_map<std::string, uint64_t>;

// The addresses that the rules name, each with kNotRead. Whoever reads the pages fills it in.
PageOffsets WantedPages(const std::vector<RecommendedRule>& rules, const std::string& base);

// Notes where the page that is known under `addresses` stands. A folder's address means the
// folder's index page.
void NotePage(PageOffsets& pages, std::span<const std::string> addresses, uint64_t offset);

struct RecommendedSizes {
  uint64_t entries = 0;  // NumRecommended
  uint64_t fileBytes = 0;
  size_t longestLine = 0;       // bytes, its line feed included
  std::vector<Finding> unused;  // rules that could not be used
};

// Keywords are cut as a query would be.
RecommendedSizes WriteRecommended(const std::filesystem::path& path,
                                  const std::vector<RecommendedRule>& rules,
                                  const PageOffsets& pages, const std::string& base,
                                  const IndexCharset& charset);

}  // namespace vela::indexer
