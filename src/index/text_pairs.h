// text_pairs.h: which words stand beside each other on a page, as the lookup file knows it.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/lookup_file.h"
#include "settings/settings.h"

namespace vela {

// Knows nothing until it is used with the page text that the lookup file was made from.
class TextPairs {
 public:
  TextPairs() = default;
  // `lookup` must outlive this.
  TextPairs(const LookupFile& lookup, std::string_view pageText, const Settings& settings);

  // False only when, in the text of the page, the word `second` stands nowhere behind `first` with
  // at most signs between them. Only told for places of the page text that lie, both, in that text,
  // and not of words on few pages, whose texts are read as soon.
  bool MayHold(uint32_t page, uint64_t position, uint64_t otherPosition, uint32_t first,
               uint32_t second) const;

  // Where the text of the page that holds the place ends; 0 when that is not known.
  uint64_t EndOfText(uint32_t page, uint64_t position) const;

 private:
  const LookupFile* lookup_ = nullptr;  // null: knows nothing
};

}  // namespace vela
