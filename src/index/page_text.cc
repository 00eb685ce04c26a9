#include "index/page_text.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "index/byte_cursor.h"
#include "text/numbers.h"

namespace vela {

namespace {

constexpr uint64_t kReadSize = 128;

// Reads on behind what is buffered, so that at most kReadSize bytes are.
void FillBuffer(PageTextReader& reader, uint64_t buffered) {
  const uint64_t wanted = kReadSize - buffered;
  const uint64_t left =
      reader.bufferEnd < reader.file.size() ? reader.file.size() - reader.bufferEnd : 0;
  const uint64_t got = std::min(wanted, left);
  if (got < wanted) reader.atEnd = true;
  reader.bufferEnd += got;
}

// What is looked for: tokens that begin a phrase, and, with a second word, only those behind which
// that word or a sign stands.
template <bool kHasSecond>
struct Wanted {
  uint32_t first;
  uint32_t second;
  uint32_t signs;  // how many numbers from kFirstSignWord on are signs

  // Without a branch, so that the compiler compares several at a time.
  uint32_t Meets(uint32_t word, uint32_t next) const {
    auto meets = static_cast<uint32_t>(word == first);
    if constexpr (kHasSecond) {
      meets &= static_cast<uint32_t>(next == second) |
               static_cast<uint32_t>(next - kFirstSignWord < signs);
    }
    return meets | static_cast<uint32_t>(word == kPageEndWord);
  }
};

// The place of the first token from `at` on that is wanted or ends the page. It may stop earlier
// where fewer tokens are left than are compared at once.
template <size_t kSize, bool kHasSecond>
size_t Find(std::string_view file, size_t at, const Wanted<kHasSecond>& wanted) {
  constexpr size_t kAtOnce = 32;
  constexpr auto kMask = static_cast<uint32_t>(LargestNumber(kSize - kTokenVariantWidth));
  const char* const bytes = file.data();
  const auto wordAt = [bytes](size_t place) {
    uint32_t number = 0;
    memcpy(&number, bytes + place, sizeof number);
    return number & kMask;
  };
  // What is loaded reaches beyond the last token by less than two.
  constexpr size_t kBeyond = 2 * kSize + sizeof(uint32_t);
  for (; file.size() - at >= kAtOnce * kSize + kBeyond; at += kAtOnce * kSize) {
    uint32_t found = 0;
    for (size_t i = 0; i < kAtOnce; ++i) {
      found |= wanted.Meets(wordAt(at + i * kSize), wordAt(at + (i + 1) * kSize));
    }
    if (found != 0) break;
  }
  while (file.size() - at >= kBeyond && wanted.Meets(wordAt(at), wordAt(at + kSize)) == 0) {
    at += kSize;
  }
  return at;
}

template <bool kHasSecond>
void Skip(PageTextReader& reader, const Wanted<kHasSecond>& wanted) {
  if (reader.position >= reader.file.size()) return;
  const auto at = static_cast<size_t>(reader.position);
  switch (reader.tokenSize) {
    case 2:
      return SeekPageText(reader, Find<2>(reader.file, at, wanted));
    case 3:
      return SeekPageText(reader, Find<3>(reader.file, at, wanted));
    case 4:
      return SeekPageText(reader, Find<4>(reader.file, at, wanted));
    case 5:
      return SeekPageText(reader, Find<5>(reader.file, at, wanted));
    default:
      return;
  }
}

}  // namespace

bool IsPageTextPlaceholder(std::string_view file) {
  constexpr size_t kBytesRead = 6;
  char start[kBytesRead + 1] = {};
  file.substr(0, kBytesRead).copy(start, kBytesRead);
  return start[0] == 'T' && start[2] == 'h' && start[4] == 'i' && start[6] == 's';
}

void SeekPageText(PageTextReader& reader, uint64_t position) {
  reader.position = position;
  reader.bufferEnd = position;
  reader.atEnd = false;
}

void SkipToWord(PageTextReader& reader, uint32_t word) { Skip(reader, Wanted<false>{word, 0, 0}); }

void SkipToPair(PageTextReader& reader, uint32_t first, uint32_t second, int32_t lastSign) {
  const int64_t signs = int64_t{lastSign} + 1 - kFirstSignWord;
  Skip(reader, Wanted<true>{first, second, static_cast<uint32_t>(std::max<int64_t>(signs, 0))});
}

int32_t ReadPageTextToken(PageTextReader& reader, PageTextToken& token) {
  token = {};
  if (reader.tokenSize < 1) return 0;
  const auto size = static_cast<uint64_t>(reader.tokenSize);
  const uint64_t buffered = reader.bufferEnd - reader.position;
  if (buffered < size) {
    if (buffered == 0 && reader.atEnd) return 0;
    FillBuffer(reader, buffered);
  }
  if (reader.bufferEnd - reader.position < size) return 0;
  const auto start = static_cast<size_t>(reader.position);
  const auto tokenSize = static_cast<size_t>(size);
  const size_t wordWidth = tokenSize - kTokenVariantWidth;
  token.word = WrapToUint32(ReadLittleEndian(reader.file, start, wordWidth));
  token.variant = static_cast<uint8_t>(reader.file[start + wordWidth]);
  reader.position += size;
  return reader.tokenSize;
}

}  // namespace vela
