// number_table.h: finds again what was numbered: a hash table of numbers alone, beside which its
// owner keeps what they stand for.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace vela::indexer {

// Alike on every machine and in every run.
uint64_t TextHash(std::string_view text);

// Whether the texts are equal; quick for short ones, as words are.
inline bool IsSameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  const size_t size = a.size();
  // Two pieces that overlap cover a text of up to twice their size.
  const auto haveSamePiece = [&](auto piece, size_t at) {
    auto other = piece;
    memcpy(&piece, a.data() + at, sizeof piece);
    memcpy(&other, b.data() + at, sizeof other);
    return piece == other;
  };
  if (size > 2 * sizeof(uint64_t)) return a == b;
  if (size >= sizeof(uint64_t)) {
    return haveSamePiece(uint64_t{0}, 0) && haveSamePiece(uint64_t{0}, size - sizeof(uint64_t));
  }
  if (size >= sizeof(uint32_t)) {
    return haveSamePiece(uint32_t{0}, 0) && haveSamePiece(uint32_t{0}, size - sizeof(uint32_t));
  }
  return size == 0 || (a[0] == b[0] && a[size / 2] == b[size / 2] && a[size - 1] == b[size - 1]);
}

class NumberTable {
 public:
  static constexpr uint32_t kNone = 0xFFFFFFFF;
  // The number that was added with that hash and for which `isSame(number)` holds; when there is
  // none, `next` is added and returned.
  template <typename IsSame>
  uint32_t FindOrAdd(uint64_t hash, uint32_t next, IsSame isSame) {
    if ((used_ + 1) * 4 > places_.size() * 3) Grow();
    const auto kept = static_cast<uint32_t>(hash);
    for (size_t at = PlaceOf(kept);; at = at + 1 == places_.size() ? 0 : at + 1) {
      Place& place = places_[at];
      if (place.number == kNone) {
        place = {.hash = kept, .number = next};
        ++used_;
        return next;
      }
      if (place.hash == kept && isSame(place.number)) return place.number;
    }
  }
  // The number that was added with that hash and for which `isSame(number)` holds; kNone for none.
  template <typename IsSame>
  uint32_t Find(uint64_t hash, IsSame isSame) const {
    if (places_.empty()) return kNone;
    const auto kept = static_cast<uint32_t>(hash);
    for (size_t at = PlaceOf(kept);; at = at + 1 == places_.size() ? 0 : at + 1) {
      const Place& place = places_[at];
      if (place.number == kNone || (place.hash == kept && isSame(place.number))) {
        return place.number;
      }
    }
  }
  // Brings the place of that hash into the processor's cache.
  void Prefetch(uint64_t hash) const {
    if (!places_.empty()) __builtin_prefetch(&places_[PlaceOf(static_cast<uint32_t>(hash))]);
  }
  // The number with that hash, or another one; kNone where there is none nearby. For bringing into
  // the cache what it stands for.
  uint32_t Guess(uint64_t hash) const {
    if (places_.empty()) return kNone;
    const auto kept = static_cast<uint32_t>(hash);
    const size_t at = PlaceOf(kept);
    if (places_[at].hash == kept) return places_[at].number;
    const Place& second = places_[at + 1 == places_.size() ? 0 : at + 1];
    return second.hash == kept ? second.number : kNone;
  }
  void Clear() {
    std::ranges::fill(places_, Place());
    used_ = 0;
  }
  size_t memory() const { return places_.capacity() * sizeof(Place); }

 private:
  struct Place {
    uint32_t hash = 0;  // half of it, which says the place
    uint32_t number = kNone;
  };
  void Grow();
  // Places have the order of the hashes, so that a larger table is filled from one end to the
  // other.
  size_t PlaceOf(uint32_t kept) const { return uint64_t{kept} * places_.size() >> 32; }

  std::vector<Place> places_;  // at most three quarters are used
  size_t used_ = 0;
};

}  // namespace vela::indexer
