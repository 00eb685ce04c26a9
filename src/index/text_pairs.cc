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
  if (first >= header.pairedWords || second >= header.pairedWords ||
      !lookup_->Read(header.texts, page, text) ||
      !lookup_->Read(header.texts, size_t{page} + 1, next)) {
    return true;
  }
  for (const uint64_t place : {position, otherPosition}) {
    if (place < StartOf(text) || place >= StartOf(next)) return true;
  }
  const uint32_t from = FirstPairsOf(text);
  if (FirstPairsOf(next) <= from) return FirstPairsOf(next) < from;
  const WordPairMark mark = WordPairMarkOf(first, second, FirstPairsOf(next) - from);
  const size_t record = size_t{from} + mark.slot / kWordPairSlots;
  WordPairs pairs;
  WordPairs behind;
  if (!lookup_->Read(header.pairs, record, pairs) ||
      (mark.slot % kWordPairSlots != 0 && !lookup_->Read(header.pairs, record + 1, behind))) {
    return true;
  }
  return AddsUp(mark, pairs, behind);
}

uint64_t TextPairs::EndOfText(uint32_t page, uint64_t position) const {
  if (lookup_ == nullptr) return 0;
  LookupText text;
  LookupText next;
  if (!lookup_->Read(lookup_->header().texts, page, text) ||
      !lookup_->Read(lookup_->header().texts, size_t{page} + 1, next)) {
    return 0;
  }
  return StartOf(text) <= position && position < StartOf(next) ? StartOf(next) : 0;
}

}  // namespace vela
