// autocomplete.h: the suggestions for the search box (format/autocomplete.h), in the order in which
// they are shown. The last byte of each line is dropped: the line feed, or, kept so, the last
// character of a piece without one.
#pragma once

#include <string_view>

#include "index/load_status.h"
#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

// Goes through the suggestions in order.
class SuggestionReader {
 public:
  // kOk or kCannotOpen.
  [[nodiscard]] LoadStatus Open(const IndexDirectory& directory, const Settings& settings);
  // The next suggestion, valid while the reader lives; may be empty. False when none is left.
  bool Next(std::string_view& suggestion);

 private:
  FileImage file_;
  LineReader lines_;
  size_t pieceLimit_ = 1;
};

// Whether the text begins with the word, in any case.
bool PrefixMatches(std::string_view text, std::string_view word, bool utf8);

}  // namespace vela
