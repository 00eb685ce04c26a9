#include "indexer/write/pair_rows.h"

#include <algorithm>
#include <bit>

namespace vela::indexer {

namespace {

constexpr size_t kFirstPlaces = 1024;

size_t PlaceOf(uint64_t pair, size_t places) {
  const uint64_t mixed = pair * 0x9E37'79B9'7F4A'7C15U;
  return static_cast<size_t>((mixed ^ mixed >> 32) & (places - 1));
}

uint32_t FirstOf(uint64_t pair) { return static_cast<uint32_t>(pair >> 32); }
uint32_t SecondOf(uint64_t pair) { return static_cast<uint32_t>(pair); }

}  // namespace

void PairRows::Add(uint32_t first, uint32_t second) {
  if (places_ < 2 * (pairs_.size() + 1)) Grow();
  const uint64_t pair = uint64_t{first} << 32 | second;
  size_t place = PlaceOf(pair, places_);
  while (known_[place] != 0) {
    if (known_[place] == pair) return;
    place = (place + 1) & (places_ - 1);
  }
  known_[place] = pair;
  pairs_.push_back(pair);
}

// The places behind those in use are free.
void PairRows::Grow() {
  std::fill_n(known_.begin(), places_, 0);
  places_ = std::max(kFirstPlaces, 2 * places_);
  if (known_.size() < places_) known_.resize(places_);
  for (const uint64_t pair : pairs_) {
    size_t place = PlaceOf(pair, places_);
    while (known_[place] != 0) place = (place + 1) & (places_ - 1);
    known_[place] = pair;
  }
}

std::span<const WordPairs> PairRows::Finish() {
  records_.clear();
  if (pairs_.empty()) return {};
  // About as few slots as there is an answer for, most of the time.
  const size_t slots = pairs_.size() + pairs_.size() / 16;
  auto records = static_cast<uint32_t>(slots / kWordPairSlots + 1);
  while (!Solve(records)) records += 1 + records / 64;
  Fill();
  pairs_.clear();
  std::fill_n(known_.begin(), places_, 0);
  places_ = std::min(places_, kFirstPlaces);
  return records_;
}

// Brings the equations into a form in which each is the only one that begins at its slot. False
// where that cannot be with so many records.
bool PairRows::Solve(uint32_t records) {
  rows_.assign(size_t{records} * kWordPairSlots, {});
  return std::ranges::all_of(pairs_, [&](uint64_t pair) {
    return Ask(WordPairMarkOf(FirstOf(pair), SecondOf(pair), records));
  });
}

bool PairRows::Ask(const WordPairMark& mark) {
  size_t slot = mark.slot;
  Row row = {mark.mask, mark.value};
  for (;;) {
    Row& there = rows_[slot];
    if (there.mask == 0) {
      there = row;
      return true;
    }
    row.mask ^= there.mask;
    row.value ^= there.value;
    if (row.mask == 0) return row.value == 0;
    const int passed = std::countr_zero(row.mask);
    row.mask >>= passed;
    slot += static_cast<size_t>(passed);
  }
}

// From the last slot to the first: each adds what its row still wants.
void PairRows::Fill() {
  records_.resize(rows_.size() / kWordPairSlots);
  WordPairs window;  // the slots from the one at hand on
  for (size_t slot = rows_.size(); slot-- > 0;) {
    const Row& row = rows_[slot];
    for (size_t c = 0; c < kWordPairBits; ++c) {
      const uint32_t behind = window.columns[c] << 1;
      const auto sum = static_cast<uint32_t>(__builtin_parity(behind & row.mask));
      window.columns[c] = behind | (sum ^ (row.mask == 0 ? 0 : row.value >> c & 1));
    }
    if (slot % kWordPairSlots == 0) records_[slot / kWordPairSlots] = window;
  }
}

}  // namespace vela::indexer
