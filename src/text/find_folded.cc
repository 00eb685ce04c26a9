#include "text/find_folded.h"

#include <algorithm>
#include <cstdint>

#include "text/ascii.h"

namespace vela {

namespace {

// One byte to look for, a letter in either case.
struct FoldedByte {
  explicit FoldedByte(char c)
      : caseBit(IsAlpha(c) ? 0x20 : 0), wanted(static_cast<uint8_t>(ToLowerAscii(c))) {}

  uint8_t Differs(char c) const {
    return static_cast<uint8_t>((static_cast<uint8_t>(c) | caseBit) ^ wanted);
  }

  uint8_t caseBit;
  uint8_t wanted;
};

bool EqualFolded(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(),
                    [](char x, char y) { return ToLowerAscii(x) == ToLowerAscii(y); });
}

}  // namespace

size_t FindFolded(std::string_view text, std::string_view piece, size_t from) {
  if (text.size() < piece.size()) return text.npos;
  const size_t end = text.size() - piece.size() + 1;  // of the places where it can begin
  const FoldedByte first(piece.front());
  const FoldedByte last(piece.back());
  const size_t toLast = piece.size() - 1;
  constexpr size_t kAtOnce = 64;
  for (size_t at = from; at < end;) {
    const size_t stop = std::min(end, at + kAtOnce);
    if (stop - at == kAtOnce) {
      // Without a branch inside, so that the compiler compares many at a time.
      uint8_t found = 0;
      for (size_t i = 0; i < kAtOnce; ++i) {
        const int differs = first.Differs(text[at + i]) | last.Differs(text[at + i + toLast]);
        found |= static_cast<uint8_t>(differs == 0);
      }
      if (found == 0) {
        at = stop;
        continue;
      }
    }
    for (; at < stop; ++at) {
      if (first.Differs(text[at]) == 0 && last.Differs(text[at + toLast]) == 0 &&
          EqualFolded(text.substr(at, piece.size()), piece)) {
        return at;
      }
    }
  }
  return text.npos;
}

}  // namespace vela
