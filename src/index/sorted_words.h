// sorted_words.h: finding words of the dictionary by their text, in the tables of the lookup file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "index/lookup_file.h"
#include "text/owned_array.h"

namespace vela {

// A set of word numbers.
struct WordSet {
  OwnedArray<uint64_t> bits;  // one a word
};

// The first number of the set from `from` on; `end` when there is none below it.
int32_t NextInSet(const WordSet& words, int32_t from, int32_t end);

// Goes through the sorted words of a lookup file.
class SortedTexts {
 public:
  // From the first one of a block on, to the last one of all blocks ahead of `end`.
  SortedTexts(const LookupFile& lookup, size_t block, size_t end = SIZE_MAX)
      : lookup_(lookup), block_(block), end_(end) {}

  // The next entry; false behind the last one, and where a block is damaged.
  bool Next();
  bool isDamaged() const { return isDamaged_; }

  // Of the entry.
  std::string_view text() const { return {text_, length_}; }  // with ASCII letters in lower case
  uint32_t word() const { return word_; }
  bool isVariant() const { return isVariant_; }

 private:
  bool BeginBlock();
  bool ReadEntry();

  const LookupFile& lookup_;
  size_t block_;  // the one that is begun next
  size_t end_;
  std::string_view rest_;  // of the one at hand
  char text_[kLookupTextLimit] = {};
  size_t length_ = 0;
  uint32_t word_ = 0;
  bool isVariant_ = false;
  bool isDamaged_ = false;
  LookupRecentWords recent_;
};

// The words of a dictionary that the lookup file belongs to.
struct SortedWords {
  const LookupFile& lookup;
  std::string_view dictionary;  // the bytes of its file
  int32_t count = 0;            // of base words
};

// Finds the first word number from `from` on whose base word equals `word` byte for byte; -1 for
// none. False when the tables are damaged.
[[nodiscard]] bool FindEqualWord(const SortedWords& words, std::string_view word, int32_t from,
                                 int32_t& number);

// Collects the numbers of all words that begin with `beginning` (not empty), themselves or in one
// of their stored variants, ASCII letters alike in either case. False when the tables are damaged
// or memory is out.
[[nodiscard]] bool CollectByBeginning(const SortedWords& words, std::string_view beginning,
                                      WordSet& found);

// Lists the numbers of such words, in the order of the texts, as many as there is room for:
// `count`. False when the tables are damaged.
[[nodiscard]] bool ListByBeginning(const SortedWords& words, std::string_view beginning,
                                   std::span<uint32_t> numbers, size_t& count);

}  // namespace vela
