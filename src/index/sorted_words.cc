#include "index/sorted_words.h"

#include <algorithm>
#include <bit>

#include "format/dictionary.h"
#include "text/ascii.h"

namespace vela {

namespace {

// Compares as if all ASCII letters were in lower case.
int CompareFolded(std::string_view a, std::string_view b) {
  const size_t shared = std::min(a.size(), b.size());
  for (size_t i = 0; i < shared; ++i) {
    const auto left = static_cast<unsigned char>(ToLowerAscii(a[i]));
    const auto right = static_cast<unsigned char>(ToLowerAscii(b[i]));
    if (left != right) return left < right ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

// A text of the sorted table; empty when its position lies beyond the dictionary.
std::string_view TextOf(const SortedWords& words, const LookupSortedWord& sorted) {
  if (sorted.start >= words.dictionary.size()) return {};
  const std::string_view rest = words.dictionary.substr(sorted.start, kDictionaryLineLimit);
  size_t end = 0;
  while (end < rest.size() && static_cast<unsigned char>(rest[end]) > ' ') ++end;
  return rest.substr(0, end);
}

// Compares the text of a record with the one wanted, whose key is `key`.
int Compare(const SortedWords& words, const LookupSortedWord& sorted, LookupKey key,
            std::string_view wanted) {
  if (sorted.key != key) return sorted.key < key ? -1 : 1;
  // Equal keys with room to spare are equal texts: no text holds a zero byte.
  if ((key & 0xFF) == 0) return 0;
  return CompareFolded(TextOf(words, sorted), wanted);
}

// The index of the first record whose text is not below `wanted`. False when a block is damaged.
bool LowerBound(const SortedWords& words, LookupKey key, std::string_view wanted, size_t& index) {
  const LookupHeader& header = words.lookup.header();
  constexpr size_t kRecordsPerGuide = kLookupGuideStep * kLookupRecordsPerBlock<LookupSortedWord>;
  size_t low = 0;
  size_t high = static_cast<size_t>(header.wordGuide.count);
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
  low = low == 0 ? 0 : (low - 1) * kRecordsPerGuide;
  high = static_cast<size_t>(header.sortedWords.count);
  size_t step = kRecordsPerGuide;
  LookupSortedWord sorted;
  while (low + step < high) {
    if (!words.lookup.Read(header.sortedWords, low + step, sorted)) return false;
    if (Compare(words, sorted, key, wanted) >= 0) {
      high = low + step;
      break;
    }
    low += step;
    step *= 2;
  }
  while (low < high) {
    const size_t middle = low + (high - low) / 2;
    if (!words.lookup.Read(header.sortedWords, middle, sorted)) return false;
    if (Compare(words, sorted, key, wanted) < 0) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  index = low;
  return true;
}

// Calls `visit(word)` for every text that begins so, until that gives false. False when the tables
// are damaged.
template <typename Visit>
bool VisitByBeginning(const SortedWords& words, std::string_view beginning, Visit visit) {
  const LookupHeader& header = words.lookup.header();
  const LookupKey key = FoldedLookupKeyOf(beginning);
  size_t index = 0;
  if (!LowerBound(words, key, beginning, index)) return false;
  const size_t inKey = std::min(beginning.size(), sizeof key);
  const LookupKey mask = ~LookupKey{0} << (8 * (sizeof key - inKey));
  for (; index < header.sortedWords.count; ++index) {
    LookupSortedWord sorted;
    if (!words.lookup.Read(header.sortedWords, index, sorted)) return false;
    if ((sorted.key & mask) != key) break;
    if (beginning.size() > sizeof key &&
        CompareFolded(TextOf(words, sorted).substr(0, beginning.size()), beginning) != 0) {
      break;
    }
    if (sorted.word >= static_cast<uint32_t>(words.count)) return false;
    if (!visit(sorted.word)) break;
  }
  return true;
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

bool FindEqualWord(const SortedWords& words, std::string_view word, int32_t from, int32_t& number) {
  const LookupHeader& header = words.lookup.header();
  const LookupKey key = FoldedLookupKeyOf(word);
  size_t index = 0;
  number = -1;
  if (!LowerBound(words, key, word, index)) return false;
  for (; index < header.sortedWords.count; ++index) {
    LookupSortedWord sorted;
    if (!words.lookup.Read(header.sortedWords, index, sorted)) return false;
    if (Compare(words, sorted, key, word) != 0) break;
    if (sorted.word >= static_cast<uint32_t>(words.count)) return false;
    const auto found = static_cast<int32_t>(sorted.word);
    if (found < from || TextOf(words, sorted) != word) continue;
    size_t start = 0;
    if (!words.lookup.ReadWordStart(sorted.word, start)) return false;
    if (start != sorted.start) continue;  // a variant
    number = found;
    break;
  }
  return true;
}

bool CollectByBeginning(const SortedWords& words, std::string_view beginning, WordSet& found) {
  if (!found.bits.TryAllocate(static_cast<size_t>(words.count) / 64 + 1)) return false;
  return VisitByBeginning(words, beginning, [&found](uint32_t word) {
    found.bits[word / 64] |= uint64_t{1} << (word % 64);
    return true;
  });
}

bool ListByBeginning(const SortedWords& words, std::string_view beginning,
                     std::span<uint32_t> numbers, size_t& count) {
  count = 0;
  return VisitByBeginning(words, beginning, [&](uint32_t word) {
    if (count == numbers.size()) return false;
    numbers[count++] = word;
    return true;
  });
}

}  // namespace vela
