// recommended_pages.h: where the pages stand that the owner recommends.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>

#include "indexer/config/site_config.h"

namespace vela::indexer {

class RecommendedPages {
 public:
  // The pages that `rules` name, at addresses of their own or from `base` on; none is found yet.
  RecommendedPages(std::span<const RecommendedRule> rules, std::string base);

  // Notes where the line of the page that is known under `addresses` begins in the page data. A
  // folder's address means the folder's index page.
  void Note(std::span<const std::string> addresses, uint64_t offset);

  // That place for the page that the rule names; none when no such page was noted.
  std::optional<uint64_t> OffsetOf(const RecommendedRule& rule) const;

 private:
  void NoteAddress(const std::string& address, uint64_t offset);

  std::string base_;
  std::unordered_map<std::string, std::optional<uint64_t>> offsets_;  // by the address
};

}  // namespace vela::indexer
