// dictionary.h: the reader of the indexed words (format/dictionary.h).
//
// The file is mapped and used in place; one pass over it makes every check and notes where each
// word stands.
#pragma once

#include <cstdint>
#include <string_view>

#include "format/dictionary.h"
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
  // Opens and checks the file.
  [[nodiscard]] DictionaryResult Load(const IndexDirectory& directory, const Settings& settings);
  // The same over bytes in memory, which must outlive the dictionary.
  [[nodiscard]] DictionaryResult Load(std::string_view bytes, const Settings& settings);
  void Release();

  // Word numbers 0 up to size() - 1 are in use; it may be less than NumKeywords.
  int32_t size() const { return count_; }

  std::string_view WordAt(int32_t number) const;
  DictEntry EntryAt(int32_t number) const;

  // The first word number from `from` on whose word equals `word` byte for byte; -1 for none.
  int32_t FindExact(std::string_view word, int32_t from) const;

  // Whether variant lines follow the word; costs nothing, unlike looking for them.
  bool HasVariants(int32_t number) const {
    return (variantBits_[static_cast<size_t>(number) / 64] >> (number % 64) & 1) != 0;
  }

  // The text of a word in its spelling `variant`: 0 the word itself, from 1 on its stored variants
  // in order, and the word itself for a number beyond these.
  std::string_view DisplayText(int32_t number, int32_t variant) const;

 private:
  friend class VariantReader;
  [[nodiscard]] DictionaryResult ReadLines(const Settings& settings);

  FileImage file_;
  std::string_view bytes_;            // up to where loading went
  OwnedArray<uint32_t> starts_;       // where each word stands
  OwnedArray<uint64_t> variantBits_;  // one bit a word
  int32_t count_ = 0;
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
