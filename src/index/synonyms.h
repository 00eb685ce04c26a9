// synonyms.h: the reader of the other words by which a term finds pages (format/synonyms.h). The
// file is not trusted: a damaged one gives fewer words or other ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "format/synonyms.h"
#include "index/word_map.h"
#include "settings/index_directory.h"

namespace vela {

// The views hold while the file is open.
struct Synonym {
  std::string_view text;
  uint32_t weight = 0;  // of 100, at most that
  WordList records;     // of one of several words
};

// Alternatives `first` up to `end`.
struct SynonymRange {
  uint32_t first = 0;
  uint32_t end = 0;
};

class SynonymFile {
 public:
  // Opens the file of the directory; what is not of the form stays closed.
  void Open(const IndexDirectory& directory);
  // The same over bytes in memory, which must outlive the reader.
  void Open(std::string_view bytes);
  void Close();

  bool isOpen() const { return !bytes_.empty(); }

  // The alternatives of the key, kSynonymAlternativesLimit at most; none when there is no such key.
  SynonymRange Find(std::string_view key) const;
  // An alternative of a range; its text is empty when it is damaged.
  Synonym At(uint32_t alternative) const;

 private:
  void Use(std::string_view bytes);
  uint32_t Number(size_t at) const;
  std::string_view Text(uint32_t start, uint32_t end) const;
  std::string_view KeyAt(uint32_t key) const;

  FileImage file_;
  std::string_view bytes_;  // the whole file; empty while closed
  SynonymHeader header_;
  size_t alternatives_ = 0;  // where the tables begin
  size_t records_ = 0;
  size_t texts_ = 0;
};

}  // namespace vela
