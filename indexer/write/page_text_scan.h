// page_text_scan.h: going through the page text once (format/page_text.h), from its start to its
// end, a portion at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "format/page_text.h"
#include "indexer/write/in_file.h"

namespace vela::indexer {

// How the page text is to be read.
struct TextShape {
  size_t tokenBytes = 0;  // DictIDLen
  int64_t lastSign = 0;   // DictReservedLimit
};

inline bool CanBeRead(const TextShape& shape) {
  return shape.tokenBytes > kTokenVariantWidth && shape.tokenBytes <= kTokenWidthLimit;
}

// Calls `use(word, at)` for every token, the dictionary's number of it and where it stands, in
// bytes. Returns where the last one ends. `shape` is one that CanBeRead.
template <typename Use>
uint64_t ForEachToken(InFile& text, const TextShape& shape, Use use) {
  constexpr size_t kPortionTokens = size_t{1} << 16;
  const size_t wordBytes = shape.tokenBytes - kTokenVariantWidth;
  uint64_t at = 0;
  for (;;) {
    std::string_view portion = text.Read(at, kPortionTokens * shape.tokenBytes);
    if (portion.size() < shape.tokenBytes) return at;
    for (; portion.size() >= shape.tokenBytes; portion.remove_prefix(shape.tokenBytes)) {
      uint32_t word = 0;
      memcpy(&word, portion.data(), wordBytes);
      use(word, at);
      at += shape.tokenBytes;
    }
  }
}

}  // namespace vela::indexer
