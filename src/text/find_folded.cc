#include "text/find_folded.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "text/ascii.h"

namespace vela {

namespace {

// So many bytes at once; a compiler without such instructions makes loops of it.
using Bytes = uint8_t __attribute__((vector_size(16)));

// One byte to look for, a letter in either case.
struct FoldedByte {
  explicit FoldedByte(char c)
      : caseBit(IsAlpha(c) ? 0x20 : 0), wanted(static_cast<uint8_t>(ToLowerAscii(c))) {}

  // 0 where it stands.
  Bytes Differs(const char* at) const {
    Bytes bytes;
    memcpy(&bytes, at, sizeof bytes);
    return (bytes | caseBit) ^ wanted;
  }
  bool Equals(char c) const { return (static_cast<uint8_t>(c) | caseBit) == wanted; }

  uint8_t caseBit;
  uint8_t wanted;
};

// Whether one of `kPlaces` places from `at` on has `first`, with `last` so far behind it.
template <size_t kPlaces>
bool IsNear(const char* at, const FoldedByte& first, const FoldedByte& last, size_t toLast) {
  Bytes found = {};
  for (size_t i = 0; i < kPlaces; i += sizeof found) {
    const Bytes differs = first.Differs(at + i) | last.Differs(at + i + toLast);
    found |= differs == 0;
  }
  uint64_t halves[2];
  memcpy(halves, &found, sizeof halves);
  return (halves[0] | halves[1]) != 0;
}

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
  constexpr size_t kMany = 8 * sizeof(Bytes);
  constexpr size_t kFew = sizeof(Bytes);
  for (size_t at = from; at < end;) {
    const char* const here = text.data() + at;
    if (end - at >= kMany && !IsNear<kMany>(here, first, last, toLast)) {
      at += kMany;
      continue;
    }
    const size_t stop = std::min(end, at + kFew);
    if (stop - at == kFew && !IsNear<kFew>(here, first, last, toLast)) {
      at = stop;
      continue;
    }
    for (; at < stop; ++at) {
      if (first.Equals(text[at]) && last.Equals(text[at + toLast]) &&
          EqualFolded(text.substr(at, piece.size()), piece)) {
        return at;
      }
    }
  }
  return text.npos;
}

int CompareFolded(std::string_view a, std::string_view b) {
  const size_t shared = std::min(a.size(), b.size());
  for (size_t i = 0; i < shared; ++i) {
    const auto left = static_cast<unsigned char>(ToLowerAscii(a[i]));
    const auto right = static_cast<unsigned char>(ToLowerAscii(b[i]));
    if (left != right) return left < right ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

}  // namespace vela
