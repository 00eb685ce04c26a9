#include "indexer/link_check.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "indexer/extract/decoding.h"
#include "indexer/extract/page_anchors.h"
#include "indexer/site/address.h"
#include "indexer/words/lower_copy.h"
#include "text/percent_code.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr uint32_t kNoItem = 0xFFFFFFFF;

std::string Decoded(std::string_view text) {
  std::string decoded;
  for (size_t i = 0; i < text.size(); ++i) {
    const int code = ReadPercentCode(text.substr(i));
    decoded += code < 0 ? text[i] : static_cast<char>(code);
    if (code >= 0) i += kPercentCodeLength - 1;
  }
  return decoded;
}

// The place that a fragment means; empty for the page as a whole.
std::string PlaceOf(std::string_view fragment) {
  std::string place = Decoded(fragment.substr(0, fragment.find(":~:")));  // behind it, words
  return LowerAsciiCopy(place) == "top" ? std::string() : place;
}

size_t PlaceKey(uint32_t item, std::string_view place) {
  return std::hash<std::string_view>()(place) ^ (size_t{item} + 1) * 0x9E3779B97F4A7C15U;
}

}  // namespace

std::optional<PageAnchors> AnchorsOfItem(const SourceItem& item, const FileContent& file) {
  if (item.type != FileType::kHtml) return {};
  ReadingBudget budget = StartReading({}, file.bytes.size());
  std::string html;
  if (ConvertToUtf8(file.bytes, true, budget, html, file.charset) != Reason::kNone) return {};
  return AnchorsOf(html, item.address, budget);
}

LinkCheck::LinkCheck(LinkedSite site, const SiteListing& listing)
    : site_(std::move(site)), listing_(listing), hasPlaces_(listing.items.size()) {
  for (uint32_t item = 0; item < listing.items.size(); ++item) {
    const std::string& address = listing.items[item].address;
    items_.try_emplace(address, item);
    const std::string folder = FolderOfIndexPage(address);
    if (!folder.empty()) items_.try_emplace(folder, item);
  }
  // What was asked for on the web and is not there.
  if (!site_.folder.empty()) return;
  for (const LeftOut::Entry& entry : listing.leftOut.entries) {
    if (entry.reason == Reason::kPageGone) gone_.insert(AsEncoded(entry.path));
  }
}

void LinkCheck::AddPage(const SourceItem& item, PageAnchors anchors) {
  std::ranges::sort(anchors.places);
  const std::lock_guard lock(mutex_);
  const auto own = items_.find(item.address);
  if (own == items_.end()) return;
  hasPlaces_[own->second] = true;
  for (const std::string& place : anchors.places) places_.push_back(PlaceKey(own->second, place));
  for (AnchorLink& link : anchors.links) {
    const bool isOwn = link.address.empty();
    std::string address = isOwn ? item.address : AsEncoded(link.address);
    if (!IsBelow(address, site_.base)) continue;
    ++checked_;
    address = InSpellingOf(site_.base, address);
    std::string place = PlaceOf(link.fragment);
    if (isOwn && (place.empty() || std::ranges::binary_search(anchors.places, place))) continue;
    if (place.empty() && IsThere(address)) continue;
    candidates_.push_back({.item = own->second,
                           .address = std::move(address),
                           .fragment = std::move(place),
                           .text = std::move(link.text)});
  }
}

// The item that an address leads to; kNoItem for none.
uint32_t LinkCheck::ItemAt(const std::string& address) const {
  const auto item = items_.find(address.substr(0, address.find('?')));
  if (item != items_.end()) return item->second;
  const auto whole = items_.find(address);
  return whole == items_.end() ? kNoItem : whole->second;
}

// Whether there is an answer to an address of the site: a page, or a file or folder that is none.
bool LinkCheck::IsThere(const std::string& address) const {
  if (ItemAt(address) != kNoItem) return true;
  if (site_.folder.empty()) return !gone_.contains(address);
  const std::string decoded =
      Decoded(address.substr(site_.base.size(), address.find('?') - site_.base.size()));
  // What no name can hold, or leads out of the site, is no file of it.
  const fs::path path = fs::path("/" + decoded).lexically_normal().relative_path();
  if (decoded.find('\0') != decoded.npos || (!path.empty() && *path.begin() == "..")) return false;
  std::error_code error;
  return fs::exists(site_.folder / path, error);
}

BrokenLinks LinkCheck::Finish(const CanonicalAddresses& addresses) {
  std::ranges::sort(places_);
  std::ranges::stable_sort(candidates_, {}, &Candidate::item);
  BrokenLinks broken = {.wereSought = true, .checked = checked_, .found = {}};
  for (Candidate& link : candidates_) {
    const uint32_t to = ItemAt(link.address);
    const bool isKnown = to != kNoItem && hasPlaces_[to];
    const bool noPlace = !link.fragment.empty() && isKnown &&
                         !std::ranges::binary_search(places_, PlaceKey(to, link.fragment));
    // A page may have another address than its file, and answer to that.
    const bool isThere = IsThere(link.address) || addresses.PageAt(link.address).has_value();
    if (isThere && !noPlace) continue;
    std::string address = std::move(link.address);
    if (!link.fragment.empty()) address += "#" + link.fragment;
    broken.found.push_back({.path = listing_.items[link.item].path,
                            .address = std::move(address),
                            .text = std::move(link.text),
                            .noPlace = isThere});
  }
  return broken;
}

}  // namespace vela::indexer
