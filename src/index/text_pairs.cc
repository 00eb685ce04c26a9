#include "index/text_pairs.h"

namespace vela {

TextPairs::TextPairs(const LookupFile& lookup, std::string_view pageText,
                     const Settings& settings) {
  if (!lookup.isOpen()) return;
  const LookupHeader& header = lookup.header();
  if (header.tokenSize == static_cast<uint64_t>(settings.DictIDLen) &&
      header.lastSign == static_cast<uint64_t>(settings.DictReservedLimit) &&
      IsFileOf(header.pageText, pageText)) {
    lookup_ = &lookup;
  }
}

bool TextPairs::MayHold(uint32_t page, uint64_t position, uint64_t otherPosition, uint32_t first,
                        uint32_t second) const {
  if (lookup_ == nullptr) return true;
  const LookupHeader& header = lookup_->header();
  LookupText text;
  LookupText next;
  if (!lookup_->Read(header.texts, page, text) ||
      !lookup_->Read(header.texts, size_t{page} + 1, next) || text.pairs == 0) {
    return true;
  }
  for (const uint64_t place : {position, otherPosition}) {
    if (place < text.start || place >= next.start) return true;
  }
  const LookupPairPlace place = LookupPairPlaceOf(first, second, text.pairs);
  LookupPairs pairs = 0;
  return !lookup_->Read(header.pairs, size_t{text.firstPairs} + place.record, pairs) ||
         (pairs & place.bits) == place.bits;
}

uint64_t TextPairs::EndOfText(uint32_t page, uint64_t position) const {
  if (lookup_ == nullptr) return 0;
  LookupText text;
  LookupText next;
  if (!lookup_->Read(lookup_->header().texts, page, text) ||
      !lookup_->Read(lookup_->header().texts, size_t{page} + 1, next)) {
    return 0;
  }
  return text.start <= position && position < next.start ? next.start : 0;
}

}  // namespace vela
