// corrections.h: the reader of the words that a misspelled one may be meant as
// (format/corrections.h). The file is not trusted: a damaged one gives fewer words or other ones,
// all of them made of letters alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "format/corrections.h"
#include "settings/index_directory.h"
#include "text/slips.h"

namespace vela {

class CorrectionFile {
 public:
  // Opens the file of the directory; what is not of the form stays closed.
  void Open(const IndexDirectory& directory);
  // The same over bytes in memory, which must outlive the reader.
  void Open(std::string_view bytes);
  void Close();

  bool isOpen() const { return !bytes_.empty(); }

  // Calls `visit(word number)` for every word of `least` to `most` letters whose set of letters
  // differs from `letterSet` by so many bits at most. While the file is open.
  template <typename Visit>
  void ForEachNear(size_t least, size_t most, uint32_t letterSet, int differing,
                   Visit visit) const {
    if (!isOpen() || least > most || most > kWordLettersLimit) return;
    const uint32_t end = header_.groups[most + 1];
    for (uint32_t i = header_.groups[least]; i < end; ++i) {
      if (__builtin_popcount(LetterSetAt(i) ^ letterSet) <= differing) visit(i);
    }
  }

  // How many pages have the word; the number is one that was visited.
  uint32_t PagesOf(uint32_t word) const;
  // The word, with its letters; empty when it is none of letters alone.
  std::string_view TextOf(uint32_t word, bool utf8, WordLetters& letters) const;

 private:
  void Use(std::string_view bytes);
  uint32_t LetterSetAt(uint32_t word) const;

  FileImage file_;
  std::string_view bytes_;  // the whole file; empty while closed
  CorrectionHeader header_;
};

}  // namespace vela
