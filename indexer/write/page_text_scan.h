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

// ForEachToken, of tokens of so many bytes.
template <size_t kTokenBytes, typename Use>
uint64_t ForEachTokenOf(InFile& text, Use use) {
  constexpr size_t kPortionTokens = size_t{1} << 16;
  uint64_t at = 0;
  for (;;) {
    const std::string_view portion = text.Read(at, kPortionTokens * kTokenBytes);
    if (portion.size() < kTokenBytes) return at;
    for (size_t i = 0; i + kTokenBytes <= portion.size(); i += kTokenBytes) {
      uint32_t word = 0;
      memcpy(&word, portion.data() + i, kTokenBytes - kTokenVariantWidth);
      use(word, at);
      at += kTokenBytes;
    }
  }
}

// Calls `use(word, at)` for every token, the dictionary's number of it and where it stands, in
// bytes. Returns where the last one ends. `shape` is one that CanBeRead.
template <typename Use>
uint64_t ForEachToken(InFile& text, const TextShape& shape, Use use) {
  constexpr size_t kLeast = kTokenVariantWidth + 1;
  static_assert(kTokenWidthLimit == kLeast + 3);
  // With a width that is known when this is compiled, to read a token is a move and no call.
  switch (shape.tokenBytes) {
    case kLeast:
      return ForEachTokenOf<kLeast>(text, use);
    case kLeast + 1:
      return ForEachTokenOf<kLeast + 1>(text, use);
    case kLeast + 2:
      return ForEachTokenOf<kLeast + 2>(text, use);
    default:
      return ForEachTokenOf<kTokenWidthLimit>(text, use);
  }
}

}  // namespace vela::indexer
