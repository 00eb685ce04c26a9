#include "indexer/state/anchor_bytes.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "indexer/state/text_list.h"

namespace vela::indexer {

namespace {

bool ReadAll(std::string_view bytes, PageAnchors& anchors) {
  const std::optional<int64_t> places = TakeNumberText(bytes);
  if (!places.has_value() || *places < 0) return false;
  for (int64_t i = 0; i < *places; ++i) {
    std::optional<std::string> place = TakeText(bytes);
    if (!place.has_value()) return false;
    anchors.places.push_back(std::move(*place));
  }
  while (!bytes.empty()) {
    std::optional<std::string> address = TakeText(bytes);
    std::optional<std::string> fragment = TakeText(bytes);
    std::optional<std::string> text = TakeText(bytes);
    if (!address.has_value() || !fragment.has_value() || !text.has_value()) return false;
    anchors.links.push_back({.address = std::move(*address),
                             .fragment = std::move(*fragment),
                             .text = std::move(*text)});
  }
  return true;
}

}  // namespace

std::string AnchorBytes(const PageAnchors& anchors) {
  std::string bytes;
  AppendNumber(static_cast<int64_t>(anchors.places.size()), bytes);
  for (const std::string& place : anchors.places) AppendText(place, bytes);
  for (const AnchorLink& link : anchors.links) {
    AppendText(link.address, bytes);
    AppendText(link.fragment, bytes);
    AppendText(link.text, bytes);
  }
  return bytes;
}

bool ReadAnchors(std::string_view bytes, PageAnchors& anchors) {
  anchors = PageAnchors();
  if (ReadAll(bytes, anchors)) return true;
  anchors = PageAnchors();
  return false;
}

}  // namespace vela::indexer
