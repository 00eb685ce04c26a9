#include "index/sorted_words.h"

#include <algorithm>
#include <bit>

#include "format/dictionary.h"
#include "text/find_folded.h"

namespace vela {

namespace {

// The word whose line begins at `start`; empty where that lies beyond the dictionary.
std::string_view WordFrom(const SortedWords& words, size_t start) {
  if (start >= words.dictionary.size()) return {};
  const std::string_view rest = words.dictionary.substr(start, kDictionaryLineLimit);
  size_t end = 0;
  while (end < rest.size() && static_cast<unsigned char>(rest[end]) > ' ') ++end;
  return rest.substr(0, end);
}

// Whether the first text of the block is below `wanted`. False when the block is damaged.
bool BeginsBelow(const SortedWords& words, size_t block, std::string_view wanted, bool& isBelow) {
  SortedTexts texts(words.lookup, block);
  if (!texts.Next()) return false;
  isBelow = CompareFolded(texts.text(), wanted) < 0;
  return true;
}

// The block that holds the first text that is not below `wanted`, if any does, or the one ahead of
// it. False when a block is damaged.
bool FindBlock(const SortedWords& words, std::string_view wanted, size_t& block) {
  const LookupHeader& header = words.lookup.header();
  const LookupKey key = FoldedLookupKeyOf(wanted);
  size_t low = 0;
  auto high = static_cast<size_t>(header.wordGuide.count);
  while (low < high) {
    const size_t middle = low + (high - low) / 2;
    LookupKey guide = 0;
    if (!words.lookup.Read(header.wordGuide, middle, guide)) return false;
    if (guide < key) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  // What is wanted stands behind the last smaller key of the guide; equal keys may go on for long.
  low = low == 0 ? 0 : (low - 1) * kLookupGuideStep;
  high = static_cast<size_t>(header.sortedWords.count);
  bool isBelow = false;
  for (size_t step = kLookupGuideStep; low + step < high; step *= 2) {
    if (!BeginsBelow(words, low + step, wanted, isBelow)) return false;
    if (!isBelow) {
      high = low + step;
      break;
    }
    low += step;
  }
  while (low + 1 < high) {
    const size_t middle = low + (high - low) / 2;
    if (!BeginsBelow(words, middle, wanted, isBelow)) return false;
    if (isBelow) {
      low = middle;
    } else {
      high = middle;
    }
  }
  block = low;
  return true;
}

// Calls `visit(texts)` for every entry whose text begins so, until that gives false. False when the
// tables are damaged.
template <typename Visit>
bool VisitByBeginning(const SortedWords& words, std::string_view beginning, Visit visit) {
  size_t block = 0;
  if (!FindBlock(words, beginning, block)) return false;
  SortedTexts texts(words.lookup, block);
  while (texts.Next()) {
    const int order = CompareFolded(texts.text().substr(0, beginning.size()), beginning);
    if (order < 0) continue;
    if (order > 0) break;
    if (texts.word() >= static_cast<uint32_t>(words.count)) return false;
    if (!visit(texts)) break;
  }
  return !texts.isDamaged();
}

}  // namespace

int32_t NextInSet(const WordSet& words, int32_t from, int32_t end) {
  if (from >= end) return end;
  auto at = static_cast<size_t>(from) / 64;
  uint64_t bits = words.bits[at] & (~uint64_t{0} << (from % 64));
  while (bits == 0) {
    if (++at >= words.bits.size()) return end;
    bits = words.bits[at];
  }
  return std::min(static_cast<int32_t>(at * 64) + std::countr_zero(bits), end);
}

bool SortedTexts::BeginBlock() {
  const LookupTablePlace& table = lookup_.header().sortedWords;
  if (block_ >= table.count || block_ >= end_) return false;
  length_ = 0;
  recent_ = {};
  rest_ = lookup_.Block(table, block_++);
  isDamaged_ = rest_.empty();
  return !isDamaged_;
}

bool SortedTexts::Next() {
  if (isDamaged_) return false;
  const auto isOver = [this] { return rest_.size() < 2 || (rest_[0] == 0 && rest_[1] == 0); };
  // There is no block without an entry.
  if (isOver() && !BeginBlock()) return false;
  isDamaged_ = isOver() || !ReadEntry();
  return !isDamaged_;
}

bool SortedTexts::ReadEntry() {
  const auto take = [this](size_t& number) {
    if (rest_.empty()) return false;
    number = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return true;
  };
  size_t shared = 0;
  size_t form = 0;
  if (!take(shared) || !take(form)) return false;
  size_t added = form & kLookupAddedMost;
  if (size_t more = 0; added == kLookupAddedMost) {
    if (!take(more)) return false;
    added += more;
  }
  if (shared > length_ || added > kLookupTextLimit - shared || added > rest_.size()) return false;
  length_ = shared + rest_.copy(text_ + shared, added);
  rest_.remove_prefix(added);
  isVariant_ = (form & kLookupVariantBit) != 0;
  const size_t recent = form >> kLookupRecentShift;
  if (recent < kLookupRecentWords) {
    word_ = recent_.TakeNext(recent);
    return true;
  }
  uint64_t number = 0;
  for (int shift = 0; shift < 35; shift += 7) {
    size_t byte = 0;
    if (!take(byte)) return false;
    number |= uint64_t{byte & 0x7F} << shift;
    if (byte >= 0x80) continue;
    word_ = static_cast<uint32_t>(number);
    recent_.Add(word_);
    return number <= UINT32_MAX;
  }
  return false;
}

bool FindEqualWord(const SortedWords& words, std::string_view word, int32_t from, int32_t& number) {
  number = -1;
  size_t block = 0;
  if (!FindBlock(words, word, block)) return false;
  SortedTexts texts(words.lookup, block);
  while (texts.Next()) {
    const int order = CompareFolded(texts.text(), word);
    if (order < 0) continue;
    if (order > 0) break;
    if (texts.word() >= static_cast<uint32_t>(words.count)) return false;
    const auto found = static_cast<int32_t>(texts.word());
    if (texts.isVariant() || found < from) continue;
    size_t start = 0;
    if (!words.lookup.ReadWordStart(texts.word(), start)) return false;
    // The texts are in lower case, as the word may not be.
    if (WordFrom(words, start) != word) continue;
    number = found;
    break;
  }
  return !texts.isDamaged();
}

bool CollectByBeginning(const SortedWords& words, std::string_view beginning, WordSet& found) {
  if (!found.bits.TryAllocate(static_cast<size_t>(words.count) / 64 + 1)) return false;
  return VisitByBeginning(words, beginning, [&found](const SortedTexts& texts) {
    found.bits[texts.word() / 64] |= uint64_t{1} << (texts.word() % 64);
    return true;
  });
}

bool ListByBeginning(const SortedWords& words, std::string_view beginning,
                     std::span<uint32_t> numbers, size_t& count) {
  count = 0;
  return VisitByBeginning(words, beginning, [&](const SortedTexts& texts) {
    if (count == numbers.size()) return false;
    numbers[count++] = texts.word();
    return true;
  });
}

}  // namespace vela
