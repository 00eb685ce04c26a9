// autocomplete.h: the suggestions for the search box (format/autocomplete.h), in the order in which
// they are shown. The last byte of each line is dropped: the line feed, or, kept so, the last
// character of a piece without one.
#pragma once

#include <span>
#include <string_view>

#include "index/load_status.h"
#include "index/lookup_file.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/fixed_text.h"
#include "text/owned_array.h"

namespace vela {

// Goes through the suggestions in order.
class SuggestionReader {
 public:
  // kOk or kCannotOpen.
  [[nodiscard]] LoadStatus Open(const IndexDirectory& directory, const Settings& settings);
  // From now on suggestions may be passed over that begin with none of the words, in any case:
  // where `lookup` says that each line is read in one piece, their bytes are compared many at a
  // time. The words must outlive the reader.
  void NarrowTo(std::span<const std::string_view> words, bool utf8, const LookupFile& lookup);
  // The next suggestion, valid while the reader lives; may be empty. False when none is left.
  bool Next(std::string_view& suggestion);

 private:
  void PassOver();

  FileImage file_;
  LineReader lines_;
  size_t pieceLimit_ = 1;
  // How each of the words begins, with the next line that does; empty: none is passed over.
  struct Beginning {
    FixedText<32> text;  // a line feed and bytes of the word
    size_t line;
  };
  OwnedArray<Beginning> beginnings_;
};

// Whether the text begins with the word, in any case.
bool PrefixMatches(std::string_view text, std::string_view word, bool utf8);

}  // namespace vela
