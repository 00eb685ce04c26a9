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

// The place of the first token from `at` on that is of `word` or ends the page. It may stop earlier
// where fewer tokens are left than are compared at once.
template <size_t kSize>
size_t FindWord(std::string_view file, size_t at, uint32_t word) {
  constexpr size_t kAtOnce = 32;
  constexpr auto kMask = static_cast<uint32_t>(LargestNumber(kSize - kTokenVariantWidth));
  const auto wordAt = [&file](size_t place) {
    uint32_t number = 0;
    memcpy(&number, file.data() + place, sizeof number);
    return number & kMask;
  };
  // What is loaded reaches beyond the last token by less than a token.
  for (; file.size() - at >= (kAtOnce + 1) * kSize + sizeof word; at += kAtOnce * kSize) {
    // Without a branch, so that the compiler compares several at a time.
    uint32_t found = 0;
    for (size_t i = 0; i < kAtOnce; ++i) {
      const uint32_t number = wordAt(at + i * kSize);
      found |=
          static_cast<uint32_t>(number == word) | static_cast<uint32_t>(number == kPageEndWord);
    }
    if (found != 0) break;
  }
  while (file.size() - at >= kSize + sizeof word && wordAt(at) != word &&
         wordAt(at) != kPageEndWord) {
    at += kSize;
  }
  return at;
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

void SkipToWord(PageTextReader& reader, uint32_t word) {
  if (reader.position >= reader.file.size()) return;
  auto at = static_cast<size_t>(reader.position);
  switch (reader.tokenSize) {
    case 2:
      at = FindWord<2>(reader.file, at, word);
      break;
    case 3:
      at = FindWord<3>(reader.file, at, word);
      break;
    case 4:
      at = FindWord<4>(reader.file, at, word);
      break;
    case 5:
      at = FindWord<5>(reader.file, at, word);
      break;
    default:
      return;
  }
  SeekPageText(reader, at);
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
