#include "indexer/collect/recommended_pages.h"

#include <string_view>
#include <utility>

#include "indexer/site/address.h"

namespace vela::indexer {

namespace {
std::string AddressOf(const RecommendedRule& rule, const std::string& base) {
  return ResolveAddress(base, AsEncoded(rule.address));
}
}  // namespace

RecommendedPages::RecommendedPages(std::span<const RecommendedRule> rules, std::string base)
    : base_(std::move(base)) {
  for (const RecommendedRule& rule : rules) offsets_[AddressOf(rule, base_)];
}

void RecommendedPages::NoteAddress(const std::string& address, uint64_t offset) {
  const auto found = offsets_.find(address);
  if (found != offsets_.end() && !found->second.has_value()) found->second = offset;
}

void RecommendedPages::Note(std::span<const std::string> addresses, uint64_t offset) {
  for (const std::string& address : addresses) {
    NoteAddress(address, offset);
    const size_t name = address.rfind('/') + 1;
    if (std::string_view(address).substr(name).starts_with("index.")) {
      NoteAddress(address.substr(0, name), offset);
    }
  }
}

std::optional<uint64_t> RecommendedPages::OffsetOf(const RecommendedRule& rule) const {
  const auto found = offsets_.find(AddressOf(rule, base_));
  return found == offsets_.end() ? std::nullopt : found->second;
}

}  // namespace vela::indexer
