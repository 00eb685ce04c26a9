// print_table.h: what is known by prints, fingerprints of 64 bits, without what they are made of:
// for each its print and its value, and a fifth of that for free places.
//
// Among the most pages that an index can hold the chance that two prints meet is one in a hundred
// thousand.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vela::indexer {

// `Value` is a number or a small record.
template <typename Value>
class PrintTable {
 public:
  // The value of that print, until one is added; null for none.
  const Value* Find(uint64_t print) const {
    if (prints_.empty()) return nullptr;
    const size_t at = PlaceOf(print);
    return prints_[at] == kFree ? nullptr : &values_[at];
  }
  Value* Find(uint64_t print) { return const_cast<Value*>(std::as_const(*this).Find(print)); }

  // Adds one that is new with that value. Returns the value that it has now, until the next is
  // added, and whether it was new.
  std::pair<Value*, bool> TryAdd(uint64_t print, const Value& value) {
    if ((used_ + 1) * 5 > prints_.size() * 4) Grow();
    const size_t at = PlaceOf(print);
    if (prints_[at] != kFree) return {&values_[at], false};
    prints_[at] = Kept(print);
    values_[at] = value;
    ++used_;
    return {&values_[at], true};
  }

  size_t size() const { return used_; }
  size_t memory() const { return prints_.capacity() * (sizeof(uint64_t) + sizeof(Value)); }

 private:
  static constexpr uint64_t kFree = 0;
  static uint64_t Kept(uint64_t print) { return print == kFree ? 1 : print; }

  // Where it stands, or else would be added. Places have the order of the mixed prints, so that a
  // larger table is filled from one end to the other.
  size_t PlaceOf(uint64_t print) const {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
    const uint64_t kept = Kept(print);
    const uint64_t mixed = (kept ^ kept >> 32) * kOdd;
    auto at = static_cast<size_t>(static_cast<unsigned __int128>(mixed) * prints_.size() >> 64);
    while (prints_[at] != kept && prints_[at] != kFree) at = at + 1 == prints_.size() ? 0 : at + 1;
    return at;
  }

  void Grow() {
    constexpr size_t kFirstPlaces = 1024;
    PrintTable larger;
    // By a half each time: what twice as much would leave free is too much of a large table.
    const size_t places = std::max(kFirstPlaces, prints_.size() + prints_.size() / 2);
    larger.prints_.resize(places);
    larger.values_.resize(places);
    for (size_t i = 0; i < prints_.size(); ++i) {
      if (prints_[i] == kFree) continue;
      const size_t at = larger.PlaceOf(prints_[i]);
      larger.prints_[at] = prints_[i];
      larger.values_[at] = values_[i];
    }
    larger.used_ = used_;
    *this = std::move(larger);
  }

  std::vector<uint64_t> prints_;
  std::vector<Value> values_;  // beside the prints
  size_t used_ = 0;
};

}  // namespace vela::indexer
