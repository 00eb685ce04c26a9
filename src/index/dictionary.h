// dictionary.h: the reader of the indexed words (format/dictionary.h).
//
// The file is mapped and used in place. One pass over it makes every check and notes where each
// word stands; where the lookup file says both, there is none, and only what is asked for is read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "format/dictionary.h"
#include "index/lookup_file.h"
#include "index/sorted_words.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"

namespace vela {

struct DictEntry {
  std::string_view word;
  int64_t offset = 0;        // of the page list in the word map; kNoWordList for none
  int32_t variantCount = 0;  // as the line says
  size_t end = 0;            // where the lines behind the entry's own begin
};

enum class DictionaryStatus : uint8_t {
  kOk,
  kCannotOpen,         // missing, or nothing that can be read as a file
  kNoMemory,           // also for a NumKeywords that no memory can hold
  kNoBaseWordBlock,    // OutputBasewordBufferSize is below 1
  kNoVariantBlock,     // the size of the variants' block is none
  kCorruptEntry,       // a line without a blank where a base word must be
  kBaseWordBlockFull,  // the base words need more than OutputBasewordBufferSize
  kVariantBlockFull,   // the variants need more than their block
  kTooManyEntries,     // more base words than NumKeywords
};

struct DictionaryResult {
  DictionaryStatus status = DictionaryStatus::kOk;
  // How many base words were read when the loading stopped, for kTooManyEntries with the one that
  // is too many.
  int32_t entries = 0;
};

class Dictionary {
 public:
  // Opens and checks the file. `lookup` and `settings` must outlive the dictionary.
  [[nodiscard]] DictionaryResult Load(const IndexDirectory& directory, const Settings& settings,
                                      const LookupFile& lookup);
  // The same over bytes in memory, which must outlive the dictionary, too.
  [[nodiscard]] DictionaryResult Load(std::string_view bytes, const Settings& settings,
                                      const LookupFile& lookup);
  void Release();

  // Word numbers 0 up to size() - 1 are in use; it may be less than NumKeywords.
  int32_t size() const { return count_; }

  std::string_view WordAt(int32_t number) const;
  DictEntry EntryAt(int32_t number) const;

  // The first word number from `from` on whose word equals `word` byte for byte; -1 for none.
  int32_t FindExact(std::string_view word, int32_t from) const;

  // Collects the numbers of all words that begin with `beginning` (not empty), themselves or in one
  // of their stored variants, ASCII letters alike in either case. False when that takes looking at
  // every word.
  [[nodiscard]] bool CollectByBeginning(std::string_view beginning, WordSet& found) const;

  // Lists the numbers of such words, as many as there is room for, in the order of the texts that
  // begin so; one for each of those that differ from the word itself. Returns how many.
  size_t ListByBeginning(std::string_view beginning, std::span<uint32_t> numbers) const;

  // Collects those of words that hold `piece` anywhere, and of some others: by looking at the bytes
  // of the file instead of at every word. False when memory is out.
  [[nodiscard]] bool CollectByPiece(std::string_view piece, WordSet& found) const;

  // Whether variant lines follow the word.
  bool HasVariants(int32_t number) const;

  // The text of a word in its spelling `variant`: 0 the word itself, from 1 on its stored variants
  // in order, and the word itself for a number beyond these.
  std::string_view DisplayText(int32_t number, int32_t variant) const;

 private:
  friend class VariantReader;

  // What the pass over the file finds.
  struct WordTable {
    OwnedArray<uint32_t> starts;       // where each word stands
    OwnedArray<uint64_t> variantBits;  // one bit a word
    int32_t count = 0;
    size_t end = 0;  // of what was read
    [[nodiscard]] DictionaryResult Read(std::string_view bytes, const Settings& settings);
    [[nodiscard]] DictionaryResult ReadLines(std::string_view bytes, const Settings& settings);
  };

  [[nodiscard]] bool UseLookup(const Settings& settings, const LookupFile& lookup);
  SortedWords Sorted() const { return {*lookup_, bytes_, count_}; }
  void LeaveLookup() const;
  size_t StartOf(int32_t number) const;
  std::string_view WordFrom(size_t start) const;
  int32_t WordAtPosition(size_t position, int32_t from) const;
  int32_t FindInTable(std::string_view word, int32_t from) const;
  size_t ListInTable(std::string_view beginning, std::span<uint32_t> numbers) const;

  FileImage file_;
  std::string_view bytes_;  // up to where loading went
  int32_t count_ = 0;
  const Settings* settings_ = nullptr;
  // Which of the two is used makes no difference to any answer: a lookup file that turns out to be
  // damaged in a place that is needed is left for the table in the middle of a request.
  mutable const LookupFile* lookup_ = nullptr;  // null: the table is used
  mutable WordTable table_;
};

// Goes through the stored variants of one word in order: none when its first variant line was too
// long or empty, otherwise its variant lines that are neither.
class VariantReader {
 public:
  VariantReader(const Dictionary& dictionary, const DictEntry& entry);
  // The next variant; false when there is none left.
  bool Next(std::string_view& variant);

 private:
  std::string_view rest_;
  int32_t left_;
  bool first_ = true;
};

}  // namespace vela
