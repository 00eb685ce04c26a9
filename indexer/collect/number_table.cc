#include "indexer/collect/number_table.h"

#include <cstring>
#include <utility>

namespace vela::indexer {

namespace {

constexpr size_t kFirstPlaces = 1 << 12;

// Of each bit that goes in half of those that come out depend.
uint64_t Mixed(uint64_t a, uint64_t b) {
  const unsigned __int128 product = static_cast<unsigned __int128>(a) * b;
  return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

// Of 0 to 8 bytes as a little-endian number. Pieces that overlap say the same of what they share.
uint64_t ShortNumber(std::string_view text) {
  const char* const at = text.data();
  const size_t size = text.size();
  if (size >= sizeof(uint32_t)) {
    uint32_t low = 0;
    uint32_t high = 0;
    memcpy(&low, at, sizeof low);
    memcpy(&high, at + size - sizeof high, sizeof high);
    return low | uint64_t{high} << 8 * (size - sizeof high);
  }
  if (size == 0) return 0;
  const auto byte = [at](size_t i) { return uint64_t{static_cast<unsigned char>(at[i])} << 8 * i; };
  return byte(0) | byte(size / 2) | byte(size - 1);
}

}  // namespace

uint64_t TextHash(std::string_view text) {
  constexpr uint64_t kOne = 0x9E3779B97F4A7C15;
  constexpr uint64_t kOther = 0xD6E8FEB86659FD93;
  uint64_t hash = text.size() * kOther;
  while (text.size() > sizeof hash) {
    uint64_t bytes = 0;
    memcpy(&bytes, text.data(), sizeof bytes);
    hash = Mixed(hash ^ bytes, kOne);
    text.remove_prefix(sizeof bytes);
  }
  return Mixed(hash ^ ShortNumber(text) ^ kOther, kOne);
}

void NumberTable::Grow() {
  // Small ones by twice as much; what that would leave free is too much of a large one.
  constexpr size_t kLarge = size_t{1} << 20;
  const size_t more = places_.size() < kLarge ? places_.size() : places_.size() / 2;
  std::vector<Place> former(std::max(kFirstPlaces, places_.size() + more));
  former.swap(places_);
  for (const Place& place : former) {
    if (place.number == kNone) continue;
    size_t at = PlaceOf(place.hash);
    while (places_[at].number != kNone) at = at + 1 == places_.size() ? 0 : at + 1;
    places_[at] = place;
  }
}

}  // namespace vela::indexer
