#include "indexer/collect/similar_pages.h"

#include <array>
#include <bit>
#include <span>

#include "indexer/collect/shingles.h"

namespace vela::indexer {

namespace {

constexpr size_t kShingleWords = 3;
constexpr size_t kBits = 64;
constexpr size_t kQuarterValues = size_t{1} << 16;

// Byte i of the entry of a byte is its bit i, so that eight counts are raised at once.
constexpr std::array<uint64_t, 256> SpreadBits() {
  std::array<uint64_t, 256> spread = {};
  for (size_t byte = 0; byte < spread.size(); ++byte) {
    for (size_t bit = 0; bit < 8; ++bit) spread[byte] |= uint64_t{byte >> bit & 1} << (8 * bit);
  }
  return spread;
}

constexpr std::array<uint64_t, 256> kSpread = SpreadBits();

// How many of the hashes counted have each bit.
class BitCounts {
 public:
  void Add(uint64_t hash) {
    for (size_t i = 0; i < eights_.size(); ++i) eights_[i] += kSpread[hash >> (8 * i) & 0xFF];
    ++count_;
    if (++waiting_ == 255) Settle();
  }
  // The bits that more than half of them have.
  uint64_t Most() {
    Settle();
    uint64_t bits = 0;
    for (size_t i = 0; i < kBits; ++i) {
      if (counts_[i] * 2 > count_) bits |= uint64_t{1} << i;
    }
    return bits;
  }

 private:
  void Settle() {
    for (size_t i = 0; i < kBits; ++i) counts_[i] += eights_[i / 8] >> (8 * (i % 8)) & 0xFF;
    eights_ = {};
    waiting_ = 0;
  }

  std::array<uint64_t, kBits / 8> eights_ = {};
  std::array<uint64_t, kBits> counts_ = {};
  uint64_t count_ = 0;
  unsigned waiting_ = 0;  // in `eights_`, a byte each
};

size_t QuarterOf(uint64_t print, size_t quarter) {
  return quarter * kQuarterValues + (print >> (16 * quarter) & 0xFFFF);
}

}  // namespace

std::optional<uint64_t> SimilarityPrint(std::string_view text) {
  std::vector<uint64_t> words;
  AddWordHashes(text, words);
  if (words.size() < kLeastSimilarWords) return std::nullopt;
  BitCounts counts;
  for (size_t i = 0; i + kShingleWords <= words.size(); ++i) {
    counts.Add(ShingleHash(std::span(words).subspan(i, kShingleWords)));
  }
  return counts.Most();
}

std::optional<uint32_t> SimilarPages::SimilarTo(uint64_t print) const {
  constexpr size_t kLooks = 1000;
  if (known_.empty()) return std::nullopt;
  const Known* nearest = nullptr;
  int least = kSimilarBits + 1;
  for (size_t quarter = 0; quarter < kQuarters; ++quarter) {
    uint32_t at = last_[QuarterOf(print, quarter)];
    for (size_t looks = 0; at != 0 && looks < kLooks; ++looks) {
      const Known& known = known_[at - 1];
      const int bits = std::popcount(known.print ^ print);
      if (bits < least || (bits == least && nearest != nullptr && known.page < nearest->page)) {
        least = bits;
        nearest = &known;
      }
      at = known.before[quarter];
    }
  }
  return nearest == nullptr ? std::nullopt : std::optional(nearest->page);
}

size_t SimilarPages::memory() const {
  return known_.size() * sizeof(Known) + last_.capacity() * sizeof(uint32_t);
}

void SimilarPages::Add(uint64_t print, uint32_t page) {
  if (last_.empty()) last_.resize(kQuarters * kQuarterValues);
  Known known = {.print = print, .page = page};
  for (size_t quarter = 0; quarter < kQuarters; ++quarter) {
    uint32_t& last = last_[QuarterOf(print, quarter)];
    known.before[quarter] = last;
    last = static_cast<uint32_t>(known_.size() + 1);
  }
  known_.push_back(known);
}

}  // namespace vela::indexer
